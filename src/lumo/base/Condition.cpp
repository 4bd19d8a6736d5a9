// The condition's counting algorithm over two semaphores: waiters sleep on the
// queue; the gate (count 0 or 1) keeps new waiters out while the signals of a
// notification are being consumed. The counters are atomics so that the gate-guarded
// step of a waiter and the notifier's look at them are not data races; the
// algorithm's own ordering comes from the gate and the internal lock.
#include <lumo/base/Condition.h>

#include <lumo/base/Exception.h>
#include <lumo/base/ReentrantLock.h>

#include "os/KernelObject.h"

#include <atomic>
#include <cstdint>

namespace lumo {
namespace base {
namespace detail {

namespace kernel = win::kernel;

namespace {

char const kUnit[] = "lumo/base/ConditionImplWin";

std::atomic<std::uint32_t> g_goneLimit{0x3FFFFFFF};

[[noreturn]] void Fail(int line, char const* description) {
    throw CSynchronizationException(kUnit, static_cast<unsigned long>(line), description, nullptr);
}

// Holds the internal lock for a scope.
class CHold {
public:
    explicit CHold(CReentrantLock& lock) : m_lock(lock) { m_lock.Acquire(); }
    ~CHold() { m_lock.Release(); }
    CHold(CHold const&) = delete;
    CHold& operator=(CHold const&) = delete;

private:
    CReentrantLock& m_lock;
};

} // namespace

class CConditionImpl : public CBase {
public:
    CConditionImpl(ILockable_* lock_, ILockable* lock)
        : m_queue(nullptr), m_gate(nullptr), m_userLock_(lock_), m_userLock(lock) {
        m_queue = kernel::NewSemaphore(nullptr, 0, kernel::MaximumSemaphoreCount);
        if (m_queue == nullptr)
            throw CMemoryException(kUnit, __LINE__);
        m_gate = kernel::NewSemaphore(nullptr, 1, 1);
        if (m_gate == nullptr) {
            kernel::CloseObject(m_queue);
            throw CMemoryException(kUnit, __LINE__);
        }
    }

    ~CConditionImpl() {
        kernel::CloseObject(m_gate);
        kernel::CloseObject(m_queue);
    }

    bool Wait(unsigned long timeout) {
        AcquireGate(__LINE__);
        m_blocked.fetch_add(1, std::memory_order_relaxed);
        ReleaseGate(__LINE__);
        ReleaseUserLock();
        unsigned long const result = kernel::WaitForOne(m_queue, timeout);
        Leave();
        if (result == kernel::WaitTimeout)
            return false;
        if (result != kernel::WaitObject0 && result != kernel::WaitAbandoned0)
            Fail(__LINE__, "Failed to acquire the underlying queue semaphore.");
        return true;
    }

    void Notify(bool all) {
        std::uint32_t signals = 0;
        {
            CHold hold(m_internal);
            std::uint32_t const waiting = m_waiting.load(std::memory_order_relaxed);
            std::uint32_t blocked = m_blocked.load(std::memory_order_relaxed);
            if (waiting > 0) {
                // A notification is being consumed; the gate is closed, so `blocked`
                // cannot change under us.
                if (blocked > 0) {
                    signals = all ? blocked : 1;
                    m_waiting.store(waiting + signals, std::memory_order_relaxed);
                    m_blocked.store(blocked - signals, std::memory_order_relaxed);
                }
            } else if (blocked > m_gone.load(std::memory_order_relaxed)) {
                AcquireGate(__LINE__);
                blocked = m_blocked.load(std::memory_order_relaxed);
                std::uint32_t const gone = m_gone.load(std::memory_order_relaxed);
                if (gone > 0) {
                    blocked -= gone;
                    m_gone.store(0, std::memory_order_relaxed);
                }
                signals = all ? blocked : 1;
                m_blocked.store(blocked - signals, std::memory_order_relaxed);
                m_waiting.store(signals, std::memory_order_relaxed);
            }
        }
        if (signals > 0 &&
            !kernel::ReleaseSemaphoreObject(m_queue, static_cast<long>(signals), nullptr))
            Fail(__LINE__, "Failed to release the underlying queue semaphore.");
    }

