// CFixBlockAllocator: a pool of equal-sized blocks that refills and trims its free list
// in small steps, and the process-wide pools behind CString and CUnicodeString storage.
#ifndef LUMO_BASE_FIXBLOCKALLOCATOR_H
#define LUMO_BASE_FIXBLOCKALLOCATOR_H

#include <lumo/base/SpinLock.h>

namespace lumo {
namespace base {

struct CProcessPools;

/// A pool of equal-sized blocks from the C heap. The free list is refilled a few
/// blocks at a time and trimmed back when most blocks lie idle, so a steady pattern
/// of short-lived allocations makes no heap calls. Every operation takes the pool's
/// spin lock, so a pool may be used from any thread.
class LUMO_API CFixBlockAllocator {
public:
    /// An empty pool of `blockSize`-byte blocks that refills `refillCount` blocks at a time; no
    /// memory is taken yet.
    CFixBlockAllocator(unsigned long blockSize, unsigned long refillCount);
    ~CFixBlockAllocator();

    /// A block of GetBlockSize() bytes; CMemoryException when the heap is exhausted.
    void* Allocate();
    /// Returns a block of this pool; null is ignored.
    void Free(void* block);
    /// Frees every block, used and free, to the C heap.
    void Clear();

    /// As Allocate and Free, through a small per-thread cache in front of the pool for
    /// the process-wide pools (other pools go straight to the pool). The cache holds
    /// up to four blocks, counted as used by the pool while it holds them: when empty
    /// it takes the block asked for and up to three more already on the free list,
    /// and when full it hands all back (as when its thread ends). Short-lived strings
    /// made and dropped on one thread so cost no lock at all, and a run of them one
    /// lock per four.
    ///@{
    void* AllocateCached();
    void FreeCached(void* block);
    ///@}

    /// The size of every block in bytes.
    unsigned long GetBlockSize() const { return m_blockSize; }
    /// The number of blocks taken from the heap at each refill.
    unsigned long GetRefillCount() const { return m_refillCount; }
    /// Blocks handed out and not returned, and blocks waiting in the free list.
    ///@{
    unsigned long GetUsedCount() const;
    unsigned long GetFreeCount() const;
    ///@}

    /// The process-wide pools behind CString (blocks of 76, 140, 268, 524 and 1036
    /// bytes) and CUnicodeString (140, 268, 524, 1036 and 2060 bytes), by class 0-4;
    /// another class throws CArrayIndexOutOfBoundsException. They live (and are never
    /// destroyed) for the whole process.
    ///@{
    static CFixBlockAllocator& StringPool(int sizeClass);
    static CFixBlockAllocator& UnicodeStringPool(int sizeClass);
    ///@}

private:
    friend struct CProcessPools;

    CFixBlockAllocator(CFixBlockAllocator const&);
    CFixBlockAllocator& operator=(CFixBlockAllocator const&);

    struct Block;

    // Allocate and Free with the lock already held.
    void* TakeLocked();
    void GiveLocked(void* block);

    unsigned long m_blockSize;
    unsigned long m_refillCount;
    Block* m_used;
    Block* m_free;
    unsigned long m_usedCount;
    unsigned long m_freeCount;
    mutable CSpinLock m_lock;
    int m_cacheSlot; // index of the per-thread cache, -1 for none
};

} // namespace base
} // namespace lumo

#endif
