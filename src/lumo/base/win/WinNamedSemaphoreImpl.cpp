// win::CWinNamedSemaphoreImpl: checks the name (one path component for a POSIX named
// semaphore) and the initial count, then opens or creates the semaphore.
#include <lumo/base/win/WinNamedSemaphoreImpl.h>

#include <lumo/base/Exception.h>

#include "../os/KernelObject.h"

#include <cstring>

namespace lumo {
namespace base {
namespace win {

namespace {

char const kUnit[] = "lumo/base/win/WinNamedSemaphoreImpl";

void* OpenSemaphore(char const* name, unsigned long initialCount) {
    if (name == nullptr || *name == '\0')
        throw CIllegalArgumentException(kUnit, __LINE__, "Invalid semaphore name.");
    // POSIX names are "/" and one path component.
    char const* rest = name[0] == '/' ? name + 1 : name;
    std::size_t const length = std::strlen(rest);
    if (length == 0 || length > 250 || std::strchr(rest, '/') != nullptr)
        throw CIllegalArgumentException(kUnit, __LINE__, "Invalid semaphore name.");
    if (initialCount > static_cast<unsigned long>(kernel::MaximumSemaphoreCount))
        throw CIllegalArgumentException(kUnit, __LINE__, "Invalid initial count.");
    void* handle =
        kernel::NewSemaphore(name, static_cast<long>(initialCount), kernel::MaximumSemaphoreCount);
    if (handle == nullptr)
        throw CMemoryException(kUnit, __LINE__);
    return handle;
}

} // namespace

CWinNamedSemaphoreImpl::CWinNamedSemaphoreImpl(char const* name, unsigned long initialCount)
    : CWinSemaphoreImpl(OpenSemaphore(name, initialCount)) {}

CWinNamedSemaphoreImpl::~CWinNamedSemaphoreImpl() {}

bool CWinNamedSemaphoreImpl::IsNamed() const {
    return true;
}

bool CWinNamedSemaphoreImpl::IsShared() const {
    return true;
}

} // namespace win
} // namespace base
} // namespace lumo
