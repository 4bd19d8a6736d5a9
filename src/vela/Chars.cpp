// The 8-bit character routines over UTF-8: a strict decoder in which a malformed byte is
// a character of its own, byte-level fast paths (SSE2 where present) and ICU case mapping.
#include <vela/Chars.h>
#include <vela/Ucs.h>

#include "detail/Utf8Codec.h"

#include <unicode/uchar.h>

#include <cstdint>
#include <cstring>
#include <vector>

#if VELA_HAVE_SSE2
#include <emmintrin.h>
#endif

// Character routines over UTF-8 (every character code behaves as code 0).
//
// Decoding is strict (the well-formed sequences of Unicode table 3-7: no overlong
// forms, no encoded surrogates, nothing above U+10FFFF). A byte that does not start a
// well-formed sequence is one character of its own, a "malformed byte"; it compares as
// 0x110000 + its value, so that it sorts after every character and equals only itself.
//
// Two facts make the byte-level fast paths exact:
// - a byte that is not a continuation byte (10xxxxxx) always starts a character, since
//   a well-formed sequence holds only continuation bytes after its lead;
// - a well-formed sequence is recognised from its own bytes alone, so equal bytes decode
//   to equal characters wherever they stand on a character boundary.
namespace Vela {

namespace {

namespace utf8 = detail::utf8;
using Byte = utf8::Byte;

constexpr UChar32 kMalformed = utf8::kMalformed;

inline bool IsCont(Byte b) {
    return utf8::IsContinuation(b);
}

inline Byte const* Bytes(char const* p) {
    return reinterpret_cast<Byte const*>(p);
}

// The length of a text: up to `length` bytes (all of it when negative), and never past
// its first 0 byte; 0 for a null text.
inline long Extent(char const* text, long length) {
    if (text == nullptr)
        return 0;
    return length < 0 ? static_cast<long>(std::strlen(text))
                      : static_cast<long>(strnlen(text, static_cast<std::size_t>(length)));
}

// The character at s[i] (i < n): returns its length in bytes (at least 1) and stores the
// code point, or kMalformed + the byte for a malformed byte, in c.
inline long Decode(Byte const* s, long i, long n, UChar32& c) {
    std::uint32_t value;
    long const length = utf8::DecodeOne(s + i, std::size_t(n - i), value);
    c = UChar32(value);
    return length;
}

// UTF-8 of a code point (no surrogates); returns the length.
inline int Encode(UChar32 c, Byte* out) {
    return utf8::EncodeOne(std::uint32_t(c), out);
}

inline int EncodedLength(UChar32 c) {
    return utf8::EncodedLength(std::uint32_t(c));
}

// ASCII simple case folding (equal to Unicode's for these 128 characters).
inline Byte FoldAscii(Byte b) {
    return b >= 'A' && b <= 'Z' ? Byte(b + 32) : b;
}

inline UChar32 Fold(UChar32 c) {
    return c < kMalformed ? u_foldCase(c, U_FOLD_CASE_DEFAULT) : c;
}

// The (folded, when `fold`) character at s[i]; advances i.
inline UChar32 NextChar(Byte const* s, long& i, long n, bool fold) {
    Byte const b = s[i];
    if (b < 0x80) {
        ++i;
        return fold ? FoldAscii(b) : b;
    }
    UChar32 c;
    i += Decode(s, i, n, c);
    return fold ? Fold(c) : c;
}

// Whether position p of s[0, n) is a character boundary, s[0] being one.
bool IsBoundary(Byte const* s, long p, long n) {
    if (p <= 0 || p >= n || !IsCont(s[p]))
        return true;
    long const lo = p >= 3 ? p - 3 : 0;
    for (long j = p - 1; j >= lo; --j) {
        if (!IsCont(s[j])) {
            UChar32 c;
            return j + Decode(s, j, n, c) <= p;
        }
    }
    return true;
}

// The last character boundary at or before p within s[0, n), s[0] being one.
long FloorBoundary(Byte const* s, long p, long n) {
    if (p >= n)
        return n;
    if (p <= 0 || !IsCont(s[p]))
        return p;
    long const lo = p >= 3 ? p - 3 : 0;
    long k = p;
    for (long j = p - 1; j >= lo; --j) {
        if (!IsCont(s[j])) {
            k = j;
            break;
        }
    }
    while (k < p) {
        UChar32 c;
        long const len = Decode(s, k, n, c);
        if (k + len > p)
            return k;
        k += len;
    }
    return p;
}

// The first index below n where a and b differ, or n.
inline long Mismatch(Byte const* a, Byte const* b, long n) {
    long i = 0;
#if VELA_HAVE_SSE2
    while (i + 16 <= n) {
        __m128i const x = _mm_loadu_si128(reinterpret_cast<__m128i const*>(a + i));
        __m128i const y = _mm_loadu_si128(reinterpret_cast<__m128i const*>(b + i));
        unsigned const equal = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(x, y)));
        if (equal != 0xFFFF)
            return i + __builtin_ctz(~equal);
        i += 16;
    }
#endif
    while (i + 8 <= n) {
        std::uint64_t x, y;
        std::memcpy(&x, a + i, 8);
        std::memcpy(&y, b + i, 8);
        if (x != y)
            break;
        i += 8;
    }
    while (i < n && a[i] == b[i])
        ++i;
    return i;
}

