// The io layer's exceptions: CIOException and its kinds for character conversion,
// interruption and XML, and CUnknownCharacterException carrying the unit at fault.
#ifndef LUMO_IO_IOEXCEPTION_H
#define LUMO_IO_IOEXCEPTION_H

#include <lumo/base/Exception.h>

namespace lumo {
namespace io {

LUMO_EXCEPTION_2(CIOException, base::CException);
LUMO_EXCEPTION_2(CCharConversionException, CIOException);
LUMO_EXCEPTION_2(CInterruptedIOException, CIOException);
LUMO_EXCEPTION_2(CXMLException, CIOException);

/// A UTF-16 unit that an encoder cannot represent.
class LUMO_API CUnknownCharacterException : public CCharConversionException {
    LUMO_DECLARE_CLASS(CUnknownCharacterException);

public:
    CUnknownCharacterException(char const* file, long line, unsigned short character);

    unsigned short GetCharacter() const { return m_character; }

private:
    unsigned short m_character;
};

} // namespace io
} // namespace lumo

#endif
