// Character and file streams against what a user would otherwise pick: UTF-16 to
// UTF-8 through COutputStreamWriter into memory against ICU's u_strToUTF8, and 64 MiB
// written and read through the buffered file streams against fwrite and fread with
// the same buffer size. Temporary files live in a fresh directory under /tmp and are
// removed afterwards.
#include <lumo/io/BufferedInputStream.h>
#include <lumo/io/BufferedOutputStream.h>
#include <lumo/io/FileInputStream.h>
#include <lumo/io/FileOutputStream.h>
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/OutputStreamWriter.h>

#include <benchmark/benchmark.h>
#include <unicode/ustring.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

// 1 MiB of UTF-16: ASCII words with Latin, Greek and Cyrillic letters (2 bytes in
// UTF-8) and CJK ideographs (3 bytes) mixed in; no surrogates.
std::vector<unsigned short> const& MixedText() {
    static std::vector<unsigned short> const text = [] {
        std::vector<unsigned short> t;
        std::uint32_t seed = 12345;
        while (t.size() < 512 * 1024) {
            seed = seed * 1103515245u + 12345u;
            unsigned const r = (seed >> 16) % 100;
            if (r < 60)
                t.push_back(static_cast<unsigned short>(r % 7 == 0 ? ' ' : 'a' + r % 26));
            else if (r < 70)
                t.push_back(static_cast<unsigned short>(0xE0 + r % 30));
            else if (r < 80)
                t.push_back(static_cast<unsigned short>(0x3B1 + r % 24));
            else if (r < 85)
                t.push_back(static_cast<unsigned short>(0x430 + r % 32));
            else
                t.push_back(static_cast<unsigned short>(0x4E00 + (seed >> 8) % 20000));
        }
        return t;
    }();
    return text;
}

unsigned long const kFileBytes = 64ul * 1024 * 1024;
unsigned long const kBufferSize = 64 * 1024;
unsigned long const kChunk = 512;

class TempFiles {
public:
    TempFiles() {
        char name[] = "/tmp/lumo-bench-XXXXXX";
        if (::mkdtemp(name) != nullptr)
            m_dir = name;
    }
    ~TempFiles() {
        for (std::string const& f : m_files)
            ::unlink(f.c_str());
        if (!m_dir.empty())
            ::rmdir(m_dir.c_str());
    }
    std::string File(char const* name) {
        std::string path = m_dir + "/" + name;
        m_files.push_back(path);
        return path;
    }

private:
    std::string m_dir;
    std::vector<std::string> m_files;
};

TempFiles& Files() {
    static TempFiles files;
    return files;
}

std::vector<char> const& FileData() {
    static std::vector<char> const data = [] {
        std::vector<char> d(kFileBytes);
        std::uint32_t seed = 99;
        for (char& c : d) {
            seed = seed * 1664525u + 1013904223u;
            c = static_cast<char>(seed >> 24);
        }
        return d;
    }();
    return data;
}

} // namespace

static void CharStreams_Utf16ToUtf8_OutputStreamWriter(benchmark::State& state) {
    std::vector<unsigned short> const& text = MixedText();
    lumo::io::CMemoryOutputStream memory(4 * 1024 * 1024, 64 * 1024);
    lumo::io::COutputStreamWriter writer(&memory, "UTF-8");
    for (auto _ : state) {
        memory.Reset();
        writer.Write(text.data(), 0, static_cast<unsigned long>(text.size()));
        writer.Flush();
        benchmark::DoNotOptimize(memory.GetBuffer());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size() * 2));
    state.counters["utf8_bytes"] = static_cast<double>(memory.GetBufferSize());
}
BENCHMARK(CharStreams_Utf16ToUtf8_OutputStreamWriter)->Unit(benchmark::kMicrosecond);

// The same text handed over in 4096-unit writes, as a document writer would.
static void CharStreams_Utf16ToUtf8_OutputStreamWriterChunks(benchmark::State& state) {
    std::vector<unsigned short> const& text = MixedText();
    lumo::io::CMemoryOutputStream memory(4 * 1024 * 1024, 64 * 1024);
    lumo::io::COutputStreamWriter writer(&memory, "UTF-8");
    for (auto _ : state) {
        memory.Reset();
        for (std::size_t at = 0; at < text.size(); at += 4096)
            writer.Write(text.data(), static_cast<unsigned long>(at), 4096);
        writer.Flush();
        benchmark::DoNotOptimize(memory.GetBuffer());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size() * 2));
}
BENCHMARK(CharStreams_Utf16ToUtf8_OutputStreamWriterChunks)->Unit(benchmark::kMicrosecond);

