// Regular expressions: argument checks, composed parse messages, shared copies, group
// positions in 8-bit and UTF-16 text, large inputs, and a comparison of a generated
// corpus with Python's re module.
#include <lumo/Library.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/util/regex/RegEx.h>
#include <vela/Resource.h>

#include "support/Files.h"
#include "support/WideText.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

using namespace lumo::base;
using namespace lumo::util::regex;
using lumotest::W;

namespace {

class LibraryEnvironment : public ::testing::Environment {
public:
    void SetUp() override { lumo::Initialize(); }
    void TearDown() override { lumo::Terminate(); }
};
::testing::Environment* const g_environment =
    ::testing::AddGlobalTestEnvironment(new LibraryEnvironment);

W Wide(std::string const& utf8) {
    CUnicodeString const s = CUnicodeString::FromUTF8(utf8.c_str());
    return W(lumotest::U16(s));
}

// The message of the CRegExParseException that compiling `pattern` throws ("" when none).
std::string ParseMessage(char const* pattern, char const* options = "") {
    try {
        CRegEx regex(pattern, options);
    } catch (CRegExParseException const& e) {
        EXPECT_STREQ(e.GetSourceFile(), "lumo/util/regex/RegEx");
        EXPECT_EQ(e.GetErrorDescription(), nullptr);
        return e.GetMessage() != nullptr ? e.GetMessage() : "(no message)";
    }
    return "";
}

template <class F> std::string ArgumentError(F f) {
    try {
        f();
    } catch (CIllegalArgumentException const& e) {
        return e.GetErrorDescription();
    }
    return "";
}

TEST(RegExTest, NullArgumentsAndRanges) {
    char const* const null8 = nullptr;
    unsigned short const* const null16 = nullptr;
    EXPECT_EQ(ArgumentError([&] { CRegEx r(null8); }), "Invalid pattern.");
    EXPECT_EQ(ArgumentError([&] { CRegEx r(null8, "i"); }), "Invalid pattern.");
    EXPECT_EQ(ArgumentError([&] { CRegEx r("a", null8); }), "Invalid options.");
    EXPECT_EQ(ArgumentError([&] { CRegEx r(null16); }), "Invalid pattern.");
    EXPECT_EQ(ArgumentError([&] { CRegEx r(null16, W(u"i")); }), "Invalid pattern.");
    EXPECT_EQ(ArgumentError([&] { CRegEx r(W(u"a"), null16); }), "Invalid options.");

    CRegEx const regex("b");
    CRegExMatch match;
    std::string const text = "Invalid match string.";
    EXPECT_EQ(ArgumentError([&] { regex.Matches(null8); }), text);
    EXPECT_EQ(ArgumentError([&] { regex.Matches(null16); }), text);
    EXPECT_EQ(ArgumentError([&] { regex.Matches(null8, 0, 1); }), text);
    EXPECT_EQ(ArgumentError([&] { regex.Matches(null16, 0, 1); }), text);
    EXPECT_EQ(ArgumentError([&] { regex.Matches(null8, match); }), text);
    EXPECT_EQ(ArgumentError([&] { regex.Matches(null16, match); }), text);
    EXPECT_EQ(ArgumentError([&] { regex.Matches(null8, 0, 1, match); }), text);
    EXPECT_EQ(ArgumentError([&] { regex.Matches(null16, 0, 1, match); }), text);

    // The range must be non-empty and inside the text, in bytes or units.
    struct Range {
        unsigned long start, end;
        bool accepted;
    } const ranges[] = {{1, 1, false}, {0, 3, true}, {0, 4, false}, {2, 1, false},
                        {3, 3, false}, {1, 2, true}, {4, 5, false}};
    W const abc(u"abc");
    for (Range const& r : ranges) {
        std::string const want = r.accepted ? "" : "Invalid start & end positons.";
        EXPECT_EQ(ArgumentError([&] { regex.Matches("abc", r.start, r.end); }), want);
        EXPECT_EQ(ArgumentError([&] { regex.Matches(abc, r.start, r.end); }), want);
        EXPECT_EQ(ArgumentError([&] { regex.Matches("abc", r.start, r.end, match); }), want);
        EXPECT_EQ(ArgumentError([&] { regex.Matches(abc, r.start, r.end, match); }), want);
    }
    EXPECT_FALSE(regex.Matches("abc", 2, 3));
    EXPECT_TRUE(regex.Matches(abc, 1, 2));
}

// Regular expressions need the library started.
TEST(RegExTest, NeedsTheLibraryStarted) {
    ASSERT_EQ(lumo::Terminate(), 0);
    EXPECT_THROW(CRegEx("a"), CIllegalStateException);
    EXPECT_THROW(CRegExMatch(), CIllegalStateException);
    ASSERT_EQ(lumo::Initialize(), 1);
    EXPECT_TRUE(CRegEx("a").Matches("a"));
}

TEST(RegExTest, MessageListResource) {
    for (unsigned long i = 0; i < 34; ++i)
        EXPECT_NE(Vela::RSLoadString("STRS", 18000, i), nullptr) << "entry " << i + 1;
    EXPECT_EQ(Vela::RSLoadString("STRS", 18000, 34), nullptr);
    EXPECT_STREQ(Vela::RSLoadString("STRS", 18000, 25),
                 "']' is invalid in a characer class.  Write '\\]'.");
}

// Every error the engine was seen to raise for a pattern, with the message it gives.
TEST(RegExTest, ParseErrorsComposeMessages) {
    struct Case {
        char const* pattern;
        char const* options;
        char const* reason; // null: the short template
    } const cases[] = {
        {"(a)\\2", "", "Invalid reference number."},
        {"a\\", "", "A character is required after \\."},
        {"(abc", "", "')' is expected."},
        {"\\pX", "", "A Category character or '{' is required."},
        {"\\p{L", "", "A property name is not closed by '}'."},
        {"a)", "", "Unexpected meta character."},
        {"(?:a)", "", "Unexpected meta character."},
        {"\\p{Foo}", "", "Unknown property."},
        {"[a", "", "Unexpected end of the pattern in a character class."},
        {"[a-z-[b]x]", "X", "']' is expected."},
        {"[a[b]", "", "'[' is invalid in a characer class.  Write '\\['."},
        {"\\q", "", "This expression is not supported in the current option setting."},
        {"\\1", "X", "This expression is not supported in the current option setting."},
        {"[b-a]", "", nullptr},
        {"a{x}", "", nullptr},
        {"a{1,x}", "", nullptr},
        {"a{1,", "", nullptr},
        {"a{3,2}", "", nullptr},
        {"a", "q", nullptr},
        {"\\P{", "", nullptr},
    };
    for (Case const& c : cases) {
        std::string want = std::string("Regular expression '") + c.pattern + "' is invalid";
        want += c.reason != nullptr ? std::string(" due to : '") + c.reason + "'." : ".";
        EXPECT_EQ(ParseMessage(c.pattern, c.options), want) << c.pattern;
    }
    // A UTF-16 pattern is named in UTF-8. (The sanitizer build checks that these failed
    // constructions leak nothing.)
    try {
        CRegEx regex(Wide("(é"), W(u""));
        ADD_FAILURE() << "no exception";
    } catch (CRegExParseException const& e) {
        EXPECT_STREQ(e.GetMessage(), "Regular expression '(é' is invalid due to : '')' is "
                                     "expected.'.");
        EXPECT_TRUE(e.IsInstanceOf(&CException::m_classCException));
    }
}

TEST(RegExTest, CopiesShareAndOutliveOriginals) {
    CRegExMatch match;
    EXPECT_EQ(match.GetGroupCount(), 0u);
    EXPECT_THROW(match.GetStartPosOfGroup(0), CArrayIndexOutOfBoundsException);
    CRegEx* original = new CRegEx("(b+)(x)?");
    CRegEx copy(*original);
    CRegEx assigned("z");
    assigned = *original;
    delete original;
    CRegExMatch* first = new CRegExMatch;
    CRegExMatch shared(*first);
    ASSERT_TRUE(copy.Matches("abbc", *first));
    delete first;
    ASSERT_EQ(shared.GetGroupCount(), 3u);
    EXPECT_EQ(shared.GetStartPosOfGroup(1), 1);
    EXPECT_EQ(shared.GetEndPosOfGroup(1), 3);
    EXPECT_EQ(shared.GetStartPosOfGroup(2), -1);
    EXPECT_THROW(shared.GetEndPosOfGroup(3), CArrayIndexOutOfBoundsException);
    EXPECT_TRUE(assigned.Matches(W(u"xbx")));
    EXPECT_FALSE(assigned.Matches("xyz"));
}

TEST(RegExTest, PositionsInBytesAndUnits) {
    // "é" is 2 bytes and 1 unit, "😀" 4 bytes and 2 units.
    std::string const text = "é😀 key=välue";
    CRegEx const regex("(\\w+)=(\\w+)");
    CRegExMatch match;
    ASSERT_TRUE(regex.Matches(text.c_str(), match));
    EXPECT_EQ(text.substr(match.GetStartPosOfGroup(1),
                          match.GetEndPosOfGroup(1) - match.GetStartPosOfGroup(1)),
              "key");
    EXPECT_EQ(match.GetStartPosOfGroup(2), 11);
    EXPECT_EQ(match.GetEndPosOfGroup(2), 17);
    ASSERT_TRUE(regex.Matches(Wide(text), match));
    EXPECT_EQ(match.GetStartPosOfGroup(2), 8);
    EXPECT_EQ(match.GetEndPosOfGroup(2), 13);
    // A range in bytes, and a malformed byte as a character of its own.
    ASSERT_TRUE(CRegEx("^.").Matches(text.c_str(), 2, 6, match));
    EXPECT_EQ(match.GetEndPosOfGroup(0), 6);
    EXPECT_FALSE(CRegEx("key").Matches(text.c_str(), 0, 9));
    ASSERT_TRUE(CRegEx("x(.)y").Matches("ax\xffyb", match));
    EXPECT_EQ(match.GetStartPosOfGroup(1), 2);
    EXPECT_EQ(match.GetEndPosOfGroup(1), 3);
    // A pattern that is one literal text, escapes and all, ends where its text does.
    std::pair<char const*, std::string> const literals[] = {
        {"a\\.", "a."}, {"\\\\\\\\", "\\\\"}, {"\\.", "."}, {"\\*x", "*x"}};
    for (auto const& literal : literals) {
        std::string const subject = "--" + literal.second + "--";
        ASSERT_TRUE(CRegEx(literal.first).Matches(subject.c_str(), match)) << literal.first;
        EXPECT_EQ(match.GetStartPosOfGroup(0), 2) << literal.first;
        EXPECT_EQ(match.GetEndPosOfGroup(0), static_cast<long>(2 + literal.second.size()))
            << literal.first;
    }
}

TEST(RegExTest, LargeAndPathologicalInputs) {
    // A pattern of 1 MiB (classes: the engine parses long literal runs slowly) compiles
    // and matches; with a bad end, it is named in full.
    std::string big;
    while (big.size() < (1u << 20))
        big += "[ab]";
    EXPECT_TRUE(CRegEx(big.c_str()).Matches((std::string(big.size() / 4, 'b') + "c").c_str()));
    EXPECT_EQ(ParseMessage((big + "(").c_str()),
              "Regular expression '" + big + "(' is invalid due to : '')' is expected.'.");
    // Groups nested 1 MiB deep are refused before the engine's parser exhausts the stack.
    EXPECT_THROW(CRegEx(std::string(1u << 20, '(').c_str()), CMemoryException);
    std::string classes;
    for (int i = 0; i < 100000; ++i)
        classes += "[a-";
    EXPECT_THROW(CRegEx((classes + "b" + std::string(100000, ']')).c_str()), CMemoryException);
    EXPECT_TRUE(
        CRegEx((std::string(1000, '(') + "a" + std::string(1000, ')')).c_str()).Matches("a"));
    // A part that can match nothing, repeated without bound, would loop the engine without
    // end ("(a*)*b" on "ac" exhausts the stack): refused. Bounded or non-empty repeats stay.
    for (char const* looping :
         {"(a*)*b", "x(a|b*)+", "((a?)){2,}", "(a*c?)*", "(a*|b)*c", "(a*)(\\1)*", "[(]|(a{0,2})*"})
        EXPECT_THROW(CRegEx{looping}, CMemoryException) << looping;
    EXPECT_THROW(CRegEx("( a *)*", "x"), CMemoryException);
    // Counted repeats are written out copy by copy: a few million copies are refused
    // before the engine spends hundreds of megabytes on them, behind a class that starts
    // with a plain "-[" too; thousands are fine. A count the engine would wrap round
    // (to 1 here) is refused as well.
    // So are groups and choices written out past 5000 (matching recurses at each: 33168
    // empty groups ran a release build out of stack); 2500 of them are fine.
    for (char const* huge : {"a{3000000}", "x(a{2000}){2000}", "[ab]{1,3000000}",
                             "[-[a]+b{3000000}", "a{4294967297}", "(){33168}|", "(a|b){2501}"})
        EXPECT_THROW(CRegEx{huge}, CMemoryException) << huge;
    EXPECT_TRUE(CRegEx("^(a|b){2500}$").Matches(std::string(2500, 'a').c_str()));
    // Extended mode drops white space and comments before it reads a count.
    EXPECT_THROW(CRegEx("a{30 00#x\n000}", "x"), CMemoryException);
    // The engine writes past its memory on a class subtracted down to nothing (folding
    // it under "i", or analysing it in front of other parts): refused as a parse
    // failure. A class with a character left compiles.
    for (char const* empty : {"[a-[a]]", "x|[\\d-[\\d]]+", "[a-[a]]|b", "[b-[a-z]]*c"})
        for (char const* options : {"", "i"})
            EXPECT_EQ(ParseMessage(empty, options),
                      std::string("Regular expression '") + empty + "' is invalid.")
                << empty << " /" << options;
    // Also when the class left empty is itself subtracted from another (the engine
    // folds each class as it ends), which without "i" is harmless.
    EXPECT_EQ(ParseMessage("[c-[a-[a]]]", "i"), "Regular expression '[c-[a-[a]]]' is invalid.");
    EXPECT_TRUE(CRegEx("[c-[a-[a]]]").Matches("c"));
    EXPECT_TRUE(CRegEx("[a-z-[b-[c]]]", "i").Matches("C"));
    EXPECT_TRUE(CRegEx("[a-z-[b]]", "i").Matches("C"));
    EXPECT_FALSE(CRegEx("[a-z-[b]]+$", "i").Matches("aB"));
    EXPECT_TRUE(CRegEx("^(a{1,20}b){0,2000}$").Matches("aabab"));
    for (char const* fine : {"(a*)?b", "(a*){0,3}b", "(ab*)*c", "[(*)]*a", "(a)\\1*", "(a)(\\1)*"})
        EXPECT_TRUE(CRegEx(fine).Matches("zaac") || CRegEx(fine).Matches("abbbc")) << fine;
    // A text of 1 MiB, matched whole and in a range that leaves the needle out.
    std::string text(1u << 20, 'x');
    text.replace(text.size() - 10, 8, "id=12345");
    CRegEx const needle("id=(\\d+)");
    CRegExMatch match;
    ASSERT_TRUE(needle.Matches(text.c_str(), match));
    EXPECT_EQ(static_cast<std::size_t>(match.GetStartPosOfGroup(1)), text.size() - 7);
    EXPECT_FALSE(needle.Matches(text.c_str(), 0, text.size() - 8));
    std::u16string const wide(text.begin(), text.end());
    EXPECT_TRUE(needle.Matches(W(wide), match));
    // Exponential backtracking on 30 characters (about 2^21 paths): an answer, or the
    // documented failure.
    for (char const* pattern : {"(a|aa)*b", "(a?)*b"}) {
        try {
            EXPECT_FALSE(CRegEx(pattern).Matches(std::string(30, 'a').c_str())) << pattern;
        } catch (CMemoryException const&) {
        }
    }
}

// ---- comparison with Python's re ----------------------------------------------------

struct Case {
    std::string pattern, flags, text;
    long start, end; // -1: the whole text
};

// Constructs where the engine and Python differ are left out: '\\d' under 'i' (never
// matches in the engine), a pattern of plain characters with an escape among them
// (the engine ends the match at its start plus the pattern's written length), a
// leading lazy '.*?' (the engine starts the match later) and '^' before a character
// outside the BMP.
std::vector<Case> Corpus() {
    // clang-format off
    char const* const patterns[] = {
        "a", "abc", "a+", "a*", "a?b", "a{2}", "a{1,2}", "b{2,}", "[abc]+", "[^abc ]+", "[a-z]+",
        "[A-Z][a-z]+", "\\d+", "\\D+", "\\w+", "\\W+", "\\s+", "\\S+", ".", ".+", ".*", "^a",
        "c$", "^line\\d$", "^\\w+$", "(a)(b)(c)", "(a|b)+", "(\\w+)@(\\w+)\\.(com|org)",
        "([a-z]+)(\\d+)", "(\\d)(\\d)?", "(x)|(y)", "(a*)(b*)", "((a)b)+", "(ab|a)(bc|c)?",
        "b+?", "(a+?)(a*)", "o.*?(\\d+)", "[a-c]{2,3}", "(foo|bar)\\d{3}", "fox|dog", "o(v|x)",
        "[.]", "(\\w+)@", "[0-9]{2}", "(a)\\1", "(\\w)\\1", "(é|ö)+", "[日本]+", "^$", "(L)ine"};
    char const* const texts[] = {
        "abc", "aaa bbb ccc", "The Quick Brown Fox jumps over 13 lazy dogs.", "foo123bar456",
        "line1\nline2\nLINE3", "", "a1b2c3 A1B2C3", "hello@example.com, HELLO@test.org",
        "aabbaabb", "café 日本 ööé"};
    // clang-format on
    char const* const flags[] = {"", "i", "m", "s"};
    std::vector<Case> cases;
    for (char const* p : patterns)
        for (char const* t : texts)
            for (char const* f : flags) {
                if (*f == 'i' && std::string(p).find("\\d") != std::string::npos)
                    continue;
                cases.push_back({p, f, t, -1, -1});
                std::size_t const n = CUnicodeString::FromUTF8(t).GetLength();
                if (n >= 4 && *f == '\0')
                    cases.push_back({p, f, t, 1, static_cast<long>(n) - 1});
            }
    return cases;
}

// Python reads one case per line (pattern and text in hexadecimal UTF-8, flags, start,
// end; tab-separated) and prints, per case, whether it matched, then start and end of
// every group in code points and in UTF-8 bytes.
char const kScript[] = R"(
import re, sys
for line in open(sys.argv[1], encoding='utf-8'):
    pattern, flags, text, start, end = line.rstrip('\n').split('\t')
    pattern, text = bytes.fromhex(pattern).decode(), bytes.fromhex(text).decode()
    flags = sum({'i': re.I, 'm': re.M, 's': re.S}[f] for f in flags)
    start, end = (int(start), int(end)) if int(start) >= 0 else (0, len(text))
    m = re.compile(pattern, flags).search(text[start:end])
    if not m:
        print(0)
        continue
    out = [1, m.re.groups + 1]
    for g in range(m.re.groups + 1):
        s, e = m.span(g)
        if s < 0:
            out += [-1, -1, -1, -1]
        else:
            out += [s + start, e + start, len(text[:s + start].encode()), len(text[:e + start].encode())]
    print(' '.join(map(str, out)))
)";

