// CSimpleLockManager: a nesting counter attached to a caller's handle variable of the
// root layer's handle memory manager.
#ifndef LUMO_BASE_SIMPLELOCKMANAGER_H
#define LUMO_BASE_SIMPLELOCKMANAGER_H

#include <lumo/base/Base.h>
#include <vela/Memory.h>

#include <cstdint>

namespace lumo {
namespace base {

/// A nesting counter attached to a handle variable of the root layer's handle
/// memory manager. The manager refers to the caller's variable (it sees later
/// changes of the handle stored there) and never dereferences the handle. The count
/// is not atomic: it counts one thread's nested uses, it is no lock between threads.
///
/// A manager made without a handle, or after DetachManagedHandle, refers to a null
/// handle variable of its own.
class LUMO_API CSimpleLockManager : public CBase {
public:
    CSimpleLockManager();
    /// Manages `handle` (the variable, which must outlive the manager or be replaced
    /// by SetManagedHandle / DetachManagedHandle first).
    explicit CSimpleLockManager(Vela::BMHandle& handle);
    /// A copy manages the same handle variable with the same count; a copy of a
    /// manager without a handle has none either.
    CSimpleLockManager(CSimpleLockManager const& other);
    /// Manages the other manager's handle variable with its count.
    CSimpleLockManager& operator=(CSimpleLockManager const& other);
    virtual ~CSimpleLockManager();

    /// The count raised by 1; the new count.
    virtual unsigned long Lock() const;
    /// The count lowered by 1 unless it is 0; the count.
    virtual unsigned long Unlock() const;

    /// The present nesting count.
    unsigned long GetLockCount() const { return m_count; }

    /// The handle value held by the managed variable (null when none is managed).
    Vela::BMHandle GetManagedHandle() const { return *m_handle; }
    /// Manages the variable `handle`. The variable already managed changes nothing;
    /// another variable is managed from now on with the count reset to 0.
    void SetManagedHandle(Vela::BMHandle& handle);
    /// The handle value of the managed variable (null when none); the manager then
    /// manages no handle, with count 0.
    Vela::BMHandle DetachManagedHandle();

private:
    bool ManagesOwnHandle() const { return m_handle == &m_noHandle; }

    /// The managed handle variable; never null (&m_noHandle when none is managed).
    Vela::BMHandle* m_handle;
    mutable std::uint32_t m_count;
    /// Always null: the variable referred to when no handle is managed.
    Vela::BMHandle m_noHandle;
};

} // namespace base
} // namespace lumo

#endif
