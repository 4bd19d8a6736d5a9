// The string hash functions of the containers, over the library's one text hash.
#include <lumo/util/HashCode.h>

#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>

#include "../base/detail/TextHash.h"

#include <cstddef>
#include <cstring>

namespace lumo {
namespace util {

std::int32_t GetStringHashCode(char const* text) {
    return detail::HashText(text);
}

std::int32_t GetCStringHashCode(base::CString const& text) {
    char const* units = text;
    // The recorded length may run past the kept text (a string made from a longer
    // source with a length); the hash never reads beyond the terminator.
    std::size_t const length = strnlen(units, text.GetLength());
    return detail::HashUnits(reinterpret_cast<unsigned char const*>(units), length);
}

std::int32_t GetCUnicodeStringHashCode(base::CUnicodeString const& text) {
    unsigned short const* units = text;
    std::size_t const recorded = text.GetLength();
    std::size_t length = 0;
    while (length < recorded && units[length] != 0)
        ++length;
    return detail::HashUnits(units, length);
}

} // namespace util
} // namespace lumo
