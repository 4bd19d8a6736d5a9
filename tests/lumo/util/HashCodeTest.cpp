// Tests of the text hash against the rule written out (factor 37 for short texts,
// sampling with 39 for long ones), and the string classes hashing like their texts.
#include <lumo/util/HashCode.h>

#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

using namespace lumo::base;
using namespace lumo::util;

namespace {

// Under 16 units: h * 37 + unit over every unit; from 16 on, h * 39 + unit at every
// (length / 8)th unit. Units count unsigned; h wraps at 32 bits.
template <class Unit> std::int32_t Reference(std::basic_string<Unit> const& s) {
    std::size_t const n = s.size(), step = n < 16 ? 1 : n / 8;
    std::uint32_t h = 0;
    for (std::size_t i = 0; i < n; i += step)
        h = h * (n < 16 ? 37u : 39u) + static_cast<std::make_unsigned_t<Unit>>(s[i]);
    return static_cast<std::int32_t>(h);
}

} // namespace

TEST(HashCode, TextsHashByTheRule) {
    EXPECT_EQ(GetStringHashCode(nullptr), 0);
    EXPECT_EQ(GetStringHashCode("a"), 97);
    EXPECT_EQ(GetCUnicodeStringHashCode(CUnicodeString()), 0);
    // Lengths around the switch at 16 and the step changes at 24 and 32; bytes above
    // 0x7f count unsigned.
    std::string const all = "\xff\xe9 ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789abcdefghijklmnop";
    for (std::size_t length : {0, 1, 2, 15, 16, 17, 23, 24, 31, 32, 33, 50}) {
        std::string const text = all.substr(0, length);
        std::u16string const wide(text.begin(), text.end());
        SCOPED_TRACE(length);
        EXPECT_EQ(GetStringHashCode(text.c_str()), Reference(text));
        EXPECT_EQ(GetCStringHashCode(CString(text.c_str())), Reference(text));
        CUnicodeString const units(reinterpret_cast<unsigned short const*>(wide.c_str()));
        EXPECT_EQ(GetCUnicodeStringHashCode(units), Reference(wide));
    }
    std::u16string const euro = u"\u20acA"; // UTF-16 units are hashed whole, not as bytes
    EXPECT_EQ(GetCUnicodeStringHashCode(
                  CUnicodeString(reinterpret_cast<unsigned short const*>(euro.c_str()))),
              Reference(euro));
}
