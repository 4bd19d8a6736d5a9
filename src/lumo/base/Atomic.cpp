// AtomicIncrement, AtomicDecrement and AtomicCompareAndSwap on the GCC atomic builtins;
// increments and decrements go through a compare-exchange loop so they wrap at 32 bits.
#include <lumo/base/Atomic.h>

#include <cstdint>

namespace lumo {
namespace base {

namespace {
// The values are 32-bit even where long is wider: arithmetic wraps at 32 bits.
long Add32(long volatile& target, std::int32_t delta) {
    long seen = __atomic_load_n(&target, __ATOMIC_SEQ_CST);
    for (;;) {
        long const next =
            static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::int32_t>(seen)) +
                                      static_cast<std::uint32_t>(delta));
        if (__atomic_compare_exchange_n(&target, &seen, next, false, __ATOMIC_SEQ_CST,
                                        __ATOMIC_SEQ_CST))
            return next;
    }
}
} // namespace

long AtomicIncrement(long volatile& target) {
    return Add32(target, 1);
}

long AtomicDecrement(long volatile& target) {
    return Add32(target, -1);
}

bool AtomicCompareAndSwap(long volatile& target, long newValue, long expected) {
    return __atomic_compare_exchange_n(&target, &expected, newValue, false, __ATOMIC_SEQ_CST,
                                       __ATOMIC_SEQ_CST);
}

} // namespace base
} // namespace lumo
