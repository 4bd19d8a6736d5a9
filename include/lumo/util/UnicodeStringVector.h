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
    CUnicodeStringVector(CUnicodeStringVector const& other);
    CUnicodeStringVector& operator=(CUnicodeStringVector const& other);

    unsigned long GetSize() const { return m_store.Size(); }
    bool IsEmpty() const { return m_store.Size() == 0; }
    unsigned long GetCapacity() const { return m_store.Capacity(); }

    void AddElement(unsigned short const* text);
    /// index == size appends; index > size is out of bounds.
    void InsertElementAt(unsigned short const* text, unsigned long index);
    void SetElementAt(unsigned short const* text, unsigned long index);

    /// CArrayIndexOutOfBoundsException for an index >= size.
    base::CUnicodeString& GetElementAt(unsigned long index);
    base::CUnicodeString const& GetElementAt(unsigned long index) const;
    base::CUnicodeString& operator[](unsigned long index) { return GetElementAt(index); }
    base::CUnicodeString const& operator[](unsigned long index) const {
        return GetElementAt(index);
    }
    /// CNoSuchElementException when empty.
    base::CUnicodeString& GetFirstElement();
    base::CUnicodeString const& GetFirstElement() const;
    base::CUnicodeString& GetLastElement();
    base::CUnicodeString const& GetLastElement() const;

    bool Contains(unsigned short const* text) const { return GetIndexOf(text) >= 0; }
    long GetIndexOf(unsigned short const* text) const;
    long GetLastIndexOf(unsigned short const* text) const;

    /// Removes the first element equal to `text`; nothing when there is none.
    void RemoveElement(unsigned short const* text);
    void RemoveElementAt(unsigned long index);
    void RemoveAllElements();

    void EnsureCapacity(unsigned long n);
    void TrimToSize();

    /// `compare` receives pointers to two element slots (CUnicodeString const*). A null
    /// function throws CIllegalArgumentException "Invalid compare function.".
    void Sort(int (*compare)(void const*, void const*));

    /// The elements by index, read from the live vector.
    CEnumeration<base::CUnicodeString> GetElements() const;

    bool operator==(CUnicodeStringVector const& other) const;
    bool operator!=(CUnicodeStringVector const& other) const { return !(*this == other); }

private:
    detail::ArrayStore<base::CUnicodeString> m_store;
};

} // namespace util
} // namespace lumo

#endif
