// CThread, a thread of the library (derive, implement Run, Start, Join or auto-delete),
// and CThreadImpl, the platform's side that starts and ends threads.
#ifndef LUMO_BASE_THREAD_H
#define LUMO_BASE_THREAD_H

#include <lumo/base/Condition.h>
#include <lumo/base/Lock.h>
#include <lumo/base/Object.h>
#include <lumo/base/Ref.h>

#include <atomic>

namespace lumo {
namespace detail {
class ThreadControl;
} // namespace detail
namespace base {
namespace win {
class CWinThreadImpl;
} // namespace win

class CThread;

/// The platform's side of a CThread (lumo::base::win::CWinThreadImpl).
class LUMO_API CThreadImpl : public CBase {
public:
    virtual ~CThreadImpl();
    /// The thread's priority level; CThread::Priority_Error_Return when it cannot be read.
    virtual long GetPriority() = 0;
    /// Applies a priority level; CWinSystemErrorException when the system refuses it.
    virtual void SetPriority(long priority) = 0;
    /// True from Start until the body has returned.
    virtual bool IsAlive() = 0;
    /// Runs thread->Run() on a new thread.
    virtual void Start(CThread* thread) = 0;
    /// Waits up to `timeout` milliseconds for the thread to end; false on time-out.
    virtual bool Join(unsigned long timeout) = 0;
    /// Waits without limit for the thread to end.
    virtual void Join() = 0;
    /// Ends the thread (see CThread::Destroy for what POSIX allows).
    virtual void Destroy() = 0;
    /// Ends the calling thread.
    virtual void Exit(unsigned long code) = 0;
};

/// A thread of the library. Derive from it, put the thread's body in Run and call
/// Start; the owner then joins the thread and deletes the object, or sets
/// auto-deletion so that the object deletes itself on its own thread when Run
/// returns (it must not be touched after that).
///
/// An exception that escapes Run ends the process (std::terminate), as it would on a
/// std::thread.
///
/// Stopping is cooperative: Stop sets a flag and wakes Wait; the body checks
/// IsStopped or the result of Wait and returns.
///
/// Priorities are the Windows thread priority levels (the Priority_ constants); on
/// Linux they map onto the thread's nice value: Idle 19, Lowest 10, Below_Normal 5,
/// Normal 0, Above_Normal -5, Highest -10, Time_Critical -20 (GetPriority maps a nice
/// value back to the nearest level). Other values are refused (EINVAL). Raising a
/// thread above the nice value it started with needs the privilege to do so
/// (CAP_SYS_NICE or RLIMIT_NICE), otherwise it fails with EACCES/EPERM. A new thread
/// starts with its creator's nice value, not with Normal.
class LUMO_API CThread : public CObject {
    LUMO_DECLARE_CLASS(CThread);

public:
    /// Priority levels, the Windows thread priority values.
    ///@{
    static constexpr long Priority_Idle = -15;
    static constexpr long Priority_Lowest = -2;
    static constexpr long Priority_Below_Normal = -1;
    static constexpr long Priority_Normal = 0;
    static constexpr long Priority_Above_Normal = 1;
    static constexpr long Priority_Highest = 2;
    static constexpr long Priority_Time_Critical = 15;
    ///@}
    /// What GetPriority returns when the priority cannot be read.
    static constexpr long Priority_Error_Return = 0x7FFFFFFF;

    /// Destroying the object of a thread that still runs leaves the thread running
    /// (its body must not use the object any more).
    ~CThread() override;

    /// Runs Run on a new thread. CWinSystemErrorException "Failed to create and start
    /// the thread." when the system refuses, "Failed to set the initial priority of
    /// the thread." when a priority set before Start cannot be applied (the thread
    /// then runs with the priority it got); CIllegalStateException "Thread has already
    /// been started." for a second Start.
    virtual void Start();
    /// The thread's body.
    virtual void Run() = 0;
    /// Waits up to timeout milliseconds for the thread to end; false on time-out.
    /// CIllegalStateException "Thread hasn't been started yet." before Start;
    /// CWinSystemErrorException "Failed to join the thread." when the wait fails
    /// (EDEADLK for a thread joining itself without time limit).
    ///@{
    virtual bool Join(unsigned long timeout);
    virtual void Join();
    ///@}
    /// Sets the stop flag and wakes Wait; returns at once.
    virtual void Stop();
    /// Ends the thread. A thread that has ended is destroyed without complaint. POSIX
    /// offers no safe way to end a thread running C++ code from outside
    /// (pthread_cancel skips or breaks destructors and leaves locks held), so on POSIX
    /// Destroy of a running thread calls Stop and then throws CWinSystemErrorException
    /// "Failed to destroy the thread." with ENOTSUP: the body must finish by itself.
    /// CIllegalStateException "Thread hasn't been started yet." before Start.
    virtual void Destroy();

    /// The thread's priority level once started, before that the one stored for the
    /// start (0 unless set). Priority_Error_Return when it cannot be read.
    long GetPriority() const;
    /// Stores the level and applies it when the thread runs; CWinSystemErrorException
    /// "Failed to set the priority of the thread." when that fails (the level stays
    /// stored).
    void SetPriority(long priority);
    /// True from Start until the body has returned.
    bool IsAlive() const;

    /// Whether the object deletes itself when Run returns.
    bool IsAutoDeleted() const { return m_autoDeleted.load(std::memory_order_acquire); }
    /// Sets auto-deletion; set it before Start, since the object must not be touched once a
    /// deleting thread may have ended.
    void SetAutoDeleted(bool autoDeleted) {
        m_autoDeleted.store(autoDeleted, std::memory_order_release);
    }

    /// Equal when they share their implementation, that is: the same thread object.
    bool operator==(CThread const& other) const { return m_impl == other.m_impl; }
    /// True when they are different thread objects.
    bool operator!=(CThread const& other) const { return m_impl != other.m_impl; }

    /// The CThread whose body runs on the calling thread; null on a thread not started
    /// through CThread, or when thread support is not running.
    static CThread* GetCurrentThread();

    /// Not copyable: the object is the thread.
    ///@{
    CThread(CThread const&) = delete;
    CThread& operator=(CThread const&) = delete;
    ///@}

protected:
    /// No operating-system thread yet. CMemoryException, or the lock's and the
    /// condition's creation failures.
    CThread();

    /// Whether Stop has been called (from any thread).
    bool IsStopped() const;
    /// Sleeps up to timeout milliseconds unless stopped: true when Stop has been
    /// called (at once when it had been called before), false on time-out.
    bool Wait(unsigned long timeout);
    /// Ends the calling thread at once with the exit code. On POSIX the stack is
    /// unwound (destructors run, as for pthread_exit), so a catch (...) that does not
    /// rethrow must not lie between here and Run; an auto-deleted object is still
    /// deleted.
    void Exit(unsigned long code);

private:
    CRef<CThreadImpl> m_implRef;
    CThreadImpl* m_impl;
    mutable CLock m_lock;
    CCondition m_condition;
    bool m_stopped;
    std::atomic<bool> m_autoDeleted;
    /// Shared with the running thread, which reaches this object only through it.
    ::lumo::detail::ThreadControl* m_control;

    friend class win::CWinThreadImpl;
};

} // namespace base
} // namespace lumo

#endif
