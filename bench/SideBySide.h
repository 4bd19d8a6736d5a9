// Runs the library's operation and its baseline in the same benchmark iteration, so
// that both see the same machine load, and reports both times and their ratio.
#ifndef LUMO_BENCH_SIDEBYSIDE_H
#define LUMO_BENCH_SIDEBYSIDE_H

#include <benchmark/benchmark.h>

#include <chrono>

namespace lumo_bench {

// Each iteration times `ours()` then `baseline()`; the counters are the mean times in
// microseconds and ours / baseline ("ratio"). Use --benchmark_repetitions and read
// the median of the ratio.
template <class Ours, class Baseline>
void SideBySide(benchmark::State& state, Ours ours, Baseline baseline) {
    using Clock = std::chrono::steady_clock;
    double oursTotal = 0, baselineTotal = 0;
    for (auto _ : state) {
        auto const t0 = Clock::now();
        ours();
        auto const t1 = Clock::now();
        baseline();
        auto const t2 = Clock::now();
        oursTotal += std::chrono::duration<double, std::micro>(t1 - t0).count();
        baselineTotal += std::chrono::duration<double, std::micro>(t2 - t1).count();
    }
    double const n = static_cast<double>(state.iterations());
    state.counters["lumo_us"] = oursTotal / n;
    state.counters["base_us"] = baselineTotal / n;
    state.counters["ratio"] = baselineTotal > 0 ? oursTotal / baselineTotal : 0;
}

} // namespace lumo_bench

#endif
