// Tests of the UTF-16 routines: length, compare, search, case, reverse and classes, and
// snuprintf and suscanf checked against the C library's snprintf and sscanf.
#include <vela/Ucs.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cfloat>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <tuple>
#include <vector>

using namespace Vela;

namespace {

// UTF-16 texts in tests: char16_t literals viewed as unsigned short.
struct W {
    std::u16string s;
    W(char16_t const* t) : s(t) {}
    W(std::u16string t) : s(std::move(t)) {}
    operator unsigned short const*() const {
        return reinterpret_cast<unsigned short const*>(s.c_str());
    }
};

std::u16string Widen(std::string const& s) {
    return std::u16string(s.begin(), s.end());
}

std::u16string Text(unsigned short const* s) {
    return s == nullptr ? std::u16string() : std::u16string(reinterpret_cast<char16_t const*>(s));
}

int Sign(int v) {
    return v < 0 ? -1 : v > 0 ? 1 : 0;
}

} // namespace

TEST(Ucs, LengthAndCompare) {
    EXPECT_EQ(ucslen(W(u"abc")), 3u);
    EXPECT_EQ(ucslen(W(u"")), 0u);
    EXPECT_EQ(ucslen(nullptr), 0u);

    // ucsncmp / ucsnicmp when n is set. Without case: simple case folding, also beyond
    // ASCII and the BMP, but no full folding. Null texts are empty.
    unsigned long const all = ~0ul;
    struct Case {
        char16_t const* a;
        char16_t const* b;
        unsigned long n;
        int withCase, withoutCase;
    } const cases[] = {
        {u"abc", u"abc", all, 0, 0},
        {u"abc", u"abd", all, -1, -1},
        {u"abcd", u"abc", all, 1, 1},
        {u"\xD83D\xDE00", u"\xFFFF", all, -1, -1}, // unit values, not code points
        {nullptr, u"", all, 0, 0},
        {nullptr, u"a", all, -1, -1},
        {u"a", nullptr, all, 1, 1},
        {u"abcX", u"abcY", 3, 0, 0},
        {u"abcX", u"abcY", 4, -1, -1},
        {u"ab", u"ab", 10, 0, 0},
        {u"abc", u"ab", 10, 1, 1},
        {u"x", u"y", 0, 0, 0},
        {u"\u00C4\u00D6\u00DC", u"\u00E4\u00F6\u00FC", all, -1, 0},
        {u"Hello WORLD", u"hello world", all, -1, 0},
        {u"\x212A", u"k", all, 1, 0},                    // Kelvin sign
        {u"a\xD801\xDC00", u"A\xD801\xDC28", all, 1, 0}, // Deseret
        {u"Stra\u00DFe", u"STRASSE", all, 1, 1},
        {u"apple", u"BANANA", all, 1, -1},
        {u"apples", u"APPLE", all, 1, 1},
        {u"ABCx", u"abcy", 3, -1, 0},
        {u"ABCx", u"abcy", 4, -1, -1},
        {u"\u00C4x", u"\u00E4y", 1, -1, 0},
    };
    for (auto const& test : cases) {
        unsigned short const* a = reinterpret_cast<unsigned short const*>(test.a);
        unsigned short const* b = reinterpret_cast<unsigned short const*>(test.b);
        bool const limited = test.n != all;
        EXPECT_EQ(Sign(limited ? ucsncmp(a, b, test.n) : ucscmp(a, b)), test.withCase)
            << &test - cases;
        EXPECT_EQ(Sign(limited ? ucsnicmp(a, b, test.n) : ucsicmp(a, b)), test.withoutCase)
            << &test - cases;
    }

    // Texts without letters compare alike with and without case.
    std::mt19937 rng(5);
    std::uniform_int_distribution<int> unit(0x20, 0x40);
    for (int round = 0; round < 2000; ++round) {
        std::u16string a, b;
        for (int i = rng() % 6; i > 0; --i)
            a += char16_t(unit(rng));
        b = a.substr(0, rng() % (a.size() + 1));
        for (int i = rng() % 3; i > 0; --i)
            b += char16_t(unit(rng));
        ASSERT_EQ(Sign(ucsicmp(W(a), W(b))), Sign(ucscmp(W(a), W(b))));
        ASSERT_EQ(Sign(ucscmp(W(a), W(b))), Sign(a.compare(b)));
    }
}

