// CStringMap and CUnicodeStringMap put-then-get against std::unordered_map, and
// CStringBuffer appends against std::string, side by side at growing sizes so that
// the growth of each is visible.
#include "SideBySide.h"

#include <lumo/base/StringBuffer.h>
#include <lumo/util/StringMap.h>
#include <lumo/util/UnicodeStringMap.h>

#include <cstdio>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

// n distinct keys of 12 characters; the values are the keys reversed.
std::vector<std::string> const& Keys(std::size_t n) {
    static std::vector<std::string> keys;
    if (keys.size() < n) {
        std::mt19937 random(7);
        keys.clear();
        for (std::size_t i = 0; i < n; ++i) {
            char text[32];
            std::snprintf(text, sizeof text, "%04x%08x", static_cast<unsigned>(random() & 0xFFFF),
                          static_cast<unsigned>(i));
            keys.emplace_back(text);
        }
    }
    return keys;
}

void StringMap_PutGet(benchmark::State& state) {
    std::size_t const n = static_cast<std::size_t>(state.range(0));
    bool const caseSensitive = state.range(1) != 0;
    auto const& keys = Keys(n);
    lumo_bench::SideBySide(
        state,
        [&] {
            lumo::util::CStringMap map(caseSensitive);
            for (std::size_t i = 0; i < n; ++i)
                map.Put(keys[i].c_str(), keys[n - 1 - i].c_str());
            for (std::size_t i = 0; i < n; ++i)
                benchmark::DoNotOptimize(&map.Get(keys[i].c_str()));
        },
        [&] {
            std::unordered_map<std::string, std::string> map;
            for (std::size_t i = 0; i < n; ++i)
                map[keys[i]] = keys[n - 1 - i];
            for (std::size_t i = 0; i < n; ++i)
                benchmark::DoNotOptimize(&map.at(keys[i]));
        });
}
BENCHMARK(StringMap_PutGet)
    ->ArgsProduct({{1000, 10000, 100000, 1000000}, {1, 0}})
    ->ArgNames({"keys", "caseSensitive"})
    ->Unit(benchmark::kMillisecond);

void UnicodeStringMap_PutGet(benchmark::State& state) {
    std::size_t const n = static_cast<std::size_t>(state.range(0));
    auto const& narrow = Keys(n);
    std::vector<std::u16string> keys;
    for (std::size_t i = 0; i < n; ++i)
        keys.emplace_back(narrow[i].begin(), narrow[i].end());
    auto units = [](std::u16string const& s) {
        return reinterpret_cast<unsigned short const*>(s.c_str());
    };
    lumo_bench::SideBySide(
        state,
        [&] {
            lumo::util::CUnicodeStringMap map;
            for (std::size_t i = 0; i < n; ++i)
                map.Put(units(keys[i]), units(keys[n - 1 - i]));
            for (std::size_t i = 0; i < n; ++i)
                benchmark::DoNotOptimize(&map.Get(units(keys[i])));
        },
        [&] {
            std::unordered_map<std::u16string, std::u16string> map;
            for (std::size_t i = 0; i < n; ++i)
                map[keys[i]] = keys[n - 1 - i];
            for (std::size_t i = 0; i < n; ++i)
                benchmark::DoNotOptimize(&map.at(keys[i]));
        });
}
BENCHMARK(UnicodeStringMap_PutGet)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->ArgName("keys")
    ->Unit(benchmark::kMillisecond);

// A buffer built to `bytes` by 10-byte appends, with the given increment (0: the default).
void StringBuffer_Append(benchmark::State& state) {
    std::size_t const bytes = static_cast<std::size_t>(state.range(0));
    unsigned long const increment = static_cast<unsigned long>(state.range(1));
    char const piece[] = "0123456789";
    lumo_bench::SideBySide(
        state,
        [&] {
            lumo::base::CStringBuffer buffer =
                increment == 0 ? lumo::base::CStringBuffer() : lumo::base::CStringBuffer(increment);
            for (std::size_t made = 0; made < bytes; made += 10)
                buffer += piece;
            benchmark::DoNotOptimize(static_cast<char const*>(buffer));
        },
        [&] {
            std::string buffer;
            for (std::size_t made = 0; made < bytes; made += 10)
                buffer += piece;
            benchmark::DoNotOptimize(buffer.data());
        });
}
BENCHMARK(StringBuffer_Append)
    ->ArgsProduct({{1 << 10, 1 << 20, 16 << 20}, {0, 64 << 10}})
    ->ArgNames({"bytes", "increment"})
    ->Unit(benchmark::kMillisecond);

} // namespace
