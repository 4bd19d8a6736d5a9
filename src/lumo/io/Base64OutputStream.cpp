// CBase64OutputStream: keeps the bytes of an incomplete 3-byte group, encodes whole groups
// in chunks with the shared base64 kernel and breaks the text into CR LF lines.
#include <lumo/io/Base64OutputStream.h>

#include <lumo/io/IOException.h>

#include "../base/BinaryDataCodec.h"

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/Base64OutputStream";
// Bytes encoded per block write on the wrapped stream (a multiple of 3).
constexpr unsigned long kChunkBytes = 3 * 256;
} // namespace

LUMO_DEFINE_CLASS(CBase64OutputStream, "lumo::io::CBase64OutputStream", "lumo::io::COutputStream");

CBase64OutputStream::CBase64OutputStream(COutputStream* out, unsigned long lineLength)
    : m_out(out), m_lineLength(lineLength), m_group{0, 0, 0}, m_groupCount(0), m_lineCount(0) {
    if (m_out.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid output stream.");
}

CBase64OutputStream::CBase64OutputStream(base::CRef<COutputStream> const& out,
                                         unsigned long lineLength)
    : m_out(out), m_lineLength(lineLength), m_group{0, 0, 0}, m_groupCount(0), m_lineCount(0) {
    if (m_out.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid output stream.");
}

CBase64OutputStream::~CBase64OutputStream() = default;

void CBase64OutputStream::CheckOpen() const {
    if (!m_out.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

void CBase64OutputStream::EncodeGroup() {
    char chars[4];
    base::codec::EncodeBase64(m_group, m_groupCount, chars);
    m_groupCount = 0;
    InternalWrite(chars, 0, 4);
}

void CBase64OutputStream::InternalWrite(char const* chars, unsigned long off, unsigned long len) {
    if (m_lineLength == 0) {
        m_out->Write(chars, off, len);
        return;
    }
    for (unsigned long i = 0; i < len; ++i) {
        // A break goes before a character that does not fit, never after the last.
        if (m_lineCount >= m_lineLength) {
            m_out->Write('\r');
            m_out->Write('\n');
            m_lineCount = 0;
        }
        m_out->Write(chars[off + i]);
        ++m_lineCount;
    }
}

void CBase64OutputStream::Write(char c) {
    CheckOpen();
    m_group[m_groupCount++] = static_cast<unsigned char>(c);
    if (m_groupCount == 3)
        EncodeGroup();
}

void CBase64OutputStream::Write(char const* buf, unsigned long off, unsigned long len) {
    if (buf == nullptr)
        return;
    CheckOpen();
    auto const* in = reinterpret_cast<unsigned char const*>(buf + off);
    // Complete a waiting group first, then encode whole groups a chunk at a time.
    while (len > 0 && m_groupCount != 0) {
        Write(static_cast<char>(*in++));
        --len;
    }
    char chars[kChunkBytes / 3 * 4];
    while (len >= 3) {
        unsigned long const n = len < kChunkBytes ? len - len % 3 : kChunkBytes;
        base::codec::EncodeBase64(in, n, chars);
        InternalWrite(chars, 0, n / 3 * 4);
        in += n;
        len -= n;
    }
    for (; len > 0; --len)
        m_group[m_groupCount++] = *in++;
}

void CBase64OutputStream::Write(char const* buf, unsigned long len) {
    Write(buf, 0, len);
}

void CBase64OutputStream::Flush() {
    CheckOpen();
    if (m_groupCount > 0)
        EncodeGroup();
    m_out->Flush();
}

void CBase64OutputStream::Close() {
    m_out.Close([this] {
        if (m_groupCount > 0)
            EncodeGroup();
    });
}

} // namespace io
} // namespace lumo
