// Tests of CHashtable: a string-keyed registry of borrowed pointers, growth, copies and
// enumerations.
#include <lumo/util/Hashtable.h>

#include <lumo/base/String.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include "support/Tracked.h"

#include <set>
#include <string>

using namespace lumo::base;
using namespace lumo::util;
using lumotest::Tracked;

namespace {
struct Factory {
    int id;
};
} // namespace

TEST(Hashtable, StringKeyedRegistryOfBorrowedPointers) {
    Factory utf8{8}, latin{1};
    CHashtable<CString, Factory*> registry;
    EXPECT_FALSE(registry.Put("UTF-8", &utf8));
    EXPECT_FALSE(registry.Put(CString("ISO-8859-1"), &latin));
    EXPECT_EQ(registry.Get("UTF-8"), &utf8);
    EXPECT_EQ(*registry.Find("ISO-8859-1"), &latin);
    EXPECT_EQ(registry.Find("utf-8"), nullptr); // case matters
    lumotest::ExpectThrowIn<CNoSuchElementException>("lumo/util/Hashtable",
                                                     [&] { registry.Get("UTF-16"); });
    Factory* previous = nullptr;
    EXPECT_TRUE(registry.Put("UTF-8", &latin, &previous));
    EXPECT_EQ(previous, &utf8);
    EXPECT_TRUE(registry.Contains(&latin));
    EXPECT_FALSE(registry.Contains(&utf8));
    EXPECT_EQ(registry.Remove("UTF-8"), &latin);
    EXPECT_THROW(registry.Remove("UTF-8"), CNoSuchElementException);
    EXPECT_EQ(registry.GetSize(), 1u);
    EXPECT_TRUE(registry.ContainsKey("ISO-8859-1"));
}

TEST(Hashtable, GrowthCopiesAndEnumerations) {
    {
        CHashtable<int, Tracked> table;
        for (int k = 0; k < 75; ++k)
            table.Put(k, Tracked(k * 10));
        EXPECT_EQ(table.GetCapacity(), 101u);
        table.Put(75, Tracked(750));
        EXPECT_EQ(table.GetCapacity(), 203u);
        EXPECT_EQ(Tracked::live, 76);

        CHashtable<int, Tracked> copy(table);
        EXPECT_EQ(copy.GetCapacity(), 203u);
        EXPECT_EQ(copy.Get(40).value, 400); // values copied, not keys
        copy.Get(40).value = 1;
        EXPECT_EQ(table.Get(40).value, 400);
        CHashtable<int, Tracked> assigned(12, 0.5f);
        assigned.Put(1, Tracked(1));
        assigned = copy;
        EXPECT_EQ(assigned.GetSize(), 76u);
        EXPECT_EQ(Tracked::live, 228);
        EXPECT_EQ(assigned.Remove(75).value, 750);
        EXPECT_EQ(Tracked::live, 227);
        assigned.Put(1000, Tracked(1)); // reuses the removed entry's place
        assigned.Put(1001, Tracked(2));
        EXPECT_EQ(assigned.Get(1000).value, 1);
        EXPECT_EQ(Tracked::live, 229);

        std::set<int> keys, values;
        CEnumeration<int> k = table.GetKeys();
        CEnumeration<Tracked> v = table.GetElements();
        while (k.HasMoreElements())
            keys.insert(*k.NextElement());
        while (v.HasMoreElements())
            values.insert(v.NextElement()->value);
        EXPECT_EQ(keys.size(), 76u);
        EXPECT_EQ(*keys.rbegin(), 75);
        EXPECT_EQ(values.count(750), 1u);
        EXPECT_THROW(k.NextElement(), CNoSuchElementException);
        k.Reset();
        EXPECT_TRUE(k.HasMoreElements());

        // A failing value copy leaves the table unchanged.
        Tracked::copiesUntilFailure = 0;
        EXPECT_THROW(table.Put(500, Tracked(5)), std::runtime_error);
        EXPECT_THROW(assigned = table, std::runtime_error);
        Tracked::copiesUntilFailure = -1;
        EXPECT_FALSE(table.ContainsKey(500));
        EXPECT_EQ(assigned.GetSize(), 77u);
        table.Clear();
        EXPECT_TRUE(table.IsEmpty());
        EXPECT_EQ(table.GetCapacity(), 203u);
    }
    EXPECT_EQ(Tracked::live, 0);
    // Construction follows CObjectHashtable's rules.
    EXPECT_EQ((CHashtable<int, int>(11)).GetCapacity(), 101u);
    EXPECT_EQ((CHashtable<int, int>(12)).GetCapacity(), 12u);
    CHashtable<int, int> small(12, -1.0f); // 0.75: threshold 9
    for (int i = 0; i < 10; ++i)
        small.Put(i, i);
    EXPECT_EQ(small.GetCapacity(), 25u);
}
