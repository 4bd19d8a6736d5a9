// win::CEvent over a kernel event object: set, reset, and wait (which resets an
// auto-reset event), with system errors reported as CWinSystemErrorException.
#include <lumo/base/win/Event.h>

#include <lumo/base/Exception.h>
#include <lumo/base/win/WinSystemErrorException.h>

#include "../os/KernelObject.h"

namespace lumo {
namespace base {
namespace win {

LUMO_DEFINE_CLASS(CEvent, "lumo::base::win::CEvent", "lumo::base::win::CSyncObject");

CEvent::CEvent(char const* name, bool initialState, bool manualReset) : CSyncObject(name) {
    Handle handle = kernel::NewEvent(name, manualReset, initialState);
    if (handle == nullptr)
        throw CMemoryException("lumo/base/win/Event", __LINE__);
    SetHandle(handle);
}

CEvent::~CEvent() {}

void CEvent::SetEvent() {
    if (!kernel::SetEventObject(GetHandle()))
        throw CWinSystemErrorException(
            "lumo/base/win/Event", __LINE__,
            "Failed to set to the signaled state the underlying event object.",
            kernel::LastError());
}

void CEvent::ResetEvent() {
    if (!kernel::ResetEventObject(GetHandle()))
        throw CWinSystemErrorException("lumo/base/win/Event", __LINE__,
                                       "Failed to reset the underlying event object.",
                                       kernel::LastError());
}

bool CEvent::IsTimeoutSupported() const {
    return true;
}

void CEvent::Acquire() {
    unsigned long const result = kernel::WaitForOne(GetHandle(), kernel::Infinite);
    if (result != kernel::WaitObject0 && result != kernel::WaitAbandoned0)
        throw CWinSystemErrorException("lumo/base/win/Event", __LINE__,
                                       "Failed to acquire the underlying event object.",
                                       kernel::LastError());
}

bool CEvent::TryAcquire(unsigned long timeout) {
    unsigned long const result = kernel::WaitForOne(GetHandle(), timeout);
    if (result == kernel::WaitTimeout)
        return false;
    if (result != kernel::WaitObject0 && result != kernel::WaitAbandoned0)
        throw CWinSystemErrorException("lumo/base/win/Event", __LINE__,
                                       "Failed to acquire the underlying event object.",
                                       kernel::LastError());
    return true;
}

void CEvent::Release() {}

} // namespace win
} // namespace base
} // namespace lumo
