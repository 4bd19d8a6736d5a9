// Tests of CUnicodeString: construction, copy-on-write, pools and growth, comparison,
// search, changes, Format, and the UTF-8 conversions checked against ICU.
#include <lumo/base/Exception.h>
#include <lumo/base/FixBlockAllocator.h>
#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>

#include <gtest/gtest.h>

#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <cstdarg>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <vector>

using lumo::base::CFixBlockAllocator;
using lumo::base::CMemoryException;
using lumo::base::CString;
using lumo::base::CUnicodeString;

namespace {

using Units = std::vector<unsigned short>;

// A terminated unit array from a char16_t literal (the two types are not aliased).
Units U(std::u16string const& s) {
    Units units(s.begin(), s.end());
    units.push_back(0);
    return units;
}

// The string's units up to its length.
std::u16string Text(CUnicodeString const& s) {
    unsigned short const* p = s;
    return std::u16string(p, p + s.GetLength());
}

unsigned short const* Ptr(CUnicodeString const& s) {
    return s;
}

void FormatInto(CUnicodeString& s, unsigned short const* format, ...) {
    va_list args;
    va_start(args, format);
    s.FormatV(format, args);
    va_end(args);
}

// Random text mixing ASCII runs, Latin, CJK, emoji and other BMP characters.
std::u16string RandomText(std::mt19937& rng, std::size_t codePoints) {
    std::u16string text;
    std::uniform_int_distribution<int> kind(0, 9);
    for (std::size_t i = 0; i < codePoints; ++i) {
        UChar32 c;
        switch (kind(rng)) {
        case 0:
        case 1:
        case 2:
        case 3:
            c = std::uniform_int_distribution<int>(0x20, 0x7E)(rng);
            break;
        case 4:
        case 5:
            c = std::uniform_int_distribution<int>(0xA0, 0x7FF)(rng);
            break;
        case 6:
        case 7:
            c = std::uniform_int_distribution<int>(0x4E00, 0x9FFF)(rng);
            break;
        case 8:
            c = std::uniform_int_distribution<int>(0x1F300, 0x1FAFF)(rng);
            break;
        default:
            c = std::uniform_int_distribution<int>(0xE000, 0xFFFD)(rng);
            break;
        }
        if (c <= 0xFFFF) {
            text += static_cast<char16_t>(c);
        } else {
            text += static_cast<char16_t>(U16_LEAD(c));
            text += static_cast<char16_t>(U16_TRAIL(c));
        }
    }
    return text;
}

std::string IcuToUTF8(std::u16string const& text) {
    std::vector<UChar> source(text.begin(), text.end());
    std::string out(text.size() * 3 + 1, '\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(&out[0], int32_t(out.size()), &length, source.data(), int32_t(source.size()),
                &status);
    EXPECT_TRUE(U_SUCCESS(status));
    out.resize(length);
    return out;
}

std::u16string IcuFromUTF8(std::string const& bytes) {
    std::vector<UChar> out(bytes.size() + 1);
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(out.data(), int32_t(out.size()), &length, bytes.data(), int32_t(bytes.size()),
                  &status);
    EXPECT_TRUE(U_SUCCESS(status));
    return std::u16string(out.begin(), out.begin() + length);
}

} // namespace

