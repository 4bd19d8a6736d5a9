// Queue: a first-in-first-out queue of values in a ring buffer that follows the
// containers' capacity rule, growing and shrinking in whole increments.
#ifndef LUMO_UTIL_QUEUE_H
#define LUMO_UTIL_QUEUE_H

#include <lumo/base/Exception.h>
#include <lumo/util/ArrayStore.h>
#include <lumo/util/Capacity.h>
#include <lumo/util/NoSuchElementException.h>

#include <cstdlib>
#include <new>
#include <utility>

namespace lumo {
namespace util {

/// A first-in-first-out queue of values of T in a ring buffer with the containers'
/// capacity rule: it grows to a multiple of the increment and shrinks in whole
/// increments as values leave, never below one increment. Taking from an empty
/// queue throws CEmptyQueueException; a failed allocation throws CMemoryException
/// and leaves the queue unchanged.
template <class T> class Queue {
public:
    /// An increment of 0 is rejected (CIllegalArgumentException "Invalid increment.").
    explicit Queue(unsigned long initialCapacity = 10, unsigned long increment = 10)
        : m_data(nullptr), m_head(0), m_size(0), m_capacity(0),
          m_increment(CheckedIncrement(increment)) {
        if (initialCapacity != 0) {
            std::uint32_t capacity;
            if (!RoundUpCapacity(initialCapacity, m_increment, capacity))
                ThrowMemory(__LINE__);
            m_data = Slots::AllocateSlots(capacity);
            if (m_data == nullptr)
                ThrowMemory(__LINE__);
            m_capacity = capacity;
        }
    }

    /// Copies every value and the increment.
    Queue(Queue const& other)
        : m_data(nullptr), m_head(0), m_size(0), m_capacity(0), m_increment(other.m_increment) {
        if (other.m_size > 0)
            Rebuild(other, other.m_capacity, 0, __LINE__);
    }

    /// Replaces the contents with copies of the other queue's values (copy first, so a failure
    /// leaves this queue as it was).
    Queue& operator=(Queue const& other) {
        if (this != &other) {
            Queue copy(other);
            Swap(copy);
        }
        return *this;
    }

    ~Queue() {
        Clear(m_data, m_head, m_size, m_capacity);
        std::free(m_data);
    }

    /// The number of values.
    unsigned long GetSize() const { return m_size; }
    /// True when the queue has no value.
    bool IsEmpty() const { return m_size == 0; }
    /// The number of slots allocated.
    unsigned long GetCapacity() const { return m_capacity; }

    /// Adds `value` at the back.
    void Enqueue(T const& value) {
        T copy(value); // `value` may live in this queue's buffer
        if (m_size == m_capacity) {
            std::uint32_t capacity;
            if (!RoundUpCapacity(static_cast<std::uint64_t>(m_size) + 1, m_increment, capacity))
                ThrowMemory(__LINE__);
            Rebuild(*this, capacity, 0, __LINE__);
        }
        ::new (static_cast<void*>(m_data + Slot(m_size))) T(std::move_if_noexcept(copy));
        ++m_size;
    }

    /// Removes the front value and returns it.
    T Dequeue() {
        if (m_size == 0)
            throw CEmptyQueueException(kUnit, __LINE__);
        std::uint32_t const target = CompactedCapacity(m_size - 1, m_increment);
        if (target < m_capacity) {
            T value(m_data[m_head]);
            Rebuild(*this, target, 1, __LINE__);
            return value;
        }
        T value(std::move_if_noexcept(m_data[m_head]));
        m_data[m_head].~T();
        m_head = Slot(1);
        --m_size;
        return value;
    }

    /// The front value, left in place.
    ///@{
    T& Peek() { return m_data[Front(__LINE__)]; }
    T const& Peek() const { return m_data[Front(__LINE__)]; }
    ///@}

    /// Drops every value and shrinks to one increment.
    void Clear() {
        if (m_size == 0)
            return;
        if (m_capacity <= m_increment) {
            Clear(m_data, m_head, m_size, m_capacity);
            m_head = 0;
            m_size = 0;
            return;
        }
        Queue empty(m_increment, m_increment);
        Swap(empty); // `empty` now releases the old values
    }

private:
    typedef detail::ArrayStore<T> Slots;
    static constexpr char const* kUnit = "lumo/util/Queue";

    static std::uint32_t CheckedIncrement(unsigned long increment) {
        if (increment == 0 || increment > 0xFFFFFFFFul)
            throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid increment.");
        return static_cast<std::uint32_t>(increment);
    }

    [[noreturn]] static void ThrowMemory(int line) {
        throw base::CMemoryException(kUnit, static_cast<unsigned long>(line));
    }

    /// The buffer index of the i-th value from the front.
    std::uint32_t Slot(std::uint32_t i) const {
        std::uint64_t const slot = static_cast<std::uint64_t>(m_head) + i;
        return static_cast<std::uint32_t>(slot >= m_capacity ? slot - m_capacity : slot);
    }

    std::uint32_t Front(int line) const {
        if (m_size == 0)
            throw CEmptyQueueException(kUnit, static_cast<unsigned long>(line));
        return m_head;
    }

    static void Clear(T* data, std::uint32_t head, std::uint32_t size,
                      std::uint32_t capacity) noexcept {
        for (std::uint32_t i = 0; i < size; ++i) {
            std::uint64_t slot = static_cast<std::uint64_t>(head) + i;
            data[slot >= capacity ? slot - capacity : slot].~T();
        }
    }

    /// Makes this queue hold the values of `source` from its `skip`-th on, in a
    /// fresh buffer of `capacity` slots starting at slot 0. All-or-nothing: on a
    /// failure this queue (which may be `source`) is unchanged.
    void Rebuild(Queue const& source, std::uint32_t capacity, std::uint32_t skip, int line) {
        T* fresh = Slots::AllocateSlots(capacity);
        if (fresh == nullptr)
            ThrowMemory(line);
        std::uint32_t made = 0;
        bool const moving = (&source == this);
        try {
            for (std::uint32_t i = skip; i < source.m_size; ++i, ++made) {
                T& from = source.m_data[source.Slot(i)];
                if (moving)
                    ::new (static_cast<void*>(fresh + made)) T(std::move_if_noexcept(from));
                else
                    ::new (static_cast<void*>(fresh + made)) T(static_cast<T const&>(from));
            }
        } catch (...) {
            Slots::DestroyRange(fresh, 0, made);
            std::free(fresh);
            throw;
        }
        Clear(m_data, m_head, m_size, m_capacity);
        std::free(m_data);
        m_data = fresh;
        m_head = 0;
        m_size = made;
        m_capacity = capacity;
    }

    void Swap(Queue& other) noexcept {
        std::swap(m_data, other.m_data);
        std::swap(m_head, other.m_head);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
        std::swap(m_increment, other.m_increment);
    }

    T* m_data;
    std::uint32_t m_head;
    std::uint32_t m_size;
    std::uint32_t m_capacity;
    std::uint32_t m_increment;
};

} // namespace util
} // namespace lumo

#endif
