// CFileOutputStream: writes bytes to a file named by a location, unbuffered, creating a
// missing file and emptying an existing one unless asked to append.
#ifndef LUMO_IO_FILEOUTPUTSTREAM_H
#define LUMO_IO_FILEOUTPUTSTREAM_H

#include <lumo/io/OutputStream.h>
#include <lumo/io/detail/UnitFile.h>
#include <vela/File.h>
#include <vela/Location.h>

namespace lumo {
namespace io {

/// Writes bytes to a file, unbuffered (wrap it in a CBufferedOutputStream for small
/// writes). A missing file is created; an existing one is emptied first unless
/// `append` is given, in which case every write goes to its end. Every operation
/// throws CIOException "Stream closed." once closed. Failed writes throw CIOException
/// "Failed to write the specified byte the the underlying file." (one byte) or
/// "Failed to write the specified number of bytes to the underlying file.".
class LUMO_API CFileOutputStream : public COutputStream {
    LUMO_DECLARE_CLASS(CFileOutputStream);

public:
    /// An empty or illegal location throws CIOException "Illegal file location.";
    /// a refused permission "Access denied."; any other failure "Failed to open the
    /// underlying file.".
    CFileOutputStream(IO::Location const& location, bool append);
    ~CFileOutputStream() override;

    CFileOutputStream(CFileOutputStream const&) = delete;
    CFileOutputStream& operator=(CFileOutputStream const&) = delete;

    /// A null block writes nothing.
    void Write(char const* buf, unsigned long off, unsigned long len) override;
    void Write(char const* buf, unsigned long len) override;
    void Write(char c) override;
    /// Hands the written data to the platform; CIOException "Failed to flush the
    /// underlying file." when that fails.
    void Flush() override;
    /// Closes the file; CIOException "Failed to close the underlying file." when the
    /// platform reports a failure.
    void Close() override;

private:
    void CheckOpen() const;

    detail::UnitFile<char> m_file;
};

} // namespace io
} // namespace lumo

#endif
