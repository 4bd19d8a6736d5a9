// CObjectVector over detail::ArrayStore: owning insertion, replacement and removal,
// all-or-nothing cloning copies, and sorting with the C runtime's qsort.
#include <lumo/util/ObjectVector.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <cstdlib>

namespace lumo {
namespace util {

using base::CObject;

using base::CArrayIndexOutOfBoundsException;
using base::CIllegalArgumentException;
using base::CMemoryException;

namespace {

typedef detail::ArrayStore<CObject*> Store;

char const kUnit[] = "lumo/util/ObjectVector";

std::uint32_t CheckedIncrement(unsigned long increment) {
    if (increment == 0 || increment > 0xFFFFFFFFul)
        throw CIllegalArgumentException(kUnit, __LINE__, "Invalid increment.");
    return static_cast<std::uint32_t>(increment);
}

void CheckObject(CObject const* obj, int line) {
    if (obj == nullptr)
        throw CIllegalArgumentException(kUnit, static_cast<unsigned long>(line), "Invalid object.");
}

[[noreturn]] void ThrowMemory(int line) {
    throw CMemoryException(kUnit, static_cast<unsigned long>(line));
}

void CheckIndex(unsigned long index, std::uint32_t size, int line) {
    if (index >= size)
        throw CArrayIndexOutOfBoundsException(kUnit, static_cast<unsigned long>(line));
}

void DeleteObject(CObject*& obj) {
    delete obj;
}
void KeepObject(CObject*&) {}

// Makes `target` hold clones of the `count` objects at `source`, deleting what it
// held. Every clone is made before the target changes; on any failure the clones
// go and the target is as it was.
void AssignClones(Store& target, CObject* const* source, std::uint32_t count) {
    CObject** clones = nullptr;
    std::uint32_t made = 0;
    try {
        if (count > 0) {
            clones = Store::AllocateSlots(count);
            if (clones == nullptr)
                ThrowMemory(__LINE__);
            for (; made < count; ++made) {
                clones[made] = source[made]->Clone();
                // A null clone would break the rule that slots never hold null.
                CheckObject(clones[made], __LINE__);
            }
        }
        if (!target.Assign(
                count, [clones](std::uint32_t i) { return clones[i]; }, DeleteObject))
            ThrowMemory(__LINE__);
    } catch (...) {
        for (std::uint32_t i = 0; i < made; ++i)
            delete clones[i];
        std::free(clones);
        throw;
    }
    std::free(clones);
}

} // namespace

CObjectVector::CObjectVector(unsigned long initialCapacity, unsigned long increment)
    : m_store(CheckedIncrement(increment)) {
    if (initialCapacity != 0 && !m_store.Reserve(initialCapacity))
        ThrowMemory(__LINE__);
}

CObjectVector::CObjectVector(CObjectVector const& other) : m_store(other.m_store.Increment()) {
    AssignClones(m_store, other.m_store.Data(), other.m_store.Size());
}

CObjectVector& CObjectVector::operator=(CObjectVector const& other) {
    if (this != &other)
        AssignClones(m_store, other.m_store.Data(), other.m_store.Size());
    return *this;
}

CObjectVector::~CObjectVector() {
    CObject** data = m_store.Data();
    for (std::uint32_t i = 0; i < m_store.Size(); ++i)
        delete data[i];
}

bool CObjectVector::operator==(CObjectVector const& other) const {
    if (this == &other)
        return true;
    std::uint32_t const size = m_store.Size();
    if (size != other.m_store.Size())
        return false;
    CObject* const* mine = m_store.Data();
    CObject* const* theirs = other.m_store.Data();
    for (std::uint32_t i = 0; i < size; ++i)
        if (!mine[i]->Equals(theirs[i]))
            return false;
    return true;
}

CObject* CObjectVector::GetElementAt(unsigned long index) const {
    CheckIndex(index, m_store.Size(), __LINE__);
    return m_store.Data()[index];
}

CObject* CObjectVector::GetFirstElement() const {
    if (m_store.Size() == 0)
        throw CNoSuchElementException(kUnit, __LINE__);
    return m_store.Data()[0];
}

CObject* CObjectVector::GetLastElement() const {
    if (m_store.Size() == 0)
        throw CNoSuchElementException(kUnit, __LINE__);
    return m_store.Data()[m_store.Size() - 1];
}

long CObjectVector::GetIndexOf(CObject const* obj) const {
    CheckObject(obj, __LINE__);
    CObject* const* data = m_store.Data();
    for (std::uint32_t i = 0; i < m_store.Size(); ++i)
        if (data[i]->Equals(obj))
            return static_cast<long>(i);
    return -1;
}

long CObjectVector::GetLastIndexOf(CObject const* obj) const {
    CheckObject(obj, __LINE__);
    CObject* const* data = m_store.Data();
    for (std::uint32_t i = m_store.Size(); i > 0; --i)
        if (data[i - 1]->Equals(obj))
            return static_cast<long>(i - 1);
    return -1;
}

void CObjectVector::AddElement(CObject* obj) {
    CheckObject(obj, __LINE__);
    if (!m_store.Append(obj))
        ThrowMemory(__LINE__);
}

void CObjectVector::InsertElementAt(CObject* obj, unsigned long index) {
    CheckObject(obj, __LINE__);
    if (index > m_store.Size())
        throw CArrayIndexOutOfBoundsException(kUnit, __LINE__);
    if (!m_store.Insert(static_cast<std::uint32_t>(index), obj))
        ThrowMemory(__LINE__);
}

void CObjectVector::SetElementAt(CObject* obj, unsigned long index) {
    CheckObject(obj, __LINE__);
    CheckIndex(index, m_store.Size(), __LINE__);
    CObject*& slot = m_store.Data()[index];
    if (slot == obj)
        return; // storing an element over itself must not delete it
    CObject* old = slot;
    slot = obj;
    delete old;
}

void CObjectVector::RemoveElement(CObject const* obj) {
    delete DetachElement(obj);
}

void CObjectVector::RemoveElementAt(unsigned long index) {
    delete DetachElementAt(index);
}

void CObjectVector::RemoveAllElements() {
    if (!m_store.Clear(DeleteObject))
        ThrowMemory(__LINE__);
}

CObject* CObjectVector::DetachElement(CObject const* obj) {
    long const index = GetIndexOf(obj);
    if (index < 0)
        return nullptr;
    return DetachElementAt(static_cast<unsigned long>(index));
}

CObject* CObjectVector::DetachElementAt(unsigned long index) {
    CheckIndex(index, m_store.Size(), __LINE__);
    CObject* obj = m_store.Data()[index];
    if (!m_store.RemoveAt(static_cast<std::uint32_t>(index)))
        ThrowMemory(__LINE__);
    return obj;
}

void CObjectVector::DetachAllElements() {
    if (!m_store.Clear(KeepObject))
        ThrowMemory(__LINE__);
}

void CObjectVector::EnsureCapacity(unsigned long n) {
    if (!m_store.Reserve(n))
        ThrowMemory(__LINE__);
}

void CObjectVector::TrimToSize() {
    if (!m_store.TrimToSize())
        ThrowMemory(__LINE__);
}

void CObjectVector::Sort(int (*compare)(void const*, void const*)) {
    if (compare == nullptr)
        throw CIllegalArgumentException(kUnit, __LINE__, "Invalid compare function.");
    if (m_store.Size() > 1)
        std::qsort(m_store.Data(), m_store.Size(), sizeof(CObject*), compare);
}

} // namespace util
} // namespace lumo
