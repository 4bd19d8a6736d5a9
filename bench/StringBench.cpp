// CString against std::string: copying (shared buffers against deep copies), making
// and dropping short strings (pooled buffers against the heap), and building a large
// text from small pieces.
#include <lumo/base/String.h>

#include <benchmark/benchmark.h>

#include <string>

using lumo::base::CString;

namespace {

std::string const kText200(200, 'c');
std::string const kText30(30, 's');
char const kPiece[] = "0123456789";

} // namespace

static void Copy200_CString(benchmark::State& state) {
    CString const source(kText200.c_str());
    for (auto _ : state) {
        CString copy(source);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(Copy200_CString);

static void Copy200_StdString(benchmark::State& state) {
    std::string const source(kText200);
    for (auto _ : state) {
        std::string copy(source);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(Copy200_StdString);

static void Create30_CString(benchmark::State& state) {
    char const* text = kText30.c_str();
    for (auto _ : state) {
        benchmark::DoNotOptimize(text);
        CString s(text);
        benchmark::DoNotOptimize(s);
    }
}
BENCHMARK(Create30_CString);

static void Create30_StdString(benchmark::State& state) {
    char const* text = kText30.c_str();
    for (auto _ : state) {
        benchmark::DoNotOptimize(text);
        std::string s(text);
        benchmark::DoNotOptimize(s);
    }
}
BENCHMARK(Create30_StdString);

static void Append1MiB_CString(benchmark::State& state) {
    for (auto _ : state) {
        CString s;
        while (s.GetLength() < (1u << 20))
            s += kPiece;
        benchmark::DoNotOptimize(s);
    }
    state.SetBytesProcessed(state.iterations() * (1 << 20));
}
BENCHMARK(Append1MiB_CString);

static void Append1MiB_StdString(benchmark::State& state) {
    for (auto _ : state) {
        std::string s;
        while (s.size() < (1u << 20))
            s += kPiece;
        benchmark::DoNotOptimize(s);
    }
    state.SetBytesProcessed(state.iterations() * (1 << 20));
}
BENCHMARK(Append1MiB_StdString);