TEST(CUnicodeString, Construction) {
    CUnicodeString none;
    EXPECT_TRUE(none.IsEmpty());
    EXPECT_NE(nullptr, Ptr(none));
    EXPECT_EQ(0, Ptr(none)[0]);
    EXPECT_TRUE(CUnicodeString(static_cast<unsigned short const*>(nullptr)).IsEmpty());
    EXPECT_TRUE(CUnicodeString(static_cast<char const*>(nullptr)).IsEmpty());

    // At most n units are kept, but the length is that of the whole source.
    CUnicodeString cut(U(u"abcdef").data(), 2);
    EXPECT_EQ(6u, cut.GetLength());
    EXPECT_EQ(std::u16string(u"ab\0\0\0\0", 6), Text(cut));
    CUnicodeString padded(U(u"ab").data(), 5);
    EXPECT_EQ(2u, padded.GetLength());
    EXPECT_TRUE(CUnicodeString(U(u"abc").data(), 0).IsEmpty());
    cut += U(u"!").data(); // appended behind the recorded length, inside the buffer
    EXPECT_EQ(7u, cut.GetLength());
    EXPECT_EQ(u'!', cut[6]);
    EXPECT_EQ(0, cut[-1]);
    EXPECT_EQ(0, cut[100]);

    // 8-bit text is UTF-8.
    EXPECT_EQ(u"a\u00E9\U0001F600", Text(CUnicodeString("a\xC3\xA9\xF0\x9F\x98\x80")));
    EXPECT_EQ(u"a\u00E9", Text(CUnicodeString("a\xC3\xA9xyz", 3)));
    EXPECT_EQ(u"a", Text(CUnicodeString("a\xC3\xA9", 2))); // a cut sequence stops it
    CUnicodeString assigned;
    assigned = "h\xC3\xA9";
    EXPECT_EQ(u"h\u00E9", Text(assigned));
    assigned = U(u"wide").data();
    EXPECT_EQ(u"wide", Text(assigned));
    assigned.Set("xyz", 2);
    EXPECT_EQ(u"xy", Text(assigned));
    assigned = static_cast<char const*>(nullptr);
    EXPECT_TRUE(assigned.IsEmpty());
}

TEST(CUnicodeString, SharingAndCopyOnWrite) {
    CUnicodeString a("abc");
    CUnicodeString b(a);
    EXPECT_EQ(Ptr(a), Ptr(b));
    CUnicodeString left = a.Left(10);
    EXPECT_EQ(Ptr(a), Ptr(left));
    left.SetAt(0, u'X');
    EXPECT_EQ(u"Xbc", Text(left));
    EXPECT_EQ(u"abc", Text(a));
    EXPECT_EQ(Ptr(a), Ptr(b));
    b += u'd';
    EXPECT_EQ(u"abcd", Text(b));
    EXPECT_EQ(u"abc", Text(a));

    CUnicodeString c = a;
    c.Empty(); // a shared buffer is left to its other owner
    EXPECT_EQ(0u, c.GetCapacity());
    EXPECT_EQ(u"abc", Text(a));
    a.Empty(); // a private one is kept
    EXPECT_EQ(64u, a.GetCapacity());
    CUnicodeString d(a); // an empty source never shares
    EXPECT_EQ(0u, d.GetCapacity());

    CUnicodeString base("Hello World");
    CUnicodeString copies[8] = {base, base, base, base, base, base, base, base};
    copies[0].MakeUpper();
    copies[1].MakeLower();
    copies[2].MakeReverse();
    copies[3].Replace('o', '0');
    copies[4].Delete(0, 6);
    copies[5].Insert(0, ">");
    copies[6].TrimLeft('H');
    copies[7].Remove(u'l');
    EXPECT_EQ(u"HELLO WORLD", Text(copies[0]));
    EXPECT_EQ(u"hello world", Text(copies[1]));
    EXPECT_EQ(u"dlroW olleH", Text(copies[2]));
    EXPECT_EQ(u"Hell0 W0rld", Text(copies[3]));
    EXPECT_EQ(u"World", Text(copies[4]));
    EXPECT_EQ(u">Hello World", Text(copies[5]));
    EXPECT_EQ(u"ello World", Text(copies[6]));
    EXPECT_EQ(u"Heo Word", Text(copies[7]));
    EXPECT_EQ(u"Hello World", Text(base));
}

