// The POSIX backend of the system critical section: a recursive pthread mutex in C-heap
// memory, whose lock errors become CSynchronizationException.
#include "SystemCriticalSection.h"

#include <lumo/base/Exception.h>

#include <pthread.h>
#include <sched.h>

#include <cstdlib>
#include <new>

namespace lumo {
namespace base {
namespace detail {

struct SystemCriticalSection {
    pthread_mutex_t mutex;
};

SystemCriticalSection* NewCriticalSection(unsigned long /*spinCount*/, char const* file, int line) {
    void* memory = std::malloc(sizeof(SystemCriticalSection));
    if (memory == nullptr)
        throw CMemoryException(file, static_cast<unsigned long>(line));
    SystemCriticalSection* cs = new (memory) SystemCriticalSection;

    pthread_mutexattr_t attr;
    bool ok = pthread_mutexattr_init(&attr) == 0;
    if (ok) {
        ok = pthread_mutexattr_settype(&attr, PTHREAD_MUTEX_RECURSIVE) == 0 &&
             pthread_mutex_init(&cs->mutex, &attr) == 0;
        pthread_mutexattr_destroy(&attr);
    }
    if (!ok) {
        std::free(memory);
        return nullptr;
    }
    return cs;
}

void DeleteCriticalSection(SystemCriticalSection* cs) noexcept {
    if (cs == nullptr)
        return;
    pthread_mutex_destroy(&cs->mutex);
    cs->~SystemCriticalSection();
    std::free(cs);
}

namespace {

[[noreturn]] LUMO_COLD void ThrowEnterFailure() {
    throw CSynchronizationException("lumo/base/LockImplWin", __LINE__,
                                    "Failed to enter critical section.", nullptr);
}

} // namespace

void EnterCriticalSection(SystemCriticalSection* cs) {
    // pthread_mutex_lock fails only when the recursion count would overflow (EAGAIN)
    // or on a deadlock report.
    if (cs == nullptr || pthread_mutex_lock(&cs->mutex) != 0)
        ThrowEnterFailure();
}

bool TryEnterCriticalSection(SystemCriticalSection* cs) {
    if (cs == nullptr)
        ThrowEnterFailure();
    return pthread_mutex_trylock(&cs->mutex) == 0;
}

void LeaveCriticalSection(SystemCriticalSection* cs) noexcept {
    // Leaving a section this thread does not hold gives EPERM; like the other
    // platform's LeaveCriticalSection it reports nothing.
    pthread_mutex_unlock(&cs->mutex);
}

void YieldTimeSlice() noexcept {
    sched_yield();
}

} // namespace detail
} // namespace base
} // namespace lumo
