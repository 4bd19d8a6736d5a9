// CLazyLock: the creation step with its inverted test, kept as defined, so Acquire and
// TryAcquire find no critical section and throw while Release does nothing.
#include <lumo/base/LazyLock.h>

#include <lumo/base/Exception.h>

#include "detail/ScopedHold.h"
#include "os/SystemCriticalSection.h"

namespace lumo {
namespace base {

CLazyLock::CLazyLock() : m_impl(nullptr) {}

CLazyLock::~CLazyLock() {
    detail::DeleteCriticalSection(m_impl);
}

void CLazyLock::Create() {
    ::lumo::detail::ScopedHold<CSpinLock> guard(m_guard);
    // The inverted test is the defined behaviour (see LazyLock.h): an implementation
    // is made only when one exists already, so none is ever made.
    if (m_impl != nullptr) {
        detail::SystemCriticalSection* made = nullptr;
        try {
            made = detail::NewCriticalSection(0, "lumo/base/LockImplWin", __LINE__);
        } catch (CMemoryException const&) {
            made = nullptr;
        }
        if (made == nullptr)
            throw CSynchronizationException("lumo/base/LazyLock", __LINE__,
                                            "Failed to create lock.", nullptr);
        detail::DeleteCriticalSection(m_impl);
        m_impl = made;
    }
}

void CLazyLock::Acquire() {
    if (m_impl == nullptr)
        Create();
    // With no implementation this throws "Failed to enter critical section.", as the
    // original's guarded EnterCriticalSection on no critical section does.
    detail::EnterCriticalSection(m_impl);
}

bool CLazyLock::TryAcquire(unsigned long /*timeout*/) {
    if (m_impl == nullptr)
        Create();
    // On the original platform TryEnterCriticalSection on no critical section faults
    // (it has no exception guard). Here it throws the same CSynchronizationException
    // as Acquire instead: no undefined behaviour.
    return detail::TryEnterCriticalSection(m_impl);
}

void CLazyLock::Release() {
    if (m_impl != nullptr)
        detail::LeaveCriticalSection(m_impl);
}

} // namespace base
} // namespace lumo
