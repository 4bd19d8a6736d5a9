// Vela::DBPrintf, the library's debug output, which goes to standard error unless a
// program (a test, say) redirects it with DBSetOutput.
#ifndef VELA_DEBUG_H
#define VELA_DEBUG_H

#include <vela/Config.h>

namespace Vela {

/// Receives each piece of debug output.
typedef void (*DBOutput)(char const* text, void* context);

/// printf to the debug output (standard error unless redirected); returns the bytes
/// formatted.
VELA_API int DBPrintf(char const* format, ...) VELA_PRINTF_FORMAT(1, 2);

/// Sends debug output to `output` from now on; null restores standard error.
VELA_API void DBSetOutput(DBOutput output, void* context);

} // namespace Vela

#endif
