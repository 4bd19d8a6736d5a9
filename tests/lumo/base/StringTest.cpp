// Tests of CString and CUnicodeString. The contract the two share runs once as a typed
// suite over ASCII text: sharing and copy-on-write, capacity classes and pools,
// comparison, search, pieces, changes, trims and large appends. Then each type's own:
// construction from the other encoding, multibyte and surrogate handling, Format and
// its cut, and the UTF-8 conversions checked against ICU.
#include <lumo/base/Exception.h>
#include <lumo/base/FixBlockAllocator.h>
#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>

#include <gtest/gtest.h>

#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

using lumo::base::CFixBlockAllocator;
using lumo::base::CMemoryException;
using lumo::base::CString;
using lumo::base::CUnicodeString;

namespace {

char const* const kNull = nullptr;

char const* Ptr(CString const& s) {
    return s;
}
unsigned short const* Ptr(CUnicodeString const& s) {
    return s;
}

// The text as UTF-8, up to the recorded length.
std::string Str(CString const& s) {
    return std::string(Ptr(s), s.GetLength());
}
std::string Str(CUnicodeString const& s) {
    return Str(s.ToUTF8());
}

// The UTF-16 text up to the recorded length.
std::u16string Text(CUnicodeString const& s) {
    return std::u16string(Ptr(s), Ptr(s) + s.GetLength());
}

// A terminated unit array from a char16_t literal (the two types are not aliased).
using Units = std::vector<unsigned short>;
Units U(std::u16string const& s) {
    Units units(s.begin(), s.end());
    units.push_back(0);
    return units;
}

// What differs between the two types where the contract is otherwise the same.
template <class S> struct Traits;
template <> struct Traits<CString> {
    using Unit = char;
    static Unit const* Blank() { return ""; }
    static CFixBlockAllocator& Pool(int c) { return CFixBlockAllocator::StringPool(c); }
    static CFixBlockAllocator& OtherPool(int c) { return CFixBlockAllocator::UnicodeStringPool(c); }
    static constexpr unsigned long kTooBig = 0x100000000ul; // beyond the 32-bit header
    static constexpr char const* kUnit = "lumo/base/String";
    static constexpr unsigned long kLine = 1936;
};
template <> struct Traits<CUnicodeString> {
    using Unit = unsigned short;
    static Unit const* Blank() {
        static Unit const blank[1] = {0};
        return blank;
    }
    static CFixBlockAllocator& Pool(int c) { return CFixBlockAllocator::UnicodeStringPool(c); }
    static CFixBlockAllocator& OtherPool(int c) { return CFixBlockAllocator::StringPool(c); }
    static constexpr unsigned long kTooBig = 0xFFFFFFFFul; // twice that in bytes
    static constexpr char const* kUnit = "lumo/base/UnicodeString";
    static constexpr unsigned long kLine = 2294;
};

// A terminated array of the type's own units from ASCII text.
template <class S> std::vector<typename Traits<S>::Unit> Native(std::string const& ascii) {
    std::vector<typename Traits<S>::Unit> units(ascii.begin(), ascii.end());
    units.push_back(0);
    return units;
}

void FormatInto(CString& s, char const* format, ...) {
    va_list args;
    va_start(args, format);
    s.FormatV(format, args);
    va_end(args);
}

void FormatInto(CUnicodeString& s, unsigned short const* format, ...) {
    va_list args;
    va_start(args, format);
    s.FormatV(format, args);
    va_end(args);
}

template <class S> class StringTypes : public ::testing::Test {};
using BothStringTypes = ::testing::Types<CString, CUnicodeString>;
TYPED_TEST_SUITE(StringTypes, BothStringTypes);

} // namespace

