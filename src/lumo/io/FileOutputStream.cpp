#include <lumo/io/FileOutputStream.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/FileOutputStream";
} // namespace

LUMO_DEFINE_CLASS(CFileOutputStream, "lumo::io::CFileOutputStream", "lumo::io::COutputStream");

CFileOutputStream::CFileOutputStream(IO::Location const& location, bool append)
    : m_file(location, IO::File::NOT_FOUND_CREATE) {
    if (location.IsEmpty() || !location.IsLegal())
        throw CIOException(kUnit, __LINE__, "Illegal file location.", nullptr);
    if (m_file.GetStatus() != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__, nullptr, nullptr);
    IO::Result const result = m_file.Open(append ? IO::File::MODE_APPEND : IO::File::MODE_WRITE);
    if (result == IO::RESULT_ACCESS_DENIED)
        throw CIOException(kUnit, __LINE__, "Access denied.", nullptr);
    if (result != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__, "Failed to open the underlying file.", nullptr);
}

CFileOutputStream::~CFileOutputStream() {}

void CFileOutputStream::CheckOpen() const {
    if (!m_file.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

void CFileOutputStream::Write(char c) {
    CheckOpen();
    if (m_file.WriteByte(static_cast<unsigned char>(c)) != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__,
                           "Failed to write the specified byte the the underlying file.", nullptr);
}

void CFileOutputStream::Write(char const* buf, unsigned long len) {
    Write(buf, 0, len);
}

void CFileOutputStream::Write(char const* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || len == 0 || !Vela::bnManager::IsReadable(buf + off, len))
        return;
    if (m_file.Write(buf + off, len, nullptr) != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__,
                           "Failed to write the specified number of bytes to the underlying file.",
                           nullptr);
}

void CFileOutputStream::Flush() {
    CheckOpen();
    if (m_file.Flush() != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__, "Failed to flush the underlying file.", nullptr);
}

void CFileOutputStream::Close() {
    CheckOpen();
    if (m_file.Close() != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__, "Failed to close the underlying file.", nullptr);
}

} // namespace io
} // namespace lumo
