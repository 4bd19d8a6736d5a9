// CSpinLock: a lock of one interlocked word that yields its time slice between attempts,
// for very short critical sections.
#ifndef LUMO_BASE_SPINLOCK_H
#define LUMO_BASE_SPINLOCK_H

#include <lumo/base/Lockable.h>

#include <atomic>
#include <cstdint>

namespace lumo {
namespace base {

/// A lock of one interlocked 32-bit word: 0 when free, 1 when held. A waiting thread
/// yields its time slice after every failed attempt, so it suits very short critical
/// sections only. Not reentrant.
///
/// Release is an interlocked decrement, not a store of 0: releasing a spin lock that
/// is not held drives the word to -1, after which no acquisition can succeed. Pair
/// every Release with a successful acquisition.
class LUMO_API CSpinLock : public ILockable {
public:
    CSpinLock() : m_state(0) {}
    ~CSpinLock() override;

    /// Compare-exchange 0 -> 1 until it succeeds, yielding between attempts.
    void Acquire() override;
    /// One compare-exchange 0 -> 1; true when the word was 0. The timeout is ignored.
    bool TryAcquire(unsigned long timeout) override;
    /// Interlocked decrement of the word.
    void Release() override;

    /// The word's current value (0 free, 1 held, negative after unpaired releases).
    std::int32_t GetState() const { return m_state.load(std::memory_order_acquire); }

    CSpinLock(CSpinLock const&) = delete;
    CSpinLock& operator=(CSpinLock const&) = delete;

private:
    std::atomic<std::int32_t> m_state;
};

} // namespace base
} // namespace lumo

#endif
