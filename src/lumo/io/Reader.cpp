// CReader's defaults: the single-unit read through the block read, and Skip by single
// reads returning the count not skipped.
#include <lumo/io/Reader.h>

namespace lumo {
namespace io {

LUMO_DEFINE_CLASS(CReader, "lumo::io::CReader", "lumo::base::CObject");

CReader::~CReader() {}

long CReader::Read(unsigned short* buf, unsigned long len) {
    return Read(buf, 0, len);
}

long CReader::Read() {
    unsigned short unit = 0;
    if (Read(&unit, 0, 1) == -1)
        return EOS;
    return static_cast<long>(unit);
}

long CReader::Skip(unsigned long n) {
    while (n > 0) {
        if (Read() == EOS)
            break;
        --n;
    }
    return static_cast<long>(n);
}

} // namespace io
} // namespace lumo
