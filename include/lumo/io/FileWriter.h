// CFileWriter: writes UTF-16 units to a file as they are (two bytes each, low byte first,
// no byte-order mark), creating or emptying the file.
#ifndef LUMO_IO_FILEWRITER_H
#define LUMO_IO_FILEWRITER_H

#include <lumo/io/Writer.h>
#include <lumo/io/detail/UnitFile.h>
#include <vela/File.h>
#include <vela/Location.h>

namespace lumo {
namespace io {

/// Writes UTF-16 units to a file as they are: two bytes a unit, low byte first, no
/// byte-order mark. A missing file is created, an existing one emptied first. Every
/// operation throws CIOException "Writer closed." once closed; a failed write "Failed
/// to write the specified wide char to the underlying file." (one unit) or "Failed to
/// write the specified number of wide chars to the underlying file.".
class LUMO_API CFileWriter : public CWriter {
    LUMO_DECLARE_CLASS(CFileWriter);

public:
    /// An empty or illegal location throws CIOException "Illegal file location.";
    /// a refused permission "Access denied."; any other failure "Failed to open the
    /// underlying file.".
    explicit CFileWriter(IO::Location const& location);
    ~CFileWriter() override;

    CFileWriter(CFileWriter const&) = delete;
    CFileWriter& operator=(CFileWriter const&) = delete;

    using CWriter::Write;
    /// A null block writes nothing.
    void Write(unsigned short const* buf, unsigned long off, unsigned long len) override;
    void Write(unsigned short c) override;
    /// Hands the written data to the platform; CIOException "Failed to flush the
    /// underlying file." when that fails.
    void Flush() override;
    /// Closes the file; CIOException "Failed to close the underlying file." when the
    /// platform reports a failure.
    void Close() override;

private:
    void CheckOpen() const;

    detail::UnitFile<unsigned short> m_file;
};

} // namespace io
} // namespace lumo

#endif
