// The demo's tours, one function per subsystem.
#ifndef LUMO_EXAMPLES_DEMO_DEMOS_H
#define LUMO_EXAMPLES_DEMO_DEMOS_H

namespace demo {

void NetDemo(); // a server socket and a client talking over loopback on two threads

} // namespace demo

#endif
