// win::CWinSemaphoreImpl: the anonymous, process-local semaphore implementation over one
// kernel semaphore handle, behind CSemaphore.
#ifndef LUMO_BASE_WIN_WINSEMAPHOREIMPL_H
#define LUMO_BASE_WIN_WINSEMAPHOREIMPL_H

#include <lumo/base/Semaphore.h>

namespace lumo {
namespace base {
namespace win {

/// A semaphore over one kernel semaphore handle, anonymous (process-local).
class LUMO_API CWinSemaphoreImpl : public CSemaphoreImpl {
public:
    /// CIllegalArgumentException "Invalid initial count." / "Invalid maximum count.";
    /// CMemoryException when the semaphore cannot be made.
    CWinSemaphoreImpl(unsigned long initialCount, unsigned long maximumCount);
    /// Closes the handle.
    ~CWinSemaphoreImpl() override;

    bool IsNamed() const override;
    bool IsShared() const override;
    /// Signalled (or abandoned) results succeed; any other result throws
    /// CSynchronizationException "Failed to acquire the semaphore.".
    void Acquire() override;
    bool TryAcquire(unsigned long timeout) override;
    /// CSynchronizationException "Failed to release the semaphore.".
    void Release() override;

    CWinSemaphoreImpl(CWinSemaphoreImpl const&) = delete;
    CWinSemaphoreImpl& operator=(CWinSemaphoreImpl const&) = delete;

protected:
    /// Takes ownership of a handle made by a derived class.
    explicit CWinSemaphoreImpl(void* handle);

private:
    void* m_handle;
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
