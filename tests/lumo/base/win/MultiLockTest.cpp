// Tests of the lock objects over waitable objects: CSingleLock, CDualLock and
// CMultiLock, their argument checks, what they record as locked, and wait-all under
// contention.
// ctest-labels: concurrency
#include <lumo/base/win/CriticalSection.h>
#include <lumo/base/win/DualLock.h>
#include <lumo/base/win/Event.h>
#include <lumo/base/win/MultiLock.h>
#include <lumo/base/win/Mutex.h>
#include <lumo/base/win/SingleLock.h>

#include "support/Concurrency.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <thread>
#include <vector>

using namespace lumo::base;
using namespace lumo::base::win;
using lumotest::FreeForOthers;
using lumotest::Thrown;

TEST(SingleLock, LocksOnceAndUnlocksOnce) {
    EXPECT_EQ(lumotest::Thrown<CIllegalArgumentException>([] { CSingleLock l(nullptr); }),
              "Invalid sync object.");
    CMutex m;
    m.Acquire();
    {
        CSingleLock lock(&m, true);
        EXPECT_TRUE(lock.IsLocked());
        lock.Unlock();
        lock.Unlock(); // the second does nothing
        EXPECT_FALSE(lock.IsLocked());
        EXPECT_FALSE(FreeForOthers(m)); // our own Acquire still holds it
        EXPECT_TRUE(lock.Lock(0));
    } // the destructor unlocks
    m.Release();
    EXPECT_TRUE(FreeForOthers(m));

    CCriticalSection cs;
    CSingleLock lock(&cs);
    EXPECT_FALSE(lock.IsLocked());
    lock.Lock();
    std::thread([&] {
        CSingleLock other(&cs);
        EXPECT_FALSE(other.Lock(100));
        EXPECT_FALSE(other.IsLocked());
    }).join();
}

TEST(DualLock, RejectsMissingAndUnwaitableObjects) {
    CMutex m;
    CCriticalSection cs;
    EXPECT_EQ(Thrown<CIllegalArgumentException>([&] { CDualLock l(nullptr, &m); }),
              "Sync object 1 is invalid.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([&] { CDualLock l(&cs, &m); }),
              "Sync object 1 is not waitable.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([&] { CDualLock l(&m, nullptr); }),
              "Sync object 2 is invalid.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([&] { CDualLock l(&m, &cs); }),
              "Sync object 2 is not waitable.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([&] { CDualLock l(&m, &m, true); }),
              "Invalid wait handle array.");
}

TEST(DualLock, LocksEitherOrBoth) {
    CEvent e;
    CMutex m;
    {
        CDualLock lock(&e, &m, true); // wait-any: the free mutex
        EXPECT_FALSE(lock.IsLocked(0));
        EXPECT_TRUE(lock.IsLocked(1));
        EXPECT_EQ(Thrown<CArrayIndexOutOfBoundsException>([&] { lock.IsLocked(2); }),
                  "<no description>");
        EXPECT_EQ(lock.Lock(true, 0), CSyncObject::Wait_Timeout);
        e.SetEvent();
        EXPECT_EQ(lock.Lock(true, CSyncObject::Timeout_Infinite), CSyncObject::Wait_Object_0);
        EXPECT_TRUE(lock.IsLocked(0));
        lock.Unlock();
        EXPECT_FALSE(lock.IsLocked(0));
        EXPECT_FALSE(lock.IsLocked(1));
        // The mutex was taken twice (recursion) and released once by Unlock.
        EXPECT_FALSE(FreeForOthers(m));
        m.Release();
    }
    EXPECT_TRUE(FreeForOthers(m));
}

TEST(MultiLock, ArgumentsAreChecked) {
    CMutex a, b;
    CCriticalSection cs;
    CSyncObject* const pair[2] = {&a, &b};
    CSyncObject* const withNull[2] = {&a, nullptr};
    CSyncObject* const withSection[2] = {&a, &cs};
    EXPECT_EQ(Thrown<CIllegalArgumentException>([&] { CMultiLock l(0, pair); }),
              "Invalid sync object count.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([&] { CMultiLock l(65, pair); }),
              "Invalid sync object count.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([&] { CMultiLock l(2, nullptr); }),
              "Invalid sync object array.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([&] { CMultiLock l(2, withNull); }),
              "Invalid sync object.");
    // Accepted, but one object or an unwaitable one cannot be waited for.
    CMultiLock single(1, pair);
    EXPECT_EQ(Thrown<CIllegalArgumentException>([&] { single.Lock(true, 0); }),
              "Invalid wait handle count.");
    CMultiLock mixed(2, withSection);
    EXPECT_EQ(Thrown<CIllegalArgumentException>([&] { mixed.Lock(false, 0); }),
              "Invalid wait handle.");
    EXPECT_EQ(Thrown<CArrayIndexOutOfBoundsException>([&] { mixed.IsLocked(2); }),
              "<no description>");
}

