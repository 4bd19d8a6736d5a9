// CUnicodeStringMap: the ordered map of UTF-16 strings, over the shared string-map store.
#include <lumo/util/UnicodeStringMap.h>

namespace lumo {
namespace util {

using base::CUnicodeString;

namespace {
char const kUnit[] = "lumo/util/UnicodeStringMap";
} // namespace

CUnicodeStringMap::CUnicodeStringMap(unsigned long initialCapacity, unsigned long increment)
    : m_store(kUnit, true, initialCapacity, increment) {}

CUnicodeStringMap::CUnicodeStringMap(CUnicodeStringMap const& other) = default;
CUnicodeStringMap& CUnicodeStringMap::operator=(CUnicodeStringMap const& other) = default;
CUnicodeStringMap::~CUnicodeStringMap() = default;

void CUnicodeStringMap::Put(unsigned short const* key, unsigned short const* value) {
    m_store.Put(key, value);
}

CUnicodeString& CUnicodeStringMap::Get(unsigned short const* key) {
    return m_store.Get(key);
}

CUnicodeString const& CUnicodeStringMap::Get(unsigned short const* key) const {
    return m_store.Get(key);
}

long CUnicodeStringMap::GetIndexOfKey(unsigned short const* key) const {
    return m_store.IndexOfKey(key);
}

long CUnicodeStringMap::GetIndexOf(unsigned short const* value) const {
    return m_store.IndexOfValue(value);
}

CUnicodeString& CUnicodeStringMap::GetKeyAt(unsigned long index) {
    return m_store.WritableKeyAt(index, __LINE__);
}

CUnicodeString const& CUnicodeStringMap::GetKeyAt(unsigned long index) const {
    return m_store.KeyAt(index, __LINE__);
}

CUnicodeString& CUnicodeStringMap::GetAt(unsigned long index) {
    return m_store.ValueAt(index, __LINE__);
}

CUnicodeString const& CUnicodeStringMap::GetAt(unsigned long index) const {
    return m_store.ValueAt(index, __LINE__);
}

void CUnicodeStringMap::Remove(unsigned short const* key) {
    m_store.Remove(key);
}

void CUnicodeStringMap::RemoveAll() {
    m_store.RemoveAll();
}

void CUnicodeStringMap::EnsureCapacity(unsigned long n) {
    m_store.Reserve(n);
}

void CUnicodeStringMap::TrimToSize() {
    m_store.TrimToSize();
}

bool CUnicodeStringMap::operator==(CUnicodeStringMap const& other) const {
    return this == &other || m_store.Equal(other.m_store);
}

CUnicodeStringMap::CKeyIterator CUnicodeStringMap::GetKeyIterator() const {
    return CKeyIterator(this);
}

CUnicodeStringMap::CConstValueIterator CUnicodeStringMap::GetValueIterator() const {
    return CConstValueIterator(this);
}

CUnicodeString const& CUnicodeStringMap::CKeyIterator::NextElement() {
    return m_map->m_store.NextKey(m_index, __LINE__);
}

CUnicodeString const& CUnicodeStringMap::CConstValueIterator::NextElement() {
    return m_map->m_store.NextValue(m_index, __LINE__);
}

} // namespace util
} // namespace lumo
