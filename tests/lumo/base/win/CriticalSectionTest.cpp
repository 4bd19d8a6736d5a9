// ctest-labels: concurrency
#include <lumo/base/win/CriticalSection.h>
#include <lumo/base/win/LazyCriticalSection.h>

#include "support/Concurrency.h"

#include <gtest/gtest.h>

#include <thread>

using namespace lumo::base;
using namespace lumo::base::win;
using lumotest::Thrown;

TEST(CriticalSection, ReentrantExclusiveAndNotWaitable) {
    CCriticalSection cs;
    EXPECT_EQ(cs.GetHandle(), nullptr);
    EXPECT_FALSE(cs.IsTimeoutSupported());
    EXPECT_FALSE(cs.IsNamed());
    cs.Acquire();
    EXPECT_TRUE(cs.TryAcquire(0));
    // TryAcquire never waits, whatever the timeout.
    std::thread([&] { EXPECT_FALSE(cs.TryAcquire(CSyncObject::Timeout_Infinite)); }).join();
    cs.Release();
    cs.Release();
    std::thread([&] {
        EXPECT_TRUE(cs.TryAcquire(0));
        cs.Release();
    }).join();
}

TEST(CriticalSection, LazyOneIsNeverCreated) {
    CLazyCriticalSection lazy;
    EXPECT_EQ(lazy.GetHandle(), nullptr);
    lazy.Release(); // nothing to leave
    EXPECT_EQ(Thrown<CSynchronizationException>([&] { lazy.Acquire(); }),
              "Failed to enter critical section.");
    EXPECT_EQ(Thrown<CSynchronizationException>([&] { lazy.TryAcquire(0); }),
              "Failed to enter critical section.");
    try {
        lazy.Acquire();
    } catch (CSynchronizationException const& e) {
        EXPECT_STREQ(e.GetSourceFile(), "lumo/base/win/LazyCriticalSection");
    }
}