static void CharStreams_Utf16ToUtf8_IcuStrToUTF8(benchmark::State& state) {
    std::vector<unsigned short> const& text = MixedText();
    std::vector<char> out(text.size() * 3);
    int32_t length = 0;
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8(out.data(), static_cast<int32_t>(out.size()), &length,
                    reinterpret_cast<UChar const*>(text.data()), static_cast<int32_t>(text.size()),
                    &status);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size() * 2));
    state.counters["utf8_bytes"] = static_cast<double>(length);
}
BENCHMARK(CharStreams_Utf16ToUtf8_IcuStrToUTF8)->Unit(benchmark::kMicrosecond);

static void CharStreams_Write64MiB_BufferedFileOutputStream(benchmark::State& state) {
    std::vector<char> const& data = FileData();
    std::string const path = Files().File("lumo-write.bin");
    for (auto _ : state) {
        lumo::io::CFileOutputStream file(IO::Location(path.c_str()), false);
        lumo::io::CBufferedOutputStream out(&file, kBufferSize);
        for (unsigned long at = 0; at < kFileBytes; at += kChunk)
            out.Write(data.data(), at, kChunk);
        out.Close();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * kFileBytes);
    ::unlink(path.c_str());
}
BENCHMARK(CharStreams_Write64MiB_BufferedFileOutputStream)->Unit(benchmark::kMillisecond);

static void CharStreams_Write64MiB_Fwrite(benchmark::State& state) {
    std::vector<char> const& data = FileData();
    std::string const path = Files().File("stdio-write.bin");
    std::vector<char> buffer(kBufferSize);
    for (auto _ : state) {
        std::FILE* f = std::fopen(path.c_str(), "wb");
        if (f == nullptr) {
            state.SkipWithError("fopen failed");
            break;
        }
        std::setvbuf(f, buffer.data(), _IOFBF, buffer.size());
        for (unsigned long at = 0; at < kFileBytes; at += kChunk)
            std::fwrite(data.data() + at, 1, kChunk, f);
        std::fclose(f);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * kFileBytes);
    ::unlink(path.c_str());
}
BENCHMARK(CharStreams_Write64MiB_Fwrite)->Unit(benchmark::kMillisecond);

namespace {

std::string const& ReadFile() {
    static std::string const path = [] {
        std::string p = Files().File("read.bin");
        std::FILE* f = std::fopen(p.c_str(), "wb");
        if (f != nullptr) {
            std::fwrite(FileData().data(), 1, kFileBytes, f);
            std::fclose(f);
        }
        return p;
    }();
    return path;
}

} // namespace

static void CharStreams_Read64MiB_BufferedFileInputStream(benchmark::State& state) {
    std::string const& path = ReadFile();
    std::vector<char> chunk(kChunk);
    for (auto _ : state) {
        lumo::io::CFileInputStream file(IO::Location(path.c_str()));
        lumo::io::CBufferedInputStream in(&file, kBufferSize);
        unsigned long total = 0;
        long n;
        while ((n = in.Read(chunk.data(), 0, kChunk)) > 0)
            total += static_cast<unsigned long>(n);
        in.Close();
        if (total != kFileBytes)
            state.SkipWithError("short read");
        benchmark::DoNotOptimize(chunk.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * kFileBytes);
}
BENCHMARK(CharStreams_Read64MiB_BufferedFileInputStream)->Unit(benchmark::kMillisecond);

static void CharStreams_Read64MiB_Fread(benchmark::State& state) {
    std::string const& path = ReadFile();
    std::vector<char> chunk(kChunk);
    std::vector<char> buffer(kBufferSize);
    for (auto _ : state) {
        std::FILE* f = std::fopen(path.c_str(), "rb");
        if (f == nullptr) {
            state.SkipWithError("fopen failed");
            break;
        }
        std::setvbuf(f, buffer.data(), _IOFBF, buffer.size());
        unsigned long total = 0;
        std::size_t n;
        while ((n = std::fread(chunk.data(), 1, kChunk, f)) > 0)
            total += static_cast<unsigned long>(n);
        std::fclose(f);
        if (total != kFileBytes)
            state.SkipWithError("short read");
        benchmark::DoNotOptimize(chunk.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * kFileBytes);
}
BENCHMARK(CharStreams_Read64MiB_Fread)->Unit(benchmark::kMillisecond);
