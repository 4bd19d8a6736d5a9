// CInputStream, the abstract source of bytes: single-byte reads sign-extended with a
// distinct EOS, block reads returning -1 at the end, and a default Skip.
#ifndef LUMO_IO_INPUTSTREAM_H
#define LUMO_IO_INPUTSTREAM_H

#include <lumo/base/Object.h>

namespace lumo {
/// Byte streams and their filters, data streams, UTF-16 readers and writers, encoders, print
/// streams, file streams, and the XML readers and writers.
namespace io {

/// Abstract source of bytes. The single-byte Read() returns the byte sign-extended
/// (0xFF comes back as -1) and EOS at the end; the block reads return -1 at the end.
class LUMO_API CInputStream : public base::CObject {
    LUMO_DECLARE_CLASS(CInputStream);

public:
    /// End of data for the single-byte Read(); deliberately distinct from the -1 of
    /// the block reads and from every sign-extended byte.
    static constexpr long EOS = 0xFFFF;

    ~CInputStream() override;

    /// The number of bytes that can be read without blocking; 0 when unknown or at the end.
    virtual unsigned long GetAvailable() const = 0;
    /// Up to `len` bytes into buf[off..]; the count read, or -1 at the end.
    virtual long Read(char* buf, unsigned long off, unsigned long len) = 0;
    /// Read(buf, 0, len) through the slot.
    virtual long Read(char* buf, unsigned long len);
    /// One byte through the block read: EOS at the end, else the byte sign-extended.
    virtual long Read();
    /// Skips by single reads and returns the number of bytes NOT skipped (0 when all
    /// n were consumed). Concrete streams return the number skipped instead.
    virtual long Skip(unsigned long n);
    /// Returns to the stream's start or mark, where the stream supports it; otherwise throws
    /// CIOException.
    virtual void Reset() = 0;
    /// Releases the source; later reads throw CIOException "Stream closed." where the stream
    /// checks.
    virtual void Close() = 0;

protected:
    CInputStream() {}
};

} // namespace io
} // namespace lumo

#endif
