// The library's one UTF-8 <-> UTF-16 codec: decode one, encode one, bulk count and
// convert in both directions with SSE2 fast paths, the malformed-input policy a traits type.
#ifndef VELA_DETAIL_UTF8CODEC_H
#define VELA_DETAIL_UTF8CODEC_H

#include <vela/Config.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#if VELA_HAVE_SSE2
#include <emmintrin.h>
#endif
// Shuffles that pack mixed scripts, where the processor has them (x86 with SSSE3).
#if VELA_HAVE_SSE2 && (defined(__x86_64__) || defined(__i386__))
#define VELA_UTF8_SSSE3 1
#include "Utf8Ssse3.h"
#else
#define VELA_UTF8_SSSE3 0
#endif

// Every conversion between UTF-8 bytes and UTF-16 units in the library runs here. The
// callers differ only in what they do with input that has no exact counterpart, so
// that is a traits type the bulk functions are instantiated with:
//
// Decoding (UTF-8 -> UTF-16), a traits type with
//   static constexpr bool kLenient;  // false: the well-formed sequences of Unicode
//       // table 3-7 only; true: any lead C0-F7 with its continuation bytes (overlong
//       // forms, encoded surrogates and values past U+10FFFF are taken as they come;
//       // a 4-byte sequence always gives two units)
//   static constexpr bool kReplace;  // true: a malformed byte becomes U+FFFD (one per
//       // byte); false: conversion stops in front of it
//
// Encoding (UTF-16 -> UTF-8), a traits object with
//   Utf16Step Surrogate(Unit const* p, Unit const* end, Byte* four);
//       // called for a surrogate that is not the high half of a pair (or for every
//       // surrogate when kPairs is false): writes at most 4 bytes to `four` and says
//       // how many units it took and bytes it wrote; 0 units stops the conversion
//   static constexpr bool kPairs;         // whether a high + low pair is one 4-byte form
//   static constexpr int kUnpairedBytes;  // the bytes Surrogate writes (for counting)
namespace Vela {
namespace detail {
namespace utf8 {

using Unit = unsigned short;
using Byte = std::uint8_t;

// The code a malformed byte decodes to is kMalformed + the byte: above every character.
constexpr std::uint32_t kMalformed = 0x110000;
constexpr Unit kReplacement = 0xFFFD;

inline Byte const* Bytes(char const* p) {
    return reinterpret_cast<Byte const*>(p);
}

inline bool IsContinuation(Byte b) {
    return (b & 0xC0) == 0x80;
}
inline bool IsHighSurrogate(std::uint32_t u) {
    return (u & 0xFC00) == 0xD800;
}
inline bool IsLowSurrogate(std::uint32_t u) {
    return (u & 0xFC00) == 0xDC00;
}
inline bool IsSurrogate(std::uint32_t u) {
    return (u & 0xF800) == 0xD800;
}

// ---------------------------------------------------------------------------------
// One character

// The length of the well-formed sequences a lead byte starts (Unicode table 3-7);
// 1 for a byte that starts none but itself.
inline int StrictLength(Byte b0) {
    return b0 < 0xC2 ? 1 : b0 <= 0xDF ? 2 : b0 <= 0xEF ? 3 : b0 <= 0xF4 ? 4 : 1;
}

// The range of the byte after a lead of a well-formed multi-byte sequence (the others
// are any continuation byte).
inline Byte SecondLow(Byte b0) {
    return b0 == 0xE0 ? 0xA0 : b0 == 0xF0 ? 0x90 : 0x80;
}
inline Byte SecondHigh(Byte b0) {
    return b0 == 0xED ? 0x9F : b0 == 0xF4 ? 0x8F : 0xBF;
}

// The sequence at s (n > 0 bytes left), strict (Unicode table 3-7) unless `lenient`:
// returns its length and the code point, or length 1 and kMalformed + the byte. The
// bytes are read in order and no further than the first that does not fit, so a text
// with a terminator may pass a larger n.
inline int DecodeOne(Byte const* s, std::size_t n, std::uint32_t& c, bool lenient = false) {
    Byte const b0 = s[0];
    if (b0 < 0x80) {
        c = b0;
        return 1;
    }
    if (lenient) {
        int const length = b0 < 0xC0 ? 0 : b0 < 0xE0 ? 2 : b0 < 0xF0 ? 3 : b0 < 0xF8 ? 4 : 0;
        if (length != 0 && n >= std::size_t(length)) {
            std::uint32_t value = b0 & (0x7F >> length);
            int k = 1;
            for (; k < length && IsContinuation(s[k]); ++k)
                value = (value << 6) | (s[k] & 0x3F);
            if (k == length) {
                c = value;
                return length;
            }
        }
    } else if (b0 >= 0xC2 && b0 <= 0xDF) {
        if (n >= 2 && IsContinuation(s[1])) {
            c = (std::uint32_t(b0 & 0x1F) << 6) | (s[1] & 0x3F);
            return 2;
        }
    } else if (b0 >= 0xE0 && b0 <= 0xEF) {
        if (n >= 3 && s[1] >= SecondLow(b0) && s[1] <= SecondHigh(b0) && IsContinuation(s[2])) {
            c = (std::uint32_t(b0 & 0x0F) << 12) | (std::uint32_t(s[1] & 0x3F) << 6) |
                (s[2] & 0x3F);
            return 3;
        }
    } else if (b0 >= 0xF0 && b0 <= 0xF4) {
        if (n >= 4 && s[1] >= SecondLow(b0) && s[1] <= SecondHigh(b0) && IsContinuation(s[2]) &&
            IsContinuation(s[3])) {
            c = (std::uint32_t(b0 & 0x07) << 18) | (std::uint32_t(s[1] & 0x3F) << 12) |
                (std::uint32_t(s[2] & 0x3F) << 6) | (s[3] & 0x3F);
            return 4;
        }
    }
    c = kMalformed + b0;
    return 1;
}

// The UTF-8 form of c (below 0x110000; a surrogate value gets its own 3 bytes);
// returns its length.
inline int EncodeOne(std::uint32_t c, Byte* out) {
    if (c < 0x80) {
        out[0] = Byte(c);
        return 1;
    }
    if (c < 0x800) {
        out[0] = Byte(0xC0 | (c >> 6));
        out[1] = Byte(0x80 | (c & 0x3F));
        return 2;
    }
    if (c < 0x10000) {
        out[0] = Byte(0xE0 | (c >> 12));
        out[1] = Byte(0x80 | ((c >> 6) & 0x3F));
        out[2] = Byte(0x80 | (c & 0x3F));
        return 3;
    }
    out[0] = Byte(0xF0 | (c >> 18));
    out[1] = Byte(0x80 | ((c >> 12) & 0x3F));
    out[2] = Byte(0x80 | ((c >> 6) & 0x3F));
    out[3] = Byte(0x80 | (c & 0x3F));
    return 4;
}

inline int EncodedLength(std::uint32_t c) {
    return c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
}

// The code point of a surrogate pair.
inline std::uint32_t Combine(std::uint32_t high, std::uint32_t low) {
    return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

// The UTF-16 form of a decoded value (a 4-byte sequence always gives two units, with
// plain 32-bit arithmetic, so that a lenient decode of any value gives two).
inline int PutUnits(std::uint32_t c, int length, Unit* out) {
    if (length < 4) {
        out[0] = static_cast<Unit>(c);
        return 1;
    }
    std::uint32_t const offset = c - 0x10000u;
    out[0] = static_cast<Unit>(0xD800u + (offset >> 10));
    out[1] = static_cast<Unit>(0xDC00u + (offset & 0x3FF));
    return 2;
}

// ---------------------------------------------------------------------------------
// Decoding policies

struct StrictStop { // the 8-bit routines, CUnicodeString(char const*), legality checks
    static constexpr bool kLenient = false;
    static constexpr bool kReplace = false;
};
struct LenientStop { // CUnicodeString::FromUTF8
    static constexpr bool kLenient = true;
    static constexpr bool kReplace = false;
};
struct StrictReplace { // printf's %hs, print writers
    static constexpr bool kLenient = false;
    static constexpr bool kReplace = true;
};

// ---------------------------------------------------------------------------------
// ASCII runs

// The end of the ASCII run that starts at p.
inline Byte const* SkipAscii(Byte const* p, Byte const* end) {
#if VELA_HAVE_SSE2
    while (end - p >= 16) {
        int const mask = _mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<__m128i const*>(p)));
        if (mask != 0)
            return p + __builtin_ctz(unsigned(mask));
        p += 16;
    }
#endif
    while (end - p >= 8) {
        std::uint64_t word;
        std::memcpy(&word, p, 8);
        if ((word & 0x8080808080808080ull) != 0)
            break;
        p += 8;
    }
    while (p < end && *p < 0x80)
        ++p;
    return p;
}

// Widens the ASCII run at p into out, at most `room` units; returns the bytes taken.
inline std::size_t WidenAscii(Byte const* p, Byte const* end, Unit* out, std::size_t room) {
    Byte const* const start = p;
    if (std::size_t(end - p) > room)
        end = p + room;
#if VELA_HAVE_SSE2
    __m128i const zero = _mm_setzero_si128();
    while (end - p >= 16) {
        __m128i const v = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p));
        if (_mm_movemask_epi8(v) != 0)
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(v, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), _mm_unpackhi_epi8(v, zero));
        p += 16;
        out += 16;
    }
