// Tests of the library's UTF-8 <-> UTF-16 codec against ICU: its strict decoder
// (U8_NEXT, u_strFromUTF8), u_strFromUTF8WithSub and u_strToUTF8(WithSub), on a table
// of valid and malformed texts and on generated ones long enough for the block paths.
#include "support/Utf8Reference.h"

#include <gtest/gtest.h>

#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

namespace utf8 = Vela::detail::utf8;
using lumotest::BytesOf;
using lumotest::Encoded;
using lumotest::Units;

// ICU's UTF-8 of `u`; ICU must succeed.
std::string IcuToUtf8(Units const& u, UChar32 sub, int32_t* subs) {
    bool ok = false;
    std::string out = lumotest::IcuToUtf8(u, sub, subs, ok);
    EXPECT_TRUE(ok);
    return out;
}

Units IcuFromUtf8(std::string const& s, UChar32 sub, int32_t* subs) {
    std::vector<UChar> out(s.size() + 1);
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(out.data(), int32_t(out.size()), &length, s.data(), int32_t(s.size()), sub,
                         subs, &status);
    EXPECT_TRUE(U_SUCCESS(status) || sub < 0);
    return Units(out.begin(), out.begin() + (U_SUCCESS(status) ? length : 0));
}

template <class Policy>
Units Decoded(std::string const& s, std::size_t room = ~std::size_t(0) >> 2) {
    Units out(s.size() < room ? s.size() : room);
    auto const r = utf8::Decode<Policy>(BytesOf(s), BytesOf(s) + s.size(), out.data(), out.size());
    // Counting (no target) agrees with converting.
    auto const counted = utf8::Decode<Policy>(BytesOf(s), BytesOf(s) + s.size(), nullptr, room);
    EXPECT_EQ(counted.units, r.units);
    EXPECT_EQ(counted.bytes, r.bytes);
    out.resize(r.units);
    return out;
}

// Checks every decoding and encoding policy on one text against ICU.
void CheckText(std::string const& s) {
    SCOPED_TRACE(::testing::PrintToString(s));
    lumotest::Utf8Reference const ref = lumotest::StrictDecoding(s);
    bool const wellFormed = ref.prefixBytes == s.size();

    // Strict, stopping: ICU's strict decoding of the well-formed prefix; the block
    // counter finds the same end.
    EXPECT_EQ(Decoded<utf8::StrictStop>(s), ref.prefix);
    utf8::Byte const* stop = nullptr;
    EXPECT_EQ(utf8::Count<utf8::StrictStop>(BytesOf(s), BytesOf(s) + s.size(), &stop),
              ref.prefix.size());
    EXPECT_EQ(std::size_t(stop - BytesOf(s)), ref.prefixBytes);
    if (wellFormed) {
        EXPECT_EQ(ref.prefix, IcuFromUtf8(s, -1, nullptr));
    }

    // Strict, replacing: one U+FFFD a byte where ICU puts one per maximal subpart.
    Units const replaced = Decoded<utf8::StrictReplace>(s);
    EXPECT_EQ(replaced, ref.replaced);
    int32_t subs = 0;
    Units const icu = IcuFromUtf8(s, 0xFFFD, &subs);
    EXPECT_EQ(subs == 0, wellFormed);
    if (wellFormed) {
        EXPECT_EQ(replaced, icu);
    }

    // Lenient, stopping: accepts at least the strict prefix and converts it alike.
    Units const lenient = Decoded<utf8::LenientStop>(s);
    ASSERT_GE(lenient.size(), ref.prefix.size());
    EXPECT_TRUE(std::equal(ref.prefix.begin(), ref.prefix.end(), lenient.begin()));
    stop = nullptr;
    EXPECT_EQ(utf8::Count<utf8::LenientStop>(BytesOf(s), BytesOf(s) + s.size(), &stop),
              lenient.size());
    Units decodedValid(lenient.size() + 1);
    utf8::DecodeValid(BytesOf(s), stop, decodedValid.data());
    decodedValid.resize(lenient.size());
    EXPECT_EQ(decodedValid, lenient);

    // A room in units: whole characters only, a pair never split.
    for (std::size_t room : {std::size_t(0), std::size_t(1), ref.replaced.size() / 2}) {
        Units const part = Decoded<utf8::StrictReplace>(s, room);
        ASSERT_LE(part.size(), room);
        EXPECT_TRUE(std::equal(part.begin(), part.end(), ref.replaced.begin()));
        EXPECT_TRUE(part.size() == ref.replaced.size() || part.size() + 2 > room);
        if (!part.empty() && part.size() < ref.replaced.size()) {
            EXPECT_FALSE(utf8::IsHighSurrogate(part.back()) &&
                         utf8::IsLowSurrogate(ref.replaced[part.size()]));
        }
    }
}

