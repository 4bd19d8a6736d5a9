// IPv4 address values and name resolution, checked against the system's own resolver
// as `getent` reports it. Only loopback names and addresses are looked up.
#include "support/Net.h"

#include <lumo/net/InetAddress.h>
#include <lumo/net/UnknownHostException.h>

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <vector>

using lumo::base::CIllegalArgumentException;
using lumo::net::CInetAddress;
using lumo::net::CUnknownHostException;
using lumotest::Thrown;

namespace {

::testing::Environment* const g_env =
    ::testing::AddGlobalTestEnvironment(new lumotest::NetEnvironment);

CInetAddress Address(unsigned char a, unsigned char b, unsigned char c, unsigned char d) {
    unsigned char const bytes[4] = {a, b, c, d};
    return CInetAddress(bytes);
}

// The IPv4 addresses `getent` gives for a name (`hosts`, or `ahostsv4` when `hosts`
// shows only IPv6), and the first name it gives for an address.
std::vector<std::string> GetentAddresses(std::string const& name) {
    std::vector<std::string> found;
    for (char const* db : {"hosts", "ahostsv4"}) {
        int status = 0;
        std::istringstream lines(lumotest::RunCommand(
            "getent " + std::string(db) + " '" + name + "' 2>/dev/null", status));
        std::string line;
        while (std::getline(lines, line)) {
            std::string const address = line.substr(0, line.find_first_of(" \t"));
            if (address.find('.') != std::string::npos && address.find(':') == std::string::npos)
                found.push_back(address);
        }
        if (!found.empty())
            break;
    }
    return found;
}

bool Contains(std::vector<std::string> const& list, std::string const& s) {
    return std::find(list.begin(), list.end(), s) != list.end();
}

TEST(InetAddress, BytesTextAndMulticast) {
    // Values only: nothing here is looked up or connected to. The multicast boundary
    // (first byte 224 to 240) needs addresses outside loopback.
    struct Row {
        unsigned char bytes[4];
        char const* text;
        bool multicast;
    } const rows[] = {
        {{127, 255, 0, 1}, "127.255.0.1", false},
        {{0, 0, 0, 0}, "0.0.0.0", false},
        {{223, 255, 255, 255}, "223.255.255.255", false},
        {{224, 0, 0, 1}, "224.0.0.1", true},
        {{239, 1, 2, 3}, "239.1.2.3", true},
        {{240, 0, 0, 0}, "240.0.0.0", true},
        {{241, 0, 0, 0}, "241.0.0.0", false},
        {{127, 0, 100, 7}, "127.0.100.7", false},
    };
    for (Row const& row : rows) {
        CInetAddress const address(row.bytes);
        EXPECT_STREQ(address.GetHostAddress(), row.text);
        EXPECT_EQ(address.IsMulticastAddress(), row.multicast) << row.text;
        EXPECT_EQ(std::memcmp(address.GetAddress(), row.bytes, 4), 0);
    }
    EXPECT_STREQ(CInetAddress::AnyInetAddress.GetHostAddress(), "0.0.0.0");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([] { CInetAddress a(nullptr); }),
              "Invalid IPv4 address.");
}

TEST(InetAddress, EqualityIgnoresCachedNames) {
    CInetAddress named = Address(127, 0, 0, 1);
    CInetAddress const plain = Address(127, 0, 0, 1);
    named.GetHostName(); // fills the cache of one side only
    EXPECT_TRUE(named == plain);
    EXPECT_FALSE(named == Address(127, 0, 0, 2));
    CInetAddress copy = Address(1, 2, 3, 4);
    copy = named;
    EXPECT_TRUE(copy == plain);
    EXPECT_STREQ(copy.GetHostName(), named.GetHostName());
}

TEST(InetAddress, ResolverAgreesWithGetent) {
    for (char const* name : {"localhost", "127.0.0.1"}) {
        std::string const got =
            static_cast<char const*>(CInetAddress::GetByName(name).GetHostAddress());
        EXPECT_TRUE(Contains(GetentAddresses(name), got)) << name << " -> " << got;
    }
    char host[256] = {0};
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    std::vector<std::string> const expected = GetentAddresses(host);
    if (expected.empty()) {
        EXPECT_EQ(Thrown<CUnknownHostException>([] { CInetAddress::GetLocalHost(); }),
                  "Unknown host name.");
    } else {
        std::string const got =
            static_cast<char const*>(CInetAddress::GetLocalHost().GetHostAddress());
        EXPECT_TRUE(Contains(expected, got)) << host << " -> " << got;
    }
    // The reverse lookup of 127.0.0.1 names what getent names first.
    int status = 0;
    std::string const line = lumotest::RunCommand("getent hosts 127.0.0.1", status);
    std::istringstream fields(line);
    std::string address, name;
    fields >> address >> name;
    if (!name.empty()) {
        EXPECT_STREQ(Address(127, 0, 0, 1).GetHostName(), name.c_str());
    }
}

TEST(InetAddress, BadAndUnknownNames) {
    EXPECT_EQ(Thrown<CIllegalArgumentException>([] { CInetAddress::GetByName(nullptr); }),
              "Invalid host name.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([] { CInetAddress::GetByName(""); }),
              "Invalid host name.");
    // A 64-character label is no valid DNS name: the resolver refuses it without
    // asking any server.
    std::string const unknown = std::string(64, 'x') + ".invalid";
    try {
        CInetAddress::GetByName(unknown.c_str());
        ADD_FAILURE() << "resolved " << unknown;
    } catch (CUnknownHostException const& e) {
        EXPECT_STREQ(e.GetHostName(), unknown.c_str());
        EXPECT_STREQ(e.GetErrorDescription(), "Unknown host name.");
        EXPECT_STREQ(e.GetSourceFile(), "lumo/net/InetAddress");
    }
}

} // namespace