#endif
    while (p < end && *p < 0x80)
        *out++ = *p++;
    return std::size_t(p - start);
}

// The first 0 unit of [p, end), or end; without kBounded, of a terminated text (end
// unused). A text may end at its 0 unit before `end` (callers pass an upper bound), so
// nothing past that unit's 16-byte block is read: the blocks are aligned, and an
// aligned block never crosses a page. The address sanitizer cannot know that and is
// not asked.
template <bool kBounded = true>
#if defined(__GNUC__)
__attribute__((no_sanitize_address))
#endif
inline Unit const*
FindZero(Unit const* p, Unit const* end) {
#if VELA_HAVE_SSE2
    while ((!kBounded || p < end) && (reinterpret_cast<std::uintptr_t>(p) & 15) != 0) {
        if (*p == 0)
            return p;
        ++p;
    }
    if ((reinterpret_cast<std::uintptr_t>(p) & 15) == 0) {
        __m128i const zero = _mm_setzero_si128();
        for (; !kBounded || p < end; p += 8) {
            int const mask = _mm_movemask_epi8(
                _mm_cmpeq_epi16(_mm_load_si128(reinterpret_cast<__m128i const*>(p)), zero));
            if (mask != 0) {
                Unit const* const hit = p + __builtin_ctz(unsigned(mask)) / 2;
                return !kBounded || hit < end ? hit : end;
            }
        }
        return end;
    }
#endif
    while ((!kBounded || p < end) && *p != 0)
        ++p;
    return p;
}

