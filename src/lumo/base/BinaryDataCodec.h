// Internal: the table-driven base64 and binhex kernels, built at compile time and shared
// by CBinaryData and the base64 output stream; callers check arguments and size output.
#ifndef LUMO_BASE_BINARYDATACODEC_H
#define LUMO_BASE_BINARYDATACODEC_H

// Table-driven base64 and binhex kernels shared by CBinaryData and the base64
// output stream. Callers check arguments and size the output.

#include <lumo/Config.h>

#include <cstddef>
#include <cstdint>

namespace lumo {
namespace base {
namespace codec {

constexpr char kBase64Alphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
// Marks a byte outside the alphabet in the decode table.
constexpr std::uint8_t kInvalid = 0x80;

struct Tables {
    // The two characters of every 12-bit half of a 3-byte group.
    char pairs[4096][2];
    // The value of every alphabet character; kInvalid for everything else, "=" too.
    std::uint8_t decode[256];
    // The two upper-case hexadecimal digits of every byte.
    char hex[256][2];
};

constexpr Tables MakeTables() {
    Tables t{};
    for (int i = 0; i < 4096; ++i) {
        t.pairs[i][0] = kBase64Alphabet[i >> 6];
        t.pairs[i][1] = kBase64Alphabet[i & 63];
    }
    for (int i = 0; i < 256; ++i)
        t.decode[i] = kInvalid;
    for (int i = 0; i < 64; ++i)
        t.decode[static_cast<unsigned char>(kBase64Alphabet[i])] = static_cast<std::uint8_t>(i);
    char const digits[] = "0123456789ABCDEF";
    for (int i = 0; i < 256; ++i) {
        t.hex[i][0] = digits[i >> 4];
        t.hex[i][1] = digits[i & 15];
    }
    return t;
}

inline constexpr Tables kTables = MakeTables();

// Characters for `length` bytes: ((length - 1) / 3) * 4 + 4, or 0 for no bytes.
inline std::size_t Base64Length(std::size_t length) {
    return length == 0 ? 0 : ((length - 1) / 3) * 4 + 4;
}

// Encodes `length` bytes into Base64Length(length) units of `out` (char or UTF-16).
template <class Unit> void EncodeBase64(unsigned char const* in, std::size_t length, Unit* out) {
    std::size_t i = 0;
    for (; i + 3 <= length; i += 3, out += 4) {
        std::uint32_t const v = (std::uint32_t(in[i]) << 16) | (std::uint32_t(in[i + 1]) << 8) |
                                std::uint32_t(in[i + 2]);
        char const* hi = kTables.pairs[v >> 12];
        char const* lo = kTables.pairs[v & 0xFFF];
        out[0] = static_cast<Unit>(hi[0]);
        out[1] = static_cast<Unit>(hi[1]);
        out[2] = static_cast<Unit>(lo[0]);
        out[3] = static_cast<Unit>(lo[1]);
    }
    std::size_t const rest = length - i;
    if (rest == 1) {
        unsigned const b0 = in[i];
        out[0] = static_cast<Unit>(kBase64Alphabet[b0 >> 2]);
        out[1] = static_cast<Unit>(kBase64Alphabet[(b0 & 3) << 4]);
        out[2] = static_cast<Unit>('=');
        out[3] = static_cast<Unit>('=');
    } else if (rest == 2) {
        unsigned const b0 = in[i];
        unsigned const b1 = in[i + 1];
        out[0] = static_cast<Unit>(kBase64Alphabet[b0 >> 2]);
        out[1] = static_cast<Unit>(kBase64Alphabet[((b0 & 3) << 4) + (b1 >> 4)]);
        out[2] = static_cast<Unit>(kBase64Alphabet[(b1 & 15) << 2]);
        out[3] = static_cast<Unit>('=');
    }
}

// The 8-bit specialisation writes whole character pairs.
template <> inline void EncodeBase64<char>(unsigned char const* in, std::size_t length, char* out) {
    std::size_t i = 0;
    for (; i + 3 <= length; i += 3, out += 4) {
        std::uint32_t const v = (std::uint32_t(in[i]) << 16) | (std::uint32_t(in[i + 1]) << 8) |
                                std::uint32_t(in[i + 2]);
        __builtin_memcpy(out, kTables.pairs[v >> 12], 2);
        __builtin_memcpy(out + 2, kTables.pairs[v & 0xFFF], 2);
    }
    if (i < length) {
        char tail[4];
        EncodeBase64<unsigned char>(in + i, length - i, reinterpret_cast<unsigned char*>(tail));
        __builtin_memcpy(out, tail, 4);
    }
}

// The decode-table value of a unit; units beyond 8 bits are invalid.
template <class Unit> inline std::uint32_t Base64Value(Unit c) {
    if constexpr (sizeof(Unit) == 1) {
        return kTables.decode[static_cast<unsigned char>(c)];
    } else {
        return c > 0xFF ? kInvalid : kTables.decode[c];
    }
}

// Stores the 3 bytes of a decoded 24-bit group at `out`, high byte first; may also
// write a fourth byte, which the caller must have room for.
inline void StoreGroup(unsigned char* out, std::uint32_t v) {
#if LUMO_LITTLE_ENDIAN
    std::uint32_t const bytes = __builtin_bswap32(v << 8);
    __builtin_memcpy(out, &bytes, 4);
#else
    out[0] = static_cast<unsigned char>(v >> 16);
    out[1] = static_cast<unsigned char>(v >> 8);
    out[2] = static_cast<unsigned char>(v);
#endif
}

template <class Unit>
inline void EncodeBinHex(unsigned char const* in, std::size_t length, Unit* out) {
    for (std::size_t i = 0; i < length; ++i, out += 2) {
        out[0] = static_cast<Unit>(kTables.hex[in[i]][0]);
        out[1] = static_cast<Unit>(kTables.hex[in[i]][1]);
    }
}

// 0-15 for "0"-"9" and "A"-"F", -1 for anything else (lower case included).
template <class Unit> inline int BinHexDigit(Unit c) {
    unsigned const u = sizeof(Unit) == 1 ? static_cast<unsigned char>(c) : unsigned(c);
    if (u >= '0' && u <= '9')
        return int(u - '0');
    if (u >= 'A' && u <= 'F')
        return int(u - 'A' + 10);
    return -1;
}

} // namespace codec
} // namespace base
} // namespace lumo

#endif
