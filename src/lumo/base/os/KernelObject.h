// Internal: the portable interface of the kernel wait objects behind lumo::base::win
// (mutexes, events, semaphores, threads, TLS slots, waits on one or many).
#ifndef LUMO_BASE_OS_KERNELOBJECT_H
#define LUMO_BASE_OS_KERNELOBJECT_H

// The kernel wait objects behind lumo::base::win: mutexes with owner, recursion and
// abandonment, auto- and manual-reset events, semaphores, threads, and waits on one
// or several of them with a millisecond timeout. Portable interface; one backend per
// platform (KernelObject_POSIX.cpp: an emulation on pthreads; KernelObject_WIN32.cpp:
// the real kernel objects). Internal to the library: no operating-system header here.
//
// The functions report failure as Windows does: a null handle, false or WaitFailed,
// with the reason in LastError() (errno values on POSIX).

namespace lumo {
namespace base {
namespace win {
namespace kernel {

// A reference to a kernel object, closed with CloseObject.
typedef void* Handle;

constexpr unsigned long Infinite = 0xFFFFFFFFul;
constexpr unsigned long WaitObject0 = 0;
constexpr unsigned long WaitAbandoned0 = 0x80;
constexpr unsigned long WaitTimeout = 0x102;
constexpr unsigned long WaitFailed = 0xFFFFFFFFul;
constexpr unsigned long MaximumWaitObjects = 64;
constexpr long MaximumSemaphoreCount = 0x7FFFFFFF;
constexpr unsigned long TlsOutOfIndexes = 0xFFFFFFFFul;

// The calling thread's error code of the last failed call.
unsigned long LastError();

// Mutexes, events and semaphores. A non-empty name shares the object with every
// other holder of that name: within the process for mutexes and events, between
// processes for semaphores. Opening an existing object ignores the initial state.
Handle NewMutex(char const* name, bool initialOwner);
Handle NewEvent(char const* name, bool manualReset, bool initialState);
Handle NewSemaphore(char const* name, long initialCount, long maximumCount);
bool CloseObject(Handle handle);

// Fails (EPERM) when the calling thread does not own the mutex.
bool ReleaseMutexObject(Handle handle);
bool SetEventObject(Handle handle);
bool ResetEventObject(Handle handle);
// Fails (EOVERFLOW) when the count would pass the maximum; `previous` may be null.
bool ReleaseSemaphoreObject(Handle handle, long count, long* previous);

// WaitObject0, WaitAbandoned0 (a mutex whose owner ended while holding it),
// WaitTimeout or WaitFailed. The wait on several objects takes ownership of what it
// waits for (mutex, auto-reset event, semaphore count); with waitAll it takes all of
// them at once or none. The result is offset by the index of the object that
// satisfied the wait (the lowest abandoned index for waitAll).
unsigned long WaitForOne(Handle handle, unsigned long timeout);
unsigned long WaitForMany(unsigned long count, Handle const* handles, bool waitAll,
                          unsigned long timeout);

// Threads: the handle is signalled when the routine has returned (or the thread
// exited); mutexes the thread still owns are abandoned before that.
// The handle and the thread's number are stored through `handle` and `id` before the
// thread runs (so that a thread that ends at once cannot race the caller's stores);
// on failure null is stored and returned. A suspended thread waits before its
// routine until ResumeThreadObject.
typedef unsigned int (*ThreadRoutine)(void* argument);
Handle NewThread(ThreadRoutine routine, void* argument, bool suspended, Handle* handle,
                 unsigned long* id);
bool ResumeThreadObject(Handle thread);
bool SetThreadPriorityLevel(Handle thread, long level);
bool GetThreadPriorityLevel(Handle thread, long* level);
bool TerminateThreadObject(Handle thread, unsigned long exitCode);
[[noreturn]] void ExitCurrentThread(unsigned long exitCode);

// Thread-local slots.
unsigned long TlsNewIndex();
bool TlsFreeIndex(unsigned long index);
// Sets LastError() to 0 on success, so that a stored null can be told from a failure.
void* TlsGet(unsigned long index);
bool TlsSet(unsigned long index, void* value);

// Kernel objects alive in the process (diagnostics).
unsigned long LiveObjectCount();

} // namespace kernel
} // namespace win
} // namespace base
} // namespace lumo

#endif
