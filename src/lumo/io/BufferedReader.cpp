#include <lumo/io/BufferedReader.h>

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include <cstdlib>
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
    m_buffer = static_cast<unsigned short*>(std::malloc(size * sizeof(unsigned short)));
    if (m_buffer == nullptr)
        throw base::CMemoryException(kUnit, __LINE__);
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
    unsigned long const waiting = m_count - m_position;
    if (len <= waiting) {
        std::memcpy(buf + off, m_buffer + m_position, len * sizeof(unsigned short));
        m_position += len;
        return static_cast<long>(len);
    }
    if (waiting > 0)
        std::memcpy(buf + off, m_buffer + m_position, waiting * sizeof(unsigned short));
    m_position = m_count;
    bool const more = FillBuffer();
    unsigned long n = m_count - m_position;
    if (n == 0)
        return waiting == 0 && !more ? -1 : static_cast<long>(waiting);
    if (n > len - waiting)
        n = len - waiting;
    std::memcpy(buf + off + waiting, m_buffer + m_position, n * sizeof(unsigned short));
    m_position += n;
    return static_cast<long>(waiting + n);
}

long CBufferedReader::Skip(unsigned long n) {
    CheckOpen();
    if (n == 0)
        return 0;
    unsigned long const waiting = m_count - m_position;
    if (n <= waiting) {
        m_position += n;
        return static_cast<long>(n);
    }
    m_position = m_count;
    return static_cast<long>(waiting) + m_reader->Skip(n - waiting);
}

void CBufferedReader::Reset() {
    CheckOpen();
    m_count = 0;
    m_position = 0;
    m_reader->Reset();
}

void CBufferedReader::Close() {
    CheckOpen();
    CReader* const reader = m_reader;
    // Closed from here on, also when the wrapped reader's Close throws.
    m_reader = nullptr;
    reader->Close();
}

} // namespace io
} // namespace lumo
