// Helpers shared by the network tests: the library started around every test, the
// loopback address, a connected pair, child processes, descriptor counts and SHA-256.
#ifndef LUMO_TESTS_SUPPORT_NET_H
#define LUMO_TESTS_SUPPORT_NET_H

#include "support/Concurrency.h"

#include <lumo/Library.h>
#include <lumo/io/InputStream.h>
#include <lumo/io/OutputStream.h>
#include <lumo/net/ServerSocket.h>
#include <lumo/net/Socket.h>

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <dirent.h>

#include <cstdio>
#include <random>
#include <string>

namespace lumotest {

class NetEnvironment : public ::testing::Environment {
public:
    void SetUp() override { lumo::Initialize(); }
    void TearDown() override { lumo::Terminate(); }
};

inline lumo::net::CInetAddress Loopback() {
    static unsigned char const bytes[4] = {127, 0, 0, 1};
    return lumo::net::CInetAddress(bytes);
}

// A listening server on a loopback port the system picked, a client connected to
// it, and the server's end of that connection.
struct Connection {
    lumo::net::CServerSocket server{0, 8, Loopback()};
    lumo::net::CSocket client{Loopback(), server.GetLocalPort()};
    lumo::base::CRef<lumo::net::CSocket> accepted = server.Accept(20000);
};

// Reads until n bytes have come or the peer closed.
inline std::string ReadUpTo(lumo::io::CInputStream* in, std::size_t n) {
    std::string data(n, '\0');
    std::size_t got = 0;
    while (got < n) {
        long const r = in->Read(&data[0], static_cast<unsigned long>(got),
                                static_cast<unsigned long>(n - got));
        if (r <= 0)
            break;
        got += static_cast<std::size_t>(r);
    }
    data.resize(got);
    return data;
}

inline std::string RandomBytes(std::size_t n) {
    std::mt19937_64 engine{std::random_device{}()};
    std::string data(n, '\0');
    for (char& c : data)
        c = static_cast<char>(engine());
    return data;
}

// Lower-case hexadecimal SHA-256, from OpenSSL (an implementation independent of ours
// and of the peer's).
inline std::string Sha256Hex(std::string const& data) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_Digest(data.data(), data.size(), digest, &length, EVP_sha256(), nullptr);
    std::string hex;
    char pair[3];
    for (unsigned int i = 0; i < length; ++i) {
        std::snprintf(pair, sizeof pair, "%02x", digest[i]);
        hex += pair;
    }
    return hex;
}

// The standard output of a shell command; `status` gets its exit status.
inline std::string RunCommand(std::string const& command, int& status) {
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        status = -1;
        return out;
    }
    char buffer[4096];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
        out.append(buffer, n);
    status = pclose(pipe);
    return out;
}

// Entries of /proc/self/fd: the process's open descriptors (plus the one reading it).
inline int CountOpenDescriptors() {
    DIR* dir = opendir("/proc/self/fd");
    if (dir == nullptr)
        return -1;
    int count = 0;
    while (dirent* entry = readdir(dir))
        if (entry->d_name[0] != '.')
            ++count;
    closedir(dir);
    return count;
}

} // namespace lumotest

#endif
