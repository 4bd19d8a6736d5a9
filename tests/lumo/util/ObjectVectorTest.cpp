// Tests of CObjectVector: growth and shrinking in whole increments, access and bad
// arguments, ownership through insert, set, remove and detach, copies, sort, failures.
#include <lumo/util/ObjectVector.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include <vector>

using namespace lumo::base;
using namespace lumo::util;
using namespace lumotest;

namespace {

std::vector<int> Values(CObjectVector const& v) {
    std::vector<int> values;
    for (unsigned long i = 0; i < v.GetSize(); ++i)
        values.push_back(ValueOf(v[i]));
    return values;
}

void Fill(CObjectVector& v, int count) {
    for (int i = 0; i < count; ++i)
        v.AddElement(new CValue(i));
}

IllegalIn const ExpectIllegal{"lumo/util/ObjectVector"};

} // namespace

// The capacity rule of every array-backed container (one shared store): capacities in
// whole increments, growth by one increment, shrinking to the size rounded up but never
// below one increment, TrimToSize exact.
TEST(ObjectVector, GrowsAndShrinksInWholeIncrements) {
    {
        CObjectVector v(5, 4);
        EXPECT_EQ(v.GetCapacity(), 8u);
        Fill(v, 9);
        EXPECT_EQ(v.GetCapacity(), 12u);
        for (int i = 0; i < 5; ++i)
            v.RemoveElementAt(v.GetSize() - 1);
        EXPECT_EQ(v.GetCapacity(), 4u);
        v.RemoveElementAt(0);
        v.TrimToSize();
        EXPECT_EQ(v.GetCapacity(), 3u);
        EXPECT_EQ(Values(v), (std::vector<int>{1, 2, 3}));
        v.EnsureCapacity(5);
        EXPECT_EQ(v.GetCapacity(), 8u);
        v.EnsureCapacity(2);
        EXPECT_EQ(v.GetCapacity(), 8u);
        v.RemoveAllElements();
        EXPECT_EQ(v.GetCapacity(), 4u);
        v.TrimToSize();
        EXPECT_EQ(v.GetCapacity(), 0u);
        v.AddElement(new CValue(7));
        EXPECT_EQ(v.GetCapacity(), 4u);
    }
    EXPECT_EQ(CValue::live, 0);
    ExpectIllegal([] { CObjectVector v(10, 0); }, "Invalid increment.");
}

TEST(ObjectVector, AccessSearchAndBadArguments) {
    CObjectVector v(0, 3);
    EXPECT_THROW(v.GetFirstElement(), CNoSuchElementException);
    EXPECT_THROW(v.GetLastElement(), CNoSuchElementException);
    EXPECT_THROW(v.GetElementAt(0), CArrayIndexOutOfBoundsException);
    v.AddElement(new CValue(5));
    v.AddElement(new CValue(6));
    v.AddElement(new CValue(5));
    EXPECT_EQ(ValueOf(v.GetFirstElement()), 5);
    EXPECT_EQ(ValueOf(v.GetLastElement()), 5);
    ExpectThrowIn<CArrayIndexOutOfBoundsException>("lumo/util/ObjectVector",
                                                   [&] { v.GetElementAt(3); });
    CValue five(5), seven(7);
    EXPECT_EQ(v.GetIndexOf(&five), 0);
    EXPECT_EQ(v.GetLastIndexOf(&five), 2);
    EXPECT_EQ(v.GetIndexOf(&seven), -1);
    EXPECT_EQ(v.GetLastIndexOf(&seven), -1);

    ExpectIllegal([&] { v.AddElement(nullptr); }, "Invalid object.");
    ExpectIllegal([&] { v.InsertElementAt(nullptr, 0); }, "Invalid object.");
    ExpectIllegal([&] { v.SetElementAt(nullptr, 0); }, "Invalid object.");
    ExpectIllegal([&] { v.Contains(nullptr); }, "Invalid object.");
    ExpectIllegal([&] { v.GetIndexOf(nullptr); }, "Invalid object.");
    ExpectIllegal([&] { v.GetLastIndexOf(nullptr); }, "Invalid object.");
    ExpectIllegal([&] { v.RemoveElement(nullptr); }, "Invalid object.");
    ExpectIllegal([&] { v.DetachElement(nullptr); }, "Invalid object.");
    ExpectIllegal([&] { v.Sort(nullptr); }, "Invalid compare function.");
    EXPECT_EQ(v.GetSize(), 3u);
}

