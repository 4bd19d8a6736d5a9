// CFileInputStream over IO::File: reads and skips of at most 0x7FFFFFFF bytes a call, an
// available count that refuses sizes beyond 32 bits, and failures as CIOException.
#include <lumo/io/FileInputStream.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

namespace lumo {
namespace io {

namespace {

char const kUnit[] = "lumo/io/FileInputStream";

} // namespace

LUMO_DEFINE_CLASS(CFileInputStream, "lumo::io::CFileInputStream", "lumo::io::CInputStream");

CFileInputStream::CFileInputStream(IO::Location const& location)
    : m_file(location, IO::File::NOT_FOUND_FAIL, IO::File::MODE_READ, kUnit,
             "An error occured while trying to open file.", {25, 27, 30, 32}) {}

CFileInputStream::~CFileInputStream() = default;

void CFileInputStream::CheckOpen() const {
    if (!m_file.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

unsigned long CFileInputStream::GetAvailable() const {
    CheckOpen();
    std::uint64_t const count = m_file.AvailableBytes(kUnit, __LINE__);
    if (count > 0xFFFFFFFFull)
        throw CIOException(kUnit, __LINE__, "64-bit file sizes not supported", nullptr);
    return static_cast<unsigned long>(count);
}

long CFileInputStream::Read() {
    CheckOpen();
    unsigned char byte = 0;
    IO::Result const result = m_file->ReadByte(&byte);
    if (result == IO::RESULT_END_OF_DATA)
        return EOS;
    if (result != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__,
                           "Failed to read the specified number of bytes from the underlying file.",
                           nullptr);
    return static_cast<long>(static_cast<signed char>(byte));
}

long CFileInputStream::Read(char* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CFileInputStream::Read(char* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || !Vela::bnManager::IsWritable(buf + off, len))
        return len > 0 ? Skip(len) : 0;
    if (len == 0)
        return 0;
    if (len > m_file.kMaxUnitsPerCall)
        len = m_file.kMaxUnitsPerCall;
    unsigned long done = 0;
    IO::Result const result = m_file->Read(buf + off, len, &done);
    if (result == IO::RESULT_END_OF_DATA)
        return -1;
    if (result != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__,
                           "Failed to read the specified number of bytes from the underlying file.",
                           nullptr);
    return static_cast<long>(done);
}

long CFileInputStream::Skip(unsigned long n) {
    CheckOpen();
    return m_file.Skip(n, kUnit, __LINE__);
}

void CFileInputStream::Reset() {
    CheckOpen();
    m_file.Rewind(kUnit, __LINE__);
}

void CFileInputStream::Close() {
    CheckOpen();
    m_file.Close(kUnit, __LINE__);
}

} // namespace io
} // namespace lumo
