// CDataInputStream: reads the typed values CDataOutputStream writes (big-endian integers,
// floats and doubles in host order, strings with a 32-bit byte count).
#ifndef LUMO_IO_DATAINPUTSTREAM_H
#define LUMO_IO_DATAINPUTSTREAM_H

#include <lumo/base/Ref.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/InputStream.h>
#include <lumo/io/Serializable.h>
#include <lumo/io/detail/WrappedStream.h>

#include <cstdint>

namespace lumo {
namespace io {

/// Reads typed values written by CDataOutputStream: big-endian integers, floats and
/// doubles in the host's (little-endian) byte order, strings as a 32-bit big-endian
/// byte count and UTF-8. Each value is one read on the wrapped stream; a short read
/// or the end of the data is not reported (check GetAvailable when it matters).
/// The raw-pointer form borrows the wrapped stream, the CRef form shares it.
class LUMO_API CDataInputStream : public CInputStream {
    LUMO_DECLARE_CLASS(CDataInputStream);

public:
    /// A null stream throws CIllegalArgumentException "Invalid input stream.".
    explicit CDataInputStream(CInputStream* in);
    /// Shares `in`; a null reference throws CIllegalArgumentException "Invalid input stream.".
    explicit CDataInputStream(base::CRef<CInputStream> const& in);
    ~CDataInputStream() override;

    /// Pass-through operations; like every typed read they throw CIOException
    /// "Stream closed." after Close.
    unsigned long GetAvailable() const override;
    long Read(char* buf, unsigned long off, unsigned long len) override;
    long Read(char* buf, unsigned long len) override;
    long Read() override;
    long Skip(unsigned long n) override;
    void Reset() override;
    /// Closes the wrapped stream; a second Close does nothing.
    void Close() override;

    /// True only for the byte 1.
    virtual bool ReadBool();
    /// The low 8 bits of one Read(): signed for ReadByte, unsigned for ReadSByte (the
    /// names are the other way round from the types, and stay so).
    ///@{
    virtual char ReadByte();
    virtual unsigned char ReadSByte();
    ///@}
    /// Two bytes, big-endian.
    virtual short ReadInt16();
    /// Four bytes, big-endian, as a signed 32-bit value.
    virtual long ReadInt32();
    /// Two bytes, big-endian.
    virtual unsigned short ReadUInt16();
    /// Four bytes, big-endian.
    virtual unsigned long ReadUInt32();
    /// The IEEE bytes in the host's byte order (4 and 8 bytes).
    ///@{
    virtual float ReadFloat();
    virtual double ReadDouble();
    ///@}
    /// A 32-bit big-endian byte count, then that many UTF-8 bytes; CMemoryException when the text
    /// cannot be held.
    virtual base::CUnicodeString ReadString();
    /// Lets `object` read itself from here (its Deserialize with this stream).
    virtual void ReadObject(ISerializable& object);

    /// The typed read of the same type (a char is ReadByte, an unsigned char ReadSByte); returns
    /// this stream.
    ///@{
    CDataInputStream& operator>>(bool& value);
    CDataInputStream& operator>>(char& value);
    CDataInputStream& operator>>(unsigned char& value);
    CDataInputStream& operator>>(short& value);
    CDataInputStream& operator>>(long& value);
    CDataInputStream& operator>>(unsigned short& value);
    CDataInputStream& operator>>(unsigned long& value);
    CDataInputStream& operator>>(float& value);
    CDataInputStream& operator>>(double& value);
    CDataInputStream& operator>>(base::CUnicodeString& value);
    CDataInputStream& operator>>(ISerializable& value);
    ///@}

protected:
    /// Throws CIOException "Stream closed." after Close.
    void CheckOpen() const;
    /// Reads `count` bytes (fewer at the end) into `buf`, zeroing what is not read.
    void ReadRaw(unsigned char* buf, unsigned long count);
    /// Big-endian counts and integers.
    ///@{
    std::uint16_t ReadBig16();
    std::uint32_t ReadBig32();
    ///@}
    /// Reads a string of `count` UTF-8 bytes.
    base::CUnicodeString ReadUTF8(unsigned long count);

    /// The wrapped stream in either form (a shared one kept alive); null after Close.
    detail::WrappedStream<CInputStream> m_in;

private:
    CDataInputStream(CDataInputStream const&);
    CDataInputStream& operator=(CDataInputStream const&);
};

} // namespace io
} // namespace lumo

#endif
