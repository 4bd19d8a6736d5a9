// The storage that CStringMap and CUnicodeStringMap hold: parallel key and value
// arrays in insertion order under the containers' capacity rule, with a hash index
// of the keys beside them. Internal: the maps' own headers are its only users.
#ifndef LUMO_UTIL_DETAIL_STRINGMAPSTORE_H
#define LUMO_UTIL_DETAIL_STRINGMAPSTORE_H

#include <cstdint>

namespace lumo {
namespace util {
namespace detail {

/// S is the string class, Ch its code unit. The documented capacity (a multiple of
/// the increment, or the size after TrimToSize) is what callers see; the arrays
/// underneath grow geometrically, so a capacity step costs no copy. The index is an
/// accelerator only: every answer is the one a scan from index 0 would give. While a
/// caller holds a writable key reference (GetKeyAt), a key may change behind the
/// index, so lookups scan until the next reallocation of the documented arrays ends
/// the reference's validity. An index that cannot be allocated is simply not used.
/// Only changes of the map touch the index, so concurrent readers of an unchanging
/// map stay as safe as they were.
template <class S, class Ch> class StringMapStore {
public:
    /// `unit` names the host in every exception. An increment of 0 becomes 5.
    StringMapStore(char const* unit, bool caseSensitive, unsigned long initialCapacity,
                   unsigned long increment);
    /// Capacity: the source's size rounded up; the increment and case rule are copied.
    StringMapStore(StringMapStore const& other);
    /// Copy and swap: takes the source's entries, increment and case rule.
    StringMapStore& operator=(StringMapStore const& other);
    ~StringMapStore();

    std::uint32_t Size() const { return m_size; }
    std::uint32_t Capacity() const { return m_capacity; }
    bool CaseSensitive() const { return m_caseSensitive; }

    /// Null or empty key: CIllegalArgumentException "Invalid key.".
    long IndexOfKey(Ch const* key) const;
    long IndexOfValue(Ch const* value) const;
    /// CNoSuchElementException when absent.
    S& Get(Ch const* key) const;
    void Put(Ch const* key, Ch const* value);
    void Remove(Ch const* key);
    void RemoveAll();
    void Reserve(unsigned long n);
    void TrimToSize();
    bool Equal(StringMapStore const& other) const;

    /// CArrayIndexOutOfBoundsException at the caller's `line` for index >= size.
    S& WritableKeyAt(unsigned long index, int line);
    S const& KeyAt(unsigned long index, int line) const;
    S& ValueAt(unsigned long index, int line) const;
    /// One step of an iterator: CNoSuchElementException at `line` past the end.
    S const& NextKey(std::uint32_t& index, int line) const;
    S const& NextValue(std::uint32_t& index, int line) const;

private:
    void Swap(StringMapStore& other) noexcept;
    void CheckKey(Ch const* key) const;
    std::uint32_t CheckIndex(unsigned long index, int line) const;
    std::uint32_t Hash(Ch const* key) const;
    bool Matches(S const& stored, Ch const* key) const;
    long Scan(Ch const* key) const;
    long Find(Ch const* key, std::uint32_t& hash, bool& hashed) const;
    bool IndexUsable() const;
    void GrowIndex() noexcept;
    bool BuildIndex(std::uint32_t entries) noexcept;
    void IndexInsert(std::uint32_t hash, std::uint32_t entry) noexcept;
    void DropIndex() noexcept;
    void Reindex() noexcept;
    void SetCapacity(std::uint32_t capacity) noexcept;
    bool Relocate(std::uint32_t slots) noexcept;
    void Grow(std::uint32_t capacity);
    void Release() noexcept;

    char const* m_unit;
    S* m_keys;
    S* m_values;
    std::uint32_t m_size;
    std::uint32_t m_capacity; // documented
    std::uint32_t m_increment;
    std::uint32_t m_slots; // allocated in each array
    bool m_caseSensitive;
    bool m_keysExposed;
    /// Open addressing, linear probing: each slot is hash << 32 | (entry + 1), 0 empty.
    std::uint64_t* m_index;
    std::uint32_t m_indexMask;
    bool m_indexCurrent;
};

} // namespace detail
} // namespace util
} // namespace lumo

#endif
