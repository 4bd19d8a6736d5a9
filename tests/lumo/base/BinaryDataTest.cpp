// Tests of CBinaryData: base64 against OpenSSL for every length, the decoding rules and
// their errors, binhex both ways, and ownership, truncation and comparison of the block.
#include <lumo/base/BinaryData.h>
#include <lumo/base/Exception.h>

#include <gtest/gtest.h>

#include <openssl/evp.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

using lumo::base::CBinaryData;
using lumo::base::CIllegalArgumentException;
using lumo::base::CNumberFormatException;
using lumo::base::CString;
using lumo::base::CUnicodeString;

namespace {

CUnicodeString Wide(char const* ascii) {
    return CUnicodeString(ascii);
}

std::string Narrow(CUnicodeString const& s) {
    std::string out;
    for (unsigned long i = 0; i < s.GetLength(); ++i) {
        EXPECT_LT(s[i], 0x80);
        out.push_back(static_cast<char>(s[i]));
    }
    return out;
}

// Runs `f` and checks the exception's class, description and line.
template <class E, class F> void ExpectFailure(F&& f, char const* description, unsigned long line) {
    try {
        f();
        ADD_FAILURE() << "expected \"" << description << "\"";
    } catch (E const& e) {
        EXPECT_STREQ(e.GetErrorDescription(), description);
        EXPECT_STREQ(e.GetSourceFile(), "lumo/base/BinaryData");
        EXPECT_EQ(e.GetSourceLine(), line) << description;
    }
}

// Decodes, checks that failures leave null and 0, and frees the block.
std::string DecodeBase64(CString const& text) {
    char* data = reinterpret_cast<char*>(1);
    unsigned long length = 99;
    CBinaryData::ParseBase64String(text, data, length);
    std::string out(data == nullptr ? "" : data, length);
    std::free(data);
    return out;
}

} // namespace

TEST(BinaryData, Base64MatchesOpenSslForEveryLength) {
    std::mt19937 rng(12345);
    std::vector<unsigned char> bytes(3000);
    for (auto& b : bytes)
        b = static_cast<unsigned char>(rng());
    std::vector<unsigned char> expected(4 * 1001 + 1);
    CString text;
    CUnicodeString wide;
    for (unsigned long n = 0; n <= 3000; ++n) {
        int const len = EVP_EncodeBlock(expected.data(), bytes.data(), static_cast<int>(n));
        std::string const want(reinterpret_cast<char*>(expected.data()), len);
        char const* data = reinterpret_cast<char const*>(bytes.data());
        CBinaryData::ToBase64String(data, n, text);
        ASSERT_EQ(std::string(text, text.GetLength()), want) << n;
        ASSERT_EQ(DecodeBase64(text), std::string(data, n)) << n;
        if (n % 97 == 0 || n < 8) {
            CBinaryData::ToBase64UnicodeString(data, n, wide);
            ASSERT_EQ(Narrow(wide), want);
            char* back = nullptr;
            CBinaryData::ParseBase64UnicodeString(wide, back, 0);
            if (n > 0) {
                ASSERT_EQ(std::memcmp(back, data, n), 0);
            }
            std::free(back);
        }
    }
    EXPECT_TRUE(CBinaryData::ToBase64UnicodeString("x", 0).IsEmpty());
}

