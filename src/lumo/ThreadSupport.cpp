#include "ThreadSupport.h"

#include "base/ThreadSlot.h"

namespace lumo {
namespace detail {

namespace {
base::CThreadLocal* g_currentThreadSlot = nullptr;
} // namespace

void StartThreadSupport() {
    g_currentThreadSlot = new ("lumo/ThreadSupport", __LINE__) base::CThreadLocal;
    g_currentThreadSlot->Set(nullptr);
}

void StopThreadSupport() {
    // The slot's index is released with it.
    delete g_currentThreadSlot;
    g_currentThreadSlot = nullptr;
}

base::CThreadLocal* GetCurrentThreadSlot() {
    return g_currentThreadSlot;
}

} // namespace detail
} // namespace lumo