// Checks the encoding policies on UTF-16 text (surrogates paired or not) against ICU.
void CheckUnits(Units const& u) {
    SCOPED_TRACE(::testing::PrintToString(u));
    std::size_t const room = u.size() * 3 + 8;
    int32_t subs = 0;
    std::string const question = IcuToUtf8(u, '?', &subs);
    utf8::Question q;
    EXPECT_EQ(Encoded(u, q, room), question);
    EXPECT_EQ(utf8::CountBytes<utf8::Question>(u.data(), u.data() + u.size()), question.size());

    utf8::Replace r;
    std::string const replaced = IcuToUtf8(u, 0xFFFD, &subs);
    EXPECT_EQ(Encoded(u, r, room), replaced);
    EXPECT_EQ(r.replaced, subs > 0);
    EXPECT_EQ(utf8::CountBytes<utf8::Replace>(u.data(), u.data() + u.size()), replaced.size());

    // The text before the first 0 unit, from several alignments and bounds.
    for (std::size_t from = 0; from < 4 && from <= u.size(); ++from) {
        unsigned short const* const begin = u.data() + from;
        std::size_t const zero = std::size_t(std::find(begin, u.data() + u.size(), 0) - begin);
        if (zero + from < u.size()) {
            EXPECT_EQ(utf8::FindZero<false>(begin, nullptr), begin + zero);
        }
        for (std::size_t bound = 0; from + bound <= u.size(); bound += 1 + bound / 4) {
            unsigned short const* const found = utf8::FindZero(begin, begin + bound);
            EXPECT_EQ(std::size_t(found - begin), zero < bound ? zero : bound);
        }
    }

    // Own value: the lenient decoder gives the very units back.
    utf8::OwnValue own;
    std::string const mine = Encoded(u, own, room);
    EXPECT_EQ(utf8::CountBytes<utf8::OwnValue>(u.data(), u.data() + u.size()), mine.size());
    EXPECT_EQ(Decoded<utf8::LenientStop>(mine), u);
    if (subs == 0) {
        EXPECT_EQ(mine, replaced);
    }

    // A smaller target takes the longest prefix of whole sequences that fits.
    for (std::size_t small : {std::size_t(0), std::size_t(3), question.size() / 2}) {
        std::string const part = Encoded(u, q, small);
        ASSERT_LE(part.size(), small);
        EXPECT_EQ(question.compare(0, part.size(), part), 0);
        if (part.size() < question.size()) {
            std::uint32_t c;
            int const next =
                utf8::DecodeOne(BytesOf(question) + part.size(), question.size() - part.size(), c);
            EXPECT_GT(part.size() + std::size_t(next), small);
        }
    }
}

