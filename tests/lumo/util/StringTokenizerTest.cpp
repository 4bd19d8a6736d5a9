// Tests of CStringTokenizer: runs of delimiters between tokens, and returnDelims stepping
// one character at a time.
#include <lumo/util/StringTokenizer.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include <string>
#include <vector>

using lumo::util::CNoSuchElementException;
using lumo::util::CStringTokenizer;

namespace {

std::vector<std::string> Drain(CStringTokenizer& t) {
    std::vector<std::string> tokens;
    while (t.HasMoreTokens())
        tokens.push_back(static_cast<char const*>(t.GetNextToken()));
    return tokens;
}

lumotest::IllegalIn const ExpectIllegal{"lumo/util/StringTokenizer"};

} // namespace

TEST(StringTokenizer, RunsOfDelimitersSeparateTokens) {
    CStringTokenizer t("a,,b", ",");
    EXPECT_EQ(t.GetTokenCount(), 2u);
    EXPECT_STREQ(t.GetNextToken(), "a");
    EXPECT_EQ(t.GetTokenCount(), 1u);
    EXPECT_STREQ(t.GetNextToken(), "b");
    EXPECT_FALSE(t.HasMoreTokens());
    EXPECT_EQ(t.GetTokenCount(), 0u);
    lumotest::ExpectThrowIn<CNoSuchElementException>("lumo/util/StringTokenizer",
                                                     [&] { t.GetNextToken(); });

    CStringTokenizer commas(",,,", ",");
    EXPECT_EQ(commas.GetTokenCount(), 0u);
    EXPECT_FALSE(commas.HasMoreTokens());

    CStringTokenizer words("  one two\tthree  ", " \t");
    EXPECT_EQ(words.GetTokenCount(), 3u);
    CStringTokenizer copy = words;
    EXPECT_EQ(Drain(words), (std::vector<std::string>{"one", "two", "three"}));
    EXPECT_STREQ(copy.GetNextToken(), "one");
    CStringTokenizer assigned("x", "y");
    assigned = copy; // the position comes along
    EXPECT_STREQ(assigned.GetNextToken(), "two");

    // New delimiters hold for this and every later call.
    CStringTokenizer path("a/b:c/d", "/");
    EXPECT_STREQ(path.GetNextToken(), "a");
    EXPECT_STREQ(path.GetNextToken(":"), "/b");
    EXPECT_STREQ(path.GetNextToken(), "c/d");
    EXPECT_FALSE(path.HasMoreTokens());
}

TEST(StringTokenizer, ReturnDelimsStepsOneCharacterAtATime) {
    CStringTokenizer t("ab,c", ",", true);
    // Runs (ab, c) plus the one delimiter.
    EXPECT_EQ(t.GetTokenCount(), 3u);
    int calls = 0;
    while (t.HasMoreTokens()) {
        EXPECT_STREQ(t.GetNextToken(), ""); // substring from p + 1 to p + 1
        ++calls;
    }
    EXPECT_EQ(calls, 4); // one per character
    EXPECT_THROW(t.GetNextToken(), CNoSuchElementException);

    CStringTokenizer delims(",,", ",", true);
    EXPECT_EQ(delims.GetTokenCount(), 2u);
    EXPECT_TRUE(delims.HasMoreTokens()); // nothing skipped in this mode

    ExpectIllegal([] { CStringTokenizer bad("", ","); }, "Invalid source text.");
    ExpectIllegal([] { CStringTokenizer bad(nullptr, nullptr); }, "Invalid source text.");
    ExpectIllegal([] { CStringTokenizer bad("a", ""); }, "Invalid delimiters.");
    ExpectIllegal([] { CStringTokenizer bad("a", nullptr); }, "Invalid delimiters.");
    CStringTokenizer ok("a b", " ");
    ExpectIllegal([&] { ok.GetNextToken(""); }, "Invalid delimiters.");
    ExpectIllegal([&] { ok.GetNextToken(nullptr); }, "Invalid delimiters.");
    EXPECT_STREQ(ok.GetNextToken(), "a"); // the failed calls changed nothing
}
