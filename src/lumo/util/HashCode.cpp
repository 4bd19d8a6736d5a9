#include <lumo/util/HashCode.h>

#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>

#include <cstddef>
#include <cstring>

namespace lumo {
namespace util {

namespace {

template <class Unit> std::int32_t HashUnits(Unit const* units, std::size_t length) {
    std::uint32_t h = 0;
    if (length < 16) {
        for (std::size_t i = 0; i < length; ++i)
            h = h * 37u + units[i];
    } else {
        std::size_t const step = length / 8;
        for (std::size_t i = 0; i < length; i += step)
            h = h * 39u + units[i];
    }
    return static_cast<std::int32_t>(h);
}

} // namespace

std::int32_t GetStringHashCode(char const* text) {
    if (text == nullptr)
        return 0;
    // Short texts (the usual keys) are hashed in the same pass that finds their end.
    auto const* bytes = reinterpret_cast<unsigned char const*>(text);
    std::uint32_t h = 0;
    for (std::size_t i = 0; i < 16; ++i) {
        if (bytes[i] == 0)
            return static_cast<std::int32_t>(h);
        h = h * 37u + bytes[i];
    }
    return HashUnits(bytes, 16 + std::strlen(text + 16));
}

std::int32_t GetCStringHashCode(base::CString const& text) {
    char const* units = text;
    // The recorded length may run past the kept text (a string made from a longer
    // source with a length); the hash never reads beyond the terminator.
    std::size_t const length = strnlen(units, text.GetLength());
    return HashUnits(reinterpret_cast<unsigned char const*>(units), length);
}

std::int32_t GetCUnicodeStringHashCode(base::CUnicodeString const& text) {
    unsigned short const* units = text;
    std::size_t const recorded = text.GetLength();
    std::size_t length = 0;
    while (length < recorded && units[length] != 0)
        ++length;
    return HashUnits(units, length);
}

} // namespace util
} // namespace lumo
