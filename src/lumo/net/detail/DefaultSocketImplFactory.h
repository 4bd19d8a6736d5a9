// Internal: the factory whose implementations CSocket and CServerSocket stand on.
#ifndef LUMO_NET_DETAIL_DEFAULTSOCKETIMPLFACTORY_H
#define LUMO_NET_DETAIL_DEFAULTSOCKETIMPLFACTORY_H

#include <lumo/net/SocketImplFactory.h>

namespace lumo {
namespace net {
namespace detail {

// The TCP/IP factory, made on first use.
CSocketImplFactory& DefaultSocketImplFactory();

} // namespace detail
} // namespace net
} // namespace lumo

#endif
