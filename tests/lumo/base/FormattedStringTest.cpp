// Tests of CFormattedString and CFormattedUnicodeString: formatting, copies, and the
// rejection of null and empty formats.
#include <lumo/base/Exception.h>
#include <lumo/base/FormattedString.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using lumo::base::CFormattedString;
using lumo::base::CFormattedUnicodeString;
using lumo::base::CIllegalArgumentException;

namespace {

std::vector<unsigned short> U(std::u16string const& s) {
    std::vector<unsigned short> units(s.begin(), s.end());
    units.push_back(0);
    return units;
}

std::u16string Text(CFormattedUnicodeString const& s) {
    unsigned short const* p = s;
    return std::u16string(p, p + s.GetLength());
}

template <typename Make> void ExpectInvalidFormat(Make make) {
    try {
        make();
        FAIL() << "no exception";
    } catch (CIllegalArgumentException const& e) {
        EXPECT_STREQ("lumo/base/FormattedString", e.GetSourceFile());
        EXPECT_EQ(39u, e.GetSourceLine());
        EXPECT_STREQ("Invalid format string.", e.GetErrorDescription());
    }
}

} // namespace

TEST(CFormattedString, FormatsCopiesAndRejectsEmptyFormats) {
    CFormattedString s("%s=%d", "x", 42);
    EXPECT_STREQ("x=42", static_cast<char const*>(s));
    EXPECT_EQ(4u, s.GetLength());
    CFormattedString copy(s);
    CFormattedString other("%c", 'q');
    other = copy;
    EXPECT_STREQ("x=42", static_cast<char const*>(other));
    EXPECT_STREQ("x=42", static_cast<char const*>(other.GetString()));

    char const* volatile empty = "";
    ExpectInvalidFormat([&] { CFormattedString bad(empty, 1); });
    ExpectInvalidFormat([] { CFormattedString bad(nullptr); });
}

TEST(CFormattedUnicodeString, FormatsCopiesAndRejectsEmptyFormats) {
    CFormattedUnicodeString s(U(u"%d\u00E9%d").data(), 1, 2);
    EXPECT_EQ(u"1\u00E92", Text(s));
    CFormattedUnicodeString copy(s);
    CFormattedUnicodeString other(U(u"-").data());
    other = copy;
    EXPECT_EQ(u"1\u00E92", Text(other));
    // Long results follow CUnicodeString::FormatV: 1023 units is the most kept.
    CFormattedUnicodeString longText(U(std::u16string(2000, u'w') + u"%d").data(), 7);
    EXPECT_EQ(1023u, longText.GetLength());

    ExpectInvalidFormat([] { CFormattedUnicodeString bad(U(u"").data(), 1); });
    ExpectInvalidFormat([] { CFormattedUnicodeString bad(nullptr); });
}
