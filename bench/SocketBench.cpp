// Loopback sockets through the library against raw send/recv in the same run: bulk
// transfer in 64 KiB writes, 1-byte ping-pong with TCP_NODELAY, and many concurrent
// connections accepted and served. Each iteration times the raw baseline and the
// library back to back and reports both rates and their ratio (library / raw).
//
// Sizes (environment, for a quick run): LUMO_BENCH_SOCKET_BYTES (default 1 GiB),
// LUMO_BENCH_SOCKET_ROUNDS (ping-pong round trips, default 100000),
// LUMO_BENCH_SOCKET_CONNECTIONS (default 1000).
#include <lumo/Library.h>
#include <lumo/io/InputStream.h>
#include <lumo/io/OutputStream.h>
#include <lumo/net/ServerSocket.h>
#include <lumo/net/Socket.h>

#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using lumo::base::CRef;
using lumo::net::CInetAddress;
using lumo::net::CServerSocket;
using lumo::net::CSocket;

namespace {

unsigned long long Setting(char const* name, unsigned long long fallback) {
    char const* text = std::getenv(name);
    return text != nullptr && *text != '\0' ? std::strtoull(text, nullptr, 10) : fallback;
}

std::size_t const kChunk = 64 * 1024;

CInetAddress Loopback() {
    static unsigned char const bytes[4] = {127, 0, 0, 1};
    return CInetAddress(bytes);
}

template <class F> double Seconds(F&& f) {
    auto const start = std::chrono::steady_clock::now();
    f();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Enough descriptors for both ends of every concurrent connection.
void RaiseDescriptorLimit() {
    rlimit limit;
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

// ---- raw sockets: the baseline ---------------------------------------------------

void Check(bool ok, char const* what) {
    if (!ok)
        throw std::runtime_error(what);
}

int RawListen(int backlog, unsigned short& port) {
    int const fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    Check(fd >= 0, "socket");
    sockaddr_in sa{};
    sa.sin_family = AF_INET;
    sa.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    Check(bind(fd, reinterpret_cast<sockaddr*>(&sa), sizeof sa) == 0, "bind");
    Check(listen(fd, backlog) == 0, "listen");
    socklen_t len = sizeof sa;
    getsockname(fd, reinterpret_cast<sockaddr*>(&sa), &len);
    port = ntohs(sa.sin_port);
    return fd;
}

int RawConnect(unsigned short port) {
    int const fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    Check(fd >= 0, "socket");
    sockaddr_in sa{};
    sa.sin_family = AF_INET;
    sa.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sa.sin_port = htons(port);
    Check(connect(fd, reinterpret_cast<sockaddr*>(&sa), sizeof sa) == 0, "connect");
    return fd;
}

void RawSendAll(int fd, char const* p, std::size_t n) {
    while (n > 0) {
        ssize_t const sent = send(fd, p, n, MSG_NOSIGNAL);
        Check(sent > 0, "send");
        p += sent;
        n -= static_cast<std::size_t>(sent);
    }
}

void RawRecvAll(int fd, char* p, std::size_t n) {
    while (n > 0) {
        ssize_t const got = recv(fd, p, n, 0);
        Check(got > 0, "recv");
        p += got;
        n -= static_cast<std::size_t>(got);
    }
}

void SetNoDelay(int fd) {
    int const on = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

// ---- the library through its streams ----------------------------------------------

void LumoWriteAll(CSocket& s, char const* p, std::size_t n) {
    s.GetOutputStream()->Write(p, 0, static_cast<unsigned long>(n));
}

void LumoReadAll(CSocket& s, char* p, std::size_t n) {
    std::size_t got = 0;
    while (got < n) {
        long const r = s.GetInputStream()->Read(p, static_cast<unsigned long>(got),
                                                static_cast<unsigned long>(n - got));
        Check(r > 0, "read");
        got += static_cast<std::size_t>(r);
    }
}

// ---- bulk transfer ------------------------------------------------------------------

double RawBulk(unsigned long long total) {
    unsigned short port = 0;
    int const listener = RawListen(1, port);
    int const client = RawConnect(port);
    int const server = accept(listener, nullptr, nullptr);
    std::vector<char> out(kChunk, 'x');
    double const t = Seconds([&] {
        std::thread receiver([&] {
            std::vector<char> in(kChunk);
            for (unsigned long long left = total; left > 0;) {
                ssize_t const got = recv(server, in.data(), kChunk, 0);
                if (got <= 0)
                    break;
                left -= static_cast<unsigned long long>(got);
            }
        });
        for (unsigned long long sent = 0; sent < total; sent += kChunk)
            RawSendAll(client, out.data(), kChunk);
        receiver.join();
    });
    close(server);
    close(client);
    close(listener);
    return t;
}

double LumoBulk(unsigned long long total) {
    CServerSocket listener(0, 1, Loopback());
    CSocket client(Loopback(), listener.GetLocalPort());
    CRef<CSocket> server = listener.Accept();
    std::vector<char> out(kChunk, 'x');
    return Seconds([&] {
        std::thread receiver([&] {
            std::vector<char> in(kChunk);
            lumo::io::CInputStream* stream = server->GetInputStream();
            for (unsigned long long left = total; left > 0;) {
                long const got = stream->Read(in.data(), 0, kChunk);
                if (got <= 0)
                    break;
                left -= static_cast<unsigned long long>(got);
            }
        });
        lumo::io::COutputStream* stream = client.GetOutputStream();
        for (unsigned long long sent = 0; sent < total; sent += kChunk)
            stream->Write(out.data(), 0, kChunk);
        receiver.join();
    });
}

// Runs both sides each iteration, alternating which goes first so that neither keeps
// the warmer turn, and reports `units` per iteration as a rate of each side (counter
// names "lumo_<unit>/s" and "raw_<unit>/s") and their ratio.
template <class Raw, class Lumo>
void RunSideBySide(benchmark::State& state, double units, char const* unit, Raw raw, Lumo ours) {
    double rawTime = 0, lumoTime = 0;
    bool rawFirst = true;
    for (auto _ : state) {
        double const r0 = rawFirst ? raw() : 0;
        double const t = ours();
        double const r1 = rawFirst ? 0 : raw();
        rawTime += r0 + r1;
        lumoTime += t;
        rawFirst = !rawFirst;
        state.SetIterationTime(t);
    }
    double const total = units * static_cast<double>(state.iterations());
    state.counters[std::string("lumo_") + unit + "/s"] = total / lumoTime;
    state.counters[std::string("raw_") + unit + "/s"] = total / rawTime;
    state.counters["ratio"] = rawTime / lumoTime;
}

void Socket_BulkTransfer64KiB(benchmark::State& state) {
    lumo::Initialize();
    unsigned long long const total =
        Setting("LUMO_BENCH_SOCKET_BYTES", 1ull << 30) / kChunk * kChunk;
    double const gib = static_cast<double>(total) / (1024.0 * 1024.0 * 1024.0);
    RunSideBySide(
        state, gib, "GiB", [&] { return RawBulk(total); }, [&] { return LumoBulk(total); });
    state.counters["GiB"] = gib;
    lumo::Terminate();
}
BENCHMARK(Socket_BulkTransfer64KiB)->Iterations(4)->UseManualTime()->Unit(benchmark::kMillisecond);

// ---- 1-byte ping-pong ---------------------------------------------------------------

double RawPingPong(unsigned long long rounds) {
    unsigned short port = 0;
    int const listener = RawListen(1, port);
    int const client = RawConnect(port);
    int const server = accept(listener, nullptr, nullptr);
    SetNoDelay(client);
    SetNoDelay(server);
    double const t = Seconds([&] {
        std::thread echo([&] {
            char b;
            for (unsigned long long i = 0; i < rounds; ++i) {
                RawRecvAll(server, &b, 1);
                RawSendAll(server, &b, 1);
            }
        });
        char b = 'p';
        for (unsigned long long i = 0; i < rounds; ++i) {
            RawSendAll(client, &b, 1);
            RawRecvAll(client, &b, 1);
        }
        echo.join();
    });
    close(server);
    close(client);
    close(listener);
    return t;
}

double LumoPingPong(unsigned long long rounds) {
    CServerSocket listener(0, 1, Loopback());
    CSocket client(Loopback(), listener.GetLocalPort());
    CRef<CSocket> server = listener.Accept();
    client.SetTCPNoDelay(true);
    server->SetTCPNoDelay(true);
    return Seconds([&] {
        std::thread echo([&] {
            char b;
            for (unsigned long long i = 0; i < rounds; ++i) {
                LumoReadAll(*server, &b, 1);
                LumoWriteAll(*server, &b, 1);
            }
        });
        char b = 'p';
        for (unsigned long long i = 0; i < rounds; ++i) {
            LumoWriteAll(client, &b, 1);
            LumoReadAll(client, &b, 1);
        }
        echo.join();
    });
}

void Socket_PingPong1Byte(benchmark::State& state) {
    lumo::Initialize();
    unsigned long long const rounds = Setting("LUMO_BENCH_SOCKET_ROUNDS", 100000);
    RunSideBySide(
        state, static_cast<double>(rounds), "trips", [&] { return RawPingPong(rounds); },
        [&] { return LumoPingPong(rounds); });
    lumo::Terminate();
}
BENCHMARK(Socket_PingPong1Byte)->Iterations(4)->UseManualTime()->Unit(benchmark::kMillisecond);

// ---- concurrent connections ---------------------------------------------------------
// N client threads connect at once, send a 32-byte request and read the 32-byte
// answer; the server accepts on one thread and serves each connection on a thread of
// its own.

std::size_t const kRequest = 32;

double RawConnections(unsigned long long n) {
    unsigned short port = 0;
    int const listener = RawListen(static_cast<int>(n), port);
    std::atomic<unsigned long long> served{0};
    double const t = Seconds([&] {
        std::thread acceptor([&] {
            std::vector<std::thread> workers;
            for (unsigned long long i = 0; i < n; ++i) {
                int const fd = accept(listener, nullptr, nullptr);
                Check(fd >= 0, "accept");
                workers.emplace_back([fd, &served] {
                    char buf[kRequest];
                    RawRecvAll(fd, buf, kRequest);
                    RawSendAll(fd, buf, kRequest);
                    close(fd);
                    ++served;
                });
            }
            for (auto& w : workers)
                w.join();
        });
        std::vector<std::thread> clients;
        for (unsigned long long i = 0; i < n; ++i)
            clients.emplace_back([port] {
                int const fd = RawConnect(port);
                char buf[kRequest] = "request";
                RawSendAll(fd, buf, kRequest);
                RawRecvAll(fd, buf, kRequest);
                close(fd);
            });
        for (auto& c : clients)
            c.join();
        acceptor.join();
    });
    close(listener);
    Check(served == n, "served");
    return t;
}

double LumoConnections(unsigned long long n) {
    CServerSocket listener(0, static_cast<unsigned long>(n), Loopback());
    unsigned short const port = listener.GetLocalPort();
    std::atomic<unsigned long long> served{0};
    double const t = Seconds([&] {
        std::thread acceptor([&] {
            std::vector<std::thread> workers;
            for (unsigned long long i = 0; i < n; ++i) {
                // Moved into the worker, which alone holds it from then on (the
                // reference count is not atomic).
                workers.emplace_back([peer = listener.Accept(), &served]() mutable {
                    char buf[kRequest];
                    LumoReadAll(*peer, buf, kRequest);
                    LumoWriteAll(*peer, buf, kRequest);
                    peer->Close();
                    peer = nullptr;
                    ++served;
                });
            }
            for (auto& w : workers)
                w.join();
        });
        std::vector<std::thread> clients;
        for (unsigned long long i = 0; i < n; ++i)
            clients.emplace_back([port] {
                CSocket socket(Loopback(), port);
                char buf[kRequest] = "request";
                LumoWriteAll(socket, buf, kRequest);
                LumoReadAll(socket, buf, kRequest);
                socket.Close();
            });
        for (auto& c : clients)
            c.join();
        acceptor.join();
    });
    Check(served == n, "served");
    return t;
}

void Socket_ConcurrentConnections(benchmark::State& state) {
    lumo::Initialize();
    RaiseDescriptorLimit();
    unsigned long long const n = Setting("LUMO_BENCH_SOCKET_CONNECTIONS", 1000);
    RunSideBySide(
        state, static_cast<double>(n), "conn", [&] { return RawConnections(n); },
        [&] { return LumoConnections(n); });
    lumo::Terminate();
}
BENCHMARK(Socket_ConcurrentConnections)
    ->Iterations(4)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
