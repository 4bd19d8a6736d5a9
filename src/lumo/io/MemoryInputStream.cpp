// CMemoryInputStream: reads, skips and resets over the caller's block in place, freeing
// the block on close or destruction when it owns it.
#include <lumo/io/MemoryInputStream.h>

#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include <cstdlib>
#include <cstring>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/MemoryInputStream";
} // namespace

LUMO_DEFINE_CLASS(CMemoryInputStream, "lumo::io::CMemoryInputStream", "lumo::io::CInputStream");

CMemoryInputStream::CMemoryInputStream(char const* data, unsigned long length, bool ownsData)
    : m_data(data), m_length(length), m_position(0), m_ownsData(ownsData) {
    if (data == nullptr || !Vela::bnManager::IsReadable(data, length))
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid source buffer.");
}

CMemoryInputStream::~CMemoryInputStream() {
    Release();
}

void CMemoryInputStream::Release() noexcept {
    if (m_ownsData && m_data != nullptr)
        std::free(const_cast<char*>(m_data));
    m_data = nullptr;
}

void CMemoryInputStream::CheckOpen() const {
    if (m_data == nullptr)
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

unsigned long CMemoryInputStream::GetAvailable() const {
    CheckOpen();
    return m_length - m_position;
}

long CMemoryInputStream::Read() {
    CheckOpen();
    if (m_position >= m_length)
        return EOS;
    return static_cast<long>(m_data[m_position++]);
}

long CMemoryInputStream::Read(char* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    // Only the start of the caller's buffer is checked, as it has always been.
    if (buf == nullptr || !Vela::bnManager::IsWritable(buf, len))
        return len > 0 ? Skip(len) : 0;
    if (len == 0)
        return 0;
    if (m_position >= m_length)
        return -1;
    unsigned long const left = m_length - m_position;
    unsigned long const n = len < left ? len : left;
    std::memcpy(buf + off, m_data + m_position, n);
    m_position += n;
    return static_cast<long>(n);
}

long CMemoryInputStream::Read(char* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CMemoryInputStream::Skip(unsigned long n) {
    CheckOpen();
    if (n == 0)
        return 0;
    unsigned long const left = m_length - m_position;
    if (n >= left) {
        m_position = m_length;
        return static_cast<long>(left);
    }
    m_position += n;
    return static_cast<long>(n);
}

void CMemoryInputStream::Reset() {
    CheckOpen();
    m_position = 0;
}

void CMemoryInputStream::Close() {
    CheckOpen();
    Release();
}

} // namespace io
} // namespace lumo
