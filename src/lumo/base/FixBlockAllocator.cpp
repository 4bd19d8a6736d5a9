// CFixBlockAllocator's pools (a used and a free list of linked blocks under a spin lock),
// the never-destroyed process-wide pools (ten for strings, one for CRef's count records)
// and the per-thread block caches in front.
#include <lumo/base/FixBlockAllocator.h>

#include <lumo/base/Exception.h>

#include "detail/RefRecordPool.h"
#include "detail/ScopedHold.h"
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <new>

namespace lumo {
namespace base {

// Line numbers that the library's documented behaviour fixes for these failures.
unsigned long const kRefillFailureLine = 218; // a pool that cannot grow

// The two link words in front of every block handed out. On the free list only
// `next` is used; on the used list both.
struct CFixBlockAllocator::Block {
    Block* prev;
    Block* next;
};

CFixBlockAllocator::CFixBlockAllocator(unsigned long blockSize, unsigned long refillCount)
    : m_blockSize(blockSize), m_refillCount(refillCount), m_used(nullptr), m_free(nullptr),
      m_usedCount(0), m_freeCount(0), m_cacheSlot(-1) {}

CFixBlockAllocator::~CFixBlockAllocator() {
    Clear();
}

void* CFixBlockAllocator::Allocate() {
    ::lumo::detail::ScopedHold<CSpinLock> guard(m_lock);
    return TakeLocked();
}

void* CFixBlockAllocator::TakeLocked() {
    if (m_free == nullptr) {
        // A pool made with refill count 0 still takes one block at a time.
        unsigned long const refill = m_refillCount != 0 ? m_refillCount : 1;
        for (unsigned long i = 0; i < refill; ++i) {
            // A block size too large for the link words to fit in front counts as
            // heap exhaustion, not as a small block.
            Block* block = m_blockSize <= static_cast<std::size_t>(-1) - sizeof(Block)
                               ? static_cast<Block*>(std::malloc(sizeof(Block) + m_blockSize))
                               : nullptr;
            if (block == nullptr)
                // Blocks taken so far stay on the free list.
                throw CMemoryException("lumo/base/FixBlockAllocator", kRefillFailureLine);
            block->prev = nullptr;
            block->next = m_free;
            m_free = block;
            ++m_freeCount;
        }
    }
    Block* block = m_free;
    m_free = block->next;
    --m_freeCount;

    block->prev = nullptr;
    block->next = m_used;
    if (m_used != nullptr)
        m_used->prev = block;
    m_used = block;
    ++m_usedCount;
    return block + 1;
}

void CFixBlockAllocator::Free(void* p) {
    if (p == nullptr)
        return;
    ::lumo::detail::ScopedHold<CSpinLock> guard(m_lock);
    GiveLocked(p);
}

void CFixBlockAllocator::GiveLocked(void* p) {
    Block* block = static_cast<Block*>(p) - 1;
    if (block->prev != nullptr)
        block->prev->next = block->next;
    else
        m_used = block->next;
    if (block->next != nullptr)
        block->next->prev = block->prev;
    --m_usedCount;

    block->prev = nullptr;
    block->next = m_free;
    m_free = block;
    ++m_freeCount;

    // Trim when fewer than 70% of the blocks are in use and more than the refill
    // count lie free: free from the head until the number freed reaches the
    // (shrinking) free count minus the refill count, i.e. half the surplus, rounded up.
    std::uint64_t const used = m_usedCount;
    std::uint64_t const total = used + m_freeCount;
    if (used * 10 < total * 7 && m_freeCount > m_refillCount) {
        unsigned long freed = 0;
        do {
            Block* victim = m_free;
            m_free = victim->next;
            --m_freeCount;
            std::free(victim);
            ++freed;
        } while (freed < m_freeCount - m_refillCount);
    }
}

void CFixBlockAllocator::Clear() {
    ::lumo::detail::ScopedHold<CSpinLock> guard(m_lock);
    for (Block* list : {m_used, m_free}) {
        while (list != nullptr) {
            Block* next = list->next;
            std::free(list);
            list = next;
        }
    }
    m_used = nullptr;
    m_free = nullptr;
    m_usedCount = 0;
    m_freeCount = 0;
}

unsigned long CFixBlockAllocator::GetUsedCount() const {
    ::lumo::detail::ScopedHold<CSpinLock> guard(m_lock);
    return m_usedCount;
}

unsigned long CFixBlockAllocator::GetFreeCount() const {
    ::lumo::detail::ScopedHold<CSpinLock> guard(m_lock);
    return m_freeCount;
}

namespace {
unsigned long const kStringBlockSizes[5] = {76, 140, 268, 524, 1036};
unsigned long const kUnicodeStringBlockSizes[5] = {140, 268, 524, 1036, 2060};
unsigned long const kPoolRefillCount = 4;
// The string pools by class, then the record pool.
int const kProcessPoolCount = 11;
int const kRecordPoolIndex = 10;
} // namespace

// The process-wide pools, built in static storage on first use and never destroyed:
// strings and CRef values held by static objects are released during static
// destruction, in any order, and must still find their pool.
struct CProcessPools {
    alignas(
        CFixBlockAllocator) unsigned char storage[kProcessPoolCount][sizeof(CFixBlockAllocator)];
    CFixBlockAllocator* pools[kProcessPoolCount];

