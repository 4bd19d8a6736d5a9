// CHashtable: a chained hash map of copied keys and values with CObjectHashtable's layout
// and growth, entries carved from slabs, the hash traits and its enumerations.
#ifndef LUMO_UTIL_HASHTABLE_H
#define LUMO_UTIL_HASHTABLE_H

#include <lumo/base/Base.h>
#include <lumo/base/Exception.h>
#include <lumo/base/detail/ChainedHash.h>
#include <lumo/util/Enumeration.h>
#include <lumo/util/HashCode.h>
#include <lumo/util/NoSuchElementException.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace lumo {
namespace util {

/// Hash codes of the key types the library hashes by value: its strings (by the
/// library's text hash), integers and enumerations (folded to 32 bits) and
/// pointers (by address). Other key types specialize CHashTraits.
///@{
inline std::int32_t HashCodeOf(base::CString const& key) {
    return GetCStringHashCode(key);
}
inline std::int32_t HashCodeOf(base::CUnicodeString const& key) {
    return GetCUnicodeStringHashCode(key);
}
template <class T>
inline typename std::enable_if<std::is_integral<T>::value || std::is_enum<T>::value,
                               std::int32_t>::type
HashCodeOf(T key) {
    std::uint64_t const v = static_cast<std::uint64_t>(key);
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(v ^ (v >> 32)));
}
template <class T> inline std::int32_t HashCodeOf(T* key) {
    return HashCodeOf(reinterpret_cast<std::uintptr_t>(key));
}
///@}

/// How a CHashtable hashes and compares its keys.
template <class K> struct CHashTraits {
    /// The key's hash code, by HashCodeOf.
    static std::int32_t GetHashCode(K const& key) { return HashCodeOf(key); }
    /// Whether a stored key equals `key` (by ==); `key` may be of any type comparable with K.
    template <class Q> static bool Equals(K const& stored, Q const& key) { return stored == key; }
};

template <class K, class V, class Traits> class HashtableKeyEnumeration;
template <class K, class V, class Traits> class HashtableElementEnumeration;