std::string Hex(std::string const& s) {
    std::string out;
    char two[3];
    for (unsigned char c : s) {
        std::snprintf(two, sizeof two, "%02x", c);
        out += two;
    }
    return out;
}

// Our answer in the same form as Python's, from the UTF-16 and the 8-bit forms.
std::string Ours(Case const& c) {
    CRegEx const regex(c.pattern.c_str(), c.flags.c_str());
    W const wide = Wide(c.text);
    CRegExMatch units, bytes;
    bool found, found8;
    if (c.start < 0) {
        found = regex.Matches(wide, units);
        found8 = regex.Matches(c.text.c_str(), bytes);
    } else {
        CUnicodeString const all = CUnicodeString::FromUTF8(c.text.c_str());
        std::string const head = static_cast<char const*>(all.Left(c.end).ToUTF8());
        std::string const lead = static_cast<char const*>(all.Left(c.start).ToUTF8());
        found = regex.Matches(wide, c.start, c.end, units);
        found8 = regex.Matches(c.text.c_str(), lead.size(), head.size(), bytes);
    }
    if (found != found8)
        return "8-bit and UTF-16 forms disagree";
    if (!found)
        return "0";
    std::ostringstream out;
    out << 1 << ' ' << units.GetGroupCount();
    for (unsigned long g = 0; g < units.GetGroupCount(); ++g)
        out << ' ' << units.GetStartPosOfGroup(g) << ' ' << units.GetEndPosOfGroup(g) << ' '
            << bytes.GetStartPosOfGroup(g) << ' ' << bytes.GetEndPosOfGroup(g);
    return out.str();
}

