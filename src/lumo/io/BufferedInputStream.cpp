// CBufferedInputStream: block reads of a wrapped input stream through a buffer.
#include <lumo/io/BufferedInputStream.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/BufferedInputStream";
} // namespace

LUMO_DEFINE_CLASS(CBufferedInputStream, "lumo::io::CBufferedInputStream", "lumo::io::CInputStream");

CBufferedInputStream::CBufferedInputStream(CInputStream* in, unsigned long size) : m_in(in) {
    CreateBuffer(size);
}

CBufferedInputStream::CBufferedInputStream(base::CRef<CInputStream> const& in, unsigned long size)
    : m_in(in) {
    CreateBuffer(size);
}

CBufferedInputStream::~CBufferedInputStream() = default;

void CBufferedInputStream::CreateBuffer(unsigned long size) {
    if (m_in.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid input stream.");
    if (size == 0)
        size = 512;
    m_buffer.Allocate(size, kUnit, __LINE__);
}

void CBufferedInputStream::CheckOpen() const {
    if (!m_in.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

void CBufferedInputStream::FillBuffer() {
    m_buffer.Refill(*m_in);
}

unsigned long CBufferedInputStream::GetAvailable() const {
    CheckOpen();
    return m_in->GetAvailable() + m_buffer.Waiting();
}

long CBufferedInputStream::Read() {
    CheckOpen();
    return m_buffer.ReadAhead(*m_in);
}

long CBufferedInputStream::Read(char* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || !Vela::bnManager::IsWritable(buf + off, len))
        return len > 0 ? Skip(len) : 0;
    if (len == 0)
        return 0;
    // Large requests bypass the buffer, ahead of anything still waiting in it.
    if (len > m_buffer.Capacity())
        return m_in->Read(buf, off, len);
    // A buffer's worth with nothing waiting: the one wrapped read that FillBuffer
    // would make, of the same length, lands straight in the caller's array and saves
    // the copy out of the buffer. The buffer is left empty, as it would be.
    if (len == m_buffer.Capacity() && !m_buffer.HasWaiting()) {
        m_buffer.Empty();
        long const n = m_in->Read(buf, off, len);
        return n > 0 ? n : 0;
    }
    unsigned long const waiting = m_buffer.Take(buf + off, len);
    if (waiting == len)
        return static_cast<long>(len);
    FillBuffer();
    return static_cast<long>(waiting + m_buffer.Take(buf + off + waiting, len - waiting));
}

long CBufferedInputStream::Read(char* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CBufferedInputStream::Skip(unsigned long n) {
    CheckOpen();
    return m_buffer.Skip(*m_in, n, detail::UnitBuffer<char>::ExactFit::StaysHere);
}

void CBufferedInputStream::Reset() {
    CheckOpen();
    m_buffer.Empty();
    m_in->Reset();
}

void CBufferedInputStream::Close() {
    CheckOpen();
    m_in.Close();
}

} // namespace io
} // namespace lumo
