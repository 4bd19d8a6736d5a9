// The TCP/IP socket implementation: the option table, the timeout rule, connect,
// bind, listen and accept, and the socket's input and output streams. Every system
// call goes through the socket layer (os/SocketLayer.h).
#include <lumo/net/WinSocketImpl.h>

#include "os/SocketLayer.h"
#include <lumo/io/IOException.h>
#include <lumo/io/InputStream.h>
#include <lumo/io/OutputStream.h>
#include <lumo/net/WinSocketException.h>
#include <vela/Memory.h>

namespace lumo {
namespace net {

namespace {

char const kUnit[] = "lumo/net/WinSocketImpl";

// Results of reads are signed 32-bit: one read moves at most this much.
unsigned long const kMaxBlock = 0x7FFFFFFF;

enum class OptionType { Bool, Int };

// The type of each option id, in id order; ids past the end are not supported.
OptionType const kOptionTypes[] = {
    OptionType::Bool, OptionType::Int, OptionType::Bool, OptionType::Bool, OptionType::Int,
    OptionType::Bool, OptionType::Int, OptionType::Bool, OptionType::Int,  OptionType::Bool,
};

void CheckOption(long id, OptionType wanted) {
    if (id < 0 || id >= static_cast<long>(sizeof kOptionTypes / sizeof kOptionTypes[0]))
        throw CSocketException(kUnit, __LINE__, "The specified option is not supported.", nullptr);
    if (kOptionTypes[id] != wanted)
        throw CSocketException(kUnit, __LINE__,
                               wanted == OptionType::Bool
                                   ? "The specified option is not a bool option."
                                   : "The specified option is not an int option.",
                               nullptr);
}

[[noreturn]] void Fail(int line, char const* description, int code) {
    throw CWinSocketException(kUnit, static_cast<unsigned long>(line), description,
                              static_cast<unsigned long>(code));
}

detail::Endpoint ToEndpoint(CInetAddress const& address, unsigned short port) {
    unsigned char const* bytes = address.GetAddress();
    return detail::Endpoint{{bytes[0], bytes[1], bytes[2], bytes[3]}, port};
}

} // namespace

// The byte stream of what arrives on the socket.
class CSocketInputStream : public io::CInputStream {
    LUMO_DECLARE_CLASS(CSocketInputStream);

    explicit CSocketInputStream(CWinSocketImpl& socket) : m_socket(socket) {}

    unsigned long GetAvailable() const override { return m_socket.GetAvailable(); }

    using io::CInputStream::Read;

    long Read(char* buf, unsigned long off, unsigned long len) override {
        if (buf == nullptr || !Vela::bnManager::IsWritable(buf + off, len))
            return len > 0 ? Skip(len) : 0;
        if (len == 0)
            return 0;
        return m_socket.Receive(buf + off, len);
    }

    // A peer that closed in order ends the byte-wise reading.
    long Read() override {
        char b = 0;
        if (m_socket.Receive(&b, 1) == 0)
            return EOS;
        return static_cast<long>(b);
    }

    long Skip(unsigned long n) override {
        char scratch[4096];
        unsigned long skipped = 0;
        if (n > kMaxBlock)
            n = kMaxBlock;
        while (skipped < n) {
            unsigned long const want = n - skipped < sizeof scratch ? n - skipped : sizeof scratch;
            long const got = m_socket.Receive(scratch, want);
            if (got <= 0)
                break;
            skipped += static_cast<unsigned long>(got);
        }
        return static_cast<long>(skipped);
    }

    void Reset() override {
        throw CSocketException(kUnit, __LINE__,
                               "Socket input stream doesn't support the reset operation.", nullptr);
    }

    void Close() override { m_socket.Close(); }

private:
    CWinSocketImpl& m_socket;
};

// The byte stream sent over the socket; unbuffered, every write goes out at once.
class CSocketOutputStream : public io::COutputStream {
    LUMO_DECLARE_CLASS(CSocketOutputStream);

    explicit CSocketOutputStream(CWinSocketImpl& socket) : m_socket(socket) {}

    using io::COutputStream::Write;

    void Write(char const* buf, unsigned long off, unsigned long len) override {
        if (buf == nullptr || len == 0 || !Vela::bnManager::IsReadable(buf + off, len))
            return;
        m_socket.Send(buf + off, len);
    }

    void Write(char c) override { m_socket.Send(&c, 1); }

    void Flush() override {}

