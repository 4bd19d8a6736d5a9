// lumo::Initialize and lumo::Terminate, the counted start and stop a client calls around
// its use of the library (the first start brings up the file layer and Xerces-C).
#ifndef LUMO_LIBRARY_H
#define LUMO_LIBRARY_H

#include <lumo/Config.h>

/// Everything the library offers: its start and stop here, the layers in the nested namespaces.
namespace lumo {

/// Counts a client's start; the first start brings up the file layer and the XML
/// parser (XML classes and regular expressions work from then on). Returns the count,
/// which stops at 0x7FFFFFFF. CIllegalStateException "Failed to start the XML parser."
/// when the parser cannot start; then nothing is counted or left started.
LUMO_API long Initialize();
/// Counts a client's end; the last end shuts the XML parser and the file layer down.
/// Returns the count; a call without a matching Initialize does nothing and returns 0.
LUMO_API long Terminate();
/// The version the loaded library was built as, "major.minor.patch" (LUMO_VERSION of
/// its own headers); compare it with LUMO_VERSION to detect a mismatched library.
/// Needs no start.
LUMO_API char const* GetVersion();

} // namespace lumo

#endif
