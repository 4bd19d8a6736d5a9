#ifndef LUMO_NET_SERVERSOCKET_H
#define LUMO_NET_SERVERSOCKET_H

#include <lumo/base/Object.h>
#include <lumo/base/Ref.h>
#include <lumo/net/InetAddress.h>
#include <lumo/net/Socket.h>
#include <lumo/net/SocketImpl.h>

namespace lumo {
namespace net {

/// A TCP socket listening on a local port; Accept hands each connection over as a
/// new CSocket. Failures are CWinSocketException with the system's code, time-outs
/// CInterruptedIOException "Accept timed-out.". Not locked: used by one thread at a
/// time.
class LUMO_API CServerSocket : public base::CObject {
    LUMO_DECLARE_CLASS(CServerSocket);

public:
    /// Creates the socket, binds it to `port` of `bindAddress`
    /// (CInetAddress::AnyInetAddress: every interface; port 0: one the system picks)
    /// and listens with `backlog` waiting connections at most (the system may round
    /// it). "Bind socket failed." with the code for a port in use (EADDRINUSE); "Failed
    /// to place the socket in a state in which it is listening for an incoming
    /// connection." when listening fails. A port whose earlier connections are still
    /// closing (TIME_WAIT) can be bound again.
    CServerSocket(unsigned short port, unsigned long backlog, CInetAddress const& bindAddress);
    ~CServerSocket() override;

    /// Not copyable: the server socket owns its listening socket.
    ///@{
    CServerSocket(CServerSocket const&) = delete;
    CServerSocket& operator=(CServerSocket const&) = delete;
    ///@}

    /// The next connection, waiting at most the stored timeout (0: without limit).
    /// The new socket starts with timeout 0.
    base::CRef<CSocket> Accept();
    /// The next connection, waiting at most `timeout` ms (0: without limit). The
    /// argument replaces the stored timeout for this call only; the stored timeout
    /// is neither used nor changed.
    base::CRef<CSocket> Accept(unsigned long timeout);
    /// Whether a connection is waiting, without waiting. "Failed to determine if there
    /// are pending connection requests." on failure (e.g. after Close).
    bool IsPending() const;

    /// The bind address as given (a copy) and the port listened on.
    base::CRef<CInetAddress> GetInetAddress() const;
    /// The port listened on (the one the system picked for port 0).
    unsigned short GetLocalPort() const;
    /// The accept timeout in milliseconds (0 at the start); SetTimeout only stores it.
    unsigned long GetTimeout() const;
    /// Stores the accept timeout in milliseconds for the next accepts; 0 waits without limit.
    void SetTimeout(unsigned long timeout);

    /// Stops listening; closing a closed server socket does nothing.
    void Close();

private:
    base::CRef<CSocket> Wrap(base::CRef<CSocketImpl> const& impl);

    base::CRef<CSocketImpl> m_impl;
};

} // namespace net
} // namespace lumo

#endif
