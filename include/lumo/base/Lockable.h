// The lock and wait interfaces: ILockable (Acquire, TryAcquire, Release), its twin
// ILockable_ that a CCondition binds to, and IWaitable.
#ifndef LUMO_BASE_LOCKABLE_H
#define LUMO_BASE_LOCKABLE_H

#include <lumo/base/Base.h>

namespace lumo {
namespace base {

/// The lock interface of the library: CLock, CReentrantLock, CSpinLock, CLazyLock.
class LUMO_API ILockable : public CBase {
public:
    virtual ~ILockable();
    /// Waits as long as needed to take the lock.
    virtual void Acquire() = 0;
    /// Takes the lock when it is free; true when taken.
    virtual bool TryAcquire(unsigned long timeout) = 0;
    /// Gives back what Acquire or a successful TryAcquire took.
    virtual void Release() = 0;
};

/// The same three operations, kept as a separate type (the lock a CCondition is bound to).
class LUMO_API ILockable_ : public CBase {
public:
    virtual ~ILockable_();
    /// Waits as long as needed to take the lock.
    virtual void Acquire() = 0;
    /// Takes the lock when it is free within `timeout` milliseconds; true when taken.
    virtual bool TryAcquire(unsigned long timeout) = 0;
    /// Gives back what Acquire or a successful TryAcquire took.
    virtual void Release() = 0;
};

/// Things that can be waited on.
class LUMO_API IWaitable : public CBase {
public:
    virtual ~IWaitable();
    /// True when woken, false on time-out.
    virtual bool Wait(unsigned long timeout) = 0;
    /// Waits without a time limit until woken.
    virtual void Wait() = 0;
};

} // namespace base
} // namespace lumo

#endif
