// Tests of the 8-bit character routines over UTF-8: compare, search, substring, next
// character, case mapping, copy and truncate, and the UTF-16 conversions.
#include <vela/Chars.h>

#include <gtest/gtest.h>

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

using namespace Vela;

namespace {

// Reference model: characters decoded one by one (ICU's strict decoder); a malformed
// byte is one character of value 0x110000 + byte.
std::vector<UChar32> Chars(std::string const& s, bool fold) {
    std::vector<UChar32> out;
    auto const* p = reinterpret_cast<std::uint8_t const*>(s.data());
    int32_t const n = static_cast<int32_t>(s.size());
    for (int32_t i = 0; i < n;) {
        int32_t const start = i;
        UChar32 c;
        U8_NEXT(p, i, n, c);
        if (c < 0) {
            i = start + 1;
            c = 0x110000 + p[start];
        } else if (fold) {
            c = u_foldCase(c, U_FOLD_CASE_DEFAULT);
        }
        out.push_back(c);
    }
    return out;
}

std::vector<size_t> Boundaries(std::string const& s) {
    std::vector<size_t> out;
    auto const* p = reinterpret_cast<std::uint8_t const*>(s.data());
    int32_t const n = static_cast<int32_t>(s.size());
    for (int32_t i = 0; i < n;) {
        out.push_back(size_t(i));
        int32_t const start = i;
        UChar32 c;
        U8_NEXT(p, i, n, c);
        if (c < 0)
            i = start + 1;
    }
    out.push_back(size_t(n));
    return out;
}

int Sign(int v) {
    return v < 0 ? -1 : v > 0 ? 1 : 0;
}

int ReferenceCompare(std::string const& a, std::string const& b, bool fold) {
    auto const ca = Chars(a, fold), cb = Chars(b, fold);
    for (size_t i = 0; i < ca.size() && i < cb.size(); ++i)
        if (ca[i] != cb[i])
            return ca[i] < cb[i] ? -1 : 1;
    return ca.size() < cb.size() ? -1 : ca.size() > cb.size() ? 1 : 0;
}

long ReferenceSearch(std::string const& text, std::string const& pattern, bool fold) {
    auto const bounds = Boundaries(text);
    auto const pat = Chars(pattern, fold);
    for (size_t k = 0; k + 1 < bounds.size(); ++k) {
        // Characters from this boundary on, as the whole text decodes them.
        auto const rest = Chars(text.substr(bounds[k]), fold);
        if (rest.size() >= pat.size() && std::equal(pat.begin(), pat.end(), rest.begin()))
            return long(bounds[k]);
    }
    return -1;
}

// Random text from pieces that exercise every decoder path.
std::string RandomText(std::mt19937& rng, int maxPieces) {
    // Letters and their folds (ä Ä ß ſ, the Kelvin sign, CJK, U+1F600, U+10400 and
    // U+10428), malformed bytes (stray continuation, lone lead, truncated, overlong,
    // encoded surrogate, FF), and long ASCII runs with the neighbours of the letters.
    static std::vector<std::string> const pieces = [] {
        std::string const all =
            "a|b|A|B|k|K|s|S| |z|\xC3\xA4|\xC3\x84|\xC3\x9F|\xC5\xBF|\xE2\x84\xAA|"
            "\xE4\xB8\xAD|\xF0\x9F\x98\x80|\xF0\x90\x90\x80|\xF0\x90\x90\xA8|"
            "\xA4|\xC3|\xE4\xB8|\xC0\xAF|\xED\xA0\x80|\xFF|"
            "abcdefghijklmnopqrstuvwxyz|ABCDEFGHIJKLMNOPQRSTUVWXYZ|@[`{0123456789@[`{";
        std::vector<std::string> split(1);
        for (char c : all) {
            if (c == '|')
                split.emplace_back();
            else
                split.back() += c;
        }
        return split;
    }();
    std::uniform_int_distribution<int> count(0, maxPieces);
    std::uniform_int_distribution<int> pick(0, int(pieces.size()) - 1);
    std::string s;
    for (int n = count(rng); n > 0; --n)
        s += pieces[pick(rng)];
    return s;
}

std::u16string RandomUtf16(std::mt19937& rng, int maxUnits, bool allowUnpaired) {
    std::uniform_int_distribution<int> count(0, maxUnits);
    std::uniform_int_distribution<int> kind(0, 9);
    std::uniform_int_distribution<int> bmp(1, 0xFFFF);
    std::uniform_int_distribution<int> supp(0x10000, 0x10FFFF);
    std::uniform_int_distribution<int> ascii(1, 0x7F);
    std::u16string s;
    for (int n = count(rng); n > 0; --n) {
        int const k = kind(rng);
        if (k < 5) {
            s += char16_t(ascii(rng));
        } else if (k < 8) {
            int c;
            do
                c = bmp(rng);
            while (!allowUnpaired && c >= 0xD800 && c <= 0xDFFF);
            s += char16_t(c);
        } else {
            int const c = supp(rng) - 0x10000;
            s += char16_t(0xD800 + (c >> 10));
            s += char16_t(0xDC00 + (c & 0x3FF));
        }
    }
    return s;
}

unsigned short const* U(std::u16string const& s) {
    return reinterpret_cast<unsigned short const*>(s.c_str());
}

std::string ToUtf8(std::u16string const& s) {
    int32_t needed = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(nullptr, 0, &needed, s.data(), int32_t(s.size()), &status);
    std::string out(size_t(needed), '\0');
    status = U_ZERO_ERROR;
    u_strToUTF8(&out[0], needed, &needed, s.data(), int32_t(s.size()), &status);
    return out;
}

} // namespace

