// CStringMap: an ordered map of 8-bit strings in two parallel arrays, kept in insertion
// order and searched linearly; keys compare with or without case, as chosen when made.
#ifndef LUMO_UTIL_STRINGMAP_H
#define LUMO_UTIL_STRINGMAP_H

#include <lumo/base/String.h>

#include <lumo/util/detail/StringMapStore.h>

#include <cstdint>

namespace lumo {
namespace util {

/// An ordered map of 8-bit strings: keys and values in two parallel arrays, in
/// insertion order. Lookups give the
/// first index under the key comparison, as a scan from index 0 would (an internal
/// hash index finds it). Keys compare
/// with or without case, as chosen at construction; values always exactly. The
/// arrays follow the containers' capacity rule; a failed allocation throws
/// CMemoryException and leaves the map unchanged.
class LUMO_API CStringMap {
public:
    class CKeyIterator;
    class CConstValueIterator;

    /// An increment of 0 becomes 5. Both arrays are allocated at once for a
    /// non-zero initial capacity.
    explicit CStringMap(bool caseSensitive = true, unsigned long initialCapacity = 0,
                        unsigned long increment = 5);
    /// Copies every key and value, the increment and the key comparison.
    CStringMap(CStringMap const& other);
    /// Replaces the contents with copies of the other map's, its increment and key comparison.
    CStringMap& operator=(CStringMap const& other);
    ~CStringMap();

    /// The number of entries.
    unsigned long GetSize() const { return m_store.Size(); }
    /// True when the map has no entry.
    bool IsEmpty() const { return m_store.Size() == 0; }
    /// The number of entries the arrays can hold without growing.
    unsigned long GetCapacity() const { return m_store.Capacity(); }
    /// True when keys compare with case.
    bool IsKeyCaseSensitive() const { return m_store.CaseSensitive(); }

    /// A null or empty key throws CIllegalArgumentException "Invalid key.". A
    /// present key keeps its spelling and gets the value (a null value stores an
    /// empty one); a new key is appended.
    void Put(char const* key, char const* value);
    /// The value of `key`; CNoSuchElementException when absent.
    ///@{
    base::CString& Get(char const* key);
    base::CString const& Get(char const* key) const;
    ///@}
    /// Whether `key` is present under the key comparison; CIllegalArgumentException "Invalid key."
    /// for a null or empty key.
    bool ContainsKey(char const* key) const { return GetIndexOfKey(key) >= 0; }
    /// -1 when absent; a null or empty key throws as ContainsKey does.
    long GetIndexOfKey(char const* key) const;
    /// Searches the values exactly (a null value stands for an empty one).
    ///@{
    bool Contains(char const* value) const { return GetIndexOf(value) >= 0; }
    long GetIndexOf(char const* value) const;
    ///@}

    /// The key / value at `index`; CArrayIndexOutOfBoundsException for an index >= size.
    ///@{
    base::CString& GetKeyAt(unsigned long index);
    base::CString const& GetKeyAt(unsigned long index) const;
    base::CString& GetAt(unsigned long index);
    base::CString const& GetAt(unsigned long index) const;
    ///@}

    /// Removes the entry of `key` and closes the gap; nothing when absent.
    void Remove(char const* key);
    /// Removes every entry.
    void RemoveAll();

    /// Grows the arrays to hold n entries, rounded up to the increment.
    void EnsureCapacity(unsigned long n);
    /// Shrinks the arrays to the size rounded up to the increment (never below one increment).
    void TrimToSize();

    /// Same size and exactly equal keys and values index by index.
    bool operator==(CStringMap const& other) const;
    /// The negation of ==.
    bool operator!=(CStringMap const& other) const { return !(*this == other); }

    /// The keys in index order, read from the live map.
    CKeyIterator GetKeyIterator() const;
    /// The values in index order, read from the live map.
    CConstValueIterator GetValueIterator() const;

    /// Walk the keys, or the values, in index order, reading the live map.
    class LUMO_API CKeyIterator {
    public:
        /// Starts at index 0 of `map`, which must outlive the iterator.
        explicit CKeyIterator(CStringMap const* map) : m_map(map), m_index(0) {}
        /// True while NextElement has a key to give.
        bool HasMoreElements() const { return m_index < m_map->m_store.Size(); }
        /// CNoSuchElementException past the end.
        base::CString const& NextElement();
        /// Back to index 0.
        void Reset() { m_index = 0; }

    private:
        CStringMap const* m_map;
        std::uint32_t m_index;
    };

    /// Walks the values in index order, reading the live map.
    class LUMO_API CConstValueIterator {
    public:
        /// Starts at index 0 of `map`, which must outlive the iterator.
        explicit CConstValueIterator(CStringMap const* map) : m_map(map), m_index(0) {}
        /// True while NextElement has a value to give.
        bool HasMoreElements() const { return m_index < m_map->m_store.Size(); }
        /// The next value; CNoSuchElementException past the end.
        base::CString const& NextElement();
        /// Back to index 0.
        void Reset() { m_index = 0; }

    private:
        CStringMap const* m_map;
        std::uint32_t m_index;
    };

private:
    detail::StringMapStore<base::CString, char> m_store;
};

} // namespace util
} // namespace lumo

#endif
