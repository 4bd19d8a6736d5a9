// CDataOutputStream: each typed value as one block write on the wrapped stream, strings as
// a 32-bit big-endian byte count and their UTF-8 bytes.
#include <lumo/io/DataOutputStream.h>

#include <lumo/io/IOException.h>

#include <cstdint>
#include <cstring>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/DataOutputStream";

// Big-endian integers, each as one block write.
void Put16(COutputStream* out, std::uint16_t v) {
    char const b[2] = {static_cast<char>(v >> 8), static_cast<char>(v)};
    out->Write(b, 2);
}

void Put32(COutputStream* out, std::uint32_t v) {
    char const b[4] = {static_cast<char>(v >> 24), static_cast<char>(v >> 16),
                       static_cast<char>(v >> 8), static_cast<char>(v)};
    out->Write(b, 4);
}

} // namespace

LUMO_DEFINE_CLASS(CDataOutputStream, "lumo::io::CDataOutputStream", "lumo::io::COutputStream");

CDataOutputStream::CDataOutputStream(COutputStream* out) : m_out(out) {
    if (m_out.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid output stream.");
}

CDataOutputStream::CDataOutputStream(base::CRef<COutputStream> const& out) : m_out(out) {
    if (m_out.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid output stream.");
}

CDataOutputStream::~CDataOutputStream() = default;

void CDataOutputStream::CheckOpen() const {
    if (!m_out.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

void CDataOutputStream::Write(char const* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    m_out->Write(buf, off, len);
}

void CDataOutputStream::Write(char const* buf, unsigned long len) {
    CheckOpen();
    m_out->Write(buf, len);
}

void CDataOutputStream::Write(char c) {
    CheckOpen();
    m_out->Write(c);
}

void CDataOutputStream::Flush() {
    CheckOpen();
    m_out->Flush();
}

void CDataOutputStream::Close() {
    m_out.Close();
}

void CDataOutputStream::WriteBool(bool value) {
    CheckOpen();
    m_out->Write(static_cast<char>(value ? 1 : 0));
}

void CDataOutputStream::WriteByte(char value) {
    CheckOpen();
    m_out->Write(value);
}

void CDataOutputStream::WriteUByte(unsigned char value) {
    CheckOpen();
    m_out->Write(static_cast<char>(value));
}

void CDataOutputStream::WriteInt16(short value) {
    CheckOpen();
    Put16(m_out.Get(), static_cast<std::uint16_t>(value));
}

void CDataOutputStream::WriteUInt16(unsigned short value) {
    CheckOpen();
    Put16(m_out.Get(), value);
}

void CDataOutputStream::WriteInt32(long value) {
    CheckOpen();
    Put32(m_out.Get(), static_cast<std::uint32_t>(value));
}

void CDataOutputStream::WriteUInt32(unsigned long value) {
    CheckOpen();
    Put32(m_out.Get(), static_cast<std::uint32_t>(value));
}

void CDataOutputStream::WriteFloat(float value) {
    CheckOpen();
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    // Little-endian on the wire (the host order of the platforms that defined it).
    char const b[4] = {static_cast<char>(bits), static_cast<char>(bits >> 8),
                       static_cast<char>(bits >> 16), static_cast<char>(bits >> 24)};
    m_out->Write(b, 4);
}

void CDataOutputStream::WriteDouble(double value) {
    CheckOpen();
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    char b[8];
    for (int i = 0; i < 8; ++i)
        b[i] = static_cast<char>(bits >> (8 * i));
    m_out->Write(b, 8);
}

void CDataOutputStream::WriteString(base::CUnicodeString const& value) {
    CheckOpen();
    base::CString const utf8 = value.ToUTF8();
    std::uint32_t const n = static_cast<std::uint32_t>(utf8.GetLength());
    Put32(m_out.Get(), n);
    m_out->Write(static_cast<char const*>(utf8), n);
}

void CDataOutputStream::WriteString(unsigned short const* value) {
    CheckOpen();
    if (value == nullptr || *value == 0)
        return;
    WriteString(base::CUnicodeString(value));
}

void CDataOutputStream::WriteObject(ISerializable const& object) {
    CheckOpen();
    object.Serialize(*this);
}

CDataOutputStream& CDataOutputStream::operator<<(bool value) {
    WriteBool(value);
    return *this;
}
CDataOutputStream& CDataOutputStream::operator<<(char value) {
    WriteByte(value);
    return *this;
}
CDataOutputStream& CDataOutputStream::operator<<(unsigned char value) {
    WriteUByte(value);
    return *this;
}
CDataOutputStream& CDataOutputStream::operator<<(short value) {
    WriteInt16(value);
    return *this;
}
CDataOutputStream& CDataOutputStream::operator<<(long value) {
    WriteInt32(value);
    return *this;
}
CDataOutputStream& CDataOutputStream::operator<<(unsigned short value) {
    WriteUInt16(value);
    return *this;
}
CDataOutputStream& CDataOutputStream::operator<<(unsigned long value) {
    WriteUInt32(value);
    return *this;
}
CDataOutputStream& CDataOutputStream::operator<<(float value) {
    WriteFloat(value);
    return *this;
}
CDataOutputStream& CDataOutputStream::operator<<(double value) {
    WriteDouble(value);
    return *this;
}
CDataOutputStream& CDataOutputStream::operator<<(unsigned short const* value) {
    WriteString(value);
    return *this;
}
CDataOutputStream& CDataOutputStream::operator<<(base::CUnicodeString const& value) {
    WriteString(value);
    return *this;
}
CDataOutputStream& CDataOutputStream::operator<<(ISerializable const& value) {
    WriteObject(value);
    return *this;
}

} // namespace io
} // namespace lumo
