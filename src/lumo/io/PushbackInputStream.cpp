// CPushbackInputStream: serves given-back bytes from its pushback buffer before the
// wrapped stream, and refuses to give back more than the buffer holds.
#include <lumo/io/PushbackInputStream.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include "FilterCore.h"

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
    m_buffer = detail::AllocateUnits<char>(size, kUnit, __LINE__);
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
    return detail::ReadPushedBack(m_in, m_buffer, m_capacity, m_position);
}

long CPushbackInputStream::Read(char* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || !Vela::bnManager::IsWritable(buf + off, len))
        return len > 0 ? Skip(len) : 0;
    if (len == 0)
        return 0;
    unsigned long const held =
        detail::TakeWaiting(buf + off, len, m_buffer, m_position, m_capacity);
    if (held == len && m_position < m_capacity)
        return static_cast<long>(len);
    // The wrapped result is added as it is: -1 at its end gives held - 1.
    return static_cast<long>(held) + m_in->Read(buf, off + held, len - held);
}

long CPushbackInputStream::Read(char* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CPushbackInputStream::Skip(unsigned long n) {
    CheckOpen();
    return detail::SkipPushedBack(m_in, n, m_position, m_capacity);
}

void CPushbackInputStream::Reset() {
    CheckOpen();
    m_position = m_capacity;
    m_in->Reset();
}

void CPushbackInputStream::Close() {
    CheckOpen();
    detail::ReleaseAndClose(m_in);
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
    detail::PushBack(m_buffer, m_position, buf, off, len, kUnit, __LINE__);
}

} // namespace io
} // namespace lumo
