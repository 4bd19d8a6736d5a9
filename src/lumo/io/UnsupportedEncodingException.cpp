// CUnsupportedEncodingException's class record and constructor, which keeps a copy of the
// encoding name.
#include <lumo/io/UnsupportedEncodingException.h>

#include "../base/ExceptionText.h"

namespace lumo {
namespace io {

LUMO_DEFINE_CLASS(CUnsupportedEncodingException, "lumo::io::CUnsupportedEncodingException",
                  "lumo::io::CIOException");

CUnsupportedEncodingException::CUnsupportedEncodingException(char const* file, unsigned long line,
                                                             char const* encoding)
    : CIOException(file, line, nullptr, nullptr) {
    base::CopyExceptionText(m_encoding, encoding);
}

} // namespace io
} // namespace lumo
