#ifndef LUMO_NET_SOCKETIMPLFACTORY_H
#define LUMO_NET_SOCKETIMPLFACTORY_H

#include <lumo/net/SocketImpl.h>

namespace lumo {
namespace net {

/// Makes the socket implementations that sockets and server sockets stand on.
class LUMO_API CSocketImplFactory : public base::CObject {
    LUMO_DECLARE_CLASS(CSocketImplFactory);

public:
    ~CSocketImplFactory() override;

    /// A new implementation without system socket (call Create on it first).
    /// CMemoryException when it cannot be allocated.
    virtual base::CRef<CSocketImpl> CreateSocketImpl() = 0;

protected:
    CSocketImplFactory() {}
};

} // namespace net
} // namespace lumo

#endif
