// Internal: the shared open, rewind, flush and close steps of the file streams, readers
// and writers, raising exceptions under the calling unit's name and lines.
#ifndef LUMO_SRC_IO_FILECORE_H
#define LUMO_SRC_IO_FILECORE_H

// Shared internals of the file streams, readers and writers. Callers pass their
// own source file string and line so that the exceptions name the calling unit.

#include <lumo/io/IOException.h>
#include <vela/File.h>
#include <vela/Location.h>

namespace lumo {
namespace io {
namespace detail {

// Line numbers reported by OpenFile, in the order its checks run.
struct OpenLines {
    int illegal;
    int status;
    int denied;
    int failed;
};

inline void OpenFile(IO::File& file, IO::Location const& location, IO::File::OpenMode mode,
                     char const* unit, char const* openFailed, OpenLines const& lines) {
    if (location.IsEmpty() || !location.IsLegal())
        throw CIOException(unit, lines.illegal, "Illegal file location.", nullptr);
    if (file.GetStatus() != IO::RESULT_OK)
        throw CIOException(unit, lines.status, nullptr, nullptr);
    IO::Result const result = file.Open(mode);
    if (result == IO::RESULT_ACCESS_DENIED)
        throw CIOException(unit, lines.denied, "Access denied.", nullptr);
    if (result != IO::RESULT_OK)
        throw CIOException(unit, lines.failed, openFailed, nullptr);
}

inline void RewindFile(IO::File& file, char const* unit, int line) {
    if (file.SetPosition(0) != IO::RESULT_OK)
        throw CIOException(unit, line,
                           "Failed to set the position of file pointer in the underlying file.",
                           nullptr);
}

inline void FlushFile(IO::File& file, char const* unit, int line) {
    if (file.Flush() != IO::RESULT_OK)
        throw CIOException(unit, line, "Failed to flush the underlying file.", nullptr);
}

inline void CloseFile(IO::File& file, char const* unit, int line) {
    if (file.Close() != IO::RESULT_OK)
        throw CIOException(unit, line, "Failed to close the underlying file.", nullptr);
}

} // namespace detail
} // namespace io
} // namespace lumo

#endif
