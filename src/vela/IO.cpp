// IO::Init, IO::End and the init count: the POSIX file layer keeps no global state, so
// starting and stopping it only counts the callers.
#include <vela/IO.h>

#include <atomic>

namespace IO {

namespace {
std::atomic<long> g_initCount{0};
} // namespace

// The POSIX file layer keeps no global state; the count records who started it.
void Init(bool) {
    ++g_initCount;
}

void End() {
    long seen = g_initCount.load();
    while (seen > 0 && !g_initCount.compare_exchange_weak(seen, seen - 1)) {
    }
}

long GetInitCount() {
    return g_initCount.load();
}

} // namespace IO
