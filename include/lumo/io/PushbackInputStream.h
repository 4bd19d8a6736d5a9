// CPushbackInputStream: a filter that lets a reader give bytes back, single bytes read
// again in reverse order and blocks in their own order.
#ifndef LUMO_IO_PUSHBACKINPUTSTREAM_H
#define LUMO_IO_PUSHBACKINPUTSTREAM_H

#include <lumo/base/Ref.h>
#include <lumo/io/InputStream.h>
#include <lumo/io/detail/UnitBuffer.h>
#include <lumo/io/detail/WrappedStream.h>

namespace lumo {
namespace io {

/// Lets a reader give bytes back. Bytes given back one by one are read again in
/// reverse order; a block given back is read again in its own order. The raw-pointer
/// form borrows the wrapped stream, the CRef form shares it.
class LUMO_API CPushbackInputStream : public CInputStream {
    LUMO_DECLARE_CLASS(CPushbackInputStream);

public:
    /// A null stream throws CIllegalArgumentException "Invalid input stream."; a size
    /// of 0 throws "Invalid pushback buffer size."; a buffer that cannot be allocated
    /// throws CMemoryException.
    CPushbackInputStream(CInputStream* in, unsigned long size);
    /// Shares `in`; failures as for the raw-pointer form.
    CPushbackInputStream(base::CRef<CInputStream> const& in, unsigned long size);
    ~CPushbackInputStream() override;

    /// Held-back bytes first, then the wrapped stream. Every operation throws
    /// CIOException "Stream closed." after Close.
    unsigned long GetAvailable() const override;
    /// When the held-back bytes do not cover the request, the result is their count
    /// plus whatever the wrapped stream returns, -1 included.
    long Read(char* buf, unsigned long off, unsigned long len) override;
    long Read(char* buf, unsigned long len) override;
    long Read() override;
    long Skip(unsigned long n) override;
    /// Drops the held-back bytes and resets the wrapped stream.
    void Reset() override;
    void Close() override;

    /// Throw CIOException "Pushback buffer is full." when there is no room (a block
    /// is then given back not at all). A null or unreadable block gives back nothing.
    ///@{
    void Unread(char c);
    void Unread(char const* buf, unsigned long len);
    void Unread(char const* buf, unsigned long off, unsigned long len);
    ///@}

private:
    CPushbackInputStream(CPushbackInputStream const&);
    CPushbackInputStream& operator=(CPushbackInputStream const&);

    void Init(unsigned long size);
    void CheckOpen() const;

    detail::WrappedStream<CInputStream> m_in;
    detail::UnitBuffer<char> m_buffer;
};

} // namespace io
} // namespace lumo

#endif