TEST(Ucs, Search) {
    W const text(u"abcabc");
    unsigned short const* t = text;
    EXPECT_EQ(ucschr(t, 'b'), t + 1);
    EXPECT_EQ(ucsrchr(t, 'b'), t + 4);
    EXPECT_EQ(ucschr(t, 'z'), nullptr);
    EXPECT_EQ(ucsrchr(t, 'z'), nullptr);
    EXPECT_EQ(ucschr(t, 0), t + 6); // the terminator is found, as with strchr
    EXPECT_EQ(ucsrchr(t, 0), t + 6);
    EXPECT_EQ(ucschr(nullptr, 'a'), nullptr);
    EXPECT_EQ(ucsrchr(nullptr, 'a'), nullptr);

    EXPECT_EQ(ucsstr(t, W(u"ca")), t + 2);
    EXPECT_EQ(ucsstr(t, W(u"abc")), t);
    EXPECT_EQ(ucsstr(t, W(u"bcd")), nullptr);
    EXPECT_EQ(ucsstr(t, W(u"abcabcx")), nullptr);
    EXPECT_EQ(ucsstr(t, W(u"")), t);
    EXPECT_EQ(ucsstr(t, nullptr), t);
    EXPECT_EQ(ucsstr(nullptr, W(u"a")), nullptr);
    W const pairs(u"x\xD83D\xDE00y");
    EXPECT_EQ(ucsstr(pairs, W(u"\xDE00y")), static_cast<unsigned short const*>(pairs) + 2);
}

TEST(Ucs, CaseReverseClasses) {
    std::u16string text = u"abc \u00E4\u00F6\u00FC \u00DF \x0131 \xD801\xDC28 z";
    auto* p = reinterpret_cast<unsigned short*>(&text[0]);
    EXPECT_EQ(ucsupr(p), p);
    // Simple mapping unit by unit: ß has none, ı maps to I, surrogates stay as they are.
    EXPECT_EQ(text, u"ABC \u00C4\u00D6\u00DC \u00DF I \xD801\xDC28 Z");
    EXPECT_EQ(ucslwr(p), p);
    EXPECT_EQ(text, u"abc \u00E4\u00F6\u00FC \u00DF i \xD801\xDC28 z");
    EXPECT_EQ(ucsupr(nullptr), nullptr);
    EXPECT_EQ(ucslwr(nullptr), nullptr);

    std::u16string rev = u"ab\xD83D\xDE00"
                         u"c";
    auto* r = reinterpret_cast<unsigned short*>(&rev[0]);
    EXPECT_EQ(ucsrev(r), r);
    EXPECT_EQ(rev, u"c\xDE00\xD83D"
                   u"ba"); // unit by unit
    std::u16string one = u"x";
    ucsrev(reinterpret_cast<unsigned short*>(&one[0]));
    EXPECT_EQ(one, u"x");
    EXPECT_EQ(ucsrev(nullptr), nullptr);

    using List = std::initializer_list<unsigned short>;
    for (unsigned short c : List{' ', '\t', '\n', '\r', '\v', '\f', 0x3000, 0x2028, 0x00A0})
        EXPECT_TRUE(isuspace(c)) << c;
    for (unsigned short c : List{'a', 0, 0xD800})
        EXPECT_FALSE(isuspace(c)) << c;
    // Decimal digits of any script (Arabic-Indic three, full-width five), but not the
    // superscript two.
    for (unsigned short c : List{'0', '5', '9', 0x0663, 0xFF15})
        EXPECT_TRUE(isudigit(c)) << c;
    for (unsigned short c : List{'/', ':', 'a', 0x00B2, 0xDC00})
        EXPECT_FALSE(isudigit(c)) << c;

    EXPECT_STREQ(EOL, "\n");
}

namespace {

// Formats with snuprintf and with the C library's snprintf (over the narrow format).
template <typename... A> void ExpectLikeC(char const* format, A... args) {
    char expected[1024];
    int const n = std::snprintf(expected, sizeof expected, format, args...);
    unsigned short out[1024];
    int const got = snuprintf(out, 1024, W(Widen(format)), args...);
    ASSERT_EQ(got, n) << format;
    ASSERT_EQ(Text(out), Widen(expected)) << format;
}

} // namespace

