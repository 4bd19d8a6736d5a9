// The thread implementation over the kernel-object layer's threads, with the
// entry and epilogue every thread started through CThread runs.
#include <lumo/base/win/WinThreadImpl.h>

#include <lumo/base/Exception.h>
#include <lumo/base/win/WinSystemErrorException.h>

#include <cerrno>

#include "../ThreadSlot.h"
#include "../detail/ThreadControl.h"
#include "../os/KernelObject.h"

namespace lumo {
namespace base {
namespace win {

namespace {

char const kUnit[] = "lumo/base/win/WinThreadImpl";

// The thread's epilogue, after the body returns and when Exit unwinds the thread
// alike: deletes an auto-deleted thread object (only while it lives: its owner may
// have destroyed it meanwhile), clears the current-thread slot, and lets go of what
// the thread held.
struct EntryEnd {
    lumo::detail::ThreadControl* control;
    CThreadLocal* slot;
    ~EntryEnd() {
        delete control->TakeIfAutoDeleted([](CThread* t) { return t->IsAutoDeleted(); });
        if (slot != nullptr) {
            try {
                slot->Set(nullptr);
            } catch (...) {
            }
        }
        control->Release();
        lumo::detail::ReleaseCurrentThreadSlot();
    }
};

unsigned int Entry(void* argument) {
    auto* control = static_cast<lumo::detail::ThreadControl*>(argument);
    CThreadLocal* slot = lumo::detail::GetCurrentThreadSlot();
    EntryEnd end{control, nullptr};
    CThread* const thread = control->Owner();
    if (thread == nullptr)
        return 0; // destroyed by its owner before it could run
    if (slot != nullptr) {
        try {
            slot->Set(thread);
            end.slot = slot;
        } catch (...) {
            // GetCurrentThread answers null on this thread
        }
    }
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
    // The running thread holds the object's control and the current-thread slot
    // until its epilogue is done.
    lumo::detail::ThreadControl* const control = thread->m_control;
    if (!lumo::detail::HoldCurrentThreadSlot()) // the module is unloading
        throw CWinSystemErrorException(kUnit, __LINE__, "Failed to create and start the thread.",
                                       ECANCELED);
    control->Hold();
    kernel::Handle handle = kernel::NewThread(&Entry, control, suspended, &m_handle, &m_threadId);
    if (handle == nullptr) {
        unsigned long const error = kernel::LastError();
        control->Release();
        lumo::detail::ReleaseCurrentThreadSlot();
        throw CWinSystemErrorException(kUnit, __LINE__, "Failed to create and start the thread.",
                                       error);
    }
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
