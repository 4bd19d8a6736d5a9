// ctest-labels: concurrency
#include <lumo/base/win/Event.h>

#include "support/Concurrency.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace lumo::base;
using namespace lumo::base::win;
using lumotest::WaitUntil;

TEST(Event, AutoAndManualReset) {
    CEvent automatic;
    EXPECT_TRUE(automatic.IsTimeoutSupported());
    EXPECT_FALSE(automatic.TryAcquire(0));
    automatic.SetEvent();
    automatic.SetEvent(); // no count: still one pass
    EXPECT_TRUE(automatic.TryAcquire(0));
    EXPECT_FALSE(automatic.TryAcquire(5));
    automatic.Release(); // gives nothing back
    EXPECT_FALSE(automatic.TryAcquire(0));

    CEvent manual(nullptr, true, true);
    EXPECT_TRUE(manual.TryAcquire(0));
    manual.Acquire();
    manual.ResetEvent();
    EXPECT_FALSE(manual.TryAcquire(0));
}

TEST(Event, AutoResetLetsOneWaiterThroughPerSet) {
    CEvent e;
    std::atomic<int> through{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i)
        waiters.emplace_back([&] {
            e.Acquire();
            ++through;
        });
    for (int expected = 1; expected <= 3; ++expected) {
        e.SetEvent();
        ASSERT_TRUE(WaitUntil([&] { return through.load() >= expected; }));
        // The pass was consumed by exactly one waiter (none is left for us) ...
        EXPECT_FALSE(e.TryAcquire(0));
        EXPECT_EQ(through.load(), expected);
    }
    for (auto& t : waiters)
        t.join();
}

TEST(Event, ManualResetReleasesEveryWaiter) {
    CEvent e(nullptr, false, true);
    std::vector<std::thread> waiters;
    for (int i = 0; i < 4; ++i)
        waiters.emplace_back([&] { EXPECT_TRUE(e.TryAcquire(CSyncObject::Timeout_Infinite)); });
    e.SetEvent();
    for (auto& t : waiters)
        t.join();
    EXPECT_TRUE(e.TryAcquire(0));
}
