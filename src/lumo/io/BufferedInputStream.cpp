// CBufferedInputStream: block reads of a wrapped input stream through a buffer.
#include <lumo/io/BufferedInputStream.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include "FilterCore.h"
#include <cstring>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/BufferedInputStream";
} // namespace

LUMO_DEFINE_CLASS(CBufferedInputStream, "lumo::io::CBufferedInputStream", "lumo::io::CInputStream");

CBufferedInputStream::CBufferedInputStream(CInputStream* in, unsigned long size)
    : m_in(in), m_buffer(nullptr), m_capacity(0), m_count(0), m_position(0) {
    CreateBuffer(size);
}

CBufferedInputStream::CBufferedInputStream(base::CRef<CInputStream> const& in, unsigned long size)
    : m_in(in.Get()), m_inRef(in), m_buffer(nullptr), m_capacity(0), m_count(0), m_position(0) {
    CreateBuffer(size);
}

CBufferedInputStream::~CBufferedInputStream() {
    std::free(m_buffer);
}

void CBufferedInputStream::CreateBuffer(unsigned long size) {
    if (m_in == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid input stream.");
    if (size == 0)
        size = 512;
    m_buffer = detail::AllocateUnits<char>(size, kUnit, __LINE__);
    m_capacity = size;
}

void CBufferedInputStream::CheckOpen() const {
    if (m_in == nullptr)
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

void CBufferedInputStream::FillBuffer() {
    if (m_position < m_count)
        std::memmove(m_buffer, m_buffer + m_position, m_count - m_position);
    m_count -= m_position;
    m_position = 0;
    long const n = m_in->Read(m_buffer, m_count, m_capacity - m_count);
    if (n > 0)
        m_count += static_cast<unsigned long>(n);
}

unsigned long CBufferedInputStream::GetAvailable() const {
    CheckOpen();
    return m_in->GetAvailable() + (m_count - m_position);
}

long CBufferedInputStream::Read() {
    CheckOpen();
    if (m_position >= m_count) {
        FillBuffer();
        if (m_position >= m_count)
            return EOS;
    }
    return static_cast<long>(m_buffer[m_position++]);
}

long CBufferedInputStream::Read(char* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || !Vela::bnManager::IsWritable(buf + off, len))
        return len > 0 ? Skip(len) : 0;
    if (len == 0)
        return 0;
    // Large requests bypass the buffer, ahead of anything still waiting in it.
    if (len > m_capacity)
        return m_in->Read(buf, off, len);
    // A buffer's worth with nothing waiting: the one wrapped read that FillBuffer
    // would make, of the same length, lands straight in the caller's array and saves
    // the copy out of the buffer. The buffer is left empty, as it would be.
    if (len == m_capacity && m_position >= m_count) {
        m_count = 0;
        m_position = 0;
        long const n = m_in->Read(buf, off, len);
        return n > 0 ? n : 0;
    }
    unsigned long const waiting =
        detail::TakeWaiting(buf + off, len, m_buffer, m_position, m_count);
    if (waiting == len)
        return static_cast<long>(len);
    FillBuffer();
    return static_cast<long>(waiting + detail::TakeWaiting(buf + off + waiting, len - waiting,
                                                           m_buffer, m_position, m_count));
}

long CBufferedInputStream::Read(char* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CBufferedInputStream::Skip(unsigned long n) {
    CheckOpen();
    return detail::SkipBuffered(m_in, n, m_position, m_count);
}

void CBufferedInputStream::Reset() {
    CheckOpen();
    m_count = 0;
    m_position = 0;
    m_in->Reset();
}

void CBufferedInputStream::Close() {
    CheckOpen();
    detail::ReleaseAndClose(m_in);
}

} // namespace io
} // namespace lumo
