// CReentrantLock: a reentrant lock over an operating-system critical section; the
// holder may take it again and must release it as many times.
#ifndef LUMO_BASE_REENTRANTLOCK_H
#define LUMO_BASE_REENTRANTLOCK_H

#include <lumo/base/Lockable.h>

namespace lumo {
namespace base {

namespace detail {
struct SystemCriticalSection;
}

/// A reentrant lock over an operating-system critical section (spin count 0): a
/// thread that holds it may acquire it again and must release it as many times.
/// Behaves as CLock.
class LUMO_API CReentrantLock : public ILockable {
public:
    /// CSynchronizationException "Failed to create critical section." when the
    /// operating system cannot make one; CMemoryException when memory is exhausted.
    CReentrantLock();
    ~CReentrantLock() override;

    /// CSynchronizationException "Failed to enter critical section." when the
    /// operating system fails the attempt.
    void Acquire() override;
    /// Never waits, whatever the timeout; true when entered.
    bool TryAcquire(unsigned long timeout) override;
    void Release() override;

    CReentrantLock(CReentrantLock const&) = delete;
    CReentrantLock& operator=(CReentrantLock const&) = delete;

private:
    detail::SystemCriticalSection* m_impl;
};

} // namespace base
} // namespace lumo

#endif
