// Tests of CObjectHashtable: construction and growth steps, put, get and ownership,
// Remove always ending in CNoSuchElementException, copies, and enumeration order.
#include <lumo/util/ObjectHashtable.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include <vector>

using namespace lumo::base;
using namespace lumo::util;
using namespace lumotest;

namespace {

std::vector<int> Keys(CObjectHashtable const& table) {
    std::vector<int> keys;
    CEnumeration<CObject> e = table.GetKeys();
    while (e.HasMoreElements())
        keys.push_back(ValueOf(e.NextElement()));
    return keys;
}

// The elements left in `e`.
int Count(CEnumeration<CObject>& e) {
    int n = 0;
    for (; e.HasMoreElements(); ++n)
        e.NextElement();
    return n;
}

IllegalIn const ExpectIllegal{"lumo/util/ObjectHashtable"};

// Puts new keys 1000 + size, ... (distinct hashes) until the table holds `count`
// entries.
void FillTo(CObjectHashtable& table, unsigned long count) {
    for (int k = 1000 + static_cast<int>(table.GetSize()); table.GetSize() < count; ++k)
        table.Put(new CValue(k), new CValue(-k));
}

} // namespace

TEST(ObjectHashtable, ConstructionAndGrowthSteps) {
    EXPECT_EQ(CObjectHashtable().GetCapacity(), 101u);
    EXPECT_EQ(CObjectHashtable(11, 0.75f).GetCapacity(), 101u); // under 12: the default
    EXPECT_EQ(CObjectHashtable(-3, 0.75f).GetCapacity(), 101u);
    EXPECT_EQ(CObjectHashtable(12, 0.75f).GetCapacity(), 12u);
    EXPECT_THROW(CObjectHashtable(0x100000000L, 0.75f), CMemoryException);
    {
        CObjectHashtable table;
        FillTo(table, 75);
        CValue again(1000);
        table.Put(&again, new CValue(5)); // a key already present never grows the table
        // Growth once the size passes capacity * 0.75, to capacity * 2 + 1.
        for (auto [size, capacity] :
             {std::pair{75ul, 101ul}, {76ul, 203ul}, {152ul, 203ul}, {153ul, 407ul}}) {
            FillTo(table, size);
            EXPECT_EQ(table.GetCapacity(), capacity) << size;
        }
        for (int k = 1000; k < 1153; ++k) {
            CValue key(k);
            ASSERT_EQ(ValueOf(table.Get(&key)), k == 1000 ? 5 : -k);
        }
    }
    for (float bad : {0.0f, -2.0f}) {
        CObjectHashtable table(12, bad); // 0.75: threshold 9
        FillTo(table, 9);
        EXPECT_EQ(table.GetCapacity(), 12u);
        FillTo(table, 10);
        EXPECT_EQ(table.GetCapacity(), 25u);
    }
    EXPECT_EQ(CValue::live, 0);
}

TEST(ObjectHashtable, PutGetContainsAndOwnership) {
    {
        CObjectHashtable table;
        CValue* key = new CValue(1);
        table.Put(key, new CValue(10));
        EXPECT_EQ(CValue::live, 2);
        CValue sameKey(1);
        table.Put(&sameKey, new CValue(11)); // old value deleted, key stays ours
        EXPECT_EQ(CValue::live, 3);
        EXPECT_EQ(table.GetSize(), 1u);
        EXPECT_EQ(ValueOf(table.Get(&sameKey)), 11);
        table.Put(key, table.Get(key)); // the same value again survives
        EXPECT_EQ(ValueOf(table.Get(key)), 11);

        // Equal hash but unequal keys are different entries.
        table.Put(new CValue(2, 1), new CValue(20));
        CValue two(2, 1), three(3, 1), twenty(20), none(99);
        EXPECT_EQ(ValueOf(table.Get(&two)), 20);
        EXPECT_TRUE(table.ContainsKey(&two));
        EXPECT_FALSE(table.ContainsKey(&three));
        EXPECT_THROW(table.Get(&three), CNoSuchElementException);
        EXPECT_TRUE(table.Contains(&twenty));
        EXPECT_FALSE(table.Contains(&none));

        CValue value(0);
        ExpectIllegal([&] { table.Put(nullptr, &value); }, "Invalid key object.");
        ExpectIllegal([&] { table.Put(&value, nullptr); }, "Invalid value object.");
        ExpectIllegal([&] { table.Get(nullptr); }, "Invalid key object.");
        ExpectIllegal([&] { table.ContainsKey(nullptr); }, "Invalid key object.");
        ExpectIllegal([&] { table.Contains(nullptr); }, "Invalid value object.");
        ExpectIllegal([&] { table.Remove(nullptr); }, "Invalid key object.");
        EXPECT_EQ(table.GetSize(), 2u);

        table.Clear();
        EXPECT_TRUE(table.IsEmpty());
        EXPECT_EQ(table.GetCapacity(), 101u);
        EXPECT_EQ(CValue::live, 6); // the locals
        table.Put(new CValue(5), new CValue(6));
    }
    EXPECT_EQ(CValue::live, 0);
    {
        CValue k(1), v(2);
        CObjectHashtable borrowed(101, 0.75f, false);
        borrowed.Put(&k, &v);
        borrowed.Put(&k, &v);
        borrowed.Clear();
        borrowed.Put(&k, &v);
    } // a non-owning table deletes nothing
    EXPECT_EQ(CValue::live, 0);
}

