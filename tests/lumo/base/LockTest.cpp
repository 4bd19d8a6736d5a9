// ctest-labels: concurrency
#include <lumo/base/Exception.h>
#include <lumo/base/LazyLock.h>
#include <lumo/base/Lock.h>
#include <lumo/base/ReentrantLock.h>
#include <lumo/base/SimpleLockManager.h>
#include <lumo/base/SpinLock.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

using namespace lumo::base;

namespace {

// Runs `f` on another thread and returns its result.
template <class F> auto OnOtherThread(F f) -> decltype(f()) {
    decltype(f()) result{};
    std::thread t([&] { result = f(); });
    t.join();
    return result;
}

// Several threads increment a plain counter under the lock; any lost update (or a
// data race under ThreadSanitizer) shows a lock that does not exclude.
void ExpectMutualExclusion(ILockable& lock) {
    int const threads = 4;
    int const rounds = 20000;
    long counter = 0;
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t)
        workers.emplace_back([&] {
            for (int i = 0; i < rounds; ++i) {
                lock.Acquire();
                long seen = counter;
                counter = seen + 1;
                lock.Release();
            }
        });
    for (auto& w : workers)
        w.join();
    EXPECT_EQ(counter, long(threads) * rounds);
}

void ExpectEnterFailure(CSynchronizationException const& e) {
    EXPECT_STREQ(e.GetSourceFile(), "lumo/base/LockImplWin");
    EXPECT_STREQ(e.GetErrorDescription(), "Failed to enter critical section.");
    EXPECT_EQ(e.GetMessage(), nullptr);
}

// Whether another thread can take the lock at once (and gives it back if so).
bool FreeForOthers(ILockable& lock) {
    return OnOtherThread([&] {
        bool const taken = lock.TryAcquire(0);
        if (taken)
            lock.Release();
        return taken;
    });
}

} // namespace

// CLock and CReentrantLock behave alike.
template <class L> class CriticalSectionLock : public ::testing::Test {};
using CriticalSectionLocks = ::testing::Types<CLock, CReentrantLock>;
TYPED_TEST_SUITE(CriticalSectionLock, CriticalSectionLocks);

TYPED_TEST(CriticalSectionLock, TryAcquireOnLockHeldElsewhereFailsAtOnce) {
    TypeParam lock;
    lock.Acquire();
    auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(OnOtherThread([&] { return lock.TryAcquire(1000); }));
    // The timeout is ignored: the attempt returns without waiting for it.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(900));
    lock.Release();
    EXPECT_TRUE(FreeForOthers(lock));
}

TYPED_TEST(CriticalSectionLock, HolderReentersAndReleasesAsOftenAsAcquired) {
    TypeParam lock;
    lock.Acquire();
    lock.Acquire();
    EXPECT_TRUE(lock.TryAcquire(0)); // reentrant TryAcquire too
    lock.Release();
    lock.Release();
    EXPECT_FALSE(FreeForOthers(lock)) << "still held once";
    lock.Release();
    EXPECT_TRUE(FreeForOthers(lock));
}

// What every real lock does: make a second thread wait, and exclude.
template <class L> class AnyLock : public ::testing::Test {};
using AllLocks = ::testing::Types<CLock, CReentrantLock, CSpinLock>;
TYPED_TEST_SUITE(AnyLock, AllLocks);

