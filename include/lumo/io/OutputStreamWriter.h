// COutputStreamWriter: a writer that encodes UTF-16 units into a named encoding through a
// registered converter and writes the bytes to a stream from a growing buffer.
#ifndef LUMO_IO_OUTPUTSTREAMWRITER_H
#define LUMO_IO_OUTPUTSTREAMWRITER_H

#include <lumo/base/Ref.h>
#include <lumo/base/String.h>
#include <lumo/io/OutputStream.h>
#include <lumo/io/WCharToCharConverter.h>
#include <lumo/io/Writer.h>
#include <lumo/io/detail/UnitBuffer.h>
#include <lumo/io/detail/WrappedStream.h>

namespace lumo {
namespace io {

/// Turns UTF-16 units into bytes of a named encoding on a byte stream, collecting
/// the bytes in a buffer (8196 bytes to begin with). The raw-pointer form borrows the
/// stream, the CRef form shares it. The destructor neither flushes nor closes.
class LUMO_API COutputStreamWriter : public CWriter {
    LUMO_DECLARE_CLASS(COutputStreamWriter);

public:
    /// A null stream: CIllegalArgumentException "Invalid output stream.."; a null or
    /// empty encoding: "Invalid encoding."; an unknown one:
    /// CUnsupportedEncodingException; no memory: CMemoryException.
    COutputStreamWriter(COutputStream* out, char const* encoding);
    /// Shares `out`; failures as for the raw-pointer form.
    COutputStreamWriter(base::CRef<COutputStream> const& out, char const* encoding);
    ~COutputStreamWriter() override;

    COutputStreamWriter(COutputStreamWriter const&) = delete;
    COutputStreamWriter& operator=(COutputStreamWriter const&) = delete;

    /// The encoding name as given.
    base::CString const& GetEncoding() const { return m_encoding; }

    /// Every write throws CIOException "Writer closed." after Close. A null block
    /// writes nothing.
    void Write(base::CUnicodeString const& s, unsigned long off, unsigned long len) override;
    void Write(base::CUnicodeString const& s) override;
    void Write(unsigned short const* buf, unsigned long off, unsigned long len) override;
    void Write(unsigned short const* buf, unsigned long len) override;
    void Write(unsigned short const* text) override;
    void Write(unsigned short c) override;
    /// The waiting bytes, then the stream's Flush.
    void Flush() override;
    /// Writes the waiting bytes and closes the stream (which is closed even when the
    /// bytes cannot be written); a second Close does nothing.
    void Close() override;

protected:
    /// One block write of the waiting bytes, if any.
    void FlushBuffer();
    /// Converts in one piece into the free part of the buffer if it can; otherwise
    /// writes the buffer out once to make room, and doubles the buffer only when
    /// even an empty one cannot hold the converted text (CIOException "Memory full."
    /// when that fails).
    void InternalWrite(unsigned short const* buf, unsigned long off, unsigned long len);
    /// Lets go of the stream and closes it; nothing when already closed.
    void InternalClose();

private:
    void Init(char const* encoding);
    void CheckOpen() const;

    detail::WrappedStream<COutputStream> m_out;
    base::CString m_encoding;
    base::CRef<CWCharToCharConverter> m_converter;
    detail::UnitBuffer<char> m_buffer;
};

} // namespace io
} // namespace lumo

#endif
