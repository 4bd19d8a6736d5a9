// Internal: the library's current-thread slot, where each thread started through CThread
// stores its CThread, held by such threads so it can outlive the module's unload.
#ifndef LUMO_SRC_BASE_THREADSLOT_H
#define LUMO_SRC_BASE_THREADSLOT_H

#include <lumo/base/ThreadLocal.h>

namespace lumo {
namespace detail {

// The library's current-thread slot: each thread started through CThread stores its
// CThread there. Made at module load; null before that and once it is gone.
base::CThreadLocal* GetCurrentThreadSlot();

// A thread started through CThread holds the slot from its start to the end of its
// epilogue, so the slot outlives the module's unload while such threads still finish
// (auto-deleted threads at process exit): the last holder, the module or a late
// thread, destroys it. Hold fails once the module has let go.
bool HoldCurrentThreadSlot();
void ReleaseCurrentThreadSlot();

} // namespace detail
} // namespace lumo

#endif
