// CWriter's default write forms (strings, blocks, terminated texts, single units), all
// ending in the block write.
#include <lumo/io/Writer.h>

#include <vela/Ucs.h>

namespace lumo {
namespace io {

LUMO_DEFINE_CLASS(CWriter, "lumo::io::CWriter", "lumo::base::CObject");

CWriter::~CWriter() {}

void CWriter::Write(base::CUnicodeString const& s, unsigned long off, unsigned long len) {
    unsigned long const length = s.GetLength();
    if (length == 0 || off >= length)
        return;
    if (len > length - off)
        len = length - off;
    Write(static_cast<unsigned short const*>(s), off, len);
}

void CWriter::Write(base::CUnicodeString const& s) {
    if (s.IsEmpty())
        return;
    Write(s, 0, s.GetLength());
}

void CWriter::Write(unsigned short const* buf, unsigned long len) {
    Write(buf, 0, len);
}

void CWriter::Write(unsigned short const* text) {
    if (text == nullptr)
        return;
    Write(text, 0, Vela::ucslen(text));
}

void CWriter::Write(unsigned short c) {
    Write(&c, 0, 1);
}

} // namespace io
} // namespace lumo
