// CNativeFileOutputStream: writes bytes straight to a file named by a UTF-16 path through
// the platform's own file calls; the file is created when missing, never truncated.
#ifndef LUMO_IO_NATIVEFILEOUTPUTSTREAM_H
#define LUMO_IO_NATIVEFILEOUTPUTSTREAM_H

#include <lumo/io/OutputStream.h>

namespace lumo {
namespace io {

class CNativeFile;

/// Writes bytes straight to a file through the platform's own file calls, without
/// buffering. The file is created when missing and never truncated: without
/// `append` writing starts at offset 0 and overwrites, so bytes of an older, longer
/// file beyond the last one written remain. With `append` writing starts at the end
/// the file had when it was opened.
class LUMO_API CNativeFileOutputStream : public COutputStream {
    LUMO_DECLARE_CLASS(CNativeFileOutputStream);

public:
    /// A null or empty (or not well-formed) UTF-16 path throws
    /// CIllegalArgumentException "Invalid file path."; a refused permission
    /// CIOException "Access denied."; any other failure "Failed to open the specified
    /// file."; with `append`, "Failed to move the file pointer to the end of the file."
    /// when the end cannot be reached.
    CNativeFileOutputStream(unsigned short const* path, bool append);
    /// Closes the file if still open.
    ~CNativeFileOutputStream() override;

    CNativeFileOutputStream(CNativeFileOutputStream const&) = delete;
    CNativeFileOutputStream& operator=(CNativeFileOutputStream const&) = delete;

    /// CIOException "Stream closed." once closed; "Failed to write the specified byte
    /// the the underlying file." when not every byte could be written.
    void Write(char const* buf, unsigned long off, unsigned long len) override;
    void Write(char const* buf, unsigned long len) override;
    void Write(char c) override;
    /// Makes the platform write the file's data through to the device; CIOException
    /// "Stream closed." once closed, "Failed to flush the buffers of the underlying
    /// file." when the platform fails (files that cannot be synchronised, such as pipes,
    /// pass).
    void Flush() override;
    /// Never throws; a second Close does nothing.
    void Close() override;

private:
    CNativeFile* m_impl;
};

} // namespace io
} // namespace lumo

#endif
