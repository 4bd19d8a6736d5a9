// CFileWriter over IO::File: writes UTF-16 units as two bytes each, low byte first.
#include <lumo/io/FileWriter.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/FileWriter";
} // namespace

LUMO_DEFINE_CLASS(CFileWriter, "lumo::io::CFileWriter", "lumo::io::CWriter");

CFileWriter::CFileWriter(IO::Location const& location)
    : m_file(location, IO::File::NOT_FOUND_CREATE, IO::File::MODE_WRITE, kUnit,
             "Failed to open the underlying file.", {18, 20, 23, 25}) {}

CFileWriter::~CFileWriter() = default;

void CFileWriter::CheckOpen() const {
    if (!m_file.IsOpen())
        throw CIOException(kUnit, __LINE__, "Writer closed.", nullptr);
}

void CFileWriter::Write(unsigned short c) {
    CheckOpen();
    if (m_file->WriteUnit16(c) != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__,
                           "Failed to write the specified wide char to the underlying file.",
                           nullptr);
}

void CFileWriter::Write(unsigned short const* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || len == 0 ||
        !Vela::bnManager::IsReadable(buf + off, len * sizeof(unsigned short)))
        return;
    IO::Result result = IO::RESULT_OK;
#if !LUMO_LITTLE_ENDIAN
    // The file keeps units low byte first.
    unsigned char bytes[4096];
    for (unsigned long i = 0; i < len && result == IO::RESULT_OK;) {
        unsigned long n = 0;
        for (; n < sizeof bytes && i < len; ++i) {
            bytes[n++] = static_cast<unsigned char>(buf[off + i] & 0xFF);
            bytes[n++] = static_cast<unsigned char>(buf[off + i] >> 8);
        }
        result = m_file->Write(bytes, n, nullptr);
    }
#else
    result = m_file->Write(buf + off, len * sizeof(unsigned short), nullptr);
#endif
    if (result != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__,
                           "Failed to write the specified number of wide chars to the "
                           "underlying file.",
                           nullptr);
}

void CFileWriter::Flush() {
    CheckOpen();
    m_file.Flush(kUnit, __LINE__);
}

void CFileWriter::Close() {
    CheckOpen();
    m_file.Close(kUnit, __LINE__);
}

} // namespace io
} // namespace lumo
