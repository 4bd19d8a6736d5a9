// CUnicodeStringVector over the shared StringVectorImpl, instantiated for CUnicodeString
// elements.
#include <lumo/util/UnicodeStringVector.h>

#include "StringVectorImpl.h"

namespace lumo {
namespace util {

using base::CUnicodeString;

namespace {
char const kUnit[] = "lumo/util/UnicodeStringVector";
typedef detail::StringVectorImpl<CUnicodeString, unsigned short> Impl;
} // namespace

CUnicodeStringVector::CUnicodeStringVector(unsigned long initialCapacity, unsigned long increment)
    : m_store(Impl::CheckedIncrement(increment, kUnit)) {
    if (initialCapacity != 0)
        Impl::Reserve(m_store, initialCapacity, kUnit);
}

CUnicodeStringVector::CUnicodeStringVector(CUnicodeStringVector const& other)
    : m_store(other.m_store.Increment()) {
    Impl::Assign(m_store, other.m_store, kUnit);
}

CUnicodeStringVector& CUnicodeStringVector::operator=(CUnicodeStringVector const& other) {
    if (this != &other)
        Impl::Assign(m_store, other.m_store, kUnit);
    return *this;
}

void CUnicodeStringVector::AddElement(unsigned short const* text) {
    Impl::Add(m_store, text, kUnit);
}

void CUnicodeStringVector::InsertElementAt(unsigned short const* text, unsigned long index) {
    Impl::Insert(m_store, text, index, kUnit);
}

void CUnicodeStringVector::SetElementAt(unsigned short const* text, unsigned long index) {
    Impl::Set(m_store, text, index, kUnit);
}

CUnicodeString& CUnicodeStringVector::GetElementAt(unsigned long index) {
    return m_store.Data()[Impl::CheckIndex(m_store, index, kUnit, __LINE__)];
}

CUnicodeString const& CUnicodeStringVector::GetElementAt(unsigned long index) const {
    return m_store.Data()[Impl::CheckIndex(m_store, index, kUnit, __LINE__)];
}

CUnicodeString& CUnicodeStringVector::GetFirstElement() {
    Impl::CheckNotEmpty(m_store, kUnit, __LINE__);
    return m_store.Data()[0];
}

CUnicodeString const& CUnicodeStringVector::GetFirstElement() const {
    Impl::CheckNotEmpty(m_store, kUnit, __LINE__);
    return m_store.Data()[0];
}

CUnicodeString& CUnicodeStringVector::GetLastElement() {
    return m_store.Data()[Impl::CheckNotEmpty(m_store, kUnit, __LINE__) - 1];
}

CUnicodeString const& CUnicodeStringVector::GetLastElement() const {
    return m_store.Data()[Impl::CheckNotEmpty(m_store, kUnit, __LINE__) - 1];
}

long CUnicodeStringVector::GetIndexOf(unsigned short const* text) const {
    return Impl::IndexOf(m_store, text, kUnit);
}

long CUnicodeStringVector::GetLastIndexOf(unsigned short const* text) const {
    return Impl::LastIndexOf(m_store, text, kUnit);
}

void CUnicodeStringVector::RemoveElement(unsigned short const* text) {
    Impl::Remove(m_store, text, kUnit);
}

void CUnicodeStringVector::RemoveElementAt(unsigned long index) {
    Impl::RemoveAt(m_store, index, kUnit);
}

void CUnicodeStringVector::RemoveAllElements() {
    Impl::RemoveAll(m_store, kUnit);
}

void CUnicodeStringVector::EnsureCapacity(unsigned long n) {
    Impl::Reserve(m_store, n, kUnit);
}

void CUnicodeStringVector::TrimToSize() {
    Impl::Trim(m_store, kUnit);
}

void CUnicodeStringVector::Sort(int (*compare)(void const*, void const*)) {
    Impl::Sort(m_store, compare, kUnit);
}

CEnumeration<CUnicodeString> CUnicodeStringVector::GetElements() const {
    return new (kUnit, __LINE__)
        detail::StringVectorEnumeration<CUnicodeString, CUnicodeStringVector>(this, kUnit);
}

bool CUnicodeStringVector::operator==(CUnicodeStringVector const& other) const {
    return Impl::Equal(m_store, other.m_store);
}

} // namespace util
} // namespace lumo
