// CSimpleLockManager: the nesting count and the managed handle variable, pointing at its
// own null member when no variable is managed.
#include <lumo/base/SimpleLockManager.h>

namespace lumo {
namespace base {

CSimpleLockManager::CSimpleLockManager() : m_handle(&m_noHandle), m_count(0), m_noHandle(nullptr) {}

CSimpleLockManager::CSimpleLockManager(Vela::BMHandle& handle)
    : m_handle(&handle), m_count(0), m_noHandle(nullptr) {}

CSimpleLockManager::CSimpleLockManager(CSimpleLockManager const& other)
    : CBase(), m_handle(other.ManagesOwnHandle() ? &m_noHandle : other.m_handle),
      m_count(other.m_count), m_noHandle(nullptr) {}

CSimpleLockManager& CSimpleLockManager::operator=(CSimpleLockManager const& other) {
    if (this != &other) {
        m_handle = other.ManagesOwnHandle() ? &m_noHandle : other.m_handle;
        m_count = other.m_count;
    }
    return *this;
}

CSimpleLockManager::~CSimpleLockManager() {}

unsigned long CSimpleLockManager::Lock() const {
    return ++m_count;
}

unsigned long CSimpleLockManager::Unlock() const {
    if (m_count != 0)
        --m_count;
    return m_count;
}

void CSimpleLockManager::SetManagedHandle(Vela::BMHandle& handle) {
    if (&handle == m_handle)
        return;
    m_handle = &handle;
    m_count = 0;
}

Vela::BMHandle CSimpleLockManager::DetachManagedHandle() {
    Vela::BMHandle handle = *m_handle;
    m_handle = &m_noHandle;
    m_count = 0;
    return handle;
}

} // namespace base
} // namespace lumo
