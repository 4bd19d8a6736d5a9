// The codec's SSSE3 paths (the encoder, the decoder of well-formed text, the strict
// validator), compiled for that instruction set alone (these functions are never
// inlined into their SSE2 callers) and chosen at run time, since the baseline the
// library is built for has SSE2 only. Included by Utf8Codec.h.
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

// Decoding takes 12 bytes at a time as whole sequences, known to be well formed (in
// the lenient sense: a lead and its continuation bytes). The key, a bit per byte that
// ends a sequence, picks how the first of them (up to eight, of 1-3 bytes each; a
// 4-byte form ends the run) spread over two vectors of 32-bit lanes, last byte lowest,
// and how many units and bytes that is.
struct SpreadKey {
    std::uint8_t units;
    std::uint8_t bytes;
};
struct SpreadShape { // byte indexes ^ 0x80, so that the zeros left mean "no byte"
    alignas(16) std::array<std::uint8_t, 16> low; // lanes 0-3
    std::array<std::uint8_t, 16> high;            // lanes 4-7
};

template <class Visit> constexpr SpreadKey WalkKey(unsigned key, Visit visit) {
    unsigned units = 0, from = 0;
    for (unsigned i = 0; i < 12 && units < 8; ++i) {
        if ((key >> i & 1) == 0)
            continue;
        unsigned const length = i + 1 - from;
        if (length > 3)
            break;
        visit(units++, from, length);
        from = i + 1;
    }
    return SpreadKey{std::uint8_t(units), std::uint8_t(from)};
}

constexpr std::array<SpreadKey, 4096> MakeSpreadKeys() {
    std::array<SpreadKey, 4096> keys{};
    for (unsigned key = 0; key < 4096; ++key)
        keys[key] = WalkKey(key, [](unsigned, unsigned, unsigned) {});
    return keys;
}

constexpr std::array<SpreadShape, 4096> MakeSpreadShapes() {
    std::array<SpreadShape, 4096> shapes{};
    for (unsigned key = 0; key < 4096; ++key) {
        SpreadShape& shape = shapes[key];
        WalkKey(key, [&shape](unsigned lane, unsigned start, unsigned length) {
            auto& half = lane < 4 ? shape.low : shape.high;
            for (unsigned b = 0; b < length; ++b)
                half[4 * (lane % 4) + b] = std::uint8_t((start + length - 1 - b) ^ 0x80);
        });
    }
    return shapes;
}

inline constexpr std::array<SpreadKey, 4096> kSpreadKeys = MakeSpreadKeys();
inline constexpr std::array<SpreadShape, 4096> kSpreadShapes = MakeSpreadShapes();

// Four lanes of 1-3 bytes (last byte lowest) as the characters they encode.
__attribute__((target("ssse3"))) inline __m128i DecodeLanes(__m128i w) {
    // 1110xxxx 10xxxxxx 10xxxxxx, 110xxxxx 10xxxxxx or one ASCII byte, by the highest
    // byte of the lane that is set.
    __m128i const last = _mm_and_si128(w, _mm_set1_epi32(0x3F));
    __m128i const three =
        _mm_or_si128(_mm_or_si128(_mm_and_si128(_mm_srli_epi32(w, 4), _mm_set1_epi32(0xF000)),
                                  _mm_and_si128(_mm_srli_epi32(w, 2), _mm_set1_epi32(0xFC0))),
                     last);
    __m128i const two =
        _mm_or_si128(_mm_and_si128(_mm_srli_epi32(w, 2), _mm_set1_epi32(0x7C0)), last);
    __m128i const isThree = _mm_cmpgt_epi32(w, _mm_set1_epi32(0xFFFF));
    __m128i const isTwo = _mm_cmpgt_epi32(w, _mm_set1_epi32(0xFF));
    __m128i const shortForm = _mm_or_si128(_mm_and_si128(isTwo, two), _mm_andnot_si128(isTwo, w));
    return _mm_or_si128(_mm_and_si128(isThree, three), _mm_andnot_si128(isThree, shortForm));
}

