#ifndef VELA_MEMORY_H
#define VELA_MEMORY_H

#include <lumo/Config.h>

namespace Vela {

// A relocatable block: a pointer to the block's current address.
typedef char** BMHandle;

// The handle memory manager.
class LUMO_API bmManager {
public:
    // A new handle of `size` bytes, or null when memory is exhausted.
    static BMHandle NewHandle(unsigned long size);
    // Resizes keeping the contents; the same handle, or null on failure (the handle
    // and its contents are then untouched).
    static BMHandle ResizeHandle(BMHandle handle, unsigned long size);
    // Frees the handle; null is ignored.
    static void KillHandle(BMHandle handle);
    // The block's current address (null for a null handle).
    static char* Access(BMHandle handle);
    static unsigned long GetSize(BMHandle handle);
};

// The memory range checker.
class LUMO_API bnManager {
public:
    static bool IsReadable(void const* address, unsigned long size);
    static bool IsWritable(void* address, unsigned long size);
};

} // namespace Vela

#endif
