// CFileInputStream over IO::File: reads and skips of at most 0x7FFFFFFF bytes a call, an
// available count that refuses sizes beyond 32 bits, and failures as CIOException.
#include <lumo/io/FileInputStream.h>

#include "FileCore.h"
#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include <cstdint>

namespace lumo {
namespace io {

namespace {

char const kUnit[] = "lumo/io/FileInputStream";

// Results are signed 32-bit: one call moves at most this much.
unsigned long const kMaxBlock = 0x7FFFFFFF;

} // namespace

LUMO_DEFINE_CLASS(CFileInputStream, "lumo::io::CFileInputStream", "lumo::io::CInputStream");

CFileInputStream::CFileInputStream(IO::Location const& location)
    : m_file(location, IO::File::NOT_FOUND_FAIL) {
    detail::OpenFile(m_file, location, IO::File::MODE_READ, kUnit,
                     "An error occured while trying to open file.", {25, 27, 30, 32});
}

CFileInputStream::~CFileInputStream() {}

void CFileInputStream::CheckOpen() const {
    if (!m_file.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

unsigned long CFileInputStream::GetAvailable() const {
    CheckOpen();
    std::uint64_t count = 0;
    if (m_file.GetAvailable(&count) != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__,
                           "Failed to get the number of available bytes of the underlying file.",
                           nullptr);
    if (count > 0xFFFFFFFFull)
        throw CIOException(kUnit, __LINE__, "64-bit file sizes not supported", nullptr);
    return static_cast<unsigned long>(count);
}

long CFileInputStream::Read() {
    CheckOpen();
    unsigned char byte = 0;
    IO::Result const result = m_file.ReadByte(&byte);
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
    if (len > kMaxBlock)
        len = kMaxBlock;
    unsigned long done = 0;
    IO::Result const result = m_file.Read(buf + off, len, &done);
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
    if (n == 0)
        return 0;
    std::uint64_t available = 0;
    if (m_file.GetAvailable(&available) != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__,
                           "Failed to get the number of available bytes of the underlying file.",
                           nullptr);
    std::uint64_t skip = n < available ? n : available;
    if (skip > kMaxBlock)
        skip = kMaxBlock;
    if (m_file.Seek(static_cast<std::int64_t>(skip), IO::File::SEEK_FROM_CURRENT) != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__, "Failed to seek in the underlying file.", nullptr);
    return static_cast<long>(skip);
}

void CFileInputStream::Reset() {
    CheckOpen();
    detail::RewindFile(m_file, kUnit, __LINE__);
}

void CFileInputStream::Close() {
    CheckOpen();
    detail::CloseFile(m_file, kUnit, __LINE__);
}

} // namespace io
} // namespace lumo