    void Close() override { m_socket.Close(); }

private:
    CWinSocketImpl& m_socket;
};

LUMO_DEFINE_CLASS(CWinSocketImpl, "lumo::net::CWinSocketImpl", "lumo::net::CSocketImpl");
LUMO_DEFINE_CLASS(CSocketInputStream, "lumo::net::CSocketInputStream", "lumo::io::CInputStream");
LUMO_DEFINE_CLASS(CSocketOutputStream, "lumo::net::CSocketOutputStream", "lumo::io::COutputStream");

CWinSocketImpl::CWinSocketImpl()
    : m_handle(detail::kInvalidSocket), m_connected(false),
      m_input(new (kUnit, __LINE__) CSocketInputStream(*this)),
      m_output(new (kUnit, __LINE__) CSocketOutputStream(*this)) {}

CWinSocketImpl::~CWinSocketImpl() {
    CloseQuietly();
}

void CWinSocketImpl::CloseQuietly() noexcept {
    if (m_handle != detail::kInvalidSocket)
        detail::CloseSocket(m_handle);
    m_handle = detail::kInvalidSocket;
    m_connected = false;
}

bool CWinSocketImpl::GetBoolOption(long id) {
    CheckOption(id, OptionType::Bool);
    int value = 0;
    if (int const code = detail::GetIntOption(m_handle, id, value))
        Fail(__LINE__, "Failed to get the specified option.", code);
    return value != 0;
}

void CWinSocketImpl::SetBoolOption(long id, bool value) {
    CheckOption(id, OptionType::Bool);
    if (int const code = detail::SetIntOption(m_handle, id, value ? 1 : 0))
        Fail(__LINE__, "Failed to set the specified option.", code);
}

long CWinSocketImpl::GetIntOption(long id) {
    CheckOption(id, OptionType::Int);
    if (id == Option_Linger) {
        bool on = false;
        unsigned short seconds = 0;
        if (int const code = detail::GetLinger(m_handle, on, seconds))
            Fail(__LINE__, "Failed to get the specified option.", code);
        return on ? static_cast<long>(seconds) : -1;
    }
    int value = 0;
    if (int const code = detail::GetIntOption(m_handle, id, value))
        Fail(__LINE__, "Failed to get the specified option.", code);
    return value;
}

void CWinSocketImpl::SetIntOption(long id, long value) {
    CheckOption(id, OptionType::Int);
    int code = 0;
    if (id == Option_Linger) {
        // The seconds field is 16 bits wide: larger values keep their low 16 bits.
        code = value > 0 ? detail::SetLinger(m_handle, true, static_cast<unsigned short>(value))
                         : detail::SetLinger(m_handle, false, 0);
    } else {
        // A 4-byte integer: the value keeps its low 32 bits.
        code = detail::SetIntOption(m_handle, id, static_cast<int>(value));
    }
    if (code != 0)
        Fail(__LINE__, "Failed to set the specified option.", code);
}

unsigned long CWinSocketImpl::GetAvailable() {
    unsigned long count = 0;
    if (int const code = detail::GetAvailable(m_handle, count))
        Fail(__LINE__, "Failed to get the number of available on the socket.", code);
    return count;
}

io::CInputStream* CWinSocketImpl::GetInputStream() {
    return m_input.get();
}

io::COutputStream* CWinSocketImpl::GetOutputStream() {
    return m_output.get();
}

void CWinSocketImpl::Create(bool listening) {
    if (m_handle != detail::kInvalidSocket)
        return;
    detail::SocketHandle handle = detail::kInvalidSocket;
    if (int const code = detail::OpenStreamSocket(listening, handle))
        Fail(__LINE__, "Failed to create the socket.", code);
    m_handle = handle;
}

void CWinSocketImpl::Close() {
    if (m_handle == detail::kInvalidSocket)
        return;
    detail::SocketHandle const handle = m_handle;
    m_handle = detail::kInvalidSocket;
    m_connected = false;
    if (int const code = detail::CloseSocket(handle))
        Fail(__LINE__, "Failed to close the socket.", code);
}

void CWinSocketImpl::Connect(CInetAddress const& address, unsigned short port) {
    detail::Endpoint const remote = ToEndpoint(address, port);
    unsigned long const timeout = GetTimeout();
    if (timeout == 0) {
        if (int const code = detail::Connect(m_handle, remote))
            Fail(__LINE__, "Connect socket failed.", code);
    } else {
        if (int const code = detail::SetBlocking(m_handle, false))
            Fail(__LINE__, "ioctlsocket failed.", code);
        int code = detail::Connect(m_handle, remote);
        if (code != 0) {
            if (!detail::IsConnectInProgress(code))
                Fail(__LINE__, "connect failed.", code);
            detail::WaitResult wait;
            if ((code = detail::Wait(m_handle, detail::WaitFor::Connect, timeout, wait)) != 0)
                Fail(__LINE__, "connect failed.", code);
            if (!wait.ready) {
                // The defined behaviour: no exception, the socket is gone, and the
                // caller learns of it from the next operation.
                if ((code = detail::SetBlocking(m_handle, true)) != 0)
                    Fail(__LINE__, "ioctlsocket failed.", code);
                CloseQuietly();
                return;
            }
            if (wait.failed)
                Fail(__LINE__, "connect failed.", wait.code);
        }
        if ((code = detail::SetBlocking(m_handle, true)) != 0)
            Fail(__LINE__, "ioctlsocket failed.", code);
    }
    if (!HasLocal()) {
        detail::Endpoint local;
        if (int const code = detail::GetLocalEndpoint(m_handle, local))
            Fail(__LINE__, "getsockname failed.", code);
        SetLocal(CInetAddress(local.address), local.port);
    }
    SetRemote(address, port);
    m_connected = true;
}

void CWinSocketImpl::Bind(CInetAddress const& address, unsigned short port) {
    if (int const code = detail::Bind(m_handle, ToEndpoint(address, port)))
        Fail(__LINE__, "Bind socket failed.", code);
    detail::Endpoint local;
    if (int const code = detail::GetLocalEndpoint(m_handle, local))
        Fail(__LINE__, "Failed to get the local address of the bound socket.", code);
    // The address as given (AnyInetAddress stays so); the port the system picked.
    SetLocal(address, local.port);
}

bool CWinSocketImpl::IsPending() {
    bool ready = false;
    if (int const code = detail::Poll(m_handle, ready))
        Fail(__LINE__, "Failed to determine if there are pending connection requests.", code);
    return ready;
}

base::CRef<CSocketImpl> CWinSocketImpl::Accept() {
    return AcceptWithin(GetTimeout());
}

base::CRef<CSocketImpl> CWinSocketImpl::Accept(unsigned long timeout) {
    return AcceptWithin(timeout);
}

base::CRef<CSocketImpl> CWinSocketImpl::AcceptWithin(unsigned long timeout) {
    if (timeout != 0)
        WaitForRead(timeout, "Accept timed-out.");
    // Made before the accept, so that the connection is held (and closed on any
    // failure below) from the moment it exists.
    base::CRef<CWinSocketImpl> accepted(new (kUnit, __LINE__) CWinSocketImpl());
    detail::Endpoint remote;
    if (int const code = detail::Accept(m_handle, accepted->m_handle, remote))
        Fail(__LINE__,
             timeout != 0 ? "accept failed." : "Failed to accept the incoming connection.", code);
    detail::Endpoint local;
    if (int const code = detail::GetLocalEndpoint(accepted->m_handle, local))
        Fail(__LINE__, "getsockname failed.", code);
    accepted->SetLocal(CInetAddress(local.address), local.port);
    accepted->SetRemote(CInetAddress(remote.address), remote.port);
    accepted->m_connected = true;
    return accepted;
}

void CWinSocketImpl::Listen(unsigned long backlog) {
    if (int const code = detail::Listen(m_handle, backlog))
        Fail(__LINE__,
             "Failed to place the socket in a state in which it is listening for an incoming "
             "connection.",
             code);
}

void CWinSocketImpl::WaitForRead(unsigned long timeout, char const* timedOut) {
    detail::WaitResult wait;
    if (int const code = detail::Wait(m_handle, detail::WaitFor::Read, timeout, wait))
        Fail(__LINE__, "select failed.", code);
    if (!wait.ready)
        throw io::CInterruptedIOException(kUnit, __LINE__, timedOut, nullptr);
}

long CWinSocketImpl::Receive(char* buf, unsigned long len) {
    if (GetTimeout() != 0)
        WaitForRead(GetTimeout(), "Read timed-out.");
    long received = 0;
    if (int const code =
            detail::Receive(m_handle, buf, len > kMaxBlock ? kMaxBlock : len, received))
        Fail(__LINE__, "Failed to read the specified number of bytes from the socket input stream.",
             code);
    return received;
}

void CWinSocketImpl::Send(char const* buf, unsigned long len) {
    if (int const code = detail::SendAll(m_handle, buf, len))
        Fail(__LINE__, "Failed to send the specified data.", code);
}

} // namespace net
} // namespace lumo
