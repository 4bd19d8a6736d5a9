// Tests of CStringMap: keys in insertion order with and without case, removal,
// capacity, copies and iterators.
#include <lumo/util/StringMap.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

using lumo::base::CArrayIndexOutOfBoundsException;
using lumo::base::CIllegalArgumentException;
using lumo::util::CNoSuchElementException;
using lumo::util::CStringMap;

namespace {

std::vector<std::string> KeysOf(CStringMap const& map) {
    std::vector<std::string> keys;
    CStringMap::CKeyIterator it = map.GetKeyIterator();
    while (it.HasMoreElements())
        keys.push_back(static_cast<char const*>(it.NextElement()));
    return keys;
}

template <class F> void ExpectInvalidKey(F f) {
    lumotest::ExpectThrowIn<CIllegalArgumentException>("lumo/util/StringMap", f, "Invalid key.");
}

} // namespace

TEST(StringMap, KeysInInsertionOrderWithOrWithoutCase) {
    CStringMap map(false, 0, 0); // increment 0 means steps of 5
    EXPECT_FALSE(map.IsKeyCaseSensitive());
    map.Put("Key", "one");
    EXPECT_EQ(map.GetCapacity(), 5u);
    map.Put("KEY", "two"); // the same key: value replaced, first spelling kept
    map.Put("beta", nullptr);
    map.Put("alpha", "three");
    EXPECT_EQ(map.GetSize(), 3u);
    EXPECT_EQ(KeysOf(map), (std::vector<std::string>{"Key", "beta", "alpha"}));
    EXPECT_STREQ(map.Get("key"), "two");
    EXPECT_TRUE(map.Get("BETA").IsEmpty());
    map.Put("beta", "x");
    map.Put("beta", nullptr); // a null value empties the stored one
    EXPECT_TRUE(map.GetAt(1).IsEmpty());
    EXPECT_STREQ(map.GetKeyAt(2), "alpha");
    EXPECT_EQ(map.GetIndexOfKey("ALPHA"), 2);
    EXPECT_EQ(map.GetIndexOfKey("gamma"), -1);
    EXPECT_TRUE(map.ContainsKey("kEY"));
    EXPECT_EQ(map.GetIndexOf("three"), 2);
    EXPECT_EQ(map.GetIndexOf("THREE"), -1); // values compare exactly
    EXPECT_TRUE(map.Contains(""));
    EXPECT_TRUE(map.Contains(nullptr));
    EXPECT_THROW(map.GetKeyAt(3), CArrayIndexOutOfBoundsException);
    EXPECT_THROW(map.GetAt(3), CArrayIndexOutOfBoundsException);
    lumotest::ExpectThrowIn<CNoSuchElementException>("lumo/util/StringMap",
                                                     [&] { map.Get("gamma"); });
    for (int i = 0; i < 3; ++i)
        map.Put(std::to_string(i).c_str(), "n");
    EXPECT_EQ(map.GetCapacity(), 10u);

    CStringMap exact;
    exact.Put("Key", "1");
    exact.Put("KEY", "2");
    EXPECT_EQ(exact.GetSize(), 2u);
    EXPECT_THROW(exact.Get("key"), CNoSuchElementException);

    ExpectInvalidKey([&] { exact.Put("", "v"); });
    ExpectInvalidKey([&] { exact.Put(nullptr, "v"); });
    ExpectInvalidKey([&] { exact.Get(""); });
    ExpectInvalidKey([&] { exact.ContainsKey(nullptr); });
    ExpectInvalidKey([&] { exact.GetIndexOfKey(""); });
    ExpectInvalidKey([&] { exact.Remove(nullptr); });
    EXPECT_EQ(exact.GetSize(), 2u);
}

