// Vector: a growable array of values of T, copied in and handed out by reference, with
// the containers' capacity rule and an enumeration by index.
#ifndef LUMO_UTIL_VECTOR_H
#define LUMO_UTIL_VECTOR_H

#include <lumo/base/Exception.h>
#include <lumo/util/ArrayStore.h>
#include <lumo/util/Enumeration.h>
#include <lumo/util/NoSuchElementException.h>

namespace lumo {
namespace util {

template <class T> class VectorEnumeration;

/// A growable array of values of T, copied in and handed out by reference. The
/// capacity is a multiple of the increment (until TrimToSize), grows on demand
/// and shrinks in whole increments after removals, never below one increment.
/// A failed allocation throws CMemoryException and leaves the vector unchanged.
/// Searches need T's operator==.
template <class T> class Vector {
public:
    /// An increment of 0 is rejected (CIllegalArgumentException "Invalid increment.").
    explicit Vector(unsigned long initialCapacity = 10, unsigned long increment = 10)
        : m_store(CheckedIncrement(increment)) {
        if (initialCapacity != 0 && !m_store.Reserve(initialCapacity))
            ThrowMemory(__LINE__);
    }

    /// Copies every element and the increment.
    Vector(Vector const& other) : m_store(other.m_store.Increment()) { CopyFrom(other); }

    /// Replaces the contents with copies of the other vector's elements (copy first, so a failure
    /// leaves this vector as it was).
    Vector& operator=(Vector const& other) {
        if (this != &other)
            CopyFrom(other);
        return *this;
    }

    /// The number of elements.
    unsigned long GetSize() const { return m_store.Size(); }
    /// True when the vector has no element.
    bool IsEmpty() const { return m_store.Size() == 0; }
    /// The number of slots allocated.
    unsigned long GetCapacity() const { return m_store.Capacity(); }
    /// The capacity increment.
    unsigned long GetIncrement() const { return m_store.Increment(); }

    /// Same size and elements equal (==) index by index.
    bool operator==(Vector const& other) const {
        if (this == &other)
            return true;
        if (m_store.Size() != other.m_store.Size())
            return false;
        for (std::uint32_t i = 0; i < m_store.Size(); ++i)
            if (!(m_store.Data()[i] == other.m_store.Data()[i]))
                return false;
        return true;
    }
    /// The negation of ==.
    bool operator!=(Vector const& other) const { return !(*this == other); }

    /// The element at `index`; CArrayIndexOutOfBoundsException for an index >= size.
    ///@{
    T& GetElementAt(unsigned long index) { return m_store.Data()[CheckIndex(index, __LINE__)]; }
    T const& GetElementAt(unsigned long index) const {
        return m_store.Data()[CheckIndex(index, __LINE__)];
    }
    T& operator[](unsigned long index) { return GetElementAt(index); }
    T const& operator[](unsigned long index) const { return GetElementAt(index); }
    ///@}

    /// The first / last element; CNoSuchElementException when empty.
    ///@{
    T& GetFirstElement() { return m_store.Data()[CheckNotEmpty(__LINE__)]; }
    T const& GetFirstElement() const { return m_store.Data()[CheckNotEmpty(__LINE__)]; }
    T& GetLastElement() { return m_store.Data()[CheckNotEmpty(__LINE__) + m_store.Size() - 1]; }
    T const& GetLastElement() const {
        return m_store.Data()[CheckNotEmpty(__LINE__) + m_store.Size() - 1];
    }
    ///@}

    /// Whether some element == `value`.
    bool Contains(T const& value) const { return GetIndexOf(value) >= 0; }
    /// The index of the first element == `value`, or -1.
    long GetIndexOf(T const& value) const {
        for (std::uint32_t i = 0; i < m_store.Size(); ++i)
            if (m_store.Data()[i] == value)
                return static_cast<long>(i);
        return -1;
    }
    /// The index of the last element == `value`, or -1.
    long GetLastIndexOf(T const& value) const {
        for (std::uint32_t i = m_store.Size(); i > 0; --i)
            if (m_store.Data()[i - 1] == value)
                return static_cast<long>(i - 1);
        return -1;
    }

    /// Appends a copy of `value`, growing by the capacity rule.
    void AddElement(T const& value) {
        if (!m_store.Append(value))
            ThrowMemory(__LINE__);
    }
    /// index == size appends; index > size is out of bounds.
    void InsertElementAt(T const& value, unsigned long index) {
        if (index > m_store.Size())
            throw base::CArrayIndexOutOfBoundsException(kUnit, __LINE__);
        if (!m_store.Insert(static_cast<std::uint32_t>(index), value))
            ThrowMemory(__LINE__);
    }
    /// Replaces the element at `index` with a copy of `value`; CArrayIndexOutOfBoundsException for
    /// an index >= size.
    void SetElementAt(T const& value, unsigned long index) {
        m_store.Data()[CheckIndex(index, __LINE__)] = value;
    }

    /// Removes the first element equal to `value`; nothing when there is none.
    void RemoveElement(T const& value) {
        long const index = GetIndexOf(value);
        if (index >= 0)
            RemoveElementAt(static_cast<unsigned long>(index));
    }
    /// Removes the element at `index` and closes the gap; CArrayIndexOutOfBoundsException for an
    /// index >= size.
    void RemoveElementAt(unsigned long index) {
        if (!m_store.RemoveAt(CheckIndex(index, __LINE__)))
            ThrowMemory(__LINE__);
    }
    /// Removes every element; the buffer shrinks to one increment.
    void RemoveAllElements() {
        if (!m_store.Clear())
            ThrowMemory(__LINE__);
    }

    /// Grows (never shrinks) to the capacity rule for `n` slots.
    void EnsureCapacity(unsigned long n) {
        if (!m_store.Reserve(n))
            ThrowMemory(__LINE__);
    }
    /// Exactly size slots; an empty vector releases its buffer.
    void TrimToSize() {
        if (!m_store.TrimToSize())
            ThrowMemory(__LINE__);
    }

    /// The elements by index, read from the live vector.
    CEnumeration<T> GetElements() const { return new (kUnit, __LINE__) VectorEnumeration<T>(this); }

private:
    static constexpr char const* kUnit = "lumo/util/Vector";

    static std::uint32_t CheckedIncrement(unsigned long increment) {
        if (increment == 0 || increment > 0xFFFFFFFFul)
            throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid increment.");
        return static_cast<std::uint32_t>(increment);
    }

    [[noreturn]] static void ThrowMemory(int line) {
        throw base::CMemoryException(kUnit, static_cast<unsigned long>(line));
    }

    std::uint32_t CheckIndex(unsigned long index, int line) const {
        if (index >= m_store.Size())
            throw base::CArrayIndexOutOfBoundsException(kUnit, static_cast<unsigned long>(line));
        return static_cast<std::uint32_t>(index);
    }

    std::uint32_t CheckNotEmpty(int line) const {
        if (m_store.Size() == 0)
            throw CNoSuchElementException(kUnit, static_cast<unsigned long>(line));
        return 0;
    }

    void CopyFrom(Vector const& other) {
        T const* source = other.m_store.Data();
        if (!m_store.Assign(
                other.m_store.Size(), [source](std::uint32_t i) -> T const& { return source[i]; },
                [](T&) {}))
            ThrowMemory(__LINE__);
    }

    detail::ArrayStore<T> m_store;
};

/// Walks a vector by index.
template <class T> class VectorEnumeration : public IEnumeration<T> {
public:
    /// Starts at index 0 of `vector`, which must outlive the enumeration.
    explicit VectorEnumeration(Vector<T> const* vector) : m_vector(vector), m_index(0) {}
    /// True while NextElement has an element to give.
    bool HasMoreElements() const override { return m_index < m_vector->GetSize(); }
    T* NextElement() override {
        if (m_index >= m_vector->GetSize())
            throw CNoSuchElementException("lumo/util/Vector", __LINE__);
        return const_cast<T*>(&m_vector->GetElementAt(m_index++));
    }
    void Reset() override { m_index = 0; }

private:
    Vector<T> const* m_vector;
    unsigned long m_index;
};

} // namespace util
} // namespace lumo

#endif
