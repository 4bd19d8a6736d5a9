// A line-based TCP echo server and client over loopback. The server listens on
// 127.0.0.1 on a port the system picks, and its thread echoes a fixed number of lines
// back to one client, then exits. Every wait has a time limit and every loop a count,
// so a fault ends the program instead of hanging it.
// ctest-labels: concurrency
#include <lumo/Lumo.h>

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace lumo::base;
using namespace lumo::io;
using namespace lumo::net;

namespace {

int const kLines = 4;                  // lines the server echoes before it exits
unsigned long const kTimeoutMs = 5000; // for accept, reads and joins

// Reads one line (at most 256 bytes) without its '\n'; false when the peer closed first.
bool ReadLine(CInputStream* in, std::string& line) {
    line.clear();
    for (int n = 0; n < 256; ++n) {
        long const c = in->Read(); // waits at most the socket's timeout
        if (c == CInputStream::EOS || c == '\n')
            return c == '\n';
        line += static_cast<char>(c);
    }
    return true;
}

void WriteLine(COutputStream* out, std::string const& line) {
    std::string const text = line + "\n";
    out->Write(text.data(), static_cast<unsigned long>(text.size()));
}

class CEchoServer : public CThread {
public:
    explicit CEchoServer(CServerSocket& listener) : m_listener(listener) {}
    void Run() override {
        try {
            // The connection closes when `peer`, its last holder, goes out of scope.
            CRef<CSocket> peer = m_listener.Accept(kTimeoutMs);
            peer->SetTimeout(kTimeoutMs);
            std::string line;
            while (echoed < kLines && ReadLine(peer->GetInputStream(), line)) {
                WriteLine(peer->GetOutputStream(), line);
                ++echoed;
            }
        } catch (CException const& e) {
            std::printf("server: %s\n", e.GetClass()->GetName());
        }
    }
    CServerSocket& m_listener;
    int echoed = 0; // read by main after Join
};

} // namespace

int main() {
    lumo::Initialize();
    // Port 0: the system picks a free port, so runs never collide.
    CServerSocket listener(0, 1, CInetAddress::GetByName("127.0.0.1"));
    CEchoServer server(listener);
    server.Start();
    try {
        CSocket client("127.0.0.1", listener.GetLocalPort());
        client.SetTimeout(kTimeoutMs);
        std::string answer;
        for (char const* text : {"hello", "lumo sockets", "ünïcödé bytes", "bye"}) {
            WriteLine(client.GetOutputStream(), text);
            if (ReadLine(client.GetInputStream(), answer))
                std::printf("sent \"%s\", echoed \"%s\"\n", text, answer.c_str());
        }
        // The server has echoed its lines and closed: the next read sees the end.
        std::printf("after the last line the server %s\n",
                    ReadLine(client.GetInputStream(), answer) ? "is still there" : "has closed");
    } catch (CException const& e) {
        std::printf("client: %s\n", e.GetClass()->GetName());
    }
    if (!server.Join(3 * kTimeoutMs)) {
        std::printf("the server thread did not finish\n");
        std::fflush(stdout);
        std::_Exit(1);
    }
    std::printf("the server echoed %d lines and exited\n", server.echoed);
    listener.Close();
    lumo::Terminate();
    return 0;
}
