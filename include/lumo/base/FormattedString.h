// CFormattedString and CFormattedUnicodeString: a string made in one step from a
// printf-style format, for passing formatted text where a plain text is expected.
#ifndef LUMO_BASE_FORMATTEDSTRING_H
#define LUMO_BASE_FORMATTEDSTRING_H

#include <lumo/Config.h>
#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>

namespace lumo {
namespace base {

/// A CString made in one step from a printf-style format, for passing formatted text
/// where a plain text is expected: CFormattedString("%d items", n). Formatting follows
/// CString::FormatV (a text longer than the work buffer is cut).
class LUMO_API CFormattedString {
public:
    /// A null or empty format raises CIllegalArgumentException ("Invalid format string.").
    CFormattedString(char const* format, ...) LUMO_PRINTF_FORMAT(2, 3);

    /// The formatted text: as a plain text (never null), as the string, and its length in bytes.
    ///@{
    operator char const*() const noexcept { return m_string; }
    CString const& GetString() const noexcept { return m_string; }
    unsigned long GetLength() const noexcept { return m_string.GetLength(); }
    ///@}

private:
    CString m_string;
};

/// The same over UTF-16, through CUnicodeString::FormatV.
class LUMO_API CFormattedUnicodeString {
public:
    /// A null or empty format raises CIllegalArgumentException ("Invalid format string.").
    CFormattedUnicodeString(unsigned short const* format, ...);

    /// The formatted text: as a plain text (never null), as the string, and its length in units.
    ///@{
    operator unsigned short const*() const noexcept { return m_string; }
    CUnicodeString const& GetString() const noexcept { return m_string; }
    unsigned long GetLength() const noexcept { return m_string.GetLength(); }
    ///@}

private:
    CUnicodeString m_string;
};

} // namespace base
} // namespace lumo

#endif
