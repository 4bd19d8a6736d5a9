// CStringVector over the shared StringVectorImpl, instantiated for CString elements.
#include <lumo/util/StringVector.h>

#include "StringVectorImpl.h"

namespace lumo {
namespace util {

using base::CString;

namespace {
char const kUnit[] = "lumo/util/StringVector";
typedef detail::StringVectorImpl<CString, char> Impl;
} // namespace

CStringVector::CStringVector(unsigned long initialCapacity, unsigned long increment)
    : m_store(Impl::CheckedIncrement(increment, kUnit)) {
    if (initialCapacity != 0)
        Impl::Reserve(m_store, initialCapacity, kUnit);
}

CStringVector::CStringVector(CStringVector const& other) : m_store(other.m_store.Increment()) {
    Impl::Assign(m_store, other.m_store, kUnit);
}

CStringVector& CStringVector::operator=(CStringVector const& other) {
    if (this != &other)
        Impl::Assign(m_store, other.m_store, kUnit);
    return *this;
}

void CStringVector::AddElement(char const* text) {
    Impl::Add(m_store, text, kUnit);
}

void CStringVector::InsertElementAt(char const* text, unsigned long index) {
    Impl::Insert(m_store, text, index, kUnit);
}

void CStringVector::SetElementAt(char const* text, unsigned long index) {
    Impl::Set(m_store, text, index, kUnit);
}

CString& CStringVector::GetElementAt(unsigned long index) {
    return m_store.Data()[Impl::CheckIndex(m_store, index, kUnit, __LINE__)];
}

CString const& CStringVector::GetElementAt(unsigned long index) const {
    return m_store.Data()[Impl::CheckIndex(m_store, index, kUnit, __LINE__)];
}

CString& CStringVector::GetFirstElement() {
    Impl::CheckNotEmpty(m_store, kUnit, __LINE__);
    return m_store.Data()[0];
}

CString const& CStringVector::GetFirstElement() const {
    Impl::CheckNotEmpty(m_store, kUnit, __LINE__);
    return m_store.Data()[0];
}

CString& CStringVector::GetLastElement() {
    return m_store.Data()[Impl::CheckNotEmpty(m_store, kUnit, __LINE__) - 1];
}

CString const& CStringVector::GetLastElement() const {
    return m_store.Data()[Impl::CheckNotEmpty(m_store, kUnit, __LINE__) - 1];
}

long CStringVector::GetIndexOf(char const* text) const {
    return Impl::IndexOf(m_store, text, kUnit);
}

long CStringVector::GetLastIndexOf(char const* text) const {
    return Impl::LastIndexOf(m_store, text, kUnit);
}

void CStringVector::RemoveElement(char const* text) {
    Impl::Remove(m_store, text, kUnit);
}

void CStringVector::RemoveElementAt(unsigned long index) {
    Impl::RemoveAt(m_store, index, kUnit);
}

void CStringVector::RemoveAllElements() {
    Impl::RemoveAll(m_store, kUnit);
}

void CStringVector::EnsureCapacity(unsigned long n) {
    Impl::Reserve(m_store, n, kUnit);
}

void CStringVector::TrimToSize() {
    Impl::Trim(m_store, kUnit);
}

void CStringVector::Sort(int (*compare)(void const*, void const*)) {
    Impl::Sort(m_store, compare, kUnit);
}

CEnumeration<CString> CStringVector::GetElements() const {
    return new (kUnit, __LINE__)
        detail::StringVectorEnumeration<CString, CStringVector>(this, kUnit);
}

bool CStringVector::operator==(CStringVector const& other) const {
    return Impl::Equal(m_store, other.m_store);
}

} // namespace util
} // namespace lumo
