// CBufferedWriter: a writer that collects small UTF-16 writes into block writes on the
// wrapped writer; its destructor neither flushes nor closes.
#ifndef LUMO_IO_BUFFEREDWRITER_H
#define LUMO_IO_BUFFEREDWRITER_H

#include <lumo/base/Ref.h>
#include <lumo/io/Writer.h>
#include <lumo/io/detail/UnitBuffer.h>
#include <lumo/io/detail/WrappedStream.h>

namespace lumo {
namespace io {

/// Collects small writes into block writes on the wrapped writer. The raw-pointer
/// form borrows the writer, the CRef form shares it. The destructor neither flushes
/// nor closes: units still buffered are lost unless Flush or Close was called.
class LUMO_API CBufferedWriter : public CWriter {
    LUMO_DECLARE_CLASS(CBufferedWriter);

public:
    /// `size` in 16-bit units. A null writer: CIllegalArgumentException "Invalid
    /// writer."; size 0: "Invalid buffer size."; no memory: CMemoryException.
    CBufferedWriter(CWriter* writer, unsigned long size);
    /// Shares `writer`; failures as for the raw-pointer form.
    CBufferedWriter(base::CRef<CWriter> const& writer, unsigned long size);
    ~CBufferedWriter() override;

    CBufferedWriter(CBufferedWriter const&) = delete;
    CBufferedWriter& operator=(CBufferedWriter const&) = delete;

    void Write(base::CUnicodeString const& s, unsigned long off, unsigned long len) override;
    void Write(base::CUnicodeString const& s) override;
    /// A block smaller than the buffer is copied in, the buffer going out whenever it
    /// becomes full; a larger one goes straight to the wrapped writer after the
    /// buffer. A null block writes nothing.
    void Write(unsigned short const* buf, unsigned long off, unsigned long len) override;
    void Write(unsigned short const* buf, unsigned long len) override;
    void Write(unsigned short const* text) override;
    void Write(unsigned short c) override;
    /// The buffer, then the wrapped writer's Flush.
    void Flush() override;
    /// Writes the buffer out and closes the wrapped writer (which is closed even when
    /// the buffer cannot be written); a second Close does nothing.
    void Close() override;

protected:
    /// One block write of the waiting units, if any.
    void FlushBuffer();
    /// Buffers the units, or writes them straight through after the waiting ones when they are at
    /// least the buffer's size; CIOException "Writer closed." after Close.
    void InternalWrite(unsigned short const* buf, unsigned long off, unsigned long len);
    /// Lets go of the wrapped writer and closes it; nothing when already closed.
    void InternalClose();

private:
    void Init(unsigned long size);
    void CheckOpen() const;

    detail::WrappedStream<CWriter> m_writer;
    detail::UnitBuffer<unsigned short> m_buffer;
};

} // namespace io
} // namespace lumo

#endif
