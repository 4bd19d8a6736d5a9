// CJavaDataInputStream: ReadString takes a 16-bit big-endian byte count before the
// UTF-8 bytes.
#include <lumo/io/JavaDataInputStream.h>

namespace lumo {
namespace io {

LUMO_DEFINE_CLASS(CJavaDataInputStream, "lumo::io::CJavaDataInputStream",
                  "lumo::io::CDataInputStream");

CJavaDataInputStream::CJavaDataInputStream(CInputStream* in) : CDataInputStream(in) {}

CJavaDataInputStream::CJavaDataInputStream(base::CRef<CInputStream> const& in)
    : CDataInputStream(in) {}

CJavaDataInputStream::~CJavaDataInputStream() {}

base::CUnicodeString CJavaDataInputStream::ReadString() {
    return ReadUTF8(ReadBig16());
}

} // namespace io
} // namespace lumo
