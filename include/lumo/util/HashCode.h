#ifndef LUMO_UTIL_HASHCODE_H
#define LUMO_UTIL_HASHCODE_H

#include <lumo/Config.h>

#include <cstdint>

namespace lumo {
namespace util {

// The library's text hash: under 16 bytes, h = h*37 + byte over every byte; from 16
// bytes on, h = h*39 + byte at every (length/8)-th position. Wraps at 32 bits; a
// null text hashes to 0.
LUMO_API std::int32_t GetStringHashCode(char const* text);

} // namespace util
} // namespace lumo

#endif