    static CConditionImpl* Of(CCondition const& condition) { return condition.m_impl; }

    CConditionCounters Counters() {
        CHold hold(m_internal);
        return CConditionCounters{m_blocked.load(std::memory_order_relaxed),
                                  m_gone.load(std::memory_order_relaxed),
                                  m_waiting.load(std::memory_order_relaxed)};
    }

private:
    void AcquireGate(int line) {
        if (kernel::WaitForOne(m_gate, kernel::Infinite) != kernel::WaitObject0)
            Fail(line, "Failed to acquire the underlying gate semaphore.");
    }

    void ReleaseGate(int line) {
        if (!kernel::ReleaseSemaphoreObject(m_gate, 1, nullptr))
            Fail(line, "Failed to release the underlying gate semaphore.");
    }

    void ReleaseUserLock() {
        if (m_userLock_ != nullptr)
            m_userLock_->Release();
        else
            m_userLock->Release();
    }

    void AcquireUserLock() {
        if (m_userLock_ != nullptr)
            m_userLock_->Acquire();
        else
            m_userLock->Acquire();
    }

    void Leave() {
        std::uint32_t w;
        {
            CHold hold(m_internal);
            w = m_waiting.load(std::memory_order_relaxed);
            if (w == 0) {
                // Not counted as signalled: this waiter timed out.
                std::uint32_t const gone = m_gone.load(std::memory_order_relaxed) + 1;
                m_gone.store(gone, std::memory_order_relaxed);
                if (gone == g_goneLimit.load(std::memory_order_relaxed)) {
                    AcquireGate(__LINE__);
                    m_blocked.fetch_sub(gone, std::memory_order_relaxed);
                    ReleaseGate(__LINE__);
                    m_gone.store(0, std::memory_order_relaxed);
                }
            } else {
                m_waiting.store(w - 1, std::memory_order_relaxed);
            }
        }
        // The last signalled waiter of a notification reopens the gate.
        if (w == 1)
            ReleaseGate(__LINE__);
        AcquireUserLock();
    }

    std::atomic<std::uint32_t> m_blocked{0};
    std::atomic<std::uint32_t> m_gone{0};
    std::atomic<std::uint32_t> m_waiting{0};
    kernel::Handle m_queue;
    kernel::Handle m_gate;
    CReentrantLock m_internal;
    ILockable_* m_userLock_;
    ILockable* m_userLock;
};

CConditionCounters GetConditionCounters(CCondition const& condition) {
    return CConditionImpl::Of(condition)->Counters();
}

unsigned long SetConditionGoneLimit(unsigned long limit) {
    if (limit == 0 || limit > 0xFFFFFFFFul)
        return g_goneLimit.load();
    return g_goneLimit.exchange(static_cast<std::uint32_t>(limit));
}

} // namespace detail

CCondition::CCondition(ILockable_& lock)
    : m_impl(new ("lumo/base/Condition", __LINE__) detail::CConditionImpl(&lock, nullptr)) {}

CCondition::CCondition(ILockable& lock)
    : m_impl(new ("lumo/base/Condition", __LINE__) detail::CConditionImpl(nullptr, &lock)) {}

CCondition::~CCondition() {
    delete m_impl;
}

bool CCondition::Wait(unsigned long timeout) {
    return m_impl->Wait(timeout);
}

void CCondition::Wait() {
    m_impl->Wait(win::kernel::Infinite);
}

void CCondition::Notify() {
    m_impl->Notify(false);
}

void CCondition::NotifyAll() {
    m_impl->Notify(true);
}

} // namespace base
} // namespace lumo
