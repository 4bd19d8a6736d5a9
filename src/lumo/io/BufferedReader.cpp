// CBufferedReader: serves units from its UTF-16 buffer, moving the unread rest to the
// front before each refill, and sends large requests straight to the wrapped reader.
#include <lumo/io/BufferedReader.h>

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include "FilterCore.h"
#include <cstring>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/BufferedReader";
} // namespace

LUMO_DEFINE_CLASS(CBufferedReader, "lumo::io::CBufferedReader", "lumo::io::CReader");

CBufferedReader::CBufferedReader(CReader* reader, unsigned long size)
    : m_reader(reader), m_buffer(nullptr), m_capacity(0), m_count(0), m_position(0) {
    Init(size);
}

CBufferedReader::CBufferedReader(base::CRef<CReader> const& reader, unsigned long size)
    : m_reader(reader.Get()), m_readerRef(reader), m_buffer(nullptr), m_capacity(0), m_count(0),
      m_position(0) {
    Init(size);
}

void CBufferedReader::Init(unsigned long size) {
    if (m_reader == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid reader.");
    if (size == 0)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid buffer size.");
    if (size > 0x7FFFFFFFul / sizeof(unsigned short))
        throw base::CMemoryException(kUnit, __LINE__);
    m_buffer = detail::AllocateUnits<unsigned short>(size, kUnit, __LINE__);
    m_capacity = size;
}

CBufferedReader::~CBufferedReader() {
    std::free(m_buffer);
}

void CBufferedReader::CheckOpen() const {
    if (m_reader == nullptr)
        throw CIOException(kUnit, __LINE__, "Reader closed.", nullptr);
}

bool CBufferedReader::FillBuffer() {
    if (m_position < m_count && m_position > 0)
        std::memmove(m_buffer, m_buffer + m_position,
                     (m_count - m_position) * sizeof(unsigned short));
    m_count -= m_position;
    m_position = 0;
    long const n = m_reader->Read(m_buffer, m_count, m_capacity - m_count);
    if (n == -1)
        return false;
    if (n > 0)
        m_count += static_cast<unsigned long>(n);
    return true;
}

long CBufferedReader::Read() {
    CheckOpen();
    if (m_position >= m_count) {
        FillBuffer();
        if (m_position >= m_count)
            return EOS;
    }
    return static_cast<long>(m_buffer[m_position++]);
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
    if (len > m_capacity)
        return m_reader->Read(buf, off, len);
    unsigned long const waiting =
        detail::TakeWaiting(buf + off, len, m_buffer, m_position, m_count);
    if (waiting == len)
        return static_cast<long>(len);
    bool const more = FillBuffer();
    // Unlike the byte stream, the wrapped reader's end shows when nothing was read.
    if (m_count == m_position)
        return waiting == 0 && !more ? -1 : static_cast<long>(waiting);
    return static_cast<long>(waiting + detail::TakeWaiting(buf + off + waiting, len - waiting,
                                                           m_buffer, m_position, m_count));
}

long CBufferedReader::Skip(unsigned long n) {
    CheckOpen();
    return detail::SkipBuffered(m_reader, n, m_position, m_count);
}

void CBufferedReader::Reset() {
    CheckOpen();
    m_count = 0;
    m_position = 0;
    m_reader->Reset();
}

void CBufferedReader::Close() {
    CheckOpen();
    detail::ReleaseAndClose(m_reader);
}

} // namespace io
} // namespace lumo
