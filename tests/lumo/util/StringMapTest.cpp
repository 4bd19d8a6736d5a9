// Tests of CStringMap and CUnicodeStringMap, one typed suite over both (the same UTF-8
// texts, as bytes and as UTF-16 units): exact keys in insertion order, removal, capacity,
// copies and iterators; then the 8-bit map's keys without case, and large maps against a
// scan.
#include <lumo/util/StringMap.h>
#include <lumo/util/UnicodeStringMap.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace lumo::base;
using namespace lumo::util;

namespace {

using Strings = std::vector<std::string>;

template <class M> struct Traits;
template <> struct Traits<CStringMap> {
    static constexpr char const* unit = "lumo/util/StringMap";
    static CString T(char const* utf8) { return CString(utf8); }
    static CStringMap Make(unsigned long initial, unsigned long increment) {
        return CStringMap(true, initial, increment);
    }
};
template <> struct Traits<CUnicodeStringMap> {
    static constexpr char const* unit = "lumo/util/UnicodeStringMap";
    static CUnicodeString T(char const* utf8) { return CUnicodeString::FromUTF8(utf8); }
    static CUnicodeStringMap Make(unsigned long initial, unsigned long increment) {
        return CUnicodeStringMap(initial, increment);
    }
};

std::string Str(CString const& s) {
    return static_cast<char const*>(s);
}
std::string Str(CUnicodeString const& s) {
    return static_cast<char const*>(s.ToUTF8());
}

template <class M> Strings KeysOf(M const& map) {
    Strings keys;
    typename M::CKeyIterator it = map.GetKeyIterator();
    while (it.HasMoreElements())
        keys.push_back(Str(it.NextElement()));
    return keys;
}

template <class M> class StringMaps : public ::testing::Test {};
struct Names {
    template <class M> static std::string GetName(int) {
        return std::is_same_v<M, CStringMap> ? "Bytes" : "Utf16";
    }
};
using Kinds = ::testing::Types<CStringMap, CUnicodeStringMap>;
TYPED_TEST_SUITE(StringMaps, Kinds, Names);

} // namespace

TYPED_TEST(StringMaps, ExactKeysInInsertionOrder) {
    using K = Traits<TypeParam>;
    auto const T = &K::T;
    TypeParam map = K::Make(0, 0); // increment 0 means steps of 5
    map.Put(T("Key"), T("one"));
    EXPECT_EQ(map.GetCapacity(), 5u);
    map.Put(T("KEY"), T("two")); // keys compare exactly
    map.Put(T("é"), nullptr);
    map.Put(T("alpha"), T("three"));
    map.Put(T("Key"), T("replaced")); // the value replaced in place
    EXPECT_EQ(KeysOf(map), (Strings{"Key", "KEY", "é", "alpha"}));
    EXPECT_EQ(Str(map.Get(T("Key"))), "replaced");
    EXPECT_TRUE(map.Get(T("é")).IsEmpty());
    map.Put(T("é"), T("x"));
    map.Put(T("é"), nullptr); // a null value empties the stored one
    EXPECT_TRUE(map.GetAt(2).IsEmpty());
    EXPECT_EQ(Str(map.GetKeyAt(3)), "alpha");
    EXPECT_EQ(map.GetIndexOfKey(T("KEY")), 1);
    EXPECT_EQ(map.GetIndexOfKey(T("key")), -1);
    EXPECT_TRUE(map.ContainsKey(T("é")));
    EXPECT_EQ(map.GetIndexOf(T("three")), 3);
    EXPECT_EQ(map.GetIndexOf(T("THREE")), -1); // values compare exactly
    EXPECT_TRUE(map.Contains(T("")));
    EXPECT_TRUE(map.Contains(nullptr));
    EXPECT_THROW(map.GetKeyAt(4), CArrayIndexOutOfBoundsException);
    EXPECT_THROW(map.GetAt(4), CArrayIndexOutOfBoundsException);
    lumotest::ExpectThrowIn<CNoSuchElementException>(K::unit, [&] { map.Get(T("key")); });
    for (char const* key : {"0", "1"})
        map.Put(T(key), T("n"));
    EXPECT_EQ(map.GetCapacity(), 10u);

    lumotest::IllegalIn const invalid{K::unit};
    invalid([&] { map.Put(T(""), T("v")); }, "Invalid key.");
    invalid([&] { map.Put(nullptr, T("v")); }, "Invalid key.");
    invalid([&] { map.Get(T("")); }, "Invalid key.");
    invalid([&] { map.ContainsKey(nullptr); }, "Invalid key.");
    invalid([&] { map.GetIndexOfKey(T("")); }, "Invalid key.");
    invalid([&] { map.Remove(nullptr); }, "Invalid key.");
    EXPECT_EQ(map.GetSize(), 6u);
}

