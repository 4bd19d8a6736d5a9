// Tests of CStringTokenizer and CUnicodeStringTokenizer, one typed suite over both (the
// same UTF-8 texts, as bytes and as UTF-16 units): runs of delimiters between tokens,
// delimiters beyond 8 bits, and returnDelims stepping one character at a time.
#include <lumo/util/StringTokenizer.h>
#include <lumo/util/UnicodeStringTokenizer.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include "support/TestObject.h"

#include <string>
#include <type_traits>
#include <vector>

using namespace lumo::base;
using namespace lumo::util;

namespace {

using Strings = std::vector<std::string>;

template <class V> struct Traits;
template <> struct Traits<CStringTokenizer> {
    static constexpr char const* unit = "lumo/util/StringTokenizer";
    static CString T(char const* utf8) { return CString(utf8); }
};
template <> struct Traits<CUnicodeStringTokenizer> {
    static constexpr char const* unit = "lumo/util/UnicodeStringTokenizer";
    static CUnicodeString T(char const* utf8) { return CUnicodeString::FromUTF8(utf8); }
};

std::string Str(CString const& s) {
    return static_cast<char const*>(s);
}
std::string Str(CUnicodeString const& s) {
    return static_cast<char const*>(s.ToUTF8());
}

template <class Tokenizer> Strings Drain(Tokenizer& t) {
    Strings tokens;
    while (t.HasMoreTokens())
        tokens.push_back(Str(t.GetNextToken()));
    return tokens;
}

template <class V> class StringTokenizers : public ::testing::Test {};
struct Names {
    template <class V> static std::string GetName(int) {
        return std::is_same_v<V, CStringTokenizer> ? "Bytes" : "Utf16";
    }
};
using Kinds = ::testing::Types<CStringTokenizer, CUnicodeStringTokenizer>;
TYPED_TEST_SUITE(StringTokenizers, Kinds, Names);

} // namespace

TYPED_TEST(StringTokenizers, RunsOfDelimitersSeparateTokens) {
    auto const T = &Traits<TypeParam>::T;
    TypeParam t(T("a,,b"), T(","));
    EXPECT_EQ(t.GetTokenCount(), 2u);
    EXPECT_EQ(Str(t.GetNextToken()), "a");
    EXPECT_EQ(t.GetTokenCount(), 1u);
    EXPECT_EQ(Str(t.GetNextToken()), "b");
    EXPECT_FALSE(t.HasMoreTokens());
    EXPECT_EQ(t.GetTokenCount(), 0u);
    lumotest::ExpectThrowIn<CNoSuchElementException>(Traits<TypeParam>::unit,
                                                     [&] { t.GetNextToken(); });

    TypeParam commas(T(",,,"), T(","));
    EXPECT_EQ(commas.GetTokenCount(), 0u);
    EXPECT_FALSE(commas.HasMoreTokens());

    // Delimiters beyond 8 bits (the euro sign, a no-break space); as bytes, none of
    // theirs occurs in "été".
    TypeParam wide(T("été€€\u00a0hiver"), T("€\u00a0"));
    EXPECT_EQ(wide.GetTokenCount(), 2u);
    EXPECT_EQ(Drain(wide), (Strings{"été", "hiver"}));

    TypeParam words(T("  one two\tthree  "), T(" \t"));
    EXPECT_EQ(words.GetTokenCount(), 3u);
    TypeParam copy = words;
    EXPECT_EQ(Drain(words), (Strings{"one", "two", "three"}));
    EXPECT_EQ(Str(copy.GetNextToken()), "one");
    TypeParam assigned(T("x"), T("y"));
    assigned = copy; // the position comes along
    EXPECT_EQ(Str(assigned.GetNextToken()), "two");

    // New delimiters hold for this and every later call, in copies too.
    TypeParam path(T("a/b:c/d"), T("/"));
    EXPECT_EQ(Str(path.GetNextToken()), "a");
    EXPECT_EQ(Str(path.GetNextToken(T(":"))), "/b");
    TypeParam later = path;
    EXPECT_EQ(Str(later.GetNextToken()), "c/d");
    EXPECT_EQ(Str(path.GetNextToken()), "c/d");
    EXPECT_FALSE(path.HasMoreTokens());
}

TYPED_TEST(StringTokenizers, ReturnDelimsStepsOneCharacterAtATime) {
    auto const T = &Traits<TypeParam>::T;
    TypeParam t(T("ab,c"), T(","), true);
    // Runs (ab, c) plus the one delimiter.
    EXPECT_EQ(t.GetTokenCount(), 3u);
    int calls = 0;
    while (t.HasMoreTokens() && calls < 10) {
        EXPECT_EQ(Str(t.GetNextToken()), ""); // substring from p + 1 to p + 1
        ++calls;
    }
    EXPECT_EQ(calls, 4); // one per character
    EXPECT_THROW(t.GetNextToken(), CNoSuchElementException);

    TypeParam delims(T(",,"), T(","), true);
    EXPECT_EQ(delims.GetTokenCount(), 2u);
    EXPECT_TRUE(delims.HasMoreTokens()); // nothing skipped in this mode

    lumotest::IllegalIn const illegal{Traits<TypeParam>::unit};
    illegal([&] { TypeParam bad(T(""), T(",")); }, "Invalid source text.");
    illegal([] { TypeParam bad(nullptr, nullptr); }, "Invalid source text.");
    illegal([&] { TypeParam bad(T("a"), T("")); }, "Invalid delimiters.");
    illegal([&] { TypeParam bad(T("a"), nullptr); }, "Invalid delimiters.");
    TypeParam ok(T("a b"), T(" "));
    illegal([&] { ok.GetNextToken(T("")); }, "Invalid delimiters.");
    illegal([&] { ok.GetNextToken(nullptr); }, "Invalid delimiters.");
    EXPECT_EQ(Str(ok.GetNextToken()), "a"); // the failed calls changed nothing
}
