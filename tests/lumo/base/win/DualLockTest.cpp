// ctest-labels: concurrency
#include <lumo/base/win/CriticalSection.h>
#include <lumo/base/win/DualLock.h>
#include <lumo/base/win/Event.h>
#include <lumo/base/win/Mutex.h>

#include "support/Concurrency.h"

#include <gtest/gtest.h>

#include <thread>

using namespace lumo::base;
using namespace lumo::base::win;
using lumotest::Thrown;

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
        std::thread([&] { EXPECT_FALSE(m.TryAcquire(0)); }).join();
        m.Release();
    }
    std::thread([&] {
        EXPECT_TRUE(m.TryAcquire(0));
        m.Release();
    }).join();
}
