// win::CMutex over a kernel mutex object: waits that accept an abandoned mutex like a
// free one, and release that fails for a thread that does not own it.
#include <lumo/base/win/Mutex.h>

#include <lumo/base/Exception.h>
#include <lumo/base/win/WinSystemErrorException.h>

#include "../os/KernelObject.h"

namespace lumo {
namespace base {
namespace win {

LUMO_DEFINE_CLASS(CMutex, "lumo::base::win::CMutex", "lumo::base::win::CSyncObject");

CMutex::CMutex(char const* name, bool initialOwner) : CSyncObject(name) {
    Handle handle = kernel::NewMutex(name, initialOwner);
    if (handle == nullptr)
        throw CMemoryException("lumo/base/win/Mutex", __LINE__);
    SetHandle(handle);
}

CMutex::~CMutex() {}

bool CMutex::IsTimeoutSupported() const {
    return true;
}

void CMutex::Acquire() {
    unsigned long const result = kernel::WaitForOne(GetHandle(), kernel::Infinite);
    if (result != kernel::WaitObject0 && result != kernel::WaitAbandoned0)
        throw CWinSystemErrorException("lumo/base/win/Mutex", __LINE__,
                                       "Failed to acquire the underlying mutex object.",
                                       kernel::LastError());
}

bool CMutex::TryAcquire(unsigned long timeout) {
    unsigned long const result = kernel::WaitForOne(GetHandle(), timeout);
    if (result == kernel::WaitTimeout)
        return false;
    if (result != kernel::WaitObject0 && result != kernel::WaitAbandoned0)
        throw CWinSystemErrorException("lumo/base/win/Mutex", __LINE__,
                                       "Failed to acquire the underlying mutex object.",
                                       kernel::LastError());
    return true;
}

void CMutex::Release() {
    if (!kernel::ReleaseMutexObject(GetHandle()))
        throw CWinSystemErrorException("lumo/base/win/Mutex", __LINE__,
                                       "Failed to release the underlying mutex object.",
                                       kernel::LastError());
}

} // namespace win
} // namespace base
} // namespace lumo
