// CUnicodeString: the UTF-16 traits that instantiate StringCore, and the measured UTF-8
// to UTF-16 conversions in both directions with SSE2 fast paths over ASCII runs.
#include <lumo/base/UnicodeString.h>

#include <vela/Chars.h>
#include <vela/Ucs.h>

#include "StringCore.h"

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if LUMO_HAVE_SSE2
#include <emmintrin.h>
#define LUMO_USTRING_SSE2 1
#endif

namespace lumo {
namespace base {

namespace {

using Unit = unsigned short;
using Byte = std::uint8_t;

// What CUnicodeString's storage and shared algorithms (StringCore.h) need to know of
// UTF-16 units.
struct Traits {
    using Unit = unsigned short;
    static constexpr char kUnitName[] = "lumo/base/UnicodeString";
    // A buffer the C heap cannot supply (creation or growth beyond the pools) is
    // reported at this line; the formatting work buffer has its own lines.
    static constexpr unsigned long kHeapFailureLine = 2294;
    static constexpr unsigned long kFormatFirstLine = 2310;
    static constexpr unsigned long kFormatRetryLine = 2327;

    static CFixBlockAllocator& Pool(int sizeClass) {
        return CFixBlockAllocator::UnicodeStringPool(sizeClass);
    }
    static std::size_t Length(Unit const* s) { return Vela::ucslen(s); }
    static int Compare(Unit const* a, Unit const* b, bool ignoreCase) {
        return ignoreCase ? Vela::ucsicmp(a, b) : Vela::ucscmp(a, b);
    }
    static bool Same(Unit const* a, Unit const* b) { return Vela::ucscmp(a, b) == 0; }
    static bool SameN(Unit const* a, Unit const* b, std::size_t n, bool ignoreCase) {
        return ignoreCase ? Vela::ucsnicmp(a, b, n) == 0 : Vela::ucsncmp(a, b, n) == 0;
    }
    // The unit 0 is never found; the search runs to the terminator.
    static Unit const* SearchUnit(Unit const* p, std::size_t, Unit c, bool reverse) {
        if (c == 0)
            return nullptr;
        return reverse ? Vela::ucsrchr(p, c) : Vela::ucschr(p, c);
    }
    // Runs to the terminator, which stands at `end` or before.
    static Unit const* Search(Unit const* p, Unit const*, Unit const* s, std::size_t) {
        return Vela::ucsstr(p, s);
    }
    // One formatting round; the arguments are copied so that a retry can read them
    // again.
    static int FormatRound(Unit* buffer, std::size_t size, Unit const* format, va_list args) {
        va_list copy;
        va_copy(copy, args);
        buffer[0] = 0;
        int const result = Vela::vsnuprintf(buffer, size, format, copy);
        va_end(copy);
        buffer[size - 1] = 0;
        return result;
    }
};

using Core = StringCore<Traits>;

Unit const kEmpty[1] = {0};

// The string becomes the UTF-16 form of at most n bytes of UTF-8 text (stopping at a
// 0 byte).
void AssignConverted(Unit*& text, char const* s, std::size_t n) {
    std::size_t const bytes = s == nullptr ? 0 : strnlen(s, n);
    long const needed = bytes == 0 ? 0 : Vela::CHANSI2Unicode(s, long(bytes), nullptr, 0);
    if (needed <= 0) {
        Core::Assign(text, nullptr, 0);
        return;
    }
    Unit* fresh = Core::NewBuffer(std::uint64_t(needed) + 1);
    long const written = Vela::CHANSI2Unicode(s, long(bytes), fresh, needed + 1);
    Core::SetTextLength(fresh, written < 0 ? 0 : written > needed ? needed : written);
    Core::Adopt(text, fresh);
}

// 8-bit arguments. A char is one UTF-8 byte: only an ASCII char is a whole character;
// a byte 0x80-0xFF converts to nothing.
bool Widen(char c, Unit& unit) {
    Unit converted[2] = {0, 0};
    if (Vela::CHANSI2Unicode(&c, 1, converted, 2) != 1 || converted[0] == 0)
        return false;
    unit = converted[0];
    return true;
}

// The converted text, keeping a null pointer null (null and empty texts differ in
// some operations).
struct Converted {
    CUnicodeString text;
    bool null;
    explicit Converted(char const* s) : text(s), null(s == nullptr) {}
    operator Unit const*() const { return null ? nullptr : static_cast<Unit const*>(text); }
};

bool SameUnits(Unit const* a, Unit const* b, std::size_t n, bool ignoreCase) {
    return ignoreCase ? Vela::ucsnicmp(a, b, n) == 0 : std::memcmp(a, b, n * sizeof(Unit)) == 0;
}

// First (or last) occurrence of s at or after `start`.
long FindText(Unit const* text, Unit const* s, unsigned long start, bool ignoreCase, bool reverse) {
    std::uint32_t const length = Core::LengthOf(text);
    if (length == 0 || start >= length || s == nullptr || *s == 0)
        return -1;
    std::size_t const n = Vela::ucslen(s);
    if (n > length - start)
        return -1;
    if (!reverse && !ignoreCase) {
        Unit const* hit = Vela::ucsstr(text + start, s);
        return hit == nullptr ? -1 : static_cast<long>(hit - text);
    }
    if (reverse) {
        for (std::size_t i = length - n + 1; i-- > start;)
            if (text[i] != 0 && SameUnits(text + i, s, n, ignoreCase))
                return static_cast<long>(i);
    } else {
        for (std::size_t i = start; i + n <= length; ++i)
            if (text[i] != 0 && SameUnits(text + i, s, n, ignoreCase))
                return static_cast<long>(i);
    }
    return -1;
}

// Whether a unit is trimmed: white space when `set` is null, else a unit of the set.
bool Trimmed(Unit u, Unit const* set) {
    if (set == nullptr)
        return Vela::isuspace(u);
    return u != 0 && Vela::ucschr(set, u) != nullptr;
}

void TrimText(Unit*& text, Unit const* set, bool right) {
    std::uint32_t const length = Core::LengthOf(text);
    if (length == 0 || (set != nullptr && *set == 0))
        return;
    std::size_t cut = 0;
    if (right) {
        cut = length;
        while (cut > 0 && Trimmed(text[cut - 1], set))
            --cut;
    } else {
        while (cut < length && Trimmed(text[cut], set))
            ++cut;
    }
    Core::CutAt(text, cut, right);
}

// ---------------------------------------------------------------------------------
// UTF-8 <-> UTF-16. Both directions measure first and then convert into a buffer of
// the exact size. ASCII runs go 16 units at a time (SSE2) or 8 (portable words).

bool IsContinuation(Byte b) {
    return (b & 0xC0) == 0x80;
}

// The end of the ASCII run that starts at p.
Byte const* SkipAscii(Byte const* p, Byte const* end) {
#if defined(LUMO_USTRING_SSE2)
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

// Units needed for the well-formed prefix of [p, end); `stop` receives where it ends.
// Lead bytes C0-DF, E0-EF and F0-F7 need 1, 2 and 3 continuation bytes; anything
// else (a stray continuation, F8-FF, a missing or cut continuation) stops the count.
std::uint64_t CountUnitsScalar(Byte const* p, Byte const* end, Byte const** stop) {
    std::uint64_t units = 0;
    while (p < end) {
        Byte const b = *p;
        if (b < 0x80) {
            Byte const* q = SkipAscii(p, end);
            units += std::uint64_t(q - p);
            p = q;
            continue;
        }
        std::ptrdiff_t const rest = end - p;
        if (b < 0xC0) {
            break;
        } else if (b < 0xE0) {
            if (rest < 2 || !IsContinuation(p[1]))
                break;
            p += 2;
            units += 1;
        } else if (b < 0xF0) {
            if (rest < 3 || !IsContinuation(p[1]) || !IsContinuation(p[2]))
                break;
            p += 3;
            units += 1;
        } else if (b < 0xF8) {
            if (rest < 4 || !IsContinuation(p[1]) || !IsContinuation(p[2]) || !IsContinuation(p[3]))
                break;
            p += 4;
            units += 2;
        } else {
            break;
        }
    }
    *stop = p;
    return units;
}

#if defined(LUMO_USTRING_SSE2)
// Steps back from a block boundary to the start of a sequence that runs across it.
// Everything before `p` is known to be well formed.
Byte const* SequenceStart(Byte const* begin, Byte const* p, std::uint64_t& units) {
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

// As CountUnitsScalar. Whole blocks of 16 bytes are checked at once: a byte must be a
// continuation exactly when one of the three bytes before it is a lead that asks for
// it, and no byte may be F8-FF. A block that breaks the rule, and the tail, are left
// to the exact loop, which finds where the well-formed prefix ends.
std::uint64_t CountUnits(Byte const* begin, Byte const* end, Byte const** stop) {
    Byte const* p = begin;
    std::uint64_t units = 0;
#if defined(LUMO_USTRING_SSE2)
    if (end - begin >= 16) {
        // Signed comparisons of b ^ 0x80 stand in for unsigned ones.
        __m128i const flip = _mm_set1_epi8(char(0x80));
        __m128i const contMask = _mm_set1_epi8(char(0xC0));
        __m128i const contValue = _mm_set1_epi8(char(0x80));
        __m128i const atLeastC0 = _mm_set1_epi8(char(0xBF ^ 0x80));
        __m128i const atLeastE0 = _mm_set1_epi8(char(0xDF ^ 0x80));
        __m128i const atLeastF0 = _mm_set1_epi8(char(0xEF ^ 0x80));
        __m128i const atLeastF8 = _mm_set1_epi8(char(0xF7 ^ 0x80));
        __m128i const one = _mm_set1_epi8(1);
        __m128i const zero = _mm_setzero_si128();
        // The first block looks back into zeros, which ask for no continuation.
        alignas(16) Byte first[3 + 16] = {0, 0, 0};
        std::memcpy(first + 3, begin, 16);
        Byte const* block = first + 3;
        Byte const* at = begin;
        __m128i counts = zero; // units per byte lane, summed before they can overflow
        int rounds = 0;
        for (;;) {
            auto load = [](Byte const* q) {
                return _mm_loadu_si128(reinterpret_cast<__m128i const*>(q));
            };
            __m128i const v = load(block);
            __m128i const f = _mm_xor_si128(v, flip);
            __m128i const f1 = _mm_xor_si128(load(block - 1), flip);
            __m128i const f2 = _mm_xor_si128(load(block - 2), flip);
            __m128i const f3 = _mm_xor_si128(load(block - 3), flip);
            __m128i const isCont = _mm_cmpeq_epi8(_mm_and_si128(v, contMask), contValue);
            __m128i const wanted = _mm_or_si128(
                _mm_cmpgt_epi8(f1, atLeastC0),
                _mm_or_si128(_mm_cmpgt_epi8(f2, atLeastE0), _mm_cmpgt_epi8(f3, atLeastF0)));
            __m128i const bad =
                _mm_or_si128(_mm_xor_si128(isCont, wanted), _mm_cmpgt_epi8(f, atLeastF8));
            if (_mm_movemask_epi8(bad) != 0)
                break;
            // One unit per byte that is not a continuation, one more per 4-byte lead.
            counts = _mm_add_epi8(
                counts, _mm_sub_epi8(_mm_andnot_si128(isCont, one), _mm_cmpgt_epi8(f, atLeastF0)));
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
    return units + CountUnitsScalar(p, end, stop);
}

// Decodes the well-formed [p, end) (as measured by CountUnits) into out.
void DecodeUnits(Byte const* p, Byte const* end, Unit* out) {
    while (p < end) {
        std::uint32_t const lead = *p;
        if (lead < 0x80) {
#if defined(LUMO_USTRING_SSE2)
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
            // Plain 32-bit arithmetic: a value outside the supplementary planes (an
            // overlong or too large form, accepted as it comes) still gives two units.
            std::uint32_t const offset = c - 0x10000u;
            out[0] = static_cast<Unit>(0xD800u + (offset >> 10));
            out[1] = static_cast<Unit>(0xDC00u + (offset & 0x3FF));
            out += 2;
            p += 4;
        }
    }
}

bool IsHighSurrogate(std::uint32_t u) {
    return (u & 0xFC00) == 0xD800;
}
bool IsLowSurrogate(std::uint32_t u) {
    return (u & 0xFC00) == 0xDC00;
}

// Bytes of the UTF-8 form of [p, end): 1, 2 or 3 per unit, 4 per surrogate pair (an
// unpaired surrogate takes the 3 bytes of its own value).
std::uint64_t CountBytes(Unit const* p, Unit const* end) {
    std::uint64_t bytes = 0;
#if defined(LUMO_USTRING_SSE2)
    // Per unit: 1 + (u >= 0x80) + (u >= 0x800), less 2 for a high surrogate that a low
    // one follows. The extras add up in 16-bit lanes, flushed before they overflow.
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
        __m128i const pair =
            _mm_and_si128(_mm_cmpeq_epi16(_mm_and_si128(v, surrogateBits), high),
                          _mm_cmpeq_epi16(_mm_and_si128(next, surrogateBits), low));
        // small and medium are -1 where true: 2 + small + medium is the extra, less 2
        // for a pair's high half.
        extra = _mm_add_epi16(extra, _mm_add_epi16(small, medium));
        extra = _mm_add_epi16(extra, _mm_add_epi16(pair, pair));
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
        } else if (IsHighSurrogate(u) && p < end && IsLowSurrogate(*p)) {
            bytes += 4;
            ++p;
        } else {
            bytes += 3;
        }
    }
    return bytes;
}

// Encodes the unit at p (never ASCII) without checking for room; returns the units
// used (2 for a surrogate pair).
inline int EncodeOne(Unit const* p, Unit const* end, Byte*& out) {
    std::uint32_t const u = *p;
    if (u < 0x800) {
        out[0] = static_cast<Byte>(0xC0 | (u >> 6));
        out[1] = static_cast<Byte>(0x80 | (u & 0x3F));
        out += 2;
        return 1;
    }
    if (IsHighSurrogate(u) && end - p >= 2 && IsLowSurrogate(p[1])) {
        std::uint32_t const c = 0x10000 + ((u - 0xD800) << 10) + (p[1] - 0xDC00u);
        out[0] = static_cast<Byte>(0xF0 | (c >> 18));
        out[1] = static_cast<Byte>(0x80 | ((c >> 12) & 0x3F));
        out[2] = static_cast<Byte>(0x80 | ((c >> 6) & 0x3F));
        out[3] = static_cast<Byte>(0x80 | (c & 0x3F));
        out += 4;
        return 2;
    }
    out[0] = static_cast<Byte>(0xE0 | (u >> 12));
    out[1] = static_cast<Byte>(0x80 | ((u >> 6) & 0x3F));
    out[2] = static_cast<Byte>(0x80 | (u & 0x3F));
    out += 3;
    return 1;
}

// Bytes of the sequence for the unit at p.
inline std::ptrdiff_t EncodedSize(Unit const* p, Unit const* end) {
    std::uint32_t const u = *p;
    if (u < 0x80)
        return 1;
    if (u < 0x800)
        return 2;
    return IsHighSurrogate(u) && end - p >= 2 && IsLowSurrogate(p[1]) ? 4 : 3;
}

// Block helpers for a target with room to spare: they may store a few bytes more
// than they advance over, to be written over by what follows.
#if LUMO_LITTLE_ENDIAN
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
    if (u < 0x80) {
        *out++ = static_cast<Byte>(u);
    } else {
        out[0] = static_cast<Byte>(0xC0 | (u >> 6));
        out[1] = static_cast<Byte>(0x80 | (u & 0x3F));
        out += 2;
    }
}
inline void EncodeThree(std::uint32_t u, Byte*& out) {
    out[0] = static_cast<Byte>(0xE0 | (u >> 12));
    out[1] = static_cast<Byte>(0x80 | ((u >> 6) & 0x3F));
    out[2] = static_cast<Byte>(0x80 | (u & 0x3F));
    out += 3;
}
#endif

// Encodes [p, end) into [target, targetEnd), whole sequences only; returns the bytes
// written.
std::size_t EncodeBytes(Unit const* p, Unit const* end, char* target, char* targetEnd) {
    Byte* out = reinterpret_cast<Byte*>(target);
    Byte* const outEnd = reinterpret_cast<Byte*>(targetEnd);
    // 16 units at a time while the target has room for their longest form (3 bytes a
    // unit, one pair running past the block, one spare byte): no room checks inside.
    std::ptrdiff_t const blockRoom = 16 * 3 + 4 + 1;
#if defined(LUMO_USTRING_SSE2)
    __m128i const nonAscii = _mm_set1_epi16(short(0xFF80));
    __m128i const aboveTwoBytes = _mm_set1_epi16(short(0xF800));
    __m128i const surrogates = _mm_set1_epi16(short(0xD800));
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
        __m128i const highA = _mm_and_si128(a, aboveTwoBytes);
        __m128i const highB = _mm_and_si128(b, aboveTwoBytes);
        __m128i const shortA = _mm_cmpeq_epi16(highA, zero);
        __m128i const shortB = _mm_cmpeq_epi16(highB, zero);
        if (lanes(shortA, shortB) == 0xFFFF) {
            // Latin, Greek, Cyrillic...: one or two bytes a unit, without branches.
            for (int k = 0; k < 16; ++k)
                EncodeShort(p[k], out);
            p += 16;
            continue;
        }
        if (lanes(_mm_or_si128(shortA, _mm_cmpeq_epi16(highA, surrogates)),
                  _mm_or_si128(shortB, _mm_cmpeq_epi16(highB, surrogates))) == 0) {
            // CJK and the like: three bytes a unit.
            for (int k = 0; k < 16; ++k)
                EncodeThree(p[k], out);
            p += 16;
            continue;
        }
        unsigned const lead = unsigned(__builtin_ctz(~ascii));
        Unit const* const stop = p + 16;
        p += lead;
        out += lead;
        while (p < stop) {
            if (*p < 0x80)
                *out++ = static_cast<Byte>(*p++);
            else
                p += EncodeOne(p, end, out);
        }
    }
#else
    while (end - p >= 16 && outEnd - out >= blockRoom) {
        Unit const* const stop = p + 16;
        while (p < stop) {
            if (*p < 0x80)
                *out++ = static_cast<Byte>(*p++);
            else
                p += EncodeOne(p, end, out);
        }
    }
#endif
    // The rest, one sequence at a time, as long as it fits.
    while (p < end) {
        std::ptrdiff_t const size = EncodedSize(p, end);
        if (outEnd - out < size)
            break;
        if (size == 1)
            *out++ = static_cast<Byte>(*p++);
        else
            p += EncodeOne(p, end, out);
    }
    return static_cast<std::size_t>(out - reinterpret_cast<Byte*>(target));
}

} // namespace

void CUnicodeString::FreeBuffer(unsigned short* text) noexcept {
    Core::FreeText(text);
}

unsigned short const* CUnicodeString::EmptyText() noexcept {
    return kEmpty;
}

CUnicodeString::CUnicodeString(unsigned short const* s) : m_text(nullptr) {
    if (s != nullptr)
        Core::Assign(m_text, s, Vela::ucslen(s));
}

CUnicodeString::CUnicodeString(unsigned short const* s, unsigned long n) : m_text(nullptr) {
    Set(s, n);
}

CUnicodeString::CUnicodeString(char const* s) : m_text(nullptr) {
    if (s != nullptr)
        AssignConverted(m_text, s, std::strlen(s));
}

CUnicodeString::CUnicodeString(char const* s, unsigned long n) : m_text(nullptr) {
    Set(s, n);
}

CUnicodeString& CUnicodeString::operator=(CUnicodeString const& other) {
    if (m_text != other.m_text)
        Core::Adopt(m_text, Share(other.m_text));
    return *this;
}

CUnicodeString& CUnicodeString::operator=(CUnicodeString&& other) noexcept {
    if (this != &other) {
        Core::Adopt(m_text, other.m_text);
        other.m_text = nullptr;
    }
    return *this;
}

CUnicodeString& CUnicodeString::operator=(unsigned short const* s) {
    Core::Assign(m_text, s, Core::TextLength(s));
    return *this;
}

CUnicodeString& CUnicodeString::operator=(char const* s) {
    AssignConverted(m_text, s, s == nullptr ? 0 : std::strlen(s));
    return *this;
}

// The recorded length is that of the whole source (see StringCore's Set).
void CUnicodeString::Set(unsigned short const* s, unsigned long n) {
    Core::Set(m_text, s, n);
}

void CUnicodeString::Set(char const* s, unsigned long n) {
    AssignConverted(m_text, s, n);
}

void CUnicodeString::SetAt(unsigned long i, unsigned short c) {
    Core::SetAt(m_text, i, c);
}

void CUnicodeString::Empty() {
    Core::Empty(m_text);
}

void CUnicodeString::EnsureCapacity(unsigned long n) {
    Core::Reserve(m_text, n, false);
}

unsigned short* CUnicodeString::GetBuffer(unsigned long n) {
    return Core::GetBuffer(m_text, n);
}

void CUnicodeString::SetLength(unsigned long n) {
    Core::SetLength(m_text, n);
}

int CUnicodeString::Compare(unsigned short const* s) const {
    return Core::CompareTo(m_text, s, false);
}

int CUnicodeString::Compare(CUnicodeString const& s) const {
    return Core::CompareTo(m_text, s.IsEmpty() ? nullptr : s.m_text, false);
}

int CUnicodeString::CompareIgnoreCase(unsigned short const* s) const {
    return Core::CompareTo(m_text, s, true);
}

int CUnicodeString::CompareIgnoreCase(CUnicodeString const& s) const {
    return Core::CompareTo(m_text, s.IsEmpty() ? nullptr : s.m_text, true);
}

long CUnicodeString::Find(unsigned short c, unsigned long start) const {
    return Core::FindUnit(m_text, c, start, false);
}

long CUnicodeString::Find(char c, unsigned long start) const {
    Unit unit;
    return Widen(c, unit) ? Core::FindUnit(m_text, unit, start, false) : -1;
}

long CUnicodeString::Find(unsigned short const* s, unsigned long start) const {
    return FindText(m_text, s, start, false, false);
}

long CUnicodeString::Find(char const* s, unsigned long start) const {
    return FindText(m_text, Converted(s), start, false, false);
}

long CUnicodeString::Find(CUnicodeString const& s, unsigned long start) const {
    return FindText(m_text, s.m_text, start, false, false);
}

long CUnicodeString::FindIgnoreCase(unsigned short const* s, unsigned long start) const {
    return FindText(m_text, s, start, true, false);
}

long CUnicodeString::FindIgnoreCase(char const* s, unsigned long start) const {
    return FindText(m_text, Converted(s), start, true, false);
}

long CUnicodeString::FindIgnoreCase(CUnicodeString const& s, unsigned long start) const {
    return FindText(m_text, s.m_text, start, true, false);
}

long CUnicodeString::ReverseFind(unsigned short c, unsigned long start) const {
    return Core::FindUnit(m_text, c, start, true);
}

long CUnicodeString::ReverseFind(char c, unsigned long start) const {
    Unit unit;
    return Widen(c, unit) ? Core::FindUnit(m_text, unit, start, true) : -1;
}

long CUnicodeString::ReverseFind(unsigned short const* s, unsigned long start) const {
    return FindText(m_text, s, start, false, true);
}

long CUnicodeString::ReverseFind(char const* s, unsigned long start) const {
    return FindText(m_text, Converted(s), start, false, true);
}

long CUnicodeString::ReverseFind(CUnicodeString const& s, unsigned long start) const {
    return FindText(m_text, s.m_text, start, false, true);
}

long CUnicodeString::ReverseFindIgnoreCase(unsigned short const* s, unsigned long start) const {
    return FindText(m_text, s, start, true, true);
}

long CUnicodeString::ReverseFindIgnoreCase(char const* s, unsigned long start) const {
    return FindText(m_text, Converted(s), start, true, true);
}

long CUnicodeString::ReverseFindIgnoreCase(CUnicodeString const& s, unsigned long start) const {
    return FindText(m_text, s.m_text, start, true, true);
}

bool CUnicodeString::StartsWith(unsigned short const* s) const {
    return Core::HasAffix(m_text, s, false, false);
}
bool CUnicodeString::StartsWith(char const* s) const {
    return Core::HasAffix(m_text, Converted(s), false, false);
}
bool CUnicodeString::StartsWith(CUnicodeString const& s) const {
    return Core::HasAffix(m_text, s, false, false);
}
bool CUnicodeString::StartsWithIgnoreCase(unsigned short const* s) const {
    return Core::HasAffix(m_text, s, false, true);
}
bool CUnicodeString::StartsWithIgnoreCase(char const* s) const {
    return Core::HasAffix(m_text, Converted(s), false, true);
}
bool CUnicodeString::StartsWithIgnoreCase(CUnicodeString const& s) const {
    return Core::HasAffix(m_text, s, false, true);
}
bool CUnicodeString::EndsWith(unsigned short const* s) const {
    return Core::HasAffix(m_text, s, true, false);
}
bool CUnicodeString::EndsWith(char const* s) const {
    return Core::HasAffix(m_text, Converted(s), true, false);
}
bool CUnicodeString::EndsWith(CUnicodeString const& s) const {
    return Core::HasAffix(m_text, s, true, false);
}
bool CUnicodeString::EndsWithIgnoreCase(unsigned short const* s) const {
    return Core::HasAffix(m_text, s, true, true);
}
bool CUnicodeString::EndsWithIgnoreCase(char const* s) const {
    return Core::HasAffix(m_text, Converted(s), true, true);
}
bool CUnicodeString::EndsWithIgnoreCase(CUnicodeString const& s) const {
    return Core::HasAffix(m_text, s, true, true);
}

CUnicodeString CUnicodeString::SubString(unsigned long start) const {
    return SubString(start, GetLength());
}

CUnicodeString CUnicodeString::SubString(unsigned long start, unsigned long end) const {
    CUnicodeString piece;
    if (!Core::CopyPiece(m_text, start, end, piece.m_text))
        return *this;
    return piece;
}

CUnicodeString CUnicodeString::Mid(unsigned long start, long count) const {
    return Core::Mid(*this, start, count);
}

CUnicodeString CUnicodeString::Left(unsigned long n) const {
    return SubString(0, n);
}

CUnicodeString CUnicodeString::Right(unsigned long n) const {
    return Core::Right(*this, n);
}

CUnicodeString& CUnicodeString::operator+=(CUnicodeString const& s) {
    if (IsEmpty())
        return *this = s;
    Core::Append(m_text, s.m_text, s.GetLength());
    return *this;
}

CUnicodeString& CUnicodeString::operator+=(unsigned short const* s) {
    Core::Append(m_text, s, Core::TextLength(s));
    return *this;
}

CUnicodeString& CUnicodeString::operator+=(char const* s) {
    if (s != nullptr && *s != '\0')
        *this += CUnicodeString(s);
    return *this;
}

CUnicodeString& CUnicodeString::operator+=(unsigned short c) {
    Core::Append(m_text, &c, 1);
    return *this;
}

CUnicodeString& CUnicodeString::operator+=(char c) {
    Unit unit;
    if (Widen(c, unit))
        Core::Append(m_text, &unit, 1);
    return *this;
}

unsigned long CUnicodeString::Insert(unsigned long index, unsigned short c) {
    return Core::Insert(m_text, index, &c, 1);
}

unsigned long CUnicodeString::Insert(unsigned long index, char c) {
    Unit unit;
    return Widen(c, unit) ? Core::Insert(m_text, index, &unit, 1) : GetLength();
}

unsigned long CUnicodeString::Insert(unsigned long index, unsigned short const* s) {
    return Core::Insert(m_text, index, s, Core::TextLength(s));
}

unsigned long CUnicodeString::Insert(unsigned long index, char const* s) {
    CUnicodeString const converted(s);
    return Core::Insert(m_text, index, converted.m_text, converted.GetLength());
}

unsigned long CUnicodeString::Delete(unsigned long index, unsigned long count) {
    return Core::Delete(m_text, index, count);
}

unsigned long CUnicodeString::Replace(unsigned short oldChar, unsigned short newChar) {
    std::uint32_t const length = Core::LengthOf(m_text);
    if (length == 0 || oldChar == 0)
        return 0;
    Unit const* hit = Vela::ucschr(m_text, oldChar);
    if (hit == nullptr)
        return 0;
    std::size_t const first = hit - m_text;
    Core::MakePrivate(m_text);
    unsigned long count = 0;
    for (std::size_t i = first; i < length; ++i) {
        if (m_text[i] == oldChar) {
            m_text[i] = newChar;
            ++count;
        }
    }
    return count;
}

unsigned long CUnicodeString::Replace(char oldChar, char newChar) {
    Unit from, to;
    if (!Widen(oldChar, from) || !Widen(newChar, to))
        return 0;
    return Replace(from, to);
}

// Units behind an early terminator (see Set) are carried over as they are.
unsigned long CUnicodeString::Replace(unsigned short const* old,
                                      unsigned short const* replacement) {
    return Core::ReplaceAll(m_text, old, replacement);
}

unsigned long CUnicodeString::Replace(char const* old, char const* replacement) {
    Converted const from(old);
    Converted const to(replacement);
    return Replace(static_cast<Unit const*>(from), static_cast<Unit const*>(to));
}

unsigned long CUnicodeString::Remove(unsigned short c) {
    std::uint32_t const length = Core::LengthOf(m_text);
    if (length == 0 || c == 0)
        return 0;
    Unit const* hit = Vela::ucschr(m_text, c);
    if (hit == nullptr)
        return 0;
    std::size_t w = hit - m_text;
    Core::MakePrivate(m_text);
    for (std::size_t r = w; r < length; ++r)
        if (m_text[r] != c)
            m_text[w++] = m_text[r];
    unsigned long const count = static_cast<unsigned long>(length - w);
    Core::SetTextLength(m_text, w);
    return count;
}

unsigned long CUnicodeString::Remove(char c) {
    Unit unit;
    return Widen(c, unit) ? Remove(unit) : 0;
}

void CUnicodeString::MakeUpper() {
    if (IsEmpty())
        return;
    Core::MakePrivate(m_text);
    Vela::ucsupr(m_text);
}

void CUnicodeString::MakeLower() {
    if (IsEmpty())
        return;
    Core::MakePrivate(m_text);
    Vela::ucslwr(m_text);
}

void CUnicodeString::MakeReverse() {
    if (GetLength() < 2)
        return;
    Core::MakePrivate(m_text);
    Vela::ucsrev(m_text);
}

void CUnicodeString::TrimLeft() {
    TrimText(m_text, nullptr, false);
}
void CUnicodeString::TrimRight() {
    TrimText(m_text, nullptr, true);
}
void CUnicodeString::TrimLeft(unsigned short c) {
    Unit const set[2] = {c, 0};
    TrimText(m_text, set, false);
}
void CUnicodeString::TrimRight(unsigned short c) {
    Unit const set[2] = {c, 0};
    TrimText(m_text, set, true);
}
void CUnicodeString::TrimLeft(char c) {
    Unit unit;
    if (Widen(c, unit))
        TrimLeft(unit);
}
void CUnicodeString::TrimRight(char c) {
    Unit unit;
    if (Widen(c, unit))
        TrimRight(unit);
}
void CUnicodeString::TrimLeft(unsigned short const* set) {
    TrimText(m_text, set == nullptr ? kEmpty : set, false);
}
void CUnicodeString::TrimRight(unsigned short const* set) {
    TrimText(m_text, set == nullptr ? kEmpty : set, true);
}
void CUnicodeString::TrimLeft(char const* set) {
    CUnicodeString const converted(set);
    TrimLeft(static_cast<Unit const*>(converted));
}
void CUnicodeString::TrimRight(char const* set) {
    CUnicodeString const converted(set);
    TrimRight(static_cast<Unit const*>(converted));
}
void CUnicodeString::TrimLeft(CUnicodeString const& set) {
    TrimLeft(static_cast<Unit const*>(set));
}
void CUnicodeString::TrimRight(CUnicodeString const& set) {
    TrimRight(static_cast<Unit const*>(set));
}

void CUnicodeString::Format(unsigned short const* format, ...) {
    va_list args;
    va_start(args, format);
    try {
        FormatV(format, args);
    } catch (...) {
        va_end(args);
        throw;
    }
    va_end(args);
}

// A work buffer the heap cannot supply fails at line 2310 (the first) or 2327 (a
// larger one for another round).
void CUnicodeString::FormatV(unsigned short const* format, va_list args) {
    Core::FormatV(m_text, format, args);
}

CUnicodeString CUnicodeString::FromUTF8(char const* text, long length) {
    CUnicodeString result;
    if (text == nullptr)
        return result;
    std::size_t const n = length < 0 ? std::strlen(text) : static_cast<std::size_t>(length);
    Byte const* const begin = reinterpret_cast<Byte const*>(text);
    Byte const* stop = begin;
    std::uint64_t const units = CountUnits(begin, begin + n, &stop);
    if (units == 0)
        return result;
    result.m_text = Core::NewBuffer(units + 1);
    DecodeUnits(begin, stop, result.m_text);
    Core::SetTextLength(result.m_text, units);
    return result;
}

CString CUnicodeString::ToUTF8() const {
    CString result;
    std::uint32_t const length = Core::LengthOf(m_text);
    if (length == 0)
        return result;
    std::uint64_t const bytes = CountBytes(m_text, m_text + length);
    char* target = result.GetBuffer(static_cast<unsigned long>(bytes));
    std::size_t const written = EncodeBytes(m_text, m_text + length, target, target + bytes);
    result.SetLength(static_cast<unsigned long>(written));
    return result;
}

long CUnicodeString::ToUTF8(char* target, long size) const {
    std::uint32_t const length = Core::LengthOf(m_text);
    if (target == nullptr)
        return static_cast<long>(CountBytes(m_text, m_text + length));
    if (size <= 0)
        return 0;
    std::size_t const written =
        EncodeBytes(m_text, m_text + length, target, target + static_cast<std::size_t>(size));
    if (written < static_cast<std::size_t>(size))
        target[written] = '\0';
    return static_cast<long>(written);
}

// Comparison operators. An empty operand (null, no text, or length 0) sorts before
// every non-empty one and equals another empty one; otherwise unit by unit.
LUMO_STRING_CORE_OPERATORS(Core, CUnicodeString const&, CUnicodeString const&)
LUMO_STRING_CORE_OPERATORS(Core, CUnicodeString const&, unsigned short const*)
LUMO_STRING_CORE_OPERATORS(Core, unsigned short const*, CUnicodeString const&)

CUnicodeString operator+(CUnicodeString const& a, CUnicodeString const& b) {
    return Core::Concat(a, b);
}

CUnicodeString operator+(CUnicodeString const& a, unsigned short const* b) {
    return Core::Concat(a, b);
}

CUnicodeString operator+(unsigned short const* a, CUnicodeString const& b) {
    return Core::ConcatText(a, b);
}

} // namespace base
} // namespace lumo
