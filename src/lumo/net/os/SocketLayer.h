// Internal: the operating system's socket layer as the network classes use it —
// start and stop, IPv4 name resolution, and the TCP socket calls. Portable interface;
// the POSIX backend is WinSocketImpl_POSIX.cpp (a Winsock backend would sit beside it).
// No operating-system header here.
//
// Every call returns 0 on success or the system's error code (errno values on POSIX),
// read at the failing call itself, so nothing between the failure and the exception
// can overwrite it.
#ifndef LUMO_NET_DETAIL_SOCKETLAYER_H
#define LUMO_NET_DETAIL_SOCKETLAYER_H

#include <lumo/base/String.h>

#include <cstddef>
#include <cstdint>

namespace lumo {
namespace net {
namespace detail {

// A socket of the system (a descriptor on POSIX); kInvalidSocket when there is none.
typedef std::intptr_t SocketHandle;
constexpr SocketHandle kInvalidSocket = -1;

// An IPv4 address in network order and a port in host order.
struct Endpoint {
    unsigned char address[4];
    unsigned short port;
};

// Bracket every other call of the layer (no-ops on POSIX).
int StartSocketLayer();
void StopSocketLayer();

// Name resolution, IPv4 only. ResolveHost gives the first address of `host` (a name or
// dotted text); false when it does not resolve. ReverseLookup gives the name of an
// address; false when there is none.
bool ResolveHost(char const* host, unsigned char address[4]);
bool ReverseLookup(unsigned char const address[4], base::CString& name);
// The machine's name into buffer[0..size); IsBufferTooSmall tells the error code that
// asks for a bigger buffer.
int GetMachineName(char* buffer, std::size_t size);
bool IsBufferTooSmall(int code);

// A TCP socket, close-on-exec. A listening socket may be rebound while connections of
// an earlier listener on its port are still closing, as Winsock allows.
int OpenStreamSocket(bool listening, SocketHandle& handle);
int CloseSocket(SocketHandle handle);
int SetBlocking(SocketHandle handle, bool blocking);
// A blocking connect, or on a non-blocking socket the start of one: then
// IsConnectInProgress tells the code that means "started, not finished".
int Connect(SocketHandle handle, Endpoint const& remote);
bool IsConnectInProgress(int code);
int Bind(SocketHandle handle, Endpoint const& local);
int Listen(SocketHandle handle, unsigned long backlog);
int Accept(SocketHandle handle, SocketHandle& accepted, Endpoint& remote);
int GetLocalEndpoint(SocketHandle handle, Endpoint& local);
// One receive of up to len bytes; `received` is 0 when the peer closed in order.
int Receive(SocketHandle handle, char* buf, unsigned long len, long& received);
// Sends all len bytes; a peer that has gone away is an error code, never a signal.
int SendAll(SocketHandle handle, char const* buf, unsigned long len);
int GetAvailable(SocketHandle handle, unsigned long& count);

// Waits on one socket: for data or a connection to accept (ForRead), or for the end of
// a connect (ForConnect). A timeout t of 0 waits without limit; otherwise the wait lasts
// t / 1000 seconds plus t % 1000 MICROseconds (the library's timeout rule: 1500 waits
// 1 s and 500 us). `ready` is false on time-out; after ForConnect, `failed` tells
// whether the connect failed, and `code` gives its error.
enum class WaitFor { Read, Connect };
struct WaitResult {
    bool ready;
    bool failed;
    int code;
};
int Wait(SocketHandle handle, WaitFor what, unsigned long timeout, WaitResult& result);
// Whether a connection or data is waiting, without waiting.
int Poll(SocketHandle handle, bool& ready);

// The socket options addressed by their library id (0..9 of CSocketImpl's table).
int GetIntOption(SocketHandle handle, long id, int& value);
int SetIntOption(SocketHandle handle, long id, int value);
// SO_LINGER through the library's two-field form: on/off and seconds.
int GetLinger(SocketHandle handle, bool& on, unsigned short& seconds);
int SetLinger(SocketHandle handle, bool on, unsigned short seconds);

} // namespace detail
} // namespace net
} // namespace lumo

#endif
