// CObjectHashtable: a chained hash map from object keys to object values by GetHashCode
// and Equals, optionally owning them, and its key and element enumerations.
#ifndef LUMO_UTIL_OBJECTHASHTABLE_H
#define LUMO_UTIL_OBJECTHASHTABLE_H

#include <lumo/base/Object.h>
#include <lumo/base/detail/ChainedHash.h>
#include <lumo/util/Enumeration.h>

#include <cstdint>

namespace lumo {
namespace util {

namespace detail {
class ObjectHashtableCursor;
}

/// A chained hash map from object keys to object values, keyed by the keys'
/// GetHashCode and Equals. Each entry keeps its key's hash, so growing never asks a
/// key again and lookups compare hashes before calling Equals. When `owns` is set
/// the table deletes the keys and values it drops. A null key throws
/// CIllegalArgumentException "Invalid key object.", a null value "Invalid value
/// object.".
class LUMO_API CObjectHashtable {
public:
    /// A capacity below 12 becomes 101 (larger ones are taken as given); a load
    /// factor not above 0 becomes 0.75.
    explicit CObjectHashtable(long initialCapacity = 101, float loadFactor = 0.75f,
                              bool owns = true);
    /// Takes the other table's owns flag, load factor, threshold and capacity, and
    /// maps a Clone() of every key to another Clone() of that same key (not of its
    /// value): a copied table maps each key to a copy of itself. Chains come out in
    /// reverse order. A null clone gives CIllegalArgumentException "Invalid key
    /// object.".
    CObjectHashtable(CObjectHashtable const& other);
    /// Replaces the whole table (owns flag, load factor and capacity included) with
    /// one that maps a Clone() of every key of `other` to a Clone() of its value.
    /// On failure the table is unchanged.
    CObjectHashtable& operator=(CObjectHashtable const& other);
    ~CObjectHashtable();

    /// The number of keys.
    unsigned long GetSize() const { return m_chain.Count(); }
    /// True when the table holds no key.
    bool IsEmpty() const { return m_chain.Count() == 0; }
    /// The number of buckets.
    unsigned long GetCapacity() const { return m_chain.Capacity(); }
    /// True when the table deletes the keys and values it drops.
    bool IsOwner() const { return m_owns; }

    /// Maps `key` to `value`. For a present key only the value is replaced (the old
    /// one deleted when owning) and `key` stays the caller's; a new key and its
    /// value are taken over. A new key arriving at a full table first doubles it.
    void Put(base::CObject* key, base::CObject* value);
    /// The value of `key` (still the table's); CNoSuchElementException when absent.
    base::CObject* Get(base::CObject const* key) const;
    /// Whether some key Equals(key).
    bool ContainsKey(base::CObject const* key) const;
    /// Whether some value Equals(value).
    bool Contains(base::CObject const* value) const;
    /// Removes the entry of `key` if there is one (deleting key and value when
    /// owning) and then always throws CNoSuchElementException, removal or not:
    /// callers that remove catch it.
    void Remove(base::CObject const* key);
    /// Drops every entry; the capacity is kept.
    void Clear();

    /// The keys bucket by bucket, read from the live table.
    CEnumeration<base::CObject> GetKeys() const;
    /// The values bucket by bucket, read from the live table.
    CEnumeration<base::CObject> GetElements() const;

    /// One mapping; opaque outside the table.
    struct Entry;

private:
    friend class detail::ObjectHashtableCursor;

    CObjectHashtable(bool owns, float loadFactor, std::int32_t threshold, std::uint32_t capacity);
    Entry* Find(std::int32_t hash, base::CObject const* key) const;
    void FreeEntries() noexcept;

    bool m_owns;
    base::detail::ChainedHash<Entry> m_chain;
};

namespace detail {
/// The walk shared by the key and element enumerations of a table.
class LUMO_API ObjectHashtableCursor {
public:
    explicit ObjectHashtableCursor(CObjectHashtable const* table);
    bool HasMore() const;
    /// The next entry's key or value; CNoSuchElementException past the end.
    base::CObject* NextKey();
    base::CObject* NextValue();
    void Reset();

private:
    base::detail::ChainedHash<CObjectHashtable::Entry>::Cursor m_cursor;
};
} // namespace detail

/// Enumerate the keys, or the values, of a table bucket by bucket and each chain in
/// order. They read the live table, which must not change meanwhile.
class LUMO_API CObjectHashtableKeyEnumeration : public IEnumeration<base::CObject> {
public:
    /// Starts at the first bucket of `table`, which must outlive the enumeration.
    explicit CObjectHashtableKeyEnumeration(CObjectHashtable const* table) : m_cursor(table) {}
    bool HasMoreElements() const override { return m_cursor.HasMore(); }
    base::CObject* NextElement() override { return m_cursor.NextKey(); }
    void Reset() override { m_cursor.Reset(); }

private:
    detail::ObjectHashtableCursor m_cursor;
};

/// The values of a table, in the order of the key enumeration.
class LUMO_API CObjectHashtableElementEnumeration : public IEnumeration<base::CObject> {
public:
    /// Starts at the first bucket of `table`, which must outlive the enumeration.
    explicit CObjectHashtableElementEnumeration(CObjectHashtable const* table) : m_cursor(table) {}
    bool HasMoreElements() const override { return m_cursor.HasMore(); }
    base::CObject* NextElement() override { return m_cursor.NextValue(); }
    void Reset() override { m_cursor.Reset(); }

private:
    detail::ObjectHashtableCursor m_cursor;
};

} // namespace util
} // namespace lumo

#endif
