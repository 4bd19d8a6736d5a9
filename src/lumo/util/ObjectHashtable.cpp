// CObjectHashtable: owned or borrowed object keys and values over the chained-hash
// engine, with its enumerations.
#include <lumo/util/ObjectHashtable.h>

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <cmath>
#include <cstdlib>
#include <utility>

namespace lumo {
namespace util {

using base::CObject;

using base::CIllegalArgumentException;
using base::CMemoryException;

struct CObjectHashtable::Entry {
    std::int32_t hash;
    CObject* key;
    CObject* value;
    Entry* next;
};

namespace {

char const kUnit[] = "lumo/util/ObjectHashtable";

typedef CObjectHashtable::Entry Entry;

typedef base::detail::ChainedHash<Entry> Chain;

Entry* NewEntry(int line) {
    return static_cast<Entry*>(base::CBase::operator new(sizeof(Entry), kUnit, line));
}

void CheckKey(CObject const* key, int line) {
    if (key == nullptr)
        throw CIllegalArgumentException(kUnit, static_cast<unsigned long>(line),
                                        "Invalid key object.");
}

void CheckValue(CObject const* value, int line) {
    if (value == nullptr)
        throw CIllegalArgumentException(kUnit, static_cast<unsigned long>(line),
                                        "Invalid value object.");
}

CObject* CloneKey(CObject const* key) {
    CObject* clone = key->Clone();
    CheckKey(clone, __LINE__);
    return clone;
}

CObject* CloneValue(CObject const* value) {
    CObject* clone = value->Clone();
    CheckValue(clone, __LINE__);
    return clone;
}

// Fills the empty `chain` (of the source's capacity) with clones of the source
// entries: each source chain, in order, pushed onto the head of the same bucket.
// The value of each copy is cloned from the source key when `valuesFromKeys`.
// On failure everything made so far, clones included, is released.
void CopyEntries(Chain& chain, Chain const& source, bool valuesFromKeys) {
    try {
        for (std::uint32_t i = 0; i < source.Capacity(); ++i) {
            for (Entry const* e = source.Head(i); e != nullptr; e = e->next) {
                CObject* key = CloneKey(e->key);
                CObject* value = nullptr;
                Entry* entry = nullptr;
                try {
                    value = valuesFromKeys ? CloneKey(e->key) : CloneValue(e->value);
                    entry = NewEntry(__LINE__);
                } catch (...) {
                    delete value;
                    delete key;
                    throw;
                }
                entry->hash = e->hash;
                entry->key = key;
                entry->value = value;
                chain.Link(i, entry);
            }
        }
    } catch (...) {
        chain.Clear([](Entry* entry) {
            delete entry->key;
            delete entry->value;
            std::free(entry);
        });
        throw;
    }
}

} // namespace

CObjectHashtable::CObjectHashtable(long initialCapacity, float loadFactor, bool owns)
    : m_owns(owns) {
    std::uint64_t capacity = 101;
    if (initialCapacity >= 12)
        capacity = static_cast<std::uint64_t>(initialCapacity);
    if (loadFactor <= 0.0f) // a NaN stays as given
        loadFactor = 0.75f;
    std::int32_t const threshold =
        capacity > 0xFFFFFFFFu
            ? 0
            : Chain::ThresholdOf(static_cast<std::uint32_t>(capacity), loadFactor);
    if (!m_chain.Allocate(capacity, loadFactor, threshold))
        throw CMemoryException(kUnit, __LINE__);
}

CObjectHashtable::CObjectHashtable(bool owns, float loadFactor, std::int32_t threshold,
                                   std::uint32_t capacity)
    : m_owns(owns) {
    if (!m_chain.Allocate(capacity, loadFactor, threshold))
        throw CMemoryException(kUnit, __LINE__);
}

CObjectHashtable::CObjectHashtable(CObjectHashtable const& other)
    : CObjectHashtable(other.m_owns, other.m_chain.LoadFactor(), other.m_chain.Threshold(),
                       other.m_chain.Capacity()) {
    CopyEntries(m_chain, other.m_chain, true);
}

CObjectHashtable& CObjectHashtable::operator=(CObjectHashtable const& other) {
    if (this == &other)
        return *this;
    CObjectHashtable copy(other.m_owns, other.m_chain.LoadFactor(), other.m_chain.Threshold(),
                          other.m_chain.Capacity());
    CopyEntries(copy.m_chain, other.m_chain, false);
    std::swap(m_owns, copy.m_owns);
    m_chain.Swap(copy.m_chain);
    return *this; // `copy` now releases the old contents under the old owns flag
}

CObjectHashtable::~CObjectHashtable() {
    FreeEntries();
}

CObjectHashtable::Entry* CObjectHashtable::Find(std::int32_t hash, CObject const* key) const {
    return m_chain.Find(hash, [key](Entry const* e) { return e->key->Equals(key); });
}

void CObjectHashtable::Put(CObject* key, CObject* value) {
    CheckKey(key, __LINE__);
    CheckValue(value, __LINE__);
    for (;;) {
        std::int32_t const hash = key->GetHashCode();
        Entry* e = Find(hash, key);
        if (e != nullptr) {
            CObject* old = e->value;
            e->value = value;
            if (m_owns && old != value) // the same value again must survive
                delete old;
            return;
        }
        if (m_chain.IsFull()) {
            if (!m_chain.Grow())
                throw CMemoryException(kUnit, __LINE__);
            continue;
        }
        Entry* entry = NewEntry(__LINE__);
        entry->hash = hash;
        entry->key = key;
        entry->value = value;
        m_chain.Link(entry);
        return;
    }
}

CObject* CObjectHashtable::Get(CObject const* key) const {
    CheckKey(key, __LINE__);
    Entry const* e = Find(key->GetHashCode(), key);
    if (e == nullptr)
        throw CNoSuchElementException(kUnit, __LINE__);
    return e->value;
}

bool CObjectHashtable::ContainsKey(CObject const* key) const {
    CheckKey(key, __LINE__);
    return Find(key->GetHashCode(), key) != nullptr;
}

bool CObjectHashtable::Contains(CObject const* value) const {
    CheckValue(value, __LINE__);
    for (std::uint32_t i = 0; i < m_chain.Capacity(); ++i)
        for (Entry const* e = m_chain.Head(i); e != nullptr; e = e->next)
            if (e->value->Equals(value))
                return true;
    return false;
}

void CObjectHashtable::Remove(CObject const* key) {
    CheckKey(key, __LINE__);
    // Keys are unique, so the rest of the chain cannot match; the walk ends at the
    // match because `key` may be the stored key about to be deleted.
    Entry* e = m_chain.Unlink(key->GetHashCode(),
                              [key](Entry const* stored) { return stored->key->Equals(key); });
    if (e != nullptr) {
        if (m_owns) {
            delete e->key;
            delete e->value;
        }
        std::free(e);
    }
    throw CNoSuchElementException(kUnit, __LINE__);
}

void CObjectHashtable::Clear() {
    FreeEntries();
}

void CObjectHashtable::FreeEntries() noexcept {
    bool const owns = m_owns;
    m_chain.Clear([owns](Entry* e) {
        if (owns) {
            delete e->key;
            delete e->value;
        }
        std::free(e);
    });
}

CEnumeration<CObject> CObjectHashtable::GetKeys() const {
    return new (kUnit, __LINE__) CObjectHashtableKeyEnumeration(this);
}

CEnumeration<CObject> CObjectHashtable::GetElements() const {
    return new (kUnit, __LINE__) CObjectHashtableElementEnumeration(this);
}

namespace detail {

ObjectHashtableCursor::ObjectHashtableCursor(CObjectHashtable const* table)
    : m_cursor(&table->m_chain) {}

bool ObjectHashtableCursor::HasMore() const {
    return m_cursor.HasMore();
}

CObject* ObjectHashtableCursor::NextKey() {
    Entry const* e = m_cursor.Advance();
    if (e == nullptr)
        throw CNoSuchElementException(kUnit, __LINE__);
    return e->key;
}

CObject* ObjectHashtableCursor::NextValue() {
    Entry const* e = m_cursor.Advance();
    if (e == nullptr)
        throw CNoSuchElementException(kUnit, __LINE__);
    return e->value;
}

void ObjectHashtableCursor::Reset() {
    m_cursor.Reset();
}

} // namespace detail

} // namespace util
} // namespace lumo
