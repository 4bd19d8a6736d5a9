#include <lumo/base/win/WinThreadImpl.h>

#include <lumo/base/Exception.h>
#include <lumo/base/win/WinSystemErrorException.h>

#include "../ThreadSlot.h"
#include "../os/KernelObject.h"

namespace lumo {
namespace base {
namespace win {

namespace {

char const kUnit[] = "lumo/base/win/WinThreadImpl";

// Clears the current-thread slot and deletes an auto-deleted thread object, after the
// body returns and when Exit unwinds the thread alike.
struct EntryEnd {
    CThread* thread;
    CThreadLocal* slot;
    ~EntryEnd() {
        if (thread->IsAutoDeleted())
            delete thread;
        if (slot != nullptr) {
            try {
                slot->Set(nullptr);
            } catch (...) {
            }
        }
    }
};

unsigned int Entry(void* argument) {
    auto* thread = static_cast<CThread*>(argument);
    if (thread == nullptr)
        return 0;
    CThreadLocal* slot = lumo::detail::GetCurrentThreadSlot();
    if (slot != nullptr) {
        try {
            slot->Set(thread);
        } catch (...) {
            slot = nullptr; // GetCurrentThread answers null on this thread
        }
    }
    EntryEnd end{thread, slot};
    thread->Run();
    return 0;
}

} // namespace

CWinThreadImpl::CWinThreadImpl() : m_threadId(0), m_handle(nullptr), m_priority(0) {}

CWinThreadImpl::~CWinThreadImpl() {
    if (m_handle != nullptr)
        kernel::CloseObject(m_handle);
}

void CWinThreadImpl::CheckStarted() const {
    if (m_handle == nullptr)
        throw CIllegalStateException(kUnit, __LINE__, "Thread hasn't been started yet.", nullptr);
}

long CWinThreadImpl::GetPriority() {
    if (m_handle == nullptr)
        return m_priority;
    long level = 0;
    if (!kernel::GetThreadPriorityLevel(m_handle, &level))
        return CThread::Priority_Error_Return;
    return level;
}

void CWinThreadImpl::SetPriority(long priority) {
    m_priority = priority;
    if (m_handle != nullptr && !kernel::SetThreadPriorityLevel(m_handle, priority))
        throw CWinSystemErrorException(kUnit, __LINE__, "Failed to set the priority of the thread.",
                                       kernel::LastError());
}

bool CWinThreadImpl::IsAlive() {
    return m_handle != nullptr && kernel::WaitForOne(m_handle, 0) == kernel::WaitTimeout;
}

void CWinThreadImpl::Start(CThread* thread) {
    if (thread == nullptr)
        return;
    if (m_handle != nullptr)
        throw CIllegalStateException(kUnit, __LINE__, "Thread has already been started.", nullptr);
    // The thread may end, and delete its object (and so this), before NewThread
    // returns; what is needed afterwards is kept in locals. A priority to apply holds
    // the thread back until it is applied.
    long const priority = m_priority;
    bool const suspended = priority != 0;
    kernel::Handle handle = kernel::NewThread(&Entry, thread, suspended, &m_handle, &m_threadId);
    if (handle == nullptr)
        throw CWinSystemErrorException(kUnit, __LINE__, "Failed to create and start the thread.",
                                       kernel::LastError());
    if (suspended) {
        bool const applied = kernel::SetThreadPriorityLevel(handle, priority);
        unsigned long const error = kernel::LastError();
        kernel::ResumeThreadObject(handle);
        if (!applied)
            throw CWinSystemErrorException(
                kUnit, __LINE__, "Failed to set the initial priority of the thread.", error);
    }
}

bool CWinThreadImpl::Join(unsigned long timeout) {
    CheckStarted();
    unsigned long const result = kernel::WaitForOne(m_handle, timeout);
    if (result == kernel::WaitObject0 || result == kernel::WaitAbandoned0)
        return true;
    if (result == kernel::WaitTimeout)
        return false;
    throw CWinSystemErrorException(kUnit, __LINE__, "Failed to join the thread.",
                                   kernel::LastError());
}

void CWinThreadImpl::Join() {
    CheckStarted();
    unsigned long const result = kernel::WaitForOne(m_handle, kernel::Infinite);
    if (result != kernel::WaitObject0 && result != kernel::WaitAbandoned0)
        throw CWinSystemErrorException(kUnit, __LINE__, "Failed to join the thread.",
                                       kernel::LastError());
}

void CWinThreadImpl::Destroy() {
    CheckStarted();
    if (!kernel::TerminateThreadObject(m_handle, 0))
        throw CWinSystemErrorException(kUnit, __LINE__, "Failed to destroy the thread.",
                                       kernel::LastError());
}

void CWinThreadImpl::Exit(unsigned long code) {
    kernel::ExitCurrentThread(code);
}

} // namespace win
} // namespace base
} // namespace lumo
