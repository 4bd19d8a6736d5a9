#ifndef LUMO_NET_WINSOCKETIMPL_H
#define LUMO_NET_WINSOCKETIMPL_H

#include <lumo/net/SocketImpl.h>

#include <cstdint>
#include <memory>

namespace lumo {
namespace net {

/// The socket implementation over the system's TCP/IP sockets (BSD sockets on POSIX,
/// Winsock on Windows). Failed system calls throw CWinSocketException with the
/// system's error code; time-outs throw CInterruptedIOException.
///
/// Options: get/set of a bool option uses a 4-byte integer (non-zero is true); int
/// options a 4-byte integer, except SO_LINGER (id 4), which follows the two 16-bit
/// field form (on/off, seconds): reading gives -1 when lingering is off, else the
/// seconds; setting a value > 0 switches lingering on for that many seconds (kept in
/// 16 bits), 0 or less switches it off. A failed call throws CWinSocketException
/// "Failed to get the specified option." or "Failed to set the specified option.".
///
/// Timeouts: with a timeout t other than 0, a read, an accept and a connect wait at
/// most t / 1000 seconds plus t % 1000 MICROseconds (so 1500 waits 1 s and 500 us).
///
/// Connect: with timeout 0, a blocking connect ("Connect socket failed." with the
/// code). Otherwise a non-blocking connect ("connect failed." when it fails); when
/// the wait times out, the socket is closed and Connect returns WITHOUT exception and
/// without connecting: the next operation on the socket fails (a CWinSocketException
/// with EBADF). Afterwards, unless the socket was bound, the local address and port
/// come from the system ("getsockname failed.").
///
/// The input stream's Read(buf, off, len): a null or unwritable buffer skips len bytes
/// instead (0 for len 0); len 0 gives 0; then the timeout wait ("Read timed-out.",
/// "select failed."), then one receive: the count as it is, so a peer that closed in
/// order gives 0, not -1 ("Failed to read the specified number of bytes from the
/// socket input stream." on failure). Its single-byte Read gives EOS there. Skip reads
/// and drops up to n bytes (fewer when the peer closes) and returns the count; Reset
/// throws CSocketException "Socket input stream doesn't support the reset operation.".
/// The output stream sends every byte ("Failed to send the specified data."; a peer
/// that has gone away is this exception, never a signal); a null or unreadable buffer
/// sends nothing; Flush does nothing. Closing either stream closes the socket.
class LUMO_API CWinSocketImpl : public CSocketImpl {
    LUMO_DECLARE_CLASS(CWinSocketImpl);

public:
    /// No system socket yet. CMemoryException when the streams cannot be allocated.
    CWinSocketImpl();
    /// Closes the socket if still open, ignoring a failure.
    ~CWinSocketImpl() override;

    bool GetBoolOption(long id) override;
    void SetBoolOption(long id, bool value) override;
    long GetIntOption(long id) override;
    void SetIntOption(long id, long value) override;
    /// "Failed to get the number of available on the socket." on failure.
    unsigned long GetAvailable() override;
    io::CInputStream* GetInputStream() override;
    io::COutputStream* GetOutputStream() override;
    /// CWinSocketException "Failed to create the socket." when the system refuses.
    void Create(bool listening) override;
    /// "Failed to close the socket." when the system reports a failure (the socket is
    /// released anyway).
    void Close() override;
    bool IsConnected() const override { return m_connected; }
    void Connect(CInetAddress const& address, unsigned short port) override;
    /// "Bind socket failed." with the code (EADDRINUSE for a port in use); "Failed to
    /// get the local address of the bound socket." when the bound port cannot be read.
    void Bind(CInetAddress const& address, unsigned short port) override;
    /// "Failed to determine if there are pending connection requests." on failure.
    bool IsPending() override;
    /// With the stored timeout t: t = 0 blocks ("Failed to accept the incoming
    /// connection." on failure); otherwise the timeout wait ("Accept timed-out.",
    /// "select failed."), then "accept failed." on failure. The new implementation
    /// holds the connection, the peer's address and port and its own local ones, and
    /// starts with timeout 0.
    base::CRef<CSocketImpl> Accept() override;
    /// As Accept() with `timeout` in place of the stored timeout, for this call only.
    base::CRef<CSocketImpl> Accept(unsigned long timeout) override;
    /// "Failed to place the socket in a state in which it is listening for an
    /// incoming connection." on failure.
    void Listen(unsigned long backlog) override;

private:
    friend class CSocketInputStream;
    friend class CSocketOutputStream;

    base::CRef<CSocketImpl> AcceptWithin(unsigned long timeout);
    /// Throws "Read timed-out." / "Accept timed-out." when nothing arrives in time.
    void WaitForRead(unsigned long timeout, char const* timedOut);
    long Receive(char* buf, unsigned long len);
    void Send(char const* buf, unsigned long len);
    void CloseQuietly() noexcept;

    std::intptr_t m_handle;
    bool m_connected;
    std::unique_ptr<io::CInputStream> m_input;
    std::unique_ptr<io::COutputStream> m_output;
};

} // namespace net
} // namespace lumo

#endif