TEST(UcsFormat, NumbersLikeC) {
    ExpectLikeC("%d|%i|%u|%o|%x|%X", -42, 17, 42u, 8u, 255u, 255u);
    ExpectLikeC("%5d|%-5d|%05d|%+d|% d|%.3d|%8.3d", 42, 42, 42, 42, 42, 7, -7);
    ExpectLikeC("%#o|%#x|%#X|%#.0x", 8u, 255u, 255u, 0u);
    ExpectLikeC("%hhd|%hhu|%hd|%hu", 300, 300, 70000, 70000);
    ExpectLikeC("%ld|%lu|%lld|%llu|%zu|%zd", LONG_MIN, ULONG_MAX, LLONG_MIN, ULLONG_MAX,
                size_t(12345), static_cast<std::ptrdiff_t>(-5));
    ExpectLikeC("%*d|%-*d|%.*d|%*.*d", 6, 1, 6, 2, 4, 3, 7, 3, 4);
    ExpectLikeC("%*d|%.*d", -6, 1, -2, 5); // negative width: left; negative precision: none
    ExpectLikeC("%f|%F|%e|%E|%g|%G", 3.14159, -2.5, 12345.678, 0.000123, 1e-10, 1e20);
    ExpectLikeC("%a|%A|%.2a", 1.0, -0.5, 3.0);
    ExpectLikeC("%10.3f|%-10.2e|%+.0f|%#.0f|%#g|%010.4f", 3.14159, 2.5, 2.5, 3.0, 1.5, -1.25);
    ExpectLikeC("%f|%f|%f|%e", DBL_MAX, -0.0, 1.0 / 3, DBL_MIN);
    ExpectLikeC("%Lf|%Le|%Lg", 1.5L, 2.25L, 1e300L);
    ExpectLikeC("%p|%p", static_cast<void*>(&errno), static_cast<void*>(nullptr));
    ExpectLikeC("%300d|%.300d", 1, 2); // longer than the internal buffer
    ExpectLikeC("100%%|%c%c", 'a', 'Z');

    // Random specifications.
    std::mt19937 rng(1);
    char const* const flags[] = {"", "-", "+", " ", "#", "0", "-+", "0 ", "#0", "+0"};
    char const* const ints[] = {"d", "i", "u", "o", "x", "X", "hd", "hhx", "ld", "llu", "lx"};
    char const* const floats[] = {"f", "e", "g", "E", "G", "a"};
    std::uniform_int_distribution<int> flag(0, 9), width(-1, 25), precision(-1, 12);
    std::uniform_int_distribution<long long> value(LLONG_MIN, LLONG_MAX);
    std::uniform_real_distribution<double> real(-1e6, 1e6);
    for (int round = 0; round < 3000; ++round) {
        std::string format = std::string("<%") + flags[flag(rng)];
        int const w = width(rng), p = precision(rng);
        if (w >= 0)
            format += std::to_string(w);
        if (p >= 0)
            format += "." + std::to_string(p);
        if (round % 2 == 0) {
            std::string const conv = ints[rng() % (sizeof ints / sizeof *ints)];
            format += conv + ">";
            long long const v = value(rng) >> (rng() % 64);
            if (conv[0] == 'l' && conv[1] == 'l')
                ExpectLikeC(format.c_str(), v);
            else if (conv[0] == 'l')
                ExpectLikeC(format.c_str(), long(v));
            else
                ExpectLikeC(format.c_str(), int(v));
        } else {
            format += std::string(floats[rng() % (sizeof floats / sizeof *floats)]) + ">";
            double const v = round % 10 == 1 ? real(rng) * 1e-9 : real(rng);
            ExpectLikeC(format.c_str(), v);
        }
        if (HasFatalFailure())
            return;
    }
}

