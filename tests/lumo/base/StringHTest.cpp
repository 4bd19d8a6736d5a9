// Tests of CStringH: storing and copying, Empty keeping the digit '0', the lock count,
// comparisons, and a handle manager out of memory leaving the text as it was.
#include <lumo/base/Exception.h>
#include <lumo/base/String.h>
#include <lumo/base/StringH.h>
#include <vela/Memory.h>

#include <gtest/gtest.h>

#include <string>

using lumo::base::CMemoryException;
using lumo::base::CString;
using lumo::base::CStringH;

namespace {

char const* Text(CStringH const& s) {
    return s;
}

} // namespace

TEST(CStringH, StoreAndCopy) {
    CStringH none;
    EXPECT_EQ(nullptr, Text(none));
    EXPECT_TRUE(none.IsEmpty());
    EXPECT_EQ(nullptr, Text(CStringH(static_cast<char const*>(nullptr))));
    EXPECT_EQ(nullptr, Text(CStringH(none)));

    CStringH h("abc");
    EXPECT_STREQ("abc", Text(h));
    EXPECT_EQ(3u, h.GetLength());
    CStringH copy(h);
    EXPECT_STREQ("abc", Text(copy));
    EXPECT_NE(Text(h), Text(copy)); // every string owns its handle
    copy = "a much longer text that needs a larger handle";
    EXPECT_STREQ("a much longer text that needs a larger handle", Text(copy));
    EXPECT_STREQ("abc", Text(h));
    copy = h;
    EXPECT_STREQ("abc", Text(copy));
    EXPECT_EQ(3u, copy.GetLength());
    copy = copy;
    EXPECT_STREQ("abc", Text(copy));
    copy = Text(copy) + 1; // a text inside the string's own handle
    EXPECT_STREQ("bc", Text(copy));
    copy = static_cast<char const*>(nullptr);
    EXPECT_STREQ("", Text(copy));
    EXPECT_TRUE(copy.IsEmpty());

    // CString in both directions, by the recorded lengths.
    CStringH fromString(CString("xyz"));
    EXPECT_STREQ("xyz", Text(fromString));
    fromString = CString("\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(5u, fromString.GetLength());
    CString back(fromString);
    EXPECT_STREQ("\xC3\xA9t\xC3\xA9", static_cast<char const*>(back));
    back = h;
    EXPECT_STREQ("abc", static_cast<char const*>(back));
    back = none;
    EXPECT_TRUE(back.IsEmpty());

    std::string const big(5000, 'b');
    CStringH large(big.c_str());
    EXPECT_EQ(5000u, large.GetLength());
    EXPECT_EQ(big, Text(large));
}

TEST(CStringH, EmptyKeepsTheDigitZero) {
    CStringH h("abc");
    h.Empty();
    EXPECT_EQ(0u, h.GetLength());
    EXPECT_TRUE(h.IsEmpty());
    EXPECT_EQ('0', Text(h)[0]);
    // The length decides: copies and conversions see an empty text.
    CStringH copy(h);
    EXPECT_STREQ("", Text(copy));
    EXPECT_TRUE(CString(h).IsEmpty());
    EXPECT_EQ(0, h.Compare(""));
    // Nothing to empty: left as it is.
    CStringH none;
    none.Empty();
    EXPECT_EQ(nullptr, Text(none));
    CStringH blank("");
    blank.Empty();
    EXPECT_STREQ("", Text(blank));
}

TEST(CStringH, LockCount) {
    CStringH const h("x");
    EXPECT_EQ(0u, h.Unlock());
    EXPECT_EQ(1u, h.Lock());
    EXPECT_EQ(2u, h.Lock());
    EXPECT_EQ(1u, h.Unlock());
    EXPECT_EQ(0u, h.Unlock());
    EXPECT_EQ(0u, h.Unlock());
}

TEST(CStringH, Compare) {
    CStringH empty;
    CStringH abc("abc");
    EXPECT_EQ(0, empty.Compare(""));
    EXPECT_EQ(0, empty.Compare(static_cast<char const*>(nullptr)));
    EXPECT_EQ(-1, empty.Compare("x"));
    EXPECT_EQ(1, abc.Compare(""));
    EXPECT_EQ(1, abc.Compare(static_cast<char const*>(nullptr)));
    EXPECT_EQ(0, abc.Compare("abc"));
    EXPECT_LT(abc.Compare("abd"), 0);
    EXPECT_GT(abc.Compare("ABC"), 0);
    EXPECT_EQ(0, abc.Compare(CString("abc")));
    EXPECT_EQ(1, abc.Compare(CString()));
    EXPECT_EQ(-1, empty.Compare(CString("a")));
    EXPECT_EQ(0, empty.Compare(CStringH("")));

    EXPECT_TRUE(abc == "abc");
    EXPECT_TRUE("abc" == abc);
    EXPECT_TRUE(abc == CString("abc"));
    EXPECT_TRUE(CString("abc") == abc);
    EXPECT_TRUE(abc != "ABC");
    EXPECT_TRUE(CString("b") != abc);
    EXPECT_TRUE(empty == static_cast<char const*>(nullptr));
    EXPECT_TRUE(empty == CString());
}

TEST(CStringH, ExhaustedManagerKeepsTheText) {
    CStringH h("abc");
    Vela::bmManager::FailNextAllocations(1);
    try {
        h = "a text too long for the present handle";
        FAIL() << "no exception";
    } catch (CMemoryException const& e) {
        EXPECT_STREQ("lumo/base/StringH", e.GetSourceFile());
        EXPECT_EQ(263u, e.GetSourceLine());
    }
    EXPECT_STREQ("abc", Text(h));
    EXPECT_EQ(3u, h.GetLength());
    // A store that fits needs no allocation.
    Vela::bmManager::FailNextAllocations(1);
    h = "xy";
    EXPECT_STREQ("xy", Text(h));
    Vela::bmManager::FailNextAllocations(0);

    CStringH none;
    Vela::bmManager::FailNextAllocations(1);
    EXPECT_THROW(none = CString("x"), CMemoryException);
    Vela::bmManager::FailNextAllocations(0);
    EXPECT_EQ(nullptr, Text(none));
    EXPECT_EQ(0u, none.GetLength());
    none = "y";
    EXPECT_STREQ("y", Text(none));
}
