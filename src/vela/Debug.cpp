// DBPrintf and DBSetOutput: formats into a stack buffer (the heap only for long text) and
// hands it to the installed sink, swapped through two alternating slots, or to stderr.
#include <vela/Debug.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace Vela {

namespace {
struct Sink {
    DBOutput output;
    void* context;
};
std::atomic<Sink*> g_sink{nullptr};
Sink g_sinks[2];
std::atomic<int> g_next{0};
} // namespace

void DBSetOutput(DBOutput output, void* context) {
    if (output == nullptr) {
        g_sink.store(nullptr);
        return;
    }
    // Two slots, alternated, so a writer never sees a half-written sink.
    int const slot = g_next.fetch_add(1) & 1;
    g_sinks[slot] = Sink{output, context};
    g_sink.store(&g_sinks[slot]);
}

int DBPrintf(char const* format, ...) {
    if (format == nullptr)
        return 0;
    char small[512];
    va_list args;
    va_start(args, format);
    int const length = std::vsnprintf(small, sizeof small, format, args);
    va_end(args);
    if (length < 0)
        return length;
    char* text = small;
    if (static_cast<std::size_t>(length) >= sizeof small) {
        text = static_cast<char*>(std::malloc(static_cast<std::size_t>(length) + 1));
        if (text == nullptr)
            return -1;
        va_start(args, format);
        std::vsnprintf(text, static_cast<std::size_t>(length) + 1, format, args);
        va_end(args);
    }
    Sink* sink = g_sink.load();
    if (sink != nullptr) {
        sink->output(text, sink->context);
    } else {
        std::fputs(text, stderr);
        std::fflush(stderr);
    }
    if (text != small)
        std::free(text);
    return length;
}

} // namespace Vela