TYPED_TEST(StringTypes, SharingAndCopyOnWrite) {
    using S = TypeParam;
    S a("abc");
    S b(a);
    EXPECT_EQ(Ptr(a), Ptr(b));
    S left = a.Left(10);
    EXPECT_EQ(Ptr(a), Ptr(left));
    left.SetAt(0, 'X');
    EXPECT_EQ("Xbc", Str(left));
    EXPECT_EQ("abc", Str(a));
    EXPECT_EQ(Ptr(a), Ptr(b));
    b += "d";
    EXPECT_EQ("abcd", Str(b));
    EXPECT_EQ("abc", Str(a));

    S c = a;
    c = c;
    EXPECT_EQ(Ptr(a), Ptr(c));
    c.Empty(); // a shared buffer is left to its other owner
    EXPECT_EQ(0u, c.GetCapacity());
    EXPECT_EQ("abc", Str(a));
    a.Empty(); // a private one is kept
    EXPECT_EQ(64u, a.GetCapacity());
    EXPECT_EQ("", Str(a));
    S d(a); // an empty source never shares, whatever its storage
    EXPECT_EQ(0u, d.GetCapacity());
    S e("e");
    e = a;
    EXPECT_TRUE(e.IsEmpty());
    S moved(std::move(b));
    EXPECT_EQ("abcd", Str(moved));
    EXPECT_TRUE(b.IsEmpty());

    // Every change makes its own copy.
    S const base("Hello World");
    struct Case {
        void (*change)(S&);
        char const* expected;
    } const cases[] = {
        {[](S& s) { s.MakeUpper(); }, "HELLO WORLD"},
        {[](S& s) { s.MakeLower(); }, "hello world"},
        {[](S& s) { s.MakeReverse(); }, "dlroW olleH"},
        {[](S& s) { s.Replace('o', '0'); }, "Hell0 W0rld"},
        {[](S& s) { s.Delete(0, 6); }, "World"},
        {[](S& s) { s.Insert(0, ">"); }, ">Hello World"},
        {[](S& s) { s.TrimLeft('H'); }, "ello World"},
        {[](S& s) { s.Remove('l'); }, "Heo Word"},
    };
    for (auto const& test : cases) {
        S copy(base);
        test.change(copy);
        EXPECT_EQ(test.expected, Str(copy));
    }
    EXPECT_EQ("Hello World", Str(base));
}

TYPED_TEST(StringTypes, CapacityClassesAndPools) {
    using S = TypeParam;
    using T = Traits<S>;
    EXPECT_EQ(64u, S(std::string(63, 'x').c_str()).GetCapacity());
    EXPECT_EQ(128u, S(std::string(64, 'x').c_str()).GetCapacity());
    EXPECT_EQ(1024u, S(std::string(1023, 'x').c_str()).GetCapacity());
    EXPECT_EQ(1025u, S(std::string(1024, 'x').c_str()).GetCapacity());

    // Each class comes from its own pool and goes back to it. A thread keeps a few
    // blocks of each pool at hand (counted as used), so hold more than that.
    int const held = 20, cached = 4;
    for (int sizeClass = 0; sizeClass < 5; ++sizeClass) {
        CFixBlockAllocator& pool = T::Pool(sizeClass);
        CFixBlockAllocator& next = T::Pool((sizeClass + 1) % 5);
        CFixBlockAllocator& other = T::OtherPool(sizeClass);
        unsigned long const used = pool.GetUsedCount();
        unsigned long const nextUsed = next.GetUsedCount(), otherUsed = other.GetUsedCount();
        {
            std::vector<S> strings;
            for (int i = 0; i < held; ++i) {
                strings.emplace_back(std::string((32u << sizeClass) + 1, 'p').c_str());
                EXPECT_EQ(64u << sizeClass, strings.back().GetCapacity());
            }
            EXPECT_GE(pool.GetUsedCount(), used + held - cached);
            EXPECT_EQ(nextUsed, next.GetUsedCount());
            EXPECT_EQ(otherUsed, other.GetUsedCount());
        }
        EXPECT_LE(pool.GetUsedCount(), used + cached);
    }

    S grown("abc");
    grown.EnsureCapacity(200);
    EXPECT_EQ(256u, grown.GetCapacity());
    grown.EnsureCapacity(10); // never shrinks below the present buffer
    EXPECT_EQ(256u, grown.GetCapacity());
    grown.EnsureCapacity(5000);
    EXPECT_EQ(5000u, grown.GetCapacity());
    EXPECT_EQ("abc", Str(grown));

    // A request beyond what the header can describe is heap exhaustion, and the
    // string stays as it was.
    try {
        grown.EnsureCapacity(T::kTooBig);
        FAIL() << "no exception";
    } catch (CMemoryException const& e) {
        EXPECT_STREQ(T::kUnit, e.GetSourceFile());
        EXPECT_EQ(T::kLine, e.GetSourceLine());
    }
    EXPECT_THROW(grown.GetBuffer(~0ul), CMemoryException);
    EXPECT_THROW(grown.SetLength(~0ul), CMemoryException);
    EXPECT_EQ("abc", Str(grown));
    EXPECT_EQ(3u, grown.GetLength());
}

