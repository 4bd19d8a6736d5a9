// RefCountedPtr, the record behind CRef: construction, release with destruction of an
// owned object at count 0, its pooled storage, and the null-reference failure at its
// fixed line.
#include <lumo/base/Ref.h>

#include <lumo/base/Exception.h>

#include "detail/RefRecordPool.h"

namespace lumo {
namespace base {

// Line numbers that the library's documented behaviour fixes for these failures.
unsigned long const kNullObjectLine = 98;     // a record for a null object
unsigned long const kNullReferenceLine = 437; // dereferencing an empty CRef
unsigned long const kNewFailureLine = 150;    // CBase's operator new, which records used

static_assert(sizeof(RefCountedPtr) <= ::lumo::detail::kRefRecordBlockSize,
              "a record fits a block of its pool");

namespace {

// Looked up once: records are made and dropped with every CRef to a new object.
CFixBlockAllocator& RecordPool() {
    static CFixBlockAllocator& pool = ::lumo::detail::RefRecordPool();
    return pool;
}

// A block of the record pool, or of the heap for a larger (derived) record; a
// failure names the allocation site as CBase's operator new does.
void* AllocateRecord(std::size_t size, char const* file, unsigned long line) {
    if (size > ::lumo::detail::kRefRecordBlockSize)
        return CBase::operator new(size, file, static_cast<int>(line));
    try {
        return RecordPool().AllocateCached();
    } catch (CMemoryException const&) {
        throw CMemoryException(file, line);
    }
}

void FreeRecord(void* block, std::size_t size) noexcept {
    if (size > ::lumo::detail::kRefRecordBlockSize)
        CBase::operator delete(block);
    else
        RecordPool().FreeCached(block);
}

} // namespace

void* RefCountedPtr::operator new(std::size_t size) {
    return AllocateRecord(size, "lumo/base/Base", kNewFailureLine);
}

void* RefCountedPtr::operator new(std::size_t size, char const* file, int line) {
    return AllocateRecord(size, file, static_cast<unsigned long>(line));
}

void RefCountedPtr::operator delete(void* block, std::size_t size) noexcept {
    FreeRecord(block, size);
}

void RefCountedPtr::operator delete(void* block, char const*, int) noexcept {
    FreeRecord(block, sizeof(RefCountedPtr));
}

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
