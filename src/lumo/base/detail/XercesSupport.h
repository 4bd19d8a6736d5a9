// Internal: the boundary between the library's UTF-16 (unsigned short) and Xerces-C's
// XMLCh (char16_t), and the library's counted start and stop of Xerces-C. Text is
// copied across the boundary, never read through a pointer of the other type.
#ifndef LUMO_BASE_DETAIL_XERCESSUPPORT_H
#define LUMO_BASE_DETAIL_XERCESSUPPORT_H

#include <lumo/base/UnicodeString.h>

#include <xercesc/util/XercesDefs.hpp>

#include <string>

namespace lumo {
namespace detail {

/// Copies n UTF-16 units into a zero-terminated XMLCh string.
inline std::u16string ToXMLCh(unsigned short const* s, std::size_t n) {
    std::u16string out(n, u'\0');
    for (std::size_t i = 0; i < n; ++i)
        out[i] = static_cast<char16_t>(s[i]);
    return out;
}

/// Copies a zero-terminated UTF-16 text (null gives the empty string).
inline std::u16string ToXMLCh(unsigned short const* s) {
    std::size_t n = 0;
    if (s != nullptr)
        while (s[n] != 0)
            ++n;
    return ToXMLCh(s, n);
}

/// Copies n XMLCh units into a CUnicodeString.
inline base::CUnicodeString FromXMLCh(XMLCh const* s, std::size_t n) {
    base::CUnicodeString out;
    if (n == 0)
        return out;
    unsigned short* buffer = out.GetBuffer(static_cast<unsigned long>(n));
    for (std::size_t i = 0; i < n; ++i)
        buffer[i] = static_cast<unsigned short>(s[i]);
    out.SetLength(static_cast<unsigned long>(n));
    return out;
}

/// Copies a zero-terminated XMLCh text (null gives the empty string).
inline base::CUnicodeString FromXMLCh(XMLCh const* s) {
    std::size_t n = 0;
    if (s != nullptr)
        while (s[n] != 0)
            ++n;
    return FromXMLCh(s, n);
}

/// Starts Xerces-C for the library (its own start is counted, so an application
/// that starts it too keeps working). Called by lumo::Initialize's first client.
void StartXerces();
/// Ends the library's use of Xerces-C. Called by lumo::Terminate's last client.
void StopXerces();

} // namespace detail
} // namespace lumo

#endif
