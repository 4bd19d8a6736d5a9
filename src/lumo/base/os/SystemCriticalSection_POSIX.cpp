// The critical section on POSIX: a recursive lock made of a futex word (the
// three-state lock: 0 free, 1 held, 2 held with sleepers) and an owner and count,
// so that the uncontended path is one atomic instruction each way with no call
// into the C library.
#include "SystemCriticalSection.h"

#include <lumo/base/Exception.h>

#include <linux/futex.h>
#include <sched.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace lumo {
namespace base {
namespace detail {

struct SystemCriticalSection {
    std::atomic<std::uint32_t> word{0};
    // The holder's marker (null when free): read by other threads only to learn
    // that they are not the holder.
    std::atomic<void const*> owner{nullptr};
    std::uint32_t count = 0; // recursion depth, the holder's alone
    CAdaptiveSpin spin;
};

namespace {

// A per-thread address, as cheap to get as a register read.
thread_local char t_marker __attribute__((tls_model("initial-exec")));

inline void const* Self() {
    return &t_marker;
}

void FutexWait(std::atomic<std::uint32_t>* word, std::uint32_t expected) {
    syscall(SYS_futex, reinterpret_cast<std::uint32_t*>(word), FUTEX_WAIT_PRIVATE, expected,
            nullptr, nullptr, 0);
}

void FutexWakeOne(std::atomic<std::uint32_t>* word) {
    syscall(SYS_futex, reinterpret_cast<std::uint32_t*>(word), FUTEX_WAKE_PRIVATE, 1, nullptr,
            nullptr, 0);
}

// A holder is often about to leave (a notifier on its way into Wait, say): a short
// spin, about a wake-up's length, saves both threads a trip through the kernel. When
// the holder shares this core it cannot leave meanwhile, and the spin only delays it.
LUMO_NOINLINE void LockContended(std::atomic<std::uint32_t>& word, CAdaptiveSpin& adaptive) {
    if (adaptive.Worthwhile()) {
        for (int spin = 0; spin < 200; ++spin) {
            CpuRelax();
            std::uint32_t expected = 0;
            if (word.load(std::memory_order_relaxed) == 0 &&
                word.compare_exchange_strong(expected, 1, std::memory_order_acquire,
                                             std::memory_order_relaxed)) {
                adaptive.Paid();
                return;
            }
        }
        adaptive.Failed();
    }
    std::uint32_t c = word.exchange(2, std::memory_order_acquire);
    while (c != 0) {
        FutexWait(&word, 2);
        c = word.exchange(2, std::memory_order_acquire);
    }
}

[[noreturn]] LUMO_COLD void ThrowEnterFailure() {
    throw CSynchronizationException("lumo/base/LockImplWin", __LINE__,
                                    "Failed to enter critical section.", nullptr);
}

} // namespace

SystemCriticalSection* NewCriticalSection(unsigned long /*spinCount*/, char const* file, int line) {
    void* memory = std::malloc(sizeof(SystemCriticalSection));
    if (memory == nullptr)
        throw CMemoryException(file, static_cast<unsigned long>(line));
    return new (memory) SystemCriticalSection;
}

void DeleteCriticalSection(SystemCriticalSection* cs) noexcept {
    if (cs == nullptr)
        return;
    cs->~SystemCriticalSection();
    std::free(cs);
}

void EnterCriticalSection(SystemCriticalSection* cs) {
    if (cs == nullptr)
        ThrowEnterFailure();
    void const* const self = Self();
    if (cs->owner.load(std::memory_order_relaxed) == self) {
        if (cs->count == 0xFFFFFFFFu) // the recursion count would overflow
            ThrowEnterFailure();
        ++cs->count;
        return;
    }
    std::uint32_t expected = 0;
    if (!cs->word.compare_exchange_strong(expected, 1, std::memory_order_acquire,
                                          std::memory_order_relaxed))
        LockContended(cs->word, cs->spin);
    cs->owner.store(self, std::memory_order_relaxed);
    cs->count = 1;
}

bool TryEnterCriticalSection(SystemCriticalSection* cs) {
    if (cs == nullptr)
        ThrowEnterFailure();
    void const* const self = Self();
    if (cs->owner.load(std::memory_order_relaxed) == self) {
        if (cs->count == 0xFFFFFFFFu)
            return false;
        ++cs->count;
        return true;
    }
    std::uint32_t expected = 0;
    if (!cs->word.compare_exchange_strong(expected, 1, std::memory_order_acquire,
                                          std::memory_order_relaxed))
        return false;
    cs->owner.store(self, std::memory_order_relaxed);
    cs->count = 1;
    return true;
}

void LeaveCriticalSection(SystemCriticalSection* cs) noexcept {
    // Leaving a section this thread does not hold reports nothing, like the other
    // platform's LeaveCriticalSection.
    if (cs->owner.load(std::memory_order_relaxed) != Self())
        return;
    if (--cs->count > 0)
        return;
    cs->owner.store(nullptr, std::memory_order_relaxed);
    if (cs->word.exchange(0, std::memory_order_release) == 2)
        FutexWakeOne(&cs->word);
}

void YieldTimeSlice() noexcept {
    sched_yield();
}

void WaitOnWord(std::atomic<std::uint32_t>& word, std::uint32_t expected,
                unsigned long timeoutMs) noexcept {
    if (timeoutMs == 0xFFFFFFFFul) {
        FutexWait(&word, expected);
        return;
    }
    timespec relative{static_cast<time_t>(timeoutMs / 1000),
                      static_cast<long>(timeoutMs % 1000) * 1000000L};
    syscall(SYS_futex, reinterpret_cast<std::uint32_t*>(&word), FUTEX_WAIT_PRIVATE, expected,
            &relative, nullptr, 0);
}

void WakeWord(std::atomic<std::uint32_t>& word, std::uint32_t count) noexcept {
    syscall(SYS_futex, reinterpret_cast<std::uint32_t*>(&word), FUTEX_WAKE_PRIVATE,
            count > 0x7FFFFFFFu ? 0x7FFFFFFF : static_cast<int>(count), nullptr, nullptr, 0);
}

} // namespace detail
} // namespace base
} // namespace lumo
