// CObjectVector: a growable array of objects that it owns, deleting an element when it
// is removed, replaced, cleared or destroyed unless detached first.
#ifndef LUMO_UTIL_OBJECTVECTOR_H
#define LUMO_UTIL_OBJECTVECTOR_H

#include <lumo/base/Object.h>
#include <lumo/util/ArrayStore.h>

namespace lumo {
namespace util {

/// A growable array of objects, which it owns: an element is deleted when it is
/// removed, replaced, or when the vector is cleared, assigned or destroyed, unless
/// it is taken back with one of the Detach operations. Slots never hold null.
/// The capacity is a multiple of the increment (until TrimToSize), grows on demand
/// and shrinks in whole increments after removals, never below one increment.
class LUMO_API CObjectVector {
public:
    /// An increment of 0 is rejected (CIllegalArgumentException "Invalid increment.").
    /// A non-zero initial capacity allocates the buffer at once.
    explicit CObjectVector(unsigned long initialCapacity = 10, unsigned long increment = 10);
    /// Holds a Clone() of every element of `other`, in order (an element whose
    /// Clone() is null gives CIllegalArgumentException "Invalid object.").
    CObjectVector(CObjectVector const& other);
    /// Deletes the own elements and holds clones of those of `other`. On failure
    /// the vector is unchanged.
    CObjectVector& operator=(CObjectVector const& other);
    ~CObjectVector();

    /// The number of elements.
    unsigned long GetSize() const { return m_store.Size(); }
    /// True when the vector has no element.
    bool IsEmpty() const { return m_store.Size() == 0; }
    /// The number of slots allocated.
    unsigned long GetCapacity() const { return m_store.Capacity(); }
    /// The capacity increment.
    unsigned long GetIncrement() const { return m_store.Increment(); }

    /// Same size and elements that are Equals index by index.
    bool operator==(CObjectVector const& other) const;
    /// The negation of ==.
    bool operator!=(CObjectVector const& other) const { return !(*this == other); }

    /// The element at `index`; CArrayIndexOutOfBoundsException for an index >= size.
    ///@{
    base::CObject* GetElementAt(unsigned long index) const;
    base::CObject* operator[](unsigned long index) const { return GetElementAt(index); }
    ///@}
    /// The first / last element; CNoSuchElementException when empty.
    ///@{
    base::CObject* GetFirstElement() const;
    base::CObject* GetLastElement() const;
    ///@}

    /// Searches ask each element Equals(obj); null obj is an illegal argument.
    ///@{
    bool Contains(base::CObject const* obj) const { return GetIndexOf(obj) >= 0; }
    long GetIndexOf(base::CObject const* obj) const;
    long GetLastIndexOf(base::CObject const* obj) const;
    ///@}

    /// The vector takes over `obj` once the call succeeds; on an exception the
    /// object stays the caller's.
    void AddElement(base::CObject* obj);
    /// index == size appends; index > size is out of bounds.
    void InsertElementAt(base::CObject* obj, unsigned long index);
    /// Deletes the element at `index` and stores `obj` there.
    void SetElementAt(base::CObject* obj, unsigned long index);

    /// Deletes the first element that Equals(obj); nothing when there is none.
    void RemoveElement(base::CObject const* obj);
    /// Deletes the element at `index` and closes the gap; CArrayIndexOutOfBoundsException for an
    /// index >= size.
    void RemoveElementAt(unsigned long index);
    /// Deletes every element.
    void RemoveAllElements();

    /// As the Remove forms, but the element goes back to the caller: the detached
    /// element is returned (null from DetachElement when none matched).
    ///@{
    base::CObject* DetachElement(base::CObject const* obj);
    base::CObject* DetachElementAt(unsigned long index);
    void DetachAllElements();
    ///@}

    /// Grows (never shrinks) to the capacity rule for `n` slots.
    void EnsureCapacity(unsigned long n);
    /// Exactly size slots; an empty vector releases its buffer.
    void TrimToSize();

    /// Sorts the slots with the C runtime's qsort; `compare` receives pointers to
    /// two slots (base::CObject* const*). A null function throws
    /// CIllegalArgumentException "Invalid compare function.".
    void Sort(int (*compare)(void const*, void const*));

private:
    detail::ArrayStore<base::CObject*> m_store;
};

} // namespace util
} // namespace lumo

#endif
