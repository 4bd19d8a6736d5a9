// Helpers shared by the concurrency tests.
#ifndef LUMO_TESTS_SUPPORT_CONCURRENCY_H
#define LUMO_TESTS_SUPPORT_CONCURRENCY_H

#include <lumo/base/Exception.h>

#include <chrono>
#include <string>
#include <thread>

namespace lumotest {

// The description of the exception of type E that f throws, "<none>" when it throws
// nothing; any other exception fails the test by escaping.
template <class E, class F> std::string Thrown(F&& f) {
    try {
        f();
    } catch (E const& e) {
        char const* d = e.GetErrorDescription();
        return d != nullptr ? d : "<no description>";
    }
    return "<none>";
}

// Polls until pred holds; false when it still does not after `limit` (a hang guard,
// not a timing assertion).
template <class P>
bool WaitUntil(P&& pred, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    auto const end = std::chrono::steady_clock::now() + limit;
    while (!pred()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

// Whether another thread can take the waitable object `o` at once (and gives it back
// if so).
template <class S> bool FreeForOthers(S& o) {
    bool free = false;
    std::thread([&] {
        free = o.TryAcquire(0);
        if (free)
            o.Release();
    }).join();
    return free;
}

} // namespace lumotest

#endif
