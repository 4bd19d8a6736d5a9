// Internal: RegisterBuiltInEncoders, which enters the library's own encodings ("UTF-8")
// in the converter registry during the module's load work.
#ifndef LUMO_SRC_IO_ENCODERS_H
#define LUMO_SRC_IO_ENCODERS_H

namespace lumo {
namespace detail {

// Enters the library's own encodings ("UTF-8") in the converter registry. Runs
// during the module's load work, before any client can ask for a converter; throws
// CMemoryException when the registry cannot take them.
void RegisterBuiltInEncoders();

} // namespace detail
} // namespace lumo

#endif
