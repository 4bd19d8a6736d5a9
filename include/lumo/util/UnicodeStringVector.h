// CUnicodeStringVector: a growable array of UTF-16 strings, copied in from texts and
// handed out by reference, with search, removal and sorting.
#ifndef LUMO_UTIL_UNICODESTRINGVECTOR_H
#define LUMO_UTIL_UNICODESTRINGVECTOR_H

#include <lumo/base/UnicodeString.h>
#include <lumo/util/ArrayStore.h>
#include <lumo/util/Enumeration.h>

namespace lumo {
namespace util {

/// A growable array of UTF-16 strings, copied in from texts and handed out by
/// reference. Capacity rule, bounds and failures as CObjectVector, with one
/// difference kept on purpose: SetElementAt with an index at or beyond the size
/// does nothing and throws nothing. A null text throws CIllegalArgumentException
/// "Invalid element."; elements compare case-sensitively with the text.
class LUMO_API CUnicodeStringVector {
public:
    /// An increment of 0 is rejected (CIllegalArgumentException "Invalid increment.").
    explicit CUnicodeStringVector(unsigned long initialCapacity = 10, unsigned long increment = 10);
    /// Copies every element and the increment.
    CUnicodeStringVector(CUnicodeStringVector const& other);
    /// Replaces the contents with copies of the other vector's elements and its increment.
    CUnicodeStringVector& operator=(CUnicodeStringVector const& other);

    /// The number of elements.
    unsigned long GetSize() const { return m_store.Size(); }
    /// True when the vector has no element.
    bool IsEmpty() const { return m_store.Size() == 0; }
    /// The number of slots allocated.
    unsigned long GetCapacity() const { return m_store.Capacity(); }

    /// Appends a copy of `text`; null throws CIllegalArgumentException "Invalid element.".
    void AddElement(unsigned short const* text);
    /// index == size appends; index > size is out of bounds.
    void InsertElementAt(unsigned short const* text, unsigned long index);
    /// Replaces the element at `index` with a copy of `text`; an index at or beyond the size does
    /// nothing.
    void SetElementAt(unsigned short const* text, unsigned long index);

    /// The element at `index`; CArrayIndexOutOfBoundsException for an index >= size.
    ///@{
    base::CUnicodeString& GetElementAt(unsigned long index);
    base::CUnicodeString const& GetElementAt(unsigned long index) const;
    base::CUnicodeString& operator[](unsigned long index) { return GetElementAt(index); }
    base::CUnicodeString const& operator[](unsigned long index) const {
        return GetElementAt(index);
    }
    ///@}
    /// The first / last element; CNoSuchElementException when empty.
    ///@{
    base::CUnicodeString& GetFirstElement();
    base::CUnicodeString const& GetFirstElement() const;
    base::CUnicodeString& GetLastElement();
    base::CUnicodeString const& GetLastElement() const;
    ///@}

    /// Whether some element equals `text` (case-sensitively).
    bool Contains(unsigned short const* text) const { return GetIndexOf(text) >= 0; }
    /// The index of the first element equal to `text`, or -1.
    long GetIndexOf(unsigned short const* text) const;
    /// The index of the last element equal to `text`, or -1.
    long GetLastIndexOf(unsigned short const* text) const;

    /// Removes the first element equal to `text`; nothing when there is none.
    void RemoveElement(unsigned short const* text);
    /// Removes the element at `index` and closes the gap; CArrayIndexOutOfBoundsException for an
    /// index >= size.
    void RemoveElementAt(unsigned long index);
    /// Removes every element.
    void RemoveAllElements();

    /// Grows (never shrinks) to the capacity rule for `n` slots.
    void EnsureCapacity(unsigned long n);
    /// Exactly size slots; an empty vector releases its buffer.
    void TrimToSize();

    /// `compare` receives pointers to two element slots (CUnicodeString const*). A null
    /// function throws CIllegalArgumentException "Invalid compare function.".
    void Sort(int (*compare)(void const*, void const*));

    /// The elements by index, read from the live vector.
    CEnumeration<base::CUnicodeString> GetElements() const;

    /// Same size and equal elements index by index.
    bool operator==(CUnicodeStringVector const& other) const;
    /// The negation of ==.
    bool operator!=(CUnicodeStringVector const& other) const { return !(*this == other); }

private:
    detail::ArrayStore<base::CUnicodeString> m_store;
};

} // namespace util
} // namespace lumo

#endif