TEST(Utf8Codec, Table) {
    char const* const texts[] = {
        "", "plain ASCII", "\xC3\xA9t\xC3\xA9", "\xE4\xB8\xAD\xE6\x96\x87", "\xF0\x9F\x98\x80!",
        // Boundaries of each length and of the planes.
        "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
        // Overlong forms, encoded surrogates, beyond U+10FFFF, bytes that start nothing.
        "a\xC0\x80z", "a\xC1\xBFz", "a\xE0\x80\x80z", "a\xE0\x9F\xBFz", "a\xED\xA0\x80z",
        "a\xED\xBF\xBFz", "a\xF0\x80\x80\x80z", "a\xF0\x8F\xBF\xBFz", "a\xF4\x90\x80\x80z",
        "a\xF5\x80\x80\x80z", "a\xF8\x88\x80\x80\x80z", "a\xFF\xFEz", "\x80", "\xBF\x80\x80",
        // Sequences cut short, in the middle and at the end.
        "a\xC3", "a\xE4\xB8", "a\xF0\x9F\x98", "a\xE4z\xB8", "\xF0\x9F\x98\xF0\x9F\x98\x80",
        // The same faults past the first 16-byte block and across block boundaries.
        "0123456789abcde\xC3\xA9", "0123456789abcdef\xE0\x80\x80", "0123456789abcd\xF0\x9F\x98\x80",
        "0123456789abcdef0123456789abcd\xED\xA0\x80", "0123456789abcdef\xF4\x90\x80\x80tail",
        "0123456789abcdef0123456789abcdef\xC1\x81",
        "\xE4\xB8\xAD\xE4\xB8\xAD\xE4\xB8\xAD\xE4\xB8"
        "\xAD\xE4\xB8\xAD\xE4\xB8\xAD\xC3"};
    for (char const* text : texts)
        CheckText(text);
    std::string withZero("a\0b\xC3\xA9", 5);
    CheckText(withZero);

    Units const units[] = {{},
                           {'a', 0xE9, 0x4E2D, 0xD83D, 0xDE00},
                           {0xD83D},
                           {0xDE00, 'x'},
                           {0xD83D, 'x', 0xDC00},
                           {0xDBFF, 0xDFFF, 0xDBFF},
                           {'0',    '1',    '2',    '3',   '4',   '5',   '6', 0xD800,
                            0xDC00, '9',    0xDC00, 'b',   'c',   'd',   'e', 0xD800,
                            0xDC00, 0xD800, 0,      0x7FF, 0x800, 0xFFFF}};
    for (Units const& u : units)
        CheckUnits(u);
}

// Generated texts: pieces of every kind and fault, runs long enough for the block
// paths, faults at every offset of a block.
TEST(Utf8Codec, Generated) {
    std::mt19937 rng(20261123);
    auto pick = [&rng](std::uint32_t lo, std::uint32_t hi) {
        return std::uniform_int_distribution<std::uint32_t>(lo, hi)(rng);
    };
    char const* const faults[] = {"\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                                  "\xF5",     "\xFF",         "\x80",         "\xC3",
                                  "\xE4\xB8", "\xF0\x9F\x98", "\xC1",         "\xF8"};
    for (int round = 0; round < 3000; ++round) {
        std::string s;
        Units u;
        int const pieces = int(pick(0, 80));
        bool const faulty = pick(0, 2) == 0;
        for (int k = 0; k < pieces; ++k) {
            std::uint32_t const kind = pick(0, 9);
            std::uint32_t c = kind < 5   ? pick(pick(0, 200) == 0 ? 0 : 1, 0x7F)
                              : kind < 7 ? pick(0x80, 0x7FF)
                              : kind < 9 ? pick(0x800, 0xFFFF)
                                         : pick(0x10000, 0x10FFFF);
            if (faulty && pick(0, 30) == 0)
                s += faults[pick(0, 11)];
            if (utf8::IsSurrogate(c)) {
                // Unpaired surrogates in the UTF-16 text only.
                u.push_back(static_cast<unsigned short>(c));
                continue;
            }
            utf8::Byte four[4];
            s.append(reinterpret_cast<char const*>(four), std::size_t(utf8::EncodeOne(c, four)));
            if (c >= 0x10000) {
                u.push_back(static_cast<unsigned short>(U16_LEAD(c)));
                u.push_back(static_cast<unsigned short>(U16_TRAIL(c)));
            } else {
                u.push_back(static_cast<unsigned short>(c));
            }
        }
        CheckText(s);
        CheckUnits(u);
        if (HasFailure())
            break;
    }
}

} // namespace
