#include <lumo/util/UnicodeStringMap.h>

#include "StringMapImpl.h"

#include <cstdlib>
#include <utility>

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
        std::swap(m_keys, copy.m_keys);
        std::swap(m_values, copy.m_values);
        std::swap(m_size, copy.m_size);
        std::swap(m_capacity, copy.m_capacity);
        std::swap(m_increment, copy.m_increment);
    }
    return *this;
}

CUnicodeStringMap::~CUnicodeStringMap() {
    Impl::Destroy(m_keys, m_values, m_size);
    std::free(m_keys);
    std::free(m_values);
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
    return m_keys[LUMO_UNICODESTRINGMAP_IMPL(*this).CheckIndex(index, __LINE__)];
}

CUnicodeString const& CUnicodeStringMap::GetKeyAt(unsigned long index) const {
    return const_cast<CUnicodeStringMap*>(this)->GetKeyAt(index);
}

CUnicodeString& CUnicodeStringMap::GetAt(unsigned long index) {
    return m_values[LUMO_UNICODESTRINGMAP_IMPL(*this).CheckIndex(index, __LINE__)];
}

CUnicodeString const& CUnicodeStringMap::GetAt(unsigned long index) const {
    return const_cast<CUnicodeStringMap*>(this)->GetAt(index);
}

void CUnicodeStringMap::Remove(unsigned short const* key) {
    Impl impl = LUMO_UNICODESTRINGMAP_IMPL(*this);
    long const index = impl.IndexOfKey(key, kCaseSensitive);
    if (index >= 0)
        impl.RemoveAt(static_cast<std::uint32_t>(index));
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
    if (m_index >= m_map->m_size)
        throw CNoSuchElementException(kUnit, __LINE__);
    return m_map->m_keys[m_index++];
}

CUnicodeString const& CUnicodeStringMap::CConstValueIterator::NextElement() {
    if (m_index >= m_map->m_size)
        throw CNoSuchElementException(kUnit, __LINE__);
    return m_map->m_values[m_index++];
}

} // namespace util
} // namespace lumo
