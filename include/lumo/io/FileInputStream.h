// CFileInputStream: reads the bytes of a file named by a location, unbuffered, with
// available count, skip and reset to the start.
#ifndef LUMO_IO_FILEINPUTSTREAM_H
#define LUMO_IO_FILEINPUTSTREAM_H

#include <lumo/io/InputStream.h>
#include <lumo/io/detail/UnitFile.h>
#include <vela/File.h>
#include <vela/Location.h>

namespace lumo {
namespace io {

/// Reads the bytes of a file, unbuffered (wrap it in a CBufferedInputStream for
/// small reads). Every operation throws CIOException "Stream closed." once closed.
/// Failed file calls throw CIOException "Failed to read the specified number of bytes
/// from the underlying file.", "Failed to get the number of available bytes of the
/// underlying file." or "Failed to seek in the underlying file.".
class LUMO_API CFileInputStream : public CInputStream {
    LUMO_DECLARE_CLASS(CFileInputStream);

public:
    /// An empty or illegal location throws CIOException "Illegal file location.";
    /// a refused permission "Access denied."; any other failure (a missing file, a
    /// directory) "An error occured while trying to open file.".
    explicit CFileInputStream(IO::Location const& location);
    ~CFileInputStream() override;

    CFileInputStream(CFileInputStream const&) = delete;
    CFileInputStream& operator=(CFileInputStream const&) = delete;

    /// Bytes from the position to the end; a count of 2^32 or more throws
    /// "64-bit file sizes not supported".
    unsigned long GetAvailable() const override;
    /// -1 at the end. A null buffer skips instead.
    long Read(char* buf, unsigned long off, unsigned long len) override;
    long Read(char* buf, unsigned long len) override;
    /// The byte sign-extended, or EOS at the end.
    long Read() override;
    /// Skips at most to the end and returns the number of bytes skipped.
    long Skip(unsigned long n) override;
    /// Back to the start of the file; CIOException "Failed to set the position of file
    /// pointer in the underlying file." when that fails.
    void Reset() override;
    /// Closes the file; CIOException "Failed to close the underlying file." when the
    /// platform reports a failure.
    void Close() override;

private:
    void CheckOpen() const;

    mutable detail::UnitFile<char> m_file;
};

} // namespace io
} // namespace lumo

#endif
