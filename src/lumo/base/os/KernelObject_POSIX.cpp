// Kernel wait objects emulated on pthreads.
//
// One process-wide lock (the "global lock") serialises every state change that a
// blocked or blocking thread can observe: waiter lists, events, thread ends, the
// hand-over of mutexes and semaphore counts. Each waiting thread parks on its own
// condition variable; whoever makes an object available completes the waiters that
// can now proceed (taking the objects for them) and wakes them. A wait on several
// objects with waitAll therefore takes all of them under that lock or none.
//
// Mutexes and semaphores also have an uncontended fast path: one atomic word with
// the owner (or count) and a "slow" bit. While the slow bit is set the word belongs
// to the global lock's holder; it is set by every operation that runs under the
// lock before it looks at the word (so no fast path can slip between its check and
// its take), and cleared again when nobody waits on the object any more (it stays
// set for an abandoned mutex, whose next owner must be told).
//
// Each thread that uses the objects has a record (found through a thread_local
// pointer, cleaned up by a pthread key destructor) holding the list of mutexes it
// owns, so that they are abandoned when the thread ends.
#include "KernelObjectCore_POSIX.h"

#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <semaphore.h>
#include <sys/resource.h>
#include <sys/single_threaded.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <new>
#include <string>
#include <unordered_map>