TEST(CUnicodeString, CapacityClassesPoolsAndGrowth) {
    EXPECT_EQ(64u, CUnicodeString(std::string(63, 'x').c_str()).GetCapacity());
    EXPECT_EQ(128u, CUnicodeString(std::string(64, 'x').c_str()).GetCapacity());
    EXPECT_EQ(1024u, CUnicodeString(std::string(1023, 'x').c_str()).GetCapacity());
    EXPECT_EQ(1025u, CUnicodeString(std::string(1024, 'x').c_str()).GetCapacity());
    // Each class comes from its own pool and goes back to it. A thread keeps a few
    // blocks of each pool at hand (counted as used), so hold more than that.
    int const held = 20, cached = 4;
    for (int sizeClass = 0; sizeClass < 5; ++sizeClass) {
        CFixBlockAllocator& pool = CFixBlockAllocator::UnicodeStringPool(sizeClass);
        CFixBlockAllocator& narrow = CFixBlockAllocator::StringPool(sizeClass);
        unsigned long const used = pool.GetUsedCount();
        unsigned long const narrowUsed = narrow.GetUsedCount();
        {
            std::vector<CUnicodeString> strings;
            for (int i = 0; i < held; ++i) {
                strings.emplace_back(std::string((32u << sizeClass) + 1, 'p').c_str());
                EXPECT_EQ(64u << sizeClass, strings.back().GetCapacity());
            }
            EXPECT_GE(pool.GetUsedCount(), used + held - cached);
            EXPECT_EQ(narrowUsed, narrow.GetUsedCount());
        }
        EXPECT_LE(pool.GetUsedCount(), used + cached);
    }

    // Appending to a heap buffer grows it geometrically, not unit by unit.
    CUnicodeString grown;
    std::set<unsigned long> capacities;
    for (int i = 0; i < 100000; ++i) {
        grown += static_cast<unsigned short>('a' + i % 26);
        capacities.insert(grown.GetCapacity());
    }
    EXPECT_EQ(100000u, grown.GetLength());
    EXPECT_EQ(u'z', grown[25]);
    EXPECT_EQ(u'd', grown[99999]);
    EXPECT_LT(capacities.size(), 40u);

    try {
        grown.EnsureCapacity(0xFFFFFFFFul);
        FAIL() << "no exception";
    } catch (CMemoryException const& e) {
        EXPECT_STREQ("lumo/base/UnicodeString", e.GetSourceFile());
        EXPECT_EQ(2294u, e.GetSourceLine());
    }
    EXPECT_EQ(100000u, grown.GetLength());
    EXPECT_THROW(CUnicodeString(U(u"x").data(), ~0ul), CMemoryException);
    EXPECT_THROW(grown.GetBuffer(~0ul), CMemoryException);
    EXPECT_THROW(grown.SetLength(~0ul), CMemoryException);
    EXPECT_EQ(100000u, grown.GetLength());
}

TEST(CUnicodeString, Comparison) {
    CUnicodeString empty;
    CUnicodeString abc("abc");
    Units const none = U(u"");
    EXPECT_EQ(-1, empty.Compare(none.data()));
    EXPECT_EQ(0, empty.Compare(static_cast<unsigned short const*>(nullptr)));
    EXPECT_EQ(1, abc.Compare(none.data()));
    EXPECT_EQ(1, abc.Compare(empty));
    EXPECT_EQ(0, abc.Compare(U(u"abc").data()));
    EXPECT_LT(abc.Compare(U(u"abd").data()), 0);
    EXPECT_GT(abc.Compare(U(u"ABC").data()), 0);
    EXPECT_TRUE(abc == U(u"abc").data());
    EXPECT_TRUE(abc != CUnicodeString("abC"));
    EXPECT_TRUE(empty == none.data());
    EXPECT_TRUE(empty < abc);
    EXPECT_TRUE(U(u"b").data() > abc);
    // By unit value: a surrogate (D83D) sorts below U+FFFD.
    EXPECT_TRUE(CUnicodeString("\xF0\x9F\x98\x80") < CUnicodeString("\xEF\xBF\xBD"));

    // Ignore-case works on non-ASCII text by simple case folding.
    CUnicodeString ecole("\xC3\x89"
                         "cole");
    EXPECT_EQ(0, ecole.CompareIgnoreCase(U(u"\u00E9COLE").data()));
    EXPECT_NE(0, ecole.Compare(U(u"\u00E9COLE").data()));
    CUnicodeString sisyphus(U(u"\u03A3\u038A\u03A3\u03A5\u03A6\u039F\u03A3").data());
    EXPECT_EQ(0,
              sisyphus.CompareIgnoreCase(U(u"\u03C3\u03AF\u03C3\u03C5\u03C6\u03BF\u03C2").data()));
    EXPECT_NE(0, CUnicodeString(U(u"stra\u00DFe").data()).CompareIgnoreCase(U(u"STRASSE").data()));
    EXPECT_EQ(0,
              CUnicodeString(U(u"\U00010400").data()).CompareIgnoreCase(U(u"\U00010428").data()));
    EXPECT_TRUE(ecole.StartsWithIgnoreCase(U(u"\u00E9c").data()));
    EXPECT_TRUE(ecole.EndsWithIgnoreCase("OLE"));
    EXPECT_FALSE(ecole.EndsWith("OLE"));
    EXPECT_EQ(3, CUnicodeString(U(u"xx \u0416\u0416 \u0436\u0436").data())
                     .FindIgnoreCase(U(u"\u0436\u0416").data()));
    EXPECT_EQ(6, CUnicodeString(U(u"xx \u0416\u0416 \u0436\u0436").data())
                     .ReverseFindIgnoreCase(U(u"\u0436\u0416").data()));
}

