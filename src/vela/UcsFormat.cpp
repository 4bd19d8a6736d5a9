// snuprintf, vsnuprintf and suscanf: printf and scanf over UTF-16 text. Numbers go through
// the C library via a small ASCII buffer; text arguments are copied or converted here.
#include <vela/Ucs.h>

#include "detail/Utf8Codec.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

// printf and scanf over UTF-16 text. Numbers go through the C library (formatted into,
// or parsed from, a small ASCII buffer); text arguments are copied or converted here.
namespace Vela {

namespace {

namespace utf8 = detail::utf8;
using Unit = unsigned short;
using Byte = utf8::Byte;

enum Length { kNone, kHH, kH, kL, kLL, kZ, kJ, kT, kBigL };

// ---------------------------------------------------------------------------------------
// Output

// Collects output into the caller's buffer, counting everything, storing what fits.
class Output {
public:
    Output(Unit* buffer, unsigned long count) : m_buffer(buffer), m_room(count - 1) {}

    void Put(Unit u) {
        if (m_length < m_room)
            m_buffer[m_length] = u;
        ++m_length;
    }
    void Put(Unit const* s, unsigned long n) {
        // An empty 8-bit text arrives as an empty vector's data(), which may be null.
        if (n == 0)
            return;
        if (m_length < m_room) {
            unsigned long const k = n < m_room - m_length ? n : m_room - m_length;
            std::memcpy(m_buffer + m_length, s, k * sizeof(Unit));
        }
        m_length += n;
    }
    void PutAscii(char const* s, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i)
            Put(static_cast<Unit>(static_cast<unsigned char>(s[i])));
    }
    void Pad(unsigned long n, Unit u) {
        for (; n > 0; --n)
            Put(u);
    }

