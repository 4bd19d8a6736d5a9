// File locations: a path kept as UTF-8, from UTF-8 or UTF-16, and its legality.
#include <vela/Location.h>

#include "detail/Allocate.h"
#include "detail/Utf8Codec.h"

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

namespace utf8 = Vela::detail::utf8;

// Whether `s` is well-formed UTF-8: shortest forms only, no surrogates, nothing
// beyond U+10FFFF.
bool IsWellFormedUtf8(char const* s, unsigned long n) {
    utf8::Byte const* const p = utf8::Bytes(s);
    utf8::Byte const* stop = p;
    utf8::Count<utf8::StrictStop>(p, p + n, &stop);
    return stop == p + n;
}

} // namespace

Location::Location() noexcept : m_path(nullptr), m_length(0), m_wellFormed(true) {}

Location::Location(char const* utf8Path) : m_path(nullptr), m_length(0), m_wellFormed(true) {
    if (utf8Path == nullptr)
        return;
    unsigned long const n = static_cast<unsigned long>(std::strlen(utf8Path));
    Assign(utf8Path, n, IsWellFormedUtf8(utf8Path, n));
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
    // An unpaired surrogate has no UTF-8 form; a replacement keeps the path readable
    // in messages, and the location is illegal.
    utf8::Replace policy;
    auto* const bytes = reinterpret_cast<utf8::Byte*>(out);
    unsigned long const n =
        utf8::Encode(utf16Path, utf16Path + units, bytes, bytes + units * 3, policy).bytes;
    bool const wellFormed = !policy.replaced;
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
