// win::CWinSemaphoreImpl over a kernel semaphore handle: checks the counts, and turns
// failed waits and releases into CSynchronizationException with the system's text.
#include <lumo/base/win/WinSemaphoreImpl.h>

#include <lumo/base/Exception.h>

#include "../os/KernelObject.h"

#include <cstring>

namespace lumo {
namespace base {
namespace win {

namespace {

char const kUnit[] = "lumo/base/win/WinSemaphoreImpl";

void* MakeSemaphore(unsigned long initialCount, unsigned long maximumCount) {
    if (maximumCount == 0 ||
        maximumCount > static_cast<unsigned long>(kernel::MaximumSemaphoreCount))
        throw CIllegalArgumentException(kUnit, __LINE__, "Invalid maximum count.");
    if (initialCount > maximumCount)
        throw CIllegalArgumentException(kUnit, __LINE__, "Invalid initial count.");
    void* handle = kernel::NewSemaphore(nullptr, static_cast<long>(initialCount),
                                        static_cast<long>(maximumCount));
    if (handle == nullptr)
        throw CMemoryException(kUnit, __LINE__);
    return handle;
}

// strerror_r comes in two flavours; each overload accepts one.
[[maybe_unused]] char const* ErrorText(char const* gnu, char const*) {
    return gnu;
}
[[maybe_unused]] char const* ErrorText(int rc, char const* buffer) {
    return rc == 0 ? buffer : nullptr;
}

// The system's text for the last error becomes the exception's message.
[[noreturn]] void ThrowSynchronization(int line, char const* description) {
    char buffer[256] = {0};
    char const* text =
        ErrorText(strerror_r(static_cast<int>(kernel::LastError()), buffer, sizeof buffer), buffer);
    throw CSynchronizationException(kUnit, static_cast<unsigned long>(line), description, text);
}

} // namespace

CWinSemaphoreImpl::CWinSemaphoreImpl(unsigned long initialCount, unsigned long maximumCount)
    : m_handle(MakeSemaphore(initialCount, maximumCount)) {}

CWinSemaphoreImpl::CWinSemaphoreImpl(void* handle) : m_handle(handle) {}

CWinSemaphoreImpl::~CWinSemaphoreImpl() {
    kernel::CloseObject(m_handle);
}

bool CWinSemaphoreImpl::IsNamed() const {
    return false;
}

bool CWinSemaphoreImpl::IsShared() const {
    return false;
}

void CWinSemaphoreImpl::Acquire() {
    unsigned long const result = kernel::WaitForOne(m_handle, kernel::Infinite);
    if (result != kernel::WaitObject0 && result != kernel::WaitAbandoned0)
        ThrowSynchronization(__LINE__, "Failed to acquire the semaphore.");
}

bool CWinSemaphoreImpl::TryAcquire(unsigned long timeout) {
    unsigned long const result = kernel::WaitForOne(m_handle, timeout);
    if (result == kernel::WaitTimeout)
        return false;
    if (result != kernel::WaitObject0 && result != kernel::WaitAbandoned0)
        ThrowSynchronization(__LINE__, "Failed to acquire the semaphore.");
    return true;
}

void CWinSemaphoreImpl::Release() {
    if (!kernel::ReleaseSemaphoreObject(m_handle, 1, nullptr))
        ThrowSynchronization(__LINE__, "Failed to release the semaphore.");
}

} // namespace win
} // namespace base
} // namespace lumo
