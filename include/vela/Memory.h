// The root layer's memory services: the relocatable handle manager bmManager, the range
// checker bnManager, and the handler called when the layer cannot get memory it must have.
#ifndef VELA_MEMORY_H
#define VELA_MEMORY_H

#include <vela/Config.h>

namespace Vela {

/// A relocatable block: a pointer to the block's current address. The handle itself
/// (the master pointer) stays put for the block's life; the block it points to may move
/// whenever it is resized, so a pointer taken with Access (or *handle) is good only until
/// the next ResizeHandle.
typedef char** BMHandle;

/// The handle memory manager. Thread-safe: handles are independent heap blocks (one
/// handle must still be used by one thread at a time).
class VELA_API bmManager {
public:
    /// A new handle of `size` bytes (contents undefined; 0 is allowed), or null when
    /// memory is exhausted.
    static BMHandle NewHandle(unsigned long size);
    /// Resizes keeping the contents (up to the smaller size); returns the same handle,
    /// or null on failure (the handle and its contents are then untouched). The block
    /// moves on every change of size. A null handle gives null.
    static BMHandle ResizeHandle(BMHandle handle, unsigned long size);
    /// Frees the handle and its block; null is ignored.
    static void KillHandle(BMHandle handle);
    /// The block's current address (null for a null handle; never null for a live one).
    static char* Access(BMHandle handle);
    /// The block's size in bytes (0 for a null handle).
    static unsigned long GetSize(BMHandle handle);

    /// Test seam: the next `count` allocations of the layer (NewHandle, ResizeHandle, a
    /// location's path; any thread) fail as if memory were exhausted. 0 cancels failures
    /// still pending.
    static void FailNextAllocations(unsigned long count);
};

/// The memory range checker. On this platform every range at a non-null address counts
/// as readable and writable; a null address is refused unless the size is 0 (an empty
/// range is always accepted).
class VELA_API bnManager {
public:
    /// True for a range at a non-null address, and for any range of size 0.
    ///@{
    static bool IsReadable(void const* address, unsigned long size);
    static bool IsWritable(void* address, unsigned long size);
    ///@}
};

/// What the layer does when it cannot obtain memory for an object it must build (a
/// location's path, say): it calls the handler set here, which must not return (the
/// library above installs one that throws its memory exception); with none set it
/// throws std::bad_alloc. `unit` and `line` name the place of the failure.
typedef void (*MemoryFailureHandler)(char const* unit, long line);
/// Installs the handler called when the layer cannot get memory it must have; null restores the
/// std::bad_alloc default.
VELA_API void SetMemoryFailureHandler(MemoryFailureHandler handler);

} // namespace Vela

#endif
