// The POSIX backend of the socket layer behind CWinSocketImpl and CInetAddress: BSD
// sockets, getaddrinfo/getnameinfo for IPv4 names, and ppoll for waits, so that a
// descriptor above FD_SETSIZE works.
#include "SocketLayer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>
#include <memory>

namespace lumo {
namespace net {
namespace detail {

namespace {

int Fd(SocketHandle handle) {
    return static_cast<int>(handle);
}

sockaddr_in ToSockaddr(Endpoint const& endpoint) {
    sockaddr_in sa;
    std::memset(&sa, 0, sizeof sa);
    sa.sin_family = AF_INET;
    sa.sin_port = htons(endpoint.port);
    std::memcpy(&sa.sin_addr, endpoint.address, 4);
    return sa;
}

void FromSockaddr(sockaddr_in const& sa, Endpoint& endpoint) {
    std::memcpy(endpoint.address, &sa.sin_addr, 4);
    endpoint.port = ntohs(sa.sin_port);
}

struct AddrInfoDeleter {
    void operator()(addrinfo* info) const { freeaddrinfo(info); }
};

// Level and name of each option id, in the id order of CSocketImpl's table.
struct SystemOption {
    int level;
    int name;
};
SystemOption const kOptions[] = {
    {IPPROTO_IP, IP_MULTICAST_LOOP}, {IPPROTO_IP, IP_TOS},       {SOL_SOCKET, SO_BROADCAST},
    {SOL_SOCKET, SO_KEEPALIVE},      {SOL_SOCKET, SO_LINGER},    {SOL_SOCKET, SO_OOBINLINE},
    {SOL_SOCKET, SO_RCVBUF},         {SOL_SOCKET, SO_REUSEADDR}, {SOL_SOCKET, SO_SNDBUF},
    {IPPROTO_TCP, TCP_NODELAY},
};

bool LookUpOption(long id, SystemOption& option) {
    if (id < 0 || id >= static_cast<long>(sizeof kOptions / sizeof kOptions[0]))
        return false;
    option = kOptions[id];
    return true;
}

timespec Now() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now;
}

// end - now, or zero when end has passed.
timespec Remaining(timespec const& end) {
    timespec const now = Now();
    timespec left;
    left.tv_sec = end.tv_sec - now.tv_sec;
    left.tv_nsec = end.tv_nsec - now.tv_nsec;
    if (left.tv_nsec < 0) {
        left.tv_nsec += 1000000000L;
        --left.tv_sec;
    }
    if (left.tv_sec < 0)
        left.tv_sec = left.tv_nsec = 0;
    return left;
}

// ppoll on one descriptor, restarted after a signal with the time that is left.
// Returns the events, 0 on time-out; -1 with errno set on failure.
int PollOne(int fd, short events, timespec const* limit) {
    if (fd < 0) {
        // Winsock's select refuses a closed socket; poll would silently skip it.
        errno = EBADF;
        return -1;
    }
    timespec end{};
    if (limit != nullptr) {
        end = Now();
        end.tv_sec += limit->tv_sec;
        end.tv_nsec += limit->tv_nsec;
        if (end.tv_nsec >= 1000000000L) {
            end.tv_nsec -= 1000000000L;
            ++end.tv_sec;
        }
    }
    pollfd entry{fd, events, 0};
    timespec left = limit != nullptr ? *limit : timespec{};
    for (;;) {
        int const rc = ppoll(&entry, 1, limit != nullptr ? &left : nullptr, nullptr);
        if (rc > 0) {
            if ((entry.revents & POLLNVAL) != 0) {
                errno = EBADF;
                return -1;
            }
            return entry.revents;
        }
        if (rc == 0)
            return 0;
        if (errno != EINTR)
            return -1;
        if (limit != nullptr)
            left = Remaining(end);
    }
}

} // namespace

int StartSocketLayer() {
    return 0;
}

void StopSocketLayer() {}

bool ResolveHost(char const* host, unsigned char address[4]) {
    addrinfo hints;
    std::memset(&hints, 0, sizeof hints);
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host, nullptr, &hints, &found) != 0 || found == nullptr)
        return false;
    std::unique_ptr<addrinfo, AddrInfoDeleter> const hold(found);
    for (addrinfo const* info = found; info != nullptr; info = info->ai_next) {
        if (info->ai_family == AF_INET && info->ai_addr != nullptr) {
            sockaddr_in sa;
            std::memcpy(&sa, info->ai_addr, sizeof sa);
            std::memcpy(address, &sa.sin_addr, 4);
            return true;
        }
    }
    return false;
}

