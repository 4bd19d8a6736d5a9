// Every UTF-8 <-> UTF-16 construction path of CString and CUnicodeString, and
// COutputStreamWriter's "UTF-8" encoder, side by side with ICU on 1 MiB of text
// (mixed scripts with emoji, and plain ASCII); each row prints lumo's time over ICU's.
#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/OutputStreamWriter.h>

#include "SideBySide.h"

#include <benchmark/benchmark.h>
#include <unicode/ustring.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

using lumo::base::CString;
using lumo::base::CUnicodeString;

namespace {

std::size_t const kUnits = 512 * 1024; // 1 MiB of UTF-16

// UTF-16 text in runs of English, accented Latin, Greek, CJK and (unless `bmpOnly`)
// a few emoji at a time; or ASCII prose.
std::vector<UChar> Utf16Text(int kind, bool bmpOnly) {
    std::vector<UChar> out;
    if (kind == 1) {
        std::string const line = "The quick brown fox jumps over the lazy dog. 0123456789\n";
        while (out.size() < kUnits)
            out.push_back(UChar(line[out.size() % line.size()]));
        return out;
    }
    std::mt19937 rng(7);
    auto pick = [&rng](std::uint32_t lo, std::uint32_t hi) {
        return std::uniform_int_distribution<std::uint32_t>(lo, hi)(rng);
    };
    while (out.size() < kUnits) {
        std::uint32_t const script = pick(0, 9);
        for (std::uint32_t n = pick(4, 60); n > 0; --n) {
            if (script < 4) {
                out.push_back(UChar(pick(0, 6) == 0 ? ' ' : pick('a', 'z')));
            } else if (script < 6) {
                out.push_back(UChar(pick(0, 3) == 0 ? pick(0xC0, 0x17F) : pick('a', 'z')));
            } else if (script < 7) {
                out.push_back(UChar(pick(0x3B1, 0x3C9)));
            } else if (script < 9 || bmpOnly) {
                out.push_back(UChar(pick(0x4E00, 0x9FFF)));
            } else if (n % 8 == 0) {
                std::uint32_t const c = pick(0x1F300, 0x1FAFF) - 0x10000;
                out.push_back(UChar(0xD800 + (c >> 10)));
                out.push_back(UChar(0xDC00 + (c & 0x3FF)));
            }
        }
    }
    out.resize(kUnits);
    if (out.back() >= 0xD800 && out.back() <= 0xDBFF)
        out.back() = 'x';
    return out;
}

struct Texts {
    std::vector<UChar> units;  // no terminator
    std::vector<UChar> zunits; // terminated
    std::string bytes;         // UTF-8 of units
};

Texts Make(int kind) {
    Texts t;
    t.units = Utf16Text(kind, false);
    t.zunits = t.units;
    t.zunits.push_back(0);
    t.bytes.resize(t.units.size() * 3);
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(&t.bytes[0], int32_t(t.bytes.size()), &length, t.units.data(),
                int32_t(t.units.size()), &status);
    t.bytes.resize(std::size_t(length));
    return t;
}

Texts const& Input(int kind) {
    static Texts const texts[2] = {Make(0), Make(1)};
    return texts[kind];
}

unsigned short const* Lumo(std::vector<UChar> const& u) {
    return reinterpret_cast<unsigned short const*>(u.data());
}

// ICU's side of every UTF-16 -> UTF-8 row: a fresh buffer of the largest size the
// result can need (sparing ICU a measuring pass), as a user would write it.
void IcuToUtf8(std::vector<UChar> const& u) {
    std::size_t const size = u.size() * 3 + 1;
    auto* bytes = static_cast<char*>(std::malloc(size));
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(bytes, int32_t(size), &length, u.data(), int32_t(u.size()), &status);
    benchmark::DoNotOptimize(bytes);
    benchmark::DoNotOptimize(length);
    std::free(bytes);
}

void IcuFromUtf8(std::string const& s) {
    auto* units = static_cast<UChar*>(std::malloc((s.size() + 1) * sizeof(UChar)));
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(units, int32_t(s.size() + 1), &length, s.data(), int32_t(s.size()), &status);
    benchmark::DoNotOptimize(units);
    benchmark::DoNotOptimize(length);
    std::free(units);
}

void Label(benchmark::State& state) {
    state.SetLabel(state.range(0) == 0 ? "mixed" : "ascii");
}

// One row: our conversion of the text of the range's kind against ICU's, in the same run.
template <class Ours> void ToUtf8Row(benchmark::State& state, Ours ours) {
    Texts const& t = Input(int(state.range(0)));
    lumo_bench::SideBySide(
        state, [&] { ours(t); }, [&] { IcuToUtf8(t.units); });
    Label(state);
}

template <class Ours> void FromUtf8Row(benchmark::State& state, Ours ours) {
    Texts const& t = Input(int(state.range(0)));
    lumo_bench::SideBySide(
        state, [&] { ours(t); }, [&] { IcuFromUtf8(t.bytes); });
    Label(state);
}

} // namespace

