// ctest-labels: concurrency
#include <lumo/base/Runnable.h>
#include <lumo/base/Thread.h>
#include <lumo/base/ThreadLocal.h>
#include <lumo/base/win/Mutex.h>
#include <lumo/base/win/WinSystemErrorException.h>
#include <lumo/base/win/WinThreadLocalImpl.h>

#include "support/Concurrency.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/resource.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <thread>
#include <vector>

using namespace lumo::base;
using lumo::base::win::CSyncObject;
using lumo::base::win::CWinSystemErrorException;
using lumotest::Thrown;
using lumotest::WaitUntil;

namespace {

// A thread whose body is a function; it reaches the protected parts for it.
class CTestThread : public CThread {
public:
    explicit CTestThread(std::function<void(CTestThread&)> body) : m_body(std::move(body)) {}
    ~CTestThread() override {
        if (destroyed != nullptr)
            *destroyed = std::this_thread::get_id();
    }
    void Run() override { m_body(*this); }
    using CThread::Exit;
    using CThread::IsStopped;
    using CThread::Wait;
    std::atomic<std::thread::id>* destroyed = nullptr;

private:
    std::function<void(CTestThread&)> m_body;
};

int TaskCount() {
    int n = 0;
    if (DIR* d = opendir("/proc/self/task")) {
        while (dirent* e = readdir(d))
            n += e->d_name[0] != '.';
        closedir(d);
    }
    return n;
}

int OwnNice() {
    errno = 0;
    return getpriority(PRIO_PROCESS, 0);
}

} // namespace

TEST(Thread, LifecycleAndCurrentThread) {
    EXPECT_EQ(CThread::GetCurrentThread(), nullptr);
    CThread* seen = nullptr;
    CTestThread t([&](CTestThread&) { seen = CThread::GetCurrentThread(); });
    EXPECT_FALSE(t.IsAlive());
    EXPECT_EQ(t.GetPriority(), 0);
    for (auto call : std::vector<std::function<void()>>{[&] { t.Join(0); }, [&] { t.Join(); },
                                                        [&] { t.Destroy(); }})
        EXPECT_EQ(Thrown<CIllegalStateException>(call), "Thread hasn't been started yet.");
    t.Start();
    EXPECT_TRUE(t.Join(20000));
    EXPECT_FALSE(t.IsAlive());
    EXPECT_EQ(seen, &t);
    EXPECT_TRUE(t.Join(0)); // an ended thread joins at once
    t.Join();
    t.Destroy(); // nothing left to end
    EXPECT_EQ(Thrown<CIllegalStateException>([&] { t.Start(); }),
              "Thread has already been started.");
    CTestThread other([](CTestThread&) {});
    EXPECT_TRUE(t == t);
    EXPECT_TRUE(t != other);
    EXPECT_STREQ(t.GetClass()->GetQualifiedName(), "lumo::base::CThread");
}

TEST(Thread, PriorityIsStoredAppliedAndChecked) {
    if (OwnNice() > 5)
        GTEST_SKIP() << "Below_Normal (nice 5) would raise this process's priority";
    std::atomic<int> niceAtStart{-100};
    CTestThread t([&](CTestThread& self) {
        niceAtStart = OwnNice();
        self.Wait(0xFFFFFFFF);
    });
    t.SetPriority(CThread::Priority_Below_Normal);
    EXPECT_EQ(t.GetPriority(), CThread::Priority_Below_Normal);
    t.Start();
    ASSERT_TRUE(WaitUntil([&] { return niceAtStart != -100; }));
    EXPECT_EQ(niceAtStart.load(), 5);
    EXPECT_EQ(t.GetPriority(), CThread::Priority_Below_Normal);
    t.SetPriority(CThread::Priority_Idle);
    EXPECT_EQ(t.GetPriority(), CThread::Priority_Idle);
    try {
        t.SetPriority(7);
        ADD_FAILURE() << "level 7 accepted";
    } catch (CWinSystemErrorException const& e) {
        EXPECT_STREQ(e.GetErrorDescription(), "Failed to set the priority of the thread.");
        EXPECT_EQ(e.GetErrorCode(), static_cast<unsigned long>(EINVAL));
    }
    t.Stop();
    t.Join();

    // A level that cannot be applied at the start is reported; the thread runs anyway.
    std::atomic<bool> ran{false};
    CTestThread bad([&](CTestThread&) { ran = true; });
    bad.SetPriority(7);
    EXPECT_EQ(Thrown<CWinSystemErrorException>([&] { bad.Start(); }),
              "Failed to set the initial priority of the thread.");
    bad.Join();
    EXPECT_TRUE(ran.load());
}

