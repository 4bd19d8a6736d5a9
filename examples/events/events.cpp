// The Windows-style objects: wait for any of several events, as WaitForMultipleObjects
// does. A worker thread signals one event; the main thread's wait reports which one.
// Then: several signalled at once (the lowest index wins), a manual-reset event, and
// CMultiLock waiting for all of them together.
// ctest-labels: concurrency
#include <lumo/Lumo.h>

#include <cstdio>

using namespace lumo::base;
using namespace lumo::base::win;

namespace {

char const* const kNames[] = {"disk", "network", "timer"};

// Signals one event from another thread.
class CSignaller : public CThread {
public:
    explicit CSignaller(CEvent& event) : m_event(event) {}
    void Run() override { m_event.SetEvent(); }

private:
    CEvent& m_event;
};

// Waits up to `timeout` ms for any of the events and names the one that was signalled.
void WaitForAny(CEvent* events, unsigned long timeout) {
    CSyncObject::Handle const handles[] = {events[0].GetHandle(), events[1].GetHandle(),
                                           events[2].GetHandle()};
    unsigned long const result = CSyncObject::WaitForMultipleSyncObject(3, handles, false, timeout);
    if (result == CSyncObject::Wait_Timeout)
        std::printf("  nothing signalled within %lu ms\n", timeout);
    else if (result < 3)
        std::printf("  %s was signalled\n", kNames[result - CSyncObject::Wait_Object_0]);
    else
        std::printf("  the wait failed (%#lx)\n", result);
}

} // namespace

int main() {
    lumo::Initialize();
    // Anonymous auto-reset events, all unsignalled: a successful wait resets the event.
    CEvent events[3];

    std::printf("a worker thread signals one event:\n");
    CSignaller worker(events[1]);
    worker.Start();
    WaitForAny(events, 5000); // a generous limit: the program never hangs
    worker.Join(5000);
    WaitForAny(events, 0); // the wait took the signal: nothing is left

    std::printf("timer and disk signalled together:\n");
    events[2].SetEvent();
    events[0].SetEvent();
    WaitForAny(events, 0); // the lowest index is reported first
    WaitForAny(events, 0);
    WaitForAny(events, 0);

    // A manual-reset event stays signalled for every waiter until ResetEvent.
    CEvent shutdown(nullptr, false, true);
    shutdown.SetEvent();
    bool const first = shutdown.TryAcquire(0);
    bool const second = shutdown.TryAcquire(0);
    shutdown.ResetEvent();
    std::printf("manual reset: %s, %s, after ResetEvent %s\n", first ? "open" : "closed",
                second ? "open" : "closed", shutdown.TryAcquire(0) ? "open" : "closed");

    // CMultiLock waits for all the objects at once (and takes them together).
    CSyncObject* objects[] = {&events[0], &events[1], &events[2]};
    CMultiLock all(3, objects);
    events[0].SetEvent();
    events[1].SetEvent();
    std::printf("wait for all with one missing: %s\n",
                all.Lock(true, 50) == CSyncObject::Wait_Timeout ? "timed out" : "done");
    events[2].SetEvent();
    unsigned long const result = all.Lock(true, 5000);
    std::printf("wait for all: %s, locked %d %d %d\n",
                result == CSyncObject::Wait_Object_0 ? "done" : "failed", all.IsLocked(0),
                all.IsLocked(1), all.IsLocked(2));
    lumo::Terminate();
    return 0;
}
