// CBufferedOutputStream: copies small writes into its buffer and writes it out when full;
// blocks at least the buffer's size go straight to the wrapped stream.
#include <lumo/io/BufferedOutputStream.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/BufferedOutputStream";
} // namespace

LUMO_DEFINE_CLASS(CBufferedOutputStream, "lumo::io::CBufferedOutputStream",
                  "lumo::io::COutputStream");

CBufferedOutputStream::CBufferedOutputStream(COutputStream* out, unsigned long size) : m_out(out) {
    Init(size);
}

CBufferedOutputStream::CBufferedOutputStream(base::CRef<COutputStream> const& out,
                                             unsigned long size)
    : m_out(out) {
    Init(size);
}

CBufferedOutputStream::~CBufferedOutputStream() = default;

void CBufferedOutputStream::Init(unsigned long size) {
    if (m_out.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid output stream.");
    if (size == 0)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invaid buffer size.");
    m_buffer.Allocate(size, kUnit, __LINE__);
}

void CBufferedOutputStream::FlushBuffer() {
    if (!m_out.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
    m_buffer.DrainTo(*m_out);
}

void CBufferedOutputStream::InternalWrite(char const* buf, unsigned long off, unsigned long len) {
    if (!m_out.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
    if (len >= m_buffer.Capacity()) {
        FlushBuffer();
        m_out->Write(buf, off, len);
        return;
    }
    m_buffer.Append(buf + off, len, [this] { FlushBuffer(); });
}

void CBufferedOutputStream::InternalClose() {
    m_out.Close();
}

void CBufferedOutputStream::Write(char const* buf, unsigned long off, unsigned long len) {
    if (buf == nullptr || !Vela::bnManager::IsReadable(buf + off, len))
        return;
    InternalWrite(buf, off, len);
}

void CBufferedOutputStream::Write(char const* buf, unsigned long len) {
    Write(buf, 0, len);
}

void CBufferedOutputStream::Write(char c) {
    if (!m_out.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
    if (m_buffer.IsFull())
        FlushBuffer();
    m_buffer.Append(c);
}

void CBufferedOutputStream::Flush() {
    FlushBuffer();
    m_out->Flush();
}

void CBufferedOutputStream::Close() {
    m_out.Close([this] { FlushBuffer(); });
}

} // namespace io
} // namespace lumo