/// A chained hash map of values: keys of K to values of V, both copied in. The
/// layout and growth are those of CObjectHashtable: a capacity below 12 becomes
/// 101, a load factor not above 0 becomes 0.75, and a new key arriving when the
/// count has reached the threshold first grows the table to capacity * 2 + 1. It
/// owns nothing beyond its copies (a table of pointers leaves what they point to
/// alone). A missing key throws CNoSuchElementException; a failed allocation
/// throws CMemoryException and leaves the table unchanged.
template <class K, class V, class Traits = CHashTraits<K>> class CHashtable {
public:
    /// An empty table; a capacity below 12 becomes 101 and a load factor not above 0 becomes 0.75.
    /// CMemoryException when the buckets cannot be allocated.
    explicit CHashtable(long initialCapacity = 101, float loadFactor = 0.75f)
        : CHashtable("lumo/util/Hashtable", initialCapacity, loadFactor) {}

    /// Copies every key and value; chains come out in reverse order, as in
    /// CObjectHashtable.
    /// Each chain is copied in order onto the head of the same bucket (so reversed).
    CHashtable(CHashtable const& other)
        : m_unit(other.m_unit), m_slabs(nullptr), m_free(nullptr), m_bump(nullptr),
          m_bumpEnd(nullptr), m_slabEntries(kFirstSlabEntries) {
        if (!m_chain.Allocate(other.m_chain.Capacity(), other.m_chain.LoadFactor(),
                              other.m_chain.Threshold()))
            throw base::CMemoryException(m_unit, __LINE__);
        try {
            for (std::uint32_t i = 0; i < m_chain.Capacity(); ++i)
                for (Entry const* e = other.m_chain.Head(i); e != nullptr; e = e->next)
                    m_chain.Link(i, NewEntry(e->hash, e->key, e->value, __LINE__));
        } catch (...) {
            FreeEntries();
            throw;
        }
    }

    /// Replaces the contents with copies of the other table's (copy first, so a failure leaves this
    /// table as it was).
    CHashtable& operator=(CHashtable const& other) {
        if (this != &other) {
            CHashtable copy(other);
            Swap(copy);
        }
        return *this;
    }

    ~CHashtable() { FreeEntries(); }

    /// The number of keys.
    unsigned long GetSize() const { return m_chain.Count(); }
    /// True when the table holds no key.
    bool IsEmpty() const { return m_chain.Count() == 0; }
    /// The number of buckets.
    unsigned long GetCapacity() const { return m_chain.Capacity(); }

    /// Maps `key` to `value`. For a present key only the value is replaced, the old
    /// one handed back through `previous` when given; the result tells whether
    /// there was one.
    bool Put(K const& key, V const& value, V* previous = nullptr) {
        return PutHashed(Traits::GetHashCode(key), key, value, previous);
    }

    /// The value of `key`; CNoSuchElementException when absent.
    ///@{
    V& Get(K const& key) { return GetHashed(Traits::GetHashCode(key), key); }
    V const& Get(K const& key) const {
        return const_cast<CHashtable*>(this)->GetHashed(Traits::GetHashCode(key), key);
    }
    ///@}

    /// The value of `key`, or null when absent.
    V* Find(K const& key) const {
        Entry* e = FindHashed(Traits::GetHashCode(key), key);
        return e != nullptr ? &e->value : nullptr;
    }

    /// Whether `key` is present.
    bool ContainsKey(K const& key) const {
        return FindHashed(Traits::GetHashCode(key), key) != nullptr;
    }

    /// Whether some value == `value`, scanning bucket by bucket.
    bool Contains(V const& value) const {
        for (std::uint32_t i = 0; i < m_chain.Capacity(); ++i)
            for (Entry const* e = m_chain.Head(i); e != nullptr; e = e->next)
                if (e->value == value)
                    return true;
        return false;
    }

    /// Removes the entry of `key` and returns its value; CNoSuchElementException
    /// when absent.
    V Remove(K const& key) {
        Entry* e = UnlinkHashed(Traits::GetHashCode(key), key);
        if (e == nullptr)
            throw CNoSuchElementException(m_unit, __LINE__);
        return TakeValue(e);
    }

    /// Drops every entry; the capacity is kept.
    void Clear() { FreeEntries(); }

    /// Keys and values bucket by bucket, each chain in order, read from the live
    /// table. The keys handed out must not be changed.
    ///@{
    CEnumeration<K> GetKeys() const {
        return new (m_unit, __LINE__) HashtableKeyEnumeration<K, V, Traits>(this);
    }
    CEnumeration<V> GetElements() const {
        return new (m_unit, __LINE__) HashtableElementEnumeration<K, V, Traits>(this);
    }
    ///@}

protected:
    /// One key and value in a bucket's chain, with the key's hash code. The hash comes
    /// last, so that it shares the value's padding when the value is small (a set's
    /// flag): 24 bytes an entry instead of 32 for string keys.
    struct Entry {
        /// The next entry of the same bucket; null at the chain's end.
        Entry* next;
        /// The copied key.
        K key;
        /// The copied value.
        V value;
        /// The key's hash code.
        std::int32_t hash;
    };

    /// Tables built on this one raise their failures under their own source path.
    CHashtable(char const* unit, long initialCapacity, float loadFactor)
        : m_unit(unit), m_slabs(nullptr), m_free(nullptr), m_bump(nullptr), m_bumpEnd(nullptr),
          m_slabEntries(kFirstSlabEntries) {
        std::uint64_t capacity = 101;
        if (initialCapacity >= 12)
            capacity = static_cast<std::uint64_t>(initialCapacity);
        if (loadFactor <= 0.0f) // a NaN stays as given
            loadFactor = 0.75f;
        std::int32_t const threshold =
            capacity > 0xFFFFFFFFu
                ? 0
                : Chain::ThresholdOf(static_cast<std::uint32_t>(capacity), loadFactor);
        if (!m_chain.Allocate(capacity, loadFactor, threshold))
            throw base::CMemoryException(m_unit, __LINE__);
    }

    /// The operations behind the public ones, for a hash computed by the caller
    /// and any key type Q that Traits::Equals compares with K (and K is made from).
    template <class Q> Entry* FindHashed(std::int32_t hash, Q const& key) const {
        return m_chain.Find(hash, [&key](Entry const* e) { return Traits::Equals(e->key, key); });
    }

    /// The value of `key`; CNoSuchElementException when absent.
    template <class Q> V& GetHashed(std::int32_t hash, Q const& key) {
        Entry* e = FindHashed(hash, key);
        if (e == nullptr)
            throw CNoSuchElementException(m_unit, __LINE__);
        return e->value;
    }

    /// Maps `key` to `value` as Put does, growing the table first when it is full; CMemoryException
    /// when it cannot grow.
    ///@{
    template <class Q>
    bool PutHashed(std::int32_t hash, Q const& key, V const& value, V* previous) {
        for (;;) {
            Entry* e = FindHashed(hash, key);
            if (e != nullptr) {
                if (previous != nullptr)
                    *previous = e->value;
                e->value = value;
                return true;
            }
            if (m_chain.IsFull()) {
                if (!m_chain.Grow())
                    throw base::CMemoryException(m_unit, __LINE__);
                continue;
            }
            m_chain.Link(NewEntry(hash, key, value, __LINE__));
            return false;
        }
    }
    ///@}

    /// Unlinks the entry of `key` (the caller destroys it), or null.
    template <class Q> Entry* UnlinkHashed(std::int32_t hash, Q const& key) {
        return m_chain.Unlink(hash, [&key](Entry const* e) { return Traits::Equals(e->key, key); });
    }

    /// The value of an unlinked entry; the entry is destroyed.
    V TakeValue(Entry* e) {
        struct Release {
            CHashtable* table;
            Entry* e;
            ~Release() { table->DeleteEntry(e); }
        } release{this, e};
        return std::move(e->value);
    }

    /// Destroys an unlinked entry and keeps its slot for reuse.
    void DeleteEntry(Entry* e) noexcept {
        e->~Entry();
        FreeSlot* slot = ::new (static_cast<void*>(e)) FreeSlot;
        slot->next = m_free;
        m_free = slot;
    }

    /// Exchanges the contents of two tables.
    void Swap(CHashtable& other) noexcept {
        std::swap(m_unit, other.m_unit);
        m_chain.Swap(other.m_chain);
        std::swap(m_slabs, other.m_slabs);
        std::swap(m_free, other.m_free);
        std::swap(m_bump, other.m_bump);
        std::swap(m_bumpEnd, other.m_bumpEnd);
        std::swap(m_slabEntries, other.m_slabEntries);
    }

private:
    /// Entries come from slabs that the table allocates in growing sizes and keeps
    /// until it is cleared or destroyed; removed entries are reused. This spares the
    /// heap one allocation per key and keeps the entries close together.
    struct Slab {
        Slab* next;
        std::uint32_t entries;
    };
    struct FreeSlot {
        FreeSlot* next;
    };
    static constexpr std::size_t kSlabHeader =
        (sizeof(Slab) + alignof(Entry) - 1) / alignof(Entry) * alignof(Entry);
    static constexpr std::uint32_t kFirstSlabEntries = 8;
    static constexpr std::uint32_t kLargestSlabEntries = 4096;

    friend class HashtableKeyEnumeration<K, V, Traits>;
    friend class HashtableElementEnumeration<K, V, Traits>;

    typedef base::detail::ChainedHash<Entry> Chain;

    void* TakeSlot(int line) {
        if (m_free != nullptr) {
            FreeSlot* slot = m_free;
            m_free = slot->next;
            slot->~FreeSlot();
            return slot;
        }
        if (m_bump == m_bumpEnd) {
            std::size_t const bytes = kSlabHeader + m_slabEntries * sizeof(Entry);
            Slab* slab = ::new (base::CBase::operator new(bytes, m_unit, line)) Slab;
            slab->next = m_slabs;
            slab->entries = m_slabEntries;
            m_slabs = slab;
            m_bump = reinterpret_cast<char*>(slab) + kSlabHeader;
            m_bumpEnd = m_bump + m_slabEntries * sizeof(Entry);
            if (m_slabEntries < kLargestSlabEntries)
                m_slabEntries *= 2;
        }
        void* slot = m_bump;
        m_bump += sizeof(Entry);
        return slot;
    }

    template <class Q> Entry* NewEntry(std::int32_t hash, Q const& key, V const& value, int line) {
        void* place = TakeSlot(line);
        try {
            return ::new (place) Entry{nullptr, K(key), value, hash};
        } catch (...) {
            FreeSlot* slot = ::new (place) FreeSlot;
            slot->next = m_free;
            m_free = slot;
            throw;
        }
    }

    /// Destroys every entry and gives the slabs back.
    void FreeEntries() noexcept {
        if (m_chain.Count() > 0) {
            if constexpr (!std::is_trivially_destructible<Entry>::value) {
                if (m_free == nullptr)
                    DestroyInSlabOrder();
                else
                    m_chain.Clear([](Entry* e) { e->~Entry(); });
            }
            m_chain.Forget();
        }
        while (m_slabs != nullptr) {
            Slab* next = m_slabs->next;
            base::CBase::operator delete(m_slabs);
            m_slabs = next;
        }
        m_free = nullptr;
        m_bump = m_bumpEnd = nullptr;
        m_slabEntries = kFirstSlabEntries;
    }

    /// With no slot waiting for reuse, every slot below the bump pointer holds an
    /// entry: destroy them in the order they were made (oldest slab first), which
    /// walks memory in sequence and hands keys back to their allocator in order.
    /// The caller clears the bucket heads and the count.
    void DestroyInSlabOrder() noexcept {
        Slab* reversed = nullptr;
        while (m_slabs != nullptr) {
            Slab* next = m_slabs->next;
            m_slabs->next = reversed;
            reversed = m_slabs;
            m_slabs = next;
        }
        m_slabs = reversed;
        for (Slab* slab = m_slabs; slab != nullptr; slab = slab->next) {
            char* first = reinterpret_cast<char*>(slab) + kSlabHeader;
            char* end = slab->next == nullptr ? m_bump : first + slab->entries * sizeof(Entry);
            for (char* slot = first; slot != end; slot += sizeof(Entry)) {
                if (end - slot > static_cast<std::ptrdiff_t>(kPrefetchAhead * sizeof(Entry)))
                    PrefetchText(
                        reinterpret_cast<Entry*>(slot + kPrefetchAhead * sizeof(Entry))->key);
                reinterpret_cast<Entry*>(slot)->~Entry();
            }
        }
    }

    /// A string key's destructor reads its sharer count, the last of the header words
    /// the strings keep in front of their text: a cache miss per key that the walk
    /// would otherwise wait for one at a time.
    static constexpr std::size_t kPrefetchAhead = 8;
    template <class T> static void PrefetchText(T const& key) {
        void const* text = nullptr;
        if constexpr (std::is_same<T, base::CString>::value)
            text = static_cast<char const*>(key);
        else if constexpr (std::is_same<T, base::CUnicodeString>::value)
            text = static_cast<unsigned short const*>(key);
        if (text == nullptr)
            return;
        // Address arithmetic only: a prefetch never faults.
        std::uintptr_t const count = reinterpret_cast<std::uintptr_t>(text) - sizeof(std::uint32_t);
        __builtin_prefetch(reinterpret_cast<void const*>(count), 1);
    }

    char const* m_unit;
    Chain m_chain;
    Slab* m_slabs;
    FreeSlot* m_free;
    char* m_bump;
    char* m_bumpEnd;
    std::uint32_t m_slabEntries;
};

