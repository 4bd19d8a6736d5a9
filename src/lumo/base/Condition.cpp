// The condition's counting algorithm over two semaphores: waiters sleep on the
// queue; the gate (count 0 or 1) keeps new waiters out while the signals of a
// notification are being consumed. The counters are atomics so that the gate-guarded
// step of a waiter and the notifier's look at them are not data races; the
// algorithm's own ordering comes from the gate and the internal lock.
#include <lumo/base/Condition.h>

#include <lumo/base/Exception.h>
#include <lumo/base/ReentrantLock.h>

#include "os/SystemCriticalSection.h"

#include "detail/ScopedHold.h"
#include <atomic>
#include <chrono>
#include <cstdint>

namespace lumo {
namespace base {
namespace detail {

namespace {

unsigned long const kInfinite = 0xFFFFFFFFul;

char const kUnit[] = "lumo/base/ConditionImplWin";

std::atomic<std::uint32_t> g_goneLimit{0x3FFFFFFF};

[[noreturn]] void Fail(int line, char const* description) {
    throw CSynchronizationException(kUnit, static_cast<unsigned long>(line), description, nullptr);
}

// A counting semaphore on one word: taking and giving are single atomic steps, and
// only a thread that must sleep, or wake a sleeper, enters the kernel.
class CWordSemaphore {
public:
    CWordSemaphore(std::uint32_t initial, std::uint32_t maximum)
        : m_count(initial), m_maximum(maximum) {}

    // False on time-out (milliseconds; kInfinite: none).
    bool Take(unsigned long timeout) {
        if (TryTake())
            return true;
        if (timeout == 0)
            return false;
        auto const start = std::chrono::steady_clock::now();
        if (Spin(start))
            return true;
        m_sleepers.fetch_add(1);
        bool taken = false;
        for (;;) {
            if (TryTake()) {
                taken = true;
                break;
            }
            unsigned long left = kInfinite;
            if (timeout != kInfinite) {
                auto const spent = std::chrono::duration_cast<std::chrono::milliseconds>(
                                       std::chrono::steady_clock::now() - start)
                                       .count();
                if (spent >= static_cast<long long>(timeout))
                    break;
                left = timeout - static_cast<unsigned long>(spent);
            }
            WaitOnWord(m_count, 0, left);
        }
        m_sleepers.fetch_sub(1);
        return taken;
    }

    // False, with nothing given, when the count would pass the maximum.
    bool Give(std::uint32_t n) {
        std::uint32_t c = m_count.load();
        do {
            if (n > m_maximum - c)
                return false;
        } while (!m_count.compare_exchange_weak(c, c + n));
        if (m_sleepers.load() != 0)
            WakeWord(m_count, n);
        return true;
    }

private:
    // Spins up to kSpinLimit for a give, while spinning has paid off lately. A notifier
    // that waits next meets the gate it closed itself, which opens only once the woken
    // waiter has run; sleeping there would cost that waiter a sleep on the user's lock
    // (still held by the notifier) and both of them a wake-up. (A spin of a hundred
    // pauses was too short to outlast a wake-up, and failed every time.) Whether to try
    // at all is CAdaptiveSpin's call.
    bool Spin(std::chrono::steady_clock::time_point start) {
        if (!m_adaptive.Worthwhile())
            return false;
        auto const end = start + kSpinLimit;
        for (;;) {
            for (int i = 0; i < 16; ++i) {
                CpuRelax();
                if (m_count.load(std::memory_order_relaxed) != 0 && TryTake()) {
                    m_adaptive.Paid();
                    return true;
                }
            }
            if (std::chrono::steady_clock::now() >= end) {
                m_adaptive.Failed();
                return false;
            }
        }
    }

    bool TryTake() {
        std::uint32_t c = m_count.load(std::memory_order_relaxed);
        while (c != 0)
            if (m_count.compare_exchange_weak(c, c - 1, std::memory_order_acquire,
                                              std::memory_order_relaxed))
                return true;
        return false;
    }

    std::atomic<std::uint32_t> m_count;
    std::atomic<std::uint32_t> m_sleepers{0};
    std::uint32_t const m_maximum;
    static constexpr std::chrono::microseconds kSpinLimit{10};
    CAdaptiveSpin m_adaptive;
};

} // namespace

class CConditionImpl : public CBase {
public:
    CConditionImpl(ILockable_* lock_, ILockable* lock)
        : m_queue(0, 0x7FFFFFFF), m_gate(1, 1), m_userLock_(lock_), m_userLock(lock) {}

    bool Wait(unsigned long timeout) {
        AcquireGate(__LINE__);
        m_blocked.fetch_add(1, std::memory_order_relaxed);
        ReleaseGate(__LINE__);
        ReleaseUserLock();
        bool const woken = m_queue.Take(timeout);
        Leave();
        return woken;
    }

    void Notify(bool all) {
        std::uint32_t signals = 0;
        {
            ::lumo::detail::ScopedHold<CReentrantLock> hold(m_internal);
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
        if (signals > 0 && !m_queue.Give(signals))
            Fail(__LINE__, "Failed to release the underlying queue semaphore.");
    }

    static CConditionImpl* Of(CCondition const& condition) { return condition.m_impl; }

    CConditionCounters Counters() {
        ::lumo::detail::ScopedHold<CReentrantLock> hold(m_internal);
        return CConditionCounters{m_blocked.load(std::memory_order_relaxed),
                                  m_gone.load(std::memory_order_relaxed),
                                  m_waiting.load(std::memory_order_relaxed)};
    }

private:
    void AcquireGate(int line) {
        if (!m_gate.Take(kInfinite))
            Fail(line, "Failed to acquire the underlying gate semaphore.");
    }

    void ReleaseGate(int line) {
        if (!m_gate.Give(1))
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
            ::lumo::detail::ScopedHold<CReentrantLock> hold(m_internal);
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
    CWordSemaphore m_queue;
    CWordSemaphore m_gate;
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
    m_impl->Wait(detail::kInfinite);
}

void CCondition::Notify() {
    m_impl->Notify(false);
}

void CCondition::NotifyAll() {
    m_impl->Notify(true);
}

} // namespace base
} // namespace lumo
