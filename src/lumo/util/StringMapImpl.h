// Internal: the operations on the parallel key and value arrays of CStringMap and
// CUnicodeStringMap, written once for any string class over references to the map's fields.
#ifndef LUMO_SRC_UTIL_STRINGMAPIMPL_H
#define LUMO_SRC_UTIL_STRINGMAPIMPL_H

// The parallel key and value arrays behind CStringMap and CUnicodeStringMap,
// written once for any string class S over code units Ch. Both arrays always have
// the same capacity; every allocation happens before anything changes, and when
// the second array cannot be obtained the first is released again.

#include <lumo/base/Exception.h>
#include <lumo/util/ArrayStore.h>
#include <lumo/util/Capacity.h>
#include <lumo/util/NoSuchElementException.h>

#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>

namespace lumo {
namespace util {
namespace detail {

template <class S, class Ch> class StringMapImpl {
    static_assert(std::is_nothrow_move_constructible<S>::value &&
                      std::is_nothrow_move_assignable<S>::value,
                  "entries are moved between arrays without a way back");

public:
    typedef ArrayStore<S> Slots;

    StringMapImpl(S*& keys, S*& values, std::uint32_t& size, std::uint32_t& capacity,
                  std::uint32_t& increment, char const* unit)
        : m_keys(keys), m_values(values), m_size(size), m_capacity(capacity),
          m_increment(increment), m_unit(unit) {}

    static std::uint32_t IncrementOf(unsigned long increment) {
        if (increment == 0)
            return 5;
        return increment > 0xFFFFFFFFul ? 0xFFFFFFFFu : static_cast<std::uint32_t>(increment);
    }

    [[noreturn]] void ThrowMemory(int line) const {
        throw base::CMemoryException(m_unit, static_cast<unsigned long>(line));
    }

    void CheckKey(Ch const* key, int line) const {
        if (key == nullptr || *key == 0)
            throw base::CIllegalArgumentException(m_unit, static_cast<unsigned long>(line),
                                                  "Invalid key.");
    }

    std::uint32_t CheckIndex(unsigned long index, int line) const {
        if (index >= m_size)
            throw base::CArrayIndexOutOfBoundsException(m_unit, static_cast<unsigned long>(line));
        return static_cast<std::uint32_t>(index);
    }

    long IndexOfKey(Ch const* key, bool caseSensitive) const {
        CheckKey(key, __LINE__);
        for (std::uint32_t i = 0; i < m_size; ++i) {
            int const order =
                caseSensitive ? m_keys[i].Compare(key) : m_keys[i].CompareIgnoreCase(key);
            if (order == 0)
                return static_cast<long>(i);
        }
        return -1;
    }

    long IndexOfValue(Ch const* value) const {
        for (std::uint32_t i = 0; i < m_size; ++i)
            if (m_values[i] == value) // a null text compares as an empty one
                return static_cast<long>(i);
        return -1;
    }

    S& Get(Ch const* key, bool caseSensitive) const {
        long const index = IndexOfKey(key, caseSensitive);
        if (index < 0)
            throw CNoSuchElementException(m_unit, __LINE__);
        return m_values[index];
    }

    void Put(Ch const* key, Ch const* value, bool caseSensitive) {
        long const index = IndexOfKey(key, caseSensitive);
        if (index >= 0) {
            m_values[index] = value; // a null value empties it
            return;
        }
        S newKey(key), newValue(value);
        if (m_size == m_capacity) {
            std::uint32_t needed;
            if (!RoundUpCapacity(static_cast<std::uint64_t>(m_size) + 1, m_increment, needed))
                ThrowMemory(__LINE__);
            Reallocate(needed, m_size, __LINE__);
        }
        ::new (static_cast<void*>(m_keys + m_size)) S(std::move(newKey));
        ::new (static_cast<void*>(m_values + m_size)) S(std::move(newValue));
        ++m_size;
    }

    void RemoveAt(std::uint32_t index) {
        std::uint32_t const target = CompactedCapacity(m_size - 1, m_increment);
        if (target < m_capacity) {
            Reallocate(target, index, __LINE__);
            return;
        }
        for (std::uint32_t i = index + 1; i < m_size; ++i) {
            m_keys[i - 1] = std::move(m_keys[i]);
            m_values[i - 1] = std::move(m_values[i]);
        }
        --m_size;
        m_keys[m_size].~S();
        m_values[m_size].~S();
    }

    void RemoveAll() {
        if (m_keys == nullptr)
            return;
        std::uint32_t const target = CompactedCapacity(0, m_increment);
        if (target < m_capacity) {
            Reallocate(target, 0, __LINE__, true);
            return;
        }
        Destroy(m_keys, m_values, m_size);
        m_size = 0;
    }

    void Reserve(unsigned long n) {
        std::uint32_t needed;
        if (!RoundUpCapacity(n, m_increment, needed))
            ThrowMemory(__LINE__);
        if (needed > m_capacity)
            Reallocate(needed, m_size, __LINE__);
    }

    void TrimToSize() {
        if (m_size >= m_capacity)
            return;
        if (m_size == 0) {
            std::free(m_keys);
            std::free(m_values);
            m_keys = m_values = nullptr;
            m_capacity = 0;
            return;
        }
        Reallocate(m_size, m_size, __LINE__);
    }

    // Copies `count` entries into these (empty, unallocated) arrays.
    void CopyFrom(S const* keys, S const* values, std::uint32_t count) {
        if (count == 0)
            return;
        std::uint32_t capacity;
        if (!RoundUpCapacity(count, m_increment, capacity))
            ThrowMemory(__LINE__);
        Allocate(capacity, __LINE__);
        for (std::uint32_t i = 0; i < count; ++i) {
            ::new (static_cast<void*>(m_keys + i)) S(keys[i]);
            ::new (static_cast<void*>(m_values + i)) S(values[i]);
        }
        m_size = count;
    }

    static void Destroy(S* keys, S* values, std::uint32_t count) noexcept {
        Slots::DestroyRange(keys, 0, count);
        Slots::DestroyRange(values, 0, count);
    }

    bool Equal(S const* keys, S const* values, std::uint32_t count) const {
        if (count != m_size)
            return false;
        for (std::uint32_t i = 0; i < count; ++i)
            if (!(m_keys[i] == keys[i]) || !(m_values[i] == values[i]))
                return false;
        return true;
    }

    // Range-checked access; `line` is the caller's, reported on a bad index.
    S& KeyAt(unsigned long index, int line) const { return m_keys[CheckIndex(index, line)]; }
    S& ValueAt(unsigned long index, int line) const { return m_values[CheckIndex(index, line)]; }

    void Remove(Ch const* key, bool caseSensitive) {
        long const index = IndexOfKey(key, caseSensitive);
        if (index >= 0)
            RemoveAt(static_cast<std::uint32_t>(index));
    }

    // Exchanges everything but the case rule, which only CStringMap has.
    void Swap(StringMapImpl&& other) noexcept {
        std::swap(m_keys, other.m_keys);
        std::swap(m_values, other.m_values);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
        std::swap(m_increment, other.m_increment);
    }

    void Release() noexcept {
        Destroy(m_keys, m_values, m_size);
        std::free(m_keys);
        std::free(m_values);
    }

    // One step of a key or value iterator over `count` live entries.
    static S const& Next(S const* array, std::uint32_t count, std::uint32_t& index,
                         char const* unit, int line) {
        if (index >= count)
            throw CNoSuchElementException(unit, line);
        return array[index++];
    }

private:
    // Both arrays of `capacity` slots, or CMemoryException with nothing held.
    void Allocate(std::uint32_t capacity, int line) {
        S* keys = Slots::AllocateSlots(capacity);
        if (keys == nullptr)
            ThrowMemory(line);
        S* values = Slots::AllocateSlots(capacity);
        if (values == nullptr) {
            std::free(keys);
            ThrowMemory(line);
        }
        m_keys = keys;
        m_values = values;
        m_capacity = capacity;
    }

    // Moves the entries (all, or all but the one at `skip` when skip < size, or
    // none when `dropAll`) into fresh arrays of `capacity` slots.
    void Reallocate(std::uint32_t capacity, std::uint32_t skip, int line, bool dropAll = false) {
        S* oldKeys = m_keys;
        S* oldValues = m_values;
        std::uint32_t const oldSize = m_size;
        Allocate(capacity, line);
        std::uint32_t made = 0;
        if (!dropAll) {
            for (std::uint32_t i = 0; i < oldSize; ++i) {
                if (i == skip)
                    continue;
                // String moves cannot fail.
                ::new (static_cast<void*>(m_keys + made)) S(std::move(oldKeys[i]));
                ::new (static_cast<void*>(m_values + made)) S(std::move(oldValues[i]));
                ++made;
            }
        }
        Destroy(oldKeys, oldValues, oldSize);
        std::free(oldKeys);
        std::free(oldValues);
        m_size = made;
    }

    S*& m_keys;
    S*& m_values;
    std::uint32_t& m_size;
    std::uint32_t& m_capacity;
    std::uint32_t& m_increment;
    char const* m_unit;
};

} // namespace detail
} // namespace util
} // namespace lumo

#endif
