// ctest-labels: concurrency
#include <lumo/base/win/Event.h>
#include <lumo/base/win/Mutex.h>
#include <lumo/base/win/SyncObject.h>

#include "support/Concurrency.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

using namespace lumo::base;
using namespace lumo::base::win;
using lumotest::Thrown;
using lumotest::WaitUntil;

namespace {
typedef CSyncObject S;
} // namespace

TEST(SyncObject, ArgumentsAreChecked) {
    CEvent a, b;
    S::Handle const pair[2] = {a.GetHandle(), b.GetHandle()};
    S::Handle const withNull[2] = {a.GetHandle(), nullptr};
    S::Handle const twice[2] = {a.GetHandle(), a.GetHandle()};
    S::Handle many[65];
    for (auto& h : many)
        h = a.GetHandle();

    EXPECT_EQ(Thrown<CIllegalArgumentException>([] { S::WaitForSingleSyncObject(nullptr, 0); }),
              "Invalid wait handle.");
    EXPECT_EQ(
        Thrown<CIllegalArgumentException>([&] { S::WaitForMultipleSyncObject(1, pair, false, 0); }),
        "Invalid wait handle count.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>(
                  [&] { S::WaitForMultipleSyncObject(65, many, false, 0); }),
              "Invalid wait handle count.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>(
                  [&] { S::WaitForMultipleSyncObject(2, nullptr, false, 0); }),
              "Invalid wait handle array.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>(
                  [&] { S::WaitForMultipleSyncObject(2, withNull, true, 0); }),
              "Invalid wait handle.");
    EXPECT_EQ(
        Thrown<CIllegalArgumentException>([&] { S::WaitForMultipleSyncObject(2, twice, true, 0); }),
        "Invalid wait handle array.");
    try {
        S::WaitForSingleSyncObject(nullptr, 0);
    } catch (CIllegalArgumentException const& e) {
        EXPECT_STREQ(e.GetSourceFile(), "lumo/base/win/SyncObject");
    }
    EXPECT_EQ(S::WaitForMultipleSyncObject(2, pair, false, 0), S::Wait_Timeout);
}

TEST(SyncObject, WaitAnyTakesTheLowestSignalledAndWaitAllTakesAllOrNothing) {
    CEvent none, manual(nullptr, true, true), automatic(nullptr, true, false);
    S::Handle const handles[3] = {none.GetHandle(), manual.GetHandle(), automatic.GetHandle()};
    EXPECT_EQ(S::WaitForMultipleSyncObject(3, handles, false, 0), S::Wait_Object_0 + 1);

    // Not all signalled: nothing is taken, the auto-reset event stays set.
    EXPECT_EQ(S::WaitForMultipleSyncObject(3, handles, true, 10), S::Wait_Timeout);
    none.SetEvent();
    EXPECT_EQ(S::WaitForMultipleSyncObject(3, handles, true, 0), S::Wait_Object_0);
    // The auto-reset events were consumed, the manual one was not.
    EXPECT_EQ(S::WaitForSingleSyncObject(none.GetHandle(), 0), S::Wait_Timeout);
    EXPECT_EQ(S::WaitForSingleSyncObject(automatic.GetHandle(), 0), S::Wait_Timeout);
    EXPECT_EQ(S::WaitForSingleSyncObject(manual.GetHandle(), 0), S::Wait_Object_0);
    EXPECT_EQ(S::WaitForMultipleSyncObject(3, handles, false, 0), S::Wait_Object_0 + 1);
}

TEST(SyncObject, TimeoutsWaitAtLeastTheirTime) {
    CEvent e;
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(S::WaitForSingleSyncObject(e.GetHandle(), 30), S::Wait_Timeout);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(29));
    CMutex m;
    S::Handle const pair[2] = {e.GetHandle(), m.GetHandle()};
    std::thread([&] { m.Acquire(); }).join(); // abandoned by a thread that is gone
    EXPECT_EQ(S::WaitForMultipleSyncObject(2, pair, true, 20), S::Wait_Timeout);
    // The failed wait-all took nothing: the abandonment is still there to report.
    EXPECT_EQ(S::WaitForMultipleSyncObject(2, pair, false, 20), S::Wait_Abandoned_0 + 1);
    EXPECT_EQ(S::WaitForSingleSyncObject(m.GetHandle(), 0), S::Wait_Object_0); // recursion
    m.Release();
    m.Release();
}

