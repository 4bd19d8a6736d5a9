#ifndef LUMO_NET_TCPIPSOCKETIMPLFACTORY_H
#define LUMO_NET_TCPIPSOCKETIMPLFACTORY_H

#include <lumo/net/SocketImplFactory.h>

namespace lumo {
namespace net {

/// The factory of the system's TCP/IP sockets: it makes CWinSocketImpl objects.
class LUMO_API CTCPIPSocketImplFactory : public CSocketImplFactory {
    LUMO_DECLARE_CLASS(CTCPIPSocketImplFactory);

public:
    CTCPIPSocketImplFactory() {}
    ~CTCPIPSocketImplFactory() override;

    /// A new CWinSocketImpl without system socket. CMemoryException when it cannot
    /// be allocated.
    base::CRef<CSocketImpl> CreateSocketImpl() override;
};

} // namespace net
} // namespace lumo

#endif