TEST(Chars, CompareTexts) {
    // What the model below does not reach: lengths cut the texts, a 0 byte ends them,
    // null texts are empty. With case the order is the code points' (UTF-8 byte order);
    // without, simple case folding; a malformed byte sorts after every character.
    struct Case {
        char const* a;
        long aLength;
        char const* b;
        long bLength;
        int withCase, sign;
    } const cases[] = {
        {"abcX", 3, "abcY", 3, 1, 0},
        {"ab\0x", 4, "ab", -1, 1, 0},
        {nullptr, -1, "", -1, 1, 0},
        {nullptr, -1, "a", -1, 1, -1},
        {"a", -1, nullptr, 5, 0, 1},
        {"\xEF\xBF\xBD", -1, "\xF0\x9F\x98\x80", -1, 1, -1},
        {"\xA4", -1, "\xF4\x8F\xBF\xBF", -1, 1, 1},
        {"\xC3\xA4\x80", -1, "\xC3\xA4\x81", -1, 1, -1},
        {"HeLLo World", -1, "hello world", -1, 0, 0},
        {"Stra\xC3\x9F"
         "e",
         -1, "STRASSE", -1, 0, 1}, // no full folding
    };
    for (auto const& test : cases)
        EXPECT_EQ(Sign(CHCompareTexts(test.a, test.aLength, test.b, test.bLength, test.withCase)),
                  test.sign)
            << &test - cases;

    // Against the character-by-character model, on texts sharing long prefixes.
    std::mt19937 rng(7);
    for (int round = 0; round < 20000; ++round) {
        std::string const common = RandomText(rng, 12);
        std::string const a = common + RandomText(rng, 3);
        std::string const b = common + RandomText(rng, 3);
        for (int fold = 0; fold < 2; ++fold) {
            int const want = ReferenceCompare(a, b, fold == 1);
            ASSERT_EQ(Sign(CHCompareTexts(a.c_str(), long(a.size()), b.c_str(), long(b.size()),
                                          fold == 1 ? 0 : 1)),
                      want)
                << "fold " << fold << " a=" << testing::PrintToString(a)
                << " b=" << testing::PrintToString(b);
            ASSERT_EQ(Sign(CHCompareTexts(b.c_str(), -1, a.c_str(), -1, fold == 1 ? 0 : 1)), -want);
        }
    }
}