TYPED_TEST(StringTypes, BufferAccess) {
    using S = TypeParam;
    S s;
    auto* p = s.GetBuffer(5);
    for (int i = 0; i < 5; ++i)
        p[i] = "hello"[i];
    s.SetLength(5);
    EXPECT_EQ("hello", Str(s));
    S shared(s);
    s.GetBuffer(5)[0] = 'j';
    s.SetLength(4);
    EXPECT_EQ("jell", Str(s));
    EXPECT_EQ("hello", Str(shared));
    S empty;
    empty.SetLength(0);
    EXPECT_EQ(0u, empty.GetCapacity());

    EXPECT_EQ('e', shared.GetAt(1));
    EXPECT_EQ('e', shared[1]);
    EXPECT_EQ(0, shared[5]);
    EXPECT_EQ(0, shared[-1]);
    EXPECT_EQ(0, shared.GetAt(1000));
    EXPECT_EQ(0, S()[0]);
    shared.SetAt(1000, 'x'); // beyond the text: ignored
    EXPECT_EQ("hello", Str(shared));
}

TYPED_TEST(StringTypes, Compare) {
    using S = TypeParam;
    using Unit = typename Traits<S>::Unit;
    S const empty;
    S const abc("abc");
    // An empty string is below the text "" but equal to null (keep it so).
    EXPECT_EQ(-1, empty.Compare(Traits<S>::Blank()));
    EXPECT_EQ(0, empty.Compare(static_cast<Unit const*>(nullptr)));
    EXPECT_EQ(1, abc.Compare(Traits<S>::Blank()));
    EXPECT_EQ(1, abc.Compare(static_cast<Unit const*>(nullptr)));
    EXPECT_EQ(-1, empty.Compare("x"));
    EXPECT_EQ(0, abc.Compare("abc"));
    EXPECT_LT(abc.Compare("abd"), 0);
    EXPECT_GT(abc.Compare("ABC"), 0);
    EXPECT_EQ(0, abc.CompareIgnoreCase("ABC"));
    EXPECT_EQ(0, empty.Compare(S()));
    EXPECT_EQ(1, abc.Compare(S()));
    EXPECT_EQ(-1, empty.Compare(abc));

    // Operators: empty sides are equal to each other and sort first.
    S emptied("x");
    emptied.Empty();
    EXPECT_TRUE(empty == emptied);
    EXPECT_TRUE(empty == "");
    EXPECT_TRUE(kNull == empty);
    EXPECT_TRUE(abc != "");
    EXPECT_TRUE(abc == "abc" && "abc" == abc);
    EXPECT_FALSE(abc == "ABC");
    EXPECT_TRUE(empty < abc && "" < abc);
    EXPECT_FALSE(abc < kNull);
    EXPECT_TRUE(abc > empty);
    EXPECT_TRUE(empty <= emptied && empty >= emptied);
    EXPECT_TRUE(abc < "abd" && "abd" > abc && abc <= "abc" && abc >= "ab");
}

