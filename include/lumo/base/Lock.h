// CLock: the library's plain lock over an operating-system critical section (recursive,
// no spinning), behind the ILockable interface.
#ifndef LUMO_BASE_LOCK_H
#define LUMO_BASE_LOCK_H

#include <lumo/base/Lockable.h>

namespace lumo {
namespace base {

namespace detail {
struct SystemCriticalSection;
}

/// A lock over an operating-system critical section (spin count 0). A thread that
/// holds it may acquire it again and must release it as many times.
class LUMO_API CLock : public ILockable {
public:
    /// CSynchronizationException "Failed to create critical section." when the
    /// operating system cannot make one; CMemoryException when memory is exhausted.
    CLock();
    ~CLock() override;

    /// CSynchronizationException "Failed to enter critical section." when the
    /// operating system fails the attempt.
    void Acquire() override;
    /// Never waits, whatever the timeout; true when entered.
    bool TryAcquire(unsigned long timeout) override;
    void Release() override;

    CLock(CLock const&) = delete;
    CLock& operator=(CLock const&) = delete;

private:
    detail::SystemCriticalSection* m_impl;
};

} // namespace base
} // namespace lumo

#endif