TEST(MultiLock, RecordsOnlySuccessfulWaits) {
    CEvent e1, e2;
    CSyncObject* const events[2] = {&e1, &e2};
    CMultiLock lock(2, events);
    EXPECT_EQ(lock.Lock(false, 0), CSyncObject::Wait_Timeout);
    EXPECT_FALSE(lock.IsLocked(0));
    EXPECT_FALSE(lock.IsLocked(1));
    e2.SetEvent();
    EXPECT_EQ(lock.Lock(false, 0), CSyncObject::Wait_Object_0 + 1);
    EXPECT_FALSE(lock.IsLocked(0));
    EXPECT_TRUE(lock.IsLocked(1));
    lock.Unlock();
    EXPECT_FALSE(lock.IsLocked(1));

    // An abandoned result takes the mutexes but records nothing (defined behaviour).
    CMutex m1, m2;
    std::thread([&] { m2.Acquire(); }).join();
    CSyncObject* const mutexes[2] = {&m1, &m2};
    {
        CMultiLock abandoned(2, mutexes);
        EXPECT_EQ(abandoned.Lock(true, 0), CSyncObject::Wait_Abandoned_0 + 1);
        EXPECT_FALSE(abandoned.IsLocked(0));
        EXPECT_FALSE(abandoned.IsLocked(1));
    }
    std::thread([&] { EXPECT_FALSE(m1.TryAcquire(0) || m2.TryAcquire(0)); }).join();
    m1.Release();
    m2.Release();
    CMultiLock all(2, mutexes);
    EXPECT_EQ(all.Lock(true, 0), CSyncObject::Wait_Object_0);
    EXPECT_TRUE(all.IsLocked(0) && all.IsLocked(1));
}

// Threads lock random sets of mutexes with wait-all. Taking them one by one in
// random order would deadlock; the all-or-nothing wait must not, and every set must
// be held exclusively.
TEST(MultiLock, StressWaitAllOnOverlappingMutexes) {
    constexpr int kMutexes = 6, kThreads = 4, kRounds = 1500;
    CMutex mutexes[kMutexes];
    std::atomic<int> holders[kMutexes] = {};
    long perMutex[kMutexes] = {}; // plain counters, guarded by their mutex
    std::atomic<int> violations{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            std::mt19937 random(t + 1);
            for (int round = 0; round < kRounds; ++round) {
                int picks[kMutexes] = {0, 1, 2, 3, 4, 5}; // two or three distinct ones
                std::shuffle(picks, picks + kMutexes, random);
                int const n = 2 + static_cast<int>(random() % 2);
                CSyncObject* objects[3];
                for (int i = 0; i < n; ++i)
                    objects[i] = &mutexes[picks[i]];
                CMultiLock lock(static_cast<unsigned long>(n), objects);
                unsigned long const timeout = round % 3 == 0 ? 1 : CSyncObject::Timeout_Infinite;
                unsigned long const r = lock.Lock(true, timeout);
                if (r == CSyncObject::Wait_Timeout) {
                    for (int i = 0; i < n; ++i)
                        if (lock.IsLocked(static_cast<unsigned long>(i)))
                            ++violations;
                    continue;
                }
                if (r != CSyncObject::Wait_Object_0) {
                    ++violations;
                    continue;
                }
                for (int i = 0; i < n; ++i) {
                    if (holders[picks[i]].fetch_add(1) != 0)
                        ++violations;
                    ++perMutex[picks[i]];
                }
                for (int i = 0; i < n; ++i)
                    holders[picks[i]].fetch_sub(1);
            } // the lock's destructor releases the set
        });
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(violations.load(), 0);
    long total = 0;
    for (long c : perMutex)
        total += c;
    EXPECT_GT(total, 0);
    for (auto& m : mutexes) {
        EXPECT_TRUE(m.TryAcquire(0)); // none left owned
        m.Release();
    }
}
