// CUnicodeString's UTF-8 conversions against ICU's u_strFromUTF8 / u_strToUTF8 on
// 1 MiB of text: mixed runs of ASCII, accented Latin, CJK and emoji, and plain ASCII.
// Both sides produce a result of their own (ICU into a buffer of the largest size the
// result can need, which spares it a measuring pass), and the "Buffer" pair converts
// into a buffer the caller already holds.
#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>

#include <benchmark/benchmark.h>

#include <unicode/ustring.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

using lumo::base::CString;
using lumo::base::CUnicodeString;

namespace {

std::size_t const kSize = 1 << 20;

void AppendUtf8(std::string& out, std::uint32_t c) {
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

// Runs of each kind of text, as a multilingual document has them.
std::string MixedText() {
    std::mt19937 rng(2024);
    std::string out;
    auto pick = [&rng](std::uint32_t low, std::uint32_t high) {
        return std::uniform_int_distribution<std::uint32_t>(low, high)(rng);
    };
    static std::uint32_t const accented[] = {0xE9, 0xE8, 0xEA,  0xE0,  0xFC,  0xF6,  0xE4,  0xDF,
                                             0xE7, 0xF1, 0x151, 0x10D, 0x161, 0x17E, 0x142, 0x3B1};
    while (out.size() < kSize) {
        std::uint32_t const kind = pick(0, 9);
        std::uint32_t const run = pick(4, 60);
        for (std::uint32_t i = 0; i < run; ++i) {
            if (kind < 4) // English
                AppendUtf8(out, pick(0, 6) == 0 ? ' ' : pick('a', 'z'));
            else if (kind < 6) // French, German, Czech...
                AppendUtf8(out, pick(0, 4) == 0 ? accented[pick(0, 15)] : pick('a', 'z'));
            else if (kind < 9) // CJK
                AppendUtf8(out, pick(0x4E00, 0x9FFF));
            else if (i < 4) // emoji, a few at a time
                AppendUtf8(out, pick(0x1F300, 0x1FAFF));
        }
    }
    // Cut on a character boundary.
    std::size_t end = kSize;
    while ((static_cast<unsigned char>(out[end]) & 0xC0) == 0x80)
        --end;
    out.resize(end);
    return out;
}

std::string const& Input(int which) {
    static std::string const mixed = MixedText();
    static std::string const ascii = [] {
        std::string text;
        while (text.size() < kSize)
            text += "The quick brown fox jumps over the lazy dog. 0123456789\n";
        text.resize(kSize);
        return text;
    }();
    return which == 0 ? mixed : ascii;
}

std::vector<UChar> IcuUnits(std::string const& bytes) {
    std::vector<UChar> units(bytes.size() + 1);
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(units.data(), int32_t(units.size()), &length, bytes.data(), int32_t(bytes.size()),
                  &status);
    units.resize(length);
    return units;
}

void Label(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(bytes));
    state.SetLabel(state.range(0) == 0 ? "mixed" : "ascii");
}

} // namespace

static void FromUTF8_Lumo(benchmark::State& state) {
    std::string const& input = Input(int(state.range(0)));
    for (auto _ : state) {
        CUnicodeString s = CUnicodeString::FromUTF8(input.data(), long(input.size()));
        benchmark::DoNotOptimize(s);
    }
    Label(state, input.size());
}
BENCHMARK(FromUTF8_Lumo)->Arg(0)->Arg(1);

static void FromUTF8_ICU(benchmark::State& state) {
    std::string const& input = Input(int(state.range(0)));
    for (auto _ : state) {
        auto* units = static_cast<UChar*>(std::malloc((input.size() + 1) * sizeof(UChar)));
        int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strFromUTF8(units, int32_t(input.size() + 1), &length, input.data(),
                      int32_t(input.size()), &status);
        benchmark::DoNotOptimize(units);
        benchmark::DoNotOptimize(length);
        std::free(units);
    }
    Label(state, input.size());
}
BENCHMARK(FromUTF8_ICU)->Arg(0)->Arg(1);

static void ToUTF8_Lumo(benchmark::State& state) {
    std::string const& input = Input(int(state.range(0)));
    CUnicodeString const source = CUnicodeString::FromUTF8(input.data(), long(input.size()));
    for (auto _ : state) {
        CString s = source.ToUTF8();
        benchmark::DoNotOptimize(s);
    }
    Label(state, input.size());
}
BENCHMARK(ToUTF8_Lumo)->Arg(0)->Arg(1);

static void ToUTF8_ICU(benchmark::State& state) {
    std::string const& input = Input(int(state.range(0)));
    std::vector<UChar> const source = IcuUnits(input);
    for (auto _ : state) {
        std::size_t const size = source.size() * 3 + 1;
        auto* bytes = static_cast<char*>(std::malloc(size));
        int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8(bytes, int32_t(size), &length, source.data(), int32_t(source.size()), &status);
        benchmark::DoNotOptimize(bytes);
        benchmark::DoNotOptimize(length);
        std::free(bytes);
    }
    Label(state, input.size());
}
BENCHMARK(ToUTF8_ICU)->Arg(0)->Arg(1);

static void ToUTF8Buffer_Lumo(benchmark::State& state) {
    std::string const& input = Input(int(state.range(0)));
    CUnicodeString const source = CUnicodeString::FromUTF8(input.data(), long(input.size()));
    std::vector<char> target(input.size() + 1);
    for (auto _ : state) {
        long const written = source.ToUTF8(target.data(), long(target.size()));
        benchmark::DoNotOptimize(written);
        benchmark::ClobberMemory();
    }
    Label(state, input.size());
}
BENCHMARK(ToUTF8Buffer_Lumo)->Arg(0)->Arg(1);

static void ToUTF8Buffer_ICU(benchmark::State& state) {
    std::string const& input = Input(int(state.range(0)));
    std::vector<UChar> const source = IcuUnits(input);
    std::vector<char> target(input.size() + 1);
    for (auto _ : state) {
        int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8(target.data(), int32_t(target.size()), &length, source.data(),
                    int32_t(source.size()), &status);
        benchmark::DoNotOptimize(length);
        benchmark::ClobberMemory();
    }
    Label(state, input.size());
}
BENCHMARK(ToUTF8Buffer_ICU)->Arg(0)->Arg(1);
