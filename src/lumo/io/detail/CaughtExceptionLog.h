// Internal: the XML classes log a caught lower-level exception to the library's debug
// output before replacing it with their own, so the root cause is not lost; the
// readers share one mapping of failures inside a read to their own messages.
#ifndef LUMO_IO_DETAIL_CAUGHTEXCEPTIONLOG_H
#define LUMO_IO_DETAIL_CAUGHTEXCEPTIONLOG_H

#include <lumo/base/Exception.h>
#include <lumo/io/DebugPrintStream.h>
#include <lumo/io/IOException.h>

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

/// Runs `body` for an XML read of `unit`: a CIOException passes unchanged, a
/// CMemoryException becomes CIOException "Memory full.", and any other library
/// exception is logged and becomes CIOException `failure` (or passes when `failure`
/// is null).
template <class F>
auto MapReadFailures(char const* unit, int line, char const* failure, F&& body)
    -> decltype(body()) {
    try {
        return body();
    } catch (CIOException const&) {
        throw;
    } catch (base::CMemoryException const& e) {
        LogCaught(e);
        throw CIOException(unit, static_cast<unsigned long>(line), "Memory full.", nullptr);
    } catch (base::CException const& e) {
        if (failure == nullptr)
            throw;
        LogCaught(e);
        throw CIOException(unit, static_cast<unsigned long>(line), failure, nullptr);
    }
}

} // namespace detail
} // namespace io
} // namespace lumo

#endif
