// CFileReader: reads a file of raw UTF-16 units (two bytes each, low byte first, no
// byte-order mark), with counts and positions in units.
#ifndef LUMO_IO_FILEREADER_H
#define LUMO_IO_FILEREADER_H

#include <lumo/io/Reader.h>
#include <lumo/io/detail/UnitFile.h>
#include <vela/File.h>
#include <vela/Location.h>

namespace lumo {
namespace io {

/// Reads a file of UTF-16 units stored as they are: two bytes a unit, low byte
/// first, no byte-order mark. Counts and positions are in units. Every operation
/// throws CIOException "Reader closed." once closed. Failed file calls throw
/// CIOException "Failed to read the specified number of wide chars from the underlying
/// file.", "Failed to get the number of available bytes of the underlying file.",
/// "Failed to get the length of the underlying file." or "Failed to seek in the
/// underlying file.".
class LUMO_API CFileReader : public CReader {
    LUMO_DECLARE_CLASS(CFileReader);

public:
    /// As CFileInputStream, except that other open failures throw "Failed to open the
    /// underlying file."; a file of odd length throws "Invalid unicode file: the file
    /// length must be even.".
    explicit CFileReader(IO::Location const& location);
    ~CFileReader() override;

    CFileReader(CFileReader const&) = delete;
    CFileReader& operator=(CFileReader const&) = delete;

    /// -1 at the end. A null buffer skips instead.
    long Read(unsigned short* buf, unsigned long off, unsigned long len) override;
    long Read(unsigned short* buf, unsigned long len) override;
    long Read() override;
    /// Skips at most to the end and returns the number of units skipped.
    long Skip(unsigned long n) override;
    /// Back to the start of the file; CIOException "Failed to set the position of file
    /// pointer in the underlying file." when that fails.
    void Reset() override;
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
