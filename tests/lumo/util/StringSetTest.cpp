// Tests of CStringSet: membership, growth and bad keys, and the set algebra.
#include <lumo/util/StringSet.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include <set>
#include <string>

using namespace lumo::base;
using namespace lumo::util;

namespace {

std::set<std::string> Elements(CStringSet const& set) {
    std::set<std::string> elements;
    CEnumeration<CString> e = set.GetElements();
    while (e.HasMoreElements())
        elements.insert(static_cast<char const*>(*e.NextElement()));
    return elements;
}

CStringSet Of(std::initializer_list<char const*> texts) {
    CStringSet set;
    for (char const* text : texts)
        set.Put(text);
    return set;
}

} // namespace

TEST(StringSet, MembershipGrowthAndBadKeys) {
    CStringSet set;
    set.Put("Apple");
    set.Put("Apple");
    set.Put("apple"); // case-sensitive
    EXPECT_EQ(set.GetSize(), 2u);
    EXPECT_TRUE(set.Contains("Apple"));
    EXPECT_FALSE(set.Contains("APPLE"));
    set.Remove("apple");
    EXPECT_FALSE(set.Contains("apple"));
    lumotest::ExpectThrowIn<CNoSuchElementException>("lumo/util/StringHashtable",
                                                     [&] { set.Remove("apple"); });
    for (char const* bad : {"", static_cast<char const*>(nullptr)}) {
        lumotest::ExpectThrowIn<CIllegalArgumentException>(
            "lumo/util/StringHashtable", [&] { set.Put(bad); }, "Invalid key.");
        EXPECT_THROW(set.Contains(bad), CIllegalArgumentException);
        EXPECT_THROW(set.Remove(bad), CIllegalArgumentException);
    }

    for (int i = 0; set.GetSize() < 75; ++i)
        set.Put(("key" + std::to_string(i)).c_str());
    EXPECT_EQ(set.GetCapacity(), 101u);
    set.Put("one more");
    EXPECT_EQ(set.GetCapacity(), 203u);
    EXPECT_EQ(Elements(set).size(), 76u);
    EXPECT_TRUE(set.Contains("key73"));
    set.Empty();
    EXPECT_TRUE(set.IsEmpty());
    EXPECT_EQ(set.GetCapacity(), 203u);

    EXPECT_EQ(CStringSet(5, 0.75f).GetCapacity(), 101u);
    CStringSet small(12, 0.0f); // 0.75: threshold 9
    for (int i = 0; i < 10; ++i)
        small.Put(std::to_string(i).c_str());
    EXPECT_EQ(small.GetCapacity(), 25u);
}

TEST(StringSet, SetAlgebra) {
    CStringSet a = Of({"x", "y", "z"});
    CStringSet b = Of({"y", "z", "w"});
    CStringSet empty;

    CStringSet u = a;
    u += b;
    EXPECT_EQ(Elements(u), (std::set<std::string>{"w", "x", "y", "z"}));
    u += u;
    EXPECT_EQ(u.GetSize(), 4u);

    CStringSet d = a;
    d -= b;
    EXPECT_EQ(Elements(d), (std::set<std::string>{"x"}));
    d -= d;
    EXPECT_TRUE(d.IsEmpty());

    CStringSet big(500, 0.75f);
    big.Put("y");
    big.Put("q");
    big *= a;
    EXPECT_EQ(Elements(big), (std::set<std::string>{"y"}));
    EXPECT_EQ(big.GetCapacity(), 101u); // a fresh table
    CStringSet same(500, 0.75f);
    same.Put("k");
    same *= same;
    EXPECT_EQ(same.GetCapacity(), 500u);
    EXPECT_EQ(Elements(same), (std::set<std::string>{"k"}));

    EXPECT_TRUE(empty.IsSubSetOf(a));
    EXPECT_TRUE(empty.IsSubSetOf(empty));
    EXPECT_TRUE(a.IsSubSetOf(u));
    EXPECT_FALSE(u.IsSubSetOf(a));
    EXPECT_TRUE(u.IsSuperSetOf(b));
    EXPECT_FALSE(b.IsSuperSetOf(a));
    EXPECT_TRUE(a.IsSuperSetOf(empty));

    EXPECT_TRUE(a == Of({"z", "x", "y"}));
    EXPECT_TRUE(a != b);
    EXPECT_TRUE(a != u);
    CStringSet assigned;
    assigned.Put("old");
    assigned = b;
    EXPECT_TRUE(assigned == b);
    assigned.Remove("w");
    EXPECT_TRUE(b.Contains("w")); // copies are independent
}
