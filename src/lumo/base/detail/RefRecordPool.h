// Internal: the process-wide pool that CRef's count records come from, so that making
// and dropping a CRef costs no heap call (a per-thread cache sits in front of it).
#ifndef LUMO_BASE_DETAIL_REFRECORDPOOL_H
#define LUMO_BASE_DETAIL_REFRECORDPOOL_H

#include <lumo/base/FixBlockAllocator.h>

#include <cstddef>

namespace lumo {
namespace detail {

/// The size of the pool's blocks: one RefCountedPtr.
constexpr std::size_t kRefRecordBlockSize = 24;

/// The pool (never destroyed); use AllocateCached and FreeCached.
base::CFixBlockAllocator& RefRecordPool();

} // namespace detail
} // namespace lumo

#endif
