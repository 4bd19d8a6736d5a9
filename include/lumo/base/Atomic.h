// Atomic increment, decrement and compare-and-swap on a 32-bit value held in a long,
// each with a full barrier.
#ifndef LUMO_BASE_ATOMIC_H
#define LUMO_BASE_ATOMIC_H

#include <lumo/Config.h>

namespace lumo {
namespace base {

/// Indivisible operations on a 32-bit value held in a long; full barriers. Increment and
/// decrement wrap at 32 bits and return the new value.
///@{
LUMO_API long AtomicIncrement(long volatile& target);
LUMO_API long AtomicDecrement(long volatile& target);
///@}
/// Stores newValue only when target equals expected; true when the store happened.
LUMO_API bool AtomicCompareAndSwap(long volatile& target, long newValue, long expected);

} // namespace base
} // namespace lumo

#endif
