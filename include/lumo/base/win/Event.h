// win::CEvent: a kernel event, auto-reset or manual-reset, anonymous or shared by name
// within the process, with set, reset and wait.
#ifndef LUMO_BASE_WIN_EVENT_H
#define LUMO_BASE_WIN_EVENT_H

#include <lumo/base/win/SyncObject.h>

namespace lumo {
namespace base {
namespace win {

/// A kernel event. An auto-reset event lets one waiting thread through per
/// SetEvent and turns unsignalled again; a manual-reset event lets every waiter
/// through until ResetEvent. Events with the same name share one object within the
/// process.
class LUMO_API CEvent : public CSyncObject {
    LUMO_DECLARE_CLASS(CEvent);

public:
    /// A null or empty name makes an anonymous event. Opening an existing named event
    /// ignores initialState and manualReset. CMemoryException when the event cannot
    /// be made (also when the name belongs to a mutex).
    explicit CEvent(char const* name = nullptr, bool initialState = false,
                    bool manualReset = false);
    ~CEvent() override;

    /// CWinSystemErrorException "Failed to set to the signaled state the underlying
    /// event object." / "Failed to reset the underlying event object." on failure.
    ///@{
    void SetEvent();
    void ResetEvent();
    ///@}

    /// True.
    bool IsTimeoutSupported() const override;
    /// Waits for the signalled state (and resets an auto-reset event);
    /// CWinSystemErrorException "Failed to acquire the underlying event object." when
    /// the wait fails.
    void Acquire() override;
    bool TryAcquire(unsigned long timeout) override;
    /// Nothing: a wait on an event takes nothing that must be given back.
    void Release() override;
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
