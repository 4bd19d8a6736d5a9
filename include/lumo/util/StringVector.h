// CStringVector: a growable array of 8-bit strings, copied in from texts and handed out
// by reference, with search, removal and sorting.
#ifndef LUMO_UTIL_STRINGVECTOR_H
#define LUMO_UTIL_STRINGVECTOR_H

#include <lumo/base/String.h>
#include <lumo/util/ArrayStore.h>
#include <lumo/util/Enumeration.h>

namespace lumo {
namespace util {

/// A growable array of 8-bit strings, copied in from texts and handed out by
/// reference. Capacity rule, bounds and failures as CObjectVector, with one
/// difference kept on purpose: SetElementAt with an index at or beyond the size
/// does nothing and throws nothing. A null text throws CIllegalArgumentException
/// "Invalid element."; elements compare case-sensitively with the text.
class LUMO_API CStringVector {
public:
    /// An increment of 0 is rejected (CIllegalArgumentException "Invalid increment.").
    explicit CStringVector(unsigned long initialCapacity = 10, unsigned long increment = 10);
    /// Copies every element and the increment.
    CStringVector(CStringVector const& other);
    /// Replaces the contents with copies of the other vector's elements and its increment.
    CStringVector& operator=(CStringVector const& other);

    /// The number of elements.
    unsigned long GetSize() const { return m_store.Size(); }
    /// True when the vector has no element.
    bool IsEmpty() const { return m_store.Size() == 0; }
    /// The number of slots allocated.
    unsigned long GetCapacity() const { return m_store.Capacity(); }

    /// Appends a copy of `text`; null throws CIllegalArgumentException "Invalid element.".
    void AddElement(char const* text);
    /// index == size appends; index > size is out of bounds.
    void InsertElementAt(char const* text, unsigned long index);
    /// Replaces the element at `index` with a copy of `text`; an index at or beyond the size does
    /// nothing.
    void SetElementAt(char const* text, unsigned long index);

    /// The element at `index`; CArrayIndexOutOfBoundsException for an index >= size.
    ///@{
    base::CString& GetElementAt(unsigned long index);
    base::CString const& GetElementAt(unsigned long index) const;
    base::CString& operator[](unsigned long index) { return GetElementAt(index); }
    base::CString const& operator[](unsigned long index) const { return GetElementAt(index); }
    ///@}
    /// The first / last element; CNoSuchElementException when empty.
    ///@{
    base::CString& GetFirstElement();
    base::CString const& GetFirstElement() const;
    base::CString& GetLastElement();
    base::CString const& GetLastElement() const;
    ///@}

    /// Whether some element equals `text` (case-sensitively).
    bool Contains(char const* text) const { return GetIndexOf(text) >= 0; }
    /// The index of the first element equal to `text`, or -1.
    long GetIndexOf(char const* text) const;
    /// The index of the last element equal to `text`, or -1.
    long GetLastIndexOf(char const* text) const;

    /// Removes the first element equal to `text`; nothing when there is none.
    void RemoveElement(char const* text);
    /// Removes the element at `index` and closes the gap; CArrayIndexOutOfBoundsException for an
    /// index >= size.
    void RemoveElementAt(unsigned long index);
    /// Removes every element.
    void RemoveAllElements();

    /// Grows (never shrinks) to the capacity rule for `n` slots.
    void EnsureCapacity(unsigned long n);
    /// Exactly size slots; an empty vector releases its buffer.
    void TrimToSize();

    /// `compare` receives pointers to two element slots (CString const*). A null
    /// function throws CIllegalArgumentException "Invalid compare function.".
    void Sort(int (*compare)(void const*, void const*));

    /// The elements by index, read from the live vector.
    CEnumeration<base::CString> GetElements() const;

    /// Same size and equal elements index by index.
    bool operator==(CStringVector const& other) const;
    /// The negation of ==.
    bool operator!=(CStringVector const& other) const { return !(*this == other); }

private:
    detail::ArrayStore<base::CString> m_store;
};

} // namespace util
} // namespace lumo

#endif