TEST(Chars, SearchChar) {
    char const text[] = "a\xC3\xA4"
                        "b\xE4\xB8\xAD"
                        "a\xC3\xA4";
    long const n = long(std::strlen(text));
    // Beside the model below: lengths that cut the text or a character in it.
    EXPECT_EQ(CHSearchCharLeft(text, 4, 0x4E2D), nullptr);
    EXPECT_EQ(CHSearchCharLeft(text, 6, 0x4E2D), nullptr); // the character is cut
    EXPECT_EQ(CHSearchCharRight(text, 7, 'a'), text);
    // Values 0xFF80-0xFFFF are raw bytes (a sign-extended char), found anywhere.
    EXPECT_EQ(
        CHSearchCharLeft(text, n, static_cast<unsigned short>(static_cast<signed char>('\xB8'))),
        text + 5);
    // Surrogates and the terminator are never found; a 0 byte ends a text.
    EXPECT_EQ(CHSearchCharLeft(text, -1, 0xD800), nullptr);
    EXPECT_EQ(CHSearchCharLeft(text, n, 0), nullptr);
    EXPECT_EQ(CHSearchCharLeft("ab\0c", 4, 'c'), nullptr);
    EXPECT_EQ(CHSearchCharRight("ab\0c", 4, 'c'), nullptr);
    char const cut[] = "ab\0ca";
    EXPECT_EQ(CHSearchCharRight(cut, 5, 'a'), cut);
    EXPECT_EQ(CHSearchCharLeft(cut, 5, 'b'), cut + 1);
    // Null and empty texts.
    EXPECT_EQ(CHSearchCharLeft(nullptr, -1, 'a'), nullptr);
    EXPECT_EQ(CHSearchCharRight(nullptr, 5, 'a'), nullptr);
    EXPECT_EQ(CHSearchCharLeft("a", 0, 'a'), nullptr);

    // Against the model: decoded characters on boundaries, raw bytes anywhere.
    std::mt19937 rng(13);
    unsigned short const wanted[] = {'a',  'K',    0xE4,   0xC4,   0x4E2D, 0xA4,
                                     0x84, 0x212A, 0xFFA4, 0xFFC3, 0xFFAD, 0xFF80};
    for (int round = 0; round < 5000; ++round) {
        std::string const t = RandomText(rng, 8);
        unsigned short const ch = wanted[rng() % (sizeof wanted / sizeof *wanted)];
        std::vector<long> hits;
        if (ch >= 0xFF80) {
            for (size_t i = 0; i < t.size(); ++i)
                if (static_cast<unsigned char>(t[i]) == (ch & 0xFF))
                    hits.push_back(long(i));
        } else {
            auto const bounds = Boundaries(t);
            auto const chars = Chars(t, false);
            for (size_t k = 0; k < chars.size(); ++k)
                if (chars[k] == ch)
                    hits.push_back(long(bounds[k]));
        }
        for (long length : {-1L, long(t.size())}) {
            char const* left = CHSearchCharLeft(t.c_str(), length, ch);
            char const* right = CHSearchCharRight(t.c_str(), length, ch);
            ASSERT_EQ(left == nullptr ? -1 : left - t.c_str(), hits.empty() ? -1 : hits.front())
                << testing::PrintToString(t) << " " << ch;
            ASSERT_EQ(right == nullptr ? -1 : right - t.c_str(), hits.empty() ? -1 : hits.back())
                << testing::PrintToString(t) << " " << ch;
        }
    }
}

