// CCondition: a condition variable bound to a lock (wait with time-out, notify one or
// all), plus test seams that read the counters of its algorithm.
#ifndef LUMO_BASE_CONDITION_H
#define LUMO_BASE_CONDITION_H

#include <lumo/base/Lockable.h>

namespace lumo {
namespace base {

namespace detail {
class CConditionImpl;
}

/// A condition variable bound to a lock. A thread holding the lock calls Wait: it
/// releases the lock, sleeps until Notify or NotifyAll (or the time-out), and takes
/// the lock again before returning. There are no spurious wake-ups, but a
/// notification given while nobody waits is lost (not remembered for later
/// waiters).
///
/// Waiters enter through a gate: while the signals of one notification are being
/// consumed, new waiters queue at the gate and cannot take them. Notify wakes one of
/// the threads blocked at the time, NotifyAll all of them. A waiter whose time-out
/// falls while a notification is being consumed takes one of its signals as if it
/// had been woken (the documented counting rule); that signal then wakes a later
/// waiter.
class LUMO_API CCondition : public IWaitable {
public:
    /// The lock is not owned and must outlive the condition.
    /// CSynchronizationException "Failed to create critical section." or
    /// CMemoryException when the condition cannot be made.
    explicit CCondition(ILockable_& lock);
    /// The same for the library's ILockable locks (CLock, CReentrantLock, CSemaphore).
    explicit CCondition(ILockable& lock);
    /// Destroying a condition that threads wait on is the caller's error.
    ~CCondition() override;

    /// Waits up to timeout milliseconds (0xFFFFFFFF: without limit): true when woken by
    /// a notification, false on time-out. The caller holds the lock.
    /// CSynchronizationException "Failed to acquire the underlying gate semaphore.",
    /// "Failed to release the underlying gate semaphore." or "Failed to acquire the
    /// underlying queue semaphore." (source lumo/base/ConditionImplWin) when the
    /// underlying semaphores fail.
    bool Wait(unsigned long timeout) override;
    void Wait() override;
    /// Wakes one waiter / every current waiter; the caller normally holds the lock.
    /// CSynchronizationException "Failed to release the underlying queue semaphore."
    /// (or a gate failure as for Wait).
    ///@{
    void Notify();
    void NotifyAll();
    ///@}

    /// Not copyable: the object is the condition.
    ///@{
    CCondition(CCondition const&) = delete;
    CCondition& operator=(CCondition const&) = delete;
    ///@}

private:
    friend class detail::CConditionImpl;
    detail::CConditionImpl* m_impl;
};

namespace detail {

/// Test seams: the counters of a condition's algorithm, read under its internal lock,
/// and the count of timed-out waiters at which they are normalised (0x3FFFFFFF;
/// SetConditionGoneLimit returns the previous limit, 0 is ignored).
struct CConditionCounters {
    unsigned long blocked;
    unsigned long gone;
    unsigned long waiting;
};
LUMO_API CConditionCounters GetConditionCounters(CCondition const& condition);
LUMO_API unsigned long SetConditionGoneLimit(unsigned long limit);

} // namespace detail

} // namespace base
} // namespace lumo

#endif
