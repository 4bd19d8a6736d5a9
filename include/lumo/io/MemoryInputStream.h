// CMemoryInputStream: reads a caller's memory block in place, freeing it on close or
// destruction when told it owns the block.
#ifndef LUMO_IO_MEMORYINPUTSTREAM_H
#define LUMO_IO_MEMORYINPUTSTREAM_H

#include <lumo/io/InputStream.h>

namespace lumo {
namespace io {

/// Reads a caller's memory block in place (no copy). With `ownsData` the stream
/// frees the block (C heap `free`) on Close or destruction, whichever comes first.
class LUMO_API CMemoryInputStream : public CInputStream {
    LUMO_DECLARE_CLASS(CMemoryInputStream);

public:
    /// A null or unreadable block throws CIllegalArgumentException "Invalid source
    /// buffer." (the block is then left to the caller).
    CMemoryInputStream(char const* data, unsigned long length, bool ownsData);
    ~CMemoryInputStream() override;

    /// Every operation throws CIOException "Stream closed." after Close.
    unsigned long GetAvailable() const override;
    /// A null or unwritable `buf` turns the call into Skip(len).
    long Read(char* buf, unsigned long off, unsigned long len) override;
    long Read(char* buf, unsigned long len) override;
    long Read() override;
    /// Returns the number of bytes skipped.
    long Skip(unsigned long n) override;
    /// Back to the start of the block.
    void Reset() override;
    void Close() override;

private:
    CMemoryInputStream(CMemoryInputStream const&);
    CMemoryInputStream& operator=(CMemoryInputStream const&);

    void CheckOpen() const;
    void Release() noexcept;

    char const* m_data;
    unsigned long m_length;
    unsigned long m_position;
    bool m_ownsData;
};

} // namespace io
} // namespace lumo

#endif
