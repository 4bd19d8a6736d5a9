// detail::ArrayStore: the growable C-heap buffer behind the vectors, stack and queue,
// which reports exhausted memory by returning false so each container raises its own.
#ifndef LUMO_UTIL_ARRAYSTORE_H
#define LUMO_UTIL_ARRAYSTORE_H

#include <lumo/util/Capacity.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace lumo {
namespace util {
namespace detail {

/// The growable C-heap buffer behind the vectors: elements, size, capacity and the
/// increment of the capacity rule. It reports exhausted memory by returning false
/// and is then unchanged, so that each container raises the failure with its own
/// source; every allocation happens before any element is touched. Exceptions from
/// the elements' own copies pass through; the buffer stays consistent (nothing
/// leaks, nothing is destroyed twice).
template <class T> class ArrayStore {
public:
    explicit ArrayStore(std::uint32_t increment)
        : m_data(nullptr), m_size(0), m_capacity(0), m_increment(increment) {}
    ~ArrayStore() {
        DestroyRange(m_data, 0, m_size);
        std::free(m_data);
    }
    ArrayStore(ArrayStore const&) = delete;
    ArrayStore& operator=(ArrayStore const&) = delete;

    T* Data() const { return m_data; }
    std::uint32_t Size() const { return m_size; }
    std::uint32_t Capacity() const { return m_capacity; }
    std::uint32_t Increment() const { return m_increment; }

    /// Growth: the capacity rule for `n` slots, keeping the elements. Never shrinks.
    bool Reserve(std::uint64_t n) {
        std::uint32_t needed;
        if (!RoundUpCapacity(n, m_increment, needed))
            return false;
        if (needed <= m_capacity)
            return true;
        return Reallocate(needed);
    }

    /// `value` may be one of the store's own elements: it is copied before the
    /// buffer moves, and a failing copy leaves everything in place.
    bool Append(T const& value) {
        T copy(value);
        if (m_size == m_capacity && !Reserve(static_cast<std::uint64_t>(m_size) + 1))
            return false;
        ::new (static_cast<void*>(m_data + m_size)) T(std::move_if_noexcept(copy));
        ++m_size;
        return true;
    }

    /// `index` <= size; `value` may be one of the store's own elements.
    bool Insert(std::uint32_t index, T const& value) {
        if (index == m_size)
            return Append(value);
        T copy(value);
        if (m_size == m_capacity && !Reserve(static_cast<std::uint64_t>(m_size) + 1))
            return false;
        if constexpr (std::is_trivially_copyable<T>::value) {
            std::memmove(static_cast<void*>(m_data + index + 1),
                         static_cast<void const*>(m_data + index), (m_size - index) * sizeof(T));
            ::new (static_cast<void*>(m_data + index)) T(copy);
            ++m_size;
            return true;
        }
        ::new (static_cast<void*>(m_data + m_size)) T(std::move_if_noexcept(m_data[m_size - 1]));
        ++m_size;
        for (std::uint32_t i = m_size - 2; i > index; --i)
            m_data[i] = std::move_if_noexcept(m_data[i - 1]);
        m_data[index] = std::move_if_noexcept(copy);
        return true;
    }

    /// Removes the element at `index` (< size) and compacts.
    bool RemoveAt(std::uint32_t index) {
        std::uint32_t const newSize = m_size - 1;
        std::uint32_t const target = CompactedCapacity(newSize, m_increment);
        if (target < m_capacity) {
            T* fresh = AllocateSlots(target);
            if (fresh == nullptr)
                return false;
            RelocateAround(fresh, index);
            m_data = fresh;
            m_capacity = target;
            m_size = newSize;
            return true;
        }
        if constexpr (std::is_trivially_copyable<T>::value) {
            std::memmove(static_cast<void*>(m_data + index),
                         static_cast<void const*>(m_data + index + 1),
                         (newSize - index) * sizeof(T));
        } else {
            for (std::uint32_t i = index; i < newSize; ++i)
                m_data[i] = std::move_if_noexcept(m_data[i + 1]);
            m_data[newSize].~T();
        }
        m_size = newSize;
        return true;
    }

    /// Calls `visit` on every element (in index order), destroys them all and
    /// compacts. The compacted buffer is obtained before anything is visited.
    template <class Visit> bool Clear(Visit visit) {
        if (m_data == nullptr)
            return true;
        std::uint32_t const target = CompactedCapacity(0, m_increment);
        T* fresh = nullptr;
        if (target < m_capacity) {
            fresh = AllocateSlots(target);
            if (fresh == nullptr)
                return false;
        }
        for (std::uint32_t i = 0; i < m_size; ++i)
            visit(m_data[i]);
        DestroyRange(m_data, 0, m_size);
        m_size = 0;
        if (fresh != nullptr) {
            std::free(m_data);
            m_data = fresh;
            m_capacity = target;
        }
        return true;
    }

    bool Clear() {
        return Clear([](T&) {});
    }

    /// Exactly `size` slots (no buffer at all when empty); the one place where the
    /// capacity may stop being a multiple of the increment.
    bool TrimToSize() {
        if (m_size >= m_capacity)
            return true;
        if (m_size == 0) {
            std::free(m_data);
            m_data = nullptr;
            m_capacity = 0;
            return true;
        }
        return Reallocate(m_size);
    }

    /// Replaces the contents with `count` elements, element i constructed from
    /// make(i). The capacity follows the fresh-allocation rule (grow to the rounded
    /// count when needed) and then compaction when the size fell. `visitOld` sees
    /// every old element once the new ones exist. If `make` throws, the new
    /// elements are destroyed and the store is unchanged.
    template <class Make, class Visit> bool Assign(std::uint32_t count, Make make, Visit visitOld) {
        std::uint32_t newCapacity = m_capacity;
        if (count > 0) {
            std::uint32_t needed;
            if (!RoundUpCapacity(count, m_increment, needed))
                return false;
            if (needed > newCapacity)
                newCapacity = needed;
        }
        if (count < m_size) {
            std::uint32_t const target = CompactedCapacity(count, m_increment);
            if (target < newCapacity)
                newCapacity = target;
        }
        T* fresh = m_data;
        bool const reuse = (m_size == 0 && newCapacity == m_capacity);
        if (!reuse && newCapacity > 0) {
            fresh = AllocateSlots(newCapacity);
            if (fresh == nullptr)
                return false;
        }
        std::uint32_t made = 0;
        try {
            for (; made < count; ++made)
                ::new (static_cast<void*>(fresh + made)) T(make(made));
        } catch (...) {
            DestroyRange(fresh, 0, made);
            if (!reuse)
                std::free(fresh);
            throw;
        }
        for (std::uint32_t i = 0; i < m_size; ++i)
            visitOld(m_data[i]);
        DestroyRange(m_data, 0, m_size);
        if (!reuse) {
            std::free(m_data);
            m_data = newCapacity > 0 ? fresh : nullptr;
            m_capacity = newCapacity;
        }
        m_size = count;
        return true;
    }

    /// Exchanges the whole state with `other` (increment included).
    void Swap(ArrayStore& other) noexcept {
        std::swap(m_data, other.m_data);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
        std::swap(m_increment, other.m_increment);
    }

    /// Null when `count` slots cannot be obtained (or their byte size overflows).
    static T* AllocateSlots(std::uint32_t count) {
        if (count > static_cast<std::size_t>(-1) / sizeof(T))
            return nullptr;
        return static_cast<T*>(std::malloc(count == 0 ? 1 : count * sizeof(T)));
    }

    static void DestroyRange(T* data, std::uint32_t from, std::uint32_t to) noexcept {
        if constexpr (!std::is_trivially_destructible<T>::value)
            for (std::uint32_t i = from; i < to; ++i)
                data[i].~T();
    }

private:
    bool Reallocate(std::uint32_t capacity) {
        T* fresh = AllocateSlots(capacity);
        if (fresh == nullptr)
            return false;
        RelocateAround(fresh, m_size);
        m_data = fresh;
        m_capacity = capacity;
        return true;
    }

    /// Moves every element except the one at `skip` (size or more skips nothing)
    /// into `fresh`, then destroys the old elements (the skipped one included) and
    /// frees the old buffer. On an exception from a copy, `fresh` is released and
    /// the old buffer is untouched.
    void RelocateAround(T* fresh, std::uint32_t skip) {
        if constexpr (std::is_trivially_copyable<T>::value) {
            std::uint32_t const head = skip < m_size ? skip : m_size;
            if (head > 0)
                std::memcpy(static_cast<void*>(fresh), static_cast<void const*>(m_data),
                            static_cast<std::size_t>(head) * sizeof(T));
            if (skip < m_size && m_size - skip > 1)
                std::memcpy(static_cast<void*>(fresh + skip),
                            static_cast<void const*>(m_data + skip + 1),
                            static_cast<std::size_t>(m_size - skip - 1) * sizeof(T));
        } else {
            std::uint32_t made = 0;
            try {
                for (std::uint32_t i = 0; i < m_size; ++i) {
                    if (i == skip)
                        continue;
                    ::new (static_cast<void*>(fresh + made)) T(std::move_if_noexcept(m_data[i]));
                    ++made;
                }
            } catch (...) {
                DestroyRange(fresh, 0, made);
                std::free(fresh);
                throw;
            }
            DestroyRange(m_data, 0, m_size);
        }
        std::free(m_data);
    }

    T* m_data;
    std::uint32_t m_size;
    std::uint32_t m_capacity;
    std::uint32_t m_increment;
};

} // namespace detail
} // namespace util
} // namespace lumo

#endif
