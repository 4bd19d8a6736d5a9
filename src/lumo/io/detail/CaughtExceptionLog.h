// Internal: the XML classes log a caught lower-level exception to the library's debug
// output before replacing it with their own, so the root cause is not lost.
#ifndef LUMO_IO_DETAIL_CAUGHTEXCEPTIONLOG_H
#define LUMO_IO_DETAIL_CAUGHTEXCEPTIONLOG_H

#include <lumo/base/Exception.h>
#include <lumo/io/DebugPrintStream.h>

namespace lumo {
namespace io {
namespace detail {

/// Prints `caught` to the debug output; a failure of the printing itself is dropped,
/// since the caller is about to throw the exception that matters.
inline void LogCaught(base::CException const& caught) noexcept {
    try {
        CDebugPrintStream out;
        caught.Print(out);
    } catch (...) {
    }
}

} // namespace detail
} // namespace io
} // namespace lumo

#endif
