// Tests of CStringVector and CUnicodeStringVector, one typed suite over both (the same
// UTF-8 texts, as bytes and as UTF-16 units): element operations and the SetElementAt
// rule, sort, copies and enumeration.
#include <lumo/util/StringVector.h>
#include <lumo/util/UnicodeStringVector.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include <string>
#include <type_traits>
#include <vector>

using namespace lumo::base;
using namespace lumo::util;

namespace {

using Strings = std::vector<std::string>;

template <class V> struct Traits;
template <> struct Traits<CStringVector> {
    using String = CString;
    static constexpr char const* unit = "lumo/util/StringVector";
    static CString T(char const* utf8) { return CString(utf8); }
};
template <> struct Traits<CUnicodeStringVector> {
    using String = CUnicodeString;
    static constexpr char const* unit = "lumo/util/UnicodeStringVector";
    static CUnicodeString T(char const* utf8) { return CUnicodeString::FromUTF8(utf8); }
};

std::string Str(CString const& s) {
    return static_cast<char const*>(s);
}
std::string Str(CUnicodeString const& s) {
    return static_cast<char const*>(s.ToUTF8());
}

template <class V> Strings Texts(V const& v) {
    Strings texts;
    for (unsigned long i = 0; i < v.GetSize(); ++i)
        texts.push_back(Str(v[i]));
    return texts;
}

template <class V> class StringVectors : public ::testing::Test {};
struct Names {
    template <class V> static std::string GetName(int) {
        return std::is_same_v<V, CStringVector> ? "Bytes" : "Utf16";
    }
};
using Kinds = ::testing::Types<CStringVector, CUnicodeStringVector>;
TYPED_TEST_SUITE(StringVectors, Kinds, Names);

} // namespace

TYPED_TEST(StringVectors, ElementOperationsAndTheSetElementAtRule) {
    using K = Traits<TypeParam>;
    auto const T = &K::T;
    TypeParam v(0, 3);
    EXPECT_THROW(v.GetFirstElement(), CNoSuchElementException);
    EXPECT_THROW(v.GetLastElement(), CNoSuchElementException);
    v.AddElement(T("b"));
    v.AddElement(T("d"));
    v.InsertElementAt(T("a"), 0);
    v.InsertElementAt(T("c"), 2);
    v.InsertElementAt(T("é"), 4); // == size appends
    EXPECT_THROW(v.InsertElementAt(T("z"), 6), CArrayIndexOutOfBoundsException);
    EXPECT_EQ(Texts(v), (Strings{"a", "b", "c", "d", "é"}));
    EXPECT_EQ(v.GetCapacity(), 6u);

    v.SetElementAt(T("B"), 1);
    v.SetElementAt(T("ignored"), 5); // at the size: nothing, no exception
    v.SetElementAt(T("ignored"), 100);
    v.GetElementAt(2) = T("cc"); // elements are handed out by reference
    EXPECT_EQ(Texts(v), (Strings{"a", "B", "cc", "d", "é"}));
    EXPECT_EQ(Str(v.GetFirstElement()), "a");
    EXPECT_EQ(Str(v.GetLastElement()), "é");
    EXPECT_THROW(v.GetElementAt(5), CArrayIndexOutOfBoundsException);

    v.AddElement(T("a"));
    EXPECT_EQ(v.GetIndexOf(T("a")), 0);
    EXPECT_EQ(v.GetLastIndexOf(T("a")), 5);
    EXPECT_EQ(v.GetIndexOf(T("b")), -1); // case-sensitive
    EXPECT_EQ(v.GetIndexOf(T("ê")), -1);
    v.RemoveElement(T("zzz"));
    v.RemoveElement(T("a"));
    EXPECT_EQ(Texts(v), (Strings{"B", "cc", "d", "é", "a"}));
    v.RemoveElementAt(4);
    v.RemoveElementAt(0);
    EXPECT_EQ(v.GetCapacity(), 3u);
    EXPECT_THROW(v.RemoveElementAt(3), CArrayIndexOutOfBoundsException);
    v.RemoveAllElements();
    EXPECT_TRUE(v.IsEmpty());
    v.TrimToSize();
    EXPECT_EQ(v.GetCapacity(), 0u);
    v.EnsureCapacity(4);
    EXPECT_EQ(v.GetCapacity(), 6u);

    lumotest::IllegalIn const illegal{K::unit};
    illegal([&] { v.AddElement(nullptr); }, "Invalid element.");
    illegal([&] { v.InsertElementAt(nullptr, 0); }, "Invalid element.");
    illegal([&] { v.SetElementAt(nullptr, 0); }, "Invalid element.");
    illegal([&] { v.Contains(nullptr); }, "Invalid element.");
    illegal([&] { v.GetIndexOf(nullptr); }, "Invalid element.");
    illegal([&] { v.GetLastIndexOf(nullptr); }, "Invalid element.");
    illegal([&] { v.RemoveElement(nullptr); }, "Invalid element.");
    illegal([&] { v.Sort(nullptr); }, "Invalid compare function.");
    illegal([] { TypeParam bad(1, 0); }, "Invalid increment.");
    EXPECT_TRUE(v.IsEmpty());
}

TYPED_TEST(StringVectors, SortCopiesAndEnumeration) {
    using String = typename Traits<TypeParam>::String;
    auto const T = &Traits<TypeParam>::T;
    TypeParam v;
    for (char const* text : {"pear", "😀", "apple", "€", "fig", "banana"})
        v.AddElement(T(text));
    v.Sort([](void const* a, void const* b) {
        return static_cast<String const*>(a)->Compare(*static_cast<String const*>(b));
    });
    // By byte or unit values: the surrogate pair (and its 4-byte form) after the euro sign.
    Strings const sorted{"apple", "banana", "fig", "pear", "€", "😀"};
    EXPECT_EQ(Texts(v), sorted);

    TypeParam copy(v);
    EXPECT_TRUE(copy == v);
    copy.SetElementAt(T("kiwi"), 3);
    EXPECT_TRUE(copy != v);
    EXPECT_EQ(Str(v[3]), "pear"); // the copy's change stays its own
    TypeParam assigned(0, 2);
    assigned.AddElement(T("x"));
    assigned = copy;
    EXPECT_TRUE(assigned == copy);
    assigned = assigned;
    EXPECT_EQ(assigned.GetSize(), 6u);

    CEnumeration<String> e = v.GetElements();
    Strings seen;
    while (e.HasMoreElements())
        seen.push_back(Str(*e.NextElement()));
    EXPECT_EQ(seen, sorted);
    EXPECT_THROW(e.NextElement(), CNoSuchElementException);
    e.Reset();
    EXPECT_EQ(Str(*e.NextElement()), "apple");
}
