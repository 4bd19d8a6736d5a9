// The UTF-16 string routines (ucslen, ucscmp, ucsicmp, ucsstr, case mapping, ...) and
// EOL; case folding and classification come from ICU.
#include <vela/Ucs.h>

#include "detail/Utf8Codec.h"

#include <unicode/uchar.h>

#include <cstdint>

namespace Vela {

char const EOL[] = "\n";

namespace {

using Unit = unsigned short;

Unit const kEmpty[1] = {0};

inline Unit const* OrEmpty(Unit const* s) {
    return s == nullptr ? kEmpty : s;
}

inline bool IsLead(unsigned u) {
    return u >= 0xD800 && u <= 0xDBFF;
}
inline bool IsTrail(unsigned u) {
    return u >= 0xDC00 && u <= 0xDFFF;
}

// The code point at s[i], stepping over a surrogate pair that lies wholly before
// `limit`; an unpaired surrogate stands for itself. Advances i.
inline UChar32 NextPoint(Unit const* s, unsigned long& i, unsigned long limit) {
    unsigned const u = s[i++];
    if (IsLead(u) && i < limit && IsTrail(s[i]))
        return 0x10000 + ((UChar32(u) - 0xD800) << 10) + (s[i++] - 0xDC00);
    return static_cast<UChar32>(u);
}

inline UChar32 FoldPoint(UChar32 c) {
    if (c < 0x80)
        return c >= 'A' && c <= 'Z' ? c + 32 : c;
    return u_foldCase(c, U_FOLD_CASE_DEFAULT);
}

// The UTF-16 order of two code points (what comparing their units gives).
inline int UnitOrder(UChar32 a, UChar32 b) {
    auto key = [](UChar32 c) -> std::uint32_t {
        if (c < 0x10000)
            return std::uint32_t(c) << 16;
        return ((0xD800u + ((c - 0x10000) >> 10)) << 16) | (0xDC00u + ((c - 0x10000) & 0x3FF));
    };
    std::uint32_t const ka = key(a), kb = key(b);
    return ka < kb ? -1 : ka > kb ? 1 : 0;
}

// Compares at most n units of each text after simple case folding.
int CompareFolded(Unit const* a, Unit const* b, unsigned long n) {
    a = OrEmpty(a);
    b = OrEmpty(b);
    unsigned long ia = 0, ib = 0;
    while (ia < n && ib < n) {
        unsigned const x = a[ia], y = b[ib];
        if ((x | y) < 0x80) {
            if (x != y) {
                unsigned const fx = x >= 'A' && x <= 'Z' ? x + 32 : x;
                unsigned const fy = y >= 'A' && y <= 'Z' ? y + 32 : y;
                if (fx != fy)
                    return fx < fy ? -1 : 1;
            } else if (x == 0) {
                return 0;
            }
            ++ia;
            ++ib;
            continue;
        }
        UChar32 const ca = FoldPoint(NextPoint(a, ia, n));
        UChar32 const cb = FoldPoint(NextPoint(b, ib, n));
        if (ca != cb)
            return UnitOrder(ca, cb);
        if (ca == 0)
            return 0;
    }
    // One side reached n units first (a pair folded to a single unit or the like): the
    // other side's remaining units within n decide.
    if (ia < n && a[ia] != 0)
        return 1;
    if (ib < n && b[ib] != 0)
        return -1;
    return 0;
}

template <typename Map> Unit* MapUnits(Unit* s, Map map) {
    if (s == nullptr)
        return s;
    for (Unit* p = s; *p != 0; ++p) {
        unsigned const u = *p;
        if (u < 0x80) {
            *p = static_cast<Unit>(map.Ascii(u));
        } else if (u < 0xD800 || u > 0xDFFF) {
            UChar32 const m = map.Other(static_cast<UChar32>(u));
            if (m < 0x10000)
                *p = static_cast<Unit>(m);
        }
    }
    return s;
}

struct Upper {
    unsigned Ascii(unsigned u) const { return u >= 'a' && u <= 'z' ? u - 32 : u; }
    UChar32 Other(UChar32 c) const { return u_toupper(c); }
};

struct Lower {
    unsigned Ascii(unsigned u) const { return u >= 'A' && u <= 'Z' ? u + 32 : u; }
    UChar32 Other(UChar32 c) const { return u_tolower(c); }
};

} // namespace

unsigned long ucslen(unsigned short const* s) {
    if (s == nullptr)
        return 0;
    return static_cast<unsigned long>(detail::utf8::FindZero<false>(s, nullptr) - s);
}

int ucscmp(unsigned short const* a, unsigned short const* b) {
    a = OrEmpty(a);
    b = OrEmpty(b);
    while (*a != 0 && *a == *b) {
        ++a;
        ++b;
    }
    return *a < *b ? -1 : *a > *b ? 1 : 0;
}

int ucsncmp(unsigned short const* a, unsigned short const* b, unsigned long n) {
    a = OrEmpty(a);
    b = OrEmpty(b);
    for (unsigned long i = 0; i < n; ++i) {
        if (a[i] != b[i])
            return a[i] < b[i] ? -1 : 1;
        if (a[i] == 0)
            break;
    }
    return 0;
}

int ucsicmp(unsigned short const* a, unsigned short const* b) {
    return CompareFolded(a, b, ~0ul);
}

int ucsnicmp(unsigned short const* a, unsigned short const* b, unsigned long n) {
    return CompareFolded(a, b, n);
}

unsigned short const* ucschr(unsigned short const* s, unsigned short c) {
    if (s == nullptr)
        return nullptr;
    for (;; ++s) {
        if (*s == c)
            return s;
        if (*s == 0)
            return nullptr;
    }
}

unsigned short const* ucsrchr(unsigned short const* s, unsigned short c) {
    if (s == nullptr)
        return nullptr;
    unsigned short const* found = nullptr;
    for (;; ++s) {
        if (*s == c)
            found = s;
        if (*s == 0)
            return found;
    }
}

unsigned short const* ucsstr(unsigned short const* s, unsigned short const* sub) {
    if (s == nullptr)
        return nullptr;
    if (sub == nullptr || *sub == 0)
        return s;
    unsigned short const first = *sub;
    for (; *s != 0; ++s) {
        if (*s != first)
            continue;
        unsigned long k = 1;
        while (sub[k] != 0 && s[k] == sub[k])
            ++k;
        if (sub[k] == 0)
            return s;
        // s[k] == 0 (the text ran out): no later match either.
        if (s[k] == 0)
            return nullptr;
    }
    return nullptr;
}

unsigned short* ucsupr(unsigned short* s) {
    return MapUnits(s, Upper());
}

unsigned short* ucslwr(unsigned short* s) {
    return MapUnits(s, Lower());
}

unsigned short* ucsrev(unsigned short* s) {
    if (s == nullptr)
        return s;
    unsigned short* p = s;
    unsigned short* q = s + ucslen(s);
    while (q - p > 1) {
        --q;
        unsigned short const t = *p;
        *p = *q;
        *q = t;
        ++p;
    }
    return s;
}

bool isuspace(unsigned short c) {
    if (c < 0x80)
        return c == ' ' || (c >= '\t' && c <= '\r');
    return u_isUWhiteSpace(c) != 0;
}

bool isudigit(unsigned short c) {
    if (c < 0x80)
        return c >= '0' && c <= '9';
    if (c >= 0xD800 && c <= 0xDFFF)
        return false;
    return u_isdigit(c) != 0;
}

} // namespace Vela
