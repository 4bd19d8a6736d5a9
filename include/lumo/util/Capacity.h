// The capacity rule of the containers' growable buffers: round a request up to a multiple
// of the increment, shrink in whole increments, in 64-bit arithmetic over 32-bit sizes.
#ifndef LUMO_UTIL_CAPACITY_H
#define LUMO_UTIL_CAPACITY_H

#include <cstdint>

namespace lumo {
namespace util {

// The capacity rule of every growable buffer of the containers: a request is
// rounded up to a multiple of the buffer's increment, and after removals the
// buffer shrinks in whole increments, never below one increment. Sizes and
// capacities are 32-bit; the arithmetic is done in 64 bits so that a request near
// the top of the range is reported instead of wrapping. The increment must be
// non-zero (each container rejects or replaces 0 before it gets here).

/// `n` rounded up to a multiple of `increment`. False when the result does not fit
/// in 32 bits (the caller reports that as exhausted memory).
inline bool RoundUpCapacity(std::uint64_t n, std::uint32_t increment, std::uint32_t& result) {
    if (n > 0xFFFFFFFFu)
        return false;
    std::uint64_t const rounded = (n + increment - 1) / increment * increment;
    if (rounded > 0xFFFFFFFFu)
        return false;
    result = static_cast<std::uint32_t>(rounded);
    return true;
}

/// The capacity a buffer holding `size` elements shrinks to: `size` rounded up, but
/// never below one increment. A buffer is only ever shrunk when this is below its
/// present capacity, so the result is clamped to 32 bits without harm.
inline std::uint32_t CompactedCapacity(std::uint32_t size, std::uint32_t increment) {
    std::uint64_t rounded = (static_cast<std::uint64_t>(size) + increment - 1) / increment;
    rounded *= increment;
    if (rounded < increment)
        rounded = increment;
    return rounded > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<std::uint32_t>(rounded);
}

/// The compaction target of a byte block that keeps one increment of slack beyond
/// the bytes in use: (used + increment) rounded up to a multiple of the increment.
inline std::uint32_t CompactedCapacityWithSlack(std::uint32_t used, std::uint32_t increment) {
    return CompactedCapacity(
        static_cast<std::uint32_t>(used > 0xFFFFFFFFu - increment ? 0xFFFFFFFFu : used + increment),
        increment);
}

} // namespace util
} // namespace lumo

#endif
