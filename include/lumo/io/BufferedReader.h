// CBufferedReader: a reader that fills a UTF-16 buffer from another reader in blocks and
// serves smaller reads and skips from it.
#ifndef LUMO_IO_BUFFEREDREADER_H
#define LUMO_IO_BUFFEREDREADER_H

#include <lumo/base/Ref.h>
#include <lumo/io/Reader.h>
#include <lumo/io/detail/UnitBuffer.h>
#include <lumo/io/detail/WrappedStream.h>

namespace lumo {
namespace io {

/// Reads the wrapped reader in blocks of the buffer's size. The raw-pointer form
/// borrows the reader, the CRef form shares it; Close closes it. Use after Close
/// throws CIOException "Reader closed.".
class LUMO_API CBufferedReader : public CReader {
    LUMO_DECLARE_CLASS(CBufferedReader);

public:
    /// `size` in 16-bit units. A null reader: CIllegalArgumentException "Invalid
    /// reader."; size 0: "Invalid buffer size."; no memory: CMemoryException.
    CBufferedReader(CReader* reader, unsigned long size);
    /// Shares `reader`; failures as for the raw-pointer form.
    CBufferedReader(base::CRef<CReader> const& reader, unsigned long size);
    ~CBufferedReader() override;

    CBufferedReader(CBufferedReader const&) = delete;
    CBufferedReader& operator=(CBufferedReader const&) = delete;

    /// A request larger than the buffer goes straight to the wrapped reader (units
    /// still buffered wait for the next read); otherwise the buffer is refilled at
    /// most once. -1 only when nothing was left at all.
    long Read(unsigned short* buf, unsigned long off, unsigned long len) override;
    long Read(unsigned short* buf, unsigned long len) override;
    long Read() override;
    /// Buffered units first, then the wrapped reader's Skip for the rest (whose
    /// result is added as that reader reports it).
    long Skip(unsigned long n) override;
    /// Drops the buffer and resets the wrapped reader.
    void Reset() override;
    /// Closes the wrapped reader; this reader is closed even when that throws.
    void Close() override;

private:
    void Init(unsigned long size);
    void CheckOpen() const;
    /// Moves the unread rest to the front and reads once into the free part; false
    /// when the wrapped reader reported the end.
    bool FillBuffer();

    detail::WrappedStream<CReader> m_reader;
    detail::UnitBuffer<unsigned short> m_buffer;
};

} // namespace io
} // namespace lumo

#endif
