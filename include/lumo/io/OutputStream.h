// COutputStream, the abstract sink of bytes, whose block writes default to one
// single-byte write per byte.
#ifndef LUMO_IO_OUTPUTSTREAM_H
#define LUMO_IO_OUTPUTSTREAM_H

#include <lumo/base/Object.h>

namespace lumo {
namespace io {

/// Abstract sink of bytes. The block writes default to one Write(char) per byte and
/// ignore a null buffer.
class LUMO_API COutputStream : public base::CObject {
    LUMO_DECLARE_CLASS(COutputStream);

public:
    ~COutputStream() override;

    /// Bytes buf[off .. off + len - 1], one Write(char) each unless a subclass writes blocks; a
    /// null buffer writes nothing.
    virtual void Write(char const* buf, unsigned long off, unsigned long len);
    /// Write(buf, 0, len); a null buffer writes nothing.
    virtual void Write(char const* buf, unsigned long len);
    /// One byte.
    virtual void Write(char c) = 0;
    /// Pushes buffered bytes on to the sink.
    virtual void Flush() = 0;
    /// Releases the sink; most streams flush first. Later writes throw CIOException where the
    /// stream checks.
    virtual void Close() = 0;

protected:
    COutputStream() {}
};

} // namespace io
} // namespace lumo

#endif
