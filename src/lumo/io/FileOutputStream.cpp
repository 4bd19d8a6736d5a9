// CFileOutputStream over IO::File: unbuffered byte and block writes, flush and close,
// with failures reported as CIOException.
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
    : m_file(location, IO::File::NOT_FOUND_CREATE,
             append ? IO::File::MODE_APPEND : IO::File::MODE_WRITE, kUnit,
             "Failed to open the underlying file.", {18, 20, 23, 25}) {}

CFileOutputStream::~CFileOutputStream() = default;

void CFileOutputStream::CheckOpen() const {
    if (!m_file.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

void CFileOutputStream::Write(char c) {
    CheckOpen();
    if (m_file->WriteByte(static_cast<unsigned char>(c)) != IO::RESULT_OK)
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
    if (m_file->Write(buf + off, len, nullptr) != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__,
                           "Failed to write the specified number of bytes to the underlying file.",
                           nullptr);
}

void CFileOutputStream::Flush() {
    CheckOpen();
    m_file.Flush(kUnit, __LINE__);
}

void CFileOutputStream::Close() {
    CheckOpen();
    m_file.Close(kUnit, __LINE__);
}

} // namespace io
} // namespace lumo