TEST(BinaryData, Base64DecodingRulesAndErrors) {
    EXPECT_EQ(DecodeBase64("TQ=="), "M");
    EXPECT_EQ(DecodeBase64(""), "");
    EXPECT_EQ(DecodeBase64("TQ==TWE=TWFu"), "MMaMan"); // padding in any group
    ExpectFailure<CNumberFormatException>([] { DecodeBase64("TWFuT"); },
                                          "Invalid base64 encoded binary data.", 672);
    // Partial blocks are freed on every failure (AddressSanitizer checks for leaks).
    ExpectFailure<CNumberFormatException>([] { DecodeBase64("TWFu\r\nTQ"); },
                                          "Invalid base 64 char found.", 202);
    ExpectFailure<CNumberFormatException>([] { DecodeBase64("TWFuT =="); },
                                          "Invalid base 64 char found.", 172);
    ExpectFailure<CNumberFormatException>([] { DecodeBase64("TWFuTW*="); },
                                          "Invalid base 64 char found.", 185);
    ExpectFailure<CNumberFormatException>([] { DecodeBase64("=QTQ"); },
                                          "Invalid base 64 char found.", 202);
    ExpectFailure<CNumberFormatException>([] { DecodeBase64("===="); },
                                          "Invalid base 64 char found.", 172);

    char* data = reinterpret_cast<char*>(1);
    unsigned short const nonLatin[] = {'T', 'W', 'F', 0x0175, 0};
    ExpectFailure<CNumberFormatException>(
        [&] { CBinaryData::ParseBase64UnicodeString(nonLatin, data, 0); },
        "Invalid base 64 char found.", 202);
    EXPECT_EQ(data, nullptr);

    ExpectFailure<CIllegalArgumentException>([] { CBinaryData::ToBase64String(nullptr, 3); },
                                             "Illegal data pointer.", 907);
    CUnicodeString out;
    ExpectFailure<CIllegalArgumentException>(
        [&] { CBinaryData::ToBase64UnicodeString(nullptr, 0, out); }, "Illegal data pointer.", 907);
}

TEST(BinaryData, BinHexBothWaysAndErrors) {
    char const bytes[] = {0x00, char(0xAB), char(0xFF)};
    EXPECT_EQ(std::string(CBinaryData::ToBinHexString(bytes, 3)), "00ABFF");
    EXPECT_EQ(Narrow(CBinaryData::ToBinHexUnicodeString(bytes, 3)), "00ABFF");
    ExpectFailure<CIllegalArgumentException>([] { CBinaryData::ToBinHexString(nullptr, 1); },
                                             "Illegal data pointer.", 985);

    char* data = nullptr;
    unsigned long length = 0;
    CBinaryData::ParseBinHexString("0123456789ABCDEF", data, length);
    ASSERT_EQ(length, 8u);
    EXPECT_EQ(std::string(data, length), std::string("\x01\x23\x45\x67\x89\xAB\xCD\xEF", 8));
    std::free(data);
    CBinaryData::ParseBinHexUnicodeString(Wide("00ABFFxx"), 6, data, length);
    EXPECT_EQ(std::string(data, length), std::string(bytes, 3));
    std::free(data);
    CBinaryData::ParseBinHexString(CString(), data, length);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(length, 0u);

    ExpectFailure<CNumberFormatException>(
        [&] { CBinaryData::ParseBinHexString("00abff", data, length); }, "Invalid binhex digit.",
        269);
    ExpectFailure<CNumberFormatException>(
        [&] { CBinaryData::ParseBinHexUnicodeString(Wide("00G0"), data, length); },
        "Invalid binhex digit.", 285);
    unsigned short const arabicDigit[] = {0x0661, '0', 0};
    ExpectFailure<CNumberFormatException>(
        [&] { CBinaryData::ParseBinHexUnicodeString(arabicDigit, data, length); },
        "Invalid binhex digit.", 285);
    ExpectFailure<CNumberFormatException>(
        [&] { CBinaryData::ParseBinHexString(CString("ABC"), data, length); },
        "Invalid binhex encoded binary data.", 318);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(length, 0u);
    ExpectFailure<CIllegalArgumentException>(
        [&] { CBinaryData::ParseBinHexString("", data, length); }, "Invalid value buffer.", 833);
    ExpectFailure<CIllegalArgumentException>(
        [&] { CBinaryData::ParseBinHexString(nullptr, 2, data, length); }, "Invalid value buffer.",
        848);
    ExpectFailure<CIllegalArgumentException>(
        [&] { CBinaryData::ParseBinHexUnicodeString(Wide("00"), 0, data, length); },
        "Invalid value buffer length.", 850);
}

