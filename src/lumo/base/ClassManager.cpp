// CClassManager: the newest-first list of class records, with a hash table that serves
// lookups only until the first registration and a list walk from then on.
#include <lumo/base/ClassManager.h>

#include <lumo/base/ClassNotFoundException.h>
#include <lumo/base/Object.h>

#include <cstdlib>
#include <cstring>

#include "detail/TextHash.h"

namespace lumo {
namespace base {

// Line numbers that the library's documented behaviour fixes for these failures.
unsigned long const kClassNotFoundLine = 183; // CreateInstance of an unknown name

struct CClassManager::Entry {
    std::int32_t hash;
    char const* key;
    CClass* value;
    Entry* next;
};

namespace {
std::uint32_t const kInitialBuckets = 8191;
std::int32_t const kInitialThreshold = 6143;
} // namespace

CClassManager::CClassManager() : m_head(nullptr), m_count(0), m_hashing(0) {
    if (!m_table.Allocate(kInitialBuckets, 0.75f, kInitialThreshold))
        return;
    for (CClass* cls = m_head; cls != nullptr; cls = cls->m_next) {
        if (!HashPut(cls->GetName(), cls)) {
            FreeTable();
            return;
        }
    }
    m_hashing = 1;
}

CClassManager::~CClassManager() {
    FreeTable();
}

CClassManager& CClassManager::GetInstance() {
    static CClassManager instance;
    return instance;
}

void CClassManager::FreeTable() {
    m_table.Clear([](Entry* e) { std::free(e); });
    m_table.Release();
}

// Keys are the records' own name pointers, compared as pointers. Failures (no
// memory) are reported by returning false, never thrown.
bool CClassManager::HashPut(char const* key, CClass* value) {
    if (!m_table.IsAllocated())
        return false;
    std::int32_t const hash = lumo::detail::HashText(key);
    auto const same = [key](Entry const* e) { return e->key == key; };
    for (;;) {
        if (Entry* e = m_table.Find(hash, same)) {
            e->value = value;
            return true;
        }
        if (m_table.IsFull()) {
            if (!m_table.Grow())
                return false;
            continue;
        }
        auto* entry = static_cast<Entry*>(std::malloc(sizeof(Entry)));
        if (entry == nullptr)
            return false;
        entry->hash = hash;
        entry->key = key;
        entry->value = value;
        m_table.Link(entry);
        return true;
    }
}

void CClassManager::HashRemove(char const* key) {
    if (!m_table.IsAllocated())
        return;
    std::free(m_table.Unlink(lumo::detail::HashText(key),
                             [key](Entry const* e) { return e->key == key; }));
}

void CClassManager::RegisterClass(CClass* cls) {
    if (cls == nullptr)
        return;
    cls->m_previous = nullptr;
    cls->m_next = m_head;
    if (m_head != nullptr)
        m_head->m_previous = cls;
    m_head = cls;
    ++m_count;
    // The table only serves until the first successful registration; from then on
    // every lookup walks the list.
    if (m_hashing != 0 && HashPut(cls->GetName(), cls)) {
        m_hashing = 0;
        FreeTable();
    }
}

void CClassManager::UnregisterClass(CClass* cls) {
    if (cls == nullptr)
        return;
    if (cls == m_head) {
        m_head = cls->m_next;
        // The new head keeps its back link to the removed record; only the head's
        // back link is ever stale, and the head's back link is never read.
        if (m_head != nullptr)
            cls->m_previous = nullptr;
    } else {
        // A record that is not linked (never registered, or already removed) is left alone.
        if (cls->m_previous == nullptr)
            return;
        if (cls->m_next != nullptr)
            cls->m_next->m_previous = cls->m_previous;
        cls->m_previous->m_next = cls->m_next;
        // Unlinked for good: a second removal must not touch the list again.
        cls->m_previous = nullptr;
        cls->m_next = nullptr;
    }
    --m_count;
    if (m_hashing != 0)
        HashRemove(cls->GetName());
}

CClass* CClassManager::FindClass(char const* name) {
    if (name == nullptr || *name == '\0')
        return nullptr;
    if (m_hashing != 0) {
        Entry const* e = m_table.Find(lumo::detail::HashText(name),
                                      [name](Entry const* e) { return e->key == name; });
        return e != nullptr ? e->value : nullptr;
    }
    // A case-sensitive text comparison finds two texts equal exactly when their bytes
    // are, so the walk compares bytes: it runs over every record on each miss.
    for (CClass* cls = m_head; cls != nullptr; cls = cls->m_next) {
        char const* qualified = cls->GetQualifiedName();
        if (qualified != nullptr && std::strcmp(qualified, name) == 0)
            return cls;
    }
    return nullptr;
}

CObject* CClassManager::CreateInstance(char const* name) {
    CClass* cls = FindClass(name);
    if (cls == nullptr)
        throw CClassNotFoundException("lumo/base/ClassManager", kClassNotFoundLine,
                                      "The specified class is not found.", nullptr, name);
    return cls->CreateNewInstance();
}

CObject* CClassManager::CreateInstance(CClass const* cls) {
    return cls == nullptr ? nullptr : cls->CreateNewInstance();
}

} // namespace base
} // namespace lumo