TEST(ObjectVector, InsertSetRemoveAndDetachKeepOwnership) {
    {
        CValue absent(99), eleven(11), two(2);
        CObjectVector v(0, 2);
        Fill(v, 3);
        v.InsertElementAt(new CValue(10), 3); // == size appends
        v.InsertElementAt(new CValue(11), 1);
        CValue* stray = new CValue(12);
        EXPECT_THROW(v.InsertElementAt(stray, 6), CArrayIndexOutOfBoundsException);
        delete stray; // still the caller's
        EXPECT_EQ(Values(v), (std::vector<int>{0, 11, 1, 2, 10}));

        int const before = CValue::live;
        v.SetElementAt(new CValue(20), 0);
        EXPECT_EQ(CValue::live, before); // the old element went
        v.SetElementAt(v[0], 0);         // storing an element over itself keeps it
        EXPECT_EQ(ValueOf(v[0]), 20);
        stray = new CValue(13);
        EXPECT_THROW(v.SetElementAt(stray, 5), CArrayIndexOutOfBoundsException);
        delete stray;

        v.RemoveElement(&absent);
        EXPECT_EQ(v.GetSize(), 5u);
        v.RemoveElement(&eleven);
        EXPECT_EQ(CValue::live, before - 1);
        EXPECT_EQ(v.GetIndexOf(&eleven), -1);
        EXPECT_THROW(v.RemoveElementAt(4), CArrayIndexOutOfBoundsException);

        CObject* detached = v.DetachElementAt(0);
        EXPECT_EQ(ValueOf(detached), 20);
        delete detached;
        detached = v.DetachElement(&two);
        ASSERT_NE(detached, nullptr);
        EXPECT_EQ(ValueOf(detached), 2);
        delete detached;
        EXPECT_EQ(v.DetachElement(&absent), nullptr);

        CObject* a = v[0];
        CObject* b = v[1];
        v.DetachAllElements();
        EXPECT_TRUE(v.IsEmpty());
        delete a;
        delete b;
        EXPECT_EQ(CValue::live, 3); // the locals
        Fill(v, 4);
    }
    EXPECT_EQ(CValue::live, 0);
}

TEST(ObjectVector, CopiesCloneAndCompare) {
    {
        CObjectVector a(0, 4);
        Fill(a, 6);
        CObjectVector b(a);
        EXPECT_EQ(b.GetIncrement(), 4u);
        EXPECT_EQ(b.GetCapacity(), 8u);
        EXPECT_EQ(CValue::live, 12);
        EXPECT_NE(a[0], b[0]);
        EXPECT_TRUE(a == b);

        CObjectVector c(0, 2);
        Fill(c, 9);
        EXPECT_EQ(c.GetCapacity(), 10u);
        c = a; // deletes its nine, clones six, compacts to 6
        EXPECT_EQ(CValue::live, 18);
        EXPECT_EQ(c.GetCapacity(), 6u);
        EXPECT_TRUE(c == a);
        c = c;
        EXPECT_EQ(c.GetSize(), 6u);
        c.SetElementAt(new CValue(100), 5);
        EXPECT_TRUE(c != a);
        c.RemoveElementAt(5);
        EXPECT_FALSE(c == a);

        CObjectVector empty(0, 4);
        c = empty;
        EXPECT_EQ(c.GetSize(), 0u);
        EXPECT_EQ(c.GetCapacity(), 2u);
        EXPECT_TRUE(c == empty);

        // A non-cloneable element fails the copy without leaking or changing c.
        Fill(c, 2);
        CObjectVector plain(0, 4);
        plain.AddElement(new CValue(1));
        plain.AddElement(new CPlain);
        int const before = CValue::live;
        ExpectIllegal([&] { c = plain; }, "Invalid object.");
        ExpectIllegal([&] { CObjectVector copy(plain); }, "Invalid object.");
        EXPECT_EQ(CValue::live, before);
        EXPECT_EQ(c.GetSize(), 2u);
    }
    EXPECT_EQ(CValue::live, 0);
}

TEST(ObjectVector, SortAndFailedAllocationLeaveAConsistentVector) {
    CObjectVector v(0, 10);
    for (int x : {5, 3, 9, 1, 7})
        v.AddElement(new CValue(x));
    v.Sort([](void const* a, void const* b) {
        return ValueOf(*static_cast<CObject* const*>(a)) -
               ValueOf(*static_cast<CObject* const*>(b));
    });
    EXPECT_EQ(Values(v), (std::vector<int>{1, 3, 5, 7, 9}));
    EXPECT_THROW(v.EnsureCapacity(0xFFFFFFFFul), CMemoryException); // rounds past 32 bits
    EXPECT_THROW(v.EnsureCapacity(0x100000000ul), CMemoryException);
    EXPECT_THROW(CObjectVector(0xFFFFFFFFul, 10), CMemoryException);
    EXPECT_EQ(Values(v), (std::vector<int>{1, 3, 5, 7, 9})); // nothing changed
    EXPECT_EQ(v.GetCapacity(), 10u);
}
