// ctest-labels: concurrency
#include <lumo/base/Exception.h>
#include <lumo/base/FixBlockAllocator.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>
#include <thread>
#include <vector>

using namespace lumo::base;

// The heap-exhaustion test asks for an impossible block; the sanitizers must then
// return null as the C heap does instead of aborting.
extern "C" char const* __asan_default_options() {
    return "allocator_may_return_null=1";
}
extern "C" char const* __tsan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

struct Counts {
    unsigned long used, free;
};

Counts CountsOf(CFixBlockAllocator const& pool) {
    return {pool.GetUsedCount(), pool.GetFreeCount()};
}

void ExpectCounts(CFixBlockAllocator const& pool, unsigned long used, unsigned long free,
                  int step) {
    EXPECT_EQ(pool.GetUsedCount(), used) << "step " << step;
    EXPECT_EQ(pool.GetFreeCount(), free) << "step " << step;
}

} // namespace

TEST(FixBlockAllocator, RefillsFourAtATime) {
    CFixBlockAllocator pool(40, 4);
    EXPECT_EQ(pool.GetBlockSize(), 40u);
    EXPECT_EQ(pool.GetRefillCount(), 4u);
    ExpectCounts(pool, 0, 0, 0);

    std::set<void*> blocks;
    unsigned long const expectedFree[9] = {3, 2, 1, 0, 3, 2, 1, 0, 3};
    for (int i = 0; i < 9; ++i) {
        void* block = pool.Allocate();
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u);
        std::memset(block, 0xA5, 40); // the whole block is usable
        EXPECT_TRUE(blocks.insert(block).second) << "handed out twice";
        ExpectCounts(pool, i + 1, expectedFree[i], i);
    }
    for (void* block : blocks)
        pool.Free(block);
    EXPECT_EQ(pool.GetUsedCount(), 0u);
}

TEST(FixBlockAllocator, TrimKeepsRefillCountAfterTenReleased) {
    CFixBlockAllocator pool(76, 4);
    std::vector<void*> blocks;
    for (int i = 0; i < 10; ++i)
        blocks.push_back(pool.Allocate());
    ExpectCounts(pool, 10, 2, 0); // three refills: 12 blocks

    // Release 1: 9 of 12 in use (75%), no trim. Release 2: 8 of 12 (67%) but only 4
    // free. From then on each release finds 5 free, a surplus of 1, and frees 1.
    unsigned long const expectedFree[10] = {3, 4, 4, 4, 4, 4, 4, 4, 4, 4};
    for (int i = 0; i < 10; ++i) {
        pool.Free(blocks[i]);
        ExpectCounts(pool, 9 - i, expectedFree[i], i);
    }
    EXPECT_GE(pool.GetFreeCount(), 4u);
    EXPECT_LE(pool.GetFreeCount(), 10u);

    // The blocks kept are handed out again without a refill.
    void* again = pool.Allocate();
    ExpectCounts(pool, 1, 3, 10);
    pool.Free(again);
}

TEST(FixBlockAllocator, TrimFreesHalfTheSurplus) {
    CFixBlockAllocator pool(16, 4);
    std::vector<void*> blocks;
    for (int i = 0; i < 40; ++i)
        blocks.push_back(pool.Allocate());
    ExpectCounts(pool, 40, 0, 0);
    // While at least 70% are in use nothing is trimmed (28 of 40 is exactly 70%).
    for (int i = 0; i < 12; ++i)
        pool.Free(blocks[i]);
    ExpectCounts(pool, 28, 12, 12);
    // 27 of 40: 13 free, surplus 9; freeing stops once the number freed (5) reaches
    // the free count (8) minus the refill count (4).
    pool.Free(blocks[12]);
    ExpectCounts(pool, 27, 8, 13);
    pool.Free(blocks[13]); // 26 of 35 (74%): no trim
    ExpectCounts(pool, 26, 9, 14);
    pool.Free(blocks[14]); // 25 of 35 (71%): no trim
    ExpectCounts(pool, 25, 10, 15);
    pool.Free(blocks[15]); // 24 of 35: 11 free, surplus 7, 4 freed
    ExpectCounts(pool, 24, 7, 16);
    // A surplus of 2 loses one block only: the pool settles at refill count + 1.
    for (int i = 16; i < 40; ++i)
        pool.Free(blocks[i]);
    ExpectCounts(pool, 0, 5, 40);
}

TEST(FixBlockAllocator, FreeNullClearAndReuse) {
    CFixBlockAllocator pool(8, 4);
    pool.Free(nullptr);
    ExpectCounts(pool, 0, 0, 0);

    void* a = pool.Allocate();
    void* b = pool.Allocate();
    void* c = pool.Allocate();
    pool.Free(b); // unlink from the middle of the used list
    ExpectCounts(pool, 2, 2, 1);
    EXPECT_EQ(pool.Allocate(), b) << "the last freed block comes back first";
    pool.Free(a); // the tail
    pool.Free(c); // the head
    pool.Free(b);
    ExpectCounts(pool, 0, 4, 2);

    pool.Allocate();
    pool.Allocate();
    pool.Clear(); // used blocks too go back to the heap
    ExpectCounts(pool, 0, 0, 3);
    void* d = pool.Allocate();
    ExpectCounts(pool, 1, 3, 4);
    pool.Free(d);
    // The destructor clears whatever is left (LeakSanitizer checks).
    pool.Allocate();
}

