// CMemoryOutputStream: collects written bytes in a C-heap block that grows in whole steps,
// and can hand the block over to the caller.
#ifndef LUMO_IO_MEMORYOUTPUTSTREAM_H
#define LUMO_IO_MEMORYOUTPUTSTREAM_H

#include <lumo/io/OutputStream.h>

namespace lumo {
namespace io {

/// Collects written bytes in a C heap block that grows linearly, in whole steps of
/// `growBy` bytes (64 when 0). A caller that knows the final size passes it as
/// `initialSize`, or a large step. The block can be taken over with DetachBuffer.
class LUMO_API CMemoryOutputStream : public COutputStream {
    LUMO_DECLARE_CLASS(CMemoryOutputStream);

public:
    /// Throws CMemoryException when the initial block cannot be allocated.
    explicit CMemoryOutputStream(unsigned long initialSize = 0, unsigned long growBy = 0);
    ~CMemoryOutputStream() override;

    /// Writes throw CIOException "Stream closed." after Close and "Memory full." when
    /// the block cannot grow (the stream is then unchanged and still open).
    void Write(char const* buf, unsigned long off, unsigned long len) override;
    void Write(char const* buf, unsigned long len) override;
    void Write(char c) override;
    void Flush() override;
    /// Ends writing; the bytes stay readable until destruction. Closing twice is
    /// harmless.
    void Close() override;

    /// The block holding the bytes written; null while no block is allocated (none asked for yet,
    /// or after DetachBuffer).
    char* GetBuffer() const { return m_buffer; }
    /// The number of bytes written (not the capacity).
    unsigned long GetBufferSize() const { return m_used; }
    /// The block's size in bytes.
    unsigned long GetBufferCapacity() const { return m_capacity; }
    /// Hands the block (or null) to the caller, who frees it with `free`; the stream
    /// starts a new block on the next write.
    char* DetachBuffer();
    /// Forgets the written bytes, keeping the block.
    void Reset() { m_used = 0; }
    /// Makes room for `needed` bytes, rounded up to the growth step; false when the
    /// block cannot be allocated (nothing then changes).
    bool EnsureBufferCapacity(unsigned long needed);

private:
    CMemoryOutputStream(CMemoryOutputStream const&);
    CMemoryOutputStream& operator=(CMemoryOutputStream const&);

    void Append(char const* src, unsigned long len);

    char* m_buffer;
    unsigned long m_used;
    unsigned long m_capacity;
    unsigned long m_growBy;
    bool m_open;
};

} // namespace io
} // namespace lumo

#endif
