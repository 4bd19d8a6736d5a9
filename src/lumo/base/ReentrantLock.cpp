// CReentrantLock over the operating-system critical section, reporting its failures
// under the "lumo/base/ReentrantLockImplWin" source.
#include <lumo/base/ReentrantLock.h>

#include <lumo/base/Exception.h>

#include "os/SystemCriticalSection.h"

namespace lumo {
namespace base {

CReentrantLock::CReentrantLock()
    : m_impl(detail::NewCriticalSection(0, "lumo/base/ReentrantLockImplWin", __LINE__)) {
    if (m_impl == nullptr)
        throw CSynchronizationException("lumo/base/ReentrantLockImplWin", __LINE__,
                                        "Failed to create critical section.", nullptr);
}

CReentrantLock::~CReentrantLock() {
    detail::DeleteCriticalSection(m_impl);
}

void CReentrantLock::Acquire() {
    detail::EnterCriticalSection(m_impl);
}

bool CReentrantLock::TryAcquire(unsigned long /*timeout*/) {
    return detail::TryEnterCriticalSection(m_impl);
}

void CReentrantLock::Release() {
    detail::LeaveCriticalSection(m_impl);
}

} // namespace base
} // namespace lumo
