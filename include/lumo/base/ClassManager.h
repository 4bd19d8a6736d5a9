// The class registry: the IClassManager interface and CClassManager, the process-wide,
// newest-first list of class records, made on first use.
#ifndef LUMO_BASE_CLASSMANAGER_H
#define LUMO_BASE_CLASSMANAGER_H

#include <lumo/base/Base.h>
#include <lumo/base/Class.h>
#include <lumo/base/detail/ChainedHash.h>

#include <cstdint>

namespace lumo {
namespace base {

class CObject;

/// The class registry's interface.
class LUMO_API IClassManager {
public:
    virtual ~IClassManager() {}
    /// Adds `cls` at the head of the list; null is ignored.
    virtual void RegisterClass(CClass* cls) = 0;
    /// Removes `cls` from the list; null and records not in the list are ignored.
    virtual void UnregisterClass(CClass* cls) = 0;
    /// The newest record of that qualified name; null for a null, empty or unknown name.
    virtual CClass* FindClass(char const* name) = 0;
    /// A new default instance of the named class (see CClass::CreateNewInstance). No
    /// record of that name: CClassNotFoundException "The specified class is not found.".
    virtual CObject* CreateInstance(char const* name) = 0;
    /// Null for a null record.
    virtual CObject* CreateInstance(CClass const* cls) = 0;
};

/// The process-wide registry: a newest-first list of records. A hash table serves
/// lookups only until the first record is registered; from then on lookups walk the
/// list, so a later record of the same name hides an earlier one.
class LUMO_API CClassManager : public IClassManager {
public:
    CClassManager();
    ~CClassManager() override;

    void RegisterClass(CClass* cls) override;
    void UnregisterClass(CClass* cls) override;
    CClass* FindClass(char const* name) override;
    CObject* CreateInstance(char const* name) override;
    CObject* CreateInstance(CClass const* cls) override;

    /// The number of registered records.
    unsigned long GetCount() const { return m_count; }
    /// True while lookups still go through the hash table (before the first registration).
    bool IsHashing() const { return m_hashing != 0; }

    /// The single registry, made on first use.
    static CClassManager& GetInstance();

private:
    struct Entry;

    CClassManager(CClassManager const&);
    CClassManager& operator=(CClassManager const&);

    bool HashPut(char const* key, CClass* value);
    void HashRemove(char const* key);
    void FreeTable();

    CClass* m_head;
    unsigned long m_count;
    std::uint32_t m_hashing;
    detail::ChainedHash<Entry> m_table;
};

} // namespace base
} // namespace lumo

#endif
