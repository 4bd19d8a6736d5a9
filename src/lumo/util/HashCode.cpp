#include <lumo/util/HashCode.h>

#include <cstring>

namespace lumo {
namespace util {

std::int32_t GetStringHashCode(char const* text) {
    if (text == nullptr)
        return 0;
    std::uint32_t h = 0;
    std::size_t const length = std::strlen(text);
    auto const* bytes = reinterpret_cast<unsigned char const*>(text);
    if (length < 16) {
        for (std::size_t i = 0; i < length; ++i)
            h = h * 37u + bytes[i];
    } else {
        std::size_t const step = length / 8;
        for (std::size_t i = 0; i < length; i += step)
            h = h * 39u + bytes[i];
    }
    return static_cast<std::int32_t>(h);
}

} // namespace util
} // namespace lumo