constexpr std::uint64_t kHigh = 0x8080808080808080ull;
constexpr std::uint64_t kOnes = 0x0101010101010101ull;

// Eight ASCII bytes (high bits clear) with 'A'-'Z' folded to 'a'-'z'.
inline std::uint64_t FoldAscii8(std::uint64_t x) {
    std::uint64_t const atLeastA = x + kOnes * (0x80 - 'A');
    std::uint64_t const aboveZ = x + kOnes * (0x80 - 'Z' - 1);
    return x | (((atLeastA & ~aboveZ) & kHigh) >> 2);
}

// Whether s[0, p) holds a 0 byte, scanning only what was not scanned before (`clean`
// is the prefix already known to hold none, updated).
inline bool HasNulBefore(Byte const* s, long p, long& clean) {
    if (p <= clean)
        return false;
    if (std::memchr(s + clean, 0, static_cast<std::size_t>(p - clean)) != nullptr)
        return true;
    clean = p;
    return false;
}

// The first occurrence of the bytes pat[0, m) within s[0, n) (m >= 1), or null.
inline Byte const* FindBytes(Byte const* s, long n, Byte const* pat, long m) {
    if (m > n)
        return nullptr;
    if (m == 1)
        return static_cast<Byte const*>(std::memchr(s, pat[0], static_cast<std::size_t>(n)));
    return static_cast<Byte const*>(
        memmem(s, static_cast<std::size_t>(n), pat, static_cast<std::size_t>(m)));
}

// The last occurrence of the bytes pat[0, m) within s[0, n) (m >= 1), or null.
inline Byte const* FindBytesRight(Byte const* s, long n, Byte const* pat, long m) {
    long limit = n - m + 1; // candidate starts lie below limit
    while (limit > 0) {
        auto const* hit =
            static_cast<Byte const*>(memrchr(s, pat[0], static_cast<std::size_t>(limit)));
        if (hit == nullptr)
            return nullptr;
        if (std::memcmp(hit + 1, pat + 1, static_cast<std::size_t>(m - 1)) == 0)
            return hit;
        limit = hit - s;
    }
    return nullptr;
}

// The byte pattern a search for `ch` looks for: a raw byte for 0xFF80-0xFFFF, the
// character's UTF-8 otherwise. Returns its length; 0 when nothing can match (the
// terminator, a surrogate).
inline int SearchPattern(unsigned short ch, Byte* pat) {
    if (ch >= 0xFF80) {
        pat[0] = Byte(ch & 0xFF);
        return 1;
    }
    if (ch == 0 || (ch >= 0xD800 && ch <= 0xDFFF))
        return 0;
    return Encode(ch, pat);
}

