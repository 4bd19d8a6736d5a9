// CLock: creates, enters, tries and leaves its operating-system critical section through
// the os/SystemCriticalSection interface.
#include <lumo/base/Lock.h>

#include <lumo/base/Exception.h>

#include "os/SystemCriticalSection.h"

namespace lumo {
namespace base {

CLock::CLock() : m_impl(detail::NewCriticalSection(0, "lumo/base/LockImplWin", __LINE__)) {
    if (m_impl == nullptr)
        throw CSynchronizationException("lumo/base/LockImplWin", __LINE__,
                                        "Failed to create critical section.", nullptr);
}

CLock::~CLock() {
    detail::DeleteCriticalSection(m_impl);
}

void CLock::Acquire() {
    detail::EnterCriticalSection(m_impl);
}

bool CLock::TryAcquire(unsigned long /*timeout*/) {
    return detail::TryEnterCriticalSection(m_impl);
}

void CLock::Release() {
    detail::LeaveCriticalSection(m_impl);
}

} // namespace base
} // namespace lumo
