// Tests of CString: construction, sharing and copy-on-write, capacity classes and pools,
// buffer access, comparison, search, pieces, changes, trims, Format and large appends.
#include <lumo/base/Exception.h>
#include <lumo/base/FixBlockAllocator.h>
#include <lumo/base/String.h>

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

using lumo::base::CFixBlockAllocator;
using lumo::base::CMemoryException;
using lumo::base::CString;

namespace {

char const* Text(CString const& s) {
    return s;
}

void FormatInto(CString& s, char const* format, ...) {
    va_list args;
    va_start(args, format);
    s.FormatV(format, args);
    va_end(args);
}

} // namespace

TEST(CString, Construction) {
    CString none;
    EXPECT_EQ(0u, none.GetLength());
    EXPECT_TRUE(none.IsEmpty());
    EXPECT_STREQ("", Text(none));
    EXPECT_NE(nullptr, Text(none));
    EXPECT_TRUE(CString(static_cast<char const*>(nullptr)).IsEmpty());

    // Kept bytes are limited by n, the length is the source's whole strlen.
    CString cut("abcdef", 2);
    EXPECT_EQ(6u, cut.GetLength());
    EXPECT_STREQ("ab", Text(cut));
    CString padded("ab", 5);
    EXPECT_EQ(2u, padded.GetLength());
    EXPECT_STREQ("ab", Text(padded));
    EXPECT_TRUE(CString("abc", 0).IsEmpty());
    EXPECT_TRUE(CString(static_cast<char const*>(nullptr), 4).IsEmpty());
    CString set;
    set.Set("xyz", 1);
    EXPECT_STREQ("x", Text(set));
    EXPECT_EQ(3u, set.GetLength());
    // Operations that trust the long length stay inside the buffer.
    cut += "!";
    EXPECT_EQ(7u, cut.GetLength());
    EXPECT_EQ('!', cut[6]);

    unsigned short const utf16[] = {'a', 0xE9, 0xD83D, 0xDE00, 0};
    CString converted(utf16);
    EXPECT_STREQ("a\xC3\xA9\xF0\x9F\x98\x80", Text(converted));
    EXPECT_EQ(7u, converted.GetLength());
    EXPECT_STREQ("a\xC3\xA9", Text(CString(utf16, 2)));
    EXPECT_STREQ("a", Text(CString(utf16 + 0, 1)));
    unsigned short const shortText[] = {'h', 'i', 0, 'x'};
    EXPECT_STREQ("hi", Text(CString(shortText, 50)));
    EXPECT_TRUE(CString(static_cast<unsigned short const*>(nullptr)).IsEmpty());
    CString assigned("old");
    assigned = utf16;
    EXPECT_EQ(7u, assigned.GetLength());
    assigned = static_cast<unsigned short const*>(nullptr);
    EXPECT_TRUE(assigned.IsEmpty());
    assigned = "new";
    EXPECT_STREQ("new", Text(assigned));
    assigned = static_cast<char const*>(nullptr);
    EXPECT_TRUE(assigned.IsEmpty());
}

TEST(CString, SharingAndCopyOnWrite) {
    CString a("abc");
    CString b(a);
    EXPECT_EQ(Text(a), Text(b));
    CString left = a.Left(10);
    EXPECT_EQ(Text(a), Text(left));
    left.SetAt(0, 'X');
    EXPECT_STREQ("Xbc", Text(left));
    EXPECT_STREQ("abc", Text(a));
    EXPECT_STREQ("abc", Text(b));
    EXPECT_EQ(Text(a), Text(b));

    b += "d";
    EXPECT_STREQ("abcd", Text(b));
    EXPECT_STREQ("abc", Text(a));

    CString c = a;
    c = c;
    EXPECT_EQ(Text(a), Text(c));
    // Empty() on a shared buffer leaves it to the other owner.
    c.Empty();
    EXPECT_TRUE(c.IsEmpty());
    EXPECT_EQ(0u, c.GetCapacity());
    EXPECT_STREQ("abc", Text(a));
    // On a private buffer it keeps the storage.
    a.Empty();
    EXPECT_EQ(64u, a.GetCapacity());
    EXPECT_STREQ("", Text(a));

    // An empty source never shares, whatever its storage.
    CString d(a);
    EXPECT_EQ(0u, d.GetCapacity());
    CString e("e");
    e = a;
    EXPECT_TRUE(e.IsEmpty());

    CString moved(static_cast<CString&&>(b));
    EXPECT_STREQ("abcd", Text(moved));
    EXPECT_TRUE(b.IsEmpty());

    // Every change makes its own copy.
    CString base("Hello World");
    CString copies[8] = {base, base, base, base, base, base, base, base};
    copies[0].MakeUpper();
    copies[1].MakeLower();
    copies[2].MakeReverse();
    copies[3].Replace('o', '0');
    copies[4].Delete(0, 6);
    copies[5].Insert(0, ">");
    copies[6].TrimLeft('H');
    copies[7].Remove('l');
    EXPECT_STREQ("HELLO WORLD", Text(copies[0]));
    EXPECT_STREQ("hello world", Text(copies[1]));
    EXPECT_STREQ("dlroW olleH", Text(copies[2]));
    EXPECT_STREQ("Hell0 W0rld", Text(copies[3]));
    EXPECT_STREQ("World", Text(copies[4]));
    EXPECT_STREQ(">Hello World", Text(copies[5]));
    EXPECT_STREQ("ello World", Text(copies[6]));
    EXPECT_STREQ("Heo Word", Text(copies[7]));
    EXPECT_STREQ("Hello World", Text(base));
}