TEST(RegExTest, AgreesWithPythonRe) {
    if (!lumotest::HaveCommand("python3"))
        GTEST_SKIP() << "python3 is not installed (scripts/setup.sh installs it); comparison "
                        "with Python's re skipped";
    std::vector<Case> const cases = Corpus();
    std::string input, answers;
    for (Case const& c : cases)
        input += Hex(c.pattern) + '\t' + c.flags + '\t' + Hex(c.text) + '\t' +
                 std::to_string(c.start) + '\t' + std::to_string(c.end) + '\n';
    lumotest::TempDir dir;
    ASSERT_TRUE(lumotest::WriteAll(dir.File("compare.py"), kScript));
    ASSERT_TRUE(lumotest::WriteAll(dir.File("cases"), input));
    ASSERT_TRUE(lumotest::RunCommand("python3 " + dir.File("compare.py") + " " + dir.File("cases"),
                                     &answers));
    std::istringstream lines(answers);
    std::string expected;
    for (Case const& c : cases) {
        ASSERT_TRUE(std::getline(lines, expected)) << "Python stopped early";
        EXPECT_EQ(Ours(c), expected) << "pattern /" << c.pattern << "/" << c.flags << " on \""
                                     << c.text << "\" [" << c.start << ", " << c.end << ")";
    }
}

} // namespace
