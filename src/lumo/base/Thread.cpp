// CThread over its CWinThreadImpl: start, join, stop, priority, the stop-aware Wait, and
// the shared control block that lets the object die while its thread still runs.
#include <lumo/base/Thread.h>

#include <lumo/base/Exception.h>
#include <lumo/base/win/WinThreadImpl.h>

#include "ThreadSlot.h"
#include "detail/ThreadControl.h"

#include <new>

namespace lumo {
namespace base {

LUMO_DEFINE_CLASS(CThread, "lumo::base::CThread", "lumo::base::CObject");

CThreadImpl::~CThreadImpl() {}

CThread::CThread()
    : m_implRef(new ("lumo/base/Thread", __LINE__) win::CWinThreadImpl), m_impl(m_implRef.Get()),
      m_condition(m_lock), m_stopped(false), m_autoDeleted(false),
      m_control(new (std::nothrow)::lumo::detail::ThreadControl(this)) {
    if (m_control == nullptr)
        throw CMemoryException("lumo/base/Thread", __LINE__);
}

CThread::~CThread() {
    // A thread still running (or its epilogue) must no longer reach this object.
    m_control->Detach();
    m_control->Release();
}

void CThread::Start() {
    m_impl->Start(this);
}

bool CThread::Join(unsigned long timeout) {
    return m_impl->Join(timeout);
}

void CThread::Join() {
    m_impl->Join();
}

void CThread::Stop() {
    m_lock.Acquire();
    m_stopped = true;
    try {
        m_condition.NotifyAll();
    } catch (...) {
        m_lock.Release();
        throw;
    }
    m_lock.Release();
}

void CThread::Destroy() {
    if (m_impl->IsAlive())
        Stop(); // the only end a running thread can be asked for on POSIX
    m_impl->Destroy();
}

long CThread::GetPriority() const {
    return m_impl->GetPriority();
}

void CThread::SetPriority(long priority) {
    m_impl->SetPriority(priority);
}

bool CThread::IsAlive() const {
    return m_impl->IsAlive();
}

CThread* CThread::GetCurrentThread() {
    CThreadLocal* slot = lumo::detail::GetCurrentThreadSlot();
    if (slot == nullptr)
        return nullptr;
    try {
        return static_cast<CThread*>(slot->Get());
    } catch (...) {
        return nullptr;
    }
}

bool CThread::IsStopped() const {
    m_lock.Acquire();
    bool const stopped = m_stopped;
    m_lock.Release();
    return stopped;
}

bool CThread::Wait(unsigned long timeout) {
    m_lock.Acquire();
    bool signalled = m_stopped;
    try {
        // A Stop that came before the wait is not lost: the flag answers for it.
        if (!signalled)
            signalled = m_condition.Wait(timeout) || m_stopped;
    } catch (...) {
        m_lock.Release();
        throw;
    }
    m_lock.Release();
    return signalled;
}

void CThread::Exit(unsigned long code) {
    m_impl->Exit(code);
}

} // namespace base
} // namespace lumo
