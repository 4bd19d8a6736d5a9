// Tests of the waitable objects (critical sections, events, mutexes) and of the waits
// on them: argument checks, wait-any and wait-all, time-outs, abandonment, named and
// counted kernel objects.
// ctest-labels: concurrency
#include <lumo/base/win/CriticalSection.h>
#include <lumo/base/win/Event.h>
#include <lumo/base/win/LazyCriticalSection.h>
#include <lumo/base/win/Mutex.h>
#include <lumo/base/win/SyncObject.h>
#include <lumo/base/win/WinSystemErrorException.h>

#include "support/Concurrency.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

using namespace lumo::base;
using namespace lumo::base::win;
using lumotest::FreeForOthers;
using lumotest::Thrown;
using lumotest::WaitUntil;

typedef CSyncObject S;

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
        EXPECT_FALSE(FreeForOthers(b));
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
    EXPECT_TRUE(FreeForOthers(cs));
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

TEST(Mutex, RecursionOwnershipAndReleaseErrors) {
    CMutex m;
    EXPECT_TRUE(m.IsTimeoutSupported());
    EXPECT_STREQ(m.GetClass()->GetQualifiedName(), "lumo::base::win::CMutex");
    EXPECT_TRUE(m.IsInstanceOf(&CSyncObject::m_classCSyncObject));
    m.Acquire();
    EXPECT_TRUE(m.TryAcquire(0));
    std::thread([&] {
        EXPECT_FALSE(m.TryAcquire(0));
        EXPECT_FALSE(m.TryAcquire(15));
        // Only the owner may release.
        try {
            m.Release();
            ADD_FAILURE() << "a thread that does not own the mutex released it";
        } catch (CWinSystemErrorException const& e) {
            EXPECT_STREQ(e.GetErrorDescription(), "Failed to release the underlying mutex object.");
            EXPECT_EQ(e.GetErrorCode(), static_cast<unsigned long>(EPERM));
            EXPECT_STREQ(e.GetMessage(), std::strerror(EPERM));
            EXPECT_STREQ(e.GetSourceFile(), "lumo/base/win/Mutex");
        }
    }).join();
    m.Release();
    EXPECT_FALSE(FreeForOthers(m)); // still held once
    m.Release();
    EXPECT_TRUE(FreeForOthers(m));
    EXPECT_EQ(lumotest::Thrown<CWinSystemErrorException>([&] { m.Release(); }),
              "Failed to release the underlying mutex object.");
}

TEST(Mutex, InitialOwnerAndNamedOpening) {
    CMutex owned(nullptr, true);
    EXPECT_FALSE(FreeForOthers(owned));
    owned.Release();
    EXPECT_TRUE(FreeForOthers(owned));

    CMutex first("lumo-test-mutex");
    std::thread([&] {
        // Opening the existing mutex ignores initialOwner.
        CMutex second("lumo-test-mutex", true);
        EXPECT_TRUE(second.TryAcquire(0));
        second.Release();
    }).join();
}

TEST(Mutex, StressExcludesUnderContention) {
    CMutex m;
    long counter = 0; // plain: the mutex alone must order the increments
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 5000; ++i) {
                if (i % 2 == 0)
                    m.Acquire();
                else
                    while (!m.TryAcquire(1)) {
                    }
                ++counter;
                m.Release();
            }
        });
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(counter, 20000);
}
