#ifndef LUMO_NET_SOCKETIMPL_H
#define LUMO_NET_SOCKETIMPL_H

#include <lumo/base/Object.h>
#include <lumo/base/Ref.h>
#include <lumo/net/InetAddress.h>

namespace lumo {
namespace io {
class CInputStream;
class COutputStream;
} // namespace io
namespace net {

/// The implementation behind a CSocket or a CServerSocket: every system call goes
/// through one of these, made by a CSocketImplFactory. It keeps the remote address
/// and port, the local address and port, and the timeout for reads and accepts.
/// Not locked: one implementation is used by one thread at a time.
///
/// Options are addressed by id (the Option_ constants); each is either a bool or an
/// int option:
///   0 bool IP_MULTICAST_LOOP, 1 int IP_TOS, 2 bool SO_BROADCAST, 3 bool SO_KEEPALIVE,
///   4 int SO_LINGER, 5 bool SO_OOBINLINE, 6 int SO_RCVBUF, 7 bool SO_REUSEADDR,
///   8 int SO_SNDBUF, 9 bool TCP_NODELAY.
/// An id outside 0..9 throws CSocketException "The specified option is not
/// supported."; a bool option asked as int "The specified option is not an int
/// option.", an int option asked as bool "The specified option is not a bool option.".
class LUMO_API CSocketImpl : public base::CObject {
    LUMO_DECLARE_CLASS(CSocketImpl);

public:
    /// Option ids: IP_MULTICAST_LOOP (bool).
    static constexpr long Option_MulticastLoop = 0;
    /// IP_TOS (int).
    static constexpr long Option_TypeOfService = 1;
    /// SO_BROADCAST (bool).
    static constexpr long Option_Broadcast = 2;
    /// SO_KEEPALIVE (bool).
    static constexpr long Option_KeepAlive = 3;
    /// SO_LINGER (int: seconds, -1 when off).
    static constexpr long Option_Linger = 4;
    /// SO_OOBINLINE (bool).
    static constexpr long Option_OOBInline = 5;
    /// SO_RCVBUF (int).
    static constexpr long Option_ReceiveBuffer = 6;
    /// SO_REUSEADDR (bool).
    static constexpr long Option_ReuseAddress = 7;
    /// SO_SNDBUF (int).
    static constexpr long Option_SendBuffer = 8;
    /// TCP_NODELAY (bool).
    static constexpr long Option_TCPNoDelay = 9;

    ~CSocketImpl() override;

    /// Not copyable: an implementation owns its system socket.
    ///@{
    CSocketImpl(CSocketImpl const&) = delete;
    CSocketImpl& operator=(CSocketImpl const&) = delete;
    ///@}

    /// The bool option `id`; CSocketException for an unknown id or an int option.
    virtual bool GetBoolOption(long id) = 0;
    /// Sets the bool option `id`; CSocketException for an unknown id or an int option.
    virtual void SetBoolOption(long id, bool value) = 0;
    /// The int option `id`; CSocketException for an unknown id or a bool option.
    virtual long GetIntOption(long id) = 0;
    /// Sets the int option `id`; CSocketException for an unknown id or a bool option.
    virtual void SetIntOption(long id, long value) = 0;
    /// Bytes that can be read without waiting.
    virtual unsigned long GetAvailable() = 0;
    /// The streams over the connection, owned by the implementation (never null).
    ///@{
    virtual io::CInputStream* GetInputStream() = 0;
    virtual io::COutputStream* GetOutputStream() = 0;
    ///@}
    /// Makes the system socket; `listening` for one that will accept connections.
    /// An implementation that already has a socket keeps it.
    virtual void Create(bool listening) = 0;
    /// Closes the system socket; closing a closed implementation does nothing.
    virtual void Close() = 0;
    /// True once a connect has completed or for an accepted connection, until Close.
    virtual bool IsConnected() const = 0;
    /// Connects to `port` of `address` within the stored timeout (0: a blocking connect).
    virtual void Connect(CInetAddress const& address, unsigned short port) = 0;
    /// Binds to a local address and port (AnyInetAddress: every interface; port 0: one
    /// the system picks).
    virtual void Bind(CInetAddress const& address, unsigned short port) = 0;
    /// Whether a connection is waiting to be accepted, without waiting.
    virtual bool IsPending() = 0;
    /// Accepts the next connection within the stored timeout.
    virtual base::CRef<CSocketImpl> Accept() = 0;
    /// Accepts the next connection within `timeout` ms (0: without limit), for this
    /// call only; the stored timeout is left as it is.
    virtual base::CRef<CSocketImpl> Accept(unsigned long timeout) = 0;
    /// Starts listening with at most `backlog` waiting connections (the system may round it).
    virtual void Listen(unsigned long backlog) = 0;

    /// The remote address (a copy) and port; empty and 0 until connected. A copy
    /// that cannot be allocated throws CException "Memory full.".
    base::CRef<CInetAddress> GetInetAddress() const;
    /// The remote port; 0 until connected.
    unsigned short GetPort() const { return m_port; }
    /// The local address and port; empty and 0 until bound or connected.
    base::CRef<CInetAddress> GetLocalInetAddress() const;
    /// The local port; 0 until bound or connected.
    unsigned short GetLocalPort() const { return m_localPort; }
    /// The read and accept timeout in milliseconds; 0 waits without limit.
    unsigned long GetTimeout() const { return m_timeout; }
    /// Only stores the timeout; it applies to the next read, accept or connect.
    void SetTimeout(unsigned long timeout) { m_timeout = timeout; }

protected:
    CSocketImpl();

    /// Records the remote address (copied) and port.
    void SetRemote(CInetAddress const& address, unsigned short port);
    /// Records the local address (copied) and port.
    void SetLocal(CInetAddress const& address, unsigned short port);
    /// True once a local address is recorded.
    bool HasLocal() const { return !m_localAddress.IsNull(); }

private:
    base::CRef<CInetAddress> m_address;
    unsigned short m_port;
    base::CRef<CInetAddress> m_localAddress;
    unsigned short m_localPort;
    unsigned long m_timeout;
};

} // namespace net
} // namespace lumo

#endif
