// CUnicodeStringMap over the shared StringMapImpl, instantiated for CUnicodeString keys
// and values, always case-sensitive.
#include <lumo/util/UnicodeStringMap.h>

#include "StringMapImpl.h"

namespace lumo {
namespace util {

using base::CUnicodeString;

namespace {
char const kUnit[] = "lumo/util/UnicodeStringMap";
typedef detail::StringMapImpl<CUnicodeString, unsigned short> Impl;
bool const kCaseSensitive = true;
} // namespace

#define LUMO_UNICODESTRINGMAP_IMPL(map)                                                            \
    Impl((map).m_keys, (map).m_values, (map).m_size, (map).m_capacity, (map).m_increment, kUnit)

CUnicodeStringMap::CUnicodeStringMap(unsigned long initialCapacity, unsigned long increment)
    : m_keys(nullptr), m_values(nullptr), m_size(0), m_capacity(0),
      m_increment(Impl::IncrementOf(increment)) {
    if (initialCapacity > 0)
        LUMO_UNICODESTRINGMAP_IMPL(*this).Reserve(initialCapacity);
}

CUnicodeStringMap::CUnicodeStringMap(CUnicodeStringMap const& other)
    : m_keys(nullptr), m_values(nullptr), m_size(0), m_capacity(0), m_increment(other.m_increment) {
    LUMO_UNICODESTRINGMAP_IMPL(*this).CopyFrom(other.m_keys, other.m_values, other.m_size);
}

CUnicodeStringMap& CUnicodeStringMap::operator=(CUnicodeStringMap const& other) {
    if (this != &other) {
        CUnicodeStringMap copy(other);
        LUMO_UNICODESTRINGMAP_IMPL(*this).Swap(LUMO_UNICODESTRINGMAP_IMPL(copy));
    }
    return *this;
}

CUnicodeStringMap::~CUnicodeStringMap() {
    LUMO_UNICODESTRINGMAP_IMPL(*this).Release();
}

void CUnicodeStringMap::Put(unsigned short const* key, unsigned short const* value) {
    LUMO_UNICODESTRINGMAP_IMPL(*this).Put(key, value, kCaseSensitive);
}

CUnicodeString& CUnicodeStringMap::Get(unsigned short const* key) {
    return LUMO_UNICODESTRINGMAP_IMPL(*this).Get(key, kCaseSensitive);
}

CUnicodeString const& CUnicodeStringMap::Get(unsigned short const* key) const {
    return const_cast<CUnicodeStringMap*>(this)->Get(key);
}

long CUnicodeStringMap::GetIndexOfKey(unsigned short const* key) const {
    return LUMO_UNICODESTRINGMAP_IMPL(*const_cast<CUnicodeStringMap*>(this))
        .IndexOfKey(key, kCaseSensitive);
}

long CUnicodeStringMap::GetIndexOf(unsigned short const* value) const {
    return LUMO_UNICODESTRINGMAP_IMPL(*const_cast<CUnicodeStringMap*>(this)).IndexOfValue(value);
}

CUnicodeString& CUnicodeStringMap::GetKeyAt(unsigned long index) {
    return LUMO_UNICODESTRINGMAP_IMPL(*this).KeyAt(index, __LINE__);
}

CUnicodeString const& CUnicodeStringMap::GetKeyAt(unsigned long index) const {
    return const_cast<CUnicodeStringMap*>(this)->GetKeyAt(index);
}

CUnicodeString& CUnicodeStringMap::GetAt(unsigned long index) {
    return LUMO_UNICODESTRINGMAP_IMPL(*this).ValueAt(index, __LINE__);
}

CUnicodeString const& CUnicodeStringMap::GetAt(unsigned long index) const {
    return const_cast<CUnicodeStringMap*>(this)->GetAt(index);
}

void CUnicodeStringMap::Remove(unsigned short const* key) {
    LUMO_UNICODESTRINGMAP_IMPL(*this).Remove(key, kCaseSensitive);
}

void CUnicodeStringMap::RemoveAll() {
    LUMO_UNICODESTRINGMAP_IMPL(*this).RemoveAll();
}

void CUnicodeStringMap::EnsureCapacity(unsigned long n) {
    LUMO_UNICODESTRINGMAP_IMPL(*this).Reserve(n);
}

void CUnicodeStringMap::TrimToSize() {
    LUMO_UNICODESTRINGMAP_IMPL(*this).TrimToSize();
}

bool CUnicodeStringMap::operator==(CUnicodeStringMap const& other) const {
    if (this == &other)
        return true;
    return LUMO_UNICODESTRINGMAP_IMPL(*const_cast<CUnicodeStringMap*>(this))
        .Equal(other.m_keys, other.m_values, other.m_size);
}

CUnicodeStringMap::CKeyIterator CUnicodeStringMap::GetKeyIterator() const {
    return CKeyIterator(this);
}

CUnicodeStringMap::CConstValueIterator CUnicodeStringMap::GetValueIterator() const {
    return CConstValueIterator(this);
}

CUnicodeString const& CUnicodeStringMap::CKeyIterator::NextElement() {
    return Impl::Next(m_map->m_keys, m_map->m_size, m_index, kUnit, __LINE__);
}

CUnicodeString const& CUnicodeStringMap::CConstValueIterator::NextElement() {
    return Impl::Next(m_map->m_values, m_map->m_size, m_index, kUnit, __LINE__);
}

} // namespace util
} // namespace lumo
