// CMemoryOutputStream: appends to its C-heap block, growing it in whole steps, and hands
// the block over on DetachBuffer.
#include <lumo/io/MemoryOutputStream.h>

#include <lumo/io/IOException.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/MemoryOutputStream";
} // namespace

LUMO_DEFINE_CLASS(CMemoryOutputStream, "lumo::io::CMemoryOutputStream", "lumo::io::COutputStream");

CMemoryOutputStream::CMemoryOutputStream(unsigned long initialSize, unsigned long growBy)
    : m_buffer(nullptr), m_used(0), m_capacity(0),
      m_growBy(static_cast<std::uint32_t>(growBy) == 0 ? 64 : static_cast<std::uint32_t>(growBy)),
      m_open(false) {
    if (initialSize > 0 && !EnsureBufferCapacity(initialSize))
        throw base::CMemoryException(kUnit, __LINE__);
    m_open = true;
}

CMemoryOutputStream::~CMemoryOutputStream() {
    std::free(m_buffer);
}

bool CMemoryOutputStream::EnsureBufferCapacity(unsigned long needed) {
    if (needed > UINT32_MAX)
        return false;
    std::uint32_t const n = static_cast<std::uint32_t>(needed);
    std::uint32_t const g = static_cast<std::uint32_t>(m_growBy);
    // Rounds up to the step; the product wraps at 32 bits by design, which still
    // gives a size of at least `needed` unless the sum itself overflows.
    std::uint32_t const size = n + ((g - 1) * n) % g;
    if (size < n)
        return false;
    if (m_capacity >= size)
        return true;
    // realloc lets a large block move without copying; on failure the old block
    // stays as it was.
    char* block = static_cast<char*>(std::realloc(m_buffer, size));
    if (block == nullptr)
        return false;
    m_buffer = block;
    m_capacity = size;
    return true;
}

void CMemoryOutputStream::Append(char const* src, unsigned long len) {
    if (!m_open)
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
    // Only a null source is refused; any other is taken as readable.
    if (src == nullptr)
        return;
    unsigned long const needed = m_used + len;
    if (needed < m_used || !EnsureBufferCapacity(needed))
        throw CIOException(kUnit, __LINE__, "Memory full.", nullptr);
    if (len > 0)
        std::memcpy(m_buffer + m_used, src, len);
    m_used = needed;
}

void CMemoryOutputStream::Write(char const* buf, unsigned long off, unsigned long len) {
    Append(buf == nullptr ? nullptr : buf + off, len);
}

void CMemoryOutputStream::Write(char const* buf, unsigned long len) {
    Append(buf, len);
}

void CMemoryOutputStream::Write(char c) {
    if (!m_open)
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
    if (m_used >= m_capacity && !EnsureBufferCapacity(m_used + 1))
        throw CIOException(kUnit, __LINE__, "Memory full.", nullptr);
    m_buffer[m_used++] = c;
}

void CMemoryOutputStream::Flush() {
    if (!m_open)
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

void CMemoryOutputStream::Close() {
    m_open = false;
}

char* CMemoryOutputStream::DetachBuffer() {
    char* block = m_buffer;
    m_buffer = nullptr;
    m_used = 0;
    m_capacity = 0;
    return block;
}

} // namespace io
} // namespace lumo
