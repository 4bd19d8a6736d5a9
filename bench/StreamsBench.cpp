// Byte streams against the baselines a user would otherwise pick: base64 against
// OpenSSL's EVP_EncodeBlock / EVP_DecodeBlock, single-byte reads through a buffered
// memory stream against std::istringstream::get, 64 KiB block reads against memcpy,
// and 32-bit values through the data streams against a hand-written htonl + memcpy
// loop.
#include <lumo/base/BinaryData.h>
#include <lumo/base/String.h>
#include <lumo/io/BufferedInputStream.h>
#include <lumo/io/BufferedOutputStream.h>
#include <lumo/io/DataInputStream.h>
#include <lumo/io/DataOutputStream.h>
#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/MemoryOutputStream.h>

#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <arpa/inet.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using lumo::base::CBinaryData;
using lumo::base::CString;
using lumo::io::CBufferedInputStream;
using lumo::io::CBufferedOutputStream;
using lumo::io::CDataInputStream;
using lumo::io::CDataOutputStream;
using lumo::io::CMemoryInputStream;
using lumo::io::CMemoryOutputStream;

namespace {

constexpr std::size_t kMiB = 1 << 20;
constexpr std::size_t kBlock = 64 * 1024;
constexpr long kValues = 1 << 20;

std::string const& RandomBytes() {
    static std::string const bytes = [] {
        std::mt19937 rng(42);
        std::string s(kMiB, '\0');
        for (char& c : s)
            c = static_cast<char>(rng());
        return s;
    }();
    return bytes;
}

std::string const& Base64Text() {
    static std::string const text = [] {
        CString s = CBinaryData::ToBase64String(RandomBytes().data(), kMiB);
        return std::string(s, s.GetLength());
    }();
    return text;
}

} // namespace

static void Base64Encode_Lumo(benchmark::State& state) {
    std::string const& bytes = RandomBytes();
    CString out;
    for (auto _ : state) {
        CBinaryData::ToBase64String(bytes.data(), kMiB, out);
        benchmark::DoNotOptimize(static_cast<char const*>(out));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMiB));
}
BENCHMARK(Base64Encode_Lumo);

static void Base64Encode_OpenSSL(benchmark::State& state) {
    std::string const& bytes = RandomBytes();
    std::vector<unsigned char> out(kMiB / 3 * 4 + 8);
    for (auto _ : state) {
        int n = EVP_EncodeBlock(out.data(), reinterpret_cast<unsigned char const*>(bytes.data()),
                                static_cast<int>(kMiB));
        benchmark::DoNotOptimize(n);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMiB));
}
BENCHMARK(Base64Encode_OpenSSL);

static void Base64Decode_Lumo(benchmark::State& state) {
    CString const text(Base64Text().c_str());
    for (auto _ : state) {
        char* data = nullptr;
        unsigned long length = 0;
        CBinaryData::ParseBase64String(text, data, length);
        benchmark::DoNotOptimize(data);
        std::free(data);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMiB));
}
BENCHMARK(Base64Decode_Lumo);

static void Base64Decode_OpenSSL(benchmark::State& state) {
    std::string const& text = Base64Text();
    std::vector<unsigned char> out(kMiB + 8);
    for (auto _ : state) {
        int n = EVP_DecodeBlock(out.data(), reinterpret_cast<unsigned char const*>(text.data()),
                                static_cast<int>(text.size()));
        benchmark::DoNotOptimize(n);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMiB));
}
BENCHMARK(Base64Decode_OpenSSL);

static void SingleByteRead_LumoBuffered(benchmark::State& state) {
    std::string const& bytes = RandomBytes();
    CMemoryInputStream memory(bytes.data(), kMiB, false);
    CBufferedInputStream in(&memory, 4096);
    for (auto _ : state) {
        in.Reset();
        long sum = 0;
        for (std::size_t i = 0; i < kMiB; ++i)
            sum += in.Read();
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMiB));
}
BENCHMARK(SingleByteRead_LumoBuffered);

static void SingleByteRead_StdIstringstream(benchmark::State& state) {
    std::istringstream in(RandomBytes());
    for (auto _ : state) {
        in.clear();
        in.seekg(0);
        long sum = 0;
        for (std::size_t i = 0; i < kMiB; ++i)
            sum += in.get();
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMiB));
}
BENCHMARK(SingleByteRead_StdIstringstream);

static void BlockRead64K_LumoBuffered(benchmark::State& state) {
    std::string const& bytes = RandomBytes();
    CMemoryInputStream memory(bytes.data(), kMiB, false);
    CBufferedInputStream in(&memory, 0);
    std::vector<char> block(kBlock);
    for (auto _ : state) {
        in.Reset();
        for (std::size_t done = 0; done < kMiB; done += kBlock) {
            long n = in.Read(block.data(), 0, kBlock);
            benchmark::DoNotOptimize(n);
        }
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMiB));
}
BENCHMARK(BlockRead64K_LumoBuffered);

static void BlockRead64K_Memcpy(benchmark::State& state) {
    std::string const& bytes = RandomBytes();
    std::vector<char> block(kBlock);
    for (auto _ : state) {
        for (std::size_t done = 0; done < kMiB; done += kBlock) {
            std::memcpy(block.data(), bytes.data() + done, kBlock);
            benchmark::DoNotOptimize(block.data());
        }
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMiB));
}
BENCHMARK(BlockRead64K_Memcpy);

static void Int32WriteRead_LumoDataStreams(benchmark::State& state) {
    CMemoryOutputStream memory(4 * kValues + 64, 0);
    for (auto _ : state) {
        memory.Reset();
        {
            CBufferedOutputStream buffered(&memory, 8192);
            CDataOutputStream out(&buffered);
            for (long i = 0; i < kValues; ++i)
                out.WriteInt32(i);
            out.Flush();
        }
        CMemoryInputStream source(memory.GetBuffer(), memory.GetBufferSize(), false);
        CBufferedInputStream buffered(&source, 8192);
        CDataInputStream in(&buffered);
        long sum = 0;
        for (long i = 0; i < kValues; ++i)
            sum += in.ReadInt32();
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kValues);
}
BENCHMARK(Int32WriteRead_LumoDataStreams);

static void Int32WriteRead_HtonlMemcpy(benchmark::State& state) {
    std::vector<char> buffer(4 * kValues);
    for (auto _ : state) {
        char* p = buffer.data();
        for (long i = 0; i < kValues; ++i, p += 4) {
            uint32_t const v = htonl(static_cast<uint32_t>(i));
            std::memcpy(p, &v, 4);
        }
        benchmark::ClobberMemory();
        long sum = 0;
        p = buffer.data();
        for (long i = 0; i < kValues; ++i, p += 4) {
            uint32_t v;
            std::memcpy(&v, p, 4);
            sum += static_cast<int32_t>(ntohl(v));
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kValues);
}
BENCHMARK(Int32WriteRead_HtonlMemcpy);