TEST(CUnicodeString, SearchingAndPieces) {
    CUnicodeString s("abcabc\xC3\xA9");
    EXPECT_EQ(1, s.Find(u'b'));
    EXPECT_EQ(4, s.Find('b', 2));
    EXPECT_EQ(6, s.Find(0xE9));
    EXPECT_EQ(-1, s.Find('\xC3')); // a lone lead byte is no character
    EXPECT_EQ(-1, s.Find(u'b', 7));
    EXPECT_EQ(4, s.ReverseFind(u'b'));
    EXPECT_EQ(4, s.ReverseFind("bc"));
    EXPECT_EQ(-1, s.ReverseFind("bc", 5));
    EXPECT_EQ(3, s.Find(U(u"abc").data(), 1));
    EXPECT_EQ(5, s.Find("c\xC3\xA9"));
    EXPECT_EQ(-1, s.Find(""));
    EXPECT_EQ(-1, CUnicodeString().Find(u'a'));
    EXPECT_TRUE(s.StartsWith(""));
    EXPECT_FALSE(s.StartsWith(static_cast<char const*>(nullptr)));
    EXPECT_TRUE(s.EndsWith(U(u"c\u00E9").data()));
    EXPECT_FALSE(CUnicodeString("ab").StartsWith("abc"));

    CUnicodeString abcde("abcde");
    EXPECT_TRUE(abcde.SubString(2, 2).IsEmpty());
    EXPECT_EQ(u"bcde", Text(abcde.SubString(1, 1000)));
    EXPECT_EQ(u"cde", Text(abcde.Mid(2)));
    EXPECT_EQ(u"bc", Text(abcde.Mid(1, 2)));
    EXPECT_TRUE(abcde.Mid(1, -1).IsEmpty());
    EXPECT_EQ(u"ab", Text(abcde.Left(2)));
    // Right keeps its placement: the n units that end one before the last.
    EXPECT_EQ(u"cd", Text(abcde.Right(2)));
    EXPECT_EQ(u"d", Text(abcde.Right(1)));
    EXPECT_EQ(Ptr(abcde), Ptr(abcde.Right(5)));
    EXPECT_EQ(u"abcdeabcde", Text(abcde + abcde));
    EXPECT_EQ(u">abcde", Text(U(u">").data() + abcde));
}

TEST(CUnicodeString, Changes) {
    CUnicodeString s("abc");
    EXPECT_EQ(3u, s.Delete(1, 1)); // returns the length before
    EXPECT_EQ(u"ac", Text(s));
    EXPECT_EQ(2u, s.Delete(5, 1));
    EXPECT_EQ(2u, s.Delete(1, 10)); // a count past the end stops there
    EXPECT_EQ(u"a", Text(s));
    EXPECT_EQ(3u, s.Insert(100, "\xC3\xA9z"));
    EXPECT_EQ(4u, s.Insert(0, u'_'));
    EXPECT_EQ(4u, s.Insert(0, '\xE9')); // not a whole UTF-8 character: nothing inserted
    EXPECT_EQ(u"_a\u00E9z", Text(s));
    s += s; // appending itself
    EXPECT_EQ(u"_a\u00E9z_a\u00E9z", Text(s));
    EXPECT_EQ(2u, s.Replace("\xC3\xA9", "ee"));
    EXPECT_EQ(u"_aeez_aeez", Text(s));
    EXPECT_EQ(2u, s.Replace(U(u"ee").data(), nullptr));
    EXPECT_EQ(u"_az_az", Text(s));
    EXPECT_EQ(2u, s.Remove('_'));
    EXPECT_EQ(0u, s.Replace(U(u"").data(), U(u"x").data()));
    EXPECT_EQ(u"azaz", Text(s));

    CUnicodeString greek(U(u"\u03B1\u03B2\u00E9").data());
    greek.MakeUpper();
    EXPECT_EQ(u"\u0391\u0392\u00C9", Text(greek));
    // Reversal is unit by unit: a surrogate pair comes out swapped.
    CUnicodeString pair(U(u"a\U0001F600").data());
    pair.MakeReverse();
    EXPECT_EQ(std::u16string({0xDE00, 0xD83D, u'a'}), Text(pair));

    CUnicodeString spaced(U(u"\u3000 \t x y \n\u2003").data());
    spaced.TrimLeft();
    spaced.TrimRight();
    EXPECT_EQ(u"x y", Text(spaced));
    CUnicodeString set("xyabcyx");
    set.TrimLeft("xy");
    set.TrimRight(U(u"y").data());
    EXPECT_EQ(u"abcyx", Text(set));
    set.TrimRight(CUnicodeString("xy"));
    EXPECT_EQ(u"abc", Text(set));
}