    int Finish() {
        if (m_length <= m_room) {
            m_buffer[m_length] = 0;
            return static_cast<int>(m_length);
        }
        // Cut short: keep what fitted, but not the first half of a surrogate pair.
        unsigned long end = m_room;
        if (end > 0 && m_buffer[end - 1] >= 0xD800 && m_buffer[end - 1] <= 0xDBFF)
            --end;
        m_buffer[end] = 0;
        return -1;
    }

private:
    Unit* m_buffer;
    unsigned long m_room;
    unsigned long m_length = 0;
};

struct Spec {
    bool left = false, plus = false, space = false, alt = false, zero = false;
    long width = 0;
    long precision = -1;
    Length length = kNone;
};

// Writes `n` units of s (or the UTF-8 text converted) padded to the width.
void PutPadded(Output& out, Spec const& spec, Unit const* s, unsigned long n) {
    unsigned long const pad =
        spec.width > 0 && static_cast<unsigned long>(spec.width) > n ? spec.width - n : 0;
    if (!spec.left)
        out.Pad(pad, ' ');
    out.Put(s, n);
    if (spec.left)
        out.Pad(pad, ' ');
}

// UTF-8 to UTF-16, malformed bytes becoming U+FFFD; at most `limit` units, never
// splitting a surrogate pair.
std::vector<Unit> FromUtf8(char const* s, unsigned long limit) {
    // A unit takes at most 3 bytes, so 3 more than 3 per unit always hold the
    // character the limit falls in; only that much of the text is read.
    std::size_t const bytes =
        limit > (~std::size_t(0) - 3) / 3 ? std::strlen(s) : strnlen(s, 3 * limit + 3);
    // Each byte gives at most one unit.
    std::vector<Unit> out(bytes < limit ? bytes : limit);
    Byte const* const p = utf8::Bytes(s);
    out.resize(utf8::Decode<utf8::StrictReplace>(p, p + bytes, out.data(), out.size()).units);
    return out;
}

// Formats one number with the C library and widens it.
template <typename T>
void PutNumber(Output& out, Spec const& spec, char const* length, char conversion, T value) {
    char format[32];
    char* f = format;
    *f++ = '%';
    if (spec.left)
        *f++ = '-';
    if (spec.plus)
        *f++ = '+';
    if (spec.space)
        *f++ = ' ';
    if (spec.alt)
        *f++ = '#';
    if (spec.zero)
        *f++ = '0';
    *f++ = '*';
    bool const precise = spec.precision >= 0;
    if (precise) {
        *f++ = '.';
        *f++ = '*';
    }
    while (*length != 0)
        *f++ = *length++;
    *f++ = conversion;
    *f = 0;
    int const width = static_cast<int>(spec.width);
    int const precision = static_cast<int>(spec.precision);
    auto print = [&](char* target, std::size_t size) {
        return precise ? std::snprintf(target, size, format, width, precision, value)
                       : std::snprintf(target, size, format, width, value);
    };
    char small[128];
    int const n = print(small, sizeof small);
    if (n < 0)
        return;
    if (static_cast<std::size_t>(n) < sizeof small) {
        out.PutAscii(small, static_cast<std::size_t>(n));
        return;
    }
    std::string big(static_cast<std::size_t>(n) + 1, '\0');
    print(&big[0], big.size());
    out.PutAscii(big.data(), static_cast<std::size_t>(n));
}

long long SignedArgument(Length length, va_list& args) {
    switch (length) {
    case kHH:
        return static_cast<signed char>(va_arg(args, int));
    case kH:
        return static_cast<short>(va_arg(args, int));
    case kL:
        return va_arg(args, long);
    case kLL:
        return va_arg(args, long long);
    case kZ:
        return static_cast<long long>(va_arg(args, std::ptrdiff_t)); // ssize_t
    case kJ:
        return static_cast<long long>(va_arg(args, std::intmax_t));
    case kT:
        return static_cast<long long>(va_arg(args, std::ptrdiff_t));
    default:
        return va_arg(args, int);
    }
}

unsigned long long UnsignedArgument(Length length, va_list& args) {
    switch (length) {
    case kHH:
        return static_cast<unsigned char>(va_arg(args, unsigned));
    case kH:
        return static_cast<unsigned short>(va_arg(args, unsigned));
    case kL:
        return va_arg(args, unsigned long);
    case kLL:
        return va_arg(args, unsigned long long);
    case kZ:
        return va_arg(args, std::size_t);
    case kJ:
        return static_cast<unsigned long long>(va_arg(args, std::uintmax_t));
    case kT:
        return static_cast<unsigned long long>(va_arg(args, std::ptrdiff_t));
    default:
        return va_arg(args, unsigned);
    }
}

Unit const kNull[] = {'(', 'n', 'u', 'l', 'l', ')', 0};

int Format(Unit* buffer, unsigned long count, Unit const* format, va_list& args) {
    Output out(buffer, count);
    Unit const* p = format;
    while (*p != 0) {
        if (*p != '%') {
            Unit const* q = p;
            while (*q != 0 && *q != '%')
                ++q;
            out.Put(p, static_cast<unsigned long>(q - p));
            p = q;
            continue;
        }
        Unit const* const start = p++;
        Spec spec;
        for (;; ++p) {
            if (*p == '-')
                spec.left = true;
            else if (*p == '+')
                spec.plus = true;
            else if (*p == ' ')
                spec.space = true;
            else if (*p == '#')
                spec.alt = true;
            else if (*p == '0')
                spec.zero = true;
            else
                break;
        }
        if (*p == '*') {
            int const w = va_arg(args, int);
            if (w < 0) {
                spec.left = true;
                spec.width = -static_cast<long>(w);
            } else {
                spec.width = w;
            }
            ++p;
        } else {
            while (*p >= '0' && *p <= '9') {
                if (spec.width < 100000000)
                    spec.width = spec.width * 10 + (*p - '0');
                ++p;
            }
        }
        if (*p == '.') {
            ++p;
            if (*p == '*') {
                int const v = va_arg(args, int);
                spec.precision = v < 0 ? -1 : v;
                ++p;
            } else {
                spec.precision = 0;
                while (*p >= '0' && *p <= '9') {
                    if (spec.precision < 100000000)
                        spec.precision = spec.precision * 10 + (*p - '0');
                    ++p;
                }
            }
        }
        switch (*p) {
        case 'h':
            spec.length = p[1] == 'h' ? kHH : kH;
            p += spec.length == kHH ? 2 : 1;
            break;
        case 'l':
            spec.length = p[1] == 'l' ? kLL : kL;
            p += spec.length == kLL ? 2 : 1;
            break;
        case 'q':
            spec.length = kLL;
            ++p;
            break;
        case 'z':
            spec.length = kZ;
            ++p;
            break;
        case 'j':
            spec.length = kJ;
            ++p;
            break;
        case 't':
            spec.length = kT;
            ++p;
            break;
        case 'L':
            spec.length = kBigL;
            ++p;
            break;
        default:
            break;
        }
        Unit const conversion = *p;
        if (conversion == 0) {
            // A specification cut by the end of the format is copied as it stands.
            out.Put(start, static_cast<unsigned long>(p - start));
            break;
        }
        ++p;
        switch (conversion) {
        case 'd':
        case 'i':
            PutNumber(out, spec, "ll", char(conversion), SignedArgument(spec.length, args));
            break;
        case 'u':
        case 'o':
        case 'x':
        case 'X':
            PutNumber(out, spec, "ll", char(conversion), UnsignedArgument(spec.length, args));
            break;
        case 'f':
        case 'F':
        case 'e':
        case 'E':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            if (spec.length == kBigL)
                PutNumber(out, spec, "L", char(conversion), va_arg(args, long double));
            else
                PutNumber(out, spec, "", char(conversion), va_arg(args, double));
            break;
        case 'p': {
            Spec plain = spec;
            plain.precision = -1;
            plain.zero = false;
            PutNumber(out, plain, "", 'p', va_arg(args, void*));
            break;
        }
        case 'c':
        case 'C': {
            Unit u;
            if (spec.length == kH) {
                unsigned char const b = static_cast<unsigned char>(va_arg(args, int));
                u = b < 0x80 ? b : 0xFFFD;
            } else {
                u = static_cast<Unit>(va_arg(args, int));
            }
            PutPadded(out, spec, &u, 1);
            break;
        }
        case 's':
        case 'S': {
            unsigned long const limit =
                spec.precision < 0 ? ~0ul : static_cast<unsigned long>(spec.precision);
            if (spec.length == kH) {
                char const* s = va_arg(args, char const*);
                if (s == nullptr) {
                    unsigned long const n = limit < 6 ? limit : 6;
                    PutPadded(out, spec, kNull, n);
                } else {
                    std::vector<Unit> const wide = FromUtf8(s, limit);
                    PutPadded(out, spec, wide.data(), static_cast<unsigned long>(wide.size()));
                }
            } else {
                Unit const* s = va_arg(args, Unit const*);
                if (s == nullptr)
                    s = kNull;
                unsigned long n = 0;
                while (n < limit && s[n] != 0)
                    ++n;
                PutPadded(out, spec, s, n);
            }
            break;
        }
        case '%':
            out.Put('%');
            break;
        case 'n':
            // Refused: the pointer is taken and nothing is stored.
            (void)va_arg(args, void*);
            break;
        default:
            // Unknown conversions are copied as they stand.
            out.Put(start, static_cast<unsigned long>(p - start));
            break;
        }
    }
    return out.Finish();
}

// ---------------------------------------------------------------------------------------
// Input

bool IsSpace(Unit u) {
    return isuspace(u);
}

// Characters that may belong to a number token (a superset of what strto* accepts).
bool IsNumberChar(Unit u) {
    return (u >= '0' && u <= '9') || (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || u == '+' ||
           u == '-' || u == '.';
}

// The scanset of a %[ specification: ranges of units, possibly negated.
class ScanSet {
public:
    // Parses from p (just past '['); returns the position past ']' or null if unclosed.
    Unit const* Parse(Unit const* p) {
        if (*p == '^') {
            m_negate = true;
            ++p;
        }
        m_begin = p;
        if (*p == ']')
            ++p;
        while (*p != 0 && *p != ']')
            ++p;
        if (*p == 0)
            return nullptr;
        m_end = p;
        return p + 1;
    }

    bool Contains(Unit u) const {
        bool in = false;
        for (Unit const* q = m_begin; q < m_end; ++q) {
            if (q + 2 < m_end && q[1] == '-') {
                if (u >= q[0] && u <= q[2])
                    in = true;
                q += 2;
            } else if (*q == u) {
                in = true;
            }
            if (in)
                break;
        }
        return in != m_negate;
    }

private:
    bool m_negate = false;
    Unit const* m_begin = nullptr;
    Unit const* m_end = nullptr;
};

void AppendUtf8(std::string& out, Unit const* s, unsigned long n) {
    std::size_t const start = out.size();
    out.resize(start + utf8::CountBytes<utf8::Question>(s, s + n));
    utf8::Question policy;
    auto* const target = reinterpret_cast<Byte*>(&out[0]);
    utf8::Encode(s, s + n, target + start, target + out.size(), policy);
}

// Stores a run of units [s, s + n) for %s, %c and %[: UTF-16 by default, UTF-8 with h.
void StoreText(Length length, va_list& args, Unit const* s, unsigned long n, bool terminate) {
    if (length == kH) {
        char* target = va_arg(args, char*);
        std::string bytes;
        AppendUtf8(bytes, s, n);
        std::memcpy(target, bytes.data(), bytes.size());
        if (terminate)
            target[bytes.size()] = 0;
    } else {
        Unit* target = va_arg(args, Unit*);
        std::memcpy(target, s, n * sizeof(Unit));
        if (terminate)
            target[n] = 0;
    }
}

void StoreSigned(Length length, va_list& args, long long v) {
    switch (length) {
    case kHH:
        *va_arg(args, signed char*) = static_cast<signed char>(v);
        break;
    case kH:
        *va_arg(args, short*) = static_cast<short>(v);
        break;
    case kL:
        *va_arg(args, long*) = static_cast<long>(v);
        break;
    case kLL:
        *va_arg(args, long long*) = v;
        break;
    case kZ:
        *va_arg(args, std::size_t*) = static_cast<std::size_t>(v);
        break;
    case kJ:
        *va_arg(args, std::intmax_t*) = static_cast<std::intmax_t>(v);
        break;
    case kT:
        *va_arg(args, std::ptrdiff_t*) = static_cast<std::ptrdiff_t>(v);
        break;
    default:
        *va_arg(args, int*) = static_cast<int>(v);
        break;
    }
}

void StoreUnsigned(Length length, va_list& args, unsigned long long v) {
    switch (length) {
    case kHH:
        *va_arg(args, unsigned char*) = static_cast<unsigned char>(v);
        break;
    case kH:
        *va_arg(args, unsigned short*) = static_cast<unsigned short>(v);
        break;
    case kL:
        *va_arg(args, unsigned long*) = static_cast<unsigned long>(v);
        break;
    case kLL:
        *va_arg(args, unsigned long long*) = v;
        break;
    case kZ:
        *va_arg(args, std::size_t*) = static_cast<std::size_t>(v);
        break;
    case kJ:
        *va_arg(args, std::uintmax_t*) = static_cast<std::uintmax_t>(v);
        break;
    case kT:
        *va_arg(args, std::ptrdiff_t*) = static_cast<std::ptrdiff_t>(v);
        break;
    default:
        *va_arg(args, unsigned*) = static_cast<unsigned>(v);
        break;
    }
}

int Scan(Unit const* text, Unit const* format, va_list& args) {
    Unit const* in = text;
    Unit const* f = format;
    int assigned = 0;
    bool converted = false; // a conversion was reached with input left
    auto inputFailure = [&]() { return converted ? assigned : -1; };

    while (*f != 0) {
        if (IsSpace(*f)) {
            while (IsSpace(*f))
                ++f;
            while (IsSpace(*in))
                ++in;
            continue;
        }
        if (*f != '%' || f[1] == '%') {
            if (*f == '%') {
                ++f; // "%%": a literal '%' after optional white space
                while (IsSpace(*in))
                    ++in;
            }
            if (*in == 0)
                return inputFailure();
            if (*in != *f)
                return assigned;
            ++in;
            ++f;
            continue;
        }
        ++f;
        bool suppress = false;
        if (*f == '*') {
            suppress = true;
            ++f;
        }
        unsigned long width = 0;
        while (*f >= '0' && *f <= '9') {
            if (width < 100000000)
                width = width * 10 + (*f - '0');
            ++f;
        }
        Length length = kNone;
        switch (*f) {
        case 'h':
            length = f[1] == 'h' ? kHH : kH;
            f += length == kHH ? 2 : 1;
            break;
        case 'l':
            length = f[1] == 'l' ? kLL : kL;
            f += length == kLL ? 2 : 1;
            break;
        case 'q':
            length = kLL;
            ++f;
            break;
        case 'z':
            length = kZ;
            ++f;
            break;
        case 'j':
            length = kJ;
            ++f;
            break;
        case 't':
            length = kT;
            ++f;
            break;
        case 'L':
            length = kBigL;
            ++f;
            break;
        default:
            break;
        }
        Unit const conversion = *f;
        if (conversion == 0)
            return assigned;
        ++f;

        if (conversion == 'n') {
            if (!suppress)
                StoreSigned(length, args, static_cast<long long>(in - text));
            continue;
        }
        if (conversion != 'c' && conversion != '[') {
            while (IsSpace(*in))
                ++in;
        }
        if (*in == 0)
            return inputFailure();
        converted = true;

        switch (conversion) {
        case 'd':
        case 'i':
        case 'u':
        case 'o':
        case 'x':
        case 'X':
        case 'f':
        case 'F':
        case 'e':
        case 'E':
        case 'g':
        case 'G':
        case 'a':
        case 'A': {
            // The token's characters, narrowed, then parsed by the C library.
            unsigned long const limit = width == 0 ? ~0ul : width;
            std::string token;
            char small[64];
            unsigned long n = 0;
            while (n < limit && IsNumberChar(in[n]))
                ++n;
            char* narrow = small;
            if (n >= sizeof small) {
                token.resize(n + 1);
                narrow = &token[0];
            }
            for (unsigned long i = 0; i < n; ++i)
                narrow[i] = static_cast<char>(in[i]);
            narrow[n] = 0;
            char* end = narrow;
            errno = 0;
            bool const floating = conversion == 'f' || conversion == 'F' || conversion == 'e' ||
                                  conversion == 'E' || conversion == 'g' || conversion == 'G' ||
                                  conversion == 'a' || conversion == 'A';
            if (floating) {
                if (length == kBigL) {
                    long double const v = std::strtold(narrow, &end);
                    if (end != narrow && !suppress)
                        *va_arg(args, long double*) = v;
                } else if (length == kL) {
                    double const v = std::strtod(narrow, &end);
                    if (end != narrow && !suppress)
                        *va_arg(args, double*) = v;
                } else {
                    float const v = std::strtof(narrow, &end);
                    if (end != narrow && !suppress)
                        *va_arg(args, float*) = v;
                }
            } else {
                int const base = conversion == 'd' || conversion == 'u' ? 10
                                 : conversion == 'i'                    ? 0
                                 : conversion == 'o'                    ? 8
                                                                        : 16;
                if (conversion == 'd' || conversion == 'i') {
                    long long const v = std::strtoll(narrow, &end, base);
                    if (end != narrow && !suppress)
                        StoreSigned(length, args, v);
                } else {
                    unsigned long long const v = std::strtoull(narrow, &end, base);
                    if (end != narrow && !suppress)
                        StoreUnsigned(length, args, v);
                }
            }
            if (end == narrow)
                return assigned;
            in += end - narrow;
            if (!suppress)
                ++assigned;
            break;
        }
        case 's':
        case 'S': {
            unsigned long const limit = width == 0 ? ~0ul : width;
            unsigned long n = 0;
            while (n < limit && in[n] != 0 && !IsSpace(in[n]))
                ++n;
            if (!suppress) {
                StoreText(length, args, in, n, true);
                ++assigned;
            }
            in += n;
            break;
        }
        case 'c':
        case 'C': {
            unsigned long const want = width == 0 ? 1 : width;
            unsigned long n = 0;
            while (n < want && in[n] != 0)
                ++n;
            if (n < want)
                return inputFailure();
            if (!suppress) {
                if (length == kH) {
                    char* target = va_arg(args, char*);
                    for (unsigned long i = 0; i < n; ++i)
                        target[i] = in[i] < 0x80 ? static_cast<char>(in[i]) : '?';
                } else {
                    StoreText(length, args, in, n, false);
                }
                ++assigned;
            }
            in += n;
            break;
        }
        case '[': {
            ScanSet set;
            Unit const* after = set.Parse(f);
            if (after == nullptr)
                return assigned;
            f = after;
            unsigned long const limit = width == 0 ? ~0ul : width;
            unsigned long n = 0;
            while (n < limit && in[n] != 0 && set.Contains(in[n]))
                ++n;
            if (n == 0)
                return assigned;
            if (!suppress) {
                StoreText(length, args, in, n, true);
                ++assigned;
            }
            in += n;
            break;
        }
        case 'p': {
            unsigned long n = 0;
            while (IsNumberChar(in[n]))
                ++n;
            std::string narrow(in, in + n);
            char* end = nullptr;
            unsigned long long const v = std::strtoull(narrow.c_str(), &end, 16);
            if (end == narrow.c_str())
                return assigned;
            if (!suppress) {
                *va_arg(args, void**) = reinterpret_cast<void*>(static_cast<std::uintptr_t>(v));
                ++assigned;
            }
            in += end - narrow.c_str();
            break;
        }
        default:
            return assigned;
        }
    }
    return assigned;
}

Unit const kEmptyText[1] = {0};

} // namespace

int vsnuprintf(unsigned short* buffer, unsigned long count, unsigned short const* format,
               va_list args) {
    if (buffer == nullptr || count == 0 || format == nullptr)
        return -1;
    va_list copy;
    va_copy(copy, args);
    int const result = Format(buffer, count, format, copy);
    va_end(copy);
    return result;
}

int snuprintf(unsigned short* buffer, unsigned long count, unsigned short const* format, ...) {
    va_list args;
    va_start(args, format);
    int const result = vsnuprintf(buffer, count, format, args);
    va_end(args);
    return result;
}

int suscanf(unsigned short const* text, unsigned short const* format, ...) {
    if (format == nullptr)
        return -1;
    va_list args;
    va_start(args, format);
    int const result = Scan(text == nullptr ? kEmptyText : text, format, args);
    va_end(args);
    return result;
}

} // namespace Vela