TEST(CString, CapacityClassesAndPools) {
    EXPECT_EQ(64u, CString(std::string(63, 'x').c_str()).GetCapacity());
    EXPECT_EQ(128u, CString(std::string(64, 'x').c_str()).GetCapacity());
    EXPECT_EQ(1024u, CString(std::string(1023, 'x').c_str()).GetCapacity());
    EXPECT_EQ(1025u, CString(std::string(1024, 'x').c_str()).GetCapacity());

    // Each class comes from its own pool and goes back to it. A thread keeps a few
    // blocks of each pool at hand (counted as used), so hold more than that.
    int const held = 20, cached = 4;
    for (int sizeClass = 0; sizeClass < 5; ++sizeClass) {
        CFixBlockAllocator& pool = CFixBlockAllocator::StringPool(sizeClass);
        CFixBlockAllocator& other = CFixBlockAllocator::StringPool((sizeClass + 1) % 5);
        unsigned long const used = pool.GetUsedCount();
        unsigned long const otherUsed = other.GetUsedCount();
        {
            std::vector<CString> strings;
            for (int i = 0; i < held; ++i) {
                strings.emplace_back(std::string((32u << sizeClass) + 1, 'p').c_str());
                EXPECT_EQ(64u << sizeClass, strings.back().GetCapacity());
            }
            EXPECT_GE(pool.GetUsedCount(), used + held - cached);
            EXPECT_EQ(otherUsed, other.GetUsedCount());
        }
        EXPECT_LE(pool.GetUsedCount(), used + cached);
    }

    CString grown("abc");
    grown.EnsureCapacity(200);
    EXPECT_EQ(256u, grown.GetCapacity());
    EXPECT_STREQ("abc", Text(grown));
    grown.EnsureCapacity(10); // never shrinks below the present buffer
    EXPECT_EQ(256u, grown.GetCapacity());
    grown.EnsureCapacity(5000);
    EXPECT_EQ(5000u, grown.GetCapacity());
    EXPECT_STREQ("abc", Text(grown));

    // A request beyond what the 32-bit header can describe is heap exhaustion, and
    // the string stays as it was.
    try {
        grown.EnsureCapacity(0x100000000ul);
        FAIL() << "no exception";
    } catch (CMemoryException const& e) {
        EXPECT_STREQ("lumo/base/String", e.GetSourceFile());
        EXPECT_EQ(1936u, e.GetSourceLine());
    }
    EXPECT_STREQ("abc", Text(grown));
    EXPECT_THROW(grown.GetBuffer(0xFFFFFFFFul), CMemoryException);
    EXPECT_THROW(grown.GetBuffer(~0ul), CMemoryException);
    EXPECT_THROW(grown.SetLength(~0ul), CMemoryException);
    EXPECT_THROW(grown.Set("x", ~0ul), CMemoryException);
    EXPECT_STREQ("abc", Text(grown));
    EXPECT_EQ(3u, grown.GetLength());
}

TEST(CString, BufferAccess) {
    CString s;
    char* p = s.GetBuffer(5);
    std::memcpy(p, "hello", 5);
    s.SetLength(5);
    EXPECT_STREQ("hello", Text(s));
    EXPECT_GE(s.GetCapacity(), 6u);
    CString shared(s);
    s.GetBuffer(5)[0] = 'j';
    s.SetLength(4);
    EXPECT_STREQ("jell", Text(s));
    EXPECT_STREQ("hello", Text(shared));
    CString empty;
    empty.SetLength(0);
    EXPECT_EQ(0u, empty.GetCapacity());

    EXPECT_EQ('e', shared.GetAt(1));
    EXPECT_EQ('e', shared[1]);
    EXPECT_EQ('\0', shared[5]);
    EXPECT_EQ('\0', shared[-1]);
    EXPECT_EQ('\0', shared.GetAt(1000));
    EXPECT_EQ('\0', CString()[0]);
    shared.SetAt(1000, 'x'); // beyond the text: ignored
    EXPECT_STREQ("hello", Text(shared));
}

