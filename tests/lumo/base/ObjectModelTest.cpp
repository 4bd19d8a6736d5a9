// Tests of the object model: class records, registry order and unlinking, instance tests
// over all bases, factories, object identity, allocation failures, text hash and atomics.
#include <lumo/base/Atomic.h>
#include <lumo/base/ClassManager.h>
#include <lumo/base/ClassNotFoundException.h>
#include <lumo/base/Exception.h>
#include <lumo/base/Object.h>
#include <lumo/io/IOException.h>
#include <lumo/util/HashCode.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace lumo::base;

namespace objtest {

// A user class made through its record, with two bases named in the record.
class CWidget : public CObject {
    LUMO_DECLARE_CLASS(CWidget);
    static CObject* Make() { return new CWidget; }
    int value = 7;
};
LUMO_DEFINE_CLASS_EX(CWidget, "test::CWidget", "lumo::base::CObject", "test::IMissing",
                     "lumo::base::CException", &CWidget::Make);

class CAbstractThing : public CObject {
    LUMO_DECLARE_CLASS(CAbstractThing);
};
LUMO_DEFINE_CLASS(CAbstractThing, "test::CAbstractThing", "lumo::base::CObject");

CObject* MakeNothing() {
    return nullptr;
}

} // namespace objtest

using namespace objtest;

TEST(ClassRecord, NamesAndLookup) {
    CClass const* reader = CClass::FindClass("lumo::io::CIOException");
    ASSERT_NE(reader, nullptr);
    EXPECT_STREQ(reader->GetName(), "CIOException");
    EXPECT_STREQ(reader->GetQualifiedBaseClassName1(), "lumo::base::CException");
    EXPECT_EQ(reader->GetQualifiedBaseClassName2(), nullptr);
    EXPECT_EQ(reader->GetConstructor(), nullptr);
    EXPECT_EQ(reader->GetSize(), sizeof(lumo::io::CIOException));

    CClass plain("NoColons", nullptr, nullptr, nullptr, 4, nullptr);
    EXPECT_STREQ(plain.GetName(), "NoColons");

    EXPECT_EQ(CClass::FindClass(nullptr), nullptr);
    EXPECT_EQ(CClass::FindClass(""), nullptr);
    EXPECT_EQ(CClass::FindClass("no::such::Class"), nullptr);

    // A name in a separate buffer is found by text, not by pointer.
    std::string copy = "lumo::base::CObject";
    EXPECT_EQ(CClass::FindClass(copy.c_str()), &CObject::m_classCObject);
    // Lookups compare with case.
    EXPECT_EQ(CClass::FindClass("LUMO::BASE::COBJECT"), nullptr);
}

TEST(ClassRecord, RegistryListOrderAndUnlink) {
    CClassManager& registry = CClassManager::GetInstance();
    EXPECT_FALSE(registry.IsHashing());
    unsigned long const before = registry.GetCount();
    {
        CClass first("test::Twin", nullptr, nullptr, nullptr, 1, nullptr);
        CClass middle("test::Middle", nullptr, nullptr, nullptr, 1, nullptr);
        CClass second("test::Twin", nullptr, nullptr, nullptr, 2, nullptr);
        EXPECT_EQ(registry.GetCount(), before + 3);
        // Newest first: the later record of a name hides the earlier one.
        EXPECT_EQ(CClass::FindClass("test::Twin"), &second);
        {
            // Unlinking from the middle of the list keeps both neighbours reachable.
            CClass inner("test::Inner", nullptr, nullptr, nullptr, 1, nullptr);
        }
        registry.UnregisterClass(&middle);
        EXPECT_EQ(CClass::FindClass("test::Middle"), nullptr);
        EXPECT_EQ(CClass::FindClass("test::Twin"), &second);
        registry.UnregisterClass(&second);
        EXPECT_EQ(CClass::FindClass("test::Twin"), &first);
        // Unregistering an unlinked record or null changes nothing.
        registry.UnregisterClass(&second);
        registry.UnregisterClass(nullptr);
        registry.RegisterClass(nullptr);
        EXPECT_EQ(registry.GetCount(), before + 1);
        EXPECT_EQ(CClass::FindClass("lumo::base::CObject"), &CObject::m_classCObject);
    }
    EXPECT_EQ(registry.GetCount(), before);
    EXPECT_EQ(CClass::FindClass("test::Twin"), nullptr);
}

