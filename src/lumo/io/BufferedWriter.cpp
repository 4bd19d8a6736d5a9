// CBufferedWriter: collects UTF-16 units in its buffer and writes them out in one block
// when it fills, on Flush and on Close.
#include <lumo/io/BufferedWriter.h>

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Memory.h>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/BufferedWriter";
} // namespace

LUMO_DEFINE_CLASS(CBufferedWriter, "lumo::io::CBufferedWriter", "lumo::io::CWriter");

CBufferedWriter::CBufferedWriter(CWriter* writer, unsigned long size) : m_writer(writer) {
    Init(size);
}

CBufferedWriter::CBufferedWriter(base::CRef<CWriter> const& writer, unsigned long size)
    : m_writer(writer) {
    Init(size);
}

void CBufferedWriter::Init(unsigned long size) {
    if (m_writer.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid writer.");
    if (size == 0)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid buffer size.");
    m_buffer.Allocate(size, kUnit, __LINE__);
}

CBufferedWriter::~CBufferedWriter() = default;

void CBufferedWriter::CheckOpen() const {
    if (!m_writer.IsOpen())
        throw CIOException(kUnit, __LINE__, "Writer closed.", nullptr);
}

void CBufferedWriter::FlushBuffer() {
    CheckOpen();
    m_buffer.DrainTo(*m_writer);
}

void CBufferedWriter::InternalWrite(unsigned short const* buf, unsigned long off,
                                    unsigned long len) {
    CheckOpen();
    if (len >= m_buffer.Capacity()) {
        FlushBuffer();
        m_writer->Write(buf, off, len);
        return;
    }
    m_buffer.Append(buf + off, len, [this] { FlushBuffer(); });
}

void CBufferedWriter::Write(unsigned short const* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || !Vela::bnManager::IsReadable(buf + off, len * sizeof(unsigned short)))
        return;
    InternalWrite(buf, off, len);
}

void CBufferedWriter::Write(unsigned short const* buf, unsigned long len) {
    Write(buf, 0, len);
}

void CBufferedWriter::Write(unsigned short const* text) {
    CheckOpen();
    CWriter::Write(text);
}

void CBufferedWriter::Write(base::CUnicodeString const& s, unsigned long off, unsigned long len) {
    CheckOpen();
    CWriter::Write(s, off, len);
}

void CBufferedWriter::Write(base::CUnicodeString const& s) {
    CheckOpen();
    CWriter::Write(s);
}

void CBufferedWriter::Write(unsigned short c) {
    CheckOpen();
    if (m_buffer.IsFull())
        FlushBuffer();
    m_buffer.Append(c);
}

void CBufferedWriter::Flush() {
    FlushBuffer();
    m_writer->Flush();
}

void CBufferedWriter::Close() {
    m_writer.Close([this] { FlushBuffer(); });
}

void CBufferedWriter::InternalClose() {
    m_writer.Close();
}

} // namespace io
} // namespace lumo
