#include "ThreadSupport.h"

namespace lumo {
namespace detail {

// Threads need no process-wide state yet.
void StartThreadSupport() {}
void StopThreadSupport() {}

} // namespace detail
} // namespace lumo