// Searches, pieces and changes on random ASCII texts against std::string, under the
// documented rules: the last match for ReverseFind is one at or after `start`; an empty
// pattern is never found; SubString and Mid give nothing at or past the end; Right(n)
// ends one byte before the last one for n below the length; an index beyond the text
// is cut to it; Delete returns the length before, Insert the length after.
TYPED_TEST(StringTypes, AgreesWithStdString) {
    using S = TypeParam;
    auto const npos = std::string::npos;
    std::mt19937 rng(11);
    auto random = [&rng](std::size_t maxLength) {
        std::string t(rng() % (maxLength + 1), ' ');
        for (char& c : t)
            c = "abAB \t"[rng() % 6];
        return t;
    };
    auto lower = [](std::string t) {
        for (char& c : t)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return t;
    };
    for (int round = 0; round < 4000; ++round) {
        std::string const text = random(12), pattern = random(3);
        std::size_t const length = text.size();
        unsigned long const start = rng() % (length + 2), n = rng() % (length + 2);
        char const c = "abA "[rng() % 4];
        S const s(text.c_str());
        SCOPED_TRACE("text \"" + text + "\" pattern \"" + pattern + "\" start " +
                     std::to_string(start) + " n " + std::to_string(n));
        auto first = [&](std::string const& t, std::string const& p) {
            std::size_t const at = p.empty() || start > length ? npos : t.find(p, start);
            return at == npos ? -1L : long(at);
        };
        auto last = [&](std::string const& t, std::string const& p) {
            std::size_t const at = p.empty() ? npos : t.rfind(p);
            return at == npos || at < start ? -1L : long(at);
        };
        std::string const one(1, c), lowText = lower(text), lowPattern = lower(pattern);
        EXPECT_EQ(first(text, pattern), s.Find(pattern.c_str(), start));
        EXPECT_EQ(last(text, pattern), s.ReverseFind(pattern.c_str(), start));
        EXPECT_EQ(first(text, one), s.Find(c, start));
        EXPECT_EQ(last(text, one), s.ReverseFind(c, start));
        EXPECT_EQ(first(lowText, lowPattern), s.FindIgnoreCase(pattern.c_str(), start));
        EXPECT_EQ(last(lowText, lowPattern), s.ReverseFindIgnoreCase(pattern.c_str(), start));
        bool const starts = text.compare(0, pattern.size(), pattern) == 0;
        bool const ends =
            pattern.size() <= length && text.compare(length - pattern.size(), npos, pattern) == 0;
        EXPECT_EQ(starts, s.StartsWith(pattern.c_str()));
        EXPECT_EQ(ends, s.EndsWith(pattern.c_str()));
        EXPECT_EQ(lowText.compare(0, pattern.size(), lowPattern) == 0,
                  s.StartsWithIgnoreCase(pattern.c_str()));
        EXPECT_EQ(pattern.size() <= length &&
                      lowText.compare(length - pattern.size(), npos, lowPattern) == 0,
                  s.EndsWithIgnoreCase(pattern.c_str()));

        long const count = long(n) - 1;
        std::string const tail = start < length ? text.substr(start) : "";
        EXPECT_EQ(start < n ? tail.substr(0, n - start) : "", Str(s.SubString(start, n)));
        EXPECT_EQ(tail, Str(s.Mid(start)));
        EXPECT_EQ(count > 0 ? tail.substr(0, count) : "", Str(s.Mid(start, count)));
        EXPECT_EQ(text.substr(0, n), Str(s.Left(n)));
        EXPECT_EQ(n >= length ? text : text.substr(length - 1 - n, n), Str(s.Right(n)));

        S changed(s);
        std::string model = text;
        EXPECT_EQ(length, changed.Delete(start, n));
        if (start < length)
            model.erase(start, n);
        EXPECT_EQ(model.size() + pattern.size(), changed.Insert(start, pattern.c_str()));
        model.insert(std::min<std::size_t>(start, model.size()), pattern);
        EXPECT_EQ(model.size() + 1, changed.Insert(n, c));
        model.insert(std::min<std::size_t>(n, model.size()), one);
        EXPECT_EQ(model, Str(changed));

        std::string const replacement = random(2);
        std::size_t replaced = 0;
        for (std::size_t at = model.find(pattern); !pattern.empty() && at != npos;
             at = model.find(pattern, at + replacement.size()), ++replaced)
            model.replace(at, pattern.size(), replacement);
        EXPECT_EQ(replaced, changed.Replace(pattern.c_str(), replacement.c_str()));
        EXPECT_EQ(model, Str(changed));
        std::size_t const swapped = std::count(model.begin(), model.end(), c);
        std::replace(model.begin(), model.end(), c, 'z');
        EXPECT_EQ(swapped, changed.Replace(c, 'z'));
        model.erase(std::remove(model.begin(), model.end(), 'z'), model.end());
        EXPECT_EQ(swapped, changed.Remove('z'));
        EXPECT_EQ(model, Str(changed));

        // Trims: white space, a run of one character, any character of a set.
        auto strip = [](std::string t, std::string const& left, std::string const& right) {
            t.erase(0, std::min(t.find_first_not_of(left), t.size()));
            t.erase(t.find_last_not_of(right) + 1);
            return t;
        };
        std::string const spaces = " \t", set = pattern.empty() ? "b" : pattern;
        S trimmed(s), cut(s);
        trimmed.TrimLeft();
        trimmed.TrimRight();
        EXPECT_EQ(strip(text, spaces, spaces), Str(trimmed));
        trimmed.TrimLeft(set.c_str());
        trimmed.TrimRight(c);
        EXPECT_EQ(strip(strip(text, spaces, spaces), set, one), Str(trimmed));
        cut.TrimLeft(c);
        cut.TrimRight(set.c_str());
        EXPECT_EQ(strip(text, one, set), Str(cut));
    }
}

