// CWriter, the abstract sink of UTF-16 code units: every write form, from strings to
// single units, ends in the block write that subclasses provide.
#ifndef LUMO_IO_WRITER_H
#define LUMO_IO_WRITER_H

#include <lumo/base/Object.h>
#include <lumo/base/UnicodeString.h>

namespace lumo {
namespace io {

/// Abstract sink of UTF-16 code units. Every form ends in the block write
/// Write(buf, off, len), which subclasses provide.
class LUMO_API CWriter : public base::CObject {
    LUMO_DECLARE_CLASS(CWriter);

public:
    ~CWriter() override;

    /// Units off .. off + len - 1 of `s`; nothing when `s` is empty or off is past its
    /// end, and len is cut to what the string holds.
    virtual void Write(base::CUnicodeString const& s, unsigned long off, unsigned long len);
    /// The whole string; nothing for an empty one.
    virtual void Write(base::CUnicodeString const& s);
    /// Units buf[off .. off + len - 1]; the one form subclasses must provide.
    virtual void Write(unsigned short const* buf, unsigned long off, unsigned long len) = 0;
    /// Write(buf, 0, len).
    virtual void Write(unsigned short const* buf, unsigned long len);
    /// A zero-terminated text; null writes nothing.
    virtual void Write(unsigned short const* text);
    /// Write(&c, 0, 1).
    virtual void Write(unsigned short c);
    /// Pushes buffered units on to the sink.
    virtual void Flush() = 0;
    /// Releases the sink; later writes throw CIOException where the writer checks.
    virtual void Close() = 0;

protected:
    CWriter() {}
};

} // namespace io
} // namespace lumo

#endif
