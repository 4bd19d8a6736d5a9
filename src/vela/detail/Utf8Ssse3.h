// The codec's SSSE3 encoder, compiled for that instruction set alone (these functions
// are never inlined into their SSE2 callers) and chosen at run time, since the
// baseline the library is built for has SSE2 only. Included by Utf8Codec.h.
#ifndef VELA_DETAIL_UTF8SSSE3_H
#define VELA_DETAIL_UTF8SSSE3_H

#include <emmintrin.h>
#include <tmmintrin.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace Vela {
namespace detail {
namespace utf8 {

using Unit = unsigned short;
using Byte = std::uint8_t;

// Four units, each in a 32-bit lane holding its 1 to 3 bytes in order, are packed by
// one shuffle. The key has a bit per lane for "two bytes or more" (bits 0-3) and one
// for "three bytes" (bits 4-7); each entry says where the packed bytes come from and
// how many there are.
struct PackEntry {
    alignas(16) std::array<std::uint8_t, 16> shuffle;
    std::uint8_t length;
};

constexpr std::array<PackEntry, 256> MakePackTable() {
    std::array<PackEntry, 256> table{};
    for (unsigned key = 0; key < 256; ++key) {
        PackEntry& entry = table[key];
        unsigned n = 0;
        for (unsigned lane = 0; lane < 4; ++lane) {
            unsigned const bytes = 1 + (key >> lane & 1) + (key >> (lane + 4) & 1);
            for (unsigned b = 0; b < bytes; ++b)
                entry.shuffle[n++] = std::uint8_t(4 * lane + b);
        }
        entry.length = std::uint8_t(n);
        for (; n < 16; ++n)
            entry.shuffle[n] = 0x80; // a zero byte, written over by what follows
    }
    return table;
}

inline constexpr std::array<PackEntry, 256> kPack = MakePackTable();

// Encodes four units (zero-extended into 32-bit lanes, no surrogates) at `out`: stores
// 16 bytes, returns how many of them count.
__attribute__((target("ssse3"))) inline unsigned EncodeFour(__m128i w, Byte* out) {
    __m128i const six = _mm_set1_epi32(0x3F);
    __m128i const two = _mm_cmpgt_epi32(w, _mm_set1_epi32(0x7F));
    __m128i const three = _mm_cmpgt_epi32(w, _mm_set1_epi32(0x7FF));
    __m128i const low = _mm_or_si128(_mm_and_si128(w, six), _mm_set1_epi32(0x80));
    __m128i const middle =
        _mm_or_si128(_mm_and_si128(_mm_srli_epi32(w, 6), six), _mm_set1_epi32(0x80));
    // 1110xxxx 10xxxxxx 10xxxxxx and 110xxxxx 10xxxxxx, first byte lowest.
    __m128i const threeBytes =
        _mm_or_si128(_mm_or_si128(_mm_srli_epi32(w, 12), _mm_set1_epi32(0xE0)),
                     _mm_or_si128(_mm_slli_epi32(middle, 8), _mm_slli_epi32(low, 16)));
    __m128i const twoBytes = _mm_or_si128(_mm_or_si128(_mm_srli_epi32(w, 6), _mm_set1_epi32(0xC0)),
                                          _mm_slli_epi32(low, 8));
    __m128i const shortForm = _mm_or_si128(_mm_and_si128(two, twoBytes), _mm_andnot_si128(two, w));
    __m128i const forms =
        _mm_or_si128(_mm_and_si128(three, threeBytes), _mm_andnot_si128(three, shortForm));
    unsigned const key = unsigned(_mm_movemask_ps(_mm_castsi128_ps(two))) |
                         unsigned(_mm_movemask_ps(_mm_castsi128_ps(three))) << 4;
    PackEntry const& entry = kPack[key];
    __m128i const order = _mm_load_si128(reinterpret_cast<__m128i const*>(entry.shuffle.data()));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_shuffle_epi8(forms, order));
    return entry.length;
}

inline bool DetectSsse3() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("ssse3");
}

// Read before static construction ends, it is still false and the callers take the
// SSE2 path.
inline bool const gHaveSsse3 = DetectSsse3();

// Encodes the 8-unit blocks of [p, end) up to the first that holds a surrogate, while
// `out` has room for a block's longest form and 4 spare bytes (which it may store
// into); advances `out` and returns the units taken.
__attribute__((target("ssse3"))) inline std::size_t
EncodeBmpBlocks(Unit const* p, Unit const* end, Byte*& out, Byte const* outEnd) {
    Unit const* const begin = p;
    Byte* o = out;
    __m128i const zero = _mm_setzero_si128();
    __m128i const nonAscii = _mm_set1_epi16(short(0xFF80));
    __m128i const surrogateBits = _mm_set1_epi16(short(0xF800));
    __m128i const surrogates = _mm_set1_epi16(short(0xD800));
    // Eight units take at most 24 bytes; the second store of 16 may start 12 bytes in.
    while (end - p >= 8 && outEnd - o >= 28) {
        __m128i const v = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p));
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(v, surrogateBits), surrogates)) != 0)
            break;
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(v, nonAscii), zero)) == 0xFFFF) {
            _mm_storel_epi64(reinterpret_cast<__m128i*>(o), _mm_packus_epi16(v, v));
            o += 8;
        } else {
            o += EncodeFour(_mm_unpacklo_epi16(v, zero), o);
            o += EncodeFour(_mm_unpackhi_epi16(v, zero), o);
        }
        p += 8;
    }
    out = o;
    return std::size_t(p - begin);
}

} // namespace utf8
} // namespace detail
} // namespace Vela

#endif