TEST(UcsFormat, TextArguments) {
    unsigned short out[64];
    W const wide(u"w\u00E4\xD83D\xDE00");
    EXPECT_EQ(snuprintf(out, 64, W(u"[%s|%ls|%hs]"), static_cast<unsigned short const*>(wide),
                        static_cast<unsigned short const*>(wide), "n\xC3\xA4\xF0\x9F\x98\x80"),
              16);
    EXPECT_EQ(Text(out), u"[w\u00E4\xD83D\xDE00|w\u00E4\xD83D\xDE00|n\u00E4\xD83D\xDE00]");
    EXPECT_EQ(snuprintf(out, 64, W(u"[%6s|%-6s|%.2s|%.1hs]"),
                        static_cast<unsigned short const*>(W(u"ab")),
                        static_cast<unsigned short const*>(W(u"ab")),
                        static_cast<unsigned short const*>(W(u"abc")), "xyz"),
              20);
    EXPECT_EQ(Text(out), u"[    ab|ab    |ab|x]");
    // A malformed byte of an 8-bit text becomes U+FFFD; null texts print (null).
    EXPECT_EQ(snuprintf(out, 64, W(u"%hs|%s|%hs"), "a\xA4z",
                        static_cast<unsigned short const*>(nullptr),
                        static_cast<char const*>(nullptr)),
              17);
    EXPECT_EQ(Text(out), u"a\uFFFDz|(null)|(null)");
    // An 8-bit text that converts to nothing (empty, or cut to no unit) pads alone.
    EXPECT_EQ(snuprintf(out, 64, W(u"[%hs|%3hs|%.0hs]"), "", "", "abc"), 7);
    EXPECT_EQ(Text(out), u"[|   |]");
    EXPECT_EQ(snuprintf(out, 64, W(u"%c%lc%hc%3c|%-3c|"), 0x4E2D, 0xE4, 'q', 'r', 's'), 11);
    EXPECT_EQ(Text(out), u"\u4E2D\u00E4q  r|s  |");
    // %n stores nothing; an unknown conversion is copied.
    int untouched = 77;
    EXPECT_EQ(snuprintf(out, 64, W(u"ab%ncd%y"), &untouched), 6);
    EXPECT_EQ(untouched, 77);
    EXPECT_EQ(Text(out), u"abcd%y");
    EXPECT_EQ(snuprintf(out, 64, W(u"")), 0);
    EXPECT_EQ(Text(out), u"");
    EXPECT_EQ(snuprintf(out, 64, W(u"50%")), 3);
    EXPECT_EQ(Text(out), u"50%");
}

TEST(UcsFormat, FitBoundary) {
    // "value 12345" is 11 units: 12 units hold it with the terminator.
    unsigned short out[16];
    for (unsigned long count = 1; count <= 14; ++count) {
        std::fill(out, out + 16, 0xAAAA);
        int const r = snuprintf(out, count, W(u"value %d"), 12345);
        if (count >= 12) {
            EXPECT_EQ(r, 11) << count;
            EXPECT_EQ(Text(out), u"value 12345");
        } else {
            EXPECT_EQ(r, -1) << count;
            EXPECT_EQ(Text(out), std::u16string(u"value 12345").substr(0, count - 1));
        }
        EXPECT_EQ(out[count], 0xAAAA) << count; // nothing written past count units
    }
    // count 0 writes nothing; a null format or buffer fails.
    out[0] = 0xAAAA;
    EXPECT_EQ(snuprintf(out, 0, W(u"x")), -1);
    EXPECT_EQ(out[0], 0xAAAA);
    EXPECT_EQ(snuprintf(out, 16, nullptr), -1);
    EXPECT_EQ(snuprintf(nullptr, 16, W(u"x")), -1);
    // A cut never leaves the first half of a surrogate pair at the end.
    EXPECT_EQ(snuprintf(out, 3, W(u"a%s"), static_cast<unsigned short const*>(W(u"\xD83D\xDE00"))),
              -1);
    EXPECT_EQ(Text(out), u"a");
    // The caller's va_list is not consumed (vsnuprintf works on a copy).
    struct Twice {
        static int Run(unsigned short* buffer, unsigned long count, unsigned short const* format,
                       ...) {
            va_list args;
            va_start(args, format);
            int const first = vsnuprintf(buffer, count, format, args);
            int const second = vsnuprintf(buffer, count, format, args);
            va_end(args);
            return first == second ? first : -2;
        }
    };
    EXPECT_EQ(Twice::Run(out, 16, W(u"%d-%d"), 1, 2), 3);
    EXPECT_EQ(Text(out), u"1-2");
}

