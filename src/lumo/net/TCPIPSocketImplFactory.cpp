// The factory of the system's TCP/IP socket implementations.
#include <lumo/net/TCPIPSocketImplFactory.h>

#include <lumo/net/WinSocketImpl.h>

namespace lumo {
namespace net {

LUMO_DEFINE_CLASS(CTCPIPSocketImplFactory, "lumo::net::CTCPIPSocketImplFactory",
                  "lumo::net::CSocketImplFactory");

CTCPIPSocketImplFactory::~CTCPIPSocketImplFactory() {}

base::CRef<CSocketImpl> CTCPIPSocketImplFactory::CreateSocketImpl() {
    return base::CRef<CSocketImpl>(new ("lumo/net/TCPIPSocketImplFactory", __LINE__)
                                       CWinSocketImpl());
}

} // namespace net
} // namespace lumo
