// The rest of the performance table, each side by side with its baseline in one
// run: CStringSet against std::unordered_set, CObjectHashtable against
// std::unordered_map, lumo::util::qsort against std::sort, CBufferedInputStream
// against memcpy, base64 decoding against OpenSSL.
#include "SideBySide.h"

#include <lumo/base/BinaryData.h>
#include <lumo/base/Object.h>
#include <lumo/base/String.h>
#include <lumo/io/BufferedInputStream.h>
#include <lumo/io/MemoryInputStream.h>
#include <lumo/util/Comparator.h>
#include <lumo/util/ObjectHashtable.h>
#include <lumo/util/StringSet.h>

#include <openssl/evp.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace {

std::vector<std::string> const& Texts(std::size_t n) {
    static std::vector<std::string> texts;
    if (texts.size() != n) {
        std::mt19937 random(2);
        texts.clear();
        for (std::size_t i = 0; i < n; ++i) {
            std::string text(12, ' ');
            for (char& c : text)
                c = static_cast<char>('a' + random() % 26);
            texts.push_back(text);
        }
    }
    return texts;
}

void StringSet_PutContains(benchmark::State& state) {
    auto const& texts = Texts(static_cast<std::size_t>(state.range(0)));
    lumo_bench::SideBySide(
        state,
        [&] {
            lumo::util::CStringSet set;
            for (auto const& text : texts)
                set.Put(text.c_str());
            for (auto const& text : texts)
                benchmark::DoNotOptimize(set.Contains(text.c_str()));
        },
        [&] {
            std::unordered_set<std::string> set;
            for (auto const& text : texts)
                set.insert(text);
            for (auto const& text : texts)
                benchmark::DoNotOptimize(set.count(text));
        });
}
BENCHMARK(StringSet_PutContains)->Arg(100000)->ArgName("keys")->Unit(benchmark::kMillisecond);

class CBenchKey : public lumo::base::CObject {
public:
    explicit CBenchKey(int value) : m_value(value) {}
    std::int32_t GetHashCode() const override {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(m_value) * 2654435761u);
    }
    bool Equals(lumo::base::CObject const* other) const override {
        return other == this || static_cast<CBenchKey const*>(other)->m_value == m_value;
    }

private:
    int m_value;
};

void ObjectHashtable_PutGet(benchmark::State& state) {
    std::vector<std::unique_ptr<CBenchKey>> keys;
    std::mt19937 random(1);
    for (long i = 0; i < state.range(0); ++i)
        keys.emplace_back(new CBenchKey(static_cast<int>(random())));
    using lumo::base::CObject;
    struct Hash {
        std::size_t operator()(CObject const* key) const {
            return static_cast<std::uint32_t>(key->GetHashCode());
        }
    };
    struct Equal {
        bool operator()(CObject const* a, CObject const* b) const { return a->Equals(b); }
    };
    lumo_bench::SideBySide(
        state,
        [&] {
            lumo::util::CObjectHashtable table(101, 0.75f, false); // the keys stay ours
            for (auto const& key : keys)
                table.Put(key.get(), key.get());
            for (auto const& key : keys)
                benchmark::DoNotOptimize(table.Get(key.get()));
        },
        [&] {
            std::unordered_map<CObject*, CObject*, Hash, Equal> table;
            for (auto const& key : keys)
                table[key.get()] = key.get();
            for (auto const& key : keys)
                benchmark::DoNotOptimize(table.at(key.get()));
        });
}
BENCHMARK(ObjectHashtable_PutGet)->Arg(100000)->ArgName("keys")->Unit(benchmark::kMillisecond);

// Orders slots holding int pointers by the ints they point to.
class CByPointee : public lumo::util::IComparator {
public:
    int Compare(void const* a, void const* b) const override {
        int const x = **static_cast<int* const*>(a);
        int const y = **static_cast<int* const*>(b);
        return x < y ? -1 : (x > y ? 1 : 0);
    }
};

void Qsort_Pointers(benchmark::State& state) {
    std::size_t const n = static_cast<std::size_t>(state.range(0));
    std::vector<int> values(n);
    std::vector<int*> unsorted(n), work(n);
    std::mt19937 random(3);
    for (std::size_t i = 0; i < n; ++i) {
        values[i] = static_cast<int>(random());
        unsorted[i] = &values[i];
    }
    CByPointee const comparator;
    lumo_bench::SideBySide(
        state,
        [&] {
            work = unsorted;
            lumo::util::qsort(work.data(), static_cast<unsigned>(n), sizeof(int*), comparator);
            benchmark::DoNotOptimize(work.data());
        },
        [&] {
            work = unsorted;
            if (state.range(1) != 0) {
                // The same comparator, called through its interface.
                lumo::util::IComparator const& through = comparator;
                std::sort(work.begin(), work.end(), [&through](int* const& a, int* const& b) {
                    return through.Compare(&a, &b) < 0;
                });
            } else {
                std::sort(work.begin(), work.end(), [](int* a, int* b) { return *a < *b; });
            }
            benchmark::DoNotOptimize(work.data());
        });
}
BENCHMARK(Qsort_Pointers)
    ->Args({1000000, 0})
    ->Args({1000000, 1})
    ->ArgNames({"count", "throughComparator"})
    ->Unit(benchmark::kMillisecond);

std::string const& RandomBytes(std::size_t n) {
    static std::string bytes;
    if (bytes.size() != n) {
        std::mt19937 random(42);
        bytes.assign(n, '\0');
        for (char& c : bytes)
            c = static_cast<char>(random());
    }
    return bytes;
}

// 64 MiB through a 64 KiB buffer in 64 KiB requests, against copying it in the same
// requests.
void BufferedInputStream_Read(benchmark::State& state) {
    std::size_t const total = 64u << 20, block = static_cast<std::size_t>(state.range(0));
    std::string const& source = RandomBytes(total);
    std::vector<char> target(block);
    lumo_bench::SideBySide(
        state,
        [&] {
            lumo::io::CMemoryInputStream memory(source.data(), total, false);
            lumo::io::CBufferedInputStream in(&memory, 64 << 10); // borrows `memory`
            while (in.Read(target.data(), static_cast<unsigned long>(block)) > 0)
                benchmark::DoNotOptimize(target.data());
        },
        [&] {
            for (std::size_t at = 0; at < total; at += block) {
                std::memcpy(target.data(), source.data() + at, block);
                benchmark::DoNotOptimize(target.data());
            }
        });
}
BENCHMARK(BufferedInputStream_Read)
    ->Arg(64 << 10)
    ->ArgName("request")
    ->Unit(benchmark::kMillisecond);

void Base64_Decode(benchmark::State& state) {
    std::size_t const n = static_cast<std::size_t>(state.range(0));
    std::string const& bytes = RandomBytes(n);
    lumo::base::CString const text = lumo::base::CBinaryData::ToBase64String(bytes.data(), n);
    std::vector<unsigned char> out(n + 8);
    lumo_bench::SideBySide(
        state,
        [&] {
            char* data = nullptr;
            unsigned long length = 0;
            lumo::base::CBinaryData::ParseBase64String(text, data, length);
            benchmark::DoNotOptimize(data);
            std::free(data);
        },
        [&] {
            int const made = EVP_DecodeBlock(
                out.data(), reinterpret_cast<unsigned char const*>(static_cast<char const*>(text)),
                static_cast<int>(text.GetLength()));
            benchmark::DoNotOptimize(made);
        });
}
BENCHMARK(Base64_Decode)->Arg(1 << 20)->ArgName("bytes")->Unit(benchmark::kMicrosecond);

} // namespace
