// CBufferedOutputStream: copies small writes into its buffer and writes it out when full;
// blocks at least the buffer's size go straight to the wrapped stream.
#include <lumo/io/BufferedOutputStream.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include "FilterCore.h"
#include <cstdlib>
#include <cstring>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/BufferedOutputStream";
} // namespace

LUMO_DEFINE_CLASS(CBufferedOutputStream, "lumo::io::CBufferedOutputStream",
                  "lumo::io::COutputStream");

CBufferedOutputStream::CBufferedOutputStream(COutputStream* out, unsigned long size)
    : m_out(out), m_buffer(nullptr), m_capacity(0), m_count(0) {
    Init(size);
}

CBufferedOutputStream::CBufferedOutputStream(base::CRef<COutputStream> const& out,
                                             unsigned long size)
    : m_out(out.Get()), m_outRef(out), m_buffer(nullptr), m_capacity(0), m_count(0) {
    Init(size);
}

CBufferedOutputStream::~CBufferedOutputStream() {
    std::free(m_buffer);
}

void CBufferedOutputStream::Init(unsigned long size) {
    if (m_out == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid output stream.");
    if (size == 0)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invaid buffer size.");
    m_buffer = detail::AllocateUnits<char>(size, kUnit, __LINE__);
    m_capacity = size;
}

void CBufferedOutputStream::FlushBuffer() {
    if (m_out == nullptr)
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
    if (m_count > 0) {
        m_out->Write(m_buffer, 0, m_count);
        m_count = 0;
    }
}

void CBufferedOutputStream::InternalWrite(char const* buf, unsigned long off, unsigned long len) {
    if (m_out == nullptr)
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
    if (len >= m_capacity) {
        FlushBuffer();
        m_out->Write(buf, off, len);
        return;
    }
    char const* src = buf + off;
    if (len < m_capacity - m_count) {
        // The common case: the bytes fit without filling the buffer.
        std::memcpy(m_buffer + m_count, src, len);
        m_count += len;
        return;
    }
    detail::FillAndDrain(m_buffer, m_capacity, m_count, src, len, [this] { FlushBuffer(); });
}

void CBufferedOutputStream::InternalClose() {
    detail::ReleaseAndClose(m_out);
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
    if (m_out == nullptr)
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
    if (m_count == m_capacity)
        FlushBuffer();
    m_buffer[m_count++] = c;
}

void CBufferedOutputStream::Flush() {
    FlushBuffer();
    m_out->Flush();
}

void CBufferedOutputStream::Close() {
    detail::FlushAndClose(m_out, [this] { FlushBuffer(); });
}

} // namespace io
} // namespace lumo
