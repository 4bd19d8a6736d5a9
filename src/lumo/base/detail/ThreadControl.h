// Internal: what a running thread shares with its CThread. The thread's start-up and
// epilogue reach the object only through here, under a lock that the object's
// destructor also takes, so they never touch a CThread that its owner destroyed.
#ifndef LUMO_BASE_DETAIL_THREADCONTROL_H
#define LUMO_BASE_DETAIL_THREADCONTROL_H

#include <atomic>
#include <mutex>

namespace lumo {
namespace base {
class CThread;
} // namespace base

namespace detail {

class ThreadControl {
public:
    explicit ThreadControl(base::CThread* owner) : m_owner(owner) {}
    ThreadControl(ThreadControl const&) = delete;
    ThreadControl& operator=(ThreadControl const&) = delete;

    /// The CThread while it lives, null once its destructor ran.
    base::CThread* Owner() {
        std::lock_guard<std::mutex> hold(m_lock);
        return m_owner;
    }
    /// Called by the CThread's destructor.
    void Detach() {
        std::lock_guard<std::mutex> hold(m_lock);
        m_owner = nullptr;
    }
    /// The owner when it lives and asked to be deleted at its end (it is detached
    /// then, so only the caller deletes it); null otherwise.
    template <class AutoDeleted> base::CThread* TakeIfAutoDeleted(AutoDeleted isAutoDeleted) {
        std::lock_guard<std::mutex> hold(m_lock);
        base::CThread* const owner = m_owner;
        if (owner == nullptr || !isAutoDeleted(owner))
            return nullptr;
        m_owner = nullptr;
        return owner;
    }

    void Hold() { m_holders.fetch_add(1, std::memory_order_relaxed); }
    void Release() {
        if (m_holders.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

private:
    ~ThreadControl() = default;

    std::mutex m_lock;
    base::CThread* m_owner;
    std::atomic<int> m_holders{1}; // the CThread, and the running thread
};

} // namespace detail
} // namespace lumo

#endif
