// CReader, the abstract source of UTF-16 code units: single-unit reads zero-extended with
// EOS at the end, block reads, and a default Skip.
#ifndef LUMO_IO_READER_H
#define LUMO_IO_READER_H

#include <lumo/base/Object.h>

namespace lumo {
namespace io {

/// Abstract source of UTF-16 code units. The single-unit Read returns the unit
/// zero-extended (0..65535) or EOS at the end; block reads return the number of
/// units read, or -1 at the end.
class LUMO_API CReader : public base::CObject {
    LUMO_DECLARE_CLASS(CReader);

public:
    /// Not 0xFFFF as for byte streams: that is a valid UTF-16 unit.
    static constexpr long EOS = 0xFFFFF;

    ~CReader() override;

    /// Up to `len` units into buf[off..]; the count read, or -1 at the end.
    virtual long Read(unsigned short* buf, unsigned long off, unsigned long len) = 0;
    /// Read(buf, 0, len).
    virtual long Read(unsigned short* buf, unsigned long len);
    /// One unit through Read(&u, 0, 1); EOS when that reports the end.
    virtual long Read();
    /// Reads up to n units one by one and returns the number NOT skipped (0 when all
    /// were consumed), as CInputStream::Skip does.
    virtual long Skip(unsigned long n);
    /// Returns to the reader's start or mark, where it supports one; otherwise throws CIOException.
    virtual void Reset() = 0;
    /// Releases the source; later reads throw CIOException where the reader checks.
    virtual void Close() = 0;

protected:
    CReader() {}
};

} // namespace io
} // namespace lumo

#endif
