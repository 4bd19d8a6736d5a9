// CFormattedString and CFormattedUnicodeString: reject a null or empty format, then
// format through CString::FormatV or CUnicodeString::FormatV.
#include <lumo/base/FormattedString.h>

#include <lumo/base/Exception.h>

#include <cstdarg>

namespace lumo {
namespace base {

// Line numbers that the library's documented behaviour fixes for these failures.
unsigned long const kBadFormatLine = 39; // a null or empty format

namespace {

char const kUnit[] = "lumo/base/FormattedString";

void CheckFormat(bool empty) {
    if (empty)
        throw CIllegalArgumentException(kUnit, kBadFormatLine, "Invalid format string.");
}

} // namespace

CFormattedString::CFormattedString(char const* format, ...) {
    CheckFormat(format == nullptr || *format == '\0');
    va_list args;
    va_start(args, format);
    try {
        m_string.FormatV(format, args);
    } catch (...) {
        va_end(args);
        throw;
    }
    va_end(args);
}

CFormattedUnicodeString::CFormattedUnicodeString(unsigned short const* format, ...) {
    CheckFormat(format == nullptr || *format == 0);
    va_list args;
    va_start(args, format);
    try {
        m_string.FormatV(format, args);
    } catch (...) {
        va_end(args);
        throw;
    }
    va_end(args);
}

} // namespace base
} // namespace lumo