namespace {

// Scans with suscanf and with the C library's sscanf (over the narrow text and
// format), into values of the types given.
template <typename... T> void ExpectScanLikeC(char const* text, char const* format) {
    std::tuple<T...> narrow{}, wide{};
    int const expected =
        std::apply([&](T&... v) { return std::sscanf(text, format, &v...); }, narrow);
    int const got =
        std::apply([&](T&... v) { return suscanf(W(Widen(text)), W(Widen(format)), &v...); }, wide);
    EXPECT_EQ(got, expected) << '"' << text << "\" \"" << format << '"';
    // (A NaN equals nothing, itself included: then both sides must hold one.)
    EXPECT_TRUE(wide == narrow || (wide != wide && narrow != narrow))
        << '"' << text << "\" \"" << format << '"';
}

} // namespace

TEST(UcsScan, NumbersLikeC) {
    ExpectScanLikeC<int, int, int>("  12 -34\t+5", "%d %d %d");
    ExpectScanLikeC<unsigned, unsigned, unsigned, int, int, int>("42 ff 17 0x1A 017 9",
                                                                 "%u %x %o %i %i %i");
    ExpectScanLikeC<long, unsigned long, long long, short>("-7 4000000000 -9000000000000 123",
                                                           "%ld %lu %lld %hd");
    ExpectScanLikeC<float, double, double, double>("1.5 -2.25e3 6E-2 0.125", "%f %lf %le %lg");
    // Widths, suppression, literals, %n.
    ExpectScanLikeC<int, int>("12345", "%2d%3d");
    ExpectScanLikeC<int, int>("7 8 9", "%*d %d %d");
    ExpectScanLikeC<int, int>("x=3, y=4", "x=%d, y=%d");
    ExpectScanLikeC<int>("10%", "%d%%");
    ExpectScanLikeC<int, int>("12 34", "%d%n");

    // The number of conversions, and -1 only when input ends before the first.
    struct Case {
        char const* text;
        char const* format;
    } const cases[] = {
        {"", "%d"},        {"   ", "%d"}, {"abc", "%d"},   {"1", "%d %d"}, {"1 x", "%d %d"},
        {"1 2", "%d %d"},  {"", "abc%d"}, {"ab", "abc%d"}, {"x", "y%d"},   {"5", "%*d"},
        {"5 6", "%*d %d"}, {"-", "%d"},   {"+", "%d"},     {"1", "%d%d"},  {"", ""},
        {"abc", ""},       {" 1", " %d"}, {"0x", "%x"},    {"-0", "%u"},   {"12abc", "%d%d"},
        {"3", "%d %n"},    {"", "%n"},    {"a", "%d"},
    };
    for (auto const& test : cases)
        ExpectScanLikeC<int, int>(test.text, test.format);
    for (char const* text : {"1.5e", "inf", "nan"})
        ExpectScanLikeC<float, float>(text, "%f");
    EXPECT_EQ(suscanf(nullptr, W(u"%d"), nullptr), -1);
    EXPECT_EQ(suscanf(W(u"1"), nullptr), -1);
}

TEST(UcsScan, Texts) {
    int a = 0;
    unsigned short word[16], rest[16];
    char narrow[16];
    EXPECT_EQ(suscanf(W(u"  h\u00E9llo w\xD83D\xDE00rld x"), W(u"%ls %hs %s"), word, narrow, rest),
              3);
    EXPECT_EQ(Text(word), u"h\u00E9llo");
    EXPECT_STREQ(narrow, "w\xF0\x9F\x98\x80rld");
    EXPECT_EQ(Text(rest), u"x");
    EXPECT_EQ(suscanf(W(u"abcdef"), W(u"%3s%s"), word, rest), 2);
    EXPECT_EQ(Text(word), u"abc");
    EXPECT_EQ(Text(rest), u"def");
    unsigned short chars[4] = {0, 0, 0, 0};
    char hc = 0;
    EXPECT_EQ(suscanf(W(u" xy\u00E4"), W(u"%c%2c%hc"), chars, chars + 1, &hc), 3);
    EXPECT_EQ(std::u16string(u" xy"), Text(chars)); // %c does not skip white space
    EXPECT_EQ(hc, '?');
    EXPECT_EQ(suscanf(W(u"key-42:rest"), W(u"%[a-z]-%d:%[^\n]"), word, &a, rest), 3);
    EXPECT_EQ(Text(word), u"key");
    EXPECT_EQ(a, 42);
    EXPECT_EQ(Text(rest), u"rest");
}
