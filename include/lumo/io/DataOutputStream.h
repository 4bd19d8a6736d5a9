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
    /// Shares `out`; a null reference throws CIllegalArgumentException "Invalid output stream.".
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

    /// One byte: 1 for true, 0 for false.
    virtual void WriteBool(bool value);
    /// One byte.
    ///@{
    virtual void WriteByte(char value);
    virtual void WriteUByte(unsigned char value);
    ///@}
    /// Two bytes, big-endian.
    virtual void WriteInt16(short value);
    /// The low 32 bits.
    virtual void WriteInt32(long value);
    /// Two bytes, big-endian.
    virtual void WriteUInt16(unsigned short value);
    /// The low 32 bits as four bytes, big-endian.
    virtual void WriteUInt32(unsigned long value);
    /// The IEEE bytes in the host's byte order (4 and 8 bytes).
    ///@{
    virtual void WriteFloat(float value);
    virtual void WriteDouble(double value);
    ///@}
    /// A 32-bit big-endian count of UTF-8 bytes, then the bytes; an empty string writes the count
    /// 0.
    virtual void WriteString(base::CUnicodeString const& value);
    /// A null or empty text writes nothing at all, not even a count (unlike an empty
    /// CUnicodeString): a reader expecting a string there reads the next value's bytes.
    virtual void WriteString(unsigned short const* value);
    /// Lets `object` write itself here (its Serialize with this stream).
    virtual void WriteObject(ISerializable const& object);

    /// The typed write of the same type (a char is WriteByte, an unsigned char WriteUByte); returns
    /// this stream.
    ///@{
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
    ///@}

protected:
    /// Throws CIOException "Stream closed." after Close.
    void CheckOpen() const;

    /// The wrapped stream in either form (a shared one kept alive); null after Close.
    detail::WrappedStream<COutputStream> m_out;

private:
    CDataOutputStream(CDataOutputStream const&);
    CDataOutputStream& operator=(CDataOutputStream const&);
};

} // namespace io
} // namespace lumo

#endif
