#ifndef LUMO_SRC_BASE_THREADSLOT_H
#define LUMO_SRC_BASE_THREADSLOT_H

#include <lumo/base/ThreadLocal.h>

namespace lumo {
namespace detail {

// The library's current-thread slot: each thread started through CThread stores its
// CThread there. Made at module load, destroyed at unload (null outside that time).
base::CThreadLocal* GetCurrentThreadSlot();

} // namespace detail
} // namespace lumo

#endif
