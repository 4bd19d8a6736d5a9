// COutputStream's default block writes: one single-byte write per byte, ignoring a null
// buffer.
#include <lumo/io/OutputStream.h>

namespace lumo {
namespace io {

LUMO_DEFINE_CLASS(COutputStream, "lumo::io::COutputStream", "lumo::base::CObject");

COutputStream::~COutputStream() {}

void COutputStream::Write(char const* buf, unsigned long off, unsigned long len) {
    if (buf == nullptr)
        return;
    for (unsigned long i = 0; i < len; ++i)
        Write(buf[off + i]);
}

void COutputStream::Write(char const* buf, unsigned long len) {
    if (buf == nullptr)
        return;
    Write(buf, 0, len);
}

} // namespace io
} // namespace lumo
