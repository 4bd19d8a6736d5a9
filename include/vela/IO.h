#ifndef VELA_IO_H
#define VELA_IO_H

#include <lumo/Config.h>

// The file layer's start and stop, counted so that nested pairs are allowed.
namespace IO {

LUMO_API void Init(bool full);
LUMO_API void End();
// The number of Init calls not yet matched by End.
LUMO_API long GetInitCount();

} // namespace IO

#endif
