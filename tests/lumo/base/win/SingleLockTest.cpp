// ctest-labels: concurrency
#include <lumo/base/win/CriticalSection.h>
#include <lumo/base/win/Mutex.h>
#include <lumo/base/win/SingleLock.h>

#include "support/Concurrency.h"

#include <gtest/gtest.h>

#include <thread>

using namespace lumo::base;
using namespace lumo::base::win;

namespace {
bool FreeForOthers(CSyncObject& o) {
    bool free = false;
    std::thread([&] {
        free = o.TryAcquire(0);
        if (free)
            o.Release();
    }).join();
    return free;
}
} // namespace

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
