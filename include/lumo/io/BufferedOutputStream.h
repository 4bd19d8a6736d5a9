// CBufferedOutputStream: a filter that collects small writes into one block write on the
// wrapped stream; its destructor neither flushes nor closes.
#ifndef LUMO_IO_BUFFEREDOUTPUTSTREAM_H
#define LUMO_IO_BUFFEREDOUTPUTSTREAM_H

#include <lumo/base/Ref.h>
#include <lumo/io/OutputStream.h>
#include <lumo/io/detail/UnitBuffer.h>
#include <lumo/io/detail/WrappedStream.h>

namespace lumo {
namespace io {

/// Collects small writes into one block write on the wrapped stream. The raw-pointer
/// form borrows the wrapped stream, the CRef form shares it. The destructor neither
/// flushes nor closes: bytes still waiting are lost unless Flush or Close was called.
class LUMO_API CBufferedOutputStream : public COutputStream {
    LUMO_DECLARE_CLASS(CBufferedOutputStream);

public:
    /// A null stream throws CIllegalArgumentException "Invalid output stream."; a
    /// size of 0 throws "Invaid buffer size."; a buffer that cannot be allocated
    /// throws CMemoryException.
    CBufferedOutputStream(COutputStream* out, unsigned long size);
    /// Shares `out`; failures as for the raw-pointer form.
    CBufferedOutputStream(base::CRef<COutputStream> const& out, unsigned long size);
    ~CBufferedOutputStream() override;

    /// Writes and Flush throw CIOException "Stream closed." after Close. A null or
    /// unreadable block is ignored. A block at least as large as the buffer goes
    /// straight through after the waiting bytes.
    void Write(char const* buf, unsigned long off, unsigned long len) override;
    void Write(char const* buf, unsigned long len) override;
    void Write(char c) override;
    void Flush() override;
    /// Writes the waiting bytes and closes the wrapped stream; a second Close does
    /// nothing.
    void Close() override;

protected:
    /// Checks the arguments and allocates a buffer of `size` bytes; the failures of the
    /// constructors.
    void Init(unsigned long size);
    /// One block write of the waiting bytes, if any; CIOException "Stream closed." after Close.
    void FlushBuffer();
    /// Buffers the bytes, or writes them straight through after the waiting ones when they are at
    /// least the buffer's size; CIOException "Stream closed." after Close.
    void InternalWrite(char const* buf, unsigned long off, unsigned long len);
    /// Lets go of the wrapped stream and closes it; nothing when already closed.
    void InternalClose();

private:
    CBufferedOutputStream(CBufferedOutputStream const&);
    CBufferedOutputStream& operator=(CBufferedOutputStream const&);

    detail::WrappedStream<COutputStream> m_out;
    detail::UnitBuffer<char> m_buffer;
};

} // namespace io
} // namespace lumo

#endif