TEST(FixBlockAllocator, ZeroRefillCountStillAllocates) {
    CFixBlockAllocator pool(24, 0);
    void* a = pool.Allocate();
    void* b = pool.Allocate();
    EXPECT_NE(a, b);
    ExpectCounts(pool, 2, 0, 0);
    pool.Free(a);
    pool.Free(b);
    ExpectCounts(pool, 0, 0, 1);
}

TEST(FixBlockAllocator, HeapExhaustionRaisesMemoryException) {
    for (unsigned long size : {ULONG_MAX, ULONG_MAX - 4, ULONG_MAX / 4}) {
        CFixBlockAllocator pool(size, 4);
        try {
            pool.Allocate();
            ADD_FAILURE() << "allocated a block of " << size << " bytes";
        } catch (CMemoryException const& e) {
            EXPECT_STREQ(e.GetSourceFile(), "lumo/base/FixBlockAllocator");
            EXPECT_EQ(e.GetSourceLine(), 218u);
        }
        ExpectCounts(pool, 0, 0, 0);
    }
}

TEST(FixBlockAllocator, ProcessWidePools) {
    unsigned long const stringSizes[5] = {76, 140, 268, 524, 1036};
    unsigned long const unicodeSizes[5] = {140, 268, 524, 1036, 2060};
    for (int c = 0; c < 5; ++c) {
        CFixBlockAllocator& s = CFixBlockAllocator::StringPool(c);
        CFixBlockAllocator& u = CFixBlockAllocator::UnicodeStringPool(c);
        EXPECT_EQ(s.GetBlockSize(), stringSizes[c]);
        EXPECT_EQ(u.GetBlockSize(), unicodeSizes[c]);
        EXPECT_EQ(s.GetRefillCount(), 4u);
        EXPECT_EQ(u.GetRefillCount(), 4u);
        EXPECT_EQ(&s, &CFixBlockAllocator::StringPool(c));
        EXPECT_NE(static_cast<void*>(&s), static_cast<void*>(&u));

        Counts before = CountsOf(s);
        void* block = s.Allocate();
        std::memset(block, 0, stringSizes[c]);
        EXPECT_EQ(s.GetUsedCount(), before.used + 1);
        s.Free(block);
        EXPECT_EQ(s.GetUsedCount(), before.used);
    }
    EXPECT_THROW(CFixBlockAllocator::StringPool(5), CArrayIndexOutOfBoundsException);
    EXPECT_THROW(CFixBlockAllocator::UnicodeStringPool(-1), CArrayIndexOutOfBoundsException);
}

// Four threads take and give back blocks through `take` and `give`, holding a varying
// number each, every block stamped with its owner, so that a block handed to two
// threads at once is caught. `alongside` runs on a fifth thread meanwhile.
template <class Take, class Give, class Alongside>
void Churn(std::size_t size, Take take, Give give, Alongside alongside) {
    int const threads = 4;
    int const rounds = 3000;
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t)
        workers.emplace_back([=] {
            std::vector<unsigned char*> held;
            for (int r = 0; r < rounds; ++r) {
                int const want = (r * 7 + t) % 9;
                while (static_cast<int>(held.size()) < want) {
                    auto* block = static_cast<unsigned char*>(take());
                    std::memset(block, t + 1, size);
                    held.push_back(block);
                }
                while (static_cast<int>(held.size()) > want / 2) {
                    unsigned char* block = held.back();
                    held.pop_back();
                    for (std::size_t i = 0; i < size; ++i)
                        ASSERT_EQ(block[i], t + 1);
                    give(block);
                }
            }
            for (unsigned char* block : held)
                give(block);
        });
    std::thread other(alongside);
    for (auto& w : workers)
        w.join();
    other.join();
}

TEST(FixBlockAllocator, ConcurrentAllocateAndFree) {
    CFixBlockAllocator pool(64, 4);
    // Meanwhile the same pool is read and the shared string pools are used.
    Churn(
        64, [&pool] { return pool.Allocate(); }, [&pool](void* b) { pool.Free(b); },
        [&pool] {
            for (int i = 0; i < 2000; ++i) {
                pool.GetUsedCount();
                void* block = CFixBlockAllocator::StringPool(i % 5).Allocate();
                CFixBlockAllocator::StringPool(i % 5).Free(block);
            }
        });
    EXPECT_EQ(pool.GetUsedCount(), 0u);
}

// The per-thread caches trade with the pool several blocks at a time; once the
// threads have ended, every block they took is back in the pool.
TEST(FixBlockAllocator, CachedBlocksComeBackWhenThreadsEnd) {
    CFixBlockAllocator& pool = CFixBlockAllocator::StringPool(3);
    unsigned long const used = pool.GetUsedCount();
    Churn(
        pool.GetBlockSize(), [&pool] { return pool.AllocateCached(); },
        [&pool](void* b) { pool.FreeCached(b); },
        [&pool] {
            // Uncached traffic on the same pool.
            for (int i = 0; i < 2000; ++i)
                pool.Free(pool.Allocate());
        });
    EXPECT_EQ(pool.GetUsedCount(), used);
}
