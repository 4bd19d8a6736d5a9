// RefCountedPtr, the record behind CRef: construction, release with destruction of an
// owned object at count 0, and the null-reference failure at its fixed line.
#include <lumo/base/Ref.h>

#include <lumo/base/Exception.h>

namespace lumo {
namespace base {

// Line numbers that the library's documented behaviour fixes for these failures.
unsigned long const kNullObjectLine = 98;     // a record for a null object
unsigned long const kNullReferenceLine = 437; // dereferencing an empty CRef

RefCountedPtr::RefCountedPtr(void* object, bool owner, Deleter deleter)
    : m_object(object), m_owner(owner), m_count(1), m_deleter(deleter) {
    if (object == nullptr)
        throw CIllegalArgumentException("lumo/base/RefCountedPtr", kNullObjectLine,
                                        "Invalid pointer.");
}

void RefCountedPtr::Release(RefCountedPtr* record) noexcept {
    if (record == nullptr)
        return;
    // A count already at 0 is treated as reaching 0.
    if (record->m_count > 0)
        --record->m_count;
    if (record->m_count != 0)
        return;
    if (record->m_owner && record->m_object != nullptr)
        DestroyObject(record->m_object, record->m_deleter);
    delete record;
}

void RefCountedPtr::ThrowNullReference() {
    throw CNullReferenceException("lumo/base/Ref", kNullReferenceLine);
}

void RefCountedPtr::DestroyObject(void* object, Deleter deleter) noexcept {
    if (deleter == nullptr)
        return;
    try {
        deleter(object);
    } catch (...) {
        // An exception from the object's destructor is dropped.
    }
}

} // namespace base
} // namespace lumo
