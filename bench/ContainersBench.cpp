// The containers against the standard containers a user would otherwise pick,
// doing the same work with the same hash and comparison functions:
// CObjectHashtable vs std::unordered_map (put and get of 100k object keys),
// CStringSet vs std::unordered_set<std::string> (insert and look up 100k keys of
// 12 characters), lumo::util::qsort vs std::sort (1M pointers).
#include <lumo/base/Object.h>
#include <lumo/util/Comparator.h>
#include <lumo/util/ObjectHashtable.h>
#include <lumo/util/StringSet.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

using lumo::base::CObject;

namespace {

int const kKeys = 100000;
int const kSortCount = 1000000;

class CBenchKey : public CObject {
public:
    explicit CBenchKey(int value) : m_value(value) {}
    std::int32_t GetHashCode() const override {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(m_value) * 2654435761u);
    }
    bool Equals(CObject const* other) const override {
        return other == this || static_cast<CBenchKey const*>(other)->m_value == m_value;
    }

private:
    int m_value;
};

std::vector<std::unique_ptr<CBenchKey>> const& Keys() {
    static std::vector<std::unique_ptr<CBenchKey>> keys = [] {
        std::vector<std::unique_ptr<CBenchKey>> made;
        std::mt19937 random(1);
        for (int i = 0; i < kKeys; ++i)
            made.emplace_back(new CBenchKey(static_cast<int>(random())));
        return made;
    }();
    return keys;
}

struct ObjectHash {
    std::size_t operator()(CObject const* key) const {
        return static_cast<std::uint32_t>(key->GetHashCode());
    }
};
struct ObjectEquals {
    bool operator()(CObject const* a, CObject const* b) const { return a->Equals(b); }
};

void ObjectHashtable_PutGet_Lumo(benchmark::State& state) {
    auto const& keys = Keys();
    for (auto _ : state) {
        lumo::util::CObjectHashtable table(101, 0.75f, false); // the keys stay ours
        for (auto const& key : keys)
            table.Put(key.get(), key.get());
        for (auto const& key : keys)
            benchmark::DoNotOptimize(table.Get(key.get()));
    }
}
BENCHMARK(ObjectHashtable_PutGet_Lumo)->Unit(benchmark::kMillisecond);

void ObjectHashtable_PutGet_UnorderedMap(benchmark::State& state) {
    auto const& keys = Keys();
    for (auto _ : state) {
        std::unordered_map<CObject*, CObject*, ObjectHash, ObjectEquals> table;
        for (auto const& key : keys)
            table[key.get()] = key.get();
        for (auto const& key : keys)
            benchmark::DoNotOptimize(table.at(key.get()));
    }
}
BENCHMARK(ObjectHashtable_PutGet_UnorderedMap)->Unit(benchmark::kMillisecond);

std::vector<std::string> const& Texts() {
    static std::vector<std::string> texts = [] {
        std::vector<std::string> made;
        std::mt19937 random(2);
        for (int i = 0; i < kKeys; ++i) {
            std::string text(12, ' ');
            for (char& c : text)
                c = static_cast<char>('a' + random() % 26);
            made.push_back(text);
        }
        return made;
    }();
    return texts;
}

void StringSet_PutContains_Lumo(benchmark::State& state) {
    auto const& texts = Texts();
    for (auto _ : state) {
        lumo::util::CStringSet set;
        for (auto const& text : texts)
            set.Put(text.c_str());
        for (auto const& text : texts)
            benchmark::DoNotOptimize(set.Contains(text.c_str()));
    }
}
BENCHMARK(StringSet_PutContains_Lumo)->Unit(benchmark::kMillisecond);

void StringSet_PutContains_UnorderedSet(benchmark::State& state) {
    auto const& texts = Texts();
    for (auto _ : state) {
        std::unordered_set<std::string> set;
        for (auto const& text : texts)
            set.insert(text);
        for (auto const& text : texts)
            benchmark::DoNotOptimize(set.count(text));
    }
}
BENCHMARK(StringSet_PutContains_UnorderedSet)->Unit(benchmark::kMillisecond);

// Orders slots holding int pointers by the ints they point to.
class CByPointee : public lumo::util::IComparator {
public:
    int Compare(void const* a, void const* b) const override {
        int const x = **static_cast<int* const*>(a);
        int const y = **static_cast<int* const*>(b);
        return x < y ? -1 : (x > y ? 1 : 0);
    }
};

struct SortData {
    std::vector<int> values;
    std::vector<int*> pointers;
    SortData() : values(kSortCount), pointers(kSortCount) {
        std::mt19937 random(3);
        for (int i = 0; i < kSortCount; ++i) {
            values[i] = static_cast<int>(random());
            pointers[i] = &values[i];
        }
    }
};

SortData const& Unsorted() {
    static SortData data;
    return data;
}

void Qsort_1M_Lumo(benchmark::State& state) {
    CByPointee const comparator;
    std::vector<int*> work(kSortCount);
    for (auto _ : state) {
        std::memcpy(work.data(), Unsorted().pointers.data(), kSortCount * sizeof(int*));
        lumo::util::qsort(work.data(), kSortCount, sizeof(int*), comparator);
        benchmark::DoNotOptimize(work.data());
    }
}
BENCHMARK(Qsort_1M_Lumo)->Unit(benchmark::kMillisecond);

void Qsort_1M_StdSort(benchmark::State& state) {
    CByPointee const comparator;
    lumo::util::IComparator const& through = comparator; // the same virtual call
    std::vector<int*> work(kSortCount);
    for (auto _ : state) {
        std::memcpy(work.data(), Unsorted().pointers.data(), kSortCount * sizeof(int*));
        std::sort(work.begin(), work.end(),
                  [&through](int* const& a, int* const& b) { return through.Compare(&a, &b) < 0; });
        benchmark::DoNotOptimize(work.data());
    }
}
BENCHMARK(Qsort_1M_StdSort)->Unit(benchmark::kMillisecond);

} // namespace
