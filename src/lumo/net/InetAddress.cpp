// IPv4 address values with their on-demand reverse lookup, and name resolution.
#include <lumo/net/InetAddress.h>

#include "os/SocketLayer.h"
#include <lumo/net/UnknownHostException.h>
#include <vela/Memory.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace lumo {
namespace net {

namespace {

char const kUnit[] = "lumo/net/InetAddress";

unsigned char const kAnyBytes[4] = {0, 0, 0, 0};

struct FreeDeleter {
    void operator()(char* p) const { std::free(p); }
};

} // namespace

CInetAddress const CInetAddress::AnyInetAddress(kAnyBytes);

CInetAddress::CInetAddress(unsigned char const* address) : m_hostNameLookedUp(false) {
    if (address == nullptr || !Vela::bnManager::IsReadable(address, 4))
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid IPv4 address.");
    std::memcpy(m_address, address, 4);
}

CInetAddress::CInetAddress(CInetAddress const& other)
    : m_hostName(other.m_hostName), m_hostNameLookedUp(other.m_hostNameLookedUp) {
    std::memcpy(m_address, other.m_address, 4);
}

CInetAddress& CInetAddress::operator=(CInetAddress const& other) {
    m_hostName = other.m_hostName;
    m_hostNameLookedUp = other.m_hostNameLookedUp;
    std::memmove(m_address, other.m_address, 4);
    return *this;
}

CInetAddress::~CInetAddress() {}

base::CString CInetAddress::GetHostAddress() const {
    char text[16];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", m_address[0], m_address[1], m_address[2],
                  m_address[3]);
    return base::CString(text);
}

base::CString CInetAddress::GetHostName() const {
    if (!m_hostNameLookedUp) {
        base::CString name;
        if (detail::ReverseLookup(m_address, name))
            m_hostName = name;
        m_hostNameLookedUp = true;
    }
    return m_hostName;
}

bool CInetAddress::IsMulticastAddress() const {
    return m_address[0] >= 224 && m_address[0] <= 240;
}

bool CInetAddress::operator==(CInetAddress const& other) const {
    return std::memcmp(m_address, other.m_address, 4) == 0;
}

CInetAddress CInetAddress::GetByName(char const* host) {
    if (host == nullptr || *host == '\0')
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid host name.");
    unsigned char address[4];
    if (!detail::ResolveHost(host, address))
        throw CUnknownHostException(kUnit, __LINE__, host);
    return CInetAddress(address);
}

CInetAddress CInetAddress::GetLocalHost() {
    char name[1024];
    int code = detail::GetMachineName(name, sizeof name);
    if (code == 0)
        return GetByName(name);
    // A longer name: retry with a heap buffer, doubled while it is still too small.
    std::size_t size = 2048;
    while (detail::IsBufferTooSmall(code)) {
        std::unique_ptr<char, FreeDeleter> buffer(static_cast<char*>(std::malloc(size)));
        if (!buffer)
            throw base::CMemoryException(kUnit, __LINE__);
        code = detail::GetMachineName(buffer.get(), size);
        if (code == 0)
            return GetByName(buffer.get());
        if (size > static_cast<std::size_t>(-1) / 2)
            throw base::CMemoryException(kUnit, __LINE__);
        size *= 2;
    }
    throw CUnknownHostException(kUnit, __LINE__, "localhost");
}

} // namespace net
} // namespace lumo
