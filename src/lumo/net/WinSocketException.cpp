// The exception for a failed socket-layer call, with the system's text for its code.
#include <lumo/net/WinSocketException.h>

#include "../base/detail/SystemErrorText.h"

namespace lumo {
namespace net {

LUMO_DEFINE_CLASS(CWinSocketException, "lumo::net::CWinSocketException",
                  "lumo::net::CSocketException");

CWinSocketException::CWinSocketException(char const* file, unsigned long line,
                                         char const* errorDescription, unsigned long errorCode)
    : CSocketException(file, line, errorDescription, nullptr), m_errorCode(errorCode) {
    ::lumo::detail::SetSystemErrorMessage(*this, errorCode);
}

} // namespace net
} // namespace lumo