TEST(Chars, SearchSubstring) {
    char const text[] = "xx\xC3\xA4yy\xC3\x84zz";
    // Beside the model below: lengths, 0 bytes, empty and null texts.
    EXPECT_EQ(CHSearchSubstring(text, 5, "yy", -1, 1), nullptr);
    EXPECT_EQ(CHSearchSubstring(text, -1, "yyQ", 2, 1), text + 4); // pattern length
    EXPECT_EQ(CHSearchSubstring(text, -1, "", -1, 1), text);
    EXPECT_EQ(CHSearchSubstring(nullptr, -1, "a", -1, 1), nullptr);
    char const nul[] = "ab\0cd";
    EXPECT_EQ(CHSearchSubstring(nul, 5, "cd", -1, 1), nullptr);
    EXPECT_EQ(CHSearchSubstring(nul, 5, "cd", -1, 0), nullptr);
    // Against the model: matches start on character boundaries and take whole
    // characters.
    std::mt19937 rng(11);
    for (int round = 0; round < 20000; ++round) {
        std::string const text = RandomText(rng, 10);
        std::string pattern = RandomText(rng, 2);
        if (pattern.empty())
            pattern = "a";
        for (int fold = 0; fold < 2; ++fold) {
            long const want = ReferenceSearch(text, pattern, fold == 1);
            char const* hit = CHSearchSubstring(text.c_str(), long(text.size()), pattern.c_str(),
                                                long(pattern.size()), fold == 1 ? 0 : 1);
            ASSERT_EQ(hit == nullptr ? -1 : long(hit - text.c_str()), want)
                << "fold " << fold << " text=" << testing::PrintToString(text)
                << " pattern=" << testing::PrintToString(pattern);
        }
    }
}

TEST(Chars, NextCharPtr) {
    char const text[] = "a\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x98\x80\xA4\xC3"
                        "b";
    char const* p = text;
    std::vector<long> steps;
    while (*p != '\0') {
        char const* q = CHGetNextCharPtr(p);
        steps.push_back(long(q - p));
        p = q;
    }
    EXPECT_EQ(steps, (std::vector<long>{1, 2, 3, 4, 1, 1, 1}));
    EXPECT_EQ(CHGetNextCharPtr(p), p); // at the terminator
    EXPECT_EQ(CHGetNextCharPtr(nullptr), nullptr);
    // A sequence cut by the terminator: one byte at a time, never past it.
    char const cut[] = "\xF0\x9F\x98";
    EXPECT_EQ(CHGetNextCharPtr(cut), cut + 1);
    EXPECT_EQ(CHGetNextCharPtr(cut + 1), cut + 2);
}

TEST(Chars, CaseMapping) {
    // Simple mappings in place. Shorter ones shrink the text (U+0130 -> i, U+017F -> S,
    // U+2C65 -> U+023A); longer ones leave the character (U+023A -> U+2C65 would need
    // 3 bytes); malformed bytes stay; the length limits the work.
    struct Case {
        long (*map)(char*, long, int);
        char const* text;
        long length, result;
        char const* expected;
    } const cases[] = {
        {CHtoUpper, "abc \xC3\xA4\xC3\xB6\xC3\xBC stra\xC3\x9F\x65 \xF0\x90\x90\xA8", -1, 23,
         "ABC \xC3\x84\xC3\x96\xC3\x9C STRA\xC3\x9F\x45 \xF0\x90\x90\x80"},
        {CHtoLower, "ABC \xC3\x84\xC3\x96\xC3\x9C STRA\xC3\x9F\x45 \xF0\x90\x90\x80", 23, 23,
         "abc \xC3\xA4\xC3\xB6\xC3\xBC stra\xC3\x9F\x65 \xF0\x90\x90\xA8"},
        {CHtoLower, "x\xC4\xB0y", -1, 3, "xiy"},
        {CHtoUpper, "\xC5\xBF\xE2\xB1\xA5!", -1, 4, "S\xC8\xBA!"},
        {CHtoLower, "\xC8\xBA\x41", -1, 3, "\xC8\xBA\x61"},
        {CHtoUpper, "a\xC3\x62\xA4\x63", 3, 3, "A\xC3\x42\xA4\x63"},
    };
    for (auto const& test : cases) {
        char text[64];
        std::strcpy(text, test.text);
        EXPECT_EQ(test.map(text, test.length, 0), test.result) << &test - cases;
        EXPECT_STREQ(text, test.expected) << &test - cases;
    }
    EXPECT_EQ(CHtoUpper(nullptr, -1), 0);
}

