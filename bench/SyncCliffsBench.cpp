// CLock against std::mutex (uncontended, in a process that has threads) and
// CCondition ping-pong against std::condition_variable, side by side in one run;
// the ping-pong also counts the context switches per round trip (getrusage), on an
// idle machine and beside busy threads, one per core.
#include "SideBySide.h"

#include <lumo/base/Condition.h>
#include <lumo/base/Lock.h>

#include <sys/resource.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace {

// The calling thread's context switches, voluntary and not.
long ContextSwitches() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw + usage.ru_nivcsw;
}

void Lock_Uncontended(benchmark::State& state) {
    std::thread([] {}).join(); // the process has had threads: no single-thread shortcuts
    int const rounds = 1000000;
    lumo::base::CLock lock;
    std::mutex mutex;
    lumo_bench::SideBySide(
        state,
        [&] {
            for (int i = 0; i < rounds; ++i) {
                lock.Acquire();
                lock.Release();
            }
        },
        [&] {
            for (int i = 0; i < rounds; ++i) {
                mutex.lock();
                mutex.unlock();
            }
        });
}
BENCHMARK(Lock_Uncontended)->Unit(benchmark::kMillisecond);

// `rounds` round trips: the main thread hands the turn to a partner, which hands it
// back; both wait on one condition bound to one lock. Returns the context switches of
// the two threads.
template <class Lock, class Condition, class Wait, class Notify>
long PingPong(int rounds, Lock& lock, Condition& condition, Wait wait, Notify notify) {
    int turn = 0; // 0: main, 1: partner, 2: stop
    long const before = ContextSwitches();
    long partnerSwitches = 0;
    std::thread partner([&] {
        long const start = ContextSwitches();
        std::unique_lock<Lock> hold(lock);
        for (;;) {
            while (turn == 0)
                wait(condition, hold);
            if (turn == 2)
                break;
            turn = 0;
            notify(condition);
        }
        partnerSwitches = ContextSwitches() - start;
    });
    {
        std::unique_lock<Lock> hold(lock);
        for (int i = 0; i < rounds; ++i) {
            turn = 1;
            notify(condition);
            while (turn == 1)
                wait(condition, hold);
        }
        turn = 2;
        notify(condition);
    }
    partner.join();
    return ContextSwitches() - before + partnerSwitches;
}

// CLock as a standard lockable, for std::unique_lock.
struct StdLockable {
    lumo::base::CLock& inner;
    void lock() { inner.Acquire(); }
    void unlock() { inner.Release(); }
};

// Threads that keep every core busy until destroyed.
class CBusyThreads {
public:
    explicit CBusyThreads(int count) {
        for (int i = 0; i < count; ++i)
            m_threads.emplace_back([this] {
                unsigned x = 1;
                while (!m_stop.load(std::memory_order_relaxed))
                    for (int k = 0; k < 1000; ++k)
                        benchmark::DoNotOptimize(x = x * 1664525u + 1013904223u);
            });
    }
    ~CBusyThreads() {
        m_stop = true;
        for (auto& thread : m_threads)
            thread.join();
    }

private:
    std::atomic<bool> m_stop{false};
    std::vector<std::thread> m_threads;
};

void Condition_PingPong(benchmark::State& state) {
    CBusyThreads const load(static_cast<int>(state.range(0)));
    int const rounds = state.range(0) == 0 ? 20000 : 2000;
    long lumoSwitches = 0, stdSwitches = 0;
    lumo_bench::SideBySide(
        state,
        [&] {
            lumo::base::CLock lock;
            lumo::base::CCondition condition(lock);
            StdLockable lockable{lock};
            lumoSwitches += PingPong(
                rounds, lockable, condition,
                [](lumo::base::CCondition& c, std::unique_lock<StdLockable>&) { c.Wait(); },
                [](lumo::base::CCondition& c) { c.Notify(); });
        },
        [&] {
            std::mutex mutex;
            std::condition_variable condition;
            stdSwitches += PingPong(
                rounds, mutex, condition,
                [](std::condition_variable& c, std::unique_lock<std::mutex>& hold) {
                    c.wait(hold);
                },
                [](std::condition_variable& c) { c.notify_one(); });
        });
    double const trips = static_cast<double>(state.iterations()) * rounds;
    state.counters["lumo_cs_per_trip"] = static_cast<double>(lumoSwitches) / trips;
    state.counters["base_cs_per_trip"] = static_cast<double>(stdSwitches) / trips;
}
BENCHMARK(Condition_PingPong)
    ->Arg(0)
    ->Arg(static_cast<int>(std::thread::hardware_concurrency()))
    ->ArgName("busyThreads")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
