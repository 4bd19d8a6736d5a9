// CStringMap: the ordered map of 8-bit strings, over the shared string-map store.
#include <lumo/util/StringMap.h>

namespace lumo {
namespace util {

using base::CString;

namespace {
char const kUnit[] = "lumo/util/StringMap";
} // namespace

CStringMap::CStringMap(bool caseSensitive, unsigned long initialCapacity, unsigned long increment)
    : m_store(kUnit, caseSensitive, initialCapacity, increment) {}

CStringMap::CStringMap(CStringMap const& other) = default;
CStringMap& CStringMap::operator=(CStringMap const& other) = default;
CStringMap::~CStringMap() = default;

void CStringMap::Put(char const* key, char const* value) {
    m_store.Put(key, value);
}

CString& CStringMap::Get(char const* key) {
    return m_store.Get(key);
}

CString const& CStringMap::Get(char const* key) const {
    return m_store.Get(key);
}

long CStringMap::GetIndexOfKey(char const* key) const {
    return m_store.IndexOfKey(key);
}

long CStringMap::GetIndexOf(char const* value) const {
    return m_store.IndexOfValue(value);
}

CString& CStringMap::GetKeyAt(unsigned long index) {
    return m_store.WritableKeyAt(index, __LINE__);
}

CString const& CStringMap::GetKeyAt(unsigned long index) const {
    return m_store.KeyAt(index, __LINE__);
}

CString& CStringMap::GetAt(unsigned long index) {
    return m_store.ValueAt(index, __LINE__);
}

CString const& CStringMap::GetAt(unsigned long index) const {
    return m_store.ValueAt(index, __LINE__);
}

void CStringMap::Remove(char const* key) {
    m_store.Remove(key);
}

void CStringMap::RemoveAll() {
    m_store.RemoveAll();
}

void CStringMap::EnsureCapacity(unsigned long n) {
    m_store.Reserve(n);
}

void CStringMap::TrimToSize() {
    m_store.TrimToSize();
}

bool CStringMap::operator==(CStringMap const& other) const {
    return this == &other || m_store.Equal(other.m_store);
}

CStringMap::CKeyIterator CStringMap::GetKeyIterator() const {
    return CKeyIterator(this);
}

CStringMap::CConstValueIterator CStringMap::GetValueIterator() const {
    return CConstValueIterator(this);
}

CString const& CStringMap::CKeyIterator::NextElement() {
    return m_map->m_store.NextKey(m_index, __LINE__);
}

CString const& CStringMap::CConstValueIterator::NextElement() {
    return m_map->m_store.NextValue(m_index, __LINE__);
}

} // namespace util
} // namespace lumo