TYPED_TEST(StringMaps, RemovalCapacityCopiesAndIterators) {
    auto const T = &Traits<TypeParam>::T;
    TypeParam map = Traits<TypeParam>::Make(7, 3);
    EXPECT_EQ(map.GetCapacity(), 9u);
    for (int i = 0; i < 8; ++i)
        map.Put(T(("k" + std::to_string(i)).c_str()), T(std::to_string(i * i).c_str()));
    map.Remove(T("k2"));
    map.Remove(T("absent")); // nothing
    EXPECT_EQ(map.GetSize(), 7u);
    EXPECT_EQ(Str(map.GetKeyAt(2)), "k3");
    EXPECT_EQ(Str(map.GetAt(2)), "9"); // the values moved with their keys
    map.Remove(T("k0"));
    map.Remove(T("k1"));
    EXPECT_EQ(map.GetCapacity(), 6u);

    TypeParam copy(map);
    EXPECT_TRUE(copy == map);
    copy.Get(T("k7")) = T("changed");
    EXPECT_TRUE(copy != map);
    EXPECT_EQ(Str(map.Get(T("k7"))), "49");
    copy = map;
    EXPECT_TRUE(copy == map);

    typename TypeParam::CConstValueIterator values = map.GetValueIterator();
    Strings seen;
    while (values.HasMoreElements())
        seen.push_back(Str(values.NextElement()));
    EXPECT_EQ(seen, (Strings{"9", "16", "25", "36", "49"}));
    EXPECT_THROW(values.NextElement(), CNoSuchElementException);
    values.Reset();
    EXPECT_EQ(Str(values.NextElement()), "9");

    map.TrimToSize();
    EXPECT_EQ(map.GetCapacity(), 5u);
    map.EnsureCapacity(7);
    EXPECT_EQ(map.GetCapacity(), 9u);
    map.RemoveAll();
    EXPECT_TRUE(map.IsEmpty());
    EXPECT_EQ(map.GetCapacity(), 3u);
    map.TrimToSize();
    EXPECT_EQ(map.GetCapacity(), 0u);
    map.Put(T("again"), T("1"));
    EXPECT_EQ(Str(map.Get(T("again"))), "1");
    EXPECT_THROW(map.EnsureCapacity(0xFFFFFFFFul), CMemoryException);
    EXPECT_EQ(map.GetSize(), 1u);
}

TEST(StringMap, KeysWithoutCaseKeepTheFirstSpelling) {
    CStringMap map(false);
    EXPECT_FALSE(map.IsKeyCaseSensitive());
    map.Put("Key", "one");
    map.Put("KEY", "two"); // the same key: value replaced, first spelling kept
    map.Put("beta", "b");
    EXPECT_EQ(KeysOf(map), (Strings{"Key", "beta"}));
    EXPECT_STREQ(map.Get("key"), "two");
    EXPECT_EQ(map.GetIndexOfKey("BETA"), 1);
    EXPECT_TRUE(map.ContainsKey("kEY"));
    EXPECT_EQ(map.GetIndexOf("TWO"), -1); // values compare exactly
    // Assignment and copies take the key comparison along.
    map = CStringMap();
    EXPECT_TRUE(map.IsKeyCaseSensitive());
    CStringMap const folded(false);
    EXPECT_FALSE(CStringMap(folded).IsKeyCaseSensitive());
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
                CString stored(model[i].first.c_str());
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
