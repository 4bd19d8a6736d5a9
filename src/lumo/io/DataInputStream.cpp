// CDataInputStream: typed reads over the wrapped stream, and string reads that grow their
// buffer with the bytes that arrive rather than trusting the count on the stream.
#include <lumo/io/DataInputStream.h>

#include <lumo/io/IOException.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/DataInputStream";
} // namespace

LUMO_DEFINE_CLASS(CDataInputStream, "lumo::io::CDataInputStream", "lumo::io::CInputStream");

CDataInputStream::CDataInputStream(CInputStream* in) : m_in(in) {
    if (m_in.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid input stream.");
}

CDataInputStream::CDataInputStream(base::CRef<CInputStream> const& in) : m_in(in) {
    if (m_in.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid input stream.");
}

CDataInputStream::~CDataInputStream() = default;

void CDataInputStream::CheckOpen() const {
    if (!m_in.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

unsigned long CDataInputStream::GetAvailable() const {
    CheckOpen();
    return m_in->GetAvailable();
}

long CDataInputStream::Read(char* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    return m_in->Read(buf, off, len);
}

long CDataInputStream::Read(char* buf, unsigned long len) {
    CheckOpen();
    return m_in->Read(buf, len);
}

long CDataInputStream::Read() {
    CheckOpen();
    return m_in->Read();
}

long CDataInputStream::Skip(unsigned long n) {
    CheckOpen();
    return m_in->Skip(n);
}

void CDataInputStream::Reset() {
    CheckOpen();
    m_in->Reset();
}

void CDataInputStream::Close() {
    m_in.Close();
}

void CDataInputStream::ReadRaw(unsigned char* buf, unsigned long count) {
    CheckOpen();
    std::memset(buf, 0, count);
    m_in->Read(reinterpret_cast<char*>(buf), count);
}

bool CDataInputStream::ReadBool() {
    CheckOpen();
    return m_in->Read() == 1;
}

char CDataInputStream::ReadByte() {
    CheckOpen();
    return static_cast<char>(m_in->Read() & 0xFF);
}

unsigned char CDataInputStream::ReadSByte() {
    CheckOpen();
    return static_cast<unsigned char>(m_in->Read() & 0xFF);
}

std::uint16_t CDataInputStream::ReadBig16() {
    unsigned char b[2];
    ReadRaw(b, 2);
    return static_cast<std::uint16_t>((b[0] << 8) | b[1]);
}

std::uint32_t CDataInputStream::ReadBig32() {
    unsigned char b[4];
    ReadRaw(b, 4);
    return (std::uint32_t(b[0]) << 24) | (std::uint32_t(b[1]) << 16) | (std::uint32_t(b[2]) << 8) |
           std::uint32_t(b[3]);
}

short CDataInputStream::ReadInt16() {
    return static_cast<short>(ReadBig16());
}

unsigned short CDataInputStream::ReadUInt16() {
    return ReadBig16();
}

long CDataInputStream::ReadInt32() {
    return static_cast<std::int32_t>(ReadBig32());
}

unsigned long CDataInputStream::ReadUInt32() {
    return ReadBig32();
}

float CDataInputStream::ReadFloat() {
    unsigned char b[4];
    ReadRaw(b, 4);
    // Little-endian on the wire, whatever the host.
    std::uint32_t const bits = std::uint32_t(b[0]) | (std::uint32_t(b[1]) << 8) |
                               (std::uint32_t(b[2]) << 16) | (std::uint32_t(b[3]) << 24);
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

double CDataInputStream::ReadDouble() {
    unsigned char b[8];
    ReadRaw(b, 8);
    std::uint64_t bits = 0;
    for (int i = 7; i >= 0; --i)
        bits = (bits << 8) | b[i];
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

base::CUnicodeString CDataInputStream::ReadUTF8(unsigned long count) {
    // The count comes from the stream, so it is not trusted with an allocation: the
    // bytes are read in pieces that start at 64 KiB and double, and the buffer grows
    // only with what actually arrived. A text of up to 64 KiB is one Read as before;
    // a longer one ends, like one large Read, at the first short read.
    std::unique_ptr<char, decltype(&std::free)> text(nullptr, &std::free);
    unsigned long const kFirstPiece = 64 * 1024;
    unsigned long capacity = 0, n = 0;
    for (;;) {
        unsigned long const want =
            n == 0 ? std::min(count, kFirstPiece) : std::min(count - n, capacity);
        if (n + want + 1 > capacity) {
            capacity = n + want + 1;
            char* grown = static_cast<char*>(std::realloc(text.get(), capacity));
            if (grown == nullptr)
                throw base::CMemoryException(kUnit, __LINE__);
            text.release();
            text.reset(grown);
        }
        long const got = want == 0 ? 0 : m_in->Read(text.get() + n, want);
        // Only what was read is decoded; the count itself is not checked.
        unsigned long const piece = got <= 0 ? 0 : std::min(static_cast<unsigned long>(got), want);
        n += piece;
        if (piece < want || n == count)
            break;
    }
    text.get()[n] = '\0';
    return base::CUnicodeString::FromUTF8(text.get(), static_cast<long>(n));
}

base::CUnicodeString CDataInputStream::ReadString() {
    return ReadUTF8(ReadBig32());
}

void CDataInputStream::ReadObject(ISerializable& object) {
    CheckOpen();
    object.Deserialize(*this);
}

CDataInputStream& CDataInputStream::operator>>(bool& value) {
    value = ReadBool();
    return *this;
}
CDataInputStream& CDataInputStream::operator>>(char& value) {
    value = ReadByte();
    return *this;
}
CDataInputStream& CDataInputStream::operator>>(unsigned char& value) {
    value = ReadSByte();
    return *this;
}
CDataInputStream& CDataInputStream::operator>>(short& value) {
    value = ReadInt16();
    return *this;
}
CDataInputStream& CDataInputStream::operator>>(long& value) {
    value = ReadInt32();
    return *this;
}
CDataInputStream& CDataInputStream::operator>>(unsigned short& value) {
    value = ReadUInt16();
    return *this;
}
CDataInputStream& CDataInputStream::operator>>(unsigned long& value) {
    value = ReadUInt32();
    return *this;
}
CDataInputStream& CDataInputStream::operator>>(float& value) {
    value = ReadFloat();
    return *this;
}
CDataInputStream& CDataInputStream::operator>>(double& value) {
    value = ReadDouble();
    return *this;
}
CDataInputStream& CDataInputStream::operator>>(base::CUnicodeString& value) {
    value = ReadString();
    return *this;
}
CDataInputStream& CDataInputStream::operator>>(ISerializable& value) {
    ReadObject(value);
    return *this;
}

} // namespace io
} // namespace lumo
