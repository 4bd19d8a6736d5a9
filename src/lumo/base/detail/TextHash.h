// Internal: the library's text hash, kept in the base layer so that the class
// registry (base) and the string hash functions of the containers (util) share it.
#ifndef LUMO_BASE_DETAIL_TEXTHASH_H
#define LUMO_BASE_DETAIL_TEXTHASH_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace lumo {
namespace detail {

/// Under 16 units, h = h*37 + unit over every unit; from 16 units on, h = h*39 +
/// unit at every (length/8)-th position, so long keys cost a bounded time. Wraps
/// at 32 bits.
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

/// The hash of a zero-terminated 8-bit text (bytes count unsigned) and its length.
struct MeasuredText {
    std::int32_t hash;
    std::size_t length;
};
inline MeasuredText MeasureText(char const* text) {
    // Short texts (the usual keys) are hashed in the same pass that finds their end.
    auto const* bytes = reinterpret_cast<unsigned char const*>(text);
    std::uint32_t h = 0;
    for (std::size_t i = 0; i < 16; ++i) {
        if (bytes[i] == 0)
            return MeasuredText{static_cast<std::int32_t>(h), i};
        h = h * 37u + bytes[i];
    }
    std::size_t const length = 16 + std::strlen(text + 16);
    return MeasuredText{HashUnits(bytes, length), length};
}

/// The hash of a zero-terminated 8-bit text (bytes count unsigned; null gives 0).
inline std::int32_t HashText(char const* text) {
    return text != nullptr ? MeasureText(text).hash : 0;
}

} // namespace detail
} // namespace lumo

#endif