TYPED_TEST(AnyLock, AcquireWaitsForTheHolderAndExcludes) {
    TypeParam lock;
    std::atomic<bool> released{false};
    lock.Acquire();
    std::thread waiter([&] {
        lock.Acquire();
        EXPECT_TRUE(released.load());
        lock.Release();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    released = true;
    lock.Release();
    waiter.join();
    ExpectMutualExclusion(lock);
    EXPECT_TRUE(FreeForOthers(lock));
}

TEST(Lock, UsedAndDeletedThroughInterface) {
    std::unique_ptr<ILockable> locks[] = {
        std::unique_ptr<ILockable>(new CLock), std::unique_ptr<ILockable>(new CReentrantLock),
        std::unique_ptr<ILockable>(new CSpinLock), std::unique_ptr<ILockable>(new CLazyLock)};
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(locks[i]->TryAcquire(0));
        locks[i]->Release();
    }
    EXPECT_THROW(locks[3]->Acquire(), CSynchronizationException);
}

TEST(SpinLock, WordProtocol) {
    CSpinLock lock;
    EXPECT_EQ(lock.GetState(), 0);
    EXPECT_TRUE(lock.TryAcquire(0));
    EXPECT_EQ(lock.GetState(), 1);
    // Not reentrant: a second attempt fails, from this thread or any other.
    EXPECT_FALSE(lock.TryAcquire(1000));
    EXPECT_FALSE(FreeForOthers(lock));
    lock.Release();
    EXPECT_EQ(lock.GetState(), 0);

    // Released on another thread than the one that took it: the word is all there is.
    lock.Acquire();
    std::thread([&] { lock.Release(); }).join();
    EXPECT_EQ(lock.GetState(), 0);
    EXPECT_TRUE(FreeForOthers(lock));
    EXPECT_EQ(lock.GetState(), 0);
}

TEST(SpinLock, ReleaseWithoutAcquireLeavesItUnobtainable) {
    CSpinLock lock;
    lock.Release(); // a decrement, not a store of 0
    EXPECT_EQ(lock.GetState(), -1);
    EXPECT_FALSE(lock.TryAcquire(0));
    EXPECT_FALSE(FreeForOthers(lock));
    lock.Release();
    EXPECT_EQ(lock.GetState(), -2);
    EXPECT_FALSE(lock.TryAcquire(0));
}

TEST(LazyLock, NeverGetsACriticalSection) {
    CLazyLock lock;
    lock.Release(); // no implementation: nothing happens
    // TryAcquire faults on the original platform; it throws the same exception here.
    for (int attempt = 0; attempt < 4; ++attempt) {
        try {
            if (attempt % 2 == 0)
                lock.Acquire();
            else
                lock.TryAcquire(0);
            ADD_FAILURE() << "attempt " << attempt << " succeeded";
        } catch (CSynchronizationException const& e) {
            ExpectEnterFailure(e);
        }
    }
    lock.Release();
    // The creation guard is left free every time.
    EXPECT_TRUE(OnOtherThread([&] {
        try {
            lock.Acquire();
        } catch (CSynchronizationException const&) {
            return true;
        }
        return false;
    }));
}

TEST(SimpleLockManager, Counts) {
    CSimpleLockManager manager;
    CSimpleLockManager const& constManager = manager;
    EXPECT_EQ(manager.GetManagedHandle(), nullptr);
    EXPECT_EQ(constManager.Unlock(), 0u);
    EXPECT_EQ(constManager.Lock(), 1u);
    EXPECT_EQ(constManager.Lock(), 2u);
    EXPECT_EQ(constManager.Unlock(), 1u);
    EXPECT_EQ(manager.GetLockCount(), 1u);
    EXPECT_EQ(manager.Unlock(), 0u);
    EXPECT_EQ(manager.Unlock(), 0u);
}

TEST(SimpleLockManager, ManagedHandle) {
    char* block = nullptr;
    Vela::BMHandle handle = &block;
    Vela::BMHandle other = reinterpret_cast<Vela::BMHandle>(&handle);

    CSimpleLockManager manager(handle);
    EXPECT_EQ(manager.GetManagedHandle(), handle);
    manager.Lock();
    manager.Lock();

    // The same handle variable changes nothing.
    manager.SetManagedHandle(handle);
    EXPECT_EQ(manager.GetLockCount(), 2u);

    // The manager reads through the caller's variable.
    Vela::BMHandle const saved = handle;
    handle = other;
    EXPECT_EQ(manager.GetManagedHandle(), other);
    handle = saved;

    // Another handle resets the count.
    manager.SetManagedHandle(other);
    EXPECT_EQ(manager.GetManagedHandle(), other);
    EXPECT_EQ(manager.GetLockCount(), 0u);
    EXPECT_EQ(manager.Lock(), 1u);

    EXPECT_EQ(manager.DetachManagedHandle(), other);
    EXPECT_EQ(manager.GetManagedHandle(), nullptr);
    EXPECT_EQ(manager.GetLockCount(), 0u);
    EXPECT_EQ(manager.DetachManagedHandle(), nullptr);
    EXPECT_EQ(other, reinterpret_cast<Vela::BMHandle>(&handle)) << "detaching leaves the variable";
}

TEST(SimpleLockManager, CopiesOutliveTheirSource) {
    Vela::BMHandle handle = reinterpret_cast<Vela::BMHandle>(0x1000);
    auto* unmanaged = new CSimpleLockManager;
    auto* managed = new CSimpleLockManager(handle);
    unmanaged->Lock();
    managed->Lock();
    managed->Lock();
    CSimpleLockManager copyOfUnmanaged(*unmanaged);
    CSimpleLockManager copyOfManaged(*managed);
    CSimpleLockManager assigned;
    assigned = *unmanaged;
    delete unmanaged; // the copies must not refer to its own null handle variable
    delete managed;
    EXPECT_EQ(copyOfUnmanaged.GetManagedHandle(), nullptr);
    EXPECT_EQ(copyOfUnmanaged.GetLockCount(), 1u);
    EXPECT_EQ(assigned.GetManagedHandle(), nullptr);
    EXPECT_EQ(copyOfManaged.GetManagedHandle(), handle);
    EXPECT_EQ(copyOfManaged.GetLockCount(), 2u);
}
