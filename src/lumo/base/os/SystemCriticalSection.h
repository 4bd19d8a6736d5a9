// Internal: the portable interface of the operating-system critical section behind the
// library's locks, and the time-slice yield of CSpinLock.
#ifndef LUMO_BASE_OS_SYSTEMCRITICALSECTION_H
#define LUMO_BASE_OS_SYSTEMCRITICALSECTION_H

// The operating-system critical section behind CLock, CReentrantLock and CLazyLock,
// and the time-slice yield of CSpinLock.
// Portable interface; one backend per platform (SystemCriticalSection_POSIX.cpp: a
// recursive futex lock; SystemCriticalSection_WIN32.cpp: a CRITICAL_SECTION made with
// InitializeCriticalSectionAndSpinCount and entered under a structured-exception
// guard). Internal to the library: no operating-system header here.

#include <atomic>
#include <cstdint>

namespace lumo {
namespace base {
namespace detail {

// Defined by the backend.
struct SystemCriticalSection;

// Allocates a critical section and initialises it with the spin count (the POSIX
// backend ignores it and always spins a short while before sleeping). A thread
// holding it may enter it again and must leave it as many times. Throws
// CMemoryException(file, line) when memory is exhausted; null when the operating
// system cannot initialise it.
SystemCriticalSection* NewCriticalSection(unsigned long spinCount, char const* file, int line);
// Deletes the critical section and frees it; null is ignored.
void DeleteCriticalSection(SystemCriticalSection* cs) noexcept;
// Waits until entered. When the operating system reports a fault instead (Windows:
// any structured exception; POSIX: an error from pthread_mutex_lock), or `cs` is
// null, throws CSynchronizationException "Failed to enter critical section." with
// source "lumo/base/LockImplWin".
void EnterCriticalSection(SystemCriticalSection* cs);
// Enters when free or already held by this thread; never waits. A null `cs` throws
// as EnterCriticalSection does.
bool TryEnterCriticalSection(SystemCriticalSection* cs);
void LeaveCriticalSection(SystemCriticalSection* cs) noexcept;

// Gives up the rest of the calling thread's time slice (Windows: Sleep(0); POSIX:
// sched_yield). Used by CSpinLock between attempts.
void YieldTimeSlice() noexcept;

// Tells the processor that this is a spin-wait loop (x86: pause), so that it waits
// without flooding the memory system and leaves the core to its sibling thread.
inline void CpuRelax() noexcept {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

// Whether a thread about to sleep on a lock or semaphore spins first: always while
// spinning has paid off lately; after four failures in a row only every 16th time,
// so that a thread whose partner cannot run meanwhile (a busy machine, or both on one
// core) stops spending its time slice on it.
class CAdaptiveSpin {
public:
    bool Worthwhile() noexcept {
        return m_credit.load(std::memory_order_relaxed) > 0 ||
               (m_probe.fetch_add(1, std::memory_order_relaxed) & 15) == 0;
    }
    void Paid() noexcept { m_credit.store(kCredit, std::memory_order_relaxed); }
    void Failed() noexcept {
        int const credit = m_credit.load(std::memory_order_relaxed);
        m_credit.store(credit > 0 ? credit - 1 : 0, std::memory_order_relaxed);
    }

private:
    static int const kCredit = 4;
    std::atomic<int> m_credit{kCredit};
    std::atomic<std::uint32_t> m_probe{0};
};

// Sleeps while *word == expected, until a wake on the word or `timeoutMs`
// milliseconds (0xFFFFFFFF: no limit); may also return early for no reason, so
// callers re-check their condition.
void WaitOnWord(std::atomic<std::uint32_t>& word, std::uint32_t expected,
                unsigned long timeoutMs) noexcept;
// Wakes up to `count` sleepers on the word.
void WakeWord(std::atomic<std::uint32_t>& word, std::uint32_t count) noexcept;

} // namespace detail
} // namespace base
} // namespace lumo

#endif
