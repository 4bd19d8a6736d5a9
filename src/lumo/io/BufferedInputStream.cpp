#include <lumo/io/BufferedInputStream.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include <cstdlib>
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
    m_buffer = static_cast<char*>(std::malloc(size));
    if (m_buffer == nullptr)
        throw base::CMemoryException(kUnit, __LINE__);
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
    unsigned long const waiting = m_count - m_position;
    if (len <= waiting) {
        std::memcpy(buf + off, m_buffer + m_position, len);
        m_position += len;
        return static_cast<long>(len);
    }
    if (waiting > 0)
        std::memcpy(buf + off, m_buffer + m_position, waiting);
    m_position = m_count;
    FillBuffer();
    unsigned long const more = m_count - m_position;
    if (more == 0)
        return static_cast<long>(waiting);
    unsigned long const n = len - waiting < more ? len - waiting : more;
    std::memcpy(buf + off + waiting, m_buffer + m_position, n);
    m_position += n;
    return static_cast<long>(waiting + n);
}

long CBufferedInputStream::Read(char* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CBufferedInputStream::Skip(unsigned long n) {
    CheckOpen();
    if (n == 0)
        return 0;
    unsigned long const waiting = m_count - m_position;
    if (n <= waiting) {
        m_position += n;
        return static_cast<long>(n);
    }
    m_position = m_count;
    return static_cast<long>(waiting) + m_in->Skip(n - waiting);
}

void CBufferedInputStream::Reset() {
    CheckOpen();
    m_count = 0;
    m_position = 0;
    m_in->Reset();
}

void CBufferedInputStream::Close() {
    CheckOpen();
    CInputStream* in = m_in;
    m_in = nullptr;
    in->Close();
}

} // namespace io
} // namespace lumo