namespace lumo {
namespace base {
namespace win {
namespace kernel {

namespace core {

thread_local unsigned long t_lastError = 0;

void SetError(unsigned long code) {
    t_lastError = code;
}

#ifdef PTHREAD_ADAPTIVE_MUTEX_INITIALIZER_NP
pthread_mutex_t g_lock = PTHREAD_ADAPTIVE_MUTEX_INITIALIZER_NP;
#else
pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
#endif
Object* g_graveyard = nullptr;                               // global lock
std::unordered_map<std::string, Object*>* g_names = nullptr; // global lock
std::atomic<unsigned long> g_live{0};
std::atomic<std::uint32_t> g_threadIds{0};

pthread_once_t g_keyOnce = PTHREAD_ONCE_INIT;
pthread_key_t g_key;
std::atomic<bool> g_keyReady{false};
thread_local ThreadRecord* t_record = nullptr; // initial-exec, see the header
thread_local ThreadObject* t_finishing = nullptr;

// Yields a few times before parking: when the thread that will complete the wait is
// runnable, it may then do so without a sleep and wake-up of this thread. (Spinning
// instead costs the other thread its processor when processors are scarce.)
constexpr int kYields = 3;

// While the process has one thread nobody can race the fast paths, which then do
// without locked instructions (as glibc's own locks do). The flag turns false before
// a second thread exists and never back.
inline bool SingleThreaded() {
    return __libc_single_threaded != 0;
}

void LockGlobal() {
    pthread_mutex_lock(&g_lock);
}

void Destroy(Object* o);

// Unlocks, then destroys the objects whose last reference went while it was held
// (outside the lock: a thread object may have to be joined).
void UnlockGlobal() {
    Object* dead = g_graveyard;
    g_graveyard = nullptr;
    pthread_mutex_unlock(&g_lock);
    while (dead != nullptr) {
        Object* next = dead->nextDead;
        Destroy(dead);
        dead = next;
    }
}

// --- thread records -------------------------------------------------------------

void AbandonOwned(ThreadRecord* r);

void RecordDestructor(void* p) {
    auto* r = static_cast<ThreadRecord*>(p);
    AbandonOwned(r);
    // A thread completing one of our waits holds the global lock while it touches
    // the record: let it finish.
    LockGlobal();
    UnlockGlobal();
    t_record = nullptr;
    delete r;
}

void MakeKey() {
    if (pthread_key_create(&g_key, &RecordDestructor) == 0)
        g_keyReady.store(true, std::memory_order_release);
}

// The key destructor must not outlive the library's code.
struct KeyCleanup {
    ~KeyCleanup() {
        if (g_keyReady.exchange(false))
            pthread_key_delete(g_key);
    }
} g_keyCleanup;

ThreadRecord* NewRecord() {
    ThreadRecord* r;
    pthread_once(&g_keyOnce, &MakeKey);
    if (!g_keyReady.load(std::memory_order_acquire)) {
        SetError(EAGAIN);
        return nullptr;
    }
    r = new (std::nothrow) ThreadRecord;
    if (r == nullptr) {
        SetError(ENOMEM);
        return nullptr;
    }
    int rc = pthread_setspecific(g_key, r);
    if (rc != 0) {
        delete r;
        SetError(static_cast<unsigned long>(rc));
        return nullptr;
    }
    t_record = r;
    return r;
}

void LinkOwned(ThreadRecord* r, MutexObject* m) {
    m->ownedPrev = nullptr;
    m->ownedNext = r->owned;
    if (r->owned != nullptr)
        r->owned->ownedPrev = m;
    r->owned = m;
}

void UnlinkOwned(ThreadRecord* r, MutexObject* m) {
    if (m->ownedPrev != nullptr)
        m->ownedPrev->ownedNext = m->ownedNext;
    else
        r->owned = m->ownedNext;
    if (m->ownedNext != nullptr)
        m->ownedNext->ownedPrev = m->ownedPrev;
    m->ownedPrev = m->ownedNext = nullptr;
}

// --- object state (global lock held) ---------------------------------------------

void Bury(Object* o) {
    o->nextDead = g_graveyard;
    g_graveyard = o;
}

void Freeze(Object* o) {
    if (o->kind == Kind::Mutex)
        static_cast<MutexObject*>(o)->word.fetch_or(MutexSlow, std::memory_order_acq_rel);
    else if (o->kind == Kind::Semaphore)
        static_cast<SemaphoreObject*>(o)->word.fetch_or(SemaphoreSlow, std::memory_order_acq_rel);
}

// Gives the word back to the fast path once nobody waits on the object.
void Settle(Object* o) {
    if (o->head != nullptr)
        return;
    if (o->kind == Kind::Mutex) {
        auto* m = static_cast<MutexObject*>(o);
        if (!m->abandoned && !m->closed)
            m->word.fetch_and(~MutexSlow, std::memory_order_acq_rel);
    } else if (o->kind == Kind::Semaphore) {
        static_cast<SemaphoreObject*>(o)->word.fetch_and(~SemaphoreSlow, std::memory_order_acq_rel);
    }
}

void AddRef(Object* o) {
    ++o->refs;
}

void DropRef(Object* o) {
    if (--o->refs > 0)
        return;
    if (!o->name.empty() && g_names != nullptr) {
        auto it = g_names->find(o->name);
        if (it != g_names->end() && it->second == o)
            g_names->erase(it);
    }
    if (o->kind == Kind::Mutex) {
        auto* m = static_cast<MutexObject*>(o);
        Freeze(m);
        if ((m->word.load(std::memory_order_acquire) & ~MutexSlow) != 0) {
            // Still owned: the owner frees it when it lets go or ends.
            m->closed = true;
            return;
        }
    }
    Bury(o);
}

bool Available(Object* o, ThreadRecord* r) {
    switch (o->kind) {
    case Kind::Mutex: {
        std::uintptr_t owner =
            static_cast<MutexObject*>(o)->word.load(std::memory_order_acquire) & ~MutexSlow;
        return owner == 0 || owner == reinterpret_cast<std::uintptr_t>(r);
    }
    case Kind::Semaphore:
        return (static_cast<SemaphoreObject*>(o)->word.load(std::memory_order_acquire) &
                ~SemaphoreSlow) != 0;
    case Kind::Event:
        return static_cast<EventObject*>(o)->signalled;
    case Kind::Thread:
        return static_cast<ThreadObject*>(o)->signalled;
    case Kind::NamedSemaphore:
        break;
    }
    return false;
}

// Takes an available object for `r`; true when it was an abandoned mutex.
bool Take(Object* o, ThreadRecord* r, bool* newOwner) {
    *newOwner = false;
    switch (o->kind) {
    case Kind::Mutex: {
        auto* m = static_cast<MutexObject*>(o);
        auto const self = reinterpret_cast<std::uintptr_t>(r);
        if ((m->word.load(std::memory_order_acquire) & ~MutexSlow) == self) {
            ++m->count;
            return false;
        }
        m->word.store(self | MutexSlow, std::memory_order_release);
        m->count = 1;
        *newOwner = true;
        bool const abandoned = m->abandoned;
        m->abandoned = false;
        return abandoned;
    }
    case Kind::Semaphore:
        static_cast<SemaphoreObject*>(o)->word.fetch_sub(1, std::memory_order_acq_rel);
        break;
    case Kind::Event: {
        auto* e = static_cast<EventObject*>(o);
        if (!e->manual)
            e->signalled = false;
        break;
    }
    case Kind::Thread:
    case Kind::NamedSemaphore:
        break;
    }
    return false;
}

// Takes what the waiter waits for when it can have it now.
bool TryComplete(Waiter* w) {
    bool newOwner = false;
    if (w->waitAll) {
        for (unsigned long i = 0; i < w->count; ++i)
            if (!Available(w->objects[i], w->record))
                return false;
        unsigned long abandonedIndex = w->count;
        for (unsigned long i = 0; i < w->count; ++i) {
            if (Take(w->objects[i], w->record, &newOwner) && abandonedIndex == w->count)
                abandonedIndex = i;
            if (newOwner)
                w->acquired |= std::uint64_t(1) << i;
        }
        w->result = abandonedIndex < w->count ? WaitAbandoned0 + abandonedIndex : WaitObject0;
        return true;
    }
    for (unsigned long i = 0; i < w->count; ++i) {
        if (Available(w->objects[i], w->record)) {
            bool const abandoned = Take(w->objects[i], w->record, &newOwner);
            if (newOwner)
                w->acquired |= std::uint64_t(1) << i;
            w->result = (abandoned ? WaitAbandoned0 : WaitObject0) + i;
            return true;
        }
    }
    return false;
}

void Register(Waiter* w) {
    for (unsigned long i = 0; i < w->count; ++i) {
        Object* o = w->objects[i];
        WaitBlock* b = &w->blocks[i];
        b->waiter = w;
        b->object = o;
        b->next = nullptr;
        b->prev = o->tail;
        if (o->tail != nullptr)
            o->tail->next = b;
        else
            o->head = b;
        o->tail = b;
        AddRef(o);
    }
}

void Unregister(Waiter* w) {
    for (unsigned long i = 0; i < w->count; ++i) {
        WaitBlock* b = &w->blocks[i];
        Object* o = b->object;
        if (b->prev != nullptr)
            b->prev->next = b->next;
        else
            o->head = b->next;
        if (b->next != nullptr)
            b->next->prev = b->prev;
        else
            o->tail = b->prev;
        Settle(o);
        DropRef(o);
    }
}

// Wakes a parked waiter whose wait is complete. The waiter's stack may be gone as
// soon as `state` is set; its record stays until the thread ends, and that takes
// the global lock, which the caller holds.
void Unpark(ThreadRecord* r) {
    r->state.store(1, std::memory_order_release);
    pthread_mutex_lock(&r->parkLock);
    pthread_mutex_unlock(&r->parkLock);
    pthread_cond_signal(&r->parkCond);
}

// Completes the waiters that `o` becoming available lets proceed, oldest first.
void Satisfy(Object* o) {
    WaitBlock* b = o->head;
    while (b != nullptr) {
        WaitBlock* next = b->next; // another waiter's block: survives the completion
        Waiter* w = b->waiter;
        if (Available(o, w->record) && TryComplete(w)) {
            ThreadRecord* r = w->record;
            Unregister(w);
            Unpark(r);
        }
        b = next;
    }
}

void AbandonOwned(ThreadRecord* r) {
    if (r->owned == nullptr)
        return;
    LockGlobal();
    while (MutexObject* m = r->owned) {
        UnlinkOwned(r, m);
        Freeze(m);
        m->count = 0;
        m->word.store(MutexSlow, std::memory_order_release);
        if (m->closed) {
            m->closed = false;
            Bury(m);
            continue;
        }
        m->abandoned = true;
        AddRef(m);
        Satisfy(m);
        Settle(m);
        DropRef(m);
    }
    UnlockGlobal();
}

// --- deadlines and parking -------------------------------------------------------

struct Deadline {
    bool infinite;
    timespec at;
};

Deadline MakeDeadline(unsigned long timeout) {
    Deadline d{timeout == Infinite, {0, 0}};
    if (!d.infinite) {
        clock_gettime(CLOCK_MONOTONIC, &d.at);
        d.at.tv_sec += static_cast<time_t>(timeout / 1000);
        d.at.tv_nsec += static_cast<long>(timeout % 1000) * 1000000L;
        if (d.at.tv_nsec >= 1000000000L) {
            d.at.tv_sec += 1;
            d.at.tv_nsec -= 1000000000L;
        }
    }
    return d;
}

// Nanoseconds left until the deadline (0 when passed).
long long Remaining(Deadline const& d) {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    long long left = (static_cast<long long>(d.at.tv_sec) - now.tv_sec) * 1000000000LL +
                     (d.at.tv_nsec - now.tv_nsec);
    return left > 0 ? left : 0;
}

// Waits until a wait of this thread is completed or the deadline passes.
bool Park(ThreadRecord* r, Deadline const& d) {
    for (int i = 0; i < kYields; ++i) {
        if (r->state.load(std::memory_order_acquire) != 0)
            return true;
        sched_yield();
    }
    pthread_mutex_lock(&r->parkLock);
    int rc = 0;
    while (r->state.load(std::memory_order_acquire) == 0 && rc != ETIMEDOUT)
        rc = d.infinite ? pthread_cond_wait(&r->parkCond, &r->parkLock)
                        : pthread_cond_timedwait(&r->parkCond, &r->parkLock, &d.at);
    bool const done = r->state.load(std::memory_order_acquire) != 0;
    pthread_mutex_unlock(&r->parkLock);
    return done;
}

// --- waits ------------------------------------------------------------------------

unsigned long NamedSemaphoreWait(NamedSemaphoreObject* s, unsigned long timeout) {
    if (timeout == 0) {
        while (sem_trywait(s->sem) != 0) {
            if (errno == EAGAIN)
                return WaitTimeout;
            if (errno != EINTR) {
                SetError(static_cast<unsigned long>(errno));
                return WaitFailed;
            }
        }
        return WaitObject0;
    }
    if (timeout == Infinite) {
        while (sem_wait(s->sem) != 0) {
            if (errno != EINTR) {
                SetError(static_cast<unsigned long>(errno));
                return WaitFailed;
            }
        }
        return WaitObject0;
    }
    // sem_timedwait measures against the real-time clock; the monotonic deadline
    // decides when the wait is over, whatever the wall clock does meanwhile.
    Deadline const d = MakeDeadline(timeout);
    for (;;) {
        long long const left = Remaining(d);
        if (left == 0)
            return sem_trywait(s->sem) == 0 ? WaitObject0 : WaitTimeout;
        timespec at;
        clock_gettime(CLOCK_REALTIME, &at);
        long long ns = at.tv_nsec + left % 1000000000LL;
        at.tv_sec += static_cast<time_t>(left / 1000000000LL + ns / 1000000000LL);
        at.tv_nsec = static_cast<long>(ns % 1000000000LL);
        if (sem_timedwait(s->sem, &at) == 0)
            return WaitObject0;
        if (errno != ETIMEDOUT && errno != EINTR) {
            SetError(static_cast<unsigned long>(errno));
            return WaitFailed;
        }
    }
}

unsigned long WaitSlow(unsigned long count, Object* const* objects, bool waitAll,
                       unsigned long timeout) {
    ThreadRecord* r = CurrentRecord();
    if (r == nullptr)
        return WaitFailed;
    if (timeout == Infinite && r->thread != nullptr && (waitAll || count == 1)) {
        for (unsigned long i = 0; i < count; ++i) {
            if (objects[i] == r->thread) {
                SetError(EDEADLK); // waiting for its own end
                return WaitFailed;
            }
        }
    }
    Waiter w;
    w.record = r;
    w.count = count;
    w.objects = objects;
    w.waitAll = waitAll;
    w.result = WaitTimeout;
    w.acquired = 0;

    Deadline const d = MakeDeadline(timeout);
    LockGlobal();
    for (unsigned long i = 0; i < count; ++i)
        Freeze(objects[i]);
    bool done = TryComplete(&w);
    if (done || timeout == 0) {
        for (unsigned long i = 0; i < count; ++i)
            Settle(objects[i]);
        UnlockGlobal();
    } else {
        Register(&w);
        r->state.store(0, std::memory_order_relaxed);
        UnlockGlobal();
        done = Park(r, d);
        if (!done) {
            LockGlobal();
            done = r->state.load(std::memory_order_acquire) != 0;
            if (!done) {
                Unregister(&w);
                w.result = WaitTimeout;
            }
            UnlockGlobal();
        }
    }
    if (done) {
        for (unsigned long i = 0; i < count; ++i)
            if ((w.acquired >> i) & 1)
                LinkOwned(r, static_cast<MutexObject*>(objects[i]));
    }
    return w.result;
}

Object* CheckHandle(Handle h) {
    if (h == nullptr)
        SetError(EBADF);
    return static_cast<Object*>(h);
}

void Destroy(Object* o) {
    switch (o->kind) {
    case Kind::NamedSemaphore: {
        auto* s = static_cast<NamedSemaphoreObject*>(o);
        sem_close(s->sem);
        if (s->creator)
            sem_unlink(s->path.c_str());
        break;
    }
    case Kind::Thread: {
        auto* t = static_cast<ThreadObject*>(o);
        // The last reference goes after the thread's own, so the thread has ended
        // or is ending: join it, or let it go when this is the thread itself.
        if (!t->reaped) {
            if (t == t_finishing)
                pthread_detach(pthread_self());
            else
                pthread_join(t->thread, nullptr);
        }
        break;
    }
    default:
        break;
    }
    g_live.fetch_sub(1, std::memory_order_acq_rel);
    delete o;
}

void Reap(ThreadObject* t) {
    pthread_mutex_lock(&t->lock);
    if (!t->reaped && t != t_finishing) {
        pthread_join(t->thread, nullptr);
        t->reaped = true;
    }
    pthread_mutex_unlock(&t->lock);
}

unsigned long AfterWait(unsigned long count, Object* const* objects, bool waitAll,
                        unsigned long result) {
    // A thread seen ended is joined at once, so that it is gone when the wait returns.
    unsigned long index;
    if (result < WaitObject0 + count)
        index = result - WaitObject0;
    else if (result >= WaitAbandoned0 && result < WaitAbandoned0 + count)
        index = result - WaitAbandoned0;
    else
        return result;
    for (unsigned long i = 0; i < count; ++i)
        if (objects[i]->kind == Kind::Thread && (waitAll || i == index))
            Reap(static_cast<ThreadObject*>(objects[i]));
    return result;
}

} // namespace core

using namespace core;

// --- interface --------------------------------------------------------------------

unsigned long LastError() {
    return t_lastError;
}

// Under the global lock: the live object of that name with a new reference, or null.
// `clash` tells a name held by an object of another kind.
static Object* OpenNamed(char const* name, Kind kind, bool& clash) {
    if (g_names == nullptr)
        return nullptr;
    auto it = g_names->find(name);
    if (it == g_names->end())
        return nullptr;
    if (it->second->kind != kind) {
        clash = true;
        return nullptr;
    }
    AddRef(it->second);
    return it->second;
}

// Under the global lock: makes a new object findable by name; false when out of memory.
static bool RecordName(Object* o, char const* name) {
    try {
        o->name = name;
        if (g_names == nullptr)
            g_names = new std::unordered_map<std::string, Object*>;
        g_names->emplace(o->name, o);
        return true;
    } catch (...) {
        return false;
    }
}

// Opens the named object of `kind` when the name is taken, or makes one with `make`
// and records its name; `created` then finishes the new object. Null with the error
// set on failure. The global lock is held throughout.
template <class Make, class Created>
Handle OpenOrCreate(char const* name, Kind kind, Make make, Created created) {
    bool const named = name != nullptr && *name != '\0';
    GlobalLockHold hold;
    if (named) {
        bool clash = false;
        if (Object* o = OpenNamed(name, kind, clash))
            return o;
        if (clash) {
            SetError(EEXIST); // the name belongs to an object of another kind
            return nullptr;
        }
    }
    auto* o = make();
    if (o == nullptr || (named && !RecordName(o, name))) {
        delete o;
        SetError(ENOMEM);
        return nullptr;
    }
    created(o);
    g_live.fetch_add(1, std::memory_order_relaxed);
    return o;
}

Handle NewMutex(char const* name, bool initialOwner) {
    ThreadRecord* r = CurrentRecord();
    if (r == nullptr)
        return nullptr;
    return OpenOrCreate(
        name, Kind::Mutex, [] { return new (std::nothrow) MutexObject; },
        [&](MutexObject* m) {
            if (initialOwner) {
                m->word.store(reinterpret_cast<std::uintptr_t>(r), std::memory_order_release);
                m->count = 1;
                LinkOwned(r, m);
            }
        });
}

Handle NewEvent(char const* name, bool manualReset, bool initialState) {
    return OpenOrCreate(
        name, Kind::Event,
        [&] { return new (std::nothrow) EventObject(manualReset, initialState); },
        [](EventObject*) {});
}

Handle NewSemaphore(char const* name, long initialCount, long maximumCount) {
    if (maximumCount <= 0 || maximumCount > MaximumSemaphoreCount || initialCount < 0 ||
        initialCount > maximumCount) {
        SetError(EINVAL);
        return nullptr;
    }
    if (name == nullptr || *name == '\0') {
        auto* s = new (std::nothrow) SemaphoreObject(static_cast<std::uint32_t>(initialCount),
                                                     static_cast<std::uint32_t>(maximumCount));
        if (s == nullptr) {
            SetError(ENOMEM);
            return nullptr;
        }
        g_live.fetch_add(1, std::memory_order_relaxed);
        return s;
    }
    auto* s = new (std::nothrow) NamedSemaphoreObject;
    if (s == nullptr) {
        SetError(ENOMEM);
        return nullptr;
    }
    try {
        s->path = name[0] == '/' ? name : std::string("/") + name;
    } catch (...) {
        delete s;
        SetError(ENOMEM);
        return nullptr;
    }
    // Create it, or open the one that exists (whose count is kept); retry when it
    // disappears between the two.
    for (int attempt = 0; attempt < 100 && s->sem == SEM_FAILED; ++attempt) {
        s->sem = sem_open(s->path.c_str(), O_CREAT | O_EXCL, 0600,
                          static_cast<unsigned int>(initialCount));
        if (s->sem != SEM_FAILED) {
            s->creator = true;
            break;
        }
        if (errno != EEXIST)
            break;
        s->sem = sem_open(s->path.c_str(), 0);
        if (s->sem == SEM_FAILED && errno != ENOENT)
            break;
    }
    if (s->sem == SEM_FAILED) {
        SetError(static_cast<unsigned long>(errno));
        delete s;
        return nullptr;
    }
    g_live.fetch_add(1, std::memory_order_relaxed);
    return s;
}

bool CloseObject(Handle handle) {
    Object* o = CheckHandle(handle);
    if (o == nullptr)
        return false;
    LockGlobal();
    DropRef(o);
    UnlockGlobal();
    return true;
}

bool ReleaseMutexObject(Handle handle) {
    auto* m = ObjectOf<MutexObject>(handle, Kind::Mutex);
    if (m == nullptr)
        return false;
    ThreadRecord* r = t_record;
    auto const self = reinterpret_cast<std::uintptr_t>(r);
    if (r == nullptr || (m->word.load(std::memory_order_acquire) & ~MutexSlow) != self) {
        SetError(EPERM);
        return false;
    }
    if (m->count > 1) {
        --m->count;
        return true;
    }
    UnlinkOwned(r, m);
    m->count = 0;
    std::uintptr_t expected = self;
    if (SingleThreaded()) {
        if (m->word.load(std::memory_order_relaxed) == self) {
            m->word.store(0, std::memory_order_relaxed);
            return true;
        }
    } else if (m->word.compare_exchange_strong(expected, 0, std::memory_order_release,
                                               std::memory_order_relaxed)) {
        return true;
    }
    LockGlobal();
    Freeze(m);
    m->word.store(MutexSlow, std::memory_order_release);
    if (m->closed) {
        m->closed = false;
        Bury(m);
    } else {
        Satisfy(m);
        Settle(m);
    }
    UnlockGlobal();
    return true;
}

// Sets or clears an event; a set one completes the waits it lets proceed.
static bool SignalEvent(Handle handle, bool signalled) {
    auto* e = ObjectOf<EventObject>(handle, Kind::Event);
    if (e == nullptr)
        return false;
    GlobalLockHold hold;
    e->signalled = signalled;
    if (signalled)
        Satisfy(e);
    return true;
}

bool SetEventObject(Handle handle) {
    return SignalEvent(handle, true);
}

bool ResetEventObject(Handle handle) {
    return SignalEvent(handle, false);
}

bool ReleaseSemaphoreObject(Handle handle, long count, long* previous) {
    Object* o = CheckHandle(handle);
    if (o == nullptr)
        return false;
    if (count <= 0) {
        SetError(EINVAL);
        return false;
    }
    if (o->kind == Kind::NamedSemaphore) {
        auto* s = static_cast<NamedSemaphoreObject*>(o);
        int value = 0;
        if (previous != nullptr && sem_getvalue(s->sem, &value) == 0)
            *previous = value;
        for (long i = 0; i < count; ++i) {
            if (sem_post(s->sem) != 0) {
                SetError(static_cast<unsigned long>(errno));
                return false;
            }
        }
        return true;
    }
    if (o->kind != Kind::Semaphore) {
        SetError(EINVAL);
        return false;
    }
    auto* s = static_cast<SemaphoreObject*>(o);
    std::uint32_t w = s->word.load(std::memory_order_relaxed);
    while ((w & SemaphoreSlow) == 0) {
        if (static_cast<unsigned long>(count) > s->maximum - w) {
            SetError(EOVERFLOW);
            return false;
        }
        if (s->word.compare_exchange_weak(w, w + static_cast<std::uint32_t>(count),
                                          std::memory_order_release, std::memory_order_relaxed)) {
            if (previous != nullptr)
                *previous = static_cast<long>(w);
            return true;
        }
    }
    LockGlobal();
    Freeze(s);
    std::uint32_t const current = s->word.load(std::memory_order_acquire) & ~SemaphoreSlow;
    if (static_cast<unsigned long>(count) > s->maximum - current) {
        Settle(s);
        UnlockGlobal();
        SetError(EOVERFLOW);
        return false;
    }
    s->word.fetch_add(static_cast<std::uint32_t>(count), std::memory_order_acq_rel);
    if (previous != nullptr)
        *previous = static_cast<long>(current);
    Satisfy(s);
    Settle(s);
    UnlockGlobal();
    return true;
}

unsigned long WaitForOne(Handle handle, unsigned long timeout) {
    Object* o = CheckHandle(handle);
    if (o == nullptr)
        return WaitFailed;
    switch (o->kind) {
    case Kind::Mutex: {
        ThreadRecord* r = CurrentRecord();
        if (r == nullptr)
            return WaitFailed;
        auto* m = static_cast<MutexObject*>(o);
        auto const self = reinterpret_cast<std::uintptr_t>(r);
        std::uintptr_t expected = 0;
        if (SingleThreaded()) {
            expected = m->word.load(std::memory_order_relaxed);
            if (expected == 0)
                m->word.store(self, std::memory_order_relaxed);
        } else {
            m->word.compare_exchange_strong(expected, self, std::memory_order_acquire,
                                            std::memory_order_relaxed);
        }
        if (expected == 0) {
            m->count = 1;
            LinkOwned(r, m);
            return WaitObject0;
        }
        if ((expected & ~MutexSlow) == self) {
            ++m->count;
            return WaitObject0;
        }
        break;
    }
    case Kind::Semaphore: {
        auto* s = static_cast<SemaphoreObject*>(o);
        std::uint32_t w = s->word.load(std::memory_order_relaxed);
        while ((w & SemaphoreSlow) == 0 && w != 0) {
            if (s->word.compare_exchange_weak(w, w - 1, std::memory_order_acquire,
                                              std::memory_order_relaxed))
                return WaitObject0;
        }
        break;
    }
    case Kind::NamedSemaphore:
        return NamedSemaphoreWait(static_cast<NamedSemaphoreObject*>(o), timeout);
    default:
        break;
    }
    Object* objects[1] = {o};
    return AfterWait(1, objects, false, WaitSlow(1, objects, false, timeout));
}

unsigned long WaitForMany(unsigned long count, Handle const* handles, bool waitAll,
                          unsigned long timeout) {
    if (count == 0 || count > MaximumWaitObjects || handles == nullptr) {
        SetError(EINVAL);
        return WaitFailed;
    }
    Object* objects[MaximumWaitObjects];
    for (unsigned long i = 0; i < count; ++i) {
        objects[i] = CheckHandle(handles[i]);
        if (objects[i] == nullptr)
            return WaitFailed;
        // A named semaphore lives outside this emulation; it can only be waited on alone.
        if (objects[i]->kind == Kind::NamedSemaphore && count > 1) {
            SetError(EINVAL);
            return WaitFailed;
        }
        for (unsigned long j = 0; j < i; ++j) {
            if (objects[j] == objects[i]) {
                SetError(EINVAL);
                return WaitFailed;
            }
        }
    }
    if (count == 1)
        return WaitForOne(objects[0], timeout);
    return AfterWait(count, objects, waitAll, WaitSlow(count, objects, waitAll, timeout));
}

unsigned long LiveObjectCount() {
    return g_live.load(std::memory_order_acquire);
}

} // namespace kernel
} // namespace win
} // namespace base
} // namespace lumo