// ---------------------------------------------------------------------------------
// Bulk decoding

struct DecodeResult {
    std::size_t bytes; // bytes read
    std::size_t units; // units written (or needed, when counting)
};

// Decodes [p, end) into out under the policy, whole characters only and at most
// `room` units (a pair is never split); a null `out` counts instead. Stops at the
// first malformed byte unless the policy replaces it.
template <class Policy>
DecodeResult Decode(Byte const* begin, Byte const* end, Unit* out, std::size_t room) {
    Byte const* p = begin;
    std::size_t w = 0;
    while (p < end) {
        if (*p < 0x80) {
            if (w >= room)
                break;
            std::size_t taken;
            if (out == nullptr) {
                Byte const* stop = end;
                if (std::size_t(end - p) > room - w)
                    stop = p + (room - w);
                taken = std::size_t(SkipAscii(p, stop) - p);
            } else {
                taken = WidenAscii(p, end, out + w, room - w);
            }
            p += taken;
            w += taken;
            continue;
        }
        std::uint32_t c;
        int const length = DecodeOne(p, std::size_t(end - p), c, Policy::kLenient);
        if (length == 1 && c >= kMalformed) {
            if (!Policy::kReplace)
                break;
            c = kReplacement;
        }
        int const units = length == 4 ? 2 : 1;
        if (room - w < std::size_t(units))
            break;
        if (out != nullptr)
            PutUnits(c, length, out + w);
        w += std::size_t(units);
        p += length;
    }
    return DecodeResult{std::size_t(p - begin), w};
}