static void Codec_CStringFromUnitsN(benchmark::State& state) {
    ToUtf8Row(state, [](Texts const& t) {
        benchmark::DoNotOptimize(
            CString(Lumo(t.units), static_cast<unsigned long>(t.units.size())));
    });
}
BENCHMARK(Codec_CStringFromUnitsN)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

static void Codec_CStringFromUnits(benchmark::State& state) {
    ToUtf8Row(state, [](Texts const& t) { benchmark::DoNotOptimize(CString(Lumo(t.zunits))); });
}
BENCHMARK(Codec_CStringFromUnits)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

static void Codec_UnicodeStringToUTF8(benchmark::State& state) {
    CUnicodeString const source(Lumo(Input(int(state.range(0))).zunits));
    ToUtf8Row(state, [&source](Texts const&) { benchmark::DoNotOptimize(source.ToUTF8()); });
}
BENCHMARK(Codec_UnicodeStringToUTF8)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

static void Codec_UnicodeStringFromBytesN(benchmark::State& state) {
    FromUtf8Row(state, [](Texts const& t) {
        benchmark::DoNotOptimize(
            CUnicodeString(t.bytes.data(), static_cast<unsigned long>(t.bytes.size())));
    });
}
BENCHMARK(Codec_UnicodeStringFromBytesN)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

static void Codec_UnicodeStringFromBytes(benchmark::State& state) {
    FromUtf8Row(state,
                [](Texts const& t) { benchmark::DoNotOptimize(CUnicodeString(t.bytes.c_str())); });
}
BENCHMARK(Codec_UnicodeStringFromBytes)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

static void Codec_UnicodeStringFromUTF8(benchmark::State& state) {
    FromUtf8Row(state, [](Texts const& t) {
        benchmark::DoNotOptimize(CUnicodeString::FromUTF8(t.bytes.data(), long(t.bytes.size())));
    });
}
BENCHMARK(Codec_UnicodeStringFromUTF8)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

// COutputStreamWriter "UTF-8" on 1 MiB of BMP text, in one Write (range 0) or in
// 64-unit writes (range 64), into memory; ICU into a buffer it already holds.
static void Codec_OutputStreamWriter(benchmark::State& state) {
    static std::vector<UChar> const text = Utf16Text(0, true);
    std::size_t const piece = state.range(0) == 0 ? text.size() : std::size_t(state.range(0));
    lumo::io::CMemoryOutputStream memory(4 * 1024 * 1024, 64 * 1024);
    lumo::io::COutputStreamWriter writer(&memory, "UTF-8");
    std::vector<char> out(text.size() * 3);
    lumo_bench::SideBySide(
        state,
        [&] {
            memory.Reset();
            for (std::size_t at = 0; at < text.size(); at += piece)
                writer.Write(Lumo(text), static_cast<unsigned long>(at),
                             static_cast<unsigned long>(piece));
            writer.Flush();
            benchmark::DoNotOptimize(memory.GetBuffer());
        },
        [&] {
            int32_t length = 0;
            UErrorCode status = U_ZERO_ERROR;
            u_strToUTF8(out.data(), int32_t(out.size()), &length, text.data(), int32_t(text.size()),
                        &status);
            benchmark::DoNotOptimize(out.data());
        });
    state.SetLabel(state.range(0) == 0 ? "one Write" : "64-unit writes");
}
BENCHMARK(Codec_OutputStreamWriter)->Arg(0)->Arg(64)->Unit(benchmark::kMicrosecond);
