// CSocketException's class record, under CIOException.
#include <lumo/net/SocketException.h>

namespace lumo {
namespace net {

LUMO_DEFINE_CLASS(CSocketException, "lumo::net::CSocketException", "lumo::io::CIOException");

} // namespace net
} // namespace lumo
