#ifndef LUMO_BASE_FIXBLOCKALLOCATOR_H
#define LUMO_BASE_FIXBLOCKALLOCATOR_H

#include <lumo/base/SpinLock.h>

namespace lumo {
namespace base {

// A pool of equal-sized blocks from the C heap. The free list is refilled a few
// blocks at a time and trimmed back when most blocks lie idle, so a steady pattern
// of short-lived allocations makes no heap calls. Every operation takes the pool's
// spin lock, so a pool may be used from any thread.
class LUMO_API CFixBlockAllocator {
public:
    CFixBlockAllocator(unsigned long blockSize, unsigned long refillCount);
    ~CFixBlockAllocator();

    // A block of GetBlockSize() bytes; CMemoryException when the heap is exhausted.
    void* Allocate();
    // Returns a block of this pool; null is ignored.
    void Free(void* block);
    // Frees every block, used and free, to the C heap.
    void Clear();

    unsigned long GetBlockSize() const { return m_blockSize; }
    unsigned long GetRefillCount() const { return m_refillCount; }
    unsigned long GetUsedCount() const;
    unsigned long GetFreeCount() const;

    // The process-wide pools behind CString (blocks of 76, 140, 268, 524 and 1036
    // bytes) and CUnicodeString (140, 268, 524, 1036 and 2060 bytes), by class 0-4.
    static CFixBlockAllocator& StringPool(int sizeClass);
    static CFixBlockAllocator& UnicodeStringPool(int sizeClass);

private:
    CFixBlockAllocator(CFixBlockAllocator const&);
    CFixBlockAllocator& operator=(CFixBlockAllocator const&);

    struct Block;

    unsigned long m_blockSize;
    unsigned long m_refillCount;
    Block* m_used;
    Block* m_free;
    unsigned long m_usedCount;
    unsigned long m_freeCount;
    mutable CSpinLock m_lock;
};

} // namespace base
} // namespace lumo

#endif
