// win::CCriticalSection: an operating-system critical section as a sync object; it has no
// wait handle, so it cannot take part in CMultiLock or CDualLock waits.
#ifndef LUMO_BASE_WIN_CRITICALSECTION_H
#define LUMO_BASE_WIN_CRITICALSECTION_H

#include <lumo/base/win/SyncObject.h>

namespace lumo {
namespace base {
namespace detail {
struct SystemCriticalSection;
}
namespace win {

/// An operating-system critical section (spin count 0) as a sync object. It has no
/// wait handle, so it cannot take part in CMultiLock or CDualLock waits. A thread
/// holding it may acquire it again and must release it as many times.
class LUMO_API CCriticalSection : public CSyncObject {
    LUMO_DECLARE_CLASS(CCriticalSection);

public:
    /// CSynchronizationException "Failed to create critical section." when the
    /// operating system cannot make one.
    CCriticalSection();
    ~CCriticalSection() override;

    /// False: TryAcquire never waits.
    bool IsTimeoutSupported() const override;
    /// CSynchronizationException "Failed to enter critical section." when the
    /// operating system fails the attempt.
    void Acquire() override;
    /// One attempt, whatever the timeout; true when entered.
    bool TryAcquire(unsigned long timeout) override;
    void Release() override;

private:
    detail::SystemCriticalSection* m_section;
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
