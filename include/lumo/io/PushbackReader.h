// CPushbackReader: a reader that can give UTF-16 units back into a buffer that fills from
// its end, read before the wrapped reader.
#ifndef LUMO_IO_PUSHBACKREADER_H
#define LUMO_IO_PUSHBACKREADER_H

#include <lumo/base/Ref.h>
#include <lumo/io/Reader.h>
#include <lumo/io/detail/UnitBuffer.h>
#include <lumo/io/detail/WrappedStream.h>

namespace lumo {
namespace io {

/// A reader that can give units back. The pushback buffer fills from its end:
/// units given back one by one are read again last-first, a block given back is
/// read again in its own order. The raw-pointer form borrows the reader, the CRef
/// form shares it. Use after Close throws CIOException "Reader closed.".
class LUMO_API CPushbackReader : public CReader {
    LUMO_DECLARE_CLASS(CPushbackReader);

public:
    /// `size` in 16-bit units. A null reader: CIllegalArgumentException "Invalid
    /// reader."; size 0: "Invalid pushback buffer size."; no memory: CMemoryException.
    CPushbackReader(CReader* reader, unsigned long size);
    /// Shares `reader`; failures as for the raw-pointer form.
    CPushbackReader(base::CRef<CReader> const& reader, unsigned long size);
    ~CPushbackReader() override;

    CPushbackReader(CPushbackReader const&) = delete;
    CPushbackReader& operator=(CPushbackReader const&) = delete;

    /// Units given back first, then the wrapped reader. -1 only when nothing was
    /// given back and the wrapped reader is at its end.
    long Read(unsigned short* buf, unsigned long off, unsigned long len) override;
    long Read(unsigned short* buf, unsigned long len) override;
    long Read() override;
    /// Units given back first, then the wrapped reader's Skip for the rest (whose
    /// result is added as that reader reports it).
    long Skip(unsigned long n) override;
    /// Forgets the units given back and resets the wrapped reader.
    void Reset() override;
    /// Closes the wrapped reader; this reader is closed even when that throws.
    void Close() override;

    /// CIOException "Pushback buffer is full." when there is no room (for a block:
    /// room for all of it); nothing is given back then.
    ///@{
    void Unread(unsigned short c);
    void Unread(unsigned short const* buf, unsigned long len);
    void Unread(unsigned short const* buf, unsigned long off, unsigned long len);
    ///@}

private:
    void Init(unsigned long size);
    void CheckOpen() const;

    detail::WrappedStream<CReader> m_reader;
    detail::UnitBuffer<unsigned short> m_buffer;
};

} // namespace io
} // namespace lumo

#endif
