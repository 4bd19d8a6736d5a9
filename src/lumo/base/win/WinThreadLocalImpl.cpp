// win::CWinThreadLocalImpl over the kernel layer's TLS slots: allocate once, free in the
// destructor, and get or set with failures as CWinSystemErrorException.
#include <lumo/base/win/WinThreadLocalImpl.h>

#include <lumo/base/win/WinSystemErrorException.h>

#include "../os/KernelObject.h"

#include <cerrno>

namespace lumo {
namespace base {
namespace win {

namespace {
char const kUnit[] = "lumo/base/win/WinThreadLocalImpl";
}

CWinThreadLocalImpl::CWinThreadLocalImpl() : m_index(kernel::TlsOutOfIndexes) {}

CWinThreadLocalImpl::~CWinThreadLocalImpl() {
    if (m_index != kernel::TlsOutOfIndexes)
        kernel::TlsFreeIndex(m_index);
}

void CWinThreadLocalImpl::Allocate() {
    if (m_index != kernel::TlsOutOfIndexes)
        return;
    unsigned long const index = kernel::TlsNewIndex();
    if (index == kernel::TlsOutOfIndexes)
        throw CWinSystemErrorException(kUnit, __LINE__, "There is no available free TLS slot.",
                                       kernel::LastError());
    m_index = index;
}

void* CWinThreadLocalImpl::GetValue() {
    if (m_index == kernel::TlsOutOfIndexes)
        throw CWinSystemErrorException(kUnit, __LINE__, "Failed to get the value of the TLS slot.",
                                       EINVAL);
    void* value = kernel::TlsGet(m_index);
    // A stored null is told from a failure by the error code.
    if (value == nullptr && kernel::LastError() != 0)
        throw CWinSystemErrorException(kUnit, __LINE__, "Failed to get the value of the TLS slot.",
                                       kernel::LastError());
    return value;
}

void CWinThreadLocalImpl::SetValue(void* value) {
    if (m_index == kernel::TlsOutOfIndexes)
        throw CWinSystemErrorException(kUnit, __LINE__, "Failed to set the value of the TLS slot.",
                                       EINVAL);
    if (!kernel::TlsSet(m_index, value))
        throw CWinSystemErrorException(kUnit, __LINE__, "Failed to set the value of the TLS slot.",
                                       kernel::LastError());
}

} // namespace win
} // namespace base
} // namespace lumo