TEST(ObjectHashtable, RemoveAlwaysEndsInNoSuchElement) {
    CObjectHashtable table;
    CValue* stored = new CValue(1);
    table.Put(stored, new CValue(10));
    table.Put(new CValue(2), new CValue(20));
    CValue one(1);
    EXPECT_THROW(table.Remove(&one), CNoSuchElementException);
    EXPECT_EQ(table.GetSize(), 1u);
    EXPECT_FALSE(table.ContainsKey(&one));
    EXPECT_EQ(CValue::live, 3);
    EXPECT_THROW(table.Remove(&one), CNoSuchElementException);
    EXPECT_EQ(table.GetSize(), 1u);
    // Removing by the stored key object itself (deleted on the way) is safe.
    CValue* key = new CValue(3, 2 + 101); // same bucket as 2
    table.Put(key, new CValue(30));
    EXPECT_THROW(table.Remove(key), CNoSuchElementException);
    CValue two(2);
    EXPECT_EQ(ValueOf(table.Get(&two)), 20);
    EXPECT_EQ(table.GetSize(), 1u);
}

TEST(ObjectHashtable, CopiesMapKeysToKeyClonesAndAssignmentCopiesValues) {
    {
        CObjectHashtable source(12, 0.5f);
        // Three keys in one bucket (hashes equal modulo 12), then one more.
        source.Put(new CValue(1, 0), new CValue(-1));
        source.Put(new CValue(2, 12), new CValue(-2));
        source.Put(new CValue(3, 24), new CValue(-3));
        source.Put(new CValue(4, 5), new CValue(-4));
        EXPECT_EQ(Keys(source), (std::vector<int>{3, 2, 1, 4}));

        CObjectHashtable copy(source);
        EXPECT_EQ(copy.GetCapacity(), 12u);
        EXPECT_EQ(copy.GetSize(), 4u);
        EXPECT_EQ(CValue::live, 16);
        EXPECT_EQ(Keys(copy), (std::vector<int>{1, 2, 3, 4})); // chains reversed
        CValue key(2, 12);
        CObject* value = copy.Get(&key);
        EXPECT_EQ(ValueOf(value), 2); // a clone of the key, not of the value
        EXPECT_NE(value, source.Get(&key));
        // The copied threshold (6 for 12 * 0.5) still applies.
        copy.Put(new CValue(5, 6), new CValue(0));
        copy.Put(new CValue(6, 7), new CValue(0));
        EXPECT_EQ(copy.GetCapacity(), 12u);
        copy.Put(new CValue(7, 8), new CValue(0));
        EXPECT_EQ(copy.GetCapacity(), 25u);

        CObjectHashtable assigned(200, 0.75f);
        assigned.Put(new CValue(50), new CValue(51));
        assigned = source;
        EXPECT_EQ(assigned.GetCapacity(), 12u);
        EXPECT_EQ(assigned.GetSize(), 4u);
        EXPECT_EQ(ValueOf(assigned.Get(&key)), -2);
        assigned = assigned;
        EXPECT_EQ(assigned.GetSize(), 4u);

        // A key that cannot be cloned fails the copy and leaks nothing.
        CObjectHashtable plain;
        plain.Put(new CValue(8), new CValue(9));
        plain.Put(new CPlain, new CValue(10));
        int const before = CValue::live;
        ExpectIllegal([&] { CObjectHashtable broken(plain); }, "Invalid key object.");
        ExpectIllegal([&] { assigned = plain; }, "Invalid key object.");
        EXPECT_EQ(CValue::live, before);
        EXPECT_EQ(assigned.GetSize(), 4u);
    }
    EXPECT_EQ(CValue::live, 0);
}

TEST(ObjectHashtable, EnumerationsFollowBucketsChainsAndRehashOrder) {
    CObjectHashtable table(12, 0.75f); // threshold 9
    // Hashes 0, 300 and 600 share bucket 0 at capacity 12 and at capacity 25.
    table.Put(new CValue(1, 0), new CValue(-1));
    table.Put(new CValue(2, 300), new CValue(-2));
    table.Put(new CValue(3, 600), new CValue(-3));
    for (int k = 4; k <= 9; ++k)
        table.Put(new CValue(k, k), new CValue(-k));
    EXPECT_EQ(Keys(table), (std::vector<int>{3, 2, 1, 4, 5, 6, 7, 8, 9}));

    CEnumeration<CObject> values = table.GetElements();
    CEnumeration<CObject> shared = values;
    EXPECT_EQ(ValueOf(values.NextElement()), -3);
    EXPECT_EQ(ValueOf(shared.NextElement()), -2); // one enumeration behind both
    shared.Reset();
    EXPECT_EQ(Count(values), 9);
    EXPECT_THROW(values.NextElement(), CNoSuchElementException);

    table.Put(new CValue(10, 10), new CValue(-10)); // rehash to 25 reverses bucket 0
    EXPECT_EQ(table.GetCapacity(), 25u);
    EXPECT_EQ(Keys(table), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));

    // The enumeration reads the live table.
    CEnumeration<CObject> keys = table.GetKeys();
    EXPECT_EQ(ValueOf(keys.NextElement()), 1);
    table.Put(new CValue(11, 11), new CValue(-11));
    EXPECT_EQ(Count(keys), 10);
    CObjectHashtable empty;
    EXPECT_FALSE(empty.GetKeys().HasMoreElements());
    EXPECT_THROW(empty.GetElements().NextElement(), CNoSuchElementException);
}
