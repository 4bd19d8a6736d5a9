// CObjectHashtable: buckets of entry chains that keep each key's hash, cloning copies,
// owning deletion, growth by threshold, and the cursor behind its enumerations.
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

inline std::uint32_t BucketOf(std::int32_t hash, std::uint32_t capacity) {
    return (static_cast<std::uint32_t>(hash) & 0x7FFFFFFFu) % capacity;
}

// (long)(capacity * loadFactor), truncating, in float arithmetic. Results beyond
// the 32-bit range saturate, and a NaN load factor gives a table that never grows
// (the plain conversion would be undefined).
std::int32_t ThresholdOf(std::uint32_t capacity, float loadFactor) {
    float const product = static_cast<float>(capacity) * loadFactor;
    if (std::isnan(product) || product >= 2147483648.0f)
        return 0x7FFFFFFF;
    if (product <= -2147483648.0f)
        return -0x7FFFFFFF - 1;
    return static_cast<std::int32_t>(product);
}

Entry** AllocateBuckets(std::uint64_t capacity, int line) {
    void* buckets = nullptr;
    if (capacity <= 0xFFFFFFFFu && capacity <= static_cast<std::size_t>(-1) / sizeof(Entry*))
        buckets = std::calloc(static_cast<std::size_t>(capacity), sizeof(Entry*));
    if (buckets == nullptr)
        throw CMemoryException(kUnit, static_cast<unsigned long>(line));
    return static_cast<Entry**>(buckets);
}

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

// Fills the empty `buckets` (of the source's capacity) with clones of the source
// entries: each source chain, in order, pushed onto the head of the same bucket.
// The value of each copy is cloned from the source key when `valuesFromKeys`.
// On failure everything made so far, clones included, is released.
std::uint32_t CopyEntries(Entry** buckets, Entry* const* source, std::uint32_t capacity,
                          bool valuesFromKeys) {
    std::uint32_t made = 0;
    try {
        for (std::uint32_t i = 0; i < capacity; ++i) {
            for (Entry const* e = source[i]; e != nullptr; e = e->next) {
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
                entry->next = buckets[i];
                buckets[i] = entry;
                ++made;
            }
        }
    } catch (...) {
        for (std::uint32_t i = 0; i < capacity; ++i) {
            while (buckets[i] != nullptr) {
                Entry* entry = buckets[i];
                buckets[i] = entry->next;
                delete entry->key;
                delete entry->value;
                std::free(entry);
            }
        }
        throw;
    }
    return made;
}

} // namespace

CObjectHashtable::CObjectHashtable(long initialCapacity, float loadFactor, bool owns)
    : m_owns(owns), m_buckets(nullptr), m_capacity(0), m_count(0), m_threshold(0),
      m_loadFactor(loadFactor) {
    std::uint64_t capacity = 101;
    if (initialCapacity >= 12)
        capacity = static_cast<std::uint64_t>(initialCapacity);
    if (m_loadFactor <= 0.0f) // a NaN stays as given
        m_loadFactor = 0.75f;
    m_buckets = AllocateBuckets(capacity, __LINE__);
    m_capacity = static_cast<std::uint32_t>(capacity);
    m_threshold = ThresholdOf(m_capacity, m_loadFactor);
}

CObjectHashtable::CObjectHashtable(bool owns, float loadFactor, std::int32_t threshold,
                                   std::uint32_t capacity)
    : m_owns(owns), m_buckets(AllocateBuckets(capacity, __LINE__)), m_capacity(capacity),
      m_count(0), m_threshold(threshold), m_loadFactor(loadFactor) {}

CObjectHashtable::CObjectHashtable(CObjectHashtable const& other)
    : CObjectHashtable(other.m_owns, other.m_loadFactor, other.m_threshold, other.m_capacity) {
    m_count = CopyEntries(m_buckets, other.m_buckets, m_capacity, true);
}

CObjectHashtable& CObjectHashtable::operator=(CObjectHashtable const& other) {
    if (this == &other)
        return *this;
    CObjectHashtable copy(other.m_owns, other.m_loadFactor, other.m_threshold, other.m_capacity);
    copy.m_count = CopyEntries(copy.m_buckets, other.m_buckets, copy.m_capacity, false);
    std::swap(m_owns, copy.m_owns);
    std::swap(m_buckets, copy.m_buckets);
    std::swap(m_capacity, copy.m_capacity);
    std::swap(m_count, copy.m_count);
    std::swap(m_threshold, copy.m_threshold);
    std::swap(m_loadFactor, copy.m_loadFactor);
    return *this; // `copy` now releases the old contents under the old owns flag
}

CObjectHashtable::~CObjectHashtable() {
    FreeEntries();
    std::free(m_buckets);
}

