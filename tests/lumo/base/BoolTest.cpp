// Tests of CBool's texts, lengths and class record, and of IComparable implemented and
// deleted through the interface.
#include <lumo/base/Bool.h>
#include <lumo/base/Comparable.h>

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

// The interface's destructor lives in the library (and must be exported): an
// implementation is used and deleted through the interface.
TEST(Comparable, ImplementationsAreUsedThroughTheInterface) {
    struct CVersion : IComparable {
        explicit CVersion(int v) : value(v) {}
        int CompareTo(IComparable const& other) const override {
            return value - static_cast<CVersion const&>(other).value;
        }
        int value;
    };
    IComparable* a = new CVersion(1);
    CVersion b(2);
    EXPECT_LT(a->CompareTo(b), 0);
    EXPECT_GT(b.CompareTo(*a), 0);
    delete a;
}