    CProcessPools() {
        for (int i = 0; i < 5; ++i) {
            pools[i] = new (storage[i]) CFixBlockAllocator(kStringBlockSizes[i], kPoolRefillCount);
            pools[5 + i] = new (storage[5 + i])
                CFixBlockAllocator(kUnicodeStringBlockSizes[i], kPoolRefillCount);
        }
        pools[kRecordPoolIndex] = new (storage[kRecordPoolIndex])
            CFixBlockAllocator(::lumo::detail::kRefRecordBlockSize, kPoolRefillCount);
        for (int i = 0; i < kProcessPoolCount; ++i)
            pools[i]->m_cacheSlot = i;
    }
};

namespace {

CFixBlockAllocator** ProcessPools() {
    // Placement-new into static storage: the object (and with it the pools) is
    // never destroyed. Thread-safe initialisation on first call.
    alignas(CProcessPools) static unsigned char storage[sizeof(CProcessPools)];
    static CProcessPools* const instance = new (storage) CProcessPools();
    return instance->pools;
}

// A size class outside 0-4 is the caller's error; a pool of another size would
// hand out blocks too small for the request.
int CheckClass(int sizeClass) {
    if (sizeClass < 0 || sizeClass > 4)
        throw CArrayIndexOutOfBoundsException("lumo/base/FixBlockAllocator", __LINE__);
    return sizeClass;
}

} // namespace

namespace {

// Per-thread stacks of free blocks, one per process-wide pool. Plain data, so that
// reaching it costs no initialisation check; a flusher object, made on a thread's
// first use, hands the blocks back to their pools when the thread ends. After that
// (and during process exit, after the main thread's flush) the thread goes straight
// to the pools.
unsigned const kCacheDepth = 4;
struct CThreadCache {
    void* blocks[kProcessPoolCount][kCacheDepth];
    unsigned char counts[kProcessPoolCount];
    bool started;
    bool finished;
};
// Initial-exec: the cache is reached without a call; it is small enough for the
// static TLS reserve that libraries loaded later draw on.
thread_local CThreadCache t_cache __attribute__((tls_model("initial-exec")));

struct CCacheFlusher {
    ~CCacheFlusher() {
        CFixBlockAllocator** pools = ProcessPools();
        for (int slot = 0; slot < kProcessPoolCount; ++slot) {
            while (t_cache.counts[slot] > 0)
                pools[slot]->Free(t_cache.blocks[slot][--t_cache.counts[slot]]);
        }
        t_cache.finished = true;
    }
};

// Whether this thread may use its cache; registers the flusher on first use.
bool CacheUsable() {
    if (t_cache.started)
        return !t_cache.finished;
    t_cache.started = true;
    static thread_local CCacheFlusher flusher;
    (void)flusher;
    return true;
}

} // namespace

// The cache trades with its pool a cacheful at a time, so that a run of allocations
// or releases (a container filled or dropped) takes the pool's lock once per
// kCacheDepth blocks. The pool sees the same steps as from single calls.
void* CFixBlockAllocator::AllocateCached() {
    if (m_cacheSlot < 0 || !CacheUsable())
        return Allocate();
    unsigned char& count = t_cache.counts[m_cacheSlot];
    if (count > 0)
        return t_cache.blocks[m_cacheSlot][--count];
    ::lumo::detail::ScopedHold<CSpinLock> guard(m_lock);
    void* block = TakeLocked();
    // Only blocks already free come along: the pool refills for the first alone, so
    // nothing past it can fail.
    while (count < kCacheDepth - 1 && m_free != nullptr)
        t_cache.blocks[m_cacheSlot][count++] = TakeLocked();
    return block;
}

void CFixBlockAllocator::FreeCached(void* block) {
    if (block == nullptr)
        return;
    if (m_cacheSlot < 0 || !CacheUsable()) {
        Free(block);
        return;
    }
    unsigned char& count = t_cache.counts[m_cacheSlot];
    if (count == kCacheDepth) {
        ::lumo::detail::ScopedHold<CSpinLock> guard(m_lock);
        while (count > 0)
            GiveLocked(t_cache.blocks[m_cacheSlot][--count]);
    }
    t_cache.blocks[m_cacheSlot][count++] = block;
}

CFixBlockAllocator& CFixBlockAllocator::StringPool(int sizeClass) {
    return *ProcessPools()[CheckClass(sizeClass)];
}

CFixBlockAllocator& CFixBlockAllocator::UnicodeStringPool(int sizeClass) {
    return *ProcessPools()[5 + CheckClass(sizeClass)];
}

} // namespace base

namespace detail {

base::CFixBlockAllocator& RefRecordPool() {
    return *base::ProcessPools()[base::kRecordPoolIndex];
}

} // namespace detail
} // namespace lumo
