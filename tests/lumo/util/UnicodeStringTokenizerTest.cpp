// Tests of CUnicodeStringTokenizer: splitting on UTF-16 delimiters.
#include <lumo/util/UnicodeStringTokenizer.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include "support/WideText.h"

#include <vector>

using lumo::base::CIllegalArgumentException;
using lumo::util::CNoSuchElementException;
using lumo::util::CUnicodeStringTokenizer;
using lumotest::U16;
using lumotest::W;

TEST(UnicodeStringTokenizer, SplitsOnUtf16Delimiters) {
    // Delimiters beyond 8 bits: the euro sign and a no-break space.
    CUnicodeStringTokenizer t(W(u"\u00e9t\u00e9\u20ac\u20ac\u00a0hiver"), W(u"\u20ac\u00a0"));
    EXPECT_EQ(t.GetTokenCount(), 2u);
    std::vector<std::u16string> tokens;
    while (t.HasMoreTokens())
        tokens.push_back(U16(t.GetNextToken()));
    EXPECT_EQ(tokens, (std::vector<std::u16string>{u"\u00e9t\u00e9", u"hiver"}));
    lumotest::ExpectThrowIn<CNoSuchElementException>("lumo/util/UnicodeStringTokenizer",
                                                     [&] { t.GetNextToken(); });

    CUnicodeStringTokenizer path(W(u"a/b:c"), W(u"/"));
    EXPECT_EQ(U16(path.GetNextToken()), u"a");
    EXPECT_EQ(U16(path.GetNextToken(W(u":"))), u"/b");
    CUnicodeStringTokenizer copy = path;
    EXPECT_EQ(U16(copy.GetNextToken()), u"c");
    EXPECT_EQ(U16(path.GetNextToken()), u"c");

    CUnicodeStringTokenizer steps(W(u"x,y"), W(u","), true);
    EXPECT_EQ(steps.GetTokenCount(), 3u);
    int calls = 0;
    while (steps.HasMoreTokens()) {
        EXPECT_TRUE(steps.GetNextToken().IsEmpty());
        ++calls;
    }
    EXPECT_EQ(calls, 3);

    CUnicodeStringTokenizer only(W(u",,"), W(u","));
    EXPECT_FALSE(only.HasMoreTokens());
    EXPECT_EQ(only.GetTokenCount(), 0u);

    lumotest::ExpectThrowIn<CIllegalArgumentException>(
        "lumo/util/UnicodeStringTokenizer", [&] { CUnicodeStringTokenizer bad(W(u""), nullptr); },
        "Invalid source text.");
    EXPECT_THROW(CUnicodeStringTokenizer(W(u"a"), W(u"")), CIllegalArgumentException);
    EXPECT_THROW(path.GetNextToken(nullptr), CIllegalArgumentException);
}
