#include <vela/Chars.h>

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <cstring>

namespace Vela {

namespace {

std::int32_t LengthOf(char const* text, long length) {
    if (text == nullptr)
        return 0;
    return length < 0 ? static_cast<std::int32_t>(std::strlen(text))
                       : static_cast<std::int32_t>(length);
}

// The next character of a UTF-8 text; a malformed byte stands for itself, offset past
// the code space so that it sorts after every character and equals only itself.
UChar32 Next(std::uint8_t const* s, std::int32_t& i, std::int32_t length) {
    std::int32_t const start = i;
    UChar32 c;
    U8_NEXT(s, i, length, c);
    if (c < 0) {
        i = start + 1;
        return 0x110000 + s[start];
    }
    return c;
}

} // namespace

int CHCompareTexts(char const* a, long lengthA, char const* b, long lengthB, int caseType, int) {
    std::int32_t const la = LengthOf(a, lengthA);
    std::int32_t const lb = LengthOf(b, lengthB);
    auto const* sa = reinterpret_cast<std::uint8_t const*>(a);
    auto const* sb = reinterpret_cast<std::uint8_t const*>(b);
    std::int32_t ia = 0, ib = 0;
    while (ia < la && ib < lb) {
        UChar32 ca = Next(sa, ia, la);
        UChar32 cb = Next(sb, ib, lb);
        if (caseType == CH_CASE_INSENSITIVE) {
            if (ca < 0x110000)
                ca = u_foldCase(ca, U_FOLD_CASE_DEFAULT);
            if (cb < 0x110000)
                cb = u_foldCase(cb, U_FOLD_CASE_DEFAULT);
        }
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    if (ia < la)
        return 1;
    if (ib < lb)
        return -1;
    return 0;
}

char const* CHSearchCharRight(char const* text, long length, unsigned short ch, int) {
    std::int32_t const n = LengthOf(text, length);
    auto const* s = reinterpret_cast<std::uint8_t const*>(text);
    char const* found = nullptr;
    bool const rawByte = ch >= 0xFF80;
    std::int32_t i = 0;
    while (i < n) {
        std::int32_t const start = i;
        UChar32 const c = Next(s, i, n);
        if (rawByte) {
            for (std::int32_t k = start; k < i; ++k)
                if (s[k] == (ch & 0xFF))
                    found = text + k;
        } else if (c == ch) {
            found = text + start;
        }
    }
    return found;
}

} // namespace Vela
