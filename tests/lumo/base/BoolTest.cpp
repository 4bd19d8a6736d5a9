// Tests of CBool's texts, lengths and class record, and of IComparable used through the
// interface.
#include <lumo/base/Bool.h>
#include <lumo/base/Comparable.h>
#include <lumo/base/Exception.h>

#include <gtest/gtest.h>

#include <cstring>

using lumo::base::CBool;
using lumo::base::IComparable;

TEST(Bool, TextsLengthsAndRecord) {
    EXPECT_STREQ(CBool::ToString(true), "true");
    EXPECT_STREQ(CBool::ToString(false), "false");
    EXPECT_EQ(CBool::ToString(true), CBool::SZ_TRUE);
    EXPECT_EQ(std::strlen(CBool::SZ_TRUE), CBool::CC_TRUE);
    EXPECT_EQ(std::strlen(CBool::SZ_FALSE), CBool::CC_FALSE);
    unsigned short const* t = CBool::ToUnicodeString(true);
    unsigned short const* f = CBool::ToUnicodeString(false);
    for (unsigned long i = 0; i <= CBool::WCC_TRUE; ++i)
        EXPECT_EQ(t[i], static_cast<unsigned char>(CBool::SZ_TRUE[i]));
    for (unsigned long i = 0; i <= CBool::WCC_FALSE; ++i)
        EXPECT_EQ(f[i], static_cast<unsigned char>(CBool::SZ_FALSE[i]));
    EXPECT_EQ(t, CBool::WSZ_TRUE);
    EXPECT_EQ(f, CBool::WSZ_FALSE);

    CBool b;
    EXPECT_STREQ(b.GetClass()->GetQualifiedName(), "lumo::base::CBool");
    EXPECT_STREQ(b.GetClass()->GetQualifiedBaseClassName1(), "lumo::base::CObject");
    EXPECT_EQ(lumo::base::CClass::FindClass("lumo::base::CBool"), &CBool::m_classCBool);
}

namespace {
// Orders by value and refuses anything that is not a Version.
class Version : public IComparable {
public:
    explicit Version(int v) : m_v(v) {}
    int CompareTo(IComparable const& other) const override {
        auto const* o = dynamic_cast<Version const*>(&other);
        if (o == nullptr)
            throw lumo::base::CIllegalComparisonException("test", 1, "Not comparable.", nullptr);
        return m_v < o->m_v ? -1 : (m_v > o->m_v ? 1 : 0);
    }

private:
    int m_v;
};
class Other : public IComparable {
public:
    int CompareTo(IComparable const&) const override { return 0; }
};
} // namespace

TEST(Comparable, ImplementationsAreUsedThroughTheInterface) {
    Version a(1), b(2);
    Other o;
    IComparable const& ia = a;
    EXPECT_LT(ia.CompareTo(b), 0);
    EXPECT_GT(b.CompareTo(ia), 0);
    EXPECT_THROW(ia.CompareTo(o), lumo::base::CIllegalComparisonException);
    IComparable* owned = new Version(3);
    delete owned; // virtual destructor through the interface
}
