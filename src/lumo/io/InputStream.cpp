// CInputStream's defaults: the single-byte read through the block read, and Skip by
// single reads returning the count not skipped.
#include <lumo/io/InputStream.h>

namespace lumo {
namespace io {

LUMO_DEFINE_CLASS(CInputStream, "lumo::io::CInputStream", "lumo::base::CObject");

CInputStream::~CInputStream() {}

long CInputStream::Read(char* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CInputStream::Read() {
    char b = 0;
    if (Read(&b, 0, 1) == -1)
        return EOS;
    return static_cast<long>(b);
}

long CInputStream::Skip(unsigned long n) {
    if (n == 0)
        return 0;
    unsigned long left = n;
    while (left > 0 && Read() != EOS)
        --left;
    return static_cast<long>(left);
}

} // namespace io
} // namespace lumo