TEST(SyncObject, AbandonedMutexIsReportedOnceToItsNextOwner) {
    CMutex m;
    std::thread([&] {
        m.Acquire();
        m.Acquire();
    }).join();
    std::thread([&] {
        EXPECT_EQ(S::WaitForSingleSyncObject(m.GetHandle(), 0), S::Wait_Abandoned);
        m.Release();
        EXPECT_EQ(S::WaitForSingleSyncObject(m.GetHandle(), 0), S::Wait_Object_0);
        m.Release();
    }).join();
    EXPECT_TRUE(m.TryAcquire(0));
    m.Release();

    // A waiter blocked on the mutex is handed the abandonment when the owner ends.
    CEvent owned, finish;
    std::thread owner([&] {
        m.Acquire();
        owned.SetEvent();
        finish.Acquire();
    });
    owned.Acquire();
    std::atomic<unsigned long> result{0};
    std::thread waiter([&] {
        result = S::WaitForSingleSyncObject(m.GetHandle(), S::Timeout_Infinite);
        m.Release();
    });
    finish.SetEvent();
    owner.join();
    waiter.join();
    EXPECT_EQ(result.load(), S::Wait_Abandoned);
}

TEST(SyncObject, WaitAllTakesNothingUntilItCanTakeEverything) {
    CMutex first, second;
    CEvent taken, release;
    first.Acquire();
    std::atomic<unsigned long> result{S::Wait_Failed};
    S::Handle const pair[2] = {first.GetHandle(), second.GetHandle()};
    std::thread waiter([&] {
        result = S::WaitForMultipleSyncObject(2, pair, true, S::Timeout_Infinite);
        taken.SetEvent();
        release.Acquire();
        first.Release();
        second.Release();
    });
    // While the waiter waits for `first`, `second` stays free for anybody.
    for (int i = 0; i < 20; ++i) {
        ASSERT_FALSE(taken.TryAcquire(1));
        ASSERT_TRUE(second.TryAcquire(0));
        second.Release();
    }
    first.Release();
    taken.Acquire();
    EXPECT_EQ(result.load(), S::Wait_Object_0);
    std::thread([&] {
        EXPECT_FALSE(first.TryAcquire(0));
        EXPECT_FALSE(second.TryAcquire(0));
    }).join();
    release.SetEvent();
    waiter.join();
    EXPECT_TRUE(first.TryAcquire(0));
    EXPECT_TRUE(second.TryAcquire(0));
    first.Release();
    second.Release();
}

TEST(SyncObject, KernelObjectsAreCountedAndNamesShared) {
    unsigned long const before = S::GetKernelObjectCount();
    {
        CMutex a("lumo-test-sync-name"), b("lumo-test-sync-name"), c;
        CEvent e("lumo-test-sync-event"), f("lumo-test-sync-event");
        EXPECT_EQ(S::GetKernelObjectCount(), before + 3);
        EXPECT_EQ(a.GetHandle(), b.GetHandle());
        EXPECT_NE(a.GetHandle(), c.GetHandle());
        EXPECT_TRUE(a.IsNamed());
        EXPECT_FALSE(c.IsNamed());
        EXPECT_STREQ(a.GetName(), "lumo-test-sync-name");
        EXPECT_EQ(e.GetHandle(), f.GetHandle());
        // One object, so ownership taken through one handle shows through the other.
        a.Acquire();
        std::thread([&] { EXPECT_FALSE(b.TryAcquire(0)); }).join();
        b.Release();
        // A name belongs to one kind of object.
        EXPECT_EQ(Thrown<CMemoryException>([] { CEvent clash("lumo-test-sync-name"); }),
                  "<no description>");
    }
    EXPECT_EQ(S::GetKernelObjectCount(), before);
    // Once its last holder is gone the name is free again, with a new initial state.
    CEvent fresh("lumo-test-sync-event", true);
    EXPECT_TRUE(fresh.TryAcquire(0));
}
