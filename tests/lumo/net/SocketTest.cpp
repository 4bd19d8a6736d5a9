// TCP client and server sockets over loopback: options by id, the timeout rule, the
// read and send rules at the edges of a connection, failures with their codes, and
// descriptors after many connections, and concurrent clients, each served on a thread.
// Every loop is bounded in count and time.
// ctest-labels: concurrency
#include "support/Net.h"

#include <lumo/io/IOException.h>
#include <lumo/net/SocketException.h>
#include <lumo/net/TCPIPSocketImplFactory.h>
#include <lumo/net/WinSocketException.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <thread>
#include <vector>

using namespace lumo::net;
using lumo::base::CRef;
using lumo::io::CInterruptedIOException;
using lumotest::Connection;
using lumotest::Loopback;
using lumotest::Thrown;

namespace {

::testing::Environment* const g_env =
    ::testing::AddGlobalTestEnvironment(new lumotest::NetEnvironment);

// "code: description" of the CWinSocketException that f throws ("" when none).
template <class F> std::string Failure(F&& f) {
    try {
        f();
    } catch (CWinSocketException const& e) {
        return std::to_string(e.GetErrorCode()) + ": " + e.GetErrorDescription();
    }
    return "";
}
std::string Failure(int code, char const* description) {
    return std::to_string(code) + ": " + description;
}

template <class F> double SecondsOf(F&& f) {
    auto const start = std::chrono::steady_clock::now();
    f();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST(Socket, OptionsById) {
    Connection c;
    CRef<CSocketImpl> impl = CTCPIPSocketImplFactory().CreateSocketImpl();
    impl->Create(false);
    bool const isBool[] = {true, false, true, true, false, true, false, true, false, true};
    for (long id = 0; id < 10; ++id) {
        char const* wrong = isBool[id] ? "The specified option is not an int option."
                                       : "The specified option is not a bool option.";
        if (isBool[id]) {
            EXPECT_EQ(Thrown<CSocketException>([&] { impl->GetIntOption(id); }), wrong) << id;
            EXPECT_EQ(Thrown<CSocketException>([&] { impl->SetIntOption(id, 1); }), wrong) << id;
        } else {
            EXPECT_EQ(Thrown<CSocketException>([&] { impl->GetBoolOption(id); }), wrong) << id;
            EXPECT_EQ(Thrown<CSocketException>([&] { impl->SetBoolOption(id, 1); }), wrong) << id;
        }
    }
    for (long id : {-1L, 10L, 1000L}) {
        char const* unsupported = "The specified option is not supported.";
        EXPECT_EQ(Thrown<CSocketException>([&] { impl->GetBoolOption(id); }), unsupported);
        EXPECT_EQ(Thrown<CSocketException>([&] { impl->SetBoolOption(id, true); }), unsupported);
        EXPECT_EQ(Thrown<CSocketException>([&] { impl->GetIntOption(id); }), unsupported);
        EXPECT_EQ(Thrown<CSocketException>([&] { impl->SetIntOption(id, 1); }), unsupported);
    }

    // The four bool options of CSocket, both ways.
    for (bool on : {true, false}) {
        c.client.SetKeepAlive(on);
        c.client.SetOOBInline(on);
        c.client.SetReuseAddress(on);
        c.client.SetTCPNoDelay(on);
        EXPECT_EQ(c.client.GetKeepAlive(), on);
        EXPECT_EQ(c.client.GetOOBInline(), on);
        EXPECT_EQ(c.client.GetReuseAddress(), on);
        EXPECT_EQ(c.client.GetTCPNoDelay(), on);
    }
    // Lingering: a positive value is the seconds, 0 or less switches it off (-1).
    for (long value : {7L, 0L, 30L, -5L, 1L}) {
        impl->SetIntOption(CSocketImpl::Option_Linger, value);
        EXPECT_EQ(impl->GetIntOption(CSocketImpl::Option_Linger), value > 0 ? value : -1);
    }
    impl->SetIntOption(CSocketImpl::Option_TypeOfService, 0x10);
    EXPECT_EQ(impl->GetIntOption(CSocketImpl::Option_TypeOfService), 0x10);
    impl->SetIntOption(CSocketImpl::Option_SendBuffer, 65536);
    EXPECT_GE(impl->GetIntOption(CSocketImpl::Option_SendBuffer), 65536);

    // On a closed socket the system refuses, with its code.
    c.client.Close();
    EXPECT_EQ(Failure([&] { c.client.GetTCPNoDelay(); }),
              Failure(EBADF, "Failed to get the specified option."));
    EXPECT_EQ(Failure([&] { c.client.SetKeepAlive(true); }),
              Failure(EBADF, "Failed to set the specified option."));
}

TEST(Socket, AddressesPortsAndData) {
    Connection c;
    EXPECT_TRUE(*c.client.GetInetAddress() == Loopback());
    EXPECT_EQ(c.client.GetPort(), c.server.GetLocalPort());
    EXPECT_TRUE(*c.server.GetInetAddress() == Loopback());
    EXPECT_TRUE(*c.client.GetLocalInetAddress() == Loopback()); // from getsockname
    EXPECT_EQ(c.accepted->GetPort(), c.client.GetLocalPort());
    EXPECT_EQ(c.accepted->GetLocalPort(), c.server.GetLocalPort());
    EXPECT_TRUE(*c.accepted->GetInetAddress() == Loopback());
    EXPECT_EQ(c.accepted->GetTimeout(), 0ul);

    c.client.GetOutputStream()->Write("hello, server", 13);
    c.client.GetOutputStream()->Write('!');
    EXPECT_EQ(lumotest::ReadUpTo(c.accepted->GetInputStream(), 14), "hello, server!");
    c.accepted->GetOutputStream()->Write("0123456789", 2, 5);
    EXPECT_EQ(lumotest::ReadUpTo(c.client.GetInputStream(), 5), "23456");

    // A null buffer skips; an empty read reads nothing; Reset is refused.
    lumo::io::CInputStream* in = c.accepted->GetInputStream();
    c.client.GetOutputStream()->Write("skipped|kept", 12);
    c.client.GetOutputStream()->Write(nullptr, 5); // sends nothing
    EXPECT_TRUE(lumotest::WaitUntil([&] { return in->GetAvailable() == 12; }));
    EXPECT_EQ(in->Read(nullptr, 0, 8), 8);
    char buf[8];
    EXPECT_EQ(in->Read(buf, 0, 0), 0);
    EXPECT_EQ(in->Read(nullptr, 0, 0), 0);
    EXPECT_EQ(lumotest::ReadUpTo(in, 4), "kept");
    EXPECT_EQ(Thrown<CSocketException>([&] { in->Reset(); }),
              "Socket input stream doesn't support the reset operation.");

    // A peer that closed in order reads as 0 (the single-byte read as EOS), not -1.
    c.client.Close();
    EXPECT_EQ(in->Read(buf, 0, sizeof buf), 0);
    EXPECT_EQ(in->Read(buf, 0, sizeof buf), 0);
    EXPECT_EQ(in->Read(), lumo::io::CInputStream::EOS);
    c.client.Close(); // a second close does nothing
    EXPECT_EQ(
        Failure([&] { c.client.GetInputStream()->Read(buf, 0, 1); }),
        Failure(EBADF,
                "Failed to read the specified number of bytes from the socket input stream."));
}

TEST(Socket, TimeoutRule) {
    Connection c;
    char buf[4];
    lumo::io::CInputStream* in = c.client.GetInputStream();
    // t / 1000 seconds plus t % 1000 MICROseconds: 1999 waits about 1 s, 999 about 1 ms.
    c.client.SetTimeout(1999);
    EXPECT_EQ(c.client.GetTimeout(), 1999ul);
    double const slow = SecondsOf([&] {
        EXPECT_EQ(Thrown<CInterruptedIOException>([&] { in->Read(buf, 0, 4); }), "Read timed-out.");
    });
    EXPECT_GE(slow, 1.0);
    EXPECT_LT(slow, 1.9);
    c.client.SetTimeout(999);
    EXPECT_LT(SecondsOf([&] { Thrown<CInterruptedIOException>([&] { in->Read(); }); }), 0.5);
    // Data that is there is read at once, whatever the timeout.
    c.accepted->GetOutputStream()->Write("ab", 2);
    EXPECT_EQ(lumotest::ReadUpTo(in, 2), "ab");

    // Accept: the stored timeout for Accept(), the argument alone for Accept(t) (the wait
    // itself is the one timed above).
    c.server.SetTimeout(999);
    EXPECT_EQ(Thrown<CInterruptedIOException>([&] { c.server.Accept(); }), "Accept timed-out.");
    c.server.SetTimeout(1999);
    EXPECT_LT(SecondsOf([&] { Thrown<CInterruptedIOException>([&] { c.server.Accept(999); }); }),
              0.5);
    EXPECT_EQ(c.server.GetTimeout(), 1999ul);
    EXPECT_FALSE(c.server.IsPending());
    CSocket other(Loopback(), c.server.GetLocalPort());
    EXPECT_TRUE(lumotest::WaitUntil([&] { return c.server.IsPending(); }));
    EXPECT_EQ(c.server.Accept(0)->GetPort(), other.GetLocalPort());
    c.server.Close();
    EXPECT_EQ(Failure([&] { c.server.IsPending(); }),
              Failure(EBADF, "Failed to determine if there are pending connection requests."));
}

TEST(Socket, PeerGoneAwayIsAnExceptionNotASignal) {
    // With the default action, a SIGPIPE would end this test process.
    void (*previous)(int) = std::signal(SIGPIPE, SIG_DFL);
    {
        Connection c;
        c.accepted->Close();
        std::string const block(65536, 'x');
        std::string what;
        for (int i = 0; i < 100 && what.empty(); ++i)
            what = Failure([&] { c.client.GetOutputStream()->Write(block.data(), 0, 65536); });
        EXPECT_TRUE(what == Failure(EPIPE, "Failed to send the specified data.") ||
                    what == Failure(ECONNRESET, "Failed to send the specified data."))
            << what;
    }
    {
        // Closing with unread data resets the connection: the reader sees ECONNRESET.
        Connection c;
        c.client.GetOutputStream()->Write("unread", 6);
        EXPECT_TRUE(
            lumotest::WaitUntil([&] { return c.accepted->GetInputStream()->GetAvailable() == 6; }));
        c.accepted->Close();
        char buf[16];
        EXPECT_EQ(Failure([&] { c.client.GetInputStream()->Read(buf, 0, sizeof buf); }),
                  Failure(ECONNRESET, "Failed to read the specified number of bytes from the "
                                      "socket input stream."));
    }
    std::signal(SIGPIPE, previous);
}

TEST(Socket, ConnectAndBindFailures) {
    int const descriptors = lumotest::CountOpenDescriptors();
    unsigned short port = 0;
    {
        CServerSocket server(0, 1, CInetAddress::AnyInetAddress);
        port = server.GetLocalPort();
        EXPECT_TRUE(*server.GetInetAddress() == CInetAddress::AnyInetAddress);
        EXPECT_EQ(Failure([&] { CServerSocket again(port, 1, Loopback()); }),
                  Failure(EADDRINUSE, "Bind socket failed."));
        EXPECT_EQ(Failure([&] { CSocket client(Loopback(), port, Loopback(), port); }),
                  Failure(EADDRINUSE, "Bind socket failed."));
    }
    // The port is closed now.
    EXPECT_EQ(Failure([&] { CSocket client("127.0.0.1", port); }),
              Failure(ECONNREFUSED, "Connect socket failed."));
    CRef<CSocketImpl> impl = CTCPIPSocketImplFactory().CreateSocketImpl();
    impl->Create(false);
    impl->SetTimeout(5000);
    EXPECT_EQ(Failure([&] { impl->Connect(Loopback(), port); }),
              Failure(ECONNREFUSED, "connect failed."));
    EXPECT_FALSE(impl->IsConnected());
    impl = nullptr;
    EXPECT_EQ(lumotest::CountOpenDescriptors(), descriptors); // failed sockets are closed
}

TEST(Socket, ConnectTimeoutToFullBacklogReturnsSilently) {
    CServerSocket server(0, 0, Loopback()); // holds one waiting connection at most
    CSocket first(Loopback(), server.GetLocalPort());
    CRef<CSocketImpl> impl;
    // A SYN to a full queue is dropped, so the connect times out (1001 waits 1 s and
    // 1 us, ample for a loopback handshake); a few tries at most in case the system let
    // one more in.
    for (int attempt = 0; attempt < 4; ++attempt) {
        impl = CTCPIPSocketImplFactory().CreateSocketImpl();
        impl->Create(false);
        impl->SetTimeout(1001);
        impl->Connect(Loopback(), server.GetLocalPort()); // no exception either way
        if (!impl->IsConnected())
            break;
    }
    ASSERT_FALSE(impl->IsConnected());
    EXPECT_TRUE(impl->GetInetAddress().IsNull());
    // The next use of the socket fails clearly.
    EXPECT_EQ(Failure([&] { impl->GetOutputStream()->Write("x", 1); }),
              Failure(EBADF, "Failed to send the specified data."));
    EXPECT_EQ(Failure([&] { impl->GetInputStream()->Read(); }), Failure(EBADF, "select failed."));
}

TEST(Socket, DescriptorsAfterTenThousandConnections) {
    int const before = lumotest::CountOpenDescriptors();
    {
        CServerSocket server(0, 16, Loopback());
        for (int i = 0; i < 10000; ++i) {
            CSocket client(Loopback(), server.GetLocalPort());
            CRef<CSocket> accepted = server.Accept(20000);
            if (i % 2 == 0)
                accepted->Close(); // the other half closes through the destructors
        }
    }
    EXPECT_EQ(lumotest::CountOpenDescriptors(), before);
}

// Many clients at once, each served on a thread of its own, each sending a byte and a
// block that come back (the byte plus one); each worker alone holds its connection
// (reference counts are not atomic).
TEST(Socket, ConcurrentClientsAndWorkers) {
    int const clients = 32;
    unsigned long const size = 50000;
    CServerSocket server(0, clients, Loopback());
    std::vector<char> answered(clients, 0);
    std::thread acceptor([&] {
        std::vector<std::thread> workers;
        for (int i = 0; i < clients; ++i)
            workers.emplace_back([peer = server.Accept(20000), size]() mutable {
                peer->SetTimeout(20000);
                long const b = peer->GetInputStream()->Read();
                std::string const block = lumotest::ReadUpTo(peer->GetInputStream(), size);
                peer->GetOutputStream()->Write(static_cast<char>(b + 1));
                peer->GetOutputStream()->Write(block.data(), 0, size);
                peer = nullptr;
            });
        for (auto& w : workers)
            w.join();
    });
    std::vector<std::thread> threads;
    for (int i = 0; i < clients; ++i)
        threads.emplace_back([&, i] {
            CSocket socket("127.0.0.1", server.GetLocalPort());
            socket.SetTimeout(20000);
            std::string const data = lumotest::RandomBytes(size);
            socket.GetOutputStream()->Write(static_cast<char>(i));
            socket.GetOutputStream()->Write(data.data(), 0, size);
            answered[i] = socket.GetInputStream()->Read() == i + 1 &&
                          lumotest::ReadUpTo(socket.GetInputStream(), size) == data;
        });
    for (auto& t : threads)
        t.join();
    acceptor.join();
    for (int i = 0; i < clients; ++i)
        EXPECT_TRUE(answered[i]) << i;
}

} // namespace
