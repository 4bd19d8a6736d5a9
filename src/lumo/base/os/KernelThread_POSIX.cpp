// Threads of the kernel-object emulation: pthreads with a thread object that is
// signalled when the routine has returned, start-suspended, priorities as nice values,
// and exit by unwinding.
#include "KernelObjectCore_POSIX.h"

#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <new>

namespace lumo {
namespace base {
namespace win {
namespace kernel {

namespace {

using namespace core;

// --- threads ----------------------------------------------------------------------

long NiceOf(long level, bool* ok) {
    *ok = true;
    switch (level) {
    case -15:
        return 19; // idle
    case -2:
        return 10; // lowest
    case -1:
        return 5; // below normal
    case 0:
        return 0; // normal
    case 1:
        return -5; // above normal
    case 2:
        return -10; // highest
    case 15:
        return -20; // time critical
    default:
        *ok = false;
        return 0;
    }
}

long LevelOf(long nice) {
    if (nice >= 15)
        return -15;
    if (nice >= 8)
        return -2;
    if (nice >= 3)
        return -1;
    if (nice >= -2)
        return 0;
    if (nice >= -7)
        return 1;
    if (nice >= -14)
        return 2;
    return 15;
}

void FinishThread(ThreadObject* t, ThreadRecord* r, unsigned long code) {
    t_finishing = t;
    if (r != nullptr) {
        AbandonOwned(r);
        r->thread = nullptr;
    }
    pthread_mutex_lock(&t->lock);
    t->running = false;
    if (!t->exitCodeSet)
        t->exitCode = code;
    pthread_mutex_unlock(&t->lock);
    GlobalLockHold hold;
    t->signalled = true;
    Satisfy(t);
    DropRef(t);
}

// Finishes the thread on return and on pthread_exit's unwinding alike.
struct ThreadFinisher {
    ThreadObject* thread;
    ThreadRecord* record;
    unsigned long code;
    ~ThreadFinisher() { FinishThread(thread, record, code); }
};

void* ThreadMain(void* p) {
    auto* t = static_cast<ThreadObject*>(p);
    ThreadRecord* r = CurrentRecord();
    if (r != nullptr)
        r->thread = t;
    pthread_mutex_lock(&t->lock);
    t->tid = static_cast<pid_t>(syscall(SYS_gettid));
    t->started = true;
    t->running = true;
    pthread_cond_broadcast(&t->cond);
    while (t->suspended)
        pthread_cond_wait(&t->cond, &t->lock);
    pthread_mutex_unlock(&t->lock);
    ThreadFinisher finisher{t, r, 0};
    finisher.code = t->routine(t->argument);
    return nullptr;
}

} // namespace

using namespace core;

Handle NewThread(ThreadRoutine routine, void* argument, bool suspended, Handle* handle,
                 unsigned long* id) {
    if (routine == nullptr || handle == nullptr) {
        SetError(EINVAL);
        return nullptr;
    }
    *handle = nullptr;
    auto* t = new (std::nothrow) ThreadObject;
    if (t == nullptr) {
        SetError(ENOMEM);
        return nullptr;
    }
    t->routine = routine;
    t->argument = argument;
    t->suspended = suspended;
    t->refs = 2; // the caller's handle and the thread's own
    *handle = t;
    if (id != nullptr)
        *id = g_threadIds.fetch_add(1, std::memory_order_relaxed) + 1;
    g_live.fetch_add(1, std::memory_order_relaxed);
    int rc = pthread_create(&t->thread, nullptr, &ThreadMain, t);
    if (rc != 0) {
        g_live.fetch_sub(1, std::memory_order_acq_rel);
        *handle = nullptr;
        delete t;
        SetError(static_cast<unsigned long>(rc));
        return nullptr;
    }
    return t;
}

namespace {

// Holds a thread object's own lock for a scope, once the thread has started (its id
// is known from then on).
class StartedThreadHold {
public:
    explicit StartedThreadHold(ThreadObject* t) : m_thread(t) {
        pthread_mutex_lock(&t->lock);
        while (!t->started)
            pthread_cond_wait(&t->cond, &t->lock);
    }
    ~StartedThreadHold() { pthread_mutex_unlock(&m_thread->lock); }
    StartedThreadHold(StartedThreadHold const&) = delete;
    StartedThreadHold& operator=(StartedThreadHold const&) = delete;

private:
    ThreadObject* m_thread;
};

} // namespace

bool ResumeThreadObject(Handle thread) {
    ThreadObject* t = ObjectOf<ThreadObject>(thread, Kind::Thread);
    if (t == nullptr)
        return false;
    pthread_mutex_lock(&t->lock);
    t->suspended = false;
    pthread_cond_broadcast(&t->cond);
    pthread_mutex_unlock(&t->lock);
    return true;
}

bool SetThreadPriorityLevel(Handle thread, long level) {
    bool valid = false;
    long const nice = NiceOf(level, &valid);
    ThreadObject* t = ObjectOf<ThreadObject>(thread, Kind::Thread, valid);
    if (t == nullptr)
        return false;
    StartedThreadHold hold(t);
    if (t->running &&
        setpriority(PRIO_PROCESS, static_cast<id_t>(t->tid), static_cast<int>(nice)) != 0) {
        SetError(static_cast<unsigned long>(errno));
        return false;
    }
    t->priority = level;
    return true;
}

bool GetThreadPriorityLevel(Handle thread, long* level) {
    ThreadObject* t = ObjectOf<ThreadObject>(thread, Kind::Thread, level != nullptr);
    if (t == nullptr)
        return false;
    StartedThreadHold hold(t);
    *level = t->priority;
    if (t->running) {
        errno = 0;
        int const nice = getpriority(PRIO_PROCESS, static_cast<id_t>(t->tid));
        if (nice == -1 && errno != 0) {
            SetError(static_cast<unsigned long>(errno));
            return false;
        }
        *level = LevelOf(nice);
    }
    return true;
}

bool TerminateThreadObject(Handle thread, unsigned long /*exitCode*/) {
    ThreadObject* t = ObjectOf<ThreadObject>(thread, Kind::Thread);
    if (t == nullptr)
        return false;
    bool ended;
    {
        GlobalLockHold hold;
        ended = t->signalled;
    }
    if (!ended)
        SetError(ENOTSUP); // no safe forcible end for a thread running C++ code
    return ended;
}

void ExitCurrentThread(unsigned long exitCode) {
    ThreadRecord* r = t_record;
    if (r != nullptr && r->thread != nullptr) {
        ThreadObject* t = r->thread;
        pthread_mutex_lock(&t->lock);
        t->exitCode = exitCode;
        t->exitCodeSet = true;
        pthread_mutex_unlock(&t->lock);
    }
    pthread_exit(nullptr);
}

} // namespace kernel
} // namespace win
} // namespace base
} // namespace lumo