// What a model cannot show: null and empty operands, texts from the string's own
// buffer, pieces and appends that share, and the concatenations.
TYPED_TEST(StringTypes, NullOwnAndSharedOperands) {
    using S = TypeParam;
    S const abcde("abcde");
    EXPECT_EQ(-1, abcde.Find(kNull));
    EXPECT_EQ(-1, abcde.Find(S()));
    EXPECT_EQ(0, abcde.Find(S("ab")));
    EXPECT_EQ(3, abcde.ReverseFind(S("d")));
    EXPECT_EQ(-1, abcde.ReverseFindIgnoreCase(kNull));
    EXPECT_FALSE(abcde.StartsWith(kNull));
    EXPECT_TRUE(abcde.EndsWith(S("cde")));
    EXPECT_EQ(Ptr(abcde), Ptr(abcde.Left(5)));
    EXPECT_EQ(Ptr(abcde), Ptr(abcde.Right(5)));
    EXPECT_EQ("abcdede", Str(abcde + S("de")));
    EXPECT_EQ("abcdede", Str(abcde + "de"));
    EXPECT_EQ("xyabcde", Str("xy" + abcde));
    EXPECT_EQ("abcde", Str(abcde + S(kNull)));
    EXPECT_EQ("abcde", Str(kNull + abcde));
    EXPECT_EQ("de", Str(S() + "de"));

    S s;
    s += S();
    s += kNull;
    EXPECT_EQ(0u, s.GetCapacity());
    s += abcde; // appending to an empty string shares
    EXPECT_EQ(Ptr(abcde), Ptr(s));
    s += 'f';
    EXPECT_EQ("abcde", Str(abcde));
    s += s;
    s += Ptr(s) + 9;
    EXPECT_EQ("abcdefabcdefdef", Str(s));
    EXPECT_EQ(15u, s.Insert(2, kNull));
    EXPECT_EQ(18u, s.Insert(0, Ptr(s) + 12));
    EXPECT_EQ("defabcdefabcdefdef", Str(s));

    S r("a-b-c");
    EXPECT_EQ(2u, r.Replace('-', '+'));
    EXPECT_EQ("a+b+c", Str(r));
    EXPECT_EQ(2u, r.Replace("+", kNull)); // a null replacement removes
    EXPECT_EQ(0u, r.Replace(kNull, "x"));
    EXPECT_EQ("abc", Str(r));
    S self("xx");
    EXPECT_EQ(2u, self.Replace(S("x"), self));
    EXPECT_EQ("xxxx", Str(self));
    self.TrimLeft(kNull);
    self.TrimRight("");
    EXPECT_EQ("xxxx", Str(self));
    self.TrimRight(S("x"));
    EXPECT_TRUE(self.IsEmpty());
}

// printf into a 1024-unit work buffer: a result of exactly 1023 units takes a second
// round and comes out whole, a longer one is kept cut to what fitted (keep it so).
TYPED_TEST(StringTypes, Format) {
    using S = TypeParam;
    S s("old");
    s.Format(Native<S>("%d-%05.1f").data(), 42, 3.14159);
    EXPECT_EQ("42-003.1", Str(s));
    std::string const x1020(1020, 'x');
    FormatInto(s, Native<S>(x1020 + "%d").data(), 123);
    EXPECT_EQ(x1020 + "123", Str(s));
    FormatInto(s, Native<S>(x1020 + "%d").data(), 1234);
    EXPECT_EQ(x1020 + "123", Str(s));
    FormatInto(s, Native<S>(std::string(3000, 'y') + "%d").data(), 5);
    EXPECT_EQ(std::string(1023, 'y'), Str(s));

    FormatInto(s, nullptr);
    EXPECT_TRUE(s.IsEmpty());
    s = "x";
    FormatInto(s, Native<S>("").data());
    EXPECT_TRUE(s.IsEmpty());
    s = "abc"; // formatting a string into itself reads the old text
    FormatInto(s, Native<S>("[%s]").data(), Ptr(s));
    EXPECT_EQ("[abc]", Str(s));
}

// Appends by the thousand against std::string; the buffer grows geometrically, not
// piece by piece.
TYPED_TEST(StringTypes, LargeAppends) {
    using S = TypeParam;
    std::string expected;
    std::set<unsigned long> capacities;
    S s;
    for (int i = 0; i < 20000; ++i) {
        char piece[8];
        std::snprintf(piece, sizeof piece, "%05d,", i);
        s += piece;
        expected += piece;
        capacities.insert(s.GetCapacity());
    }
    EXPECT_EQ(expected, Str(s));
    EXPECT_LT(capacities.size(), 40u);
    S copy(s);
    s.Insert(0, "<");
    EXPECT_EQ('<', s[0]);
    EXPECT_EQ(expected, Str(copy));
    s.Delete(0, 1);
    EXPECT_TRUE(s == copy);
}

