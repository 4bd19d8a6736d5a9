// Listening TCP sockets that hand accepted connections over as new sockets.
#include <lumo/net/ServerSocket.h>

#include "detail/DefaultSocketImplFactory.h"

namespace lumo {
namespace net {

LUMO_DEFINE_CLASS(CServerSocket, "lumo::net::CServerSocket", "lumo::base::CObject");

CServerSocket::CServerSocket(unsigned short port, unsigned long backlog,
                             CInetAddress const& bindAddress)
    : m_impl(detail::DefaultSocketImplFactory().CreateSocketImpl()) {
    m_impl->Create(true);
    m_impl->Bind(bindAddress, port);
    m_impl->Listen(backlog);
}

CServerSocket::~CServerSocket() {}

base::CRef<CSocket> CServerSocket::Wrap(base::CRef<CSocketImpl> const& impl) {
    return base::CRef<CSocket>(new ("lumo/net/ServerSocket", __LINE__) CSocket(impl));
}

base::CRef<CSocket> CServerSocket::Accept() {
    return Wrap(m_impl->Accept());
}

base::CRef<CSocket> CServerSocket::Accept(unsigned long timeout) {
    return Wrap(m_impl->Accept(timeout));
}

bool CServerSocket::IsPending() const {
    return m_impl->IsPending();
}

base::CRef<CInetAddress> CServerSocket::GetInetAddress() const {
    return m_impl->GetLocalInetAddress();
}

unsigned short CServerSocket::GetLocalPort() const {
    return m_impl->GetLocalPort();
}

unsigned long CServerSocket::GetTimeout() const {
    return m_impl->GetTimeout();
}

void CServerSocket::SetTimeout(unsigned long timeout) {
    m_impl->SetTimeout(timeout);
}

void CServerSocket::Close() {
    m_impl->Close();
}

} // namespace net
} // namespace lumo
