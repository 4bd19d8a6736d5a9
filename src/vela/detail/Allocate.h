// Internal: the root layer's allocation for objects that must report a failure to
// their caller (the failure handler of Memory.h, else std::bad_alloc).
#ifndef VELA_DETAIL_ALLOCATE_H
#define VELA_DETAIL_ALLOCATE_H

#include <cstddef>

namespace Vela {
namespace detail {

/// A C-heap block of `size` bytes (at least one), freed with std::free. Never null:
/// a failure (or one the test seam injects) goes to the memory failure handler, or
/// throws std::bad_alloc when none is set.
void* AllocateOrRaise(std::size_t size, char const* unit, long line);

} // namespace detail
} // namespace Vela

#endif