TEST(Chars, CopyAndTruncate) {
    char target[16];
    char const source[] = "a\xE4\xB8\xAD"
                          "b"; // a 中 b
    EXPECT_EQ(CHCopyC(target, sizeof target, source), 5);
    EXPECT_STREQ(target, source);
    for (long size = 1; size <= 6; ++size) {
        std::memset(target, 'Z', sizeof target);
        long const want = size <= 1 ? 0 : size <= 4 ? 1 : size == 5 ? 4 : 5;
        EXPECT_EQ(CHCopyC(target, size, source), want) << size;
        EXPECT_EQ(target[want], '\0');
        EXPECT_EQ(std::string(target), std::string(source, size_t(want)));
    }
    EXPECT_EQ(CHCopyC(target, 0, source), 0);
    EXPECT_EQ(CHCopyC(nullptr, 10, source), 0);
    EXPECT_EQ(CHCopyC(target, sizeof target, nullptr), 0);
    EXPECT_STREQ(target, "");

    // Only maxLength bytes are read (no terminator needed); a lead byte at the cut may
    // start a character the cut split, and is left out; other malformed bytes stay.
    char const noTerminator[] = {'a', '\xE4', '\xB8'};
    char const leadThenB[] = {'a', '\xE4', 'b', 0};
    struct Case {
        char const* source;
        long size, maxLength, written;
    } const cases[] = {
        {source, 16, 3, 1},      {source, 16, 4, 4},    {source, 16, 100, 5},
        {source, 16, -1, 5},     {source, 3, 100, 1},   {noTerminator, 16, 3, 1},
        {leadThenB, 16, 2, 1},   {leadThenB, 16, 3, 3}, {"a\xA4\xA4", 16, 3, 3},
        {"a\xC3\xA4", 16, 2, 1},
    };
    for (auto const& test : cases) {
        EXPECT_EQ(CHTruncate(target, test.size, test.source, test.maxLength), test.written)
            << &test - cases;
        EXPECT_EQ(std::string(target), std::string(test.source, size_t(test.written)));
    }
}

