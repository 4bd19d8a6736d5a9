// CBufferedInputStream: a filter that reads the wrapped stream in blocks of its buffer's
// size, borrowing the stream through a raw pointer or sharing it through a CRef.
#ifndef LUMO_IO_BUFFEREDINPUTSTREAM_H
#define LUMO_IO_BUFFEREDINPUTSTREAM_H

#include <lumo/base/Ref.h>
#include <lumo/io/InputStream.h>
#include <lumo/io/detail/UnitBuffer.h>
#include <lumo/io/detail/WrappedStream.h>

namespace lumo {
namespace io {

/// Reads the wrapped stream in blocks of the buffer's size. The raw-pointer form
/// borrows the wrapped stream (the caller keeps it alive and deletes it); the CRef
/// form shares it. Close closes the wrapped stream; the destructor never does.
class LUMO_API CBufferedInputStream : public CInputStream {
    LUMO_DECLARE_CLASS(CBufferedInputStream);

public:
    /// A null stream throws CIllegalArgumentException "Invalid input stream."; a size
    /// of 0 means 512 bytes; a buffer that cannot be allocated throws
    /// CMemoryException.
    CBufferedInputStream(CInputStream* in, unsigned long size);
    /// Shares `in`; failures as for the raw-pointer form.
    CBufferedInputStream(base::CRef<CInputStream> const& in, unsigned long size);
    ~CBufferedInputStream() override;

    /// Every operation throws CIOException "Stream closed." after Close.
    unsigned long GetAvailable() const override;
    /// Refills at most once per call and returns 0 (not -1) at the end. A request
    /// larger than the buffer goes straight to the wrapped stream, ahead of any bytes
    /// still waiting here.
    long Read(char* buf, unsigned long off, unsigned long len) override;
    long Read(char* buf, unsigned long len) override;
    long Read() override;
    long Skip(unsigned long n) override;
    /// Drops the buffered bytes and resets the wrapped stream.
    void Reset() override;
    void Close() override;

private:
    CBufferedInputStream(CBufferedInputStream const&);
    CBufferedInputStream& operator=(CBufferedInputStream const&);

    void CreateBuffer(unsigned long size);
    void FillBuffer();
    void CheckOpen() const;

    detail::WrappedStream<CInputStream> m_in;
    detail::UnitBuffer<char> m_buffer;
};

} // namespace io
} // namespace lumo

#endif
