// Tests of Vector: the capacity rule and element operations, and elements living exactly
// as long as their slots.
#include <lumo/util/Vector.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include "support/Tracked.h"

#include <stdexcept>
#include <vector>

using namespace lumo::base;
using namespace lumo::util;
using lumotest::Tracked;

namespace {

template <class T> std::vector<int> Values(Vector<T> const& v) {
    std::vector<int> values;
    for (unsigned long i = 0; i < v.GetSize(); ++i)
        values.push_back(static_cast<int>(v[i]));
    return values;
}

std::vector<int> Values(Vector<Tracked> const& v) {
    std::vector<int> values;
    for (unsigned long i = 0; i < v.GetSize(); ++i)
        values.push_back(v[i].value);
    return values;
}

} // namespace

TEST(Vector, CapacityRuleAndElementOperations) {
    Vector<int> v(0, 4);
    EXPECT_EQ(v.GetCapacity(), 0u);
    for (int i = 0; i < 9; ++i)
        v.AddElement(i);
    EXPECT_EQ(v.GetCapacity(), 12u);
    v.InsertElementAt(100, 0);
    v.InsertElementAt(101, 10); // == size appends
    EXPECT_THROW(v.InsertElementAt(1, 12), CArrayIndexOutOfBoundsException);
    EXPECT_EQ(Values(v), (std::vector<int>{100, 0, 1, 2, 3, 4, 5, 6, 7, 8, 101}));
    v.SetElementAt(50, 1);
    EXPECT_THROW(v.SetElementAt(1, 11), CArrayIndexOutOfBoundsException);
    v.AddElement(50);
    EXPECT_EQ(v.GetIndexOf(50), 1);
    EXPECT_EQ(v.GetLastIndexOf(50), 11);
    EXPECT_EQ(v.GetIndexOf(9), -1);
    v.RemoveElement(9); // absent: nothing
    v.RemoveElement(50);
    EXPECT_EQ(v.GetFirstElement(), 100);
    EXPECT_EQ(v.GetLastElement(), 50);
    while (v.GetSize() > 4)
        v.RemoveElementAt(0);
    EXPECT_EQ(v.GetCapacity(), 4u);
    EXPECT_EQ(Values(v), (std::vector<int>{7, 8, 101, 50}));
    v.RemoveElementAt(3);
    v.TrimToSize();
    EXPECT_EQ(v.GetCapacity(), 3u);
    EXPECT_THROW(v.GetElementAt(3), CArrayIndexOutOfBoundsException);
    lumotest::ExpectThrowIn<CArrayIndexOutOfBoundsException>("lumo/util/Vector",
                                                             [&] { v.RemoveElementAt(3); });
    v.RemoveAllElements();
    EXPECT_EQ(v.GetCapacity(), 3u); // below one increment already: kept
    EXPECT_THROW(v.GetFirstElement(), CNoSuchElementException);
    EXPECT_THROW(v.GetLastElement(), CNoSuchElementException);
    v.TrimToSize();
    EXPECT_EQ(v.GetCapacity(), 0u);
    EXPECT_THROW(v.EnsureCapacity(0xFFFFFFFFul), CMemoryException);
    EXPECT_EQ(v.GetCapacity(), 0u);
    EXPECT_THROW((Vector<int>(1, 0)), CIllegalArgumentException);
}

TEST(Vector, ElementsLiveExactlyAsLongAsTheirSlots) {
    {
        Vector<Tracked> v(2, 2);
        for (int i = 0; i < 5; ++i)
            v.AddElement(Tracked(i));
        EXPECT_EQ(Tracked::live, 5);
        v.AddElement(v[0]); // an own element, while the buffer moves
        v.InsertElementAt(v[5], 2);
        EXPECT_EQ(Values(v), (std::vector<int>{0, 1, 0, 2, 3, 4, 0}));
        v.RemoveElementAt(1);
        v.RemoveElement(Tracked(3));
        EXPECT_EQ(Tracked::live, 5);

        Vector<Tracked> copy(v);
        EXPECT_TRUE(copy == v);
        copy.SetElementAt(Tracked(9), 0);
        EXPECT_TRUE(copy != v);
        Vector<Tracked> assigned(0, 3);
        assigned.AddElement(Tracked(1));
        assigned = v;
        EXPECT_EQ(Values(assigned), Values(v));
        EXPECT_EQ(Tracked::live, 15);

        // A failing element copy leaves the vector as it was.
        unsigned long const capacity = v.GetCapacity();
        Tracked::copiesUntilFailure = 2;
        EXPECT_THROW(assigned = copy, std::runtime_error);
        Tracked::copiesUntilFailure = 0;
        EXPECT_THROW(v.AddElement(Tracked(7)), std::runtime_error);
        Tracked::copiesUntilFailure = -1;
        EXPECT_EQ(Values(assigned), Values(v));
        EXPECT_EQ(v.GetCapacity(), capacity);
        EXPECT_EQ(Tracked::live, 15);

        CEnumeration<Tracked> e = v.GetElements();
        std::vector<int> seen;
        while (e.HasMoreElements())
            seen.push_back(e.NextElement()->value);
        EXPECT_EQ(seen, Values(v));
        EXPECT_THROW(e.NextElement(), CNoSuchElementException);
    }
    EXPECT_EQ(Tracked::live, 0);
}
