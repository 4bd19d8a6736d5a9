// The one chained-hash engine of the library: the bucket array, its growth and the
// walk over it, shared by CHashtable, CObjectHashtable and the class registry.
// Internal: those hosts' headers are its only users.
#ifndef LUMO_BASE_DETAIL_CHAINEDHASH_H
#define LUMO_BASE_DETAIL_CHAINEDHASH_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace lumo {
namespace base {
namespace detail {

/// Entry has the members `std::int32_t hash` (stored when the entry is made, never
/// asked again) and `Entry* next`. The host allocates, fills and frees entries (each
/// has its own documented allocator and failure report); the engine links them. A
/// key's bucket is (hash AND 0x7FFFFFFF) mod capacity; a new entry becomes the head
/// of its bucket; growth is to capacity * 2 + 1 with the threshold capacity * load
/// factor, pushing each old chain in order onto the new heads. Nothing here throws:
/// a bucket array that cannot be had is reported by returning false.
template <class Entry> class ChainedHash {
public:
    ChainedHash() noexcept
        : m_buckets(nullptr), m_capacity(0), m_count(0), m_threshold(0), m_loadFactor(0.75f),
          m_magic(0) {}
    ChainedHash(ChainedHash const&) = delete;
    ChainedHash& operator=(ChainedHash const&) = delete;
    /// The host has freed its entries by now.
    ~ChainedHash() { std::free(m_buckets); }

    /// Empty buckets of `capacity` (any previous array must be empty; it is freed).
    bool Allocate(std::uint64_t capacity, float loadFactor, std::int32_t threshold) {
        Entry** buckets = NewBuckets(capacity);
        if (buckets == nullptr)
            return false;
        std::free(m_buckets);
        m_buckets = buckets;
        SetCapacity(static_cast<std::uint32_t>(capacity));
        m_count = 0;
        m_loadFactor = loadFactor;
        m_threshold = threshold;
        return true;
    }

    /// (long)(capacity * loadFactor), truncating, in float arithmetic; saturated at
    /// the 32-bit range, and a NaN gives a table that never grows.
    static std::int32_t ThresholdOf(std::uint32_t capacity, float loadFactor) {
        float const product = static_cast<float>(capacity) * loadFactor;
        if (std::isnan(product) || product >= 2147483648.0f)
            return 0x7FFFFFFF;
        if (product <= -2147483648.0f)
            return -0x7FFFFFFF - 1;
        return static_cast<std::int32_t>(product);
    }

    bool IsAllocated() const { return m_buckets != nullptr; }
    std::uint32_t Capacity() const { return m_capacity; }
    std::uint32_t Count() const { return m_count; }
    std::int32_t Threshold() const { return m_threshold; }
    float LoadFactor() const { return m_loadFactor; }
    Entry* Head(std::uint32_t bucket) const { return m_buckets[bucket]; }
    /// Whether a new key must first grow the table.
    bool IsFull() const { return static_cast<std::int64_t>(m_count) >= m_threshold; }

    std::uint32_t BucketOf(std::int32_t hash) const {
        std::uint32_t const h = static_cast<std::uint32_t>(hash) & 0x7FFFFFFFu;
#if defined(__SIZEOF_INT128__)
        /// h mod capacity without a division (exact for every 32-bit h and capacity).
        std::uint64_t const low = m_magic * h;
        return static_cast<std::uint32_t>((static_cast<unsigned __int128>(low) * m_capacity) >> 64);
#else
        return h % m_capacity;
#endif
    }

    /// The first entry of `hash`'s chain with that hash for which match(entry) holds.
    template <class Match> Entry* Find(std::int32_t hash, Match match) const {
        for (Entry* e = m_buckets[BucketOf(hash)]; e != nullptr; e = e->next)
            if (e->hash == hash && match(e))
                return e;
        return nullptr;
    }

    /// Unlinks and returns what Find would return, or null.
    template <class Match> Entry* Unlink(std::int32_t hash, Match match) {
        Entry** link = &m_buckets[BucketOf(hash)];
        for (Entry* e = *link; e != nullptr; link = &e->next, e = e->next) {
            if (e->hash == hash && match(e)) {
                *link = e->next;
                --m_count;
                return e;
            }
        }
        return nullptr;
    }

    /// `e` (its hash set) becomes the head of its bucket, or of `bucket` when a copy
    /// keeps its source's bucket.
    void Link(Entry* e) {
        Link(BucketOf(e->hash), e);
    }
    void Link(std::uint32_t bucket, Entry* e) {
        e->next = m_buckets[bucket];
        m_buckets[bucket] = e;
        ++m_count;
    }

    /// To capacity * 2 + 1 buckets; false, with nothing changed, without memory.
    bool Grow() {
        std::uint64_t const capacity = static_cast<std::uint64_t>(m_capacity) * 2 + 1;
        Entry** buckets = NewBuckets(capacity);
        if (buckets == nullptr)
            return false;
        Entry** old = m_buckets;
        std::uint32_t const oldCapacity = m_capacity;
        m_buckets = buckets;
        SetCapacity(static_cast<std::uint32_t>(capacity));
        m_threshold = ThresholdOf(m_capacity, m_loadFactor);
        for (std::uint32_t i = 0; i < oldCapacity; ++i) {
            for (Entry* e = old[i]; e != nullptr;) {
                Entry* next = e->next;
                std::uint32_t const index = BucketOf(e->hash);
                e->next = m_buckets[index];
                m_buckets[index] = e;
                e = next;
            }
        }
        std::free(old);
        return true;
    }

    /// Hands every entry, bucket by bucket and each chain in order, to release(e)
    /// (which must not throw) and leaves the buckets empty.
    template <class Release> void Clear(Release release) noexcept {
        if (m_count == 0)
            return;
        for (std::uint32_t i = 0; i < m_capacity; ++i) {
            Entry* e = m_buckets[i];
            m_buckets[i] = nullptr;
            while (e != nullptr) {
                Entry* next = e->next;
                release(e);
                e = next;
            }
        }
        m_count = 0;
    }

    /// Empties the buckets without touching the entries (the host frees them its own way).
    void Forget() noexcept {
        if (m_count > 0 && m_buckets != nullptr)
            std::memset(m_buckets, 0, m_capacity * sizeof(Entry*));
        m_count = 0;
    }

    /// Frees the bucket array of an empty table.
    void Release() noexcept {
        std::free(m_buckets);
        m_buckets = nullptr;
        m_capacity = 0;
        m_count = 0;
        m_magic = 0;
    }

    void Swap(ChainedHash& other) noexcept {
        std::swap(m_buckets, other.m_buckets);
        std::swap(m_capacity, other.m_capacity);
        std::swap(m_count, other.m_count);
        std::swap(m_threshold, other.m_threshold);
        std::swap(m_loadFactor, other.m_loadFactor);
        std::swap(m_magic, other.m_magic);
    }

    /// The enumerations' walk: bucket by bucket, each chain in order, counting the
    /// entries handed out. It reads the live table.
    class Cursor {
    public:
        explicit Cursor(ChainedHash const* table)
            : m_table(table), m_returned(0), m_bucket(-1), m_current(nullptr) {}
        bool HasMore() const { return m_returned < m_table->m_count; }
        /// The next entry, or null past the end.
        Entry* Advance() {
            if (m_current != nullptr && m_current->next != nullptr) {
                m_current = m_current->next;
                ++m_returned;
            } else if (m_returned < m_table->m_count) {
                /// The bound check only matters for a table changed while enumerating.
                do {
                    ++m_bucket;
                } while (m_bucket < m_table->m_capacity && m_table->m_buckets[m_bucket] == nullptr);
                m_current = m_bucket < m_table->m_capacity ? m_table->m_buckets[m_bucket] : nullptr;
                if (m_current != nullptr)
                    ++m_returned;
            } else {
                m_current = nullptr;
            }
            return m_current;
        }
        void Reset() {
            m_returned = 0;
            m_bucket = -1;
            m_current = nullptr;
        }

    private:
        ChainedHash const* m_table;
        /// 64-bit, so that no table size can overflow them.
        std::int64_t m_returned;
        std::int64_t m_bucket;
        Entry* m_current;
    };

private:
    static Entry** NewBuckets(std::uint64_t capacity) {
        if (capacity == 0 || capacity > 0xFFFFFFFFu ||
            capacity > static_cast<std::size_t>(-1) / sizeof(Entry*))
            return nullptr;
        return static_cast<Entry**>(
            std::calloc(static_cast<std::size_t>(capacity), sizeof(Entry*)));
    }

    void SetCapacity(std::uint32_t capacity) {
        m_capacity = capacity;
        m_magic = ~std::uint64_t(0) / capacity + 1;
    }

    Entry** m_buckets;
    std::uint32_t m_capacity;
    std::uint32_t m_count;
    std::int32_t m_threshold;
    float m_loadFactor;
    std::uint64_t m_magic; // for BucketOf
};

} // namespace detail
} // namespace base
} // namespace lumo

#endif
