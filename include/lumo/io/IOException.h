// The io layer's exceptions: CIOException and its kinds for character conversion,
// interruption and XML, and CUnknownCharacterException carrying the unit at fault.
#ifndef LUMO_IO_IOEXCEPTION_H
#define LUMO_IO_IOEXCEPTION_H

#include <lumo/base/Exception.h>

namespace lumo {
namespace io {

/// A failed stream operation: a closed stream, an exhausted source, a failed file or channel call.
LUMO_EXCEPTION_2(CIOException, base::CException);
/// Text that cannot be converted between UTF-16 and bytes.
LUMO_EXCEPTION_2(CCharConversionException, CIOException);
/// A stream operation broken off before it completed.
LUMO_EXCEPTION_2(CInterruptedIOException, CIOException);
/// XML that is not well formed or not what the reader was asked to read; its message names the
/// point of failure.
LUMO_EXCEPTION_2(CXMLException, CIOException);

/// A UTF-16 unit that an encoder cannot represent.
class LUMO_API CUnknownCharacterException : public CCharConversionException {
    LUMO_DECLARE_CLASS(CUnknownCharacterException);

public:
    /// No description and no message; the unit is kept for GetCharacter.
    CUnknownCharacterException(char const* file, long line, unsigned short character);

    /// The UTF-16 unit that could not be encoded.
    unsigned short GetCharacter() const { return m_character; }

private:
    unsigned short m_character;
};

} // namespace io
} // namespace lumo

#endif
