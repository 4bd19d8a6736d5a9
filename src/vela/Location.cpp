// File locations: a path kept as UTF-8, from UTF-8 or UTF-16, and its legality.
#include <vela/Location.h>

#include "detail/Allocate.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace IO {

namespace {

// The limits of the POSIX file systems the layer runs on (PATH_MAX, NAME_MAX),
// fixed here so that legality does not depend on the build machine's headers.
unsigned long const kMaxPath = 4095;
unsigned long const kMaxName = 255;

char const kEmpty[] = "";
char const kUnit[] = "vela/Location";

// Whether `s` is well-formed UTF-8: shortest forms only, no surrogates, nothing
// beyond U+10FFFF.
bool IsWellFormedUtf8(unsigned char const* s, unsigned long n) {
    unsigned long i = 0;
    while (i < n) {
        unsigned char const c = s[i];
        if (c < 0x80) {
            ++i;
            continue;
        }
        unsigned long extra;
        std::uint32_t cp;
        if (c >= 0xC2 && c <= 0xDF) {
            extra = 1;
            cp = c & 0x1F;
        } else if (c >= 0xE0 && c <= 0xEF) {
            extra = 2;
            cp = c & 0x0F;
        } else if (c >= 0xF0 && c <= 0xF4) {
            extra = 3;
            cp = c & 0x07;
        } else {
            return false;
        }
        if (n - i <= extra)
            return false;
        for (unsigned long k = 1; k <= extra; ++k) {
            unsigned char const t = s[i + k];
            if ((t & 0xC0) != 0x80)
                return false;
            cp = (cp << 6) | (t & 0x3F);
        }
        if ((extra == 2 && cp < 0x800) || (extra == 3 && cp < 0x10000) || cp > 0x10FFFF ||
            (cp >= 0xD800 && cp <= 0xDFFF))
            return false;
        i += extra + 1;
    }
    return true;
}

} // namespace

Location::Location() noexcept : m_path(nullptr), m_length(0), m_wellFormed(true) {}

Location::Location(char const* utf8Path) : m_path(nullptr), m_length(0), m_wellFormed(true) {
    if (utf8Path == nullptr)
        return;
    unsigned long const n = static_cast<unsigned long>(std::strlen(utf8Path));
    Assign(utf8Path, n, IsWellFormedUtf8(reinterpret_cast<unsigned char const*>(utf8Path), n));
}

Location::Location(unsigned short const* utf16Path)
    : m_path(nullptr), m_length(0), m_wellFormed(true) {
    if (utf16Path == nullptr || *utf16Path == 0)
        return;
    // At most 3 bytes per unit (a pair of 2 units gives 4 bytes).
    unsigned long units = 0;
    while (utf16Path[units] != 0)
        ++units;
    char* out = static_cast<char*>(Vela::detail::AllocateOrRaise(units * 3 + 1, kUnit, __LINE__));
    bool wellFormed = true;
    unsigned long n = 0;
    for (unsigned long i = 0; i < units; ++i) {
        std::uint32_t cp = utf16Path[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < units && utf16Path[i + 1] >= 0xDC00 &&
            utf16Path[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (utf16Path[i + 1] - 0xDC00u);
            ++i;
        } else if (cp >= 0xD800 && cp <= 0xDFFF) {
            // An unpaired surrogate has no UTF-8 form; keep a replacement so the
            // path stays readable in messages, and mark the location illegal.
            wellFormed = false;
            cp = 0xFFFD;
        }
        if (cp < 0x80) {
            out[n++] = static_cast<char>(cp);
        } else if (cp < 0x800) {
            out[n++] = static_cast<char>(0xC0 | (cp >> 6));
            out[n++] = static_cast<char>(0x80 | (cp & 0x3F));
        } else if (cp < 0x10000) {
            out[n++] = static_cast<char>(0xE0 | (cp >> 12));
            out[n++] = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            out[n++] = static_cast<char>(0x80 | (cp & 0x3F));
        } else {
            out[n++] = static_cast<char>(0xF0 | (cp >> 18));
            out[n++] = static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
            out[n++] = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            out[n++] = static_cast<char>(0x80 | (cp & 0x3F));
        }
    }
    out[n] = '\0';
    m_path = out;
    m_length = n;
    m_wellFormed = wellFormed;
}

Location::Location(Location const& other) : m_path(nullptr), m_length(0), m_wellFormed(true) {
    Assign(other.m_path, other.m_length, other.m_wellFormed);
}

Location::Location(Location&& other) noexcept
    : m_path(other.m_path), m_length(other.m_length), m_wellFormed(other.m_wellFormed) {
    other.m_path = nullptr;
    other.m_length = 0;
    other.m_wellFormed = true;
}

Location& Location::operator=(Location const& other) {
    if (this != &other) {
        Location copy(other);
        *this = static_cast<Location&&>(copy);
    }
    return *this;
}

Location& Location::operator=(Location&& other) noexcept {
    if (this != &other) {
        std::free(m_path);
        m_path = other.m_path;
        m_length = other.m_length;
        m_wellFormed = other.m_wellFormed;
        other.m_path = nullptr;
        other.m_length = 0;
        other.m_wellFormed = true;
    }
    return *this;
}

Location::~Location() {
    std::free(m_path);
}

void Location::Assign(char const* utf8, unsigned long length, bool wellFormed) {
    if (length == 0)
        return;
    char* copy = static_cast<char*>(Vela::detail::AllocateOrRaise(length + 1, kUnit, __LINE__));
    std::memcpy(copy, utf8, length);
    copy[length] = '\0';
    m_path = copy;
    m_length = length;
    m_wellFormed = wellFormed;
}

bool Location::IsLegal() const noexcept {
    if (m_length == 0 || !m_wellFormed || m_length > kMaxPath)
        return false;
    unsigned long name = 0;
    for (unsigned long i = 0; i < m_length; ++i) {
        if (m_path[i] == '/') {
            name = 0;
        } else if (++name > kMaxName) {
            return false;
        }
    }
    return true;
}

char const* Location::GetPath() const noexcept {
    return m_path != nullptr ? m_path : kEmpty;
}

} // namespace IO
