// CPushbackInputStream: serves given-back bytes from its pushback buffer before the
// wrapped stream, and refuses to give back more than the buffer holds.
#include <lumo/io/PushbackInputStream.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/PushbackInputStream";
} // namespace

LUMO_DEFINE_CLASS(CPushbackInputStream, "lumo::io::CPushbackInputStream", "lumo::io::CInputStream");

CPushbackInputStream::CPushbackInputStream(CInputStream* in, unsigned long size) : m_in(in) {
    Init(size);
}

CPushbackInputStream::CPushbackInputStream(base::CRef<CInputStream> const& in, unsigned long size)
    : m_in(in) {
    Init(size);
}

CPushbackInputStream::~CPushbackInputStream() = default;

void CPushbackInputStream::Init(unsigned long size) {
    if (m_in.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid input stream.");
    if (size == 0)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid pushback buffer size.");
    m_buffer.AllocateGiveBack(size, kUnit, __LINE__);
}

void CPushbackInputStream::CheckOpen() const {
    if (!m_in.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

unsigned long CPushbackInputStream::GetAvailable() const {
    CheckOpen();
    return m_buffer.Waiting() + m_in->GetAvailable();
}

long CPushbackInputStream::Read() {
    CheckOpen();
    return m_buffer.ReadGivenBack(*m_in);
}

long CPushbackInputStream::Read(char* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || !Vela::bnManager::IsWritable(buf + off, len))
        return len > 0 ? Skip(len) : 0;
    if (len == 0)
        return 0;
    unsigned long const held = m_buffer.Take(buf + off, len);
    if (held == len && m_buffer.HasWaiting())
        return static_cast<long>(len);
    // The wrapped result is added as it is: -1 at its end gives held - 1.
    return static_cast<long>(held) + m_in->Read(buf, off + held, len - held);
}

long CPushbackInputStream::Read(char* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CPushbackInputStream::Skip(unsigned long n) {
    CheckOpen();
    return m_buffer.Skip(*m_in, n, detail::UnitBuffer<char>::ExactFit::AsksSource);
}

void CPushbackInputStream::Reset() {
    CheckOpen();
    m_buffer.DropWaiting();
    m_in->Reset();
}

void CPushbackInputStream::Close() {
    CheckOpen();
    m_in.Close();
}

void CPushbackInputStream::Unread(char c) {
    m_buffer.GiveBack(c, kUnit, __LINE__);
}

void CPushbackInputStream::Unread(char const* buf, unsigned long len) {
    Unread(buf, 0, len);
}

void CPushbackInputStream::Unread(char const* buf, unsigned long off, unsigned long len) {
    m_buffer.GiveBack(buf, off, len, kUnit, __LINE__);
}

} // namespace io
} // namespace lumo
