#ifndef VELA_DEBUG_H
#define VELA_DEBUG_H

#include <lumo/Config.h>

namespace Vela {

// Receives each piece of debug output.
typedef void (*DBOutput)(char const* text, void* context);

// printf to the debug output (standard error unless redirected); returns the bytes
// formatted.
LUMO_API int DBPrintf(char const* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

// Sends debug output to `output` from now on; null restores standard error.
LUMO_API void DBSetOutput(DBOutput output, void* context);

} // namespace Vela

#endif
