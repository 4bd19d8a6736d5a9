// A server socket and a client exchanging a few lines over loopback, each on its own
// CThread: the client asks, the server answers in upper case until it hears "bye".
#include "Demos.h"

#include <lumo/Lumo.h>

#include <cctype>
#include <cstdio>
#include <string>

using namespace lumo::base;
using namespace lumo::io;
using namespace lumo::net;

namespace demo {

namespace {

// One line without its '\n'; false when the peer closed first.
bool ReadLine(CInputStream* in, std::string& line) {
    line.clear();
    for (;;) {
        long const c = in->Read();
        if (c == CInputStream::EOS)
            return false;
        if (c == '\n')
            return true;
        line += static_cast<char>(c);
    }
}

void WriteLine(COutputStream* out, std::string const& line) {
    std::string const text = line + "\n";
    out->Write(text.data(), 0, static_cast<unsigned long>(text.size()));
}

class CServer : public CThread {
public:
    explicit CServer(CServerSocket& listener) : m_listener(listener) {}
    void Run() override {
        try {
            CRef<CSocket> peer = m_listener.Accept(10000);
            std::printf("server: accepted %s:%u\n",
                        static_cast<char const*>(peer->GetInetAddress()->GetHostAddress()),
                        peer->GetPort());
            peer->SetTimeout(10000);
            std::string line;
            while (ReadLine(peer->GetInputStream(), line) && line != "bye") {
                for (char& c : line)
                    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
                WriteLine(peer->GetOutputStream(), line);
            }
            WriteLine(peer->GetOutputStream(), "see you");
        } catch (CException const& e) {
            std::printf("server failed: %s\n", e.GetErrorDescription());
        }
    }

private:
    CServerSocket& m_listener;
};

class CClient : public CThread {
public:
    explicit CClient(unsigned short port) : m_port(port) {}
    void Run() override {
        try {
            CSocket socket("localhost", m_port);
            socket.SetTimeout(10000);
            socket.SetTCPNoDelay(true);
            std::string answer;
            for (char const* question : {"hello, server", "how are you?", "bye"}) {
                WriteLine(socket.GetOutputStream(), question);
                if (ReadLine(socket.GetInputStream(), answer))
                    std::printf("client: sent \"%s\", got \"%s\"\n", question, answer.c_str());
            }
            // The server closed after its last line: a closed peer reads as 0 bytes.
            char byte;
            std::printf("client: read after the server closed gives %ld\n",
                        socket.GetInputStream()->Read(&byte, 0, 1));
        } catch (CException const& e) {
            std::printf("client failed: %s\n", e.GetErrorDescription());
        }
    }

private:
    unsigned short m_port;
};

} // namespace

void NetDemo() {
    std::printf("\n== a server socket and a client on two threads over loopback\n");
    CServerSocket listener(0, 4, CInetAddress::GetByName("127.0.0.1"));
    std::printf("server listening on %s:%u\n",
                static_cast<char const*>(listener.GetInetAddress()->GetHostAddress()),
                listener.GetLocalPort());
    CServer server(listener);
    CClient client(listener.GetLocalPort());
    server.Start();
    client.Start();
    client.Join();
    server.Join();
    listener.Close();
    try {
        CSocket refused("127.0.0.1", listener.GetLocalPort());
    } catch (CWinSocketException const& e) {
        std::printf("connect after the server closed: %s (%s)\n", e.GetErrorDescription(),
                    e.GetMessage());
    }
}

} // namespace demo
