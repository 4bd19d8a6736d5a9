// Real peers over loopback: a Python 3 echo server that a CSocket talks to, and a
// Python 3 client that talks to a CServerSocket, each exchanging 1 MiB of random bytes
// with a SHA-256 checksum both ways. Skipped where python3 is absent. Both sides use
// 30 s time-outs, so nothing hangs.
// ctest-labels: concurrency
#include "support/Net.h"

#include <cstdlib>
#include <thread>

using namespace lumo::net;
using lumo::base::CRef;
using lumotest::Loopback;

namespace {

::testing::Environment* const g_env =
    ::testing::AddGlobalTestEnvironment(new lumotest::NetEnvironment);

std::size_t const kSize = 1 << 20;

// Echoes n bytes, then sends the SHA-256 of what it received.
char const kEchoServer[] = R"(import hashlib, socket, sys
n = int(sys.argv[1])
s = socket.socket()
s.bind(('127.0.0.1', 0))
s.listen(1)
s.settimeout(30)
print(s.getsockname()[1], flush=True)
c, _ = s.accept()
c.settimeout(30)
h, got = hashlib.sha256(), 0
while got < n:
    b = c.recv(65536)
    if not b:
        break
    h.update(b)
    got += len(b)
    c.sendall(b)
c.sendall(h.hexdigest().encode())
c.close()
)";

// Sends n random bytes and their SHA-256, reads n bytes and a SHA-256 back, and
// prints ok when the checksum matches.
char const kClient[] = R"(import hashlib, os, socket, sys
port, n = int(sys.argv[1]), int(sys.argv[2])
c = socket.create_connection(('127.0.0.1', port), timeout=30)
data = os.urandom(n)
c.sendall(data + hashlib.sha256(data).hexdigest().encode())
back = b''
while len(back) < n + 64:
    b = c.recv(65536)
    if not b:
        break
    back += b
ok = len(back) == n + 64 and hashlib.sha256(back[:n]).hexdigest().encode() == back[n:]
print('ok' if ok else 'bad', flush=True)
sys.exit(0 if ok else 1)
)";

bool HavePython() {
    return std::system("python3 -c pass >/dev/null 2>&1") == 0;
}

// Starts `python3 -c script args`, reading its output; the script goes through the
// environment, so no file and no quoting is needed.
FILE* StartPython(char const* script, std::string const& args) {
    setenv("LUMO_PEER_SCRIPT", script, 1);
    return popen(("python3 -c \"$LUMO_PEER_SCRIPT\" " + args).c_str(), "r");
}

TEST(SocketPeer, PythonEchoServer) {
    if (!HavePython())
        GTEST_SKIP() << "python3 is not installed; the Python peer check is skipped";
    FILE* child = StartPython(kEchoServer, std::to_string(kSize));
    ASSERT_NE(child, nullptr);
    char line[32] = {0};
    ASSERT_NE(std::fgets(line, sizeof line, child), nullptr);
    unsigned short const port = static_cast<unsigned short>(std::atoi(line));
    {
        CSocket socket(Loopback(), port);
        socket.SetTimeout(30000);
        std::string const data = lumotest::RandomBytes(kSize);
        std::thread writer([&] { // writes while this thread reads the echo
            for (std::size_t off = 0; off < data.size(); off += 65536)
                socket.GetOutputStream()->Write(data.data(), static_cast<unsigned long>(off),
                                                65536);
        });
        std::string const echo = lumotest::ReadUpTo(socket.GetInputStream(), kSize);
        std::string const digest = lumotest::ReadUpTo(socket.GetInputStream(), 64);
        writer.join();
        EXPECT_TRUE(echo == data) << "echo differs";
        EXPECT_EQ(digest, lumotest::Sha256Hex(data));
        EXPECT_EQ(socket.GetInputStream()->Read(line, 0, 1), 0); // the server closed
    }
    EXPECT_EQ(pclose(child), 0);
}

TEST(SocketPeer, PythonClient) {
    if (!HavePython())
        GTEST_SKIP() << "python3 is not installed; the Python peer check is skipped";
    CServerSocket server(0, 1, Loopback());
    FILE* child =
        StartPython(kClient, std::to_string(server.GetLocalPort()) + " " + std::to_string(kSize));
    ASSERT_NE(child, nullptr);
    {
        CRef<CSocket> peer = server.Accept(30000);
        peer->SetTimeout(30000);
        std::string const data = lumotest::ReadUpTo(peer->GetInputStream(), kSize);
        std::string const digest = lumotest::ReadUpTo(peer->GetInputStream(), 64);
        EXPECT_EQ(data.size(), kSize);
        EXPECT_EQ(digest, lumotest::Sha256Hex(data));
        std::string const reply = lumotest::RandomBytes(kSize);
        peer->GetOutputStream()->Write(reply.data(), 0, static_cast<unsigned long>(kSize));
        std::string const sum = lumotest::Sha256Hex(reply);
        peer->GetOutputStream()->Write(sum.data(), 0, 64);
    }
    char line[16] = {0};
    EXPECT_NE(std::fgets(line, sizeof line, child), nullptr);
    EXPECT_STREQ(line, "ok\n");
    EXPECT_EQ(pclose(child), 0);
}

} // namespace
