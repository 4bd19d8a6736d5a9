// CStringSet: a hashed, case-sensitive set of 8-bit strings with union, difference,
// intersection and subset tests.
#ifndef LUMO_UTIL_STRINGSET_H
#define LUMO_UTIL_STRINGSET_H

#include <lumo/base/String.h>
#include <lumo/util/Enumeration.h>

namespace lumo {
namespace util {

template <class V> class StringHashtable;

/// A hashed set of 8-bit strings (case-sensitive), with set algebra. It grows like
/// CObjectHashtable: a capacity below 12 becomes 101, a load factor not above 0
/// becomes 0.75. A null or empty text throws CIllegalArgumentException "Invalid
/// key."; a failed allocation throws CMemoryException and leaves the set unchanged.
class LUMO_API CStringSet {
public:
    /// An empty set; a capacity below 12 becomes 101 and a load factor not above 0 becomes 0.75.
    explicit CStringSet(unsigned long initialCapacity = 101, float loadFactor = 0.75f);
    /// Copies every element, the capacity and the load factor.
    CStringSet(CStringSet const& other);
    /// Replaces the elements with copies of the other set's.
    CStringSet& operator=(CStringSet const& other);
    ~CStringSet();

    /// The number of elements.
    unsigned long GetSize() const;
    /// True when the set has no element.
    bool IsEmpty() const { return GetSize() == 0; }
    /// The number of buckets.
    unsigned long GetCapacity() const;

    /// Adds `text` (nothing changes when it is already there).
    void Put(char const* text);
    /// Whether `text` is in the set; a null or empty text throws CIllegalArgumentException "Invalid
    /// key.".
    bool Contains(char const* text) const;
    /// Removes `text`; CNoSuchElementException when it is not there.
    void Remove(char const* text);
    /// Removes everything; the capacity is kept.
    void Empty();

    /// The elements bucket by bucket, read from the live set.
    CEnumeration<base::CString> GetElements() const;

    /// Same elements.
    bool operator==(CStringSet const& other) const;
    /// The negation of ==.
    bool operator!=(CStringSet const& other) const { return !(*this == other); }

    /// Union: adds every element of `other`.
    CStringSet& operator+=(CStringSet const& other);
    /// Difference: removes every element of `other` (a -= a empties a).
    CStringSet& operator-=(CStringSet const& other);
    /// Intersection: keeps the elements that `other` also has, in a fresh table of
    /// capacity 101 and load factor 0.75 (a *= a changes nothing).
    CStringSet& operator*=(CStringSet const& other);

    /// Every element of this set is in `other` (true for an empty set).
    bool IsSubSetOf(CStringSet const& other) const;
    /// Every element of `other` is in this set.
    bool IsSuperSetOf(CStringSet const& other) const { return other.IsSubSetOf(*this); }

private:
    StringHashtable<char>* m_table;
};

} // namespace util
} // namespace lumo

#endif