TEST(ClassRecord, InstanceTestsWalkAllBases) {
    using lumo::util::CNoSuchElementException;
    CClass const* widget = &CWidget::m_classCWidget;
    EXPECT_TRUE(widget->IsInstanceOf(widget));
    EXPECT_TRUE(widget->IsInstanceOf(&CObject::m_classCObject));
    // The third base is reached although the second name resolves to nothing.
    EXPECT_TRUE(widget->IsInstanceOf(&CException::m_classCException));
    EXPECT_EQ(widget->GetBaseClass2(), nullptr);
    EXPECT_FALSE(widget->IsInstanceOf(nullptr));
    EXPECT_FALSE(CObject::m_classCObject.IsInstanceOf(widget));

    // A record registered later satisfies a failed lookup on the next call.
    static CClass missing("test::IMissing", nullptr, nullptr, nullptr, 0, nullptr);
    EXPECT_EQ(widget->GetBaseClass2(), &missing);

    CNoSuchElementException e("here", 1);
    EXPECT_TRUE(e.IsInstanceOf(&CMemoryException::m_classCMemoryException));
    EXPECT_TRUE(e.IsInstanceOf(&CException::m_classCException));
    bool caughtAsMemory = false;
    try {
        try {
            throw e;
        } catch (CMemoryException const&) {
            caughtAsMemory = true;
        }
    } catch (CException const&) {
    }
    EXPECT_FALSE(caughtAsMemory);

    // Records compare by identity: an equally named record is another class.
    CClass lookalike("lumo::base::CObject", nullptr, nullptr, nullptr, 0, nullptr);
    EXPECT_FALSE(CObject::m_classCObject.IsInstanceOf(&lookalike));
    CWidget w;
    EXPECT_TRUE(w.IsInstanceOf(widget));
    EXPECT_FALSE(w.IsInstanceOf(nullptr));
}

TEST(ClassRecord, MakingInstances) {
    CClassManager& registry = CClassManager::GetInstance();
    CObject* made = registry.CreateInstance("test::CWidget");
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->GetClass(), &CWidget::m_classCWidget);
    EXPECT_EQ(static_cast<CWidget*>(made)->value, 7);
    delete made;
    EXPECT_EQ(registry.CreateInstance(static_cast<CClass const*>(nullptr)), nullptr);

    try {
        registry.CreateInstance("no::such::Class");
        FAIL() << "no exception";
    } catch (CClassNotFoundException const& e) {
        EXPECT_STREQ(e.GetClassName(), "no::such::Class");
        EXPECT_STREQ(e.GetErrorDescription(), "The specified class is not found.");
        EXPECT_STREQ(e.GetSourceFile(), "lumo/base/ClassManager");
        EXPECT_EQ(e.GetSourceLine(), 183u);
        EXPECT_EQ(e.GetMessage(), nullptr);
    }
    EXPECT_THROW(registry.CreateInstance(static_cast<char const*>(nullptr)),
                 CClassNotFoundException);

    try {
        CAbstractThing::m_classCAbstractThing.CreateNewInstance();
        FAIL() << "no exception";
    } catch (CInstantiationException const& e) {
        EXPECT_STREQ(e.GetClassName(), "test::CAbstractThing");
        EXPECT_STREQ(e.GetErrorDescription(),
                     "Attempt to instantiate an interface or an abstract class.");
        EXPECT_EQ(e.GetSourceLine(), 221u);
    }

    CClass nothing("test::Nothing", nullptr, nullptr, nullptr, 0, &MakeNothing);
    try {
        nothing.CreateNewInstance();
        FAIL() << "no exception";
    } catch (CMemoryException const& e) {
        EXPECT_STREQ(e.GetSourceFile(), "lumo/base/Class");
        EXPECT_EQ(e.GetSourceLine(), 216u);
    }
}

