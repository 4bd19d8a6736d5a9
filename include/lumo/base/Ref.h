// CRef, the library's shared-ownership pointer, and RefCountedPtr, the record its copies
// share (object, owner flag, count); the counts are not atomic.
#ifndef LUMO_BASE_REF_H
#define LUMO_BASE_REF_H

#include <lumo/base/Base.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <type_traits>

namespace lumo {
namespace base {

/// The record shared by the CRef values that hold one object: the object, whether
/// the holders own it, and how many CRef values share the record. Any class can be
/// held, not only CObject descendants. The count is plain (not atomic): a CRef and
/// its copies are used by one thread at a time.
class LUMO_API RefCountedPtr : public CBase {
public:
    /// Destroys an object held by a record (a `delete` of the pointer's real type).
    typedef void (*Deleter)(void* object);

    /// Count 1. A null object throws CIllegalArgumentException "Invalid pointer."
    /// (lumo/base/RefCountedPtr, line 98). An owning record needs a deleter; a record
    /// without one never destroys its object.
    RefCountedPtr(void* object, bool owner, Deleter deleter = nullptr);

    /// The held object; never null.
    void* GetObject() const { return m_object; }
    /// True when the record destroys its object when the count falls to 0.
    bool IsOwner() const { return m_owner; }
    /// The number of CRef values sharing the record.
    std::uint32_t GetCount() const { return m_count; }

    /// Raises the count by one.
    void AddRef() { ++m_count; }
    /// Releases one holding of `record` (null is ignored): the count is lowered unless
    /// already 0; at 0 an owned object is destroyed (an exception from its destructor
    /// is caught and dropped) and the record freed.
    static void Release(RefCountedPtr* record) noexcept;

    /// Raises CNullReferenceException (lumo/base/Ref, line 437).
    [[noreturn]] static void ThrowNullReference();
    /// Destroys `object` through `deleter`, dropping any exception (used when the
    /// record for a new object cannot be allocated).
    static void DestroyObject(void* object, Deleter deleter) noexcept;

    /// The deleter a CRef uses for an object handed over as a T*.
    template <class T> static void DeleteObject(void* object) { delete static_cast<T*>(object); }

    /// Records come from a pool of their own with a per-thread cache, since a CRef
    /// is made and dropped for every object handed over. A failed allocation throws
    /// CMemoryException (lumo/base/Base, line 150; the given unit and line for the
    /// second form).
    ///@{
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t size, char const* file, int line);
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block, std::size_t size) noexcept;
    static void operator delete(void* block, char const* file, int line) noexcept;
    static void operator delete(void*, void*) noexcept {}
    ///@}

private:
    RefCountedPtr(RefCountedPtr const&);
    RefCountedPtr& operator=(RefCountedPtr const&);

    void* m_object;
    bool m_owner;
    std::uint32_t m_count;
    Deleter m_deleter;
};

