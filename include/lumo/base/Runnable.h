// IRunnable, a piece of work a thread can run, and CRunnableThread, a CThread whose
// body runs a runnable it shares through a CRef.
#ifndef LUMO_BASE_RUNNABLE_H
#define LUMO_BASE_RUNNABLE_H

#include <lumo/base/Ref.h>
#include <lumo/base/Thread.h>

namespace lumo {
namespace base {

/// A piece of work that a thread can run.
class LUMO_API IRunnable : public CBase {
public:
    virtual ~IRunnable();
    /// The work; runs on the thread that calls it.
    virtual void Run() = 0;
};

/// A thread whose body is a runnable it shares through a CRef.
///
/// CRef counts are not atomic: the thread object's copy is released where the object
/// is destroyed. With auto-deletion that is the new thread, so the caller must not
/// copy or release other CRef copies of the runnable while the thread may end.
class LUMO_API CRunnableThread : public CThread {
    LUMO_DECLARE_CLASS(CRunnableThread);

public:
    /// An empty CRef throws CIllegalArgumentException "Invalid runnable.".
    explicit CRunnableThread(CRef<IRunnable> const& runnable);
    ~CRunnableThread() override;

    /// runnable->Run().
    void Run() override;
    /// The runnable the thread runs.
    CRef<IRunnable> const& GetRunnable() const { return m_runnable; }

private:
    CRef<IRunnable> m_runnable;
};

} // namespace base
} // namespace lumo

#endif
