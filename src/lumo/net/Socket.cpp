// Connected TCP sockets over a socket implementation, and the default factory of the
// implementations that sockets and server sockets use.
#include <lumo/net/Socket.h>

#include "detail/DefaultSocketImplFactory.h"
#include <lumo/net/TCPIPSocketImplFactory.h>

namespace lumo {
namespace net {

LUMO_DEFINE_CLASS(CSocket, "lumo::net::CSocket", "lumo::base::CObject");

namespace detail {

CSocketImplFactory& DefaultSocketImplFactory() {
    // Stateless, so one instance serves every thread.
    static CTCPIPSocketImplFactory factory;
    return factory;
}

} // namespace detail

CSocket::CSocket(CInetAddress const& address, unsigned short port) {
    Open(address, port, nullptr, 0);
}

CSocket::CSocket(CInetAddress const& address, unsigned short port, CInetAddress const& localAddress,
                 unsigned short localPort) {
    Open(address, port, &localAddress, localPort);
}

CSocket::CSocket(char const* host, unsigned short port) {
    Open(CInetAddress::GetByName(host), port, nullptr, 0);
}

CSocket::CSocket(char const* host, unsigned short port, CInetAddress const& localAddress,
                 unsigned short localPort) {
    Open(CInetAddress::GetByName(host), port, &localAddress, localPort);
}

CSocket::CSocket(base::CRef<CSocketImpl> const& impl) : m_impl(impl) {}

CSocket::~CSocket() {}

void CSocket::Open(CInetAddress const& address, unsigned short port,
                   CInetAddress const* localAddress, unsigned short localPort) {
    m_impl = detail::DefaultSocketImplFactory().CreateSocketImpl();
    m_impl->Create(false);
    if (localAddress != nullptr)
        m_impl->Bind(*localAddress, localPort);
    m_impl->Connect(address, port);
}

base::CRef<CInetAddress> CSocket::GetInetAddress() const {
    return m_impl->GetInetAddress();
}

unsigned short CSocket::GetPort() const {
    return m_impl->GetPort();
}

base::CRef<CInetAddress> CSocket::GetLocalInetAddress() const {
    return m_impl->GetLocalInetAddress();
}

unsigned short CSocket::GetLocalPort() const {
    return m_impl->GetLocalPort();
}

unsigned long CSocket::GetTimeout() const {
    return m_impl->GetTimeout();
}

void CSocket::SetTimeout(unsigned long timeout) {
    m_impl->SetTimeout(timeout);
}

bool CSocket::GetKeepAlive() const {
    return m_impl->GetBoolOption(CSocketImpl::Option_KeepAlive);
}

void CSocket::SetKeepAlive(bool on) {
    m_impl->SetBoolOption(CSocketImpl::Option_KeepAlive, on);
}

bool CSocket::GetOOBInline() const {
    return m_impl->GetBoolOption(CSocketImpl::Option_OOBInline);
}

void CSocket::SetOOBInline(bool on) {
    m_impl->SetBoolOption(CSocketImpl::Option_OOBInline, on);
}

bool CSocket::GetReuseAddress() const {
    return m_impl->GetBoolOption(CSocketImpl::Option_ReuseAddress);
}

void CSocket::SetReuseAddress(bool on) {
    m_impl->SetBoolOption(CSocketImpl::Option_ReuseAddress, on);
}

bool CSocket::GetTCPNoDelay() const {
    return m_impl->GetBoolOption(CSocketImpl::Option_TCPNoDelay);
}

void CSocket::SetTCPNoDelay(bool on) {
    m_impl->SetBoolOption(CSocketImpl::Option_TCPNoDelay, on);
}

io::CInputStream* CSocket::GetInputStream() const {
    return m_impl->GetInputStream();
}

io::COutputStream* CSocket::GetOutputStream() const {
    return m_impl->GetOutputStream();
}

void CSocket::Close() {
    m_impl->Close();
}

} // namespace net
} // namespace lumo
