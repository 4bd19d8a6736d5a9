// CDataOutputStream: writes typed values with no tags or padding (big-endian integers,
// floats and doubles in host order, UTF-8 strings after a 32-bit byte count).
#ifndef LUMO_IO_DATAOUTPUTSTREAM_H
#define LUMO_IO_DATAOUTPUTSTREAM_H

#include <lumo/base/Ref.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/OutputStream.h>
#include <lumo/io/Serializable.h>
#include <lumo/io/detail/WrappedStream.h>

namespace lumo {
namespace io {

/// Writes typed values without tags or padding: bool as 1 byte (1 or 0), 16- and
/// 32-bit integers big-endian, floats and doubles in the host's (little-endian) byte
/// order, strings as a 32-bit big-endian byte count and their UTF-8 bytes. The
/// raw-pointer form borrows the wrapped stream, the CRef form shares it.
class LUMO_API CDataOutputStream : public COutputStream {
    LUMO_DECLARE_CLASS(CDataOutputStream);

public:
    /// A null stream throws CIllegalArgumentException "Invalid output stream.".
    explicit CDataOutputStream(COutputStream* out);
    explicit CDataOutputStream(base::CRef<COutputStream> const& out);
    ~CDataOutputStream() override;

    /// Pass-through operations; like every typed write they throw CIOException
    /// "Stream closed." after Close.
    void Write(char const* buf, unsigned long off, unsigned long len) override;
    void Write(char const* buf, unsigned long len) override;
    void Write(char c) override;
    void Flush() override;
    /// Closes the wrapped stream; a second Close does nothing.
    void Close() override;

    virtual void WriteBool(bool value);
    virtual void WriteByte(char value);
    virtual void WriteUByte(unsigned char value);
    virtual void WriteInt16(short value);
    /// The low 32 bits.
    virtual void WriteInt32(long value);
    virtual void WriteUInt16(unsigned short value);
    virtual void WriteUInt32(unsigned long value);
    virtual void WriteFloat(float value);
    virtual void WriteDouble(double value);
    virtual void WriteString(base::CUnicodeString const& value);
    /// A null or empty text writes nothing at all, not even a count (unlike an empty
    /// CUnicodeString): a reader expecting a string there reads the next value's bytes.
    virtual void WriteString(unsigned short const* value);
    virtual void WriteObject(ISerializable const& object);

    CDataOutputStream& operator<<(bool value);
    CDataOutputStream& operator<<(char value);
    CDataOutputStream& operator<<(unsigned char value);
    CDataOutputStream& operator<<(short value);
    CDataOutputStream& operator<<(long value);
    CDataOutputStream& operator<<(unsigned short value);
    CDataOutputStream& operator<<(unsigned long value);
    CDataOutputStream& operator<<(float value);
    CDataOutputStream& operator<<(double value);
    CDataOutputStream& operator<<(unsigned short const* value);
    CDataOutputStream& operator<<(base::CUnicodeString const& value);
    CDataOutputStream& operator<<(ISerializable const& value);

protected:
    void CheckOpen() const;

    detail::WrappedStream<COutputStream> m_out;

private:
    CDataOutputStream(CDataOutputStream const&);
    CDataOutputStream& operator=(CDataOutputStream const&);
};

} // namespace io
} // namespace lumo

#endif
