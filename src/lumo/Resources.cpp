// The string resources compiled into the library.
#include "Module.h"

namespace lumo {
namespace detail {

namespace {
Vela::RSModuleInfo const kModule = {"lumo", nullptr, 0};
} // namespace

Vela::RSModuleHandle GetModuleHandle() {
    return &kModule;
}

} // namespace detail
} // namespace lumo
