// CBufferedReader: serves units from its UTF-16 buffer, moving the unread rest to the
// front before each refill, and sends large requests straight to the wrapped reader.
#include <lumo/io/BufferedReader.h>

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Memory.h>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/BufferedReader";
} // namespace

LUMO_DEFINE_CLASS(CBufferedReader, "lumo::io::CBufferedReader", "lumo::io::CReader");

CBufferedReader::CBufferedReader(CReader* reader, unsigned long size) : m_reader(reader) {
    Init(size);
}

CBufferedReader::CBufferedReader(base::CRef<CReader> const& reader, unsigned long size)
    : m_reader(reader) {
    Init(size);
}

void CBufferedReader::Init(unsigned long size) {
    if (m_reader.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid reader.");
    if (size == 0)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid buffer size.");
    m_buffer.Allocate(size, kUnit, __LINE__);
}

CBufferedReader::~CBufferedReader() = default;

void CBufferedReader::CheckOpen() const {
    if (!m_reader.IsOpen())
        throw CIOException(kUnit, __LINE__, "Reader closed.", nullptr);
}

bool CBufferedReader::FillBuffer() {
    return m_buffer.Refill(*m_reader) != -1;
}

long CBufferedReader::Read() {
    CheckOpen();
    return m_buffer.ReadAhead(*m_reader);
}

long CBufferedReader::Read(unsigned short* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CBufferedReader::Read(unsigned short* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || !Vela::bnManager::IsWritable(buf + off, len * sizeof(unsigned short)))
        return len > 0 ? Skip(len) : 0;
    if (len == 0)
        return 0;
    if (len > m_buffer.Capacity())
        return m_reader->Read(buf, off, len);
    unsigned long const waiting = m_buffer.Take(buf + off, len);
    if (waiting == len)
        return static_cast<long>(len);
    bool const more = FillBuffer();
    // Unlike the byte stream, the wrapped reader's end shows when nothing was read.
    if (!m_buffer.HasWaiting())
        return waiting == 0 && !more ? -1 : static_cast<long>(waiting);
    return static_cast<long>(waiting + m_buffer.Take(buf + off + waiting, len - waiting));
}

long CBufferedReader::Skip(unsigned long n) {
    CheckOpen();
    return m_buffer.Skip(*m_reader, n, detail::UnitBuffer<unsigned short>::ExactFit::StaysHere);
}

void CBufferedReader::Reset() {
    CheckOpen();
    m_buffer.Empty();
    m_reader->Reset();
}

void CBufferedReader::Close() {
    CheckOpen();
    m_reader.Close();
}

} // namespace io
} // namespace lumo
