// Locks, conditions and the emulated kernel mutex against the standard library
// primitives a user would otherwise pick, side by side in one run.
#include <lumo/base/Condition.h>
#include <lumo/base/Lock.h>
#include <lumo/base/win/Mutex.h>

#include <benchmark/benchmark.h>

#include <condition_variable>
#include <mutex>
#include <thread>

using namespace lumo::base;

static void Uncontended_CLock(benchmark::State& state) {
    CLock lock;
    for (auto _ : state) {
        lock.Acquire();
        lock.Release();
    }
}
BENCHMARK(Uncontended_CLock);

static void Uncontended_StdMutex(benchmark::State& state) {
    std::mutex mutex;
    for (auto _ : state) {
        mutex.lock();
        mutex.unlock();
    }
}
BENCHMARK(Uncontended_StdMutex);

// The waitable, recursive, abandonable kernel mutex on its fast path.
static void Uncontended_CMutex(benchmark::State& state) {
    win::CMutex mutex;
    for (auto _ : state) {
        mutex.Acquire();
        mutex.Release();
    }
}
BENCHMARK(Uncontended_CMutex);

// One iteration is a round trip: the main thread hands the turn to a partner thread,
// which hands it back; both wait on one condition bound to one lock.
static void PingPong_CCondition(benchmark::State& state) {
    CLock lock;
    CCondition condition(lock);
    int turn = 0; // 0: main, 1: partner, 2: stop
    std::thread partner([&] {
        lock.Acquire();
        for (;;) {
            while (turn == 0)
                condition.Wait();
            if (turn == 2)
                break;
            turn = 0;
            condition.Notify();
        }
        lock.Release();
    });
    lock.Acquire();
    for (auto _ : state) {
        turn = 1;
        condition.Notify();
        while (turn != 0)
            condition.Wait();
    }
    turn = 2;
    condition.Notify();
    lock.Release();
    partner.join();
}
BENCHMARK(PingPong_CCondition)->UseRealTime();

static void PingPong_StdConditionVariable(benchmark::State& state) {
    std::mutex mutex;
    std::condition_variable condition;
    int turn = 0;
    std::thread partner([&] {
        std::unique_lock<std::mutex> lock(mutex);
        for (;;) {
            condition.wait(lock, [&] { return turn != 0; });
            if (turn == 2)
                break;
            turn = 0;
            condition.notify_one();
        }
    });
    {
        std::unique_lock<std::mutex> lock(mutex);
        for (auto _ : state) {
            turn = 1;
            condition.notify_one();
            condition.wait(lock, [&] { return turn == 0; });
        }
        turn = 2;
        condition.notify_one();
    }
    partner.join();
}
BENCHMARK(PingPong_StdConditionVariable)->UseRealTime();

// The same round trip with one condition per waiting side, the usual design when
// each side waits for its own state: a notification then never makes the notifier
// wait behind the woken thread at the condition's gate.
static void PingPong_TwoCConditions(benchmark::State& state) {
    CLock lock;
    CCondition mainTurn(lock), partnerTurn(lock);
    int turn = 0;
    std::thread partner([&] {
        lock.Acquire();
        for (;;) {
            while (turn == 0)
                partnerTurn.Wait();
            if (turn == 2)
                break;
            turn = 0;
            mainTurn.Notify();
        }
        lock.Release();
    });
    lock.Acquire();
    for (auto _ : state) {
        turn = 1;
        partnerTurn.Notify();
        while (turn != 0)
            mainTurn.Wait();
    }
    turn = 2;
    partnerTurn.Notify();
    lock.Release();
    partner.join();
}
BENCHMARK(PingPong_TwoCConditions)->UseRealTime();

static void PingPong_TwoStdConditionVariables(benchmark::State& state) {
    std::mutex mutex;
    std::condition_variable mainTurn, partnerTurn;
    int turn = 0;
    std::thread partner([&] {
        std::unique_lock<std::mutex> lock(mutex);
        for (;;) {
            partnerTurn.wait(lock, [&] { return turn != 0; });
            if (turn == 2)
                break;
            turn = 0;
            mainTurn.notify_one();
        }
    });
    {
        std::unique_lock<std::mutex> lock(mutex);
        for (auto _ : state) {
            turn = 1;
            partnerTurn.notify_one();
            mainTurn.wait(lock, [&] { return turn == 0; });
        }
        turn = 2;
        partnerTurn.notify_one();
    }
    partner.join();
}
BENCHMARK(PingPong_TwoStdConditionVariables)->UseRealTime();

// glibc's own locks skip their locked instructions while the process has a single
// thread (so does the kernel-mutex fast path). The ping-pong benchmarks above have
// started threads, so these run the uncontended case again as multi-threaded
// programs see it.
static void Uncontended_StdMutex_ThreadedProcess(benchmark::State& state) {
    std::thread([] {}).join();
    Uncontended_StdMutex(state);
}
BENCHMARK(Uncontended_StdMutex_ThreadedProcess);

static void Uncontended_CMutex_ThreadedProcess(benchmark::State& state) {
    std::thread([] {}).join();
    Uncontended_CMutex(state);
}
BENCHMARK(Uncontended_CMutex_ThreadedProcess);

static void Uncontended_CLock_ThreadedProcess(benchmark::State& state) {
    std::thread([] {}).join();
    Uncontended_CLock(state);
}
BENCHMARK(Uncontended_CLock_ThreadedProcess);
