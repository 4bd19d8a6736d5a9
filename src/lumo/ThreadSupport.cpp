// Thread support: the current-thread slot, made at module load and kept until the
// last thread started through CThread has finished.
#include "ThreadSupport.h"

#include "base/ThreadSlot.h"

#include <atomic>

namespace lumo {
namespace detail {

namespace {
std::atomic<base::CThreadLocal*> g_currentThreadSlot{nullptr};
std::atomic<long> g_slotHolders{0}; // the module while loaded, and running threads
} // namespace

void StartThreadSupport() {
    auto* slot = new ("lumo/ThreadSupport", __LINE__) base::CThreadLocal;
    slot->Set(nullptr);
    g_currentThreadSlot.store(slot, std::memory_order_release);
    g_slotHolders.store(1, std::memory_order_release);
}

void StopThreadSupport() {
    ReleaseCurrentThreadSlot();
}

bool HoldCurrentThreadSlot() {
    long holders = g_slotHolders.load(std::memory_order_acquire);
    while (holders > 0) {
        if (g_slotHolders.compare_exchange_weak(holders, holders + 1, std::memory_order_acq_rel))
            return true;
    }
    return false;
}

void ReleaseCurrentThreadSlot() {
    if (g_slotHolders.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    // The slot's index is released with it.
    delete g_currentThreadSlot.exchange(nullptr, std::memory_order_acq_rel);
}

base::CThreadLocal* GetCurrentThreadSlot() {
    return g_currentThreadSlot.load(std::memory_order_acquire);
}

} // namespace detail
} // namespace lumo