TEST(Thread, StopWaitExitAndDestroy) {
    std::atomic<int> wakes{0};
    CTestThread sleeper([&](CTestThread& self) {
        while (!self.Wait(60000))
            ;
        wakes += self.IsStopped();
        EXPECT_TRUE(self.Wait(60000)); // a stop is remembered by the flag
    });
    sleeper.Start();
    sleeper.Stop();
    EXPECT_TRUE(sleeper.Join(20000));
    EXPECT_EQ(wakes.load(), 1);

    // Exit unwinds the body and ends the thread.
    std::atomic<bool> unwound{false}, after{false};
    CTestThread exiting([&](CTestThread& self) {
        struct Guard {
            std::atomic<bool>& flag;
            ~Guard() { flag = true; }
        } guard{unwound};
        self.Exit(3);
        after = true;
    });
    exiting.Start();
    EXPECT_TRUE(exiting.Join(20000));
    EXPECT_TRUE(unwound.load());
    EXPECT_FALSE(after.load());

    // A running thread cannot be destroyed on POSIX; it is asked to stop instead.
    CTestThread busy([](CTestThread& self) {
        while (!self.IsStopped())
            self.Wait(50);
    });
    busy.Start();
    try {
        busy.Destroy();
    } catch (CWinSystemErrorException const& e) {
        EXPECT_STREQ(e.GetErrorDescription(), "Failed to destroy the thread.");
        EXPECT_EQ(e.GetErrorCode(), static_cast<unsigned long>(ENOTSUP));
    }
    EXPECT_TRUE(busy.Join(20000));

    // Joining itself: a timed join times out, an unlimited one is refused.
    std::atomic<int> selfJoin{0};
    CTestThread joiner([&](CTestThread& self) {
        selfJoin += !self.Join(1);
        try {
            self.Join();
        } catch (CWinSystemErrorException const& e) {
            selfJoin += e.GetErrorCode() == static_cast<unsigned long>(EDEADLK);
        }
    });
    joiner.Start();
    joiner.Join();
    EXPECT_EQ(selfJoin.load(), 2);
}

TEST(Thread, AutoDeletionAndAbandonment) {
    std::atomic<std::thread::id> destroyedOn{};
    std::atomic<std::thread::id> ranOn{};
    auto* t = new CTestThread([&](CTestThread&) { ranOn = std::this_thread::get_id(); });
    t->destroyed = &destroyedOn;
    t->SetAutoDeleted(true);
    EXPECT_TRUE(t->IsAutoDeleted());
    t->Start(); // `t` must not be touched from here on
    ASSERT_TRUE(WaitUntil([&] { return ranOn.load() != std::thread::id(); }));
    ASSERT_TRUE(WaitUntil([&] { return destroyedOn.load() != std::thread::id(); }));
    EXPECT_EQ(destroyedOn.load(), ranOn.load()); // deleted on its own thread

    // Mutexes a thread still owns are abandoned before a join sees it ended.
    lumo::base::win::CMutex m;
    CTestThread owner([&](CTestThread&) { m.Acquire(); });
    owner.Start();
    owner.Join();
    EXPECT_EQ(CSyncObject::WaitForSingleSyncObject(m.GetHandle(), 0), CSyncObject::Wait_Abandoned);
    m.Release();
}

namespace {

// A body that never touches its object: it only waits for the test's word, so its
// owner may destroy the object while it runs.
std::atomic<int> g_phase{0};
class CDetachedThread : public CThread {
public:
    void Run() override {
        g_phase = 1;
        WaitUntil([] { return g_phase.load() == 2; });
    }
};

} // namespace

