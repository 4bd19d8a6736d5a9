// Class records and constructors of the io layer's exceptions, CIOException and its kinds.
#include <lumo/io/IOException.h>

namespace lumo {
namespace io {

LUMO_DEFINE_CLASS(CIOException, "lumo::io::CIOException", "lumo::base::CException");
LUMO_DEFINE_CLASS(CCharConversionException, "lumo::io::CCharConversionException",
                  "lumo::io::CIOException");
LUMO_DEFINE_CLASS(CUnknownCharacterException, "lumo::io::CUnknownCharacterException",
                  "lumo::io::CCharConversionException");
LUMO_DEFINE_CLASS(CInterruptedIOException, "lumo::io::CInterruptedIOException",
                  "lumo::io::CIOException");
LUMO_DEFINE_CLASS(CXMLException, "lumo::io::CXMLException", "lumo::io::CIOException");

CUnknownCharacterException::CUnknownCharacterException(char const* file, long line,
                                                       unsigned short character)
    : CCharConversionException(file, static_cast<unsigned long>(line), nullptr, nullptr),
      m_character(character) {}

} // namespace io
} // namespace lumo
