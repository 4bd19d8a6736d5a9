// Tests of Stack: last-in-first-out order with the containers' capacity rule.
#include <lumo/util/Stack.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include "support/Tracked.h"

using lumo::util::CEmptyStackException;
using lumo::util::Stack;
using lumotest::Tracked;

TEST(Stack, LastInFirstOutWithTheCapacityRule) {
    {
        Stack<Tracked> s(0, 3);
        lumotest::ExpectThrowIn<CEmptyStackException>("lumo/util/Stack", [&] { s.Pop(); });
        EXPECT_THROW(s.Peek(), CEmptyStackException);
        for (int i = 0; i < 7; ++i)
            s.Push(Tracked(i));
        EXPECT_EQ(s.GetCapacity(), 9u);
        EXPECT_EQ(s.Peek().value, 6);
        Stack<Tracked> copy(s);
        EXPECT_EQ(s.Pop().value, 6);
        EXPECT_EQ(s.Pop().value, 5);
        EXPECT_EQ(s.Pop().value, 4);
        EXPECT_EQ(s.GetCapacity(), 6u);
        EXPECT_EQ(s.GetSize(), 4u);
        EXPECT_EQ(Tracked::live, 11);
        s = copy;
        EXPECT_EQ(s.Pop().value, 6);
        s.Clear();
        EXPECT_TRUE(s.IsEmpty());
        EXPECT_EQ(s.GetCapacity(), 3u);
        EXPECT_EQ(copy.Peek().value, 6);
    }
    EXPECT_EQ(Tracked::live, 0);
}
