// CRegEx::Matches with a match object against the engine it wraps, called directly on
// the same text already in UTF-16, on 100 bytes and on 64 KiB; std::regex and PCRE2
// run the same search for information. The Ratio_* benchmarks time interleaved rounds
// of each (thread CPU time, best round) and report each one's time relative to the
// direct engine call (1.0 is equal).
#include <lumo/Library.h>
#include <lumo/util/regex/RegEx.h>

#include <benchmark/benchmark.h>

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/regx/Match.hpp>
#include <xercesc/util/regx/RegularExpression.hpp>

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <regex>
#include <string>
#include <vector>

using lumo::util::regex::CRegEx;
using lumo::util::regex::CRegExMatch;

namespace {

char const kPattern[] = "(\\w+)@(\\w+)[.]com";

// Words, then an address at the very end, so every search walks the whole text.
struct Subject {
    explicit Subject(std::size_t size) {
        static char const* const words[] = {"lorem ", "ipsum ",       "dolor ",      "sit ",
                                            "amet, ", "consectetur ", "adipiscing ", "elit; "};
        std::string const tail = "mail user@example.com";
        for (std::size_t i = 0; text.size() + tail.size() < size; ++i)
            text += words[i % 8];
        text.resize(size - tail.size(), ' ');
        text += tail;
        for (char c : text) {
            units.push_back(static_cast<unsigned short>(c));
            xml.push_back(static_cast<char16_t>(c));
        }
        units.push_back(0);
    }
    std::string text;
    std::vector<unsigned short> units;
    std::u16string xml;
};

// This thread's CPU time: on a shared machine, time spent preempted is not counted.
double ThreadNanos() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e9 + static_cast<double>(t.tv_nsec);
}

void Start() {
    static bool const started = (lumo::Initialize(), true);
    (void)started;
}

struct Engines {
    Engines()
        : lumo((Start(), kPattern)),
          direct(std::u16string(kPattern, kPattern + sizeof kPattern - 1).c_str()),
          standard(kPattern) {
        int error = 0;
        PCRE2_SIZE offset = 0;
        pcre = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(kPattern), PCRE2_ZERO_TERMINATED, 0,
                             &error, &offset, nullptr);
        pcreMatch = pcre2_match_data_create_from_pattern(pcre, nullptr);
    }
    ~Engines() {
        pcre2_match_data_free(pcreMatch);
        pcre2_code_free(pcre);
    }
    CRegEx lumo;
    CRegExMatch lumoMatch;
    xercesc::RegularExpression direct;
    xercesc::Match directMatch;
    std::regex standard;
    std::smatch standardMatch;
    pcre2_code* pcre;
    pcre2_match_data* pcreMatch;
};

enum Kind { kLumo8, kLumo16, kDirect, kStd, kPcre2, kKinds };

bool Run(Engines& e, Subject const& s, Kind kind) {
    switch (kind) {
    case kLumo8:
        return e.lumo.Matches(s.text.c_str(), e.lumoMatch);
    case kLumo16:
        return e.lumo.Matches(s.units.data(), e.lumoMatch);
    case kDirect:
        return e.direct.matches(s.xml.c_str(), &e.directMatch);
    case kStd:
        return std::regex_search(s.text, e.standardMatch, e.standard);
    default:
        return pcre2_match(e.pcre, reinterpret_cast<PCRE2_SPTR>(s.text.data()), s.text.size(), 0, 0,
                           e.pcreMatch, nullptr) > 0;
    }
}

void Single(benchmark::State& state, Kind kind) {
    Engines engines;
    Subject const subject(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(Run(engines, subject, kind));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

// Rounds of each kind in turn; the best round of each counts, so that a burst of noise
// on the shared machine does not land on one side only.
static void Ratio_RegEx_vs_Engine(benchmark::State& state) {
    Engines engines;
    Subject const subject(static_cast<std::size_t>(state.range(0)));
    int const perRound = state.range(0) <= 1000 ? 2000 : 10;
    double best[kKinds];
    std::fill(best, best + kKinds, 1e300);
    for (auto _ : state) {
        for (int round = 0; round < 15; ++round) {
            for (int k = 0; k < kKinds; ++k) {
                double const t0 = ThreadNanos();
                for (int i = 0; i < perRound; ++i)
                    benchmark::DoNotOptimize(Run(engines, subject, static_cast<Kind>(k)));
                best[k] = std::min(best[k], (ThreadNanos() - t0) / perRound);
            }
        }
    }
    state.counters["engine_ns"] = best[kDirect];
    state.counters["lumo8/engine"] = best[kLumo8] / best[kDirect];
    state.counters["lumo16/engine"] = best[kLumo16] / best[kDirect];
    state.counters["std/engine"] = best[kStd] / best[kDirect];
    state.counters["pcre2/engine"] = best[kPcre2] / best[kDirect];
}

} // namespace

static void RegEx_Lumo8(benchmark::State& state) {
    Single(state, kLumo8);
}
static void RegEx_Lumo16(benchmark::State& state) {
    Single(state, kLumo16);
}
static void RegEx_Engine16(benchmark::State& state) {
    Single(state, kDirect);
}
static void RegEx_StdRegex(benchmark::State& state) {
    Single(state, kStd);
}
static void RegEx_Pcre2(benchmark::State& state) {
    Single(state, kPcre2);
}
BENCHMARK(RegEx_Lumo8)->Arg(100)->Arg(64 << 10);
BENCHMARK(RegEx_Lumo16)->Arg(100)->Arg(64 << 10);
BENCHMARK(RegEx_Engine16)->Arg(100)->Arg(64 << 10);
BENCHMARK(RegEx_StdRegex)->Arg(100)->Arg(64 << 10);
BENCHMARK(RegEx_Pcre2)->Arg(100)->Arg(64 << 10);
BENCHMARK(Ratio_RegEx_vs_Engine)
    ->Arg(100)
    ->Arg(64 << 10)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
