// CPushbackReader: serves given-back UTF-16 units from its pushback buffer before the
// wrapped reader, and refuses to give back more than the buffer holds.
#include <lumo/io/PushbackReader.h>

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include "FilterCore.h"

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/PushbackReader";
} // namespace

LUMO_DEFINE_CLASS(CPushbackReader, "lumo::io::CPushbackReader", "lumo::io::CReader");

CPushbackReader::CPushbackReader(CReader* reader, unsigned long size)
    : m_reader(reader), m_buffer(nullptr), m_capacity(0), m_position(0) {
    Init(size);
}

CPushbackReader::CPushbackReader(base::CRef<CReader> const& reader, unsigned long size)
    : m_reader(reader.Get()), m_readerRef(reader), m_buffer(nullptr), m_capacity(0), m_position(0) {
    Init(size);
}

void CPushbackReader::Init(unsigned long size) {
    if (m_reader == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid reader.");
    if (size == 0)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid pushback buffer size.");
    if (size > 0x7FFFFFFFul / sizeof(unsigned short))
        throw base::CMemoryException(kUnit, __LINE__);
    m_buffer = detail::AllocateUnits<unsigned short>(size, kUnit, __LINE__);
    m_capacity = size;
    m_position = size;
}

CPushbackReader::~CPushbackReader() {
    std::free(m_buffer);
}

void CPushbackReader::CheckOpen() const {
    if (m_reader == nullptr)
        throw CIOException(kUnit, __LINE__, "Reader closed.", nullptr);
}

long CPushbackReader::Read() {
    CheckOpen();
    return detail::ReadPushedBack(m_reader, m_buffer, m_capacity, m_position);
}

long CPushbackReader::Read(unsigned short* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CPushbackReader::Read(unsigned short* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || !Vela::bnManager::IsWritable(buf + off, len * sizeof(unsigned short)))
        return len > 0 ? Skip(len) : 0;
    if (len == 0)
        return 0;
    unsigned long const held =
        detail::TakeWaiting(buf + off, len, m_buffer, m_position, m_capacity);
    if (held == len && m_position < m_capacity)
        return static_cast<long>(len);
    // From here every pushed-back unit was taken: held is how many that was.
    if (len == held)
        return static_cast<long>(held);
    long const more = m_reader->Read(buf, off + held, len - held);
    if (more < 0)
        return held > 0 ? static_cast<long>(held) : more;
    return static_cast<long>(held) + more;
}

long CPushbackReader::Skip(unsigned long n) {
    CheckOpen();
    return detail::SkipPushedBack(m_reader, n, m_position, m_capacity);
}

void CPushbackReader::Reset() {
    CheckOpen();
    m_position = m_capacity;
    m_reader->Reset();
}

void CPushbackReader::Close() {
    CheckOpen();
    detail::ReleaseAndClose(m_reader);
}

void CPushbackReader::Unread(unsigned short c) {
    if (m_position == 0)
        throw CIOException(kUnit, __LINE__, "Pushback buffer is full.", nullptr);
    m_buffer[--m_position] = c;
}

void CPushbackReader::Unread(unsigned short const* buf, unsigned long len) {
    Unread(buf, 0, len);
}

void CPushbackReader::Unread(unsigned short const* buf, unsigned long off, unsigned long len) {
    detail::PushBack(m_buffer, m_position, buf, off, len, kUnit, __LINE__);
}

} // namespace io
} // namespace lumo
