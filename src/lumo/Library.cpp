// lumo::Initialize and lumo::Terminate: a plain client count (clients start and stop
// from one thread); the first start brings up IO and Xerces-C, the last end stops them.
#include <lumo/Library.h>

#include "base/detail/XercesSupport.h"
#include "net/os/SocketLayer.h"

#include <vela/IO.h>

namespace lumo {

namespace {
// Not locked: clients start and stop the library from one thread.
long g_clients = 0;
long const kMaxClients = 0x7fffffff;
} // namespace

long Initialize() {
    if (g_clients == kMaxClients)
        return kMaxClients;
    if (g_clients == 0) {
        // A start that fails leaves nothing started and nothing counted, so the client
        // may try again.
        IO::Init(true);
        try {
            detail::StartXerces();
        } catch (...) {
            IO::End();
            throw;
        }
        net::detail::StartSocketLayer();
    }
    return ++g_clients;
}

char const* GetVersion() {
    return LUMO_VERSION;
}

long Terminate() {
    if (g_clients == 0)
        return 0;
    --g_clients;
    if (g_clients <= 0) {
        net::detail::StopSocketLayer();
        detail::StopXerces();
        IO::End();
    }
    return g_clients;
}

} // namespace lumo
