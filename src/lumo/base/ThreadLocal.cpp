// CThreadLocal: allocates its CWinThreadLocalImpl slot when made and frees it when
// destroyed; Get and Set go straight to the slot.
#include <lumo/base/ThreadLocal.h>

#include <lumo/base/win/WinThreadLocalImpl.h>

namespace lumo {
namespace base {

CThreadLocalImpl::~CThreadLocalImpl() {}

CThreadLocal::CThreadLocal()
    : m_impl(new ("lumo/base/ThreadLocal", __LINE__) win::CWinThreadLocalImpl) {
    try {
        m_impl->Allocate();
    } catch (...) {
        delete m_impl;
        throw;
    }
}

CThreadLocal::~CThreadLocal() {
    delete m_impl;
}

void* CThreadLocal::Get() const {
    return m_impl->GetValue();
}

void CThreadLocal::Set(void* value) {
    m_impl->SetValue(value);
}

} // namespace base
} // namespace lumo