CObjectHashtable::Entry* CObjectHashtable::Find(std::int32_t hash, CObject const* key) const {
    for (Entry* e = m_buckets[BucketOf(hash, m_capacity)]; e != nullptr; e = e->next)
        if (e->hash == hash && e->key->Equals(key))
            return e;
    return nullptr;
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
        if (static_cast<std::int64_t>(m_count) >= m_threshold) {
            Rehash();
            continue;
        }
        Entry* entry = NewEntry(__LINE__);
        std::uint32_t const index = BucketOf(hash, m_capacity);
        entry->hash = hash;
        entry->key = key;
        entry->value = value;
        entry->next = m_buckets[index];
        m_buckets[index] = entry;
        ++m_count;
        return;
    }
}

void CObjectHashtable::Rehash() {
    std::uint64_t const capacity = static_cast<std::uint64_t>(m_capacity) * 2 + 1;
    Entry** buckets = AllocateBuckets(capacity, __LINE__);
    std::uint32_t const newCapacity = static_cast<std::uint32_t>(capacity);
    for (std::uint32_t i = 0; i < m_capacity; ++i) {
        Entry* e = m_buckets[i];
        while (e != nullptr) {
            Entry* next = e->next;
            std::uint32_t const index = BucketOf(e->hash, newCapacity);
            e->next = buckets[index];
            buckets[index] = e;
            e = next;
        }
    }
    std::free(m_buckets);
    m_buckets = buckets;
    m_capacity = newCapacity;
    m_threshold = ThresholdOf(newCapacity, m_loadFactor);
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
    for (std::uint32_t i = 0; i < m_capacity; ++i)
        for (Entry const* e = m_buckets[i]; e != nullptr; e = e->next)
            if (e->value->Equals(value))
                return true;
    return false;
}

void CObjectHashtable::Remove(CObject const* key) {
    CheckKey(key, __LINE__);
    std::int32_t const hash = key->GetHashCode();
    Entry** link = &m_buckets[BucketOf(hash, m_capacity)];
    for (Entry* e = *link; e != nullptr; link = &e->next, e = e->next) {
        if (e->hash == hash && e->key->Equals(key)) {
            *link = e->next;
            --m_count;
            // Keys are unique, so the rest of the chain cannot match; the walk ends
            // here because `key` may be the stored key about to be deleted.
            if (m_owns) {
                delete e->key;
                delete e->value;
            }
            std::free(e);
            break;
        }
    }
    throw CNoSuchElementException(kUnit, __LINE__);
}

void CObjectHashtable::Clear() {
    FreeEntries();
}

void CObjectHashtable::FreeEntries() noexcept {
    for (std::uint32_t i = 0; i < m_capacity; ++i) {
        Entry* e = m_buckets[i];
        m_buckets[i] = nullptr;
        while (e != nullptr) {
            Entry* next = e->next;
            if (m_owns) {
                delete e->key;
                delete e->value;
            }
            std::free(e);
            e = next;
        }
    }
    m_count = 0;
}

CEnumeration<CObject> CObjectHashtable::GetKeys() const {
    return new (kUnit, __LINE__) CObjectHashtableKeyEnumeration(this);
}

CEnumeration<CObject> CObjectHashtable::GetElements() const {
    return new (kUnit, __LINE__) CObjectHashtableElementEnumeration(this);
}

namespace detail {

ObjectHashtableCursor::ObjectHashtableCursor(CObjectHashtable const* table)
    : m_table(table), m_returned(0), m_bucket(-1), m_current(nullptr) {}

bool ObjectHashtableCursor::HasMore() const {
    return m_returned < m_table->m_count;
}

void ObjectHashtableCursor::Advance() {
    if (m_current != nullptr && m_current->next != nullptr) {
        m_current = m_current->next;
        ++m_returned;
    } else if (m_returned < m_table->m_count) {
        // The bound check only matters for a table changed while enumerating.
        do {
            ++m_bucket;
        } while (m_bucket < m_table->m_capacity && m_table->m_buckets[m_bucket] == nullptr);
        m_current = m_bucket < m_table->m_capacity ? m_table->m_buckets[m_bucket] : nullptr;
        if (m_current != nullptr)
            ++m_returned;
    } else {
        m_current = nullptr;
    }
    if (m_current == nullptr)
        throw CNoSuchElementException(kUnit, __LINE__);
}

CObject* ObjectHashtableCursor::NextKey() {
    Advance();
    return m_current->key;
}

CObject* ObjectHashtableCursor::NextValue() {
    Advance();
    return m_current->value;
}

void ObjectHashtableCursor::Reset() {
    m_returned = 0;
    m_bucket = -1;
    m_current = nullptr;
}

} // namespace detail

} // namespace util
} // namespace lumo
