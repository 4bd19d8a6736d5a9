// Tests of the text hash: factor 37 for short texts, sampling with 39 for long ones, and
// the string classes hashing like their texts.
#include <lumo/util/HashCode.h>

#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

using lumo::base::CString;
using lumo::base::CUnicodeString;
using lumo::util::GetCStringHashCode;
using lumo::util::GetCUnicodeStringHashCode;
using lumo::util::GetStringHashCode;

TEST(HashCode, ShortTextsUse37AndLongTextsAreSampledWith39) {
    EXPECT_EQ(GetStringHashCode(nullptr), 0);
    EXPECT_EQ(GetStringHashCode(""), 0);
    EXPECT_EQ(GetStringHashCode("a"), 97);
    EXPECT_EQ(GetStringHashCode("\xff"), 255); // bytes count unsigned

    std::string fifteen = "abcdefghijklmno";
    std::uint32_t h = 0;
    for (char c : fifteen)
        h = h * 37u + static_cast<unsigned char>(c);
    EXPECT_EQ(GetStringHashCode(fifteen.c_str()), static_cast<std::int32_t>(h));

    std::string const sixteen = "ABCDEFGHIJKLMNOP";
    h = 0;
    for (std::size_t i = 0; i < 16; i += 2)
        h = h * 39u + static_cast<unsigned char>(sixteen[i]);
    EXPECT_EQ(GetStringHashCode(sixteen.c_str()), static_cast<std::int32_t>(h));

    // 17 units: step 2, so index 16 is sampled too.
    std::string const seventeen = sixteen + "Q";
    EXPECT_EQ(GetStringHashCode(seventeen.c_str()), static_cast<std::int32_t>(h * 39u + 'Q'));
    // Units between the samples do not count.
    std::string other = sixteen;
    other[1] = 'z';
    EXPECT_EQ(GetStringHashCode(other.c_str()), GetStringHashCode(sixteen.c_str()));
}

TEST(HashCode, StringClassesHashLikeTheirTexts) {
    for (char const* text : {"", "a", "hello world", "0123456789abcdefghij", "\xc3\xa9t\xc3\xa9"}) {
        EXPECT_EQ(GetCStringHashCode(CString(text)), GetStringHashCode(text)) << text;
    }
    EXPECT_EQ(GetCStringHashCode(CString()), 0);
    EXPECT_EQ(GetCUnicodeStringHashCode(CUnicodeString()), 0);

    // UTF-16 units are hashed whole, not as bytes.
    unsigned short const units[] = {0x20AC, 0x0041, 0};
    EXPECT_EQ(GetCUnicodeStringHashCode(CUnicodeString(units)),
              static_cast<std::int32_t>(0x20ACu * 37u + 0x41u));
    std::u16string const long16 = u"abcdefghijklmnopqrstuvwx"; // 24 units: step 3
    CUnicodeString wide(reinterpret_cast<unsigned short const*>(long16.c_str()));
    std::uint32_t h = 0;
    for (std::size_t i = 0; i < long16.size(); i += 3)
        h = h * 39u + long16[i];
    EXPECT_EQ(GetCUnicodeStringHashCode(wide), static_cast<std::int32_t>(h));
    EXPECT_EQ(GetCUnicodeStringHashCode(CUnicodeString("abcdefghijklmnopqrstuvwx")),
              GetStringHashCode("abcdefghijklmnopqrstuvwx"));
}