bool ReverseLookup(unsigned char const address[4], base::CString& name) {
    Endpoint const endpoint{{address[0], address[1], address[2], address[3]}, 0};
    sockaddr_in const sa = ToSockaddr(endpoint);
    char host[NI_MAXHOST];
    if (getnameinfo(reinterpret_cast<sockaddr const*>(&sa), sizeof sa, host, sizeof host, nullptr,
                    0, NI_NAMEREQD) != 0)
        return false;
    name = host;
    return true;
}

int GetMachineName(char* buffer, std::size_t size) {
    if (gethostname(buffer, size) != 0)
        return errno;
    // POSIX leaves a truncated name without terminator: treat that as too small too.
    if (std::memchr(buffer, '\0', size) == nullptr)
        return ENAMETOOLONG;
    return 0;
}

bool IsBufferTooSmall(int code) {
    return code == ENAMETOOLONG || code == EINVAL;
}

int OpenStreamSocket(bool listening, SocketHandle& handle) {
    int const fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP);
    if (fd < 0)
        return errno;
    if (listening) {
        // POSIX refuses to bind a port whose earlier connections still linger in
        // TIME_WAIT unless SO_REUSEADDR is set; Winsock binds it without.
        int const on = 1;
        if (setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0) {
            int const code = errno;
            close(fd);
            return code;
        }
    }
    handle = fd;
    return 0;
}

int CloseSocket(SocketHandle handle) {
    // Linux releases the descriptor even when close reports EINTR: never retry.
    if (close(Fd(handle)) != 0 && errno != EINTR)
        return errno;
    return 0;
}

int SetBlocking(SocketHandle handle, bool blocking) {
    int const flags = fcntl(Fd(handle), F_GETFL);
    if (flags < 0)
        return errno;
    int const wanted = blocking ? (flags & ~O_NONBLOCK) : (flags | O_NONBLOCK);
    if (wanted != flags && fcntl(Fd(handle), F_SETFL, wanted) != 0)
        return errno;
    return 0;
}

int Connect(SocketHandle handle, Endpoint const& remote) {
    sockaddr_in const sa = ToSockaddr(remote);
    if (connect(Fd(handle), reinterpret_cast<sockaddr const*>(&sa), sizeof sa) == 0)
        return 0;
    int code = errno;
    if (code != EINTR)
        return code;
    // An interrupted blocking connect goes on in the background: wait for its end.
    if (PollOne(Fd(handle), POLLOUT, nullptr) < 0)
        return errno;
    socklen_t len = sizeof code;
    if (getsockopt(Fd(handle), SOL_SOCKET, SO_ERROR, &code, &len) != 0)
        return errno;
    return code;
}

bool IsConnectInProgress(int code) {
    return code == EINPROGRESS;
}

int Bind(SocketHandle handle, Endpoint const& local) {
    sockaddr_in const sa = ToSockaddr(local);
    if (bind(Fd(handle), reinterpret_cast<sockaddr const*>(&sa), sizeof sa) != 0)
        return errno;
    return 0;
}

int Listen(SocketHandle handle, unsigned long backlog) {
    int const n =
        backlog > static_cast<unsigned long>(INT_MAX) ? INT_MAX : static_cast<int>(backlog);
    if (listen(Fd(handle), n) != 0)
        return errno;
    return 0;
}

int Accept(SocketHandle handle, SocketHandle& accepted, Endpoint& remote) {
    sockaddr_in sa;
    for (;;) {
        socklen_t len = sizeof sa;
        int const fd = accept4(Fd(handle), reinterpret_cast<sockaddr*>(&sa), &len, SOCK_CLOEXEC);
        if (fd >= 0) {
            accepted = fd;
            FromSockaddr(sa, remote);
            return 0;
        }
        if (errno != EINTR)
            return errno;
    }
}