TEST(BinaryData, BlockOwnershipTruncateAndCompare) {
    CBinaryData zeros(4);
    ASSERT_NE(zeros.GetData(), nullptr);
    EXPECT_EQ(std::string(zeros.GetData(), 4), std::string(4, '\0'));
    CBinaryData a("abc", 3);
    CBinaryData copy(a);
    EXPECT_NE(copy.GetData(), a.GetData());
    EXPECT_TRUE(copy == a);
    copy = zeros;
    EXPECT_EQ(copy.GetDataLength(), 4u);
    copy = copy;
    EXPECT_TRUE(copy == zeros);

    // A shorter block is smaller whatever its bytes.
    CBinaryData high("\xFF\xFF", 2);
    EXPECT_EQ(high.Compare(a), -1);
    EXPECT_EQ(a.Compare(high), 1);
    CBinaryData abd("abd", 3);
    EXPECT_EQ(a.Compare(abd), -1);
    CBinaryData hi80("\x80", 1), lo7f("\x7F", 1);
    EXPECT_EQ(hi80.Compare(lo7f), 1); // bytes compare unsigned
    EXPECT_TRUE(a != abd);
    EXPECT_EQ(CBinaryData().Compare(CBinaryData()), 0);

    ExpectFailure<CIllegalArgumentException>([&] { a.Truncate(4); }, "Invalid new data length.",
                                             547);
    char const* kept = a.GetData();
    a.Truncate(2);
    EXPECT_EQ(a.GetData(), kept);
    EXPECT_EQ(a.GetDataLength(), 2u);
    a.Truncate(0);
    EXPECT_EQ(a.GetData(), nullptr);
    EXPECT_EQ(a.GetDataLength(), 0u);
    EXPECT_TRUE(a.ToBinHexString().IsEmpty());

    CBinaryData h;
    h.FromBinHexString("C0FFEE");
    EXPECT_EQ(std::string(h.ToBinHexString()), "C0FFEE");
    EXPECT_EQ(Narrow(h.ToBinHexUnicodeString()), "C0FFEE");
    h.FromBinHexUnicodeString(Wide("0A0B"));
    EXPECT_EQ(std::string(h.GetData(), h.GetDataLength()), "\x0A\x0B");
    h.FromBinHexString("FFFF00", 4);
    EXPECT_EQ(h.GetDataLength(), 2u);
    ExpectFailure<CIllegalArgumentException>([&] { h.FromBinHexString(""); },
                                             "Invalid value buffer.", 585);
    ExpectFailure<CIllegalArgumentException>(
        [&] { h.FromBinHexUnicodeString(static_cast<unsigned short const*>(nullptr)); },
        "Invalid value buffer.", 585);
    EXPECT_EQ(h.GetDataLength(), 2u); // refused before anything changed
    // The old bytes go first: a malformed text leaves the block empty.
    ExpectFailure<CNumberFormatException>([&] { h.FromBinHexString("0x"); },
                                          "Invalid binhex digit.", 269);
    EXPECT_EQ(h.GetData(), nullptr);
    EXPECT_EQ(h.GetDataLength(), 0u);
}

// Long texts over the whole alphabet (any bits in the last character), and the same
// with one character replaced anywhere: the bytes agree with OpenSSL, and a bad
// character fails with the line of its group's rule.
TEST(BinaryData, Base64DecodingOfLongTextsMatchesOpenSsl) {
    static char const kAlphabet[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::mt19937 rng(777);
    std::vector<unsigned char> expected(4096);
    for (int round = 0; round < 400; ++round) {
        std::string text(4 * (1 + rng() % 300), 'A');
        for (char& c : text)
            c = kAlphabet[rng() % 64];
        int const made =
            EVP_DecodeBlock(expected.data(), reinterpret_cast<unsigned char const*>(text.data()),
                            static_cast<int>(text.size()));
        ASSERT_EQ(DecodeBase64(text.c_str()),
                  std::string(reinterpret_cast<char*>(expected.data()), made));
        std::size_t const at = rng() % text.size();
        char const bad = "=*\n\x80"[rng() % 4];
        text[at] = bad;
        std::size_t const group = at - at % 4;
        if (bad == '=' && at % 4 == 3) {
            // Padding may end any group: two bytes come from it.
            std::string const decoded = DecodeBase64(text.c_str());
            ASSERT_EQ(decoded.size(), text.size() / 4 * 3 - 1);
            ASSERT_EQ(decoded.substr(0, group / 4 * 3),
                      std::string(reinterpret_cast<char*>(expected.data()), group / 4 * 3));
        } else {
            ExpectFailure<CNumberFormatException>([&] { DecodeBase64(text.c_str()); },
                                                  "Invalid base 64 char found.", 202);
        }
    }
}
