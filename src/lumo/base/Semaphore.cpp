// CSemaphore: forwards every operation to its implementation, an anonymous
// CWinSemaphoreImpl or a CWinNamedSemaphoreImpl shared by name.
#include <lumo/base/Semaphore.h>

#include <lumo/base/win/WinNamedSemaphoreImpl.h>
#include <lumo/base/win/WinSemaphoreImpl.h>

namespace lumo {
namespace base {

CSemaphoreImpl::~CSemaphoreImpl() {}

CSemaphore::CSemaphore(unsigned long initialCount, unsigned long maximumCount)
    : m_impl(new ("lumo/base/Semaphore", __LINE__)
                 win::CWinSemaphoreImpl(initialCount, maximumCount)) {}

CSemaphore::CSemaphore(char const* name, unsigned long initialCount)
    : m_impl(new ("lumo/base/Semaphore", __LINE__)
                 win::CWinNamedSemaphoreImpl(name, initialCount)) {}

CSemaphore::~CSemaphore() {
    delete m_impl;
}

bool CSemaphore::IsNamed() const {
    return m_impl->IsNamed();
}

bool CSemaphore::IsShared() const {
    return m_impl->IsShared();
}

void CSemaphore::Acquire() {
    m_impl->Acquire();
}

bool CSemaphore::TryAcquire(unsigned long timeout) {
    return m_impl->TryAcquire(timeout);
}

void CSemaphore::Release() {
    m_impl->Release();
}

} // namespace base
} // namespace lumo
