// Internal: the start and stop of thread support at module load and unload (the thread
// implementation and the slot mapping each thread to its CThread).
#ifndef LUMO_SRC_THREADSUPPORT_H
#define LUMO_SRC_THREADSUPPORT_H

namespace lumo {
namespace detail {

// Thread support's start and stop at module load and unload: the process-wide
// thread implementation and the slot that maps each thread to its CThread.
void StartThreadSupport();
void StopThreadSupport();

} // namespace detail
} // namespace lumo

#endif