// Drops a trailing sequence of s[0, n) that the cut at n left incomplete: a lead byte
// followed by fewer continuation bytes than it needs, all of them fitting it.
long DropIncomplete(Byte const* s, long n) {
    long const lo = n >= 3 ? n - 3 : 0;
    for (long j = n - 1; j >= lo; --j) {
        Byte const b = s[j];
        if (IsCont(b))
            continue;
        if (utf8::StrictLength(b) <= n - j)
            return n;
        if (j + 1 < n && (s[j + 1] < utf8::SecondLow(b) || s[j + 1] > utf8::SecondHigh(b)))
            return n;
        return j;
    }
    return n;
}

} // namespace

int CHCompareTexts(char const* a, long lengthA, char const* b, long lengthB, int caseType, int) {
    long const la = Extent(a, lengthA);
    long const lb = Extent(b, lengthB);
    Byte const* const sa = Bytes(a);
    Byte const* const sb = Bytes(b);
    bool const fold = caseType == CH_CASE_INSENSITIVE;

    // Equal leading bytes decode alike: skip them, then step back to the start of the
    // character in which the texts first differ.
    long const n = la < lb ? la : lb;
    long const m = n == 0 ? 0 : Mismatch(sa, sb, n);
    if (m == n && la == lb)
        return 0;
    long k = m;
    for (long j = m - 1; j >= 0 && j >= m - 3; --j) {
        if (!IsCont(sa[j])) {
            k = j;
            break;
        }
    }

    long ia = k, ib = k;
    while (ia < la && ib < lb) {
#if VELA_HAVE_SSE2
        if (fold && ia + 16 <= la && ib + 16 <= lb) {
            // Sixteen ASCII bytes a side at a time.
            __m128i const x = _mm_loadu_si128(reinterpret_cast<__m128i const*>(sa + ia));
            __m128i const y = _mm_loadu_si128(reinterpret_cast<__m128i const*>(sb + ib));
            if (_mm_movemask_epi8(_mm_or_si128(x, y)) == 0) {
                __m128i const before = _mm_set1_epi8('A' - 1), after = _mm_set1_epi8('Z' + 1);
                __m128i const bit = _mm_set1_epi8(0x20);
                __m128i const fx =
                    _mm_or_si128(x, _mm_and_si128(_mm_and_si128(_mm_cmpgt_epi8(x, before),
                                                                _mm_cmpgt_epi8(after, x)),
                                                  bit));
                __m128i const fy =
                    _mm_or_si128(y, _mm_and_si128(_mm_and_si128(_mm_cmpgt_epi8(y, before),
                                                                _mm_cmpgt_epi8(after, y)),
                                                  bit));
                if (_mm_movemask_epi8(_mm_cmpeq_epi8(fx, fy)) == 0xFFFF) {
                    ia += 16;
                    ib += 16;
                    continue;
                }
            }
        }
#endif
        if (fold && ia + 8 <= la && ib + 8 <= lb) {
            // Eight ASCII bytes a side at a time.
            std::uint64_t wa, wb;
            std::memcpy(&wa, sa + ia, 8);
            std::memcpy(&wb, sb + ib, 8);
            if (((wa | wb) & kHigh) == 0 && FoldAscii8(wa) == FoldAscii8(wb)) {
                ia += 8;
                ib += 8;
                continue;
            }
        }
        Byte x = sa[ia], y = sb[ib];
        if ((x | y) < 0x80) {
            if (x != y && fold) {
                x = FoldAscii(x);
                y = FoldAscii(y);
            }
            if (x != y)
                return x < y ? -1 : 1;
            ++ia;
            ++ib;
            continue;
        }
        UChar32 const ca = NextChar(sa, ia, la, fold);
        UChar32 const cb = NextChar(sb, ib, lb, fold);
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    if (ia < la)
        return 1;
    if (ib < lb)
        return -1;
    return 0;
}

char const* CHSearchCharLeft(char const* text, long length, unsigned short ch, int) {
    if (text == nullptr || length == 0)
        return nullptr;
    Byte pat[4];
    int const m = SearchPattern(ch, pat);
    if (m == 0)
        return nullptr;
    if (length < 0) {
        if (m == 1)
            return std::strchr(text, pat[0]);
        pat[m] = 0;
        return std::strstr(text, reinterpret_cast<char const*>(pat));
    }
    Byte const* const s = Bytes(text);
    Byte const* hit = FindBytes(s, length, pat, m);
    long clean = 0;
    if (hit == nullptr || HasNulBefore(s, hit - s, clean))
        return nullptr;
    return reinterpret_cast<char const*>(hit);
}

char const* CHSearchCharRight(char const* text, long length, unsigned short ch, int) {
    long const n = Extent(text, length);
    Byte pat[4];
    int const m = SearchPattern(ch, pat);
    if (n == 0 || m == 0)
        return nullptr;
    return reinterpret_cast<char const*>(FindBytesRight(Bytes(text), n, pat, m));
}

char const* CHSearchSubstring(char const* text, long length, char const* pattern,
                              long patternLength, int caseType, int) {
    if (text == nullptr)
        return nullptr;
    long const m = Extent(pattern, patternLength);
    if (m == 0)
        return text;
    Byte const* const s = Bytes(text);
    Byte const* const pat = Bytes(pattern);
    long const n = length < 0 ? static_cast<long>(std::strlen(text)) : length;

    if (caseType != CH_CASE_INSENSITIVE) {
        if (m > n)
            return nullptr;
        // A byte match is a character match when it starts on a boundary and, if the
        // pattern ends in an incomplete sequence (malformed bytes of its own), the text
        // holds no longer character there.
        long const tail = DropIncomplete(pat, m);
        bool const checkTail = tail < m;
        long clean = 0;
        long from = 0;
        while (from + m <= n) {
            Byte const* hit = FindBytes(s + from, n - from, pat, m);
            if (hit == nullptr)
                return nullptr;
            long const p = hit - s;
            if (HasNulBefore(s, p, clean))
                return nullptr;
            UChar32 c;
            if (IsBoundary(s, p, n) && (!checkTail || Decode(s, p + tail, n, c) == 1))
                return text + p;
            from = p + 1;
        }
        return nullptr;
    }

    // Without case: compare folded characters at every boundary whose first character
    // matches the pattern's first. The pattern is folded once.
    UChar32 small[32];
    std::vector<UChar32> large;
    UChar32* folded = small;
    if (m > long(sizeof small / sizeof *small)) {
        large.resize(static_cast<std::size_t>(m));
        folded = large.data();
    }
    long count = 0;
    for (long pi = 0; pi < m;)
        folded[count++] = NextChar(pat, pi, m, true);
    UChar32 const first = folded[0];
    long i = 0;
    while (i < n) {
        Byte const b = s[i];
        if (b < 0x80) {
            if (b == 0)
                return nullptr;
            if (FoldAscii(b) != first) {
                ++i;
                continue;
            }
        }
        long const start = i;
        if (NextChar(s, i, n, true) != first)
            continue;
        long ti = i;
        long k = 1;
        while (k < count && ti < n && s[ti] != 0 && NextChar(s, ti, n, true) == folded[k])
            ++k;
        if (k == count)
            return text + start;
    }
    return nullptr;
}

char const* CHGetNextCharPtr(char const* p, int) {
    if (p == nullptr || *p == '\0')
        return p;
    Byte const* const s = Bytes(p);
    if (s[0] < 0x80)
        return p + 1;
    // The decoder reads no further than a byte that fails to continue the sequence, so
    // it never passes the terminator.
    UChar32 c;
    return p + Decode(s, 0, 4, c);
}

namespace {

// Case mapping in place; `upper` picks the direction.
long MapCase(char* text, long length, bool upper) {
    long const n = Extent(text, length);
    auto* const s = reinterpret_cast<Byte*>(text);
    long r = 0, w = 0;
    while (r < n) {
        Byte const b = s[r];
        if (b < 0x80) {
            if (upper ? (b >= 'a' && b <= 'z') : (b >= 'A' && b <= 'Z'))
                s[w] = Byte(b ^ 0x20);
            else if (w != r)
                s[w] = b;
            ++r;
            ++w;
            continue;
        }
        UChar32 c;
        long const len = Decode(s, r, n, c);
        if (c < kMalformed) {
            UChar32 const mapped = upper ? u_toupper(c) : u_tolower(c);
            if (mapped != c && EncodedLength(mapped) <= len) {
                w += Encode(mapped, s + w);
                r += len;
                continue;
            }
        }
        if (w != r)
            std::memmove(s + w, s + r, static_cast<std::size_t>(len));
        r += len;
        w += len;
    }
    if (w < r)
        s[w] = 0;
    return w;
}

// Copies source[0, n) into target, cut at a character boundary to fit.
long CopyWhole(char* target, long targetSize, char const* source, long n) {
    long const room = targetSize - 1;
    long count = n;
    if (n > room)
        count = FloorBoundary(Bytes(source), room, n);
    if (count > 0)
        std::memmove(target, source, static_cast<std::size_t>(count));
    target[count] = '\0';
    return count;
}

} // namespace

long CHtoUpper(char* text, long length, int) {
    return MapCase(text, length, true);
}

long CHtoLower(char* text, long length, int) {
    return MapCase(text, length, false);
}

long CHCopyC(char* target, long targetSize, char const* source, int) {
    if (target == nullptr || targetSize <= 0)
        return 0;
    // Enough bytes past the cut to decode the character it falls in.
    return CopyWhole(target, targetSize, source, Extent(source, targetSize + 3));
}

long CHTruncate(char* target, long targetSize, char const* source, long maxLength, int) {
    if (target == nullptr || targetSize <= 0)
        return 0;
    if (maxLength < 0)
        return CopyWhole(target, targetSize, source, Extent(source, targetSize + 3));
    // Only maxLength bytes of source are read; a character they cut is left out.
    long n = Extent(source, maxLength);
    if (n == maxLength)
        n = DropIncomplete(Bytes(source), n);
    return CopyWhole(target, targetSize, source, n);
}

long CHUnicode2ANSI(unsigned short const* text, long length, char* target, long targetSize, int,
                    void*) {
    if (text == nullptr)
        length = 0;
    else if (length < 0)
        length = long(ucslen(text));
    // A 0 unit ends the text.
    unsigned short const* const end = utf8::FindZero(text, text + length);
    if (target == nullptr)
        return long(utf8::CountBytes<utf8::Question>(text, end));
    if (targetSize <= 0)
        return 0;
    utf8::Question policy;
    auto* const out = reinterpret_cast<Byte*>(target);
    long const written = long(utf8::Encode(text, end, out, out + (targetSize - 1), policy).bytes);
    out[written] = 0;
    return written;
}

long CHANSI2Unicode(char const* text, long length, unsigned short* target, long targetSize, int,
                    void*) {
    long const n = Extent(text, length);
    Byte const* const s = Bytes(text);
    if (target == nullptr) {
        Byte const* stop;
        return n == 0 ? 0 : long(utf8::Count<utf8::StrictStop>(s, s + n, &stop));
    }
    if (targetSize <= 0)
        return 0;
    long const written =
        n == 0 ? 0
               : long(utf8::Decode<utf8::StrictStop>(s, s + n, target, std::size_t(targetSize - 1))
                          .units);
    target[written] = 0;
    return written;
}

} // namespace Vela
