// The interface of socket implementation factories.
#include <lumo/net/SocketImplFactory.h>

namespace lumo {
namespace net {

LUMO_DEFINE_CLASS(CSocketImplFactory, "lumo::net::CSocketImplFactory", "lumo::base::CObject");

CSocketImplFactory::~CSocketImplFactory() {}

} // namespace net
} // namespace lumo
