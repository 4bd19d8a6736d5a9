// win::CMutex: a kernel mutex that is owned, recursive and abandoned when its owner ends
// holding it, anonymous or shared by name within the process.
#ifndef LUMO_BASE_WIN_MUTEX_H
#define LUMO_BASE_WIN_MUTEX_H

#include <lumo/base/win/SyncObject.h>

namespace lumo {
namespace base {
namespace win {

/// A kernel mutex: owned by one thread at a time, recursive (the owner releases it
/// as often as it acquired it), and abandoned when its owner ends while holding it;
/// the next acquisition then succeeds with the result Wait_Abandoned. Mutexes with
/// the same name share one object within the process.
class LUMO_API CMutex : public CSyncObject {
    LUMO_DECLARE_CLASS(CMutex);

public:
    /// A null or empty name makes an anonymous mutex. Opening an existing named mutex
    /// ignores initialOwner. CMemoryException when the mutex cannot be made (also
    /// when the name belongs to an event).
    explicit CMutex(char const* name = nullptr, bool initialOwner = false);
    ~CMutex() override;

    /// True.
    bool IsTimeoutSupported() const override;
    /// Waits without limit; an abandoned mutex is acquired like a free one.
    /// CWinSystemErrorException "Failed to acquire the underlying mutex object." when
    /// the wait fails.
    void Acquire() override;
    /// False on time-out; otherwise as Acquire.
    bool TryAcquire(unsigned long timeout) override;
    /// CWinSystemErrorException "Failed to release the underlying mutex object." when
    /// the calling thread does not own the mutex.
    void Release() override;
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
