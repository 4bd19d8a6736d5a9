// Tests of Queue: first-in-first-out order across wrap-around, growth and shrinking, and
// values released exactly once.
#include <lumo/util/Queue.h>

#include <lumo/base/Ref.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"
#include "support/Tracked.h"

#include <stdexcept>

using namespace lumo::base;
using namespace lumo::util;
using lumotest::CValue;
using lumotest::Tracked;

TEST(Queue, FirstInFirstOutAcrossWrapAroundGrowthAndShrink) {
    Queue<int> q(2, 2);
    EXPECT_EQ(q.GetCapacity(), 2u);
    q.Enqueue(1);
    q.Enqueue(2);
    EXPECT_EQ(q.Dequeue(), 1);
    q.Enqueue(3); // wraps to the first slot
    EXPECT_EQ(q.GetCapacity(), 2u);
    q.Enqueue(4); // grows, keeping the order
    EXPECT_EQ(q.GetCapacity(), 4u);
    Queue<int> copy(q);
    EXPECT_EQ(q.Peek(), 2);
    for (int expected = 2; expected <= 4; ++expected)
        EXPECT_EQ(q.Dequeue(), expected);
    EXPECT_EQ(q.GetCapacity(), 2u);
    lumotest::ExpectThrowIn<CEmptyQueueException>("lumo/util/Queue", [&] { q.Dequeue(); });
    EXPECT_THROW(q.Peek(), CEmptyQueueException);
    EXPECT_EQ(copy.GetSize(), 3u);
    q = copy;
    EXPECT_EQ(q.Dequeue(), 2);

    Queue<int> big(0, 4);
    EXPECT_EQ(big.GetCapacity(), 0u);
    for (int i = 0; i < 10; ++i)
        big.Enqueue(i);
    EXPECT_EQ(big.GetCapacity(), 12u);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(big.Dequeue(), i);
    EXPECT_EQ(big.GetCapacity(), 4u);
    for (int i = 10; i < 13; ++i)
        big.Enqueue(i);
    for (int i = 6; i < 13; ++i)
        EXPECT_EQ(big.Dequeue(), i);
    big.Enqueue(1);
    big.Clear();
    EXPECT_TRUE(big.IsEmpty());
    EXPECT_THROW((Queue<int>(2, 0)), CIllegalArgumentException);
}

TEST(Queue, ValuesAreReleasedExactlyOnce) {
    {
        Queue<CRef<CValue>> tokens(2, 2);
        for (int i = 0; i < 5; ++i)
            tokens.Enqueue(CRef<CValue>(new CValue(i)));
        EXPECT_EQ(lumotest::ValueOf(tokens.Dequeue().Get()), 0);
        EXPECT_EQ(CValue::live, 4);
        Queue<CRef<CValue>> shared = tokens;
        EXPECT_EQ(CValue::live, 4);
        tokens.Clear();
        EXPECT_EQ(CValue::live, 4);
        shared.Dequeue();
        EXPECT_EQ(CValue::live, 3);
    }
    EXPECT_EQ(CValue::live, 0);
    {
        Queue<Tracked> q(2, 2);
        q.Enqueue(Tracked(1));
        q.Enqueue(Tracked(2));
        Tracked::copiesUntilFailure = 1; // the growth copy fails
        EXPECT_THROW(q.Enqueue(Tracked(3)), std::runtime_error);
        Tracked::copiesUntilFailure = -1;
        EXPECT_EQ(q.GetSize(), 2u);
        EXPECT_EQ(q.GetCapacity(), 2u);
        EXPECT_EQ(q.Dequeue().value, 1);
        EXPECT_EQ(Tracked::live, 1);
    }
    EXPECT_EQ(Tracked::live, 0);
}
