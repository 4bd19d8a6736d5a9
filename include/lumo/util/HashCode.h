// The library's text hash over 8-bit text and UTF-16 units, and its forms for CString and
// CUnicodeString.
#ifndef LUMO_UTIL_HASHCODE_H
#define LUMO_UTIL_HASHCODE_H

#include <lumo/Config.h>

#include <cstdint>

namespace lumo {
namespace base {
class CString;
class CUnicodeString;
} // namespace base

namespace util {

/// The library's text hash, over bytes (8-bit text) or UTF-16 units: under 16
/// units, h = h*37 + unit over every unit; from 16 units on, h = h*39 + unit at
/// every (length/8)-th position, so long keys cost a bounded time. Wraps at 32
/// bits; bytes count unsigned; a null or empty text hashes to 0.
///@{
LUMO_API std::int32_t GetStringHashCode(char const* text);
LUMO_API std::int32_t GetCStringHashCode(base::CString const& text);
LUMO_API std::int32_t GetCUnicodeStringHashCode(base::CUnicodeString const& text);
///@}

} // namespace util
} // namespace lumo

#endif