#if VELA_HAVE_SSE2
// Steps back from a block boundary to the start of a sequence that runs across it.
// Everything before `p` is known to be well formed.
inline Byte const* SequenceStart(Byte const* begin, Byte const* p, std::uint64_t& units) {
    for (int back = 1; back <= 3 && p - back >= begin; ++back) {
        Byte const b = p[-back];
        if (!IsContinuation(b)) {
            // A lead byte of a sequence longer than `back` bytes runs across p.
            int const length = b < 0x80 ? 1 : b < 0xE0 ? 2 : b < 0xF0 ? 3 : 4;
            if (length > back) {
                units -= length == 4 ? 2 : 1;
                return p - back;
            }
            return p;
        }
    }
    return p;
}
#endif

// Units of the longest prefix of [begin, end) that decodes under the (stopping)
// policy; `stop` receives where it ends. Whole blocks of 16 bytes are checked at
// once: a byte must be a continuation exactly when one of the three bytes before it
// is a lead that asks for it, and no byte may be F8-FF; the strict policy also wants
// no lead C0, C1 or F5-F7 and no second byte out of range after E0, ED, F0 and F4. A
// block that breaks the rule, and the tail, are left to the exact loop.
template <class Policy> std::uint64_t Count(Byte const* begin, Byte const* end, Byte const** stop) {
    static_assert(!Policy::kReplace, "counting stops at the first malformed byte");
    Byte const* p = begin;
    std::uint64_t units = 0;
#if VELA_UTF8_SSSE3
    if (!Policy::kLenient && gHaveSsse3 && end - begin >= 16)
        p = SequenceStart(begin, CountStrictBlocks(begin, end, units), units);
    else
#endif
#if VELA_HAVE_SSE2
        if (end - begin >= 16) {
        // Signed comparisons of b ^ 0x80 stand in for unsigned ones.
        __m128i const flip = _mm_set1_epi8(char(0x80));
        __m128i const contMask = _mm_set1_epi8(char(0xC0));
        __m128i const contValue = _mm_set1_epi8(char(0x80));
        __m128i const atLeastC0 = _mm_set1_epi8(char(0xBF ^ 0x80));
        __m128i const atLeastE0 = _mm_set1_epi8(char(0xDF ^ 0x80));
        __m128i const atLeastF0 = _mm_set1_epi8(char(0xEF ^ 0x80));
        __m128i const atLeastF8 = _mm_set1_epi8(char(0xF7 ^ 0x80));
        __m128i const atLeastF5 = _mm_set1_epi8(char(0xF4 ^ 0x80));
        __m128i const belowC2 = _mm_set1_epi8(char(0xC2 ^ 0x80));
        __m128i const belowA0 = _mm_set1_epi8(char(0xA0 ^ 0x80));
        __m128i const below90 = _mm_set1_epi8(char(0x90 ^ 0x80));
        __m128i const above9F = _mm_set1_epi8(char(0x9F ^ 0x80));
        __m128i const above8F = _mm_set1_epi8(char(0x8F ^ 0x80));
        __m128i const leadE0 = _mm_set1_epi8(char(0xE0));
        __m128i const leadED = _mm_set1_epi8(char(0xED));
        __m128i const leadF0 = _mm_set1_epi8(char(0xF0));
        __m128i const leadF4 = _mm_set1_epi8(char(0xF4));
        __m128i const one = _mm_set1_epi8(1);
        __m128i const zero = _mm_setzero_si128();
        // The first block looks back into zeros, which ask for no continuation.
        alignas(16) Byte first[3 + 16] = {0, 0, 0};
        std::memcpy(first + 3, begin, 16);
        Byte const* block = first + 3;
        Byte const* at = begin;
        __m128i counts = zero; // units per byte lane, summed before they can overflow
        int rounds = 0;
        auto load = [](Byte const* q) {
            return _mm_loadu_si128(reinterpret_cast<__m128i const*>(q));
        };
        for (;;) {
            __m128i const v = load(block);
            {
                __m128i const v1 = load(block - 1);
                __m128i const f = _mm_xor_si128(v, flip);
                __m128i const f1 = _mm_xor_si128(v1, flip);
                __m128i const f2 = _mm_xor_si128(load(block - 2), flip);
                __m128i const f3 = _mm_xor_si128(load(block - 3), flip);
                __m128i const isCont = _mm_cmpeq_epi8(_mm_and_si128(v, contMask), contValue);
                __m128i const wanted = _mm_or_si128(
                    _mm_cmpgt_epi8(f1, atLeastC0),
                    _mm_or_si128(_mm_cmpgt_epi8(f2, atLeastE0), _mm_cmpgt_epi8(f3, atLeastF0)));
                __m128i bad =
                    _mm_or_si128(_mm_xor_si128(isCont, wanted), _mm_cmpgt_epi8(f, atLeastF8));
                if (!Policy::kLenient) {
                    // Leads C0, C1, F5-F7 (C0 and C1 are the leads below C2).
                    __m128i const lead = _mm_cmpgt_epi8(f, atLeastC0);
                    bad = _mm_or_si128(bad, _mm_and_si128(lead, _mm_cmplt_epi8(f, belowC2)));
                    bad = _mm_or_si128(bad, _mm_cmpgt_epi8(f, atLeastF5));
                    // Second bytes: A0-BF after E0, 80-9F after ED, 90-BF after F0,
                    // 80-8F after F4.
                    bad = _mm_or_si128(
                        bad, _mm_and_si128(_mm_cmpeq_epi8(v1, leadE0), _mm_cmplt_epi8(f, belowA0)));
                    bad = _mm_or_si128(
                        bad, _mm_and_si128(_mm_cmpeq_epi8(v1, leadED), _mm_cmpgt_epi8(f, above9F)));
                    bad = _mm_or_si128(
                        bad, _mm_and_si128(_mm_cmpeq_epi8(v1, leadF0), _mm_cmplt_epi8(f, below90)));
                    bad = _mm_or_si128(
                        bad, _mm_and_si128(_mm_cmpeq_epi8(v1, leadF4), _mm_cmpgt_epi8(f, above8F)));
                }
                if (_mm_movemask_epi8(bad) != 0)
                    break;
                // One unit per byte that is not a continuation, one more per 4-byte lead.
                counts = _mm_add_epi8(counts, _mm_sub_epi8(_mm_andnot_si128(isCont, one),
                                                           _mm_cmpgt_epi8(f, atLeastF0)));
            }
            if (++rounds == 127) {
                __m128i const sums = _mm_sad_epu8(counts, zero);
                units += std::uint32_t(_mm_cvtsi128_si32(sums)) +
                         std::uint32_t(_mm_cvtsi128_si32(_mm_srli_si128(sums, 8)));
                counts = zero;
                rounds = 0;
            }
            at += 16;
            if (end - at < 16)
                break;
            block = at;
        }
        __m128i const sums = _mm_sad_epu8(counts, zero);
        units += std::uint32_t(_mm_cvtsi128_si32(sums)) +
                 std::uint32_t(_mm_cvtsi128_si32(_mm_srli_si128(sums, 8)));
        p = SequenceStart(begin, at, units);
    }
#endif
    DecodeResult const rest = Decode<Policy>(p, end, nullptr, ~std::size_t(0));
    *stop = p + rest.bytes;
    return units + rest.units;
}

