// Stack: a last-in-first-out stack of values on a growable buffer with the containers'
// capacity rule; taking from an empty stack throws CEmptyStackException.
#ifndef LUMO_UTIL_STACK_H
#define LUMO_UTIL_STACK_H

#include <lumo/base/Exception.h>
#include <lumo/util/ArrayStore.h>
#include <lumo/util/NoSuchElementException.h>

namespace lumo {
namespace util {

/// A last-in-first-out stack of values of T on a growable buffer with the
/// containers' capacity rule. Taking from an empty stack throws
/// CEmptyStackException; a failed allocation throws CMemoryException and leaves
/// the stack unchanged.
template <class T> class Stack {
public:
    /// An increment of 0 is rejected (CIllegalArgumentException "Invalid increment.").
    explicit Stack(unsigned long initialCapacity = 10, unsigned long increment = 10)
        : m_store(CheckedIncrement(increment)) {
        if (initialCapacity != 0 && !m_store.Reserve(initialCapacity))
            ThrowMemory(__LINE__);
    }

    /// Copies every value and the increment.
    Stack(Stack const& other) : m_store(other.m_store.Increment()) { CopyFrom(other); }

    /// Replaces the contents with copies of the other stack's values (copy first, so a failure
    /// leaves this stack as it was).
    Stack& operator=(Stack const& other) {
        if (this != &other)
            CopyFrom(other);
        return *this;
    }

    /// The number of values.
    unsigned long GetSize() const { return m_store.Size(); }
    /// True when the stack has no value.
    bool IsEmpty() const { return m_store.Size() == 0; }
    /// The number of slots allocated.
    unsigned long GetCapacity() const { return m_store.Capacity(); }

    /// Puts a copy of `value` on top.
    void Push(T const& value) {
        if (!m_store.Append(value))
            ThrowMemory(__LINE__);
    }

    /// Removes the top value and returns it.
    T Pop() {
        std::uint32_t const top = Top(__LINE__);
        T value(m_store.Data()[top]);
        if (!m_store.RemoveAt(top))
            ThrowMemory(__LINE__);
        return value;
    }

    /// The top value, left in place.
    ///@{
    T& Peek() { return m_store.Data()[Top(__LINE__)]; }
    T const& Peek() const { return m_store.Data()[Top(__LINE__)]; }
    ///@}

    /// Drops every value; the buffer shrinks to one increment.
    void Clear() {
        if (!m_store.Clear())
            ThrowMemory(__LINE__);
    }

private:
    static constexpr char const* kUnit = "lumo/util/Stack";

    static std::uint32_t CheckedIncrement(unsigned long increment) {
        if (increment == 0 || increment > 0xFFFFFFFFul)
            throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid increment.");
        return static_cast<std::uint32_t>(increment);
    }

    [[noreturn]] static void ThrowMemory(int line) {
        throw base::CMemoryException(kUnit, static_cast<unsigned long>(line));
    }

    std::uint32_t Top(int line) const {
        if (m_store.Size() == 0)
            throw CEmptyStackException(kUnit, static_cast<unsigned long>(line));
        return m_store.Size() - 1;
    }

    void CopyFrom(Stack const& other) {
        T const* source = other.m_store.Data();
        if (!m_store.Assign(
                other.m_store.Size(), [source](std::uint32_t i) -> T const& { return source[i]; },
                [](T&) {}))
            ThrowMemory(__LINE__);
    }

    detail::ArrayStore<T> m_store;
};

} // namespace util
} // namespace lumo

#endif
