// win::CWinThreadImpl: the operating-system thread behind a CThread, a kernel thread
// object (a pthread here) that is signalled when the thread ends.
#ifndef LUMO_BASE_WIN_WINTHREADIMPL_H
#define LUMO_BASE_WIN_WINTHREADIMPL_H

#include <lumo/base/Thread.h>

namespace lumo {
namespace base {
namespace win {

/// The operating-system thread behind a CThread: a kernel thread object that is
/// signalled when the thread ends (on POSIX a pthread in the library's kernel-object
/// emulation, joined when a wait sees it ended). See CThread for the behaviour and
/// the exceptions. Start must happen before the other calls are made from other
/// threads.
class LUMO_API CWinThreadImpl : public CThreadImpl {
public:
    CWinThreadImpl();
    /// Closes the handle; a thread still running goes on (and is reclaimed when it
    /// ends).
    ~CWinThreadImpl() override;

    long GetPriority() override;
    void SetPriority(long priority) override;
    bool IsAlive() override;
    void Start(CThread* thread) override;
    bool Join(unsigned long timeout) override;
    void Join() override;
    void Destroy() override;
    void Exit(unsigned long code) override;

    /// The number the system gave the thread at its start (0 before).
    unsigned long GetThreadId() const { return m_threadId; }

    CWinThreadImpl(CWinThreadImpl const&) = delete;
    CWinThreadImpl& operator=(CWinThreadImpl const&) = delete;

private:
    void CheckStarted() const;

    unsigned long m_threadId;
    void* m_handle;
    long m_priority;
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