// Decodes [p, end), known to hold whole sequences that the lenient policy accepts
// (as Count measured them), into out, which has room for all of it.
inline void DecodeValid(Byte const* p, Byte const* end, Unit* out) {
    while (p < end) {
#if VELA_UTF8_SSSE3
        if (gHaveSsse3) {
            DecodeValidBlocks(p, end, out);
            if (p == end)
                break;
        }
#endif
        std::uint32_t const lead = *p;
        if (lead < 0x80) {
            std::size_t const taken = WidenAscii(p, end, out, std::size_t(end - p));
            p += taken;
            out += taken;
        } else if (lead < 0xE0) {
            *out++ = static_cast<Unit>(((lead & 0x1F) << 6) | (p[1] & 0x3F));
            p += 2;
        } else if (lead < 0xF0) {
            *out++ =
                static_cast<Unit>(((lead & 0x0F) << 12) | ((p[1] & 0x3Fu) << 6) | (p[2] & 0x3F));
            p += 3;
        } else {
            std::uint32_t const c = ((lead & 0x07) << 18) | ((p[1] & 0x3Fu) << 12) |
                                    ((p[2] & 0x3Fu) << 6) | (p[3] & 0x3F);
            out += PutUnits(c, 4, out);
            p += 4;
        }
    }
}

