// Internal to the POSIX backend of the kernel objects: the object and thread records
// and the helpers that its three sources share (objects and waits, threads, thread-local
// slots). Everything here is guarded by the global lock unless its comment says
// otherwise; see KernelObject_POSIX.cpp for the design.
#ifndef LUMO_BASE_OS_KERNELOBJECTCORE_POSIX_H
#define LUMO_BASE_OS_KERNELOBJECTCORE_POSIX_H

#include "KernelObject.h"

#include <pthread.h>
#include <semaphore.h>
#include <sys/types.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <string>

namespace lumo {
namespace base {
namespace win {
namespace kernel {

namespace core {

void SetError(unsigned long code);

enum class Kind : unsigned char { Mutex, Event, Semaphore, NamedSemaphore, Thread };

struct Object;
struct Waiter;
struct ThreadRecord;
struct ThreadObject;

// One waiter's entry in the list of one object it waits on.
struct WaitBlock {
    Waiter* waiter;
    Object* object;
    WaitBlock* prev;
    WaitBlock* next;
};

struct Object {
    explicit Object(Kind k) : kind(k) {}
    virtual ~Object() = default;

    Kind const kind;
    unsigned long refs = 1;    // handles and registered waits; global lock
    std::string name;          // registry key of a named mutex or event
    WaitBlock* head = nullptr; // waiters in arrival order; global lock
    WaitBlock* tail = nullptr;
    Object* nextDead = nullptr; // graveyard link
};

constexpr std::uintptr_t MutexSlow = 1;

struct MutexObject : Object {
    MutexObject() : Object(Kind::Mutex) {}
    std::atomic<std::uintptr_t> word{0}; // owning ThreadRecord | MutexSlow
    std::uint32_t count = 0;             // recursion; changed by the owner only
    bool abandoned = false;              // global lock
    bool closed = false;                 // every handle closed while owned; global lock
    MutexObject* ownedPrev = nullptr;    // the owner's list; touched by the owner only
    MutexObject* ownedNext = nullptr;
};

constexpr std::uint32_t SemaphoreSlow = 0x80000000u;

struct SemaphoreObject : Object {
    SemaphoreObject(std::uint32_t initial, std::uint32_t max)
        : Object(Kind::Semaphore), word(initial), maximum(max) {}
    std::atomic<std::uint32_t> word; // count | SemaphoreSlow
    std::uint32_t const maximum;
};

struct EventObject : Object {
    EventObject(bool m, bool s) : Object(Kind::Event), manual(m), signalled(s) {}
    bool const manual;
    bool signalled; // global lock
};

struct NamedSemaphoreObject : Object {
    NamedSemaphoreObject() : Object(Kind::NamedSemaphore) {}
    sem_t* sem = SEM_FAILED;
    bool creator = false; // unlinks the name when closed
    std::string path;
};

struct ThreadObject : Object {
    ThreadObject() : Object(Kind::Thread) {
        pthread_mutex_init(&lock, nullptr);
        pthread_cond_init(&cond, nullptr);
    }
    ~ThreadObject() override {
        pthread_cond_destroy(&cond);
        pthread_mutex_destroy(&lock);
    }
    // `lock` guards the fields up to exitCode: the thread id is valid while running.
    pthread_mutex_t lock;
    pthread_cond_t cond;
    pthread_t thread{};
    pid_t tid = 0;
    bool started = false;
    bool running = false;
    bool reaped = false; // joined
    bool suspended = false;
    long priority = 0;
    unsigned long exitCode = 0;
    bool exitCodeSet = false;
    bool signalled = false; // global lock
    ThreadRoutine routine = nullptr;
    void* argument = nullptr;
};

struct ThreadRecord {
    ThreadRecord() {
        pthread_mutex_init(&parkLock, nullptr);
        pthread_condattr_t attr;
        pthread_condattr_init(&attr);
        pthread_condattr_setclock(&attr, CLOCK_MONOTONIC);
        pthread_cond_init(&parkCond, &attr);
        pthread_condattr_destroy(&attr);
    }
    ~ThreadRecord() {
        pthread_cond_destroy(&parkCond);
        pthread_mutex_destroy(&parkLock);
    }
    MutexObject* owned = nullptr;   // mutexes this thread owns; this thread only
    ThreadObject* thread = nullptr; // set for threads made by NewThread
    std::atomic<int> state{0};      // 1 once a wait of this thread was completed
    pthread_mutex_t parkLock;
    pthread_cond_t parkCond;
};

struct Waiter {
    ThreadRecord* record;
    unsigned long count;
    Object* const* objects;
    bool waitAll;
    unsigned long result;
    std::uint64_t acquired; // bit i: the wait made this thread owner of mutex i
    WaitBlock blocks[MaximumWaitObjects];
};

extern std::atomic<unsigned long> g_live;
extern std::atomic<std::uint32_t> g_threadIds;
// Initial-exec: the fast paths read it with one instruction instead of a call.
extern __attribute__((tls_model("initial-exec"))) thread_local ThreadRecord* t_record;
extern thread_local ThreadObject* t_finishing; // the thread object of a thread that ends

void LockGlobal();
// Unlocks, then destroys the objects whose last reference went while it was held.
void UnlockGlobal();

// Holds the global lock for a scope.
class GlobalLockHold {
public:
    GlobalLockHold() { LockGlobal(); }
    ~GlobalLockHold() { UnlockGlobal(); }
    GlobalLockHold(GlobalLockHold const&) = delete;
    GlobalLockHold& operator=(GlobalLockHold const&) = delete;
};

ThreadRecord* NewRecord();

inline ThreadRecord* CurrentRecord() {
    ThreadRecord* r = t_record;
    return r != nullptr ? r : NewRecord();
}

// Completes the waiters that `o` becoming available lets proceed, oldest first.
void Satisfy(Object* o);
void DropRef(Object* o);
void AbandonOwned(ThreadRecord* r);
Object* CheckHandle(Handle h);

/// The object of a handle as its kind: null with EBADF for a null handle, with EINVAL
/// for another kind of object or when the caller's other arguments are not `valid`.
template <class T> T* ObjectOf(Handle handle, Kind kind, bool valid = true) {
    Object* o = CheckHandle(handle);
    if (o == nullptr)
        return nullptr;
    if (o->kind != kind || !valid) {
        SetError(EINVAL);
        return nullptr;
    }
    return static_cast<T*>(o);
}

} // namespace core

} // namespace kernel
} // namespace win
} // namespace base
} // namespace lumo

#endif
