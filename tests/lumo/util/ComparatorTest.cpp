// Tests of util::qsort: where equal elements land, as the algorithm defines (against a
// step-by-step rendering of it), and sorting elements of any width and input shape.
#include <lumo/util/Comparator.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

using lumo::util::IComparator;

namespace {

// A record sorted by key, carrying a tag that shows where equal keys went.
struct Record {
    int key;
    int tag;
};

class CByKey : public IComparator {
public:
    int Compare(void const* a, void const* b) const override {
        ++calls;
        int const x = static_cast<Record const*>(a)->key;
        int const y = static_cast<Record const*>(b)->key;
        return x < y ? -1 : (x > y ? 1 : 0);
    }
    mutable long long calls = 0;
};

// Compares elements of any width by their first byte.
class CFirstByte : public IComparator {
public:
    int Compare(void const* a, void const* b) const override {
        return *static_cast<unsigned char const*>(a) - *static_cast<unsigned char const*>(b);
    }
};

std::vector<int> Tags(std::vector<Record> const& records) {
    std::vector<int> tags;
    for (Record const& r : records)
        tags.push_back(r.tag);
    return tags;
}

// The sort step by step as documented: scans that stop at each element out of place,
// then selection of the maximum for eight or fewer (recursion stands in for the
// explicit stack, which changes nothing about the result).
void ReferenceSort(Record* lo, Record* hi, IComparator const& comparator) {
    while (hi - lo + 1 > 8) {
        std::swap(lo[(hi - lo + 1) / 2], *lo);
        Record* loguy = lo;
        Record* higuy = hi + 1;
        for (;;) {
            do
                ++loguy;
            while (loguy <= hi && comparator.Compare(loguy, lo) <= 0);
            do
                --higuy;
            while (higuy > lo && comparator.Compare(higuy, lo) >= 0);
            if (higuy < loguy)
                break;
            std::swap(*loguy, *higuy);
        }
        std::swap(*lo, *higuy);
        ReferenceSort(lo, higuy - 1, comparator);
        lo = loguy;
    }
    for (; hi > lo; --hi) {
        Record* max = lo;
        for (Record* p = lo + 1; p <= hi; ++p)
            if (comparator.Compare(p, max) > 0)
                max = p;
        std::swap(*max, *hi);
    }
}

} // namespace

TEST(Comparator, QsortPlacesEqualElementsAsTheAlgorithmDefines) {
    CByKey byKey;
    // Selection of the maximum: the first of equal maxima goes to the end.
    std::vector<Record> three = {{1, 0}, {1, 1}, {1, 2}};
    lumo::util::qsort(three.data(), 3, sizeof(Record), byKey);
    EXPECT_EQ(Tags(three), (std::vector<int>{1, 2, 0}));

    // Nine equal keys: the middle element is swapped to the front as pivot and
    // both cursors run through, so nothing else moves.
    std::vector<Record> nine;
    for (int i = 0; i < 9; ++i)
        nine.push_back({7, i});
    lumo::util::qsort(nine.data(), 9, sizeof(Record), byKey);
    EXPECT_EQ(Tags(nine), (std::vector<int>{4, 1, 2, 3, 0, 5, 6, 7, 8}));

    // Everywhere else, against the steps themselves: sizes around the partitioning's
    // block and zone sizes, few to many distinct keys, and runs of keys on one side of
    // the pivot (sorted, reversed, organ pipe).
    std::mt19937 random(7);
    for (unsigned count :
         {9u, 10u, 17u, 63u, 64u, 65u, 200u, 256u, 257u, 258u, 300u, 1000u, 5000u, 70000u}) {
        // Few distinct keys take quadratic time: keep those inputs small. Shapes 2
        // and 3 are one key but for a few smaller ones near the front or larger ones at
        // the back, which the scans must find far from where they are looking.
        for (int shape = count > 5000 ? 4 : 0; shape < 8; ++shape) {
            unsigned const distinct[] = {2, 5, count / 3 + 1, 1u << 30};
            std::vector<Record> records(count);
            for (unsigned i = 0; i < count; ++i) {
                unsigned const r = static_cast<unsigned>(random());
                unsigned const keys[] = {r % distinct[0],
                                         r % distinct[1],
                                         i >= 1 && i < 40 ? r % 3 : 3,
                                         i + 40 >= count ? 4 + r % 3 : 3,
                                         r % distinct[2],
                                         r % distinct[3],
                                         i / 3,
                                         (i < count / 2 ? i : count - i) / 2};
                records[i] = {static_cast<int>(keys[shape]), static_cast<int>(i)};
            }
            std::vector<Record> expected = records;
            ReferenceSort(expected.data(), expected.data() + count - 1, byKey);
            lumo::util::qsort(records.data(), count, sizeof(Record), byKey);
            ASSERT_EQ(Tags(records), Tags(expected)) << count << " " << shape;
        }
    }

    byKey.calls = 0;
    lumo::util::qsort(nine.data(), 1, sizeof(Record), byKey);
    lumo::util::qsort(nine.data(), 9, 0, byKey);
    lumo::util::qsort(nullptr, 0, sizeof(Record), byKey);
    EXPECT_EQ(byKey.calls, 0);
}

TEST(Comparator, QsortSortsAnyWidthAndShape) {
    CByKey byKey;
    std::mt19937 random(42);
    // Random keys with repeats, then presorted, reversed and constant inputs.
    for (int shape = 0; shape < 4; ++shape) {
        for (unsigned count : {2u, 8u, 9u, 10u, 100u, 5000u, 100000u}) {
            std::vector<Record> records(count);
            for (unsigned i = 0; i < count; ++i) {
                int const keys[] = {static_cast<int>(random() % (count / 2 + 1)),
                                    static_cast<int>(i), static_cast<int>(count - i), 3};
                records[i] = {keys[shape], static_cast<int>(i)};
            }
            lumo::util::qsort(records.data(), count, sizeof(Record), byKey);
            ASSERT_TRUE(
                std::is_sorted(records.begin(), records.end(),
                               [](Record const& a, Record const& b) { return a.key < b.key; }))
                << shape << " " << count;
            // Same elements, just reordered.
            std::vector<int> tags = Tags(records);
            std::sort(tags.begin(), tags.end());
            for (unsigned i = 0; i < count; ++i)
                ASSERT_EQ(tags[i], static_cast<int>(i));
        }
    }

    // Odd widths: 1 byte, 3 bytes, and 100 bytes (beyond any single-step swap).
    CFirstByte firstByte;
    for (unsigned width : {1u, 3u, 100u}) {
        unsigned const count = 50;
        std::vector<unsigned char> data(width * count);
        for (unsigned i = 0; i < count; ++i)
            std::memset(&data[i * width], static_cast<int>((i * 37) % 251), width);
        lumo::util::qsort(data.data(), count, width, firstByte);
        for (unsigned i = 0; i < count; ++i) {
            if (i > 0) {
                EXPECT_LE(data[(i - 1) * width], data[i * width]);
            }
            for (unsigned j = 1; j < width; ++j) // elements moved whole
                ASSERT_EQ(data[i * width + j], data[i * width]);
        }
    }
}