TEST(CString, ConstructionAndConversion) {
    CString none;
    EXPECT_TRUE(none.IsEmpty());
    EXPECT_STREQ("", Ptr(none));
    EXPECT_TRUE(CString(kNull).IsEmpty());

    // Kept bytes are limited by n, the length is the source's whole strlen.
    CString cut("abcdef", 2);
    EXPECT_EQ(6u, cut.GetLength());
    EXPECT_STREQ("ab", Ptr(cut));
    CString padded("ab", 5);
    EXPECT_EQ(2u, padded.GetLength());
    EXPECT_TRUE(CString("abc", 0).IsEmpty());
    EXPECT_TRUE(CString(kNull, 4).IsEmpty());
    CString set;
    set.Set("xyz", 1);
    EXPECT_STREQ("x", Ptr(set));
    EXPECT_EQ(3u, set.GetLength());
    // Operations that trust the long length stay inside the buffer.
    cut += "!";
    EXPECT_EQ(7u, cut.GetLength());
    EXPECT_EQ('!', cut[6]);
    EXPECT_THROW(set.Set("x", ~0ul), CMemoryException);
    EXPECT_THROW(set.GetBuffer(0xFFFFFFFFul), CMemoryException);

    unsigned short const utf16[] = {'a', 0xE9, 0xD83D, 0xDE00, 0};
    CString converted(utf16);
    EXPECT_EQ("a\xC3\xA9\xF0\x9F\x98\x80", Str(converted));
    EXPECT_STREQ("a\xC3\xA9", Ptr(CString(utf16, 2)));
    unsigned short const shortText[] = {'h', 'i', 0, 'x'};
    EXPECT_STREQ("hi", Ptr(CString(shortText, 50)));
    EXPECT_TRUE(CString(static_cast<unsigned short const*>(nullptr)).IsEmpty());
    CString assigned("old");
    assigned = utf16;
    EXPECT_EQ(7u, assigned.GetLength());
    assigned = static_cast<unsigned short const*>(nullptr);
    EXPECT_TRUE(assigned.IsEmpty());
    assigned = "new";
    assigned = kNull;
    EXPECT_TRUE(assigned.IsEmpty());
}

