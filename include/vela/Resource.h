// Resource modules and their string tables: register, remove and activate modules, and
// load a string by type, identifier and index, the active module first.
#ifndef VELA_RESOURCE_H
#define VELA_RESOURCE_H

#include <vela/Config.h>

/// Resource modules: each module registers a table of indexed string resources, found
/// by type, identifier and index, the active module first.
namespace Vela {

/// One string resource: its type, identifier and the strings indexed from 0.
struct RSStringTable {
    /// The resource type, e.g. "STRS".
    char const* type;
    /// The resource identifier, e.g. 18000.
    unsigned long id;
    /// The strings, indexed from 0.
    char const* const* strings;
    /// The number of strings.
    unsigned long count;
};

/// What a module handle points at: its name and its string tables.
struct RSModuleInfo {
    /// The module's name.
    char const* name;
    /// The module's string tables.
    RSStringTable const* tables;
    /// The number of tables.
    unsigned long tableCount;
};

/// A module as registered: a pointer to its description, which must outlive the registration.
typedef RSModuleInfo const* RSModuleHandle;

/// Registers a module; returns its identifier (> 0), or 0 when the handle is null.
/// The new module becomes the active one.
VELA_API long RSAddModule(RSModuleHandle handle);
/// Removes a module by identifier; false when none has it.
VELA_API bool RSRemoveModule(long id);
/// The identifier of the active module, 0 when none.
VELA_API long RSGetActiveModule();
/// Makes a module active; returns the previously active identifier.
VELA_API long RSSetActiveModule(long id);
/// The string of type, identifier and index: the active module is searched first,
/// then the others, newest first. Null when none has it.
VELA_API char const* RSLoadString(char const* type, unsigned long id, unsigned long index);

} // namespace Vela

#endif
