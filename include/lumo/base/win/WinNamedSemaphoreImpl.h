// win::CWinNamedSemaphoreImpl: the semaphore implementation shared between processes by
// name (a POSIX named semaphore here), with the maximum count 0x7FFFFFFF.
#ifndef LUMO_BASE_WIN_WINNAMEDSEMAPHOREIMPL_H
#define LUMO_BASE_WIN_WINNAMEDSEMAPHOREIMPL_H

#include <lumo/base/win/WinSemaphoreImpl.h>

namespace lumo {
namespace base {
namespace win {

/// A semaphore shared between processes by name (on POSIX a named semaphore,
/// sem_open("/name")), with the maximum count 0x7FFFFFFF. See CSemaphore for the
/// name rules and the object's lifetime.
class LUMO_API CWinNamedSemaphoreImpl : public CWinSemaphoreImpl {
public:
    /// CIllegalArgumentException "Invalid semaphore name." / "Invalid initial count.";
    /// CMemoryException when the semaphore cannot be made or opened.
    CWinNamedSemaphoreImpl(char const* name, unsigned long initialCount);
    ~CWinNamedSemaphoreImpl() override;

    bool IsNamed() const override;
    bool IsShared() const override;
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