/// The walk of the hashtable enumerations: bucket by bucket, each chain in order.
template <class K, class V, class Traits> class HashtableKeyEnumeration : public IEnumeration<K> {
public:
    /// The table walked.
    typedef CHashtable<K, V, Traits> Table;

    /// Starts at the first bucket of `table`, which must outlive the enumeration and stay unchanged
    /// during the walk.
    explicit HashtableKeyEnumeration(Table const* table)
        : m_table(table), m_cursor(&table->m_chain) {}
    bool HasMoreElements() const override { return m_cursor.HasMore(); }
    K* NextElement() override { return &Advance()->key; }
    void Reset() override { m_cursor.Reset(); }

protected:
    /// The next entry; CNoSuchElementException when none is left.
    typename Table::Entry* Advance() {
        typename Table::Entry* e = m_cursor.Advance();
        if (e == nullptr)
            throw CNoSuchElementException(m_table->m_unit, __LINE__);
        return e;
    }

private:
    Table const* m_table;
    typename Table::Chain::Cursor m_cursor;
};

/// The same walk handing out the values.
template <class K, class V, class Traits>
class HashtableElementEnumeration : public IEnumeration<V> {
public:
    /// Starts at the first bucket of `table`, which must outlive the enumeration and stay unchanged
    /// during the walk.
    explicit HashtableElementEnumeration(CHashtable<K, V, Traits> const* table) : m_keys(table) {}
    bool HasMoreElements() const override { return m_keys.HasMoreElements(); }
    V* NextElement() override { return &m_keys.Next()->value; }
    void Reset() override { m_keys.Reset(); }

private:
    struct Keys : HashtableKeyEnumeration<K, V, Traits> {
        using HashtableKeyEnumeration<K, V, Traits>::HashtableKeyEnumeration;
        typename CHashtable<K, V, Traits>::Entry* Next() { return this->Advance(); }
    };
    Keys m_keys;
};

} // namespace util
} // namespace lumo

#endif
