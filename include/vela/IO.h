// IO::Init and IO::End, the file layer's start and stop, counted so that nested pairs work.
#ifndef VELA_IO_H
#define VELA_IO_H

#include <vela/Config.h>

/// The file layer's start and stop, counted so that nested pairs are allowed.
namespace IO {

/// Starts the file layer; pairs with End. `full` is accepted for compatibility and changes nothing
/// here.
VELA_API void Init(bool full);
/// Ends one Init; the count never falls below 0.
VELA_API void End();
/// The number of Init calls not yet matched by End.
VELA_API long GetInitCount();

} // namespace IO

#endif