int GetLocalEndpoint(SocketHandle handle, Endpoint& local) {
    sockaddr_in sa;
    socklen_t len = sizeof sa;
    if (getsockname(Fd(handle), reinterpret_cast<sockaddr*>(&sa), &len) != 0)
        return errno;
    FromSockaddr(sa, local);
    return 0;
}

int Receive(SocketHandle handle, char* buf, unsigned long len, long& received) {
    for (;;) {
        ssize_t const n = recv(Fd(handle), buf, len, 0);
        if (n >= 0) {
            received = static_cast<long>(n);
            return 0;
        }
        if (errno != EINTR)
            return errno;
    }
}

int SendAll(SocketHandle handle, char const* buf, unsigned long len) {
    while (len > 0) {
        ssize_t const n = send(Fd(handle), buf, len, MSG_NOSIGNAL);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        buf += n;
        len -= static_cast<unsigned long>(n);
    }
    return 0;
}

int GetAvailable(SocketHandle handle, unsigned long& count) {
    int n = 0;
    if (ioctl(Fd(handle), FIONREAD, &n) != 0)
        return errno;
    count = static_cast<unsigned long>(n);
    return 0;
}

int Wait(SocketHandle handle, WaitFor what, unsigned long timeout, WaitResult& result) {
    result = WaitResult{false, false, 0};
    timespec limit;
    limit.tv_sec = static_cast<time_t>(timeout / 1000);
    // The remainder counts as microseconds: the library's rule, kept as it is.
    limit.tv_nsec = static_cast<long>(timeout % 1000) * 1000L;
    short const events = what == WaitFor::Read ? POLLIN : POLLOUT;
    int const revents = PollOne(Fd(handle), events, timeout != 0 ? &limit : nullptr);
    if (revents < 0)
        return errno;
    if (revents == 0)
        return 0;
    result.ready = true;
    if (what == WaitFor::Connect) {
        int code = 0;
        socklen_t len = sizeof code;
        if (getsockopt(Fd(handle), SOL_SOCKET, SO_ERROR, &code, &len) != 0)
            return errno;
        if (code == 0 && (revents & (POLLERR | POLLHUP)) != 0)
            code = ECONNREFUSED;
        result.failed = code != 0;
        result.code = code;
    }
    return 0;
}

int Poll(SocketHandle handle, bool& ready) {
    timespec const zero{0, 0};
    int const revents = PollOne(Fd(handle), POLLIN, &zero);
    if (revents < 0)
        return errno;
    ready = revents != 0;
    return 0;
}

int GetIntOption(SocketHandle handle, long id, int& value) {
    SystemOption option;
    if (!LookUpOption(id, option))
        return EINVAL;
    value = 0;
    socklen_t len = sizeof value;
    if (getsockopt(Fd(handle), option.level, option.name, &value, &len) != 0)
        return errno;
    return 0;
}

int SetIntOption(SocketHandle handle, long id, int value) {
    SystemOption option;
    if (!LookUpOption(id, option))
        return EINVAL;
    if (setsockopt(Fd(handle), option.level, option.name, &value, sizeof value) != 0)
        return errno;
    return 0;
}

int GetLinger(SocketHandle handle, bool& on, unsigned short& seconds) {
    linger value{0, 0};
    socklen_t len = sizeof value;
    if (getsockopt(Fd(handle), SOL_SOCKET, SO_LINGER, &value, &len) != 0)
        return errno;
    on = value.l_onoff != 0;
    seconds = static_cast<unsigned short>(value.l_linger);
    return 0;
}

int SetLinger(SocketHandle handle, bool on, unsigned short seconds) {
    linger const value{on ? 1 : 0, static_cast<int>(seconds)};
    if (setsockopt(Fd(handle), SOL_SOCKET, SO_LINGER, &value, sizeof value) != 0)
        return errno;
    return 0;
}

} // namespace detail
} // namespace net
} // namespace lumo