TEST(Object, IdentitySemantics) {
    CWidget a, b;
    EXPECT_TRUE(a.Equals(&a));
    EXPECT_FALSE(a.Equals(&b));
    EXPECT_FALSE(a.Equals(nullptr));
    EXPECT_EQ(a.Clone(), nullptr);
    EXPECT_NE(a.GetHashCode(), b.GetHashCode());
}

TEST(Object, AllocationFailureNamesTheSite) {
    struct CHuge : CObject {
        char bytes[1];
    };
    std::size_t const tooMuch = ~static_cast<std::size_t>(0) / 2;
    struct Case {
        void* (*allocate)(std::size_t);
        char const* file;
        unsigned long line;
    } const cases[] = {
        {[](std::size_t n) { return CBase::operator new(n, "here/Unit", 77); }, "here/Unit", 77},
        {[](std::size_t n) { return CBase::operator new(n); }, "lumo/base/Base", 150},
        {[](std::size_t n) { return CBase::operator new[](n); }, "lumo/base/Base", 198},
    };
    for (auto const& test : cases) {
        try {
            CBase::operator delete(test.allocate(tooMuch));
            ADD_FAILURE() << "allocation succeeded";
        } catch (CMemoryException const& e) {
            EXPECT_STREQ(e.GetSourceFile(), test.file);
            EXPECT_EQ(e.GetSourceLine(), test.line);
        }
    }
    CHuge* ok = new ("here/Unit", 1) CHuge;
    delete ok;
    alignas(CWidget) unsigned char place[sizeof(CWidget)];
    CWidget* placed = new (static_cast<void*>(place)) CWidget;
    EXPECT_EQ(static_cast<void*>(placed), static_cast<void*>(place));
    placed->~CWidget();
}

TEST(HashCode, ShortAndLongTexts) {
    using lumo::util::GetStringHashCode;
    EXPECT_EQ(GetStringHashCode(nullptr), 0);
    EXPECT_EQ(GetStringHashCode(""), 0);
    EXPECT_EQ(GetStringHashCode("ab"), 97 * 37 + 98);
    // 16 bytes and more: every (length / 8)-th byte with factor 39.
    char const* longText = "0123456789abcdefXY"; // length 18, step 2
    std::uint32_t h = 0;
    for (int i = 0; i < 18; i += 2)
        h = h * 39u + static_cast<unsigned char>(longText[i]);
    EXPECT_EQ(GetStringHashCode(longText), static_cast<std::int32_t>(h));
    // Wraps at 32 bits rather than overflowing.
    std::string many(15, '\xff');
    std::uint32_t w = 0;
    for (int i = 0; i < 15; ++i)
        w = w * 37u + 0xffu;
    EXPECT_EQ(GetStringHashCode(many.c_str()), static_cast<std::int32_t>(w));
}

TEST(Atomic, ThirtyTwoBitOperations) {
    long volatile x = 3;
    EXPECT_TRUE(AtomicCompareAndSwap(x, 5, 3));
    EXPECT_EQ(x, 5);
    x = 4;
    EXPECT_FALSE(AtomicCompareAndSwap(x, 5, 3));
    EXPECT_EQ(x, 4);
    EXPECT_EQ(AtomicIncrement(x), 5);
    EXPECT_EQ(AtomicDecrement(x), 4);
    // Values wrap at 32 bits even where long is wider.
    x = 0x7fffffffL;
    EXPECT_EQ(AtomicIncrement(x), -0x7fffffffL - 1);
    EXPECT_EQ(AtomicDecrement(x), 0x7fffffffL);
}