// ---------------------------------------------------------------------------------
// Encoding policies

struct Utf16Step {
    int units; // units taken (0: stop in front of this one)
    int bytes; // bytes written
};

// An unpaired surrogate becomes '?' (the 8-bit routines, CString, printf's %hs).
struct Question {
    static constexpr bool kPairs = true;
    static constexpr int kUnpairedBytes = 1;
    Utf16Step Surrogate(Unit const*, Unit const*, Byte* four) const {
        four[0] = '?';
        return Utf16Step{1, 1};
    }
};

// An unpaired surrogate becomes the 3 bytes of its own value (CUnicodeString::ToUTF8,
// so that the lenient decode gives the same units back).
struct OwnValue {
    static constexpr bool kPairs = true;
    static constexpr int kUnpairedBytes = 3;
    Utf16Step Surrogate(Unit const* p, Unit const*, Byte* four) const {
        return Utf16Step{1, EncodeOne(*p, four)};
    }
};

// An unpaired surrogate becomes U+FFFD, and the policy remembers that it met one.
struct Replace {
    static constexpr bool kPairs = true;
    static constexpr int kUnpairedBytes = 3;
    bool replaced = false;
    Utf16Step Surrogate(Unit const*, Unit const*, Byte* four) {
        replaced = true;
        return Utf16Step{1, EncodeOne(kReplacement, four)};
    }
};

// ---------------------------------------------------------------------------------
// Bulk encoding