TEST(CString, Compare) {
    CString empty;
    CString abc("abc");
    EXPECT_EQ(-1, empty.Compare(""));
    EXPECT_EQ(0, empty.Compare(static_cast<char const*>(nullptr)));
    EXPECT_EQ(-1, empty.Compare("x"));
    EXPECT_EQ(1, abc.Compare(""));
    EXPECT_EQ(1, abc.Compare(static_cast<char const*>(nullptr)));
    EXPECT_EQ(0, abc.Compare("abc"));
    EXPECT_LT(abc.Compare("abd"), 0);
    EXPECT_GT(abc.Compare("ABC"), 0);
    EXPECT_EQ(0, abc.CompareIgnoreCase("ABC"));
    EXPECT_EQ(0, abc.Compare(CString("abc")));
    EXPECT_EQ(0, empty.Compare(CString()));
    EXPECT_EQ(1, abc.Compare(CString()));
    EXPECT_EQ(-1, empty.Compare(abc));
    EXPECT_EQ(-1, empty.CompareIgnoreCase(""));
    EXPECT_EQ(0, CString("\xC3\xA9T\xC3\xA9").CompareIgnoreCase("\xC3\x89t\xC3\x89"));

    // Operators: empty sides are equal to each other and sort first.
    CString emptied("x");
    emptied.Empty();
    EXPECT_TRUE(empty == emptied);
    EXPECT_TRUE(empty == "");
    EXPECT_TRUE(static_cast<char const*>(nullptr) == empty);
    EXPECT_TRUE(abc != "");
    EXPECT_TRUE(abc == "abc");
    EXPECT_TRUE("abc" == abc);
    EXPECT_FALSE(abc == "ABC");
    EXPECT_TRUE(empty < abc);
    EXPECT_TRUE("" < abc);
    EXPECT_FALSE(abc < static_cast<char const*>(nullptr));
    EXPECT_TRUE(abc > empty);
    EXPECT_TRUE(empty <= emptied && empty >= emptied);
    EXPECT_TRUE(abc < "abd" && "abd" > abc && abc <= "abc" && abc >= "ab");
}

