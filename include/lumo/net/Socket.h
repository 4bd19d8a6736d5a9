#ifndef LUMO_NET_SOCKET_H
#define LUMO_NET_SOCKET_H

#include <lumo/base/Object.h>
#include <lumo/base/Ref.h>
#include <lumo/net/InetAddress.h>
#include <lumo/net/SocketImpl.h>

namespace lumo {
namespace io {
class CInputStream;
class COutputStream;
} // namespace io
/// IPv4 addresses and name lookup, TCP client and server sockets and their implementations.
namespace net {

class CServerSocket;

/// A connected TCP stream socket with a byte input and a byte output stream. Every
/// system call goes through its implementation (a CWinSocketImpl made by a
/// CTCPIPSocketImplFactory); failures are the implementation's exceptions
/// (CWinSocketException with the system's code, CInterruptedIOException on time-out).
/// Copies share the connection. Not locked: a socket and its streams are used by one
/// thread at a time.
class LUMO_API CSocket : public base::CObject {
    LUMO_DECLARE_CLASS(CSocket);

public:
    /// Creates a socket and connects it to `port` of `address` (blocking: the timeout
    /// is 0 until SetTimeout). "Connect socket failed." with the code when the connect
    /// fails (ECONNREFUSED for a closed port).
    CSocket(CInetAddress const& address, unsigned short port);
    /// As above, after binding to `localAddress` and `localPort` (0: a port the system
    /// picks); "Bind socket failed." with the code when that fails.
    CSocket(CInetAddress const& address, unsigned short port, CInetAddress const& localAddress,
            unsigned short localPort);
    /// As the two above with `host` resolved as CInetAddress::GetByName does
    /// (CIllegalArgumentException "Invalid host name." for a null or empty name,
    /// CUnknownHostException for one that does not resolve).
    ///@{
    CSocket(char const* host, unsigned short port);
    CSocket(char const* host, unsigned short port, CInetAddress const& localAddress,
            unsigned short localPort);
    ///@}
    /// Releases this holding; the last holder of the implementation closes the socket.
    ~CSocket() override;

    /// The remote address (a copy) and port.
    base::CRef<CInetAddress> GetInetAddress() const;
    /// The remote port.
    unsigned short GetPort() const;
    /// The local address (a copy; the bind address as given when bound) and port.
    base::CRef<CInetAddress> GetLocalInetAddress() const;
    /// The local port.
    unsigned short GetLocalPort() const;

    /// The read timeout in milliseconds; 0 (the start value) waits without limit.
    /// SetTimeout only stores it. A read waits t / 1000 s plus t % 1000 microseconds.
    unsigned long GetTimeout() const;
    /// Stores the read timeout in milliseconds for the next reads; 0 waits without limit.
    void SetTimeout(unsigned long timeout);

    /// The bool options SO_KEEPALIVE, SO_OOBINLINE, SO_REUSEADDR and TCP_NODELAY
    /// (CWinSocketException "Failed to get the specified option." / "Failed to set the
    /// specified option." when the system refuses, e.g. on a closed socket).
    ///@{
    bool GetKeepAlive() const;
    void SetKeepAlive(bool on);
    bool GetOOBInline() const;
    void SetOOBInline(bool on);
    bool GetReuseAddress() const;
    void SetReuseAddress(bool on);
    bool GetTCPNoDelay() const;
    void SetTCPNoDelay(bool on);
    ///@}

    /// The streams over the connection, owned by the socket: never delete them. They
    /// follow CWinSocketImpl's read and send rules (a peer that closed reads as 0).
    ///@{
    io::CInputStream* GetInputStream() const;
    io::COutputStream* GetOutputStream() const;
    ///@}

    /// Closes the connection; later operations fail with CWinSocketException (EBADF).
    /// Closing a closed socket does nothing.
    void Close();

    /// Equal when they share one implementation.
    bool operator==(CSocket const& other) const { return m_impl == other.m_impl; }
    /// True when they do not share one implementation.
    bool operator!=(CSocket const& other) const { return m_impl != other.m_impl; }

protected:
    /// Wraps an implementation as it is (connected or not); used by Accept and by
    /// sockets over implementations of their own.
    explicit CSocket(base::CRef<CSocketImpl> const& impl);

    /// The implementation behind the socket.
    base::CRef<CSocketImpl> const& GetImpl() const { return m_impl; }

private:
    friend class CServerSocket;

    void Open(CInetAddress const& address, unsigned short port, CInetAddress const* localAddress,
              unsigned short localPort);

    base::CRef<CSocketImpl> m_impl;
};

} // namespace net
} // namespace lumo

#endif
