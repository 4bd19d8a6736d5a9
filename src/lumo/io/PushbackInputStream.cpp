#include <lumo/io/PushbackInputStream.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include <cstdlib>
#include <cstring>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/PushbackInputStream";
} // namespace

LUMO_DEFINE_CLASS(CPushbackInputStream, "lumo::io::CPushbackInputStream", "lumo::io::CInputStream");

CPushbackInputStream::CPushbackInputStream(CInputStream* in, unsigned long size)
    : m_in(in), m_buffer(nullptr), m_capacity(0), m_position(0) {
    Init(size);
}

CPushbackInputStream::CPushbackInputStream(base::CRef<CInputStream> const& in, unsigned long size)
    : m_in(in.Get()), m_inRef(in), m_buffer(nullptr), m_capacity(0), m_position(0) {
    Init(size);
}

CPushbackInputStream::~CPushbackInputStream() {
    std::free(m_buffer);
}

void CPushbackInputStream::Init(unsigned long size) {
    if (m_in == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid input stream.");
    if (size == 0)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid pushback buffer size.");
    m_buffer = static_cast<char*>(std::malloc(size));
    if (m_buffer == nullptr)
        throw base::CMemoryException(kUnit, __LINE__);
    m_capacity = size;
    m_position = size;
}

void CPushbackInputStream::CheckOpen() const {
    if (m_in == nullptr)
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

unsigned long CPushbackInputStream::GetAvailable() const {
    CheckOpen();
    return (m_capacity - m_position) + m_in->GetAvailable();
}

long CPushbackInputStream::Read() {
    CheckOpen();
    if (m_position < m_capacity)
        return static_cast<long>(m_buffer[m_position++]);
    return m_in->Read();
}

long CPushbackInputStream::Read(char* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || !Vela::bnManager::IsWritable(buf + off, len))
        return len > 0 ? Skip(len) : 0;
    if (len == 0)
        return 0;
    unsigned long const held = m_capacity - m_position;
    if (len < held) {
        std::memcpy(buf + off, m_buffer + m_position, len);
        m_position += len;
        return static_cast<long>(len);
    }
    if (held > 0)
        std::memcpy(buf + off, m_buffer + m_position, held);
    m_position = m_capacity;
    // The wrapped result is added as it is: -1 at its end gives held - 1.
    return static_cast<long>(held) + m_in->Read(buf, off + held, len - held);
}

long CPushbackInputStream::Read(char* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CPushbackInputStream::Skip(unsigned long n) {
    CheckOpen();
    if (n == 0)
        return 0;
    unsigned long const held = m_capacity - m_position;
    if (n < held) {
        m_position += n;
        return static_cast<long>(n);
    }
    m_position = m_capacity;
    return static_cast<long>(held) + m_in->Skip(n - held);
}

void CPushbackInputStream::Reset() {
    CheckOpen();
    m_position = m_capacity;
    m_in->Reset();
}

void CPushbackInputStream::Close() {
    CheckOpen();
    CInputStream* in = m_in;
    m_in = nullptr;
    in->Close();
}

void CPushbackInputStream::Unread(char c) {
    if (m_position == 0)
        throw CIOException(kUnit, __LINE__, "Pushback buffer is full.", nullptr);
    m_buffer[--m_position] = c;
}

void CPushbackInputStream::Unread(char const* buf, unsigned long len) {
    Unread(buf, 0, len);
}

void CPushbackInputStream::Unread(char const* buf, unsigned long off, unsigned long len) {
    if (len > m_position)
        throw CIOException(kUnit, __LINE__, "Pushback buffer is full.", nullptr);
    if (buf == nullptr || len == 0 || !Vela::bnManager::IsReadable(buf + off, len))
        return;
    m_position -= len;
    std::memcpy(m_buffer + m_position, buf + off, len);
}

} // namespace io
} // namespace lumo