TEST(CString, Searching) {
    CString s("abcabc");
    EXPECT_EQ(1, s.Find('b'));
    EXPECT_EQ(4, s.Find('b', 2));
    EXPECT_EQ(-1, s.Find('b', 6));
    EXPECT_EQ(-1, s.Find('z'));
    EXPECT_EQ(-1, CString().Find('a'));
    EXPECT_EQ(4, s.ReverseFind('b'));
    EXPECT_EQ(-1, s.ReverseFind('a', 6));
    EXPECT_EQ(3, s.Find("abc", 1));
    EXPECT_EQ(-1, s.Find(""));
    EXPECT_EQ(-1, s.Find(static_cast<char const*>(nullptr)));
    EXPECT_EQ(-1, s.Find(CString()));
    EXPECT_EQ(0, s.Find(CString("ab")));
    EXPECT_EQ(-1, s.Find("ABC"));
    EXPECT_EQ(3, s.FindIgnoreCase("ABC", 1));
    EXPECT_EQ(3, s.ReverseFind("abc"));
    EXPECT_EQ(3, s.ReverseFind(CString("a")));
    EXPECT_EQ(-1, s.ReverseFind("abc", 4));
    EXPECT_EQ(4, s.ReverseFindIgnoreCase("BC", 0));
    EXPECT_EQ(-1, s.ReverseFindIgnoreCase(static_cast<char const*>(nullptr)));
    // Overlapping matches: the last one wins.
    EXPECT_EQ(2, CString("aaaa").ReverseFind("aa"));
    // Byte indexes over multibyte text.
    CString utf8("\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(2, utf8.Find('t'));
    EXPECT_EQ(3, utf8.Find("\xC3\xA9", 1));
    EXPECT_EQ(3, utf8.FindIgnoreCase("\xC3\x89", 1));

    EXPECT_TRUE(s.StartsWith("abc"));
    EXPECT_TRUE(s.StartsWith(""));
    EXPECT_FALSE(s.StartsWith(static_cast<char const*>(nullptr)));
    EXPECT_FALSE(s.StartsWith("abcabcd"));
    EXPECT_FALSE(s.StartsWith("ABC"));
    EXPECT_TRUE(s.StartsWithIgnoreCase("ABC"));
    EXPECT_TRUE(s.EndsWith(CString("cabc")));
    EXPECT_FALSE(s.EndsWith("ab"));
    EXPECT_TRUE(s.EndsWithIgnoreCase("BC"));
    EXPECT_FALSE(CString().StartsWith("a"));
}

TEST(CString, Pieces) {
    CString abc("abc");
    EXPECT_TRUE(abc.SubString(2, 2).IsEmpty());
    EXPECT_STREQ("bc", Text(abc.SubString(1, 1000)));
    EXPECT_TRUE(abc.SubString(3).IsEmpty());
    EXPECT_TRUE(abc.SubString(2, 1).IsEmpty());
    EXPECT_TRUE(CString().SubString(0, 5).IsEmpty());
    EXPECT_STREQ("b", Text(abc.Mid(1, 1)));
    EXPECT_STREQ("c", Text(abc.Mid(2)));
    EXPECT_TRUE(abc.Mid(1, -1).IsEmpty());
    EXPECT_STREQ("bc", Text(abc.Mid(1, 0x7FFFFFFF)));
    EXPECT_STREQ("ab", Text(abc.Left(2)));
    EXPECT_TRUE(abc.Left(0).IsEmpty());
    EXPECT_EQ(Text(abc), Text(abc.Left(3)));

    CString abcde("abcde");
    EXPECT_STREQ("cd", Text(abcde.Right(2)));
    EXPECT_STREQ("abcd", Text(abcde.Right(4)));
    EXPECT_EQ(Text(abcde), Text(abcde.Right(5)));
    EXPECT_TRUE(abcde.Right(0).IsEmpty());
    EXPECT_TRUE(CString().Right(3).IsEmpty());

    EXPECT_STREQ("abcde", Text(abc + CString("de")));
    EXPECT_STREQ("abcde", Text(abc + "de"));
    EXPECT_STREQ("xyabc", Text("xy" + abc));
    EXPECT_EQ(Text(abc), Text(abc + static_cast<char const*>(nullptr)));
    EXPECT_EQ(Text(abc), Text(static_cast<char const*>(nullptr) + abc));
    EXPECT_STREQ("de", Text(CString() + "de"));
}

TEST(CString, Changes) {
    CString s;
    s += CString();
    s += static_cast<char const*>(nullptr);
    EXPECT_EQ(0u, s.GetCapacity());
    CString shared("abc");
    s += shared; // appending to an empty string shares
    EXPECT_EQ(Text(shared), Text(s));
    s += "def";
    s += 'g';
    EXPECT_STREQ("abcdefg", Text(s));
    EXPECT_STREQ("abc", Text(shared));
    s += s;
    EXPECT_STREQ("abcdefgabcdefg", Text(s));
    s += Text(s) + 7;
    EXPECT_STREQ("abcdefgabcdefgabcdefg", Text(s));

    CString t("ac");
    EXPECT_EQ(3u, t.Insert(1, 'b'));
    EXPECT_EQ(5u, t.Insert(99, "de"));
    EXPECT_EQ(6u, t.Insert(0, Text(t) + 4));
    EXPECT_STREQ("eabcde", Text(t));
    EXPECT_EQ(6u, t.Insert(2, static_cast<char const*>(nullptr)));
    EXPECT_EQ(2u, CString().Insert(5, "xy"));

    CString d("abc");
    EXPECT_EQ(3u, d.Delete(1, 1));
    EXPECT_STREQ("ac", Text(d));
    EXPECT_EQ(2u, d.Delete(2, 1));
    EXPECT_EQ(2u, d.Delete(0, 0));
    EXPECT_EQ(2u, d.Delete(1, 50)); // stops at the end
    EXPECT_STREQ("a", Text(d));
    EXPECT_EQ(0u, CString().Delete(0, 1));

    CString r("a-b-c");
    EXPECT_EQ(2u, r.Replace('-', '+'));
    EXPECT_STREQ("a+b+c", Text(r));
    EXPECT_EQ(0u, r.Replace('x', 'y'));
    EXPECT_EQ(2u, r.Replace("+", "--"));
    EXPECT_STREQ("a--b--c", Text(r));
    EXPECT_EQ(2u, r.Replace("--", static_cast<char const*>(nullptr)));
    EXPECT_STREQ("abc", Text(r));
    EXPECT_EQ(0u, r.Replace(static_cast<char const*>(nullptr), "x"));
    EXPECT_EQ(0u, r.Replace("", "x"));
    EXPECT_EQ(1u, r.Replace("abc", ""));
    EXPECT_TRUE(r.IsEmpty());
    CString self("xx");
    EXPECT_EQ(2u, self.Replace("x", Text(self)));
    EXPECT_STREQ("xxxx", Text(self));

    CString m("banana");
    EXPECT_EQ(3u, m.Remove('a'));
    EXPECT_STREQ("bnn", Text(m));
    EXPECT_EQ(3u, m.GetLength());
    EXPECT_EQ(0u, m.Remove('z'));

    CString cases("\xC3\xA9t\xC3\xA9 Ab");
    cases.MakeUpper();
    EXPECT_STREQ("\xC3\x89T\xC3\x89 AB", Text(cases));
    cases.MakeLower();
    EXPECT_STREQ("\xC3\xA9t\xC3\xA9 ab", Text(cases));
    // Whole characters are reversed, multibyte sequences stay intact.
    CString rev("a\xC3\xA9"
                "b\xF0\x9F\x98\x80");
    rev.MakeReverse();
    EXPECT_STREQ("\xF0\x9F\x98\x80"
                 "b\xC3\xA9"
                 "a",
                 Text(rev));
    EXPECT_EQ(8u, rev.GetLength());
}

TEST(CString, Trims) {
    CString s(" \t abc \n ");
    s.TrimLeft();
    EXPECT_STREQ("abc \n ", Text(s));
    s.TrimRight();
    EXPECT_STREQ("abc", Text(s));
    EXPECT_EQ(3u, s.GetLength());
    CString blank("   ");
    blank.TrimRight();
    EXPECT_TRUE(blank.IsEmpty());

    CString x("xxaxx");
    x.TrimLeft('x');
    EXPECT_STREQ("axx", Text(x));
    x.TrimRight('x');
    EXPECT_STREQ("a", Text(x));

    CString set("-+-a+b-+");
    set.TrimLeft("+-");
    EXPECT_STREQ("a+b-+", Text(set));
    set.TrimRight(CString("-+"));
    EXPECT_STREQ("a+b", Text(set));
    set.TrimLeft(static_cast<char const*>(nullptr));
    set.TrimRight("");
    EXPECT_STREQ("a+b", Text(set));

    // A multibyte character of the set is trimmed whole, and only whole.
    CString utf8("\xC3\xA9\xC3\xA9x\xC3\xA8");
    utf8.TrimLeft("\xC3\xA9");
    EXPECT_STREQ("x\xC3\xA8", Text(utf8));
    utf8.TrimRight("\xC3\xA9");
    EXPECT_STREQ("x\xC3\xA8", Text(utf8));
    CString empty;
    empty.TrimLeft();
    empty.TrimRight("x");
    EXPECT_TRUE(empty.IsEmpty());
}

TEST(CString, Format) {
    CString s("old");
    s.Format("%d-%s-%05.1f", 42, "x", 3.14159);
    EXPECT_STREQ("42-x-003.1", Text(s));

    // Exactly 1023 bytes takes a second round and comes out whole.
    std::string const exact(1023, 'e');
    s.Format("%s", exact.c_str());
    EXPECT_EQ(1023u, s.GetLength());
    EXPECT_EQ(exact, Text(s));
    // Longer texts do not fit the first buffer and are kept cut.
    std::string const longer(1500, 'l');
    s.Format("%s", longer.c_str());
    EXPECT_EQ(1023u, s.GetLength());
    EXPECT_EQ(longer.substr(0, 1023), Text(s));
    s.Format("%s!", std::string(1022, 'b').c_str());
    EXPECT_EQ(1023u, s.GetLength());
    EXPECT_EQ('!', s[1022]);

    FormatInto(s, nullptr);
    EXPECT_TRUE(s.IsEmpty());
    s = "x";
    s.Format("%s", "");
    EXPECT_TRUE(s.IsEmpty());
    // Formatting a string into itself reads the old text.
    s = "abc";
    s.Format("[%s]", Text(s));
    EXPECT_STREQ("[abc]", Text(s));
}

TEST(CString, LargeAppends) {
    std::string expected;
    CString s;
    for (int i = 0; i < 20000; ++i) {
        char piece[8];
        std::snprintf(piece, sizeof piece, "%05d,", i);
        s += piece;
        expected += piece;
    }
    EXPECT_EQ(expected.size(), s.GetLength());
    EXPECT_EQ(expected, Text(s));
    CString copy(s);
    s.Insert(0, "<");
    EXPECT_EQ('<', s[0]);
    EXPECT_EQ(expected, Text(copy));
    s.Delete(0, 1);
    EXPECT_TRUE(s == copy);
}
