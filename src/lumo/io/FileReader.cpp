// CFileReader over IO::File: reads and skips whole UTF-16 units (two bytes, low first),
// bounded so that byte counts stay within signed 32-bit results.
#include <lumo/io/FileReader.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include <cstdint>

namespace lumo {
namespace io {

namespace {

char const kUnit[] = "lumo/io/FileReader";
char const kReadFailed[] =
    "Failed to read the specified number of wide chars from the underlying file.";

} // namespace

LUMO_DEFINE_CLASS(CFileReader, "lumo::io::CFileReader", "lumo::io::CReader");

CFileReader::CFileReader(IO::Location const& location)
    : m_file(location, IO::File::NOT_FOUND_FAIL, IO::File::MODE_READ, kUnit,
             "Failed to open the underlying file.", {28, 30, 33, 35}) {
    // A throw from here on destroys m_file, which closes it.
    std::uint64_t length = 0;
    if (m_file->GetDataLength(&length) != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__, "Failed to get the length of the underlying file.",
                           nullptr);
    if (length % 2 != 0)
        throw CIOException(kUnit, __LINE__, "Invalid unicode file: the file length must be even.",
                           nullptr);
}

CFileReader::~CFileReader() = default;

void CFileReader::CheckOpen() const {
    if (!m_file.IsOpen())
        throw CIOException(kUnit, __LINE__, "Reader closed.", nullptr);
}

long CFileReader::Read() {
    CheckOpen();
    unsigned short unit = 0;
    IO::Result const result = m_file->ReadUnit16(&unit);
    if (result == IO::RESULT_END_OF_DATA)
        return EOS;
    if (result != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__, kReadFailed, nullptr);
    return static_cast<long>(unit);
}

long CFileReader::Read(unsigned short* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CFileReader::Read(unsigned short* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || !Vela::bnManager::IsWritable(buf + off, len * sizeof(unsigned short)))
        return len > 0 ? Skip(len) : 0;
    if (len == 0)
        return 0;
    if (len > m_file.kMaxUnitsPerCall)
        len = m_file.kMaxUnitsPerCall;
    unsigned short* const target = buf + off;
    unsigned long done = 0;
    IO::Result const result = m_file->Read(target, len * 2, &done);
    if (result == IO::RESULT_END_OF_DATA)
        return -1;
    if (result != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__, kReadFailed, nullptr);
    if (done % 2 != 0) {
        // The file ends inside a unit (it changed since it was opened): keep the
        // half unit for the next read, which then fails.
        if (done == 1 || m_file->Seek(-1, IO::File::SEEK_FROM_CURRENT) != IO::RESULT_OK)
            throw CIOException(kUnit, __LINE__, kReadFailed, nullptr);
    }
    unsigned long const units = done / 2;
#if !LUMO_LITTLE_ENDIAN
    // The file keeps units low byte first.
    for (unsigned long i = 0; i < units; ++i)
        target[i] = static_cast<unsigned short>((target[i] >> 8) | (target[i] << 8));
#endif
    return static_cast<long>(units);
}

long CFileReader::Skip(unsigned long n) {
    CheckOpen();
    return m_file.Skip(n, kUnit, __LINE__);
}

void CFileReader::Reset() {
    CheckOpen();
    m_file.Rewind(kUnit, __LINE__);
}

void CFileReader::Close() {
    CheckOpen();
    m_file.Close(kUnit, __LINE__);
}

} // namespace io
} // namespace lumo
