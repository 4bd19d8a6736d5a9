// ctest-labels: concurrency
#include <lumo/base/Condition.h>
#include <lumo/base/Lock.h>

#include "support/Concurrency.h"

#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

using namespace lumo::base;
using lumotest::WaitUntil;

namespace {

constexpr unsigned long kInfinite = 0xFFFFFFFFul;

detail::CConditionCounters Counters(CCondition const& c) {
    return detail::GetConditionCounters(c);
}

// A waiter that records each return of Wait() under the lock.
struct Waiters {
    CLock lock;
    CCondition condition{lock};
    int woken = 0; // guarded by lock
    std::vector<std::thread> threads;

    void Add() {
        threads.emplace_back([this] {
            lock.Acquire();
            condition.Wait();
            ++woken;
            lock.Release();
        });
    }
    int Woken() {
        lock.Acquire();
        int const n = woken;
        lock.Release();
        return n;
    }
    bool BlockedAre(unsigned long n) {
        return WaitUntil([&] {
            auto c = Counters(condition);
            return c.blocked == n && c.waiting == 0;
        });
    }
    ~Waiters() {
        for (auto& t : threads)
            t.join();
    }
};

// An ILockable_ of the test's own.
class CStdLock : public ILockable_ {
public:
    void Acquire() override { m_mutex.lock(); }
    bool TryAcquire(unsigned long) override { return m_mutex.try_lock(); }
    void Release() override { m_mutex.unlock(); }

private:
    std::recursive_mutex m_mutex;
};

} // namespace

TEST(Condition, LostNotificationAndTimedWait) {
    CStdLock lock;
    CCondition condition(lock);
    lock.Acquire();
    condition.Notify(); // nobody waits: lost
    condition.NotifyAll();
    EXPECT_FALSE(condition.Wait(10));
    // The lock is held again after the wait.
    std::thread([&] { EXPECT_FALSE(lock.TryAcquire(0)); }).join();
    lock.Release();
    auto c = Counters(condition);
    EXPECT_EQ(c.blocked, 1u); // the timed-out waiter stays counted until corrected
    EXPECT_EQ(c.gone, 1u);
}

TEST(Condition, NotifyWakesOneAndNotifyAllOnlyTheCurrentWaiters) {
    Waiters w;
    for (int i = 0; i < 3; ++i)
        w.Add();
    ASSERT_TRUE(w.BlockedAre(3));
    w.condition.Notify();
    ASSERT_TRUE(WaitUntil([&] { return w.Woken() == 1; }));
    ASSERT_TRUE(w.BlockedAre(2)); // the other two keep waiting
    EXPECT_EQ(w.Woken(), 1);

    w.Add();
    ASSERT_TRUE(w.BlockedAre(3));
    w.lock.Acquire();
    w.condition.NotifyAll();
    w.Add(); // starts waiting while the three signals are being consumed
    w.lock.Release();
    ASSERT_TRUE(WaitUntil([&] { return w.Woken() == 4; }));
    ASSERT_TRUE(w.BlockedAre(1)); // the late waiter was not woken by that NotifyAll
    EXPECT_EQ(w.Woken(), 4);
    w.condition.Notify();
    ASSERT_TRUE(WaitUntil([&] { return w.Woken() == 5; }));
}

TEST(Condition, TimedOutWaitersAreNormalisedAndNotificationsStillWork) {
    unsigned long const previous = detail::SetConditionGoneLimit(4);
    Waiters w;
    w.lock.Acquire();
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(w.condition.Wait(0));
    w.lock.Release();
    auto c = Counters(w.condition);
    EXPECT_EQ(c.blocked, 3u);
    EXPECT_EQ(c.gone, 3u);

    // A real waiter: the notification corrects the counters and reaches it.
    w.Add();
    ASSERT_TRUE(w.BlockedAre(4));
    w.condition.Notify();
    ASSERT_TRUE(WaitUntil([&] { return w.Woken() == 1; }));
    c = Counters(w.condition);
    EXPECT_EQ(c.blocked, 0u);
    EXPECT_EQ(c.gone, 0u);

    // Four time-outs without a notification reach the limit and normalise.
    w.lock.Acquire();
    for (int i = 0; i < 4; ++i)
        EXPECT_FALSE(w.condition.Wait(1));
    w.lock.Release();
    c = Counters(w.condition);
    EXPECT_EQ(c.blocked, 0u);
    EXPECT_EQ(c.gone, 0u);
    w.Add();
    w.Add();
    ASSERT_TRUE(w.BlockedAre(2));
    w.condition.NotifyAll();
    ASSERT_TRUE(WaitUntil([&] { return w.Woken() == 3; }));
    detail::SetConditionGoneLimit(previous);
}

// Producers notify once per item; consumers wait while the queue is empty. Every
// item is consumed once, and no more waits end woken than signals were given.
TEST(Condition, StressProducersAndConsumersWithNotify) {
    constexpr int kProducers = 3, kConsumers = 3, kItems = 3000;
    CLock lock;
    CCondition condition(lock);
    std::deque<int> queue;
    long long consumedSum = 0;
    int consumed = 0, notifies = 0, woken = 0, notifyAlls = 0;
    bool done = false;
    std::vector<std::thread> threads;
    for (int c = 0; c < kConsumers; ++c)
        threads.emplace_back([&] {
            lock.Acquire();
            for (;;) {
                while (queue.empty() && !done)
                    if (condition.Wait(kInfinite))
                        ++woken;
                if (queue.empty())
                    break;
                consumedSum += queue.front();
                queue.pop_front();
                ++consumed;
            }
            lock.Release();
        });
    for (int p = 0; p < kProducers; ++p)
        threads.emplace_back([&, p] {
            for (int i = 0; i < kItems; ++i) {
                lock.Acquire();
                queue.push_back(p * kItems + i);
                ++notifies;
                condition.Notify();
                lock.Release();
            }
        });
    int const total = kProducers * kItems;
    ASSERT_TRUE(WaitUntil([&] {
        lock.Acquire();
        bool const all = consumed == total;
        lock.Release();
        return all;
    }));
    lock.Acquire();
    done = true;
    ++notifyAlls;
    condition.NotifyAll();
    lock.Release();
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(consumedSum, static_cast<long long>(total) * (total - 1) / 2);
    EXPECT_LE(woken, notifies + kConsumers * notifyAlls);
}

// Rounds of NotifyAll: each must reach every waiter (a lost wake-up hangs the round).
TEST(Condition, StressNotifyAllGenerations) {
    constexpr int kWaiters = 4, kRounds = 300;
    CLock lock;
    CCondition condition(lock);
    int generation = 0, arrived = 0, wokenTrue = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < kWaiters; ++i)
        threads.emplace_back([&] {
            lock.Acquire();
            for (int seen = 0; seen < kRounds; ++seen) {
                ++arrived;
                while (generation == seen)
                    if (condition.Wait(kInfinite))
                        ++wokenTrue;
            }
            lock.Release();
        });
    for (int round = 0; round < kRounds; ++round) {
        ASSERT_TRUE(WaitUntil([&] {
            lock.Acquire();
            bool const all = arrived == kWaiters * (round + 1) &&
                             Counters(condition).blocked == static_cast<unsigned long>(kWaiters);
            lock.Release();
            return all;
        })) << "round "
            << round;
        lock.Acquire();
        ++generation;
        condition.NotifyAll();
        lock.Release();
    }
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(wokenTrue, kWaiters * kRounds); // exactly one wake per waiter per round
}