// Bytes of the UTF-8 form of [p, end) under the policy (which pairs surrogates).
template <class Policy> std::uint64_t CountBytes(Unit const* p, Unit const* end) {
    static_assert(Policy::kPairs, "counting knows paired surrogates only");
    constexpr int kUnpairedLess = 3 - Policy::kUnpairedBytes;
    std::uint64_t bytes = 0;
#if VELA_HAVE_SSE2
    // Per unit: 1 + (u >= 0x80) + (u >= 0x800), less 2 for a high surrogate that a low
    // one follows, less what an unpaired one saves. Every surrogate counts as unpaired
    // in its own lane, and a pair (found at its high half) gives the difference back.
    // The extras add up in 16-bit lanes, flushed before they overflow.
    __m128i const zero = _mm_setzero_si128();
    __m128i const above7F = _mm_set1_epi16(short(0xFF80));
    __m128i const above7FF = _mm_set1_epi16(short(0xF800));
    __m128i const surrogateBits = _mm_set1_epi16(short(0xFC00));
    __m128i const high = _mm_set1_epi16(short(0xD800));
    __m128i const low = _mm_set1_epi16(short(0xDC00));
    __m128i const ones = _mm_set1_epi16(1);
    __m128i extra = zero;
    int rounds = 0;
    while (end - p >= 9) {
        __m128i const v = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p));
        __m128i const next = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p + 1));
        __m128i const small = _mm_cmpeq_epi16(_mm_and_si128(v, above7F), zero);
        __m128i const medium = _mm_cmpeq_epi16(_mm_and_si128(v, above7FF), zero);
        __m128i const isHigh = _mm_cmpeq_epi16(_mm_and_si128(v, surrogateBits), high);
        __m128i const pair =
            _mm_and_si128(isHigh, _mm_cmpeq_epi16(_mm_and_si128(next, surrogateBits), low));
        // small and medium are -1 where true.
        extra = _mm_add_epi16(extra, _mm_add_epi16(small, medium));
        if (kUnpairedLess == 0) {
            extra = _mm_add_epi16(extra, _mm_add_epi16(pair, pair));
        } else {
            // Pairs: high 1 + low 3 here would be 1 + 1 less (the low half counts as
            // unpaired); a high half saves kUnpairedLess and gets it back when paired.
            __m128i const surrogate = _mm_cmpeq_epi16(_mm_and_si128(v, above7FF), high);
            __m128i const less = _mm_set1_epi16(short(kUnpairedLess));
            extra = _mm_sub_epi16(extra, _mm_and_si128(surrogate, less));
            // A pair is 4 bytes: its high half takes 4 - 2 * kUnpairedBytes more.
            __m128i const pairMore = _mm_set1_epi16(short(4 - 2 * Policy::kUnpairedBytes));
            extra = _mm_add_epi16(extra, _mm_and_si128(pair, pairMore));
        }
        bytes += 8 + 16;
        p += 8;
        if (++rounds == 4096) {
            __m128i const sums = _mm_madd_epi16(extra, ones);
            alignas(16) std::int32_t lanes[4];
            _mm_store_si128(reinterpret_cast<__m128i*>(lanes), sums);
            bytes += std::int64_t(lanes[0]) + lanes[1] + lanes[2] + lanes[3];
            extra = zero;
            rounds = 0;
        }
    }
    __m128i const sums = _mm_madd_epi16(extra, ones);
    alignas(16) std::int32_t lanes[4];
    _mm_store_si128(reinterpret_cast<__m128i*>(lanes), sums);
    bytes += std::int64_t(lanes[0]) + lanes[1] + lanes[2] + lanes[3];
#endif
    while (p < end) {
        std::uint32_t const u = *p++;
        if (u < 0x80) {
            bytes += 1;
        } else if (u < 0x800) {
            bytes += 2;
        } else if (!IsSurrogate(u)) {
            bytes += 3;
        } else if (IsHighSurrogate(u) && p < end && IsLowSurrogate(*p)) {
            bytes += 4;
            ++p;
        } else {
            bytes += Policy::kUnpairedBytes;
        }
    }
    return bytes;
}

// Block helpers for a target with room to spare: they may store a few bytes more
// than they advance over, to be written over by what follows.
#if VELA_LITTLE_ENDIAN
inline void EncodeShort(std::uint32_t u, Byte*& out) {
    // Selected by mask rather than by a branch: in Latin text the two forms alternate
    // unpredictably.
    std::uint32_t const wide = (u + 0xFF80u) >> 16 & 1u; // u >= 0x80
    std::uint32_t const mask = 0u - wide;
    std::uint32_t const twoBytes = (0xC0 | (u >> 6)) | ((0x80 | (u & 0x3F)) << 8);
    std::uint16_t const value = static_cast<std::uint16_t>((twoBytes & mask) | (u & ~mask));
    std::memcpy(out, &value, 2);
    out += 1 + wide;
}
inline void EncodeThree(std::uint32_t u, Byte*& out) {
    std::uint32_t const three =
        (0xE0 | (u >> 12)) | ((0x80 | ((u >> 6) & 0x3F)) << 8) | ((0x80 | (u & 0x3F)) << 16);
    std::memcpy(out, &three, 4);
    out += 3;
}
#else
inline void EncodeShort(std::uint32_t u, Byte*& out) {
    out += EncodeOne(u, out);
}
inline void EncodeThree(std::uint32_t u, Byte*& out) {
    out += EncodeOne(u, out);
}
#endif

