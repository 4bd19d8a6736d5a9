// The filtering readers, writers and pushback streams one unit at a time, side by side
// with the loop a user would otherwise write over a std::u16string or std::string.
#include <lumo/io/BufferedReader.h>
#include <lumo/io/BufferedWriter.h>
#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/PushbackInputStream.h>
#include <lumo/io/PushbackReader.h>
#include <lumo/io/Reader.h>
#include <lumo/io/Writer.h>

#include "SideBySide.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

namespace {

constexpr unsigned long kUnits = 1 << 18;

std::u16string const& RandomUnits() {
    static std::u16string const units = [] {
        std::mt19937 rng(7);
        std::u16string s(kUnits, u'\0');
        for (char16_t& c : s)
            c = static_cast<char16_t>(0x20 + rng() % 0x7000);
        return s;
    }();
    return units;
}

// The smallest reader over memory: block reads copy, everything else is the base's.
class MemoryReader : public lumo::io::CReader {
public:
    explicit MemoryReader(std::u16string const& text) : m_text(text) {}
    using CReader::Read;
    long Read(unsigned short* buf, unsigned long off, unsigned long len) override {
        if (m_pos >= m_text.size())
            return -1;
        unsigned long n = static_cast<unsigned long>(m_text.size() - m_pos);
        if (n > len)
            n = len;
        std::memcpy(buf + off, m_text.data() + m_pos, n * sizeof(unsigned short));
        m_pos += n;
        return static_cast<long>(n);
    }
    void Reset() override { m_pos = 0; }
    void Close() override {}

private:
    std::u16string const& m_text;
    std::size_t m_pos = 0;
};

// A writer that keeps what it is given, as block writes.
class MemoryWriter : public lumo::io::CWriter {
public:
    using CWriter::Write;
    void Write(unsigned short const* buf, unsigned long off, unsigned long len) override {
        text.append(reinterpret_cast<char16_t const*>(buf + off), len);
    }
    void Flush() override {}
    void Close() override {}
    std::u16string text;
};

} // namespace

static void FilterStreams_BufferedReaderUnits(benchmark::State& state) {
    std::u16string const& text = RandomUnits();
    MemoryReader memory(text);
    lumo::io::CBufferedReader reader(&memory, 4096);
    lumo_bench::SideBySide(
        state,
        [&] {
            reader.Reset();
            long sum = 0;
            for (unsigned long i = 0; i < kUnits; ++i)
                sum += reader.Read();
            benchmark::DoNotOptimize(sum);
        },
        [&] {
            long sum = 0;
            for (unsigned long i = 0; i < kUnits; ++i)
                sum += text[i];
            benchmark::DoNotOptimize(sum);
        });
}
BENCHMARK(FilterStreams_BufferedReaderUnits)->Unit(benchmark::kMicrosecond);

static void FilterStreams_BufferedWriterUnits(benchmark::State& state) {
    std::u16string const& text = RandomUnits();
    MemoryWriter memory;
    lumo::io::CBufferedWriter writer(&memory, 4096);
    std::u16string baseline;
    lumo_bench::SideBySide(
        state,
        [&] {
            memory.text.clear();
            for (unsigned long i = 0; i < kUnits; ++i)
                writer.Write(static_cast<unsigned short>(text[i]));
            writer.Flush();
            benchmark::DoNotOptimize(memory.text.data());
        },
        [&] {
            baseline.clear();
            for (unsigned long i = 0; i < kUnits; ++i)
                baseline.push_back(text[i]);
            benchmark::DoNotOptimize(baseline.data());
        });
}
BENCHMARK(FilterStreams_BufferedWriterUnits)->Unit(benchmark::kMicrosecond);

// Every unit read, given back and read again: the pushback path on each step.
static void FilterStreams_PushbackReaderUnits(benchmark::State& state) {
    std::u16string const& text = RandomUnits();
    MemoryReader memory(text);
    lumo::io::CPushbackReader reader(&memory, 16);
    lumo_bench::SideBySide(
        state,
        [&] {
            reader.Reset();
            long sum = 0;
            for (unsigned long i = 0; i < kUnits; ++i) {
                long const c = reader.Read();
                reader.Unread(static_cast<unsigned short>(c));
                sum += reader.Read();
            }
            benchmark::DoNotOptimize(sum);
        },
        [&] {
            std::u16string held;
            long sum = 0;
            for (unsigned long i = 0; i < kUnits; ++i) {
                held.push_back(text[i]);
                sum += held.back();
                held.pop_back();
            }
            benchmark::DoNotOptimize(sum);
        });
}
BENCHMARK(FilterStreams_PushbackReaderUnits)->Unit(benchmark::kMicrosecond);

static void FilterStreams_PushbackInputStreamBlocks(benchmark::State& state) {
    std::u16string const& units = RandomUnits();
    std::string const bytes(reinterpret_cast<char const*>(units.data()), units.size() * 2);
    lumo::io::CMemoryInputStream memory(bytes.data(), static_cast<unsigned long>(bytes.size()),
                                        false);
    lumo::io::CPushbackInputStream in(&memory, 64);
    char block[256];
    std::string copy(bytes.size(), '\0');
    lumo_bench::SideBySide(
        state,
        [&] {
            in.Reset();
            // Each block gives its last 16 bytes back before the next read.
            for (long n; (n = in.Read(block, 0, sizeof block)) > 16;)
                in.Unread(block, static_cast<unsigned long>(n) - 16, 16);
            benchmark::ClobberMemory();
        },
        [&] {
            for (std::size_t done = 0; done < bytes.size(); done += sizeof block - 16)
                std::memcpy(&copy[done], bytes.data() + done,
                            std::min(sizeof block, bytes.size() - done));
            benchmark::ClobberMemory();
        });
}
BENCHMARK(FilterStreams_PushbackInputStreamBlocks)->Unit(benchmark::kMicrosecond);
