// COutputStreamWriter: converts UTF-16 units through its encoding's converter into a byte
// buffer, writing it out or doubling it when the converter runs out of room.
#include <lumo/io/OutputStreamWriter.h>

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Memory.h>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/OutputStreamWriter";
unsigned long const kInitialCapacity = 8196;
} // namespace

LUMO_DEFINE_CLASS(COutputStreamWriter, "lumo::io::COutputStreamWriter", "lumo::io::CWriter");

COutputStreamWriter::COutputStreamWriter(COutputStream* out, char const* encoding) : m_out(out) {
    Init(encoding);
}

COutputStreamWriter::COutputStreamWriter(base::CRef<COutputStream> const& out, char const* encoding)
    : m_out(out) {
    Init(encoding);
}

void COutputStreamWriter::Init(char const* encoding) {
    if (m_out.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid output stream..");
    if (encoding == nullptr || *encoding == '\0')
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid encoding.");
    m_encoding = encoding;
    m_converter = CWCharToCharConverter::GetConverter(encoding);
    m_buffer.Allocate(kInitialCapacity, kUnit, __LINE__);
}

COutputStreamWriter::~COutputStreamWriter() = default;

void COutputStreamWriter::CheckOpen() const {
    if (!m_out.IsOpen())
        throw CIOException(kUnit, __LINE__, "Writer closed.", nullptr);
}

void COutputStreamWriter::FlushBuffer() {
    CheckOpen();
    m_buffer.DrainTo(*m_out);
}

void COutputStreamWriter::InternalWrite(unsigned short const* buf, unsigned long off,
                                        unsigned long len) {
    CheckOpen();
    bool wroteOut = false;
    while (len > 0) {
        bool writeNow = false;
        long const n =
            m_converter->Convert(buf, off, len, m_buffer.Data(), m_buffer.Count(), m_buffer.Room());
        if (n >= 0) {
            // All units consumed; 0 bytes is a success too (a high surrogate
            // waiting in the converter for its other half).
            m_buffer.Added(static_cast<unsigned long>(n));
            len = 0;
        } else if (wroteOut && m_buffer.Count() == 0) {
            // Even an empty buffer is too small. The converter stands where it
            // was before the call, so the same units are converted again.
            if (m_buffer.Capacity() > 0x7FFFFFFFul ||
                !m_buffer.TryAllocate(m_buffer.Capacity() * 2))
                throw CIOException(kUnit, __LINE__, "Memory full.", nullptr);
        } else {
            writeNow = true;
        }
        if (m_buffer.IsFull() || writeNow) {
            FlushBuffer();
            wroteOut = true;
        }
    }
}

void COutputStreamWriter::Write(unsigned short const* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    if (buf == nullptr || !Vela::bnManager::IsReadable(buf + off, len * sizeof(unsigned short)))
        return;
    InternalWrite(buf, off, len);
}

void COutputStreamWriter::Write(unsigned short const* buf, unsigned long len) {
    Write(buf, 0, len);
}

void COutputStreamWriter::Write(unsigned short const* text) {
    CheckOpen();
    CWriter::Write(text);
}

void COutputStreamWriter::Write(base::CUnicodeString const& s, unsigned long off,
                                unsigned long len) {
    CheckOpen();
    CWriter::Write(s, off, len);
}

void COutputStreamWriter::Write(base::CUnicodeString const& s) {
    CheckOpen();
    CWriter::Write(s);
}

void COutputStreamWriter::Write(unsigned short c) {
    InternalWrite(&c, 0, 1);
}

void COutputStreamWriter::Flush() {
    FlushBuffer();
    m_out->Flush();
}

void COutputStreamWriter::Close() {
    m_out.Close([this] { FlushBuffer(); });
}

void COutputStreamWriter::InternalClose() {
    m_out.Close();
}

} // namespace io
} // namespace lumo
