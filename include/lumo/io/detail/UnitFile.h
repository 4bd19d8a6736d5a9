// The file that the file streams, readers and writers hold: an IO::File opened from a
// location, moved through in units of one byte or one UTF-16 unit, with its failures
// raised as CIOException under the holder's name. Internal: those classes' own headers
// are its only users.
#ifndef LUMO_IO_DETAIL_UNITFILE_H
#define LUMO_IO_DETAIL_UNITFILE_H

#include <lumo/io/IOException.h>
#include <vela/File.h>
#include <vela/Location.h>

#include <cstdint>

namespace lumo {
namespace io {
namespace detail {

/// Unit is char or unsigned short (two bytes in the file). Every exception names the
/// caller's unit and line. A failed constructor destroys the IO::File it built; the
/// destructor is the IO::File's, which closes a file still open.
template <class Unit> class UnitFile {
public:
    /// Results are signed 32-bit and the file counts bytes: one call moves at most
    /// this many units.
    static constexpr unsigned long kMaxUnitsPerCall = 0x7FFFFFFFul / sizeof(Unit);

    /// The lines the opening steps report, in the order they run.
    struct OpenLines {
        int illegal;
        int status;
        int denied;
        int failed;
    };

    /// Builds the IO::File with `policy` and opens it in `mode`: "Illegal file
    /// location." for an empty or illegal location, no message when the file reports
    /// a bad status, "Access denied.", else `openFailed`.
    UnitFile(IO::Location const& location, IO::File::NotFoundPolicy policy, IO::File::OpenMode mode,
             char const* unit, char const* openFailed, OpenLines const& lines)
        : m_file(location, policy) {
        if (location.IsEmpty() || !location.IsLegal())
            throw CIOException(unit, lines.illegal, "Illegal file location.", nullptr);
        if (m_file.GetStatus() != IO::RESULT_OK)
            throw CIOException(unit, lines.status, nullptr, nullptr);
        IO::Result const result = m_file.Open(mode);
        if (result == IO::RESULT_ACCESS_DENIED)
            throw CIOException(unit, lines.denied, "Access denied.", nullptr);
        if (result != IO::RESULT_OK)
            throw CIOException(unit, lines.failed, openFailed, nullptr);
    }

    bool IsOpen() const noexcept { return m_file.IsOpen(); }
    IO::File* operator->() noexcept { return &m_file; }

    /// Bytes from the position to the end.
    std::uint64_t AvailableBytes(char const* unit, int line) {
        std::uint64_t count = 0;
        if (m_file.GetAvailable(&count) != IO::RESULT_OK)
            throw CIOException(unit, line,
                               "Failed to get the number of available bytes of the underlying "
                               "file.",
                               nullptr);
        return count;
    }

    /// Moves on by up to n whole units, stopping at the end and after
    /// kMaxUnitsPerCall; returns how many units it moved. n = 0 touches nothing.
    long Skip(unsigned long n, char const* unit, int line) {
        if (n == 0)
            return 0;
        std::uint64_t units = AvailableBytes(unit, line) / sizeof(Unit);
        if (units > n)
            units = n;
        if (units > kMaxUnitsPerCall)
            units = kMaxUnitsPerCall;
        if (m_file.Seek(static_cast<std::int64_t>(units * sizeof(Unit)),
                        IO::File::SEEK_FROM_CURRENT) != IO::RESULT_OK)
            throw CIOException(unit, line, "Failed to seek in the underlying file.", nullptr);
        return static_cast<long>(units);
    }

    void Rewind(char const* unit, int line) {
        if (m_file.SetPosition(0) != IO::RESULT_OK)
            throw CIOException(unit, line,
                               "Failed to set the position of file pointer in the underlying "
                               "file.",
                               nullptr);
    }

    void Flush(char const* unit, int line) {
        if (m_file.Flush() != IO::RESULT_OK)
            throw CIOException(unit, line, "Failed to flush the underlying file.", nullptr);
    }

    void Close(char const* unit, int line) {
        if (m_file.Close() != IO::RESULT_OK)
            throw CIOException(unit, line, "Failed to close the underlying file.", nullptr);
    }

private:
    IO::File m_file;
};

} // namespace detail
} // namespace io
} // namespace lumo

#endif
