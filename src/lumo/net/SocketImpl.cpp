// The state every socket implementation keeps: the two endpoints and the timeout.
#include <lumo/net/SocketImpl.h>

#include <lumo/base/Exception.h>

#include <new>

namespace lumo {
namespace net {

namespace {

char const kUnit[] = "lumo/net/SocketImpl";

base::CRef<CInetAddress> NewAddress(CInetAddress const& address) {
    CInetAddress* copy = new (std::nothrow) CInetAddress(address);
    if (copy == nullptr)
        throw base::CException(kUnit, __LINE__, "Memory full.", nullptr);
    return base::CRef<CInetAddress>(copy);
}

base::CRef<CInetAddress> CopyOf(base::CRef<CInetAddress> const& address) {
    return address.IsNull() ? base::CRef<CInetAddress>() : NewAddress(*address);
}

} // namespace

LUMO_DEFINE_CLASS(CSocketImpl, "lumo::net::CSocketImpl", "lumo::base::CObject");

CSocketImpl::CSocketImpl() : m_port(0), m_localPort(0), m_timeout(0) {}

CSocketImpl::~CSocketImpl() {}

// Callers get their own copy, so that nothing they do changes the implementation.
base::CRef<CInetAddress> CSocketImpl::GetInetAddress() const {
    return CopyOf(m_address);
}

base::CRef<CInetAddress> CSocketImpl::GetLocalInetAddress() const {
    return CopyOf(m_localAddress);
}

void CSocketImpl::SetRemote(CInetAddress const& address, unsigned short port) {
    m_address = NewAddress(address);
    m_port = port;
}

void CSocketImpl::SetLocal(CInetAddress const& address, unsigned short port) {
    m_localAddress = NewAddress(address);
    m_localPort = port;
}

} // namespace net
} // namespace lumo
