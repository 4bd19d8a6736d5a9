// CStringMap over the shared StringMapImpl, instantiated for CString keys and values
// with the case mode chosen at construction.
#include <lumo/util/StringMap.h>

#include "StringMapImpl.h"

#include <utility>

namespace lumo {
namespace util {

using base::CString;

namespace {
char const kUnit[] = "lumo/util/StringMap";
typedef detail::StringMapImpl<CString, char> Impl;
} // namespace

#define LUMO_STRINGMAP_IMPL(map)                                                                   \
    Impl((map).m_keys, (map).m_values, (map).m_size, (map).m_capacity, (map).m_increment, kUnit)

CStringMap::CStringMap(bool caseSensitive, unsigned long initialCapacity, unsigned long increment)
    : m_caseSensitive(caseSensitive), m_keys(nullptr), m_values(nullptr), m_size(0), m_capacity(0),
      m_increment(Impl::IncrementOf(increment)) {
    if (initialCapacity > 0)
        LUMO_STRINGMAP_IMPL(*this).Reserve(initialCapacity);
}

CStringMap::CStringMap(CStringMap const& other)
    : m_caseSensitive(other.m_caseSensitive), m_keys(nullptr), m_values(nullptr), m_size(0),
      m_capacity(0), m_increment(other.m_increment) {
    LUMO_STRINGMAP_IMPL(*this).CopyFrom(other.m_keys, other.m_values, other.m_size);
}

CStringMap& CStringMap::operator=(CStringMap const& other) {
    if (this != &other) {
        CStringMap copy(other);
        std::swap(m_caseSensitive, copy.m_caseSensitive);
        LUMO_STRINGMAP_IMPL(*this).Swap(LUMO_STRINGMAP_IMPL(copy));
    }
    return *this;
}

CStringMap::~CStringMap() {
    LUMO_STRINGMAP_IMPL(*this).Release();
}

void CStringMap::Put(char const* key, char const* value) {
    LUMO_STRINGMAP_IMPL(*this).Put(key, value, m_caseSensitive);
}

CString& CStringMap::Get(char const* key) {
    return LUMO_STRINGMAP_IMPL(*this).Get(key, m_caseSensitive);
}

CString const& CStringMap::Get(char const* key) const {
    return const_cast<CStringMap*>(this)->Get(key);
}

long CStringMap::GetIndexOfKey(char const* key) const {
    return LUMO_STRINGMAP_IMPL(*const_cast<CStringMap*>(this)).IndexOfKey(key, m_caseSensitive);
}

long CStringMap::GetIndexOf(char const* value) const {
    return LUMO_STRINGMAP_IMPL(*const_cast<CStringMap*>(this)).IndexOfValue(value);
}

CString& CStringMap::GetKeyAt(unsigned long index) {
    return LUMO_STRINGMAP_IMPL(*this).KeyAt(index, __LINE__);
}

CString const& CStringMap::GetKeyAt(unsigned long index) const {
    return const_cast<CStringMap*>(this)->GetKeyAt(index);
}

CString& CStringMap::GetAt(unsigned long index) {
    return LUMO_STRINGMAP_IMPL(*this).ValueAt(index, __LINE__);
}

CString const& CStringMap::GetAt(unsigned long index) const {
    return const_cast<CStringMap*>(this)->GetAt(index);
}

void CStringMap::Remove(char const* key) {
    LUMO_STRINGMAP_IMPL(*this).Remove(key, m_caseSensitive);
}

void CStringMap::RemoveAll() {
    LUMO_STRINGMAP_IMPL(*this).RemoveAll();
}

void CStringMap::EnsureCapacity(unsigned long n) {
    LUMO_STRINGMAP_IMPL(*this).Reserve(n);
}

void CStringMap::TrimToSize() {
    LUMO_STRINGMAP_IMPL(*this).TrimToSize();
}

bool CStringMap::operator==(CStringMap const& other) const {
    if (this == &other)
        return true;
    return LUMO_STRINGMAP_IMPL(*const_cast<CStringMap*>(this))
        .Equal(other.m_keys, other.m_values, other.m_size);
}

CStringMap::CKeyIterator CStringMap::GetKeyIterator() const {
    return CKeyIterator(this);
}

CStringMap::CConstValueIterator CStringMap::GetValueIterator() const {
    return CConstValueIterator(this);
}

CString const& CStringMap::CKeyIterator::NextElement() {
    return Impl::Next(m_map->m_keys, m_map->m_size, m_index, kUnit, __LINE__);
}

CString const& CStringMap::CConstValueIterator::NextElement() {
    return Impl::Next(m_map->m_values, m_map->m_size, m_index, kUnit, __LINE__);
}

} // namespace util
} // namespace lumo
