// IRunnable's destructor and CRunnableThread, whose Run calls the runnable it holds
// through a CRef (an empty one is refused at construction).
#include <lumo/base/Runnable.h>

#include <lumo/base/Exception.h>

namespace lumo {
namespace base {

LUMO_DEFINE_CLASS(CRunnableThread, "lumo::base::CRunnableThread", "lumo::base::CThread");

IRunnable::~IRunnable() {}

CRunnableThread::CRunnableThread(CRef<IRunnable> const& runnable) : m_runnable(runnable) {
    if (m_runnable.IsNull())
        throw CIllegalArgumentException("lumo/base/Runnable", __LINE__, "Invalid runnable.");
}

CRunnableThread::~CRunnableThread() {}

void CRunnableThread::Run() {
    m_runnable->Run();
}

} // namespace base
} // namespace lumo