TEST(Chars, Conversions) {
    // Round trips against ICU on random text, surrogate pairs included.
    std::mt19937 rng(3);
    for (int round = 0; round < 3000; ++round) {
        std::u16string const text = RandomUtf16(rng, 40, false);
        std::string const utf8 = ToUtf8(text);
        long const units = long(text.size());
        ASSERT_EQ(CHUnicode2ANSI(U(text), units, nullptr, 0), long(utf8.size()));
        ASSERT_EQ(CHUnicode2ANSI(U(text), -1, nullptr, 0), long(utf8.size()));
        std::vector<char> bytes(utf8.size() + 1, 'Z');
        ASSERT_EQ(CHUnicode2ANSI(U(text), units, bytes.data(), long(bytes.size())),
                  long(utf8.size()));
        ASSERT_EQ(std::string(bytes.data()), utf8);

        ASSERT_EQ(CHANSI2Unicode(utf8.c_str(), -1, nullptr, 0), units);
        ASSERT_EQ(CHANSI2Unicode(utf8.c_str(), long(utf8.size()), nullptr, 0), units);
        std::vector<unsigned short> back(text.size() + 1, 0xFFFF);
        ASSERT_EQ(CHANSI2Unicode(utf8.c_str(), -1, back.data(), long(back.size())), units);
        ASSERT_EQ(std::u16string(reinterpret_cast<char16_t const*>(back.data())), text);

        // Short targets hold whole characters only.
        std::uniform_int_distribution<long> cut(1, long(utf8.size()) + 1);
        long const size = cut(rng);
        std::vector<char> small(size_t(size), 'Z');
        long const written = CHUnicode2ANSI(U(text), units, small.data(), size);
        ASSERT_LE(written, size - 1);
        ASSERT_EQ(small[size_t(written)], '\0');
        ASSERT_EQ(utf8.compare(0, size_t(written), small.data()), 0);
        ASSERT_TRUE(size_t(written) == utf8.size() || size_t(written) + 4 > size_t(size - 1));
        ASSERT_TRUE(size_t(written) == utf8.size() ||
                    (static_cast<unsigned char>(utf8[size_t(written)]) & 0xC0) != 0x80);

        std::uniform_int_distribution<long> ucut(1, units + 1);
        long const usize = ucut(rng);
        std::vector<unsigned short> usmall(size_t(usize), 0xFFFF);
        long const uwritten = CHANSI2Unicode(utf8.c_str(), -1, usmall.data(), usize);
        ASSERT_LE(uwritten, usize - 1);
        ASSERT_EQ(usmall[size_t(uwritten)], 0);
        ASSERT_EQ(text.compare(0, size_t(uwritten), reinterpret_cast<char16_t*>(usmall.data())), 0);
        ASSERT_TRUE(uwritten == units || uwritten >= usize - 2);
        ASSERT_TRUE(uwritten == 0 || uwritten == units || !U16_IS_LEAD(text[size_t(uwritten) - 1]));
    }

    // Unpaired surrogates become '?'; a 0 unit ends the text.
    std::u16string const odd = u"a\xD800"
                               u"b\xDC00\xD83D";
    char out[16];
    EXPECT_EQ(CHUnicode2ANSI(U(odd), -1, out, sizeof out), 5);
    EXPECT_STREQ(out, "a?b??");
    std::u16string const nul(u"ab\0cd", 5);
    EXPECT_EQ(CHUnicode2ANSI(U(nul), 5, nullptr, 0), 2);
    EXPECT_EQ(CHUnicode2ANSI(nullptr, -1, nullptr, 0), 0);
    EXPECT_EQ(CHUnicode2ANSI(U(odd), -1, out, 0), 0);
    EXPECT_EQ(CHUnicode2ANSI(U(odd), -1, out, 1), 0);
    EXPECT_STREQ(out, "");

    // Decoding stops at the first malformed sequence.
    unsigned short wide[16];
    EXPECT_EQ(CHANSI2Unicode("ab\xC3\xA4\xA4xyz", -1, wide, 16), 3);
    EXPECT_EQ(wide[2], 0xE4);
    EXPECT_EQ(wide[3], 0);
    EXPECT_EQ(CHANSI2Unicode("ab\xC3\xA4\xA4xyz", -1, nullptr, 0), 3);
    EXPECT_EQ(CHANSI2Unicode("a\xC0\xAF", -1, nullptr, 0), 1);     // overlong
    EXPECT_EQ(CHANSI2Unicode("a\xED\xA0\x80", -1, nullptr, 0), 1); // surrogate
    EXPECT_EQ(CHANSI2Unicode("a\xF0\x9F\x98", -1, nullptr, 0), 1); // truncated
    EXPECT_EQ(CHANSI2Unicode("\xF0\x9F\x98\x80", -1, wide, 16), 2);
    EXPECT_EQ(wide[0], 0xD83D);
    EXPECT_EQ(wide[1], 0xDE00);
    EXPECT_EQ(CHANSI2Unicode("\xF0\x9F\x98\x80", -1, wide, 2), 0); // the pair stays whole
    EXPECT_EQ(CHANSI2Unicode("abcdefghijklmnop", 5, wide, 16), 5);
    EXPECT_EQ(CHANSI2Unicode(nullptr, -1, wide, 16), 0);
    EXPECT_EQ(wide[0], 0);
}