TEST(StringMap, RemovalCapacityCopiesAndIterators) {
    CStringMap map(true, 7, 3);
    EXPECT_EQ(map.GetCapacity(), 9u);
    for (int i = 0; i < 8; ++i)
        map.Put(("k" + std::to_string(i)).c_str(), std::to_string(i * i).c_str());
    map.Remove("k2");
    map.Remove("absent"); // nothing
    EXPECT_EQ(map.GetSize(), 7u);
    EXPECT_STREQ(map.GetKeyAt(2), "k3");
    EXPECT_STREQ(map.GetAt(2), "9"); // the values moved with their keys
    map.Remove("k0");
    map.Remove("k1");
    EXPECT_EQ(map.GetCapacity(), 6u);

    CStringMap copy(map);
    EXPECT_TRUE(copy == map);
    copy.Get("k7") = "changed";
    EXPECT_TRUE(copy != map);
    EXPECT_STREQ(map.Get("k7"), "49");
    CStringMap folded(false);
    folded.Put("A", "1");
    folded = map;
    EXPECT_TRUE(folded.IsKeyCaseSensitive());
    EXPECT_TRUE(folded == map);

    CStringMap::CConstValueIterator values = map.GetValueIterator();
    std::vector<std::string> seen;
    while (values.HasMoreElements())
        seen.push_back(static_cast<char const*>(values.NextElement()));
    EXPECT_EQ(seen, (std::vector<std::string>{"9", "16", "25", "36", "49"}));
    EXPECT_THROW(values.NextElement(), CNoSuchElementException);
    values.Reset();
    EXPECT_STREQ(values.NextElement(), "9");

    map.TrimToSize();
    EXPECT_EQ(map.GetCapacity(), 5u);
    map.EnsureCapacity(7);
    EXPECT_EQ(map.GetCapacity(), 9u);
    map.RemoveAll();
    EXPECT_TRUE(map.IsEmpty());
    EXPECT_EQ(map.GetCapacity(), 3u);
    map.TrimToSize();
    EXPECT_EQ(map.GetCapacity(), 0u);
    map.Put("again", "1");
    EXPECT_STREQ(map.Get("again"), "1");
    EXPECT_THROW(map.EnsureCapacity(0xFFFFFFFFul), lumo::base::CMemoryException);
    EXPECT_EQ(map.GetSize(), 1u);
}

// Random operations on maps large enough to be indexed, against a scan over a plain
// vector with the map's own key comparison, and the capacity rule recomputed.
TEST(StringMap, LargeMapsAnswerAsAScanWould) {
    // Case variants, characters folding across ASCII (KELVIN SIGN, LONG S), a
    // malformed byte and a 3-byte character.
    char const* const pieces[] = {"k",        "K",    "\xE2\x84\xAA", "s",        "S",
                                  "\xC5\xBF", "\xC3", "\xC3\xA4",     "\xC3\x84", "\xE2\x82\xAC",
                                  "x"};
    std::mt19937 random(3);
    for (bool caseSensitive : {true, false}) {
        CStringMap map(caseSensitive, 0, 4);
        std::vector<std::pair<std::string, std::string>> model;
        std::uint32_t capacity = 0;
        auto find = [&](std::string const& key) -> long {
            for (std::size_t i = 0; i < model.size(); ++i) {
                lumo::base::CString stored(model[i].first.c_str());
                int const order = caseSensitive ? stored.Compare(key.c_str())
                                                : stored.CompareIgnoreCase(key.c_str());
                if (order == 0)
                    return static_cast<long>(i);
            }
            return -1;
        };
        for (int step = 0; step < 6000; ++step) {
            std::string key;
            for (int n = 1 + static_cast<int>(random() % 3); n > 0; --n)
                key += pieces[random() % (sizeof pieces / sizeof *pieces)];
            long const expected = find(key);
            ASSERT_EQ(map.GetIndexOfKey(key.c_str()), expected) << key;
            unsigned const action = random() % 10;
            if (action < 6) {
                std::string const value = std::to_string(step);
                map.Put(key.c_str(), value.c_str());
                if (expected >= 0) {
                    model[expected].second = value;
                } else {
                    if (model.size() == capacity)
                        capacity += 4;
                    model.emplace_back(key, value);
                }
            } else if (action < 8) {
                map.Remove(key.c_str());
                if (expected >= 0) {
                    model.erase(model.begin() + expected);
                    std::uint32_t const target = std::max<std::uint32_t>(
                        4, (static_cast<std::uint32_t>(model.size()) + 3) / 4 * 4);
                    capacity = std::min(capacity, target);
                }
            } else if (action == 8 && !model.empty()) {
                // A key rewritten through the writable reference is found where it is.
                std::size_t const at = random() % model.size();
                std::string const other = model[random() % model.size()].first;
                map.GetKeyAt(at) = other.c_str();
                model[at].first = other;
            } else if (expected >= 0) {
                ASSERT_STREQ(map.Get(key.c_str()), model[expected].second.c_str());
            }
            ASSERT_EQ(map.GetSize(), model.size());
            ASSERT_EQ(map.GetCapacity(), capacity);
        }
        for (std::size_t i = 0; i < model.size(); ++i) {
            ASSERT_EQ(map.GetIndexOfKey(model[i].first.c_str()), find(model[i].first));
            ASSERT_STREQ(map.GetKeyAt(i), model[i].first.c_str());
            ASSERT_STREQ(map.GetAt(i), model[i].second.c_str());
        }
        CStringMap copy(map);
        EXPECT_TRUE(copy == map);
        for (std::size_t i = 0; i < model.size(); ++i)
            ASSERT_EQ(copy.GetIndexOfKey(model[i].first.c_str()), find(model[i].first));
    }
}
