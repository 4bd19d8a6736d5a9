// CPushbackReader: serves given-back UTF-16 units from its pushback buffer before the
// wrapped reader, and refuses to give back more than the buffer holds.
#include <lumo/io/PushbackReader.h>

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Memory.h>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/PushbackReader";
} // namespace

LUMO_DEFINE_CLASS(CPushbackReader, "lumo::io::CPushbackReader", "lumo::io::CReader");

CPushbackReader::CPushbackReader(CReader* reader, unsigned long size) : m_reader(reader) {
    Init(size);
}

CPushbackReader::CPushbackReader(base::CRef<CReader> const& reader, unsigned long size)
    : m_reader(reader) {
    Init(size);
}

void CPushbackReader::Init(unsigned long size) {
    if (m_reader.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid reader.");
    if (size == 0)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid pushback buffer size.");
    m_buffer.AllocateGiveBack(size, kUnit, __LINE__);
}

CPushbackReader::~CPushbackReader() = default;

void CPushbackReader::CheckOpen() const {
    if (!m_reader.IsOpen())
        throw CIOException(kUnit, __LINE__, "Reader closed.", nullptr);
}

long CPushbackReader::Read() {
    CheckOpen();
    return m_buffer.ReadGivenBack(*m_reader);
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
    unsigned long const held = m_buffer.Take(buf + off, len);
    if (held == len && m_buffer.HasWaiting())
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
    return m_buffer.Skip(*m_reader, n, detail::UnitBuffer<unsigned short>::ExactFit::AsksSource);
}

void CPushbackReader::Reset() {
    CheckOpen();
    m_buffer.DropWaiting();
    m_reader->Reset();
}

void CPushbackReader::Close() {
    CheckOpen();
    m_reader.Close();
}

void CPushbackReader::Unread(unsigned short c) {
    m_buffer.GiveBack(c, kUnit, __LINE__);
}

void CPushbackReader::Unread(unsigned short const* buf, unsigned long len) {
    Unread(buf, 0, len);
}

void CPushbackReader::Unread(unsigned short const* buf, unsigned long off, unsigned long len) {
    m_buffer.GiveBack(buf, off, len, kUnit, __LINE__);
}

} // namespace io
} // namespace lumo