TEST(CUnicodeString, Format) {
    CUnicodeString s;
    s.Format(U(u"%d-%d").data(), 12, 34);
    EXPECT_EQ(u"12-34", Text(s));
    s.Format(nullptr);
    EXPECT_TRUE(s.IsEmpty());

    // 1023 units fill the first work buffer exactly and take a second round; anything
    // longer does not fit, and the cut result is kept as it is.
    std::u16string const x1020(1020, u'x');
    FormatInto(s, U(x1020 + u"%d").data(), 123);
    EXPECT_EQ(1023u, s.GetLength());
    EXPECT_EQ(x1020 + u"123", Text(s));
    FormatInto(s, U(x1020 + u"%d").data(), 1234);
    EXPECT_EQ(1023u, s.GetLength());
    EXPECT_EQ(x1020 + u"123", Text(s));
    FormatInto(s, U(std::u16string(3000, u'y') + u"%d").data(), 5);
    EXPECT_EQ(1023u, s.GetLength());
}

TEST(CUnicodeString, FromUTF8) {
    EXPECT_EQ(std::u16string({0xD83D, 0xDE00}),
              Text(CUnicodeString::FromUTF8("\xF0\x9F\x98\x80", 4)));
    // Decoding stops at the first malformed sequence.
    EXPECT_EQ(u"ab", Text(CUnicodeString::FromUTF8("ab\x80"
                                                   "cd",
                                                   -1)));
    EXPECT_EQ(u"ab", Text(CUnicodeString::FromUTF8("ab\xE4\xB8", 4)));
    EXPECT_EQ(u"ab", Text(CUnicodeString::FromUTF8("ab\xC3"
                                                   "c",
                                                   -1)));
    EXPECT_EQ(u"a", Text(CUnicodeString::FromUTF8("a\xF8\x80\x80\x80\x80", -1)));
    // -1 runs to the 0 byte; with a length, 0 bytes are units.
    char const withZero[] = {'a', 'b', 0, 'c'};
    EXPECT_EQ(u"ab", Text(CUnicodeString::FromUTF8(withZero, -1)));
    EXPECT_EQ(std::u16string(u"ab\0c", 4), Text(CUnicodeString::FromUTF8(withZero, 4)));
    EXPECT_EQ(u"a", Text(CUnicodeString::FromUTF8("abc", 1)));
    EXPECT_TRUE(CUnicodeString::FromUTF8(nullptr, 5).IsEmpty());
    EXPECT_TRUE(CUnicodeString::FromUTF8("\x80", -1).IsEmpty());
    // Overlong forms and encoded surrogates come through as they are.
    EXPECT_EQ(std::u16string(u"\0", 1), Text(CUnicodeString::FromUTF8("\xC0\x80", 2)));
    EXPECT_EQ(std::u16string({0xD800}), Text(CUnicodeString::FromUTF8("\xED\xA0\x80", 3)));
    EXPECT_EQ(u"/", Text(CUnicodeString::FromUTF8("\xE0\x80\xAF", 3)));

    // Agrees with ICU on valid text of every length around the block sizes, and on
    // prefixes cut by a stray byte anywhere.
    std::mt19937 rng(12345);
    for (std::size_t n = 0; n < 200; ++n) {
        std::u16string const text = RandomText(rng, n);
        std::string const bytes = IcuToUTF8(text);
        EXPECT_EQ(text, Text(CUnicodeString::FromUTF8(bytes.data(), long(bytes.size())))) << n;
    }
    std::string const big = IcuToUTF8(RandomText(rng, 5000));
    EXPECT_EQ(IcuFromUTF8(big), Text(CUnicodeString::FromUTF8(big.c_str(), -1)));
    // Cut anywhere: a sequence cut by the end is dropped.
    for (std::size_t cut = 1; cut < 400; ++cut) {
        std::size_t end = cut;
        while ((static_cast<unsigned char>(big[end]) & 0xC0) == 0x80)
            --end;
        EXPECT_EQ(IcuFromUTF8(big.substr(0, end)),
                  Text(CUnicodeString::FromUTF8(big.data(), long(cut))))
            << "cut at " << cut;
    }
    for (int round = 0; round < 400; ++round) {
        std::size_t const at = std::uniform_int_distribution<std::size_t>(0, 2000)(rng);
        std::string broken = big.substr(0, 2100);
        auto isContinuation = [&broken](std::size_t i) {
            return (static_cast<unsigned char>(broken[i]) & 0xC0) == 0x80;
        };
        // A sequence start replaced by a byte that starts nothing ends the text there;
        // a continuation replaced by 'x' ends it where its sequence starts.
        std::size_t end = at;
        if (isContinuation(at)) {
            while (isContinuation(end))
                --end;
            broken[at] = 'x';
        } else {
            broken[at] = "\x80\xBF\xF8\xFF"[round % 4];
        }
        EXPECT_EQ(IcuFromUTF8(broken.substr(0, end)),
                  Text(CUnicodeString::FromUTF8(broken.data(), long(broken.size()))))
            << "broken at " << at;
    }
}

