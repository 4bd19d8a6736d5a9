// CUnsupportedEncodingException: no converter is registered under the encoding name.
#ifndef LUMO_IO_UNSUPPORTEDENCODINGEXCEPTION_H
#define LUMO_IO_UNSUPPORTEDENCODINGEXCEPTION_H

#include <lumo/base/String.h>
#include <lumo/io/IOException.h>

namespace lumo {
namespace io {

/// No converter is registered under the encoding name.
class LUMO_API CUnsupportedEncodingException : public CIOException {
    LUMO_DECLARE_CLASS(CUnsupportedEncodingException);

public:
    /// No description; keeps a copy of the encoding name (null gives the empty name).
    CUnsupportedEncodingException(char const* file, unsigned long line, char const* encoding);

    /// The encoding name that has no converter.
    base::CString const& GetEncoding() const { return m_encoding; }

private:
    base::CString m_encoding;
};

} // namespace io
} // namespace lumo

#endif
