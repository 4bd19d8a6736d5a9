// CUnknownHostException's class record and constructor, which keeps a copy of the host
// name even when it is empty.
#include <lumo/net/UnknownHostException.h>

#include "../base/ExceptionText.h"

namespace lumo {
namespace net {

LUMO_DEFINE_CLASS(CUnknownHostException, "lumo::net::CUnknownHostException",
                  "lumo::io::CIOException");

CUnknownHostException::CUnknownHostException(char const* file, unsigned long line,
                                             char const* hostName)
    : CIOException(file, line, "Unknown host name.", nullptr) {
    // The host name is copied even when empty.
    base::CopyExceptionText(m_hostName, hostName, true);
}

} // namespace net
} // namespace lumo
