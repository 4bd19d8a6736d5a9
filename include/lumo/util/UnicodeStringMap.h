// CUnicodeStringMap: an ordered map of UTF-16 strings in two parallel arrays, kept in
// insertion order and searched linearly; keys and values always compare exactly.
#ifndef LUMO_UTIL_UNICODESTRINGMAP_H
#define LUMO_UTIL_UNICODESTRINGMAP_H

#include <lumo/base/UnicodeString.h>

#include <lumo/util/detail/StringMapStore.h>

#include <cstdint>

namespace lumo {
namespace util {

/// An ordered map of UTF-16 strings: keys and values in two parallel arrays, in
/// insertion order. Lookups give the
/// first index under the key comparison, as a scan from index 0 would (an internal
/// hash index finds it). Keys and values
/// compare exactly (there is no case-insensitive mode). The
/// arrays follow the containers' capacity rule; a failed allocation throws
/// CMemoryException and leaves the map unchanged.
class LUMO_API CUnicodeStringMap {
public:
    class CKeyIterator;
    class CConstValueIterator;

    /// An increment of 0 becomes 5. Both arrays are allocated at once for a
    /// non-zero initial capacity.
    explicit CUnicodeStringMap(unsigned long initialCapacity = 0, unsigned long increment = 5);
    /// Copies every key and value and the increment.
    CUnicodeStringMap(CUnicodeStringMap const& other);
    /// Replaces the contents with copies of the other map's and its increment.
    CUnicodeStringMap& operator=(CUnicodeStringMap const& other);
    ~CUnicodeStringMap();

    /// The number of entries.
    unsigned long GetSize() const { return m_store.Size(); }
    /// True when the map has no entry.
    bool IsEmpty() const { return m_store.Size() == 0; }
    /// The number of entries the arrays can hold without growing.
    unsigned long GetCapacity() const { return m_store.Capacity(); }

    /// A null or empty key throws CIllegalArgumentException "Invalid key.". A
    /// present key keeps its spelling and gets the value (a null value stores an
    /// empty one); a new key is appended.
    void Put(unsigned short const* key, unsigned short const* value);
    /// The value of `key`; CNoSuchElementException when absent.
    ///@{
    base::CUnicodeString& Get(unsigned short const* key);
    base::CUnicodeString const& Get(unsigned short const* key) const;
    ///@}
    /// Whether `key` is present; CIllegalArgumentException "Invalid key." for a
    /// null or empty key.
    bool ContainsKey(unsigned short const* key) const { return GetIndexOfKey(key) >= 0; }
    /// -1 when absent; a null or empty key throws as ContainsKey does.
    long GetIndexOfKey(unsigned short const* key) const;
    /// Searches the values exactly (a null value stands for an empty one).
    ///@{
    bool Contains(unsigned short const* value) const { return GetIndexOf(value) >= 0; }
    long GetIndexOf(unsigned short const* value) const;
    ///@}

    /// The key / value at `index`; CArrayIndexOutOfBoundsException for an index >= size.
    ///@{
    base::CUnicodeString& GetKeyAt(unsigned long index);
    base::CUnicodeString const& GetKeyAt(unsigned long index) const;
    base::CUnicodeString& GetAt(unsigned long index);
    base::CUnicodeString const& GetAt(unsigned long index) const;
    ///@}

    /// Removes the entry of `key` and closes the gap; nothing when absent.
    void Remove(unsigned short const* key);
    /// Removes every entry.
    void RemoveAll();

    /// Grows the arrays to hold n entries, rounded up to the increment.
    void EnsureCapacity(unsigned long n);
    /// Shrinks the arrays to the size rounded up to the increment (never below one increment).
    void TrimToSize();

    /// Same size and exactly equal keys and values index by index.
    bool operator==(CUnicodeStringMap const& other) const;
    /// The negation of ==.
    bool operator!=(CUnicodeStringMap const& other) const { return !(*this == other); }

    /// The keys in index order, read from the live map.
    CKeyIterator GetKeyIterator() const;
    /// The values in index order, read from the live map.
    CConstValueIterator GetValueIterator() const;

    /// Walk the keys, or the values, in index order, reading the live map.
    class LUMO_API CKeyIterator {
    public:
        /// Starts at index 0 of `map`, which must outlive the iterator.
        explicit CKeyIterator(CUnicodeStringMap const* map) : m_map(map), m_index(0) {}
        /// True while NextElement has a key to give.
        bool HasMoreElements() const { return m_index < m_map->m_store.Size(); }
        /// CNoSuchElementException past the end.
        base::CUnicodeString const& NextElement();
        /// Back to index 0.
        void Reset() { m_index = 0; }

    private:
        CUnicodeStringMap const* m_map;
        std::uint32_t m_index;
    };

    /// Walks the values in index order, reading the live map.
    class LUMO_API CConstValueIterator {
    public:
        /// Starts at index 0 of `map`, which must outlive the iterator.
        explicit CConstValueIterator(CUnicodeStringMap const* map) : m_map(map), m_index(0) {}
        /// True while NextElement has a value to give.
        bool HasMoreElements() const { return m_index < m_map->m_store.Size(); }
        /// The next value; CNoSuchElementException past the end.
        base::CUnicodeString const& NextElement();
        /// Back to index 0.
        void Reset() { m_index = 0; }

    private:
        CUnicodeStringMap const* m_map;
        std::uint32_t m_index;
    };

private:
    detail::StringMapStore<base::CUnicodeString, unsigned short> m_store;
};

} // namespace util
} // namespace lumo

#endif