TEST(CUnicodeString, ToUTF8) {
    std::mt19937 rng(777);
    for (std::size_t n = 0; n < 200; n += 7) {
        std::u16string const text = RandomText(rng, n);
        CUnicodeString s(U(text).data());
        CString const utf8 = s.ToUTF8();
        EXPECT_EQ(IcuToUTF8(text), std::string(static_cast<char const*>(utf8), utf8.GetLength()));
        EXPECT_EQ(long(utf8.GetLength()), s.ToUTF8(nullptr, 0));
    }
    std::u16string const big = RandomText(rng, 50000);
    CString const bigUtf8 = CUnicodeString(U(big).data()).ToUTF8();
    EXPECT_EQ(IcuToUTF8(big), std::string(static_cast<char const*>(bigUtf8), bigUtf8.GetLength()));

    // An unpaired surrogate takes the 3-byte form of its value and comes back whole.
    std::u16string const odd = {u'A', 0xD800, u'B', 0xDC00, 0xD83D, 0xDE00, 0xDBFF};
    CUnicodeString unpaired(U(odd).data());
    CString const encoded = unpaired.ToUTF8();
    EXPECT_STREQ("A\xED\xA0\x80"
                 "B\xED\xB0\x80\xF0\x9F\x98\x80\xED\xAF\xBF",
                 static_cast<char const*>(encoded));
    EXPECT_EQ(odd, Text(CUnicodeString::FromUTF8(encoded, -1)));

    // Into a caller's buffer: whole sequences only, a terminator when a byte is left.
    CUnicodeString s(U(u"a\u00E9\U0001F600").data()); // 1 + 2 + 4 bytes
    char target[16];
    auto fill = [&target] { std::memset(target, '#', sizeof target); };
    fill();
    EXPECT_EQ(7, s.ToUTF8(target, 8));
    EXPECT_STREQ("a\xC3\xA9\xF0\x9F\x98\x80", target);
    fill();
    EXPECT_EQ(7, s.ToUTF8(target, 7));
    EXPECT_EQ('#', target[7]);
    fill();
    EXPECT_EQ(3, s.ToUTF8(target, 6));
    EXPECT_STREQ("a\xC3\xA9", target);
    fill();
    EXPECT_EQ(1, s.ToUTF8(target, 2));
    EXPECT_EQ(std::string("a\0#", 3), std::string(target, 3));
    EXPECT_EQ(0, s.ToUTF8(target, 0));
    EXPECT_EQ(0, s.ToUTF8(target, -1));
    EXPECT_EQ('a', target[0]);
    EXPECT_EQ(7, s.ToUTF8(nullptr, 0));
    EXPECT_TRUE(CUnicodeString().ToUTF8().IsEmpty());
    EXPECT_EQ(0, CUnicodeString().ToUTF8(target, 4));
    EXPECT_EQ(0, target[0]);
}
