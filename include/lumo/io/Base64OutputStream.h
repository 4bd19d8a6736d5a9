// CBase64OutputStream: a filter that writes the bytes given to it as base64 text on the
// wrapped stream, in CR LF-separated lines of a chosen length.
#ifndef LUMO_IO_BASE64OUTPUTSTREAM_H
#define LUMO_IO_BASE64OUTPUTSTREAM_H

#include <lumo/base/Ref.h>
#include <lumo/io/OutputStream.h>
#include <lumo/io/detail/WrappedStream.h>

namespace lumo {
namespace io {

/// Encodes the bytes written as base64 text (standard alphabet, "=" padding) on the
/// wrapped stream, in lines of `lineLength` characters separated by CR LF (0: one
/// line). The raw-pointer form borrows the wrapped stream, the CRef form shares it.
class LUMO_API CBase64OutputStream : public COutputStream {
    LUMO_DECLARE_CLASS(CBase64OutputStream);

public:
    /// A null stream throws CIllegalArgumentException "Invalid output stream.".
    CBase64OutputStream(COutputStream* out, unsigned long lineLength);
    /// Shares `out`; a null reference throws CIllegalArgumentException "Invalid output stream.".
    CBase64OutputStream(base::CRef<COutputStream> const& out, unsigned long lineLength);
    ~CBase64OutputStream() override;

    /// Writes and Flush throw CIOException "Stream closed." after Close.
    void Write(char const* buf, unsigned long off, unsigned long len) override;
    void Write(char const* buf, unsigned long len) override;
    void Write(char c) override;
    /// Encodes a waiting group of 1 or 2 bytes at once, with its padding, then flushes
    /// the wrapped stream. A Flush in the middle of the data thus ends a quantum early.
    void Flush() override;
    /// Encodes a waiting group and closes the wrapped stream; a second Close does
    /// nothing.
    void Close() override;

protected:
    /// Writes encoded characters to the wrapped stream, breaking lines with CR LF at the line
    /// length.
    void InternalWrite(char const* chars, unsigned long off, unsigned long len);

private:
    CBase64OutputStream(CBase64OutputStream const&);
    CBase64OutputStream& operator=(CBase64OutputStream const&);

    void CheckOpen() const;
    void EncodeGroup();

    detail::WrappedStream<COutputStream> m_out;
    unsigned long m_lineLength;
    unsigned char m_group[3];
    unsigned long m_groupCount;
    unsigned long m_lineCount;
};

} // namespace io
} // namespace lumo

#endif