// Encodes the character at p (p < end) into `four` under the policy: units taken and
// bytes written (0 units: the policy stops here).
template <class Policy>
inline Utf16Step EncodeStep(Unit const* p, Unit const* end, Byte* four, Policy& policy) {
    std::uint32_t const u = *p;
    if (!IsSurrogate(u))
        return Utf16Step{1, EncodeOne(u, four)};
    if (Policy::kPairs && IsHighSurrogate(u) && end - p >= 2 && IsLowSurrogate(p[1]))
        return Utf16Step{2, EncodeOne(Combine(u, p[1]), four)};
    return policy.Surrogate(p, end, four);
}

struct EncodeResult {
    std::size_t units; // units read
    std::size_t bytes; // bytes written
};

// Encodes [p, end) into [out, outEnd) under the policy, whole sequences only, as many
// as fit; stops early where the policy says so.
template <class Policy>
EncodeResult Encode(Unit const* begin, Unit const* end, Byte* out, Byte* outEnd, Policy& policy) {
    Unit const* p = begin;
    Byte* const start = out;
    // 16 units at a time while the target has room for their longest form (3 bytes a
    // unit, one sequence running past the block, one spare byte): no room checks inside.
    std::ptrdiff_t const blockRoom = 16 * 3 + 4 + 1;
#if VELA_HAVE_SSE2
    __m128i const nonAscii = _mm_set1_epi16(short(0xFF80));
    __m128i const zero = _mm_setzero_si128();
    auto lanes = [](__m128i a, __m128i b) { // one bit per unit of the block
        return unsigned(_mm_movemask_epi8(_mm_packs_epi16(a, b)));
    };
    while (end - p >= 16 && outEnd - out >= blockRoom) {
        __m128i const a = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p));
        __m128i const b = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p + 8));
        // The ASCII units narrowed in one store; bytes for the others are written over
        // right after (the room check above covers the whole store).
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(a, b));
        unsigned const ascii = lanes(_mm_cmpeq_epi16(_mm_and_si128(a, nonAscii), zero),
                                     _mm_cmpeq_epi16(_mm_and_si128(b, nonAscii), zero));
        if (ascii == 0xFFFF) {
            p += 16;
            out += 16;
            continue;
        }
#if VELA_UTF8_SSSE3
        if (gHaveSsse3) {
            // Packed by shuffles, eight units at a time, whatever the scripts, up to the
            // first eight that hold a surrogate (those take the exact path below).
            std::size_t const taken = EncodeBmpBlocks(p, end, out, outEnd);
            if (taken != 0) {
                p += taken;
                continue;
            }
        }
#endif
        unsigned const lead = unsigned(__builtin_ctz(~ascii));
        Unit const* const stop = p + 16;
        p += lead;
        out += lead;
        while (p < stop) {
            std::uint32_t const u = *p;
            if (u < 0x80) {
                *out++ = static_cast<Byte>(u);
                ++p;
                continue;
            }
            if (u < 0x800) {
                EncodeShort(u, out);
                ++p;
                continue;
            }
            if (!IsSurrogate(u)) {
                EncodeThree(u, out);
                ++p;
                continue;
            }
            Utf16Step const step = EncodeStep(p, end, out, policy);
            if (step.units == 0)
                return EncodeResult{std::size_t(p - begin), std::size_t(out - start)};
            p += step.units;
            out += step.bytes;
        }
    }
#endif
    // The rest, one sequence at a time, as long as it fits.
    while (p < end) {
        if (*p < 0x80) {
            if (out == outEnd)
                break;
            *out++ = static_cast<Byte>(*p++);
            continue;
        }
        Byte four[4];
        Utf16Step const step = EncodeStep(p, end, four, policy);
        if (step.units == 0 || outEnd - out < step.bytes)
            break;
        std::memcpy(out, four, std::size_t(step.bytes));
        p += step.units;
        out += step.bytes;
    }
    return EncodeResult{std::size_t(p - begin), std::size_t(out - start)};
}

} // namespace utf8
} // namespace detail
} // namespace Vela

#endif