// Whatever the owner does with a running thread's object, the library never touches
// it once destroyed (the sanitizer builds catch a use after free in the epilogue).
TEST(Thread, OwnerMayDestroyARunningThread) {
    std::thread([] {}).join(); // a sanitizer's own helper thread starts with the first thread
    int const tasks = TaskCount();
    for (int way = 0; way < 2; ++way) {
        g_phase = 0;
        if (way == 0) {
            auto* t = new CDetachedThread;
            t->Start();
            ASSERT_TRUE(WaitUntil([] { return g_phase.load() == 1; }));
            delete t;
        } else {
            try {
                CDetachedThread t; // unwound past while it runs
                t.Start();
                ASSERT_TRUE(WaitUntil([] { return g_phase.load() == 1; }));
                throw 1;
            } catch (int) {
            }
        }
        g_phase = 2;
        EXPECT_TRUE(WaitUntil([&] { return TaskCount() == tasks; })) << "way " << way;
    }
}

// Auto-deleted threads still finishing while the process exits (and the library's
// static state is torn down) end cleanly.
TEST(Thread, AutoDeletedThreadsFinishingAtExit) {
    EXPECT_EXIT(
        {
            g_phase = 2;
            for (int i = 0; i < 32; ++i) {
                auto* t = new CDetachedThread;
                t->SetAutoDeleted(true);
                t->Start();
            }
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(Thread, ThreadLocalAndRunnable) {
    CThreadLocal slot;
    int here = 1;
    EXPECT_EQ(slot.Get(), nullptr);
    slot.Set(&here);
    EXPECT_EQ(slot.Get(), &here);
    std::thread([&] {
        EXPECT_EQ(slot.Get(), nullptr);
        int there = 2;
        slot.Set(&there);
        EXPECT_EQ(slot.Get(), &there);
    }).join();
    EXPECT_EQ(slot.Get(), &here);

    lumo::base::win::CWinThreadLocalImpl impl; // not allocated yet
    EXPECT_EQ(Thrown<CWinSystemErrorException>([&] { impl.GetValue(); }),
              "Failed to get the value of the TLS slot.");
    EXPECT_EQ(Thrown<CWinSystemErrorException>([&] { impl.SetValue(&here); }),
              "Failed to set the value of the TLS slot.");
    impl.Allocate();
    impl.Allocate(); // keeps its slot
    impl.SetValue(&here);
    EXPECT_EQ(impl.GetValue(), &here);
    impl.SetValue(nullptr); // a stored null is no failure
    EXPECT_EQ(impl.GetValue(), nullptr);

    struct CCounter : IRunnable {
        std::atomic<int> runs{0};
        void Run() override { ++runs; }
    };
    EXPECT_EQ(Thrown<CIllegalArgumentException>([] { CRunnableThread t{CRef<IRunnable>()}; }),
              "Invalid runnable.");
    auto* counter = new CCounter;
    CRef<IRunnable> runnable(counter);
    {
        CRunnableThread t(runnable);
        EXPECT_EQ(runnable.GetRefCount(), 2u);
        t.Start();
        t.Join();
    }
    EXPECT_EQ(counter->runs.load(), 1);
    EXPECT_EQ(runnable.GetRefCount(), 1u);
}

// Threads by the thousand, joined or auto-deleted: no thread and no handle is left.
TEST(Thread, StressStartAndJoinThousands) {
    // One thread first, so that helper threads a sanitizer runtime starts with the
    // first thread are already counted.
    CTestThread warmUp([](CTestThread&) {});
    warmUp.Start();
    warmUp.Join();
    int const tasks = TaskCount();
    unsigned long const objects = CSyncObject::GetKernelObjectCount();
    std::atomic<int> runs{0};
    for (int batch = 0; batch < 40; ++batch) {
        std::vector<CTestThread*> threads;
        for (int i = 0; i < 25; ++i) {
            threads.push_back(new CTestThread([&](CTestThread&) { ++runs; }));
            threads.back()->Start();
        }
        for (CTestThread* t : threads) {
            if (batch % 2 == 0)
                t->Join();
            else
                EXPECT_TRUE(t->Join(60000));
            delete t;
        }
    }
    EXPECT_EQ(runs.load(), 1000);
    EXPECT_EQ(TaskCount(), tasks);
    EXPECT_EQ(CSyncObject::GetKernelObjectCount(), objects);

    std::atomic<int> autoRuns{0};
    for (int i = 0; i < 200; ++i) {
        auto* t = new CTestThread([&](CTestThread&) { ++autoRuns; });
        t->SetAutoDeleted(true);
        t->Start();
    }
    EXPECT_TRUE(WaitUntil([&] {
        return autoRuns.load() == 200 && CSyncObject::GetKernelObjectCount() == objects &&
               TaskCount() == tasks;
    }));
}