/// The library's shared-ownership pointer. Copies share one RefCountedPtr record;
/// the object is destroyed (through a `delete` of the type it was handed over as)
/// when the last holder lets go. Not thread-safe: a CRef and the copies that share
/// its record must be used by one thread at a time.
template <class T> class CRef {
public:
    /// The type of the held object.
    typedef T ElementType;

    CRef() noexcept : m_record(nullptr), m_object(nullptr) {}
    /// An empty CRef.
    CRef(std::nullptr_t) noexcept : m_record(nullptr), m_object(nullptr) {}

    /// Owns `p` (null gives an empty CRef). If the record cannot be allocated, `p` is
    /// destroyed and the CMemoryException passed on.
    CRef(T* p) : m_record(MakeRecord(p, true, 185)), m_object(p) {}
    /// Holds `p`; destroys it at the end only when `owner` is true.
    CRef(T* p, bool owner) : m_record(MakeRecord(p, owner, 185)), m_object(p) {}

    /// Shares the record of `other`, raising its count; an empty `other` gives an empty CRef.
    CRef(CRef const& other) noexcept : m_record(other.m_record), m_object(other.m_object) {
        if (m_record != nullptr)
            m_record->AddRef();
    }
    /// Shares the record of a CRef to a type whose pointer converts to T*.
    template <class U, class = typename std::enable_if<std::is_convertible<U*, T*>::value>::type>
    CRef(CRef<U> const& other) noexcept : m_record(other.m_record), m_object(other.m_object) {
        if (m_record != nullptr)
            m_record->AddRef();
    }
    /// Moves take the holding over and leave `other` empty; the count is unchanged.
    CRef(CRef&& other) noexcept : m_record(other.m_record), m_object(other.m_object) {
        other.m_record = nullptr;
        other.m_object = nullptr;
    }
    /// Takes the holding of a CRef to a type whose pointer converts to T*; `other` is left empty.
    ///@{
    template <class U, class = typename std::enable_if<std::is_convertible<U*, T*>::value>::type>
    CRef(CRef<U>&& other) noexcept : m_record(other.m_record), m_object(other.m_object) {
        other.m_record = nullptr;
        other.m_object = nullptr;
    }
    ///@}

    ~CRef() { RefCountedPtr::Release(m_record); }

    /// Holding the record of `other` from now on. Assignment to itself, or to a copy
    /// sharing the same record, leaves the count as it was. The new count is raised
    /// before the old holding is released, so that releasing the old object cannot
    /// destroy `other` (when `other` lives inside that object).
    CRef& operator=(CRef const& other) noexcept {
        Assign(other.m_record, other.m_object);
        return *this;
    }
    /// Shares the record of a CRef to a type whose pointer converts to T*, as the copy assignment
    /// does.
    ///@{
    template <class U, class = typename std::enable_if<std::is_convertible<U*, T*>::value>::type>
    CRef& operator=(CRef<U> const& other) noexcept {
        Assign(other.m_record, other.m_object);
        return *this;
    }
    ///@}
    /// Takes the holding of `other`, which is left empty, and releases the old one.
    CRef& operator=(CRef&& other) noexcept {
        if (this != &other) {
            RefCountedPtr* old = m_record;
            m_record = other.m_record;
            m_object = other.m_object;
            other.m_record = nullptr;
            other.m_object = nullptr;
            RefCountedPtr::Release(old);
        }
        return *this;
    }
    /// A new owning record for `p` (made first; allocated at lumo/base/Ref line 279),
    /// then the old holding released. A null `p` empties the CRef. Assigning the
    /// object already held changes nothing (a second record for it would destroy
    /// it twice).
    CRef& operator=(T* p) {
        if (p != nullptr && p == m_object)
            return *this;
        RefCountedPtr* record = MakeRecord(p, true, 279);
        RefCountedPtr* old = m_record;
        m_record = record;
        m_object = p;
        RefCountedPtr::Release(old);
        return *this;
    }
    /// Empties the CRef, releasing its holding.
    CRef& operator=(std::nullptr_t) noexcept {
        RefCountedPtr* old = m_record;
        m_record = nullptr;
        m_object = nullptr;
        RefCountedPtr::Release(old);
        return *this;
    }

    /// The object; CNullReferenceException (lumo/base/Ref, line 437) when empty.
    T* operator->() const {
        if (m_object == nullptr)
            RefCountedPtr::ThrowNullReference();
        return m_object;
    }
    /// The object; CNullReferenceException (lumo/base/Ref, line 437) when empty.
    T& operator*() const {
        if (m_object == nullptr)
            RefCountedPtr::ThrowNullReference();
        return *m_object;
    }

    /// The object or null; never throws.
    T* Get() const noexcept { return m_object; }
    /// True when the CRef holds no object.
    bool IsNull() const noexcept { return m_object == nullptr; }
    /// True when the CRef holds an object.
    explicit operator bool() const noexcept { return m_object != nullptr; }

    /// Number of CRef values sharing the record; 0 when empty.
    std::uint32_t GetRefCount() const noexcept {
        return m_record != nullptr ? m_record->GetCount() : 0;
    }
    /// True when the holders destroy the object at the end (false when empty).
    bool IsOwner() const noexcept { return m_record != nullptr && m_record->IsOwner(); }

    /// A CRef of another type sharing this record: U* from T* by static_cast, or by
    /// dynamic_cast (empty when the object is no U).
    ///@{
    template <class U> CRef<U> StaticCast() const noexcept {
        return CRef<U>(m_record, static_cast<U*>(m_object));
    }
    template <class U> CRef<U> DynamicCast() const noexcept {
        U* object = dynamic_cast<U*>(m_object);
        return object != nullptr ? CRef<U>(m_record, object) : CRef<U>();
    }
    ///@}

private:
    template <class U> friend class CRef;

    /// Shares `record` (raising its count) for `object`.
    CRef(RefCountedPtr* record, T* object) noexcept : m_record(record), m_object(object) {
        if (m_record != nullptr)
            m_record->AddRef();
    }

    void Assign(RefCountedPtr* record, T* object) noexcept {
        if (record == m_record) {
            m_object = object;
            return;
        }
        if (record != nullptr)
            record->AddRef();
        RefCountedPtr* old = m_record;
        m_record = record;
        m_object = object;
        RefCountedPtr::Release(old);
    }

    static RefCountedPtr* MakeRecord(T* p, bool owner, int line) {
        if (p == nullptr)
            return nullptr;
        void* object = const_cast<void*>(static_cast<void const volatile*>(p));
        RefCountedPtr::Deleter deleter = &RefCountedPtr::DeleteObject<T>;
        try {
            return new ("lumo/base/Ref", line) RefCountedPtr(object, owner, deleter);
        } catch (...) {
            if (owner)
                RefCountedPtr::DestroyObject(object, deleter);
            throw;
        }
    }

    RefCountedPtr* m_record;
    T* m_object;
};

/// CRef values compare by the address of the object they hold; an empty CRef equals null.
///@{
template <class T, class U> bool operator==(CRef<T> const& a, CRef<U> const& b) noexcept {
    return a.Get() == b.Get();
}
template <class T, class U> bool operator!=(CRef<T> const& a, CRef<U> const& b) noexcept {
    return a.Get() != b.Get();
}
template <class T, class U> bool operator==(CRef<T> const& a, U* b) noexcept {
    return a.Get() == b;
}
template <class T, class U> bool operator!=(CRef<T> const& a, U* b) noexcept {
    return a.Get() != b;
}
template <class T, class U> bool operator==(U* a, CRef<T> const& b) noexcept {
    return a == b.Get();
}
template <class T, class U> bool operator!=(U* a, CRef<T> const& b) noexcept {
    return a != b.Get();
}
template <class T> bool operator==(CRef<T> const& a, std::nullptr_t) noexcept {
    return a.IsNull();
}
template <class T> bool operator!=(CRef<T> const& a, std::nullptr_t) noexcept {
    return !a.IsNull();
}
template <class T> bool operator==(std::nullptr_t, CRef<T> const& b) noexcept {
    return b.IsNull();
}
template <class T> bool operator!=(std::nullptr_t, CRef<T> const& b) noexcept {
    return !b.IsNull();
}
///@}
/// An order by object address, for ordered containers.
template <class T> bool operator<(CRef<T> const& a, CRef<T> const& b) noexcept {
    return std::less<T*>()(a.Get(), b.Get());
}

} // namespace base
} // namespace lumo

#endif