// Decodes well-formed UTF-8 from p, 64-byte chunks at a time while at least 80 bytes
// are left (so that the units still to come cover every store), up to a 4-byte form;
// advances p and out.
__attribute__((target("ssse3"))) inline void DecodeValidBlocks(Byte const*& p, Byte const* end,
                                                               Unit*& out) {
    Byte const* in = p;
    Unit* to = out;
    __m128i const zero = _mm_setzero_si128();
    __m128i const noContinuation = _mm_set1_epi8(-65); // above 0xBF as signed bytes
    __m128i const flip = _mm_set1_epi8(char(0x80));
    __m128i const packLow = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1);
    __m128i const packHigh =
        _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, 0, 1, 4, 5, 8, 9, 12, 13);
    auto leadBits = [noContinuation](Byte const* at) {
        __m128i const v = _mm_loadu_si128(reinterpret_cast<__m128i const*>(at));
        return std::uint64_t(unsigned(_mm_movemask_epi8(_mm_cmpgt_epi8(v, noContinuation))));
    };
    while (end - in >= 80) {
        // Bit i: byte i ends a sequence (byte i + 1 is no continuation), for the chunk.
        std::uint64_t const leads = leadBits(in) | leadBits(in + 16) << 16 |
                                    leadBits(in + 32) << 32 | leadBits(in + 48) << 48;
        std::uint64_t const ends = leads >> 1 | std::uint64_t(in[64] < 0x80 || in[64] >= 0xC0)
                                                    << 63;
        unsigned at = 0;
        while (at <= 52) {
            __m128i const v = _mm_loadu_si128(reinterpret_cast<__m128i const*>(in + at));
            if (_mm_movemask_epi8(v) == 0) {
                _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_unpacklo_epi8(v, zero));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 8), _mm_unpackhi_epi8(v, zero));
                at += 16;
                to += 16;
                continue;
            }
            unsigned const bits = unsigned(ends >> at) & 0xFFF;
            SpreadKey const key = kSpreadKeys[bits];
            if (key.units == 0) {
                p = in + at;
                out = to;
                return;
            }
            SpreadShape const& shape = kSpreadShapes[bits];
            __m128i const low = DecodeLanes(_mm_shuffle_epi8(
                v, _mm_xor_si128(_mm_load_si128(reinterpret_cast<__m128i const*>(shape.low.data())),
                                 flip)));
            __m128i const high = DecodeLanes(_mm_shuffle_epi8(
                v, _mm_xor_si128(
                       _mm_load_si128(reinterpret_cast<__m128i const*>(shape.high.data())), flip)));
            _mm_storeu_si128(
                reinterpret_cast<__m128i*>(to),
                _mm_or_si128(_mm_shuffle_epi8(low, packLow), _mm_shuffle_epi8(high, packHigh)));
            at += key.bytes;
            to += key.units;
        }
        in += at;
    }
    p = in;
    out = to;
}

// Strict validation by three nibble lookups per byte (the byte before's high and low
// halves, this byte's high half), each giving the errors that half is part of; a byte
// is wrong when all three agree on one, or when it is (or is not) a continuation that
// the lead two or three bytes back does not (or does) ask for.
namespace check {
constexpr std::uint8_t kTooShort = 1 << 0;     // 11______ then 0_______ or 11______
constexpr std::uint8_t kTooLong = 1 << 1;      // 0_______ then 10______
constexpr std::uint8_t kOverlong3 = 1 << 2;    // 11100000 100_____
constexpr std::uint8_t kTooLarge = 1 << 3;     // 11110100 1001____ and above
constexpr std::uint8_t kSurrogate = 1 << 4;    // 11101101 101_____
constexpr std::uint8_t kOverlong2 = 1 << 5;    // 1100000_ 10______
constexpr std::uint8_t kTooLarge1000 = 1 << 6; // 11110101 1000____ and above
constexpr std::uint8_t kOverlong4 = 1 << 6;    // 11110000 1000____
constexpr std::uint8_t kTwoConts = 1 << 7;     // 10______ 10______
constexpr std::uint8_t kCarry = kTooShort | kTooLong | kTwoConts;
constexpr std::uint8_t kLarge = kCarry | kTooLarge | kTooLarge1000;
} // namespace check

