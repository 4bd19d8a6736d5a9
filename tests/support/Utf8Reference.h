// ICU as the reference for the library's UTF-8 <-> UTF-16 codec: its strict decoding
// (well-formed prefix, and each ill-formed byte as U+FFFD) and its encoding with a
// substitute, shared by the codec's tests and its fuzz target.
#ifndef LUMOTEST_UTF8REFERENCE_H
#define LUMOTEST_UTF8REFERENCE_H

#include "../../src/vela/detail/Utf8Codec.h"

#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <string>
#include <vector>

namespace lumotest {

using Units = std::vector<unsigned short>;

inline Vela::detail::utf8::Byte const* BytesOf(std::string const& s) {
    return reinterpret_cast<Vela::detail::utf8::Byte const*>(s.data());
}

// ICU's strict decoding: the well-formed prefix (in units and bytes), and the whole
// text with each maximal ill-formed subpart of k bytes as k U+FFFD (one per byte, as
// the library's replacing policy has it).
struct Utf8Reference {
    Units prefix;
    std::size_t prefixBytes = 0;
    Units replaced;
};

inline Utf8Reference StrictDecoding(std::string const& s) {
    Utf8Reference r;
    auto const* p = BytesOf(s);
    int32_t const n = int32_t(s.size());
    bool valid = true;
    for (int32_t i = 0; i < n;) {
        int32_t const start = i;
        UChar32 c;
        U8_NEXT(p, i, n, c);
        Units units;
        if (c < 0) {
            valid = false;
            units.assign(std::size_t(i - start), 0xFFFD);
        } else if (c >= 0x10000) {
            units = {Units::value_type(U16_LEAD(c)), Units::value_type(U16_TRAIL(c))};
        } else {
            units = {Units::value_type(c)};
        }
        r.replaced.insert(r.replaced.end(), units.begin(), units.end());
        if (valid) {
            r.prefix.insert(r.prefix.end(), units.begin(), units.end());
            r.prefixBytes = std::size_t(i);
        }
    }
    return r;
}

// ICU's UTF-8 of `u`, each unpaired surrogate written as `sub` (counted in `subs`);
// `ok` tells whether ICU succeeded.
inline std::string IcuToUtf8(Units const& u, UChar32 sub, int32_t* subs, bool& ok) {
    std::string out(u.size() * 3 + 1, '\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(&out[0], int32_t(out.size()), &length,
                       reinterpret_cast<UChar const*>(u.data()), int32_t(u.size()), sub, subs,
                       &status);
    ok = U_SUCCESS(status);
    out.resize(ok ? std::size_t(length) : 0);
    return out;
}

// The library's encoding of `u` with `policy` into at most `room` bytes.
template <class Policy> std::string Encoded(Units const& u, Policy& policy, std::size_t room) {
    std::string out(room, '\0');
    auto* const b = reinterpret_cast<Vela::detail::utf8::Byte*>(&out[0]);
    auto const r = Vela::detail::utf8::Encode(u.data(), u.data() + u.size(), b, b + room, policy);
    out.resize(r.bytes);
    return out;
}

} // namespace lumotest

#endif
