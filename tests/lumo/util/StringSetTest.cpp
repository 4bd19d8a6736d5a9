// Tests of CStringSet: membership, growth and bad keys, keys that differ in one byte
// or share a hash, and the set algebra against std::set.
#include <lumo/util/StringSet.h>

#include <lumo/base/Exception.h>
#include <lumo/util/HashCode.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include <algorithm>
#include <iterator>
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

CStringSet Of(std::set<std::string> const& texts) {
    CStringSet set;
    for (std::string const& text : texts)
        set.Put(text.c_str());
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

    // Growth follows CHashtable (its own test); the arguments arrive: 0 becomes 0.75,
    // threshold 9.
    CStringSet small(12, 0.0f);
    for (int i = 0; i < 10; ++i)
        small.Put(std::to_string(i).c_str());
    EXPECT_EQ(small.GetCapacity(), 25u);
    small.Empty();
    EXPECT_TRUE(small.IsEmpty());
    EXPECT_EQ(small.GetCapacity(), 25u); // kept
}

TEST(StringSet, SetAlgebraAgreesWithStdSet) {
    using Set = std::set<std::string>;
    Set const sets[] = {{}, {"x"}, {"x", "y", "z"}, {"y", "z", "w"}, {"w", "x", "y", "z"}};
    for (Set const& a : sets) {
        for (Set const& b : sets) {
            Set both, onlyA, common;
            std::set_union(a.begin(), a.end(), b.begin(), b.end(), std::inserter(both, both.end()));
            std::set_difference(a.begin(), a.end(), b.begin(), b.end(),
                                std::inserter(onlyA, onlyA.end()));
            std::set_intersection(a.begin(), a.end(), b.begin(), b.end(),
                                  std::inserter(common, common.end()));
            CStringSet const setB = Of(b);
            CStringSet result = Of(a);
            EXPECT_EQ(Elements(result += setB), both);
            EXPECT_EQ(Elements((result = Of(a)) -= setB), onlyA);
            EXPECT_EQ(Elements((result = Of(a)) *= setB), common);
            EXPECT_EQ(Of(a).IsSubSetOf(setB),
                      std::includes(b.begin(), b.end(), a.begin(), a.end()));
            EXPECT_EQ(Of(a).IsSuperSetOf(setB),
                      std::includes(a.begin(), a.end(), b.begin(), b.end()));
            EXPECT_EQ(Of(a) == setB, a == b);
        }
    }
    // Each operator with itself, and what an intersection leaves of the capacity.
    CStringSet self = Of({"k", "q"});
    self += self;
    EXPECT_EQ(self.GetSize(), 2u);
    self -= self;
    EXPECT_TRUE(self.IsEmpty());
    CStringSet big(500, 0.75f);
    big.Put("y");
    big.Put("q");
    big *= Of({"x", "y"});
    EXPECT_EQ(Elements(big), (Set{"y"}));
    EXPECT_EQ(big.GetCapacity(), 101u); // a fresh table
    CStringSet same(500, 0.75f);
    same.Put("k");
    same *= same;
    EXPECT_EQ(same.GetCapacity(), 500u);
    EXPECT_EQ(Elements(same), (Set{"k"}));

    CStringSet assigned;
    assigned.Put("old");
    CStringSet const b = Of({"w", "y"});
    assigned = b;
    EXPECT_TRUE(assigned == b);
    assigned.Remove("w");
    EXPECT_TRUE(b.Contains("w")); // copies are independent
}

TEST(StringSet, KeysThatShareAHashOrALengthStayApart) {
    // Texts of every length up to 40, and for each a neighbour per position: one
    // with the same hash (under 16 bytes, raising a byte by one and lowering the
    // next by 37 keeps it, and the other way round) and one a byte different. Only the originals go
    // in.
    std::set<std::string> in, out;
    for (std::size_t length = 1; length <= 40; ++length) {
        std::string text;
        for (std::size_t i = 0; i < length; ++i)
            text += static_cast<char>('a' + (i * 7 + length) % 26);
        in.insert(text);
        for (std::size_t i = 0; i < length; ++i) {
            std::string other = text;
            int const step = text[i] == 'z' ? -1 : 1;
            other[i] = static_cast<char>(text[i] + step);
            if (i + 1 < length && length < 16) {
                other[i + 1] = static_cast<char>(text[i + 1] - 37 * step);
                EXPECT_EQ(GetStringHashCode(other.c_str()), GetStringHashCode(text.c_str()));
            }
            out.insert(other);
        }
        out.insert(text + "x");
    }
    CStringSet set = Of(in);
    for (std::string const& text : in)
        EXPECT_TRUE(set.Contains(text.c_str())) << text;
    for (std::string const& text : out) {
        EXPECT_FALSE(set.Contains(text.c_str())) << text;
        EXPECT_THROW(set.Remove(text.c_str()), CNoSuchElementException);
    }
    EXPECT_EQ(Elements(set), in);
}