// Validates 16-byte blocks of [begin, end) strictly while 16 bytes are left, up to the
// first block with a fault; adds the units of the blocks it passes and returns where
// it stopped.
__attribute__((target("ssse3"))) inline Byte const*
CountStrictBlocks(Byte const* begin, Byte const* end, std::uint64_t& units) {
    using namespace check;
    __m128i const firstHigh =
        _mm_setr_epi8(kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong,
                      kTooLong, char(kTwoConts), char(kTwoConts), char(kTwoConts), char(kTwoConts),
                      kTooShort | kOverlong2, kTooShort, kTooShort | kOverlong3 | kSurrogate,
                      kTooShort | kTooLarge | kTooLarge1000 | kOverlong4);
    __m128i const firstLow = _mm_setr_epi8(
        char(kCarry | kOverlong3 | kOverlong2 | kOverlong4), char(kCarry | kOverlong2),
        char(kCarry), char(kCarry), char(kCarry | kTooLarge), char(kLarge), char(kLarge),
        char(kLarge), char(kLarge), char(kLarge), char(kLarge), char(kLarge), char(kLarge),
        char(kLarge | kSurrogate), char(kLarge), char(kLarge));
    __m128i const secondHigh = _mm_setr_epi8(
        kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort,
        char(kTooLong | kOverlong2 | kTwoConts | kOverlong3 | kTooLarge1000 | kOverlong4),
        char(kTooLong | kOverlong2 | kTwoConts | kOverlong3 | kTooLarge),
        char(kTooLong | kOverlong2 | kTwoConts | kSurrogate | kTooLarge),
        char(kTooLong | kOverlong2 | kTwoConts | kSurrogate | kTooLarge), kTooShort, kTooShort,
        kTooShort, kTooShort);
    __m128i const nibble = _mm_set1_epi8(0x0F);
    __m128i const zero = _mm_setzero_si128();
    __m128i const one = _mm_set1_epi8(1);
    __m128i const high = _mm_set1_epi8(char(0x80));
    __m128i const third =
        _mm_set1_epi8(0xE0 - 0x80); // a lead of 3 bytes or more, less this, is >= 0x80
    __m128i const fourth = _mm_set1_epi8(0xF0 - 0x80);
    __m128i const atLeastF0 = _mm_set1_epi8(char(0xEF ^ 0x80));
    __m128i const notContinuation = _mm_set1_epi8(-65); // above 0xBF as signed bytes
    __m128i before = zero; // the start looks back into zeros, which ask for nothing
    __m128i counts = zero; // units per byte lane, summed before they can overflow
    int rounds = 0;
    Byte const* at = begin;
    auto flush = [&] {
        __m128i const sums = _mm_sad_epu8(counts, zero);
        units += std::uint32_t(_mm_cvtsi128_si32(sums)) +
                 std::uint32_t(_mm_cvtsi128_si32(_mm_srli_si128(sums, 8)));
        counts = zero;
        rounds = 0;
    };
    while (end - at >= 16) {
        __m128i const v = _mm_loadu_si128(reinterpret_cast<__m128i const*>(at));
        __m128i const prev1 = _mm_alignr_epi8(v, before, 15);
        __m128i const prev2 = _mm_alignr_epi8(v, before, 14);
        __m128i const prev3 = _mm_alignr_epi8(v, before, 13);
        __m128i const special = _mm_and_si128(
            _mm_and_si128(
                _mm_shuffle_epi8(firstHigh, _mm_and_si128(_mm_srli_epi16(prev1, 4), nibble)),
                _mm_shuffle_epi8(firstLow, _mm_and_si128(prev1, nibble))),
            _mm_shuffle_epi8(secondHigh, _mm_and_si128(_mm_srli_epi16(v, 4), nibble)));
        __m128i const wanted = _mm_and_si128(
            _mm_or_si128(_mm_subs_epu8(prev2, third), _mm_subs_epu8(prev3, fourth)), high);
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_xor_si128(special, wanted), zero)) != 0xFFFF)
            break;
        // One unit per byte that is not a continuation, one more per 4-byte lead.
        __m128i const f = _mm_xor_si128(v, high);
        counts = _mm_add_epi8(counts,
                              _mm_sub_epi8(_mm_and_si128(_mm_cmpgt_epi8(v, notContinuation), one),
                                           _mm_cmpgt_epi8(f, atLeastF0)));
        if (++rounds == 127)
            flush();
        before = v;
        at += 16;
    }
    flush();
    return at;
}

} // namespace utf8
} // namespace detail
} // namespace Vela

#endif
