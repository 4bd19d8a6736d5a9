// CBufferedWriter: collects UTF-16 units in its buffer and writes them out in one block
// when it fills, on Flush and on Close.
#include <lumo/io/BufferedWriter.h>

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include "FilterCore.h"
#include <cstdlib>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/BufferedWriter";
} // namespace

LUMO_DEFINE_CLASS(CBufferedWriter, "lumo::io::CBufferedWriter", "lumo::io::CWriter");

CBufferedWriter::CBufferedWriter(CWriter* writer, unsigned long size)
    : m_writer(writer), m_buffer(nullptr), m_capacity(0), m_count(0) {
    Init(size);
}

CBufferedWriter::CBufferedWriter(base::CRef<CWriter> const& writer, unsigned long size)
    : m_writer(writer.Get()), m_writerRef(writer), m_buffer(nullptr), m_capacity(0), m_count(0) {
    Init(size);
}

void CBufferedWriter::Init(unsigned long size) {
    if (m_writer == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid writer.");
    if (size == 0)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid buffer size.");
    if (size > 0x7FFFFFFFul / sizeof(unsigned short))
        throw base::CMemoryException(kUnit, __LINE__);
    m_buffer = detail::AllocateUnits<unsigned short>(size, kUnit, __LINE__);
    m_capacity = size;
}

CBufferedWriter::~CBufferedWriter() {
    std::free(m_buffer);
}

void CBufferedWriter::CheckOpen() const {
    if (m_writer == nullptr)
        throw CIOException(kUnit, __LINE__, "Writer closed.", nullptr);
}

void CBufferedWriter::FlushBuffer() {
    CheckOpen();
    if (m_count == 0)
        return;
    // Cleared only after the write succeeded: a failed write keeps the units.
    m_writer->Write(m_buffer, 0, m_count);
    m_count = 0;
}

void CBufferedWriter::InternalWrite(unsigned short const* buf, unsigned long off,
                                    unsigned long len) {
    CheckOpen();
    if (len >= m_capacity) {
        FlushBuffer();
        m_writer->Write(buf, off, len);
        return;
    }
    detail::FillAndDrain(m_buffer, m_capacity, m_count, buf + off, len, [this] { FlushBuffer(); });
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
    if (m_count >= m_capacity)
        FlushBuffer();
    m_buffer[m_count++] = c;
}

void CBufferedWriter::Flush() {
    FlushBuffer();
    m_writer->Flush();
}

void CBufferedWriter::Close() {
    detail::FlushAndClose(m_writer, [this] { FlushBuffer(); });
}

void CBufferedWriter::InternalClose() {
    detail::ReleaseAndClose(m_writer);
}

} // namespace io
} // namespace lumo
