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
    explicit CStringSet(unsigned long initialCapacity = 101, float loadFactor = 0.75f);
    CStringSet(CStringSet const& other);
    CStringSet& operator=(CStringSet const& other);
    ~CStringSet();

    unsigned long GetSize() const;
    bool IsEmpty() const { return GetSize() == 0; }
    unsigned long GetCapacity() const;

    /// Adds `text` (nothing changes when it is already there).
    void Put(char const* text);
    bool Contains(char const* text) const;
    /// Removes `text`; CNoSuchElementException when it is not there.
    void Remove(char const* text);
    /// Removes everything; the capacity is kept.
    void Empty();

    /// The elements bucket by bucket, read from the live set.
    CEnumeration<base::CString> GetElements() const;

    /// Same elements.
    bool operator==(CStringSet const& other) const;
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