TEST(CString, MultibyteText) {
    // Compare, search and trims work on whole UTF-8 characters, at byte indexes.
    EXPECT_EQ(0, CString("\xC3\xA9T\xC3\xA9").CompareIgnoreCase("\xC3\x89t\xC3\x89"));
    EXPECT_EQ(-1, CString().CompareIgnoreCase(""));
    CString utf8("\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(2, utf8.Find('t'));
    EXPECT_EQ(3, utf8.Find("\xC3\xA9", 1));
    EXPECT_EQ(3, utf8.FindIgnoreCase("\xC3\x89", 1));

    CString cases("\xC3\xA9t\xC3\xA9 Ab");
    cases.MakeUpper();
    EXPECT_STREQ("\xC3\x89T\xC3\x89 AB", Ptr(cases));
    cases.MakeLower();
    EXPECT_STREQ("\xC3\xA9t\xC3\xA9 ab", Ptr(cases));
    // Whole characters are reversed, multibyte sequences stay intact.
    CString rev("a\xC3\xA9\x62\xF0\x9F\x98\x80"); // a é b 😀
    rev.MakeReverse();
    EXPECT_STREQ("\xF0\x9F\x98\x80\x62\xC3\xA9\x61", Ptr(rev));
    // A multibyte character of the set is trimmed whole, and only whole.
    CString trimmed("\xC3\xA9\xC3\xA9x\xC3\xA8");
    trimmed.TrimLeft("\xC3\xA9");
    EXPECT_STREQ("x\xC3\xA8", Ptr(trimmed));
    trimmed.TrimRight("\xC3\xA9");
    EXPECT_STREQ("x\xC3\xA8", Ptr(trimmed));
}

TEST(CUnicodeString, ConstructionAndConversion) {
    EXPECT_EQ(0, Ptr(CUnicodeString())[0]);
    EXPECT_TRUE(CUnicodeString(static_cast<unsigned short const*>(nullptr)).IsEmpty());

    // At most n units are kept, but the length is that of the whole source.
    CUnicodeString cut(U(u"abcdef").data(), 2);
    EXPECT_EQ(std::u16string(u"ab\0\0\0\0", 6), Text(cut));
    EXPECT_EQ(2u, CUnicodeString(U(u"ab").data(), 5).GetLength());
    EXPECT_TRUE(CUnicodeString(U(u"abc").data(), 0).IsEmpty());
    cut += U(u"!").data(); // appended behind the recorded length, inside the buffer
    EXPECT_EQ(7u, cut.GetLength());
    EXPECT_EQ(u'!', cut[6]);
    EXPECT_THROW(CUnicodeString(U(u"x").data(), ~0ul), CMemoryException);

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
}

TEST(CUnicodeString, NonAsciiText) {
    Units const none = U(u"");
    EXPECT_EQ(-1, CUnicodeString().Compare(none.data()));
    EXPECT_EQ(0, CUnicodeString().Compare(static_cast<unsigned short const*>(nullptr)));
    EXPECT_TRUE(U(u"b").data() > CUnicodeString("abc"));
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
    CUnicodeString const cyrillic(U(u"xx \u0416\u0416 \u0436\u0436").data());
    EXPECT_EQ(3, cyrillic.FindIgnoreCase(U(u"\u0436\u0416").data()));
    EXPECT_EQ(6, cyrillic.ReverseFindIgnoreCase(U(u"\u0436\u0416").data()));

    CUnicodeString s("abcabc\xC3\xA9");
    EXPECT_EQ(6, s.Find(0xE9));
    EXPECT_EQ(-1, s.Find('\xC3')); // a lone lead byte is no character
    EXPECT_EQ(5, s.Find("c\xC3\xA9"));
    EXPECT_TRUE(s.EndsWith(U(u"c\u00E9").data()));
    EXPECT_EQ(u">abc", Text(U(u">").data() + CUnicodeString("abc")));

    CUnicodeString t("a");
    EXPECT_EQ(3u, t.Insert(100, "\xC3\xA9z"));
    EXPECT_EQ(3u, t.Insert(0, '\xE9')); // not a whole UTF-8 character: nothing inserted
    EXPECT_EQ(4u, t.Insert(0, u'_'));
    EXPECT_EQ(1u, t.Replace("\xC3\xA9", "ee"));
    EXPECT_EQ(u"_aeez", Text(t));
    EXPECT_EQ(1u, t.Replace(U(u"ee").data(), nullptr));
    EXPECT_EQ(1u, t.Remove(u'_'));
    EXPECT_EQ(u"az", Text(t));
    EXPECT_EQ(0u, t.Replace(none.data(), U(u"x").data()));

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
    set.TrimRight(U(u"xy").data());
    EXPECT_EQ(u"xyabc", Text(set));
}

namespace {

// Random text mixing ASCII runs, Latin, CJK, emoji and other BMP characters.
std::u16string RandomText(std::mt19937& rng, std::size_t codePoints) {
    static UChar32 const ranges[][2] = {{0x20, 0x7E},     {0x20, 0x7E},     {0xA0, 0x7FF},
                                        {0x4E00, 0x9FFF}, {0xE000, 0xFFFD}, {0x1F300, 0x1FAFF}};
    std::u16string text;
    for (std::size_t i = 0; i < codePoints; ++i) {
        auto const& range = ranges[rng() % 6];
        UChar32 const c = std::uniform_int_distribution<UChar32>(range[0], range[1])(rng);
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
    std::string out(text.size() * 3 + 1, '\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(&out[0], int32_t(out.size()), &length, text.data(), int32_t(text.size()), &status);
    EXPECT_TRUE(U_SUCCESS(status));
    out.resize(length);
    return out;
}

std::u16string IcuFromUTF8(std::string const& bytes) {
    std::u16string out(bytes.size() + 1, u'\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(&out[0], int32_t(out.size()), &length, bytes.data(), int32_t(bytes.size()),
                  &status);
    EXPECT_TRUE(U_SUCCESS(status));
    out.resize(length);
    return out;
}

} // namespace

TEST(CUnicodeString, FromUTF8) {
    // Decoding stops at the first malformed sequence; overlong forms and encoded
    // surrogates come through as they are; -1 runs to the 0 byte, a length takes 0
    // bytes as units.
    char const withZero[] = {'a', 'b', 0, 'c'};
    struct Case {
        char const* bytes;
        long length;
        std::u16string expected;
    } const cases[] = {
        {"\xF0\x9F\x98\x80", 4, {0xD83D, 0xDE00}},
        {"ab\x80\x63\x64", -1, u"ab"},
        {"ab\xE4\xB8", 4, u"ab"},
        {"ab\xC3\x63", -1, u"ab"},
        {"a\xF8\x80\x80\x80\x80", -1, u"a"},
        {withZero, -1, u"ab"},
        {withZero, 4, std::u16string(u"ab\0c", 4)},
        {"abc", 1, u"a"},
        {nullptr, 5, u""},
        {"\x80", -1, u""},
        {"\xC0\x80", 2, std::u16string(u"\0", 1)},
        {"\xED\xA0\x80", 3, {0xD800}},
        {"\xE0\x80\xAF", 3, u"/"},
    };
    for (auto const& test : cases)
        EXPECT_EQ(test.expected, Text(CUnicodeString::FromUTF8(test.bytes, test.length)))
            << &test - cases;

    // Agrees with ICU on valid text of every length around the block sizes, and on
    // prefixes cut by the end or by a stray byte anywhere.
    std::mt19937 rng(12345);
    for (std::size_t n = 0; n < 200; ++n) {
        std::u16string const text = RandomText(rng, n);
        std::string const bytes = IcuToUTF8(text);
        EXPECT_EQ(text, Text(CUnicodeString::FromUTF8(bytes.data(), long(bytes.size())))) << n;
    }
    std::string const big = IcuToUTF8(RandomText(rng, 5000));
    EXPECT_EQ(IcuFromUTF8(big), Text(CUnicodeString::FromUTF8(big.c_str(), -1)));
    auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    for (std::size_t cut = 1; cut < 400; ++cut) {
        std::size_t end = cut; // a sequence cut by the end is dropped
        while (isContinuation(big[end]))
            --end;
        EXPECT_EQ(IcuFromUTF8(big.substr(0, end)),
                  Text(CUnicodeString::FromUTF8(big.data(), long(cut))))
            << "cut at " << cut;
    }
    for (int round = 0; round < 400; ++round) {
        std::size_t const at = std::uniform_int_distribution<std::size_t>(0, 2000)(rng);
        std::string broken = big.substr(0, 2100);
        // A sequence start replaced by a byte that starts nothing ends the text there;
        // a continuation replaced by 'x' ends it where its sequence starts.
        std::size_t end = at;
        if (isContinuation(broken[at])) {
            while (isContinuation(broken[end]))
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
    for (std::size_t n = 0; n < 200 || n == 203; n += 7) {
        std::u16string const text = RandomText(rng, n < 200 ? n : 50000);
        CUnicodeString s(U(text).data());
        EXPECT_EQ(IcuToUTF8(text), Str(s.ToUTF8()));
        EXPECT_EQ(long(s.ToUTF8().GetLength()), s.ToUTF8(nullptr, 0));
    }

    // An unpaired surrogate takes the 3-byte form of its value and comes back whole.
    std::u16string const odd = {u'A', 0xD800, u'B', 0xDC00, 0xD83D, 0xDE00, 0xDBFF};
    CString const encoded = CUnicodeString(U(odd).data()).ToUTF8();
    EXPECT_EQ("A\xED\xA0\x80"
              "B\xED\xB0\x80\xF0\x9F\x98\x80\xED\xAF\xBF",
              Str(encoded));
    EXPECT_EQ(odd, Text(CUnicodeString::FromUTF8(encoded, -1)));

    // Into a caller's buffer: whole sequences only, a terminator when a byte is left.
    CUnicodeString s(U(u"a\u00E9\U0001F600").data()); // 1 + 2 + 4 bytes
    struct Case {
        long size, written;
        std::string expected; // the buffer's first size bytes, '#' untouched
    } const cases[] = {
        {8, 7, std::string("a\xC3\xA9\xF0\x9F\x98\x80\0", 8)},
        {7, 7, "a\xC3\xA9\xF0\x9F\x98\x80"},
        {6, 3, std::string("a\xC3\xA9\0##", 6)},
        {2, 1, std::string("a\0", 2)},
        {0, 0, ""},
        {-1, 0, ""},
    };
    for (auto const& test : cases) {
        char target[16];
        std::memset(target, '#', sizeof target);
        EXPECT_EQ(test.written, s.ToUTF8(target, test.size)) << test.size;
        EXPECT_EQ(test.expected, std::string(target, test.expected.size())) << test.size;
        EXPECT_EQ('#', target[test.expected.size()]) << test.size;
    }
    EXPECT_TRUE(CUnicodeString().ToUTF8().IsEmpty());
    char target[4] = {'#'};
    EXPECT_EQ(0, CUnicodeString().ToUTF8(target, 4));
    EXPECT_EQ(0, target[0]);
}
