// The module's load and unload work. Its static object is made after every class
// record and the encoder registry, and destroyed before them (LUMO_MODULE_PRIORITY).
#include "Module.h"

#include "ThreadSupport.h"
#include "io/Encoders.h"

#include <lumo/base/Exception.h>

#include <vela/Memory.h>
#include <vela/Resource.h>

#include <cstdio>
#include <cstdlib>

namespace lumo {
namespace detail {

namespace {
long g_moduleId = 0;

[[noreturn]] void ThrowMemoryFailure(char const* unit, long line) {
    throw base::CMemoryException(unit, static_cast<unsigned long>(line));
}

struct ModuleEntry {
    ModuleEntry() {
        try {
            // The root layer's allocation failures surface as the library's exception.
            Vela::SetMemoryFailureHandler(&ThrowMemoryFailure);
            long const previous = Vela::RSGetActiveModule();
            g_moduleId = Vela::RSAddModule(GetModuleHandle());
            Vela::RSSetActiveModule(previous);
            StartThreadSupport();
            RegisterBuiltInEncoders();
        } catch (...) {
            // A module whose attach work fails must not load.
            std::fputs("lumo: module start-up failed\n", stderr);
            std::abort();
        }
    }
    ~ModuleEntry() {
        Vela::SetMemoryFailureHandler(nullptr);
        StopThreadSupport();
        if (g_moduleId > 0)
            Vela::RSRemoveModule(g_moduleId);
        g_moduleId = 0;
    }
};

ModuleEntry g_module LUMO_INIT_PRIORITY(LUMO_MODULE_PRIORITY);
} // namespace

long GetModuleId() {
    return g_moduleId;
}

} // namespace detail
} // namespace lumo
