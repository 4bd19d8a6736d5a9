#ifndef VELA_UCS_H
#define VELA_UCS_H

#include <lumo/Config.h>

#include <cstdarg>

// Routines over null-terminated UTF-16 text (`unsigned short` units).
namespace Vela {

LUMO_API unsigned long ucslen(unsigned short const* s);
LUMO_API int ucscmp(unsigned short const* a, unsigned short const* b);
LUMO_API int ucsicmp(unsigned short const* a, unsigned short const* b);
LUMO_API int ucsncmp(unsigned short const* a, unsigned short const* b, unsigned long n);
LUMO_API int ucsnicmp(unsigned short const* a, unsigned short const* b, unsigned long n);
LUMO_API unsigned short const* ucschr(unsigned short const* s, unsigned short c);
LUMO_API unsigned short const* ucsrchr(unsigned short const* s, unsigned short c);
LUMO_API unsigned short const* ucsstr(unsigned short const* s, unsigned short const* sub);
// In place; return `s`.
LUMO_API unsigned short* ucsupr(unsigned short* s);
LUMO_API unsigned short* ucslwr(unsigned short* s);
LUMO_API unsigned short* ucsrev(unsigned short* s);

LUMO_API bool isuspace(unsigned short c);
LUMO_API bool isudigit(unsigned short c);

// printf into UTF-16 output of `count` units. Returns the units written (terminator
// excluded), or -1 when the output did not fit (the buffer then holds as much as
// fitted, terminated).
LUMO_API int vsnuprintf(unsigned short* buffer, unsigned long count,
                        unsigned short const* format, va_list args);
LUMO_API int snuprintf(unsigned short* buffer, unsigned long count,
                       unsigned short const* format, ...);
// scanf over UTF-16 text: the number of fields converted, -1 at end of input.
LUMO_API int suscanf(unsigned short const* text, unsigned short const* format, ...);

// The platform's line end.
LUMO_API extern char const EOL[];

} // namespace Vela

#endif
