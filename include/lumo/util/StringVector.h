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
    CStringVector(CStringVector const& other);
    CStringVector& operator=(CStringVector const& other);

    unsigned long GetSize() const { return m_store.Size(); }
    bool IsEmpty() const { return m_store.Size() == 0; }
    unsigned long GetCapacity() const { return m_store.Capacity(); }

    void AddElement(char const* text);
    /// index == size appends; index > size is out of bounds.
    void InsertElementAt(char const* text, unsigned long index);
    void SetElementAt(char const* text, unsigned long index);

    /// CArrayIndexOutOfBoundsException for an index >= size.
    base::CString& GetElementAt(unsigned long index);
    base::CString const& GetElementAt(unsigned long index) const;
    base::CString& operator[](unsigned long index) { return GetElementAt(index); }
    base::CString const& operator[](unsigned long index) const { return GetElementAt(index); }
    /// CNoSuchElementException when empty.
    base::CString& GetFirstElement();
    base::CString const& GetFirstElement() const;
    base::CString& GetLastElement();
    base::CString const& GetLastElement() const;

    bool Contains(char const* text) const { return GetIndexOf(text) >= 0; }
    long GetIndexOf(char const* text) const;
    long GetLastIndexOf(char const* text) const;

    /// Removes the first element equal to `text`; nothing when there is none.
    void RemoveElement(char const* text);
    void RemoveElementAt(unsigned long index);
    void RemoveAllElements();

    void EnsureCapacity(unsigned long n);
    void TrimToSize();

    /// `compare` receives pointers to two element slots (CString const*). A null
    /// function throws CIllegalArgumentException "Invalid compare function.".
    void Sort(int (*compare)(void const*, void const*));

    /// The elements by index, read from the live vector.
    CEnumeration<base::CString> GetElements() const;

    bool operator==(CStringVector const& other) const;
    bool operator!=(CStringVector const& other) const { return !(*this == other); }

private:
    detail::ArrayStore<base::CString> m_store;
};

} // namespace util
} // namespace lumo

#endif
