// Internal: this module's resource handle (its name and string tables) and the
// identifier the resource layer gave it at load.
#ifndef LUMO_SRC_MODULE_H
#define LUMO_SRC_MODULE_H

#include <vela/Resource.h>

namespace lumo {
namespace detail {

// This module's handle: its name and string resources.
Vela::RSModuleHandle GetModuleHandle();
// The identifier the resource layer gave this module at load, 0 once unloaded.
long GetModuleId();

} // namespace detail
} // namespace lumo

#endif
