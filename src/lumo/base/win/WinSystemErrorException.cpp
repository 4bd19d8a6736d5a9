// win::CWinSystemErrorException: keeps the error code and takes the system's text for it
// (strerror_r, in either flavour) as the message.
#include <lumo/base/win/WinSystemErrorException.h>

#include "../detail/SystemErrorText.h"

namespace lumo {
namespace base {
namespace win {

LUMO_DEFINE_CLASS(CWinSystemErrorException, "lumo::base::win::CWinSystemErrorException",
                  "lumo::base::CException");

CWinSystemErrorException::CWinSystemErrorException(char const* file, unsigned long line,
                                                   char const* errorDescription,
                                                   unsigned long errorCode)
    : CException(file, line, errorDescription, nullptr), m_errorCode(errorCode) {
    detail::SetSystemErrorMessage(*this, errorCode);
}

} // namespace win
} // namespace base
} // namespace lumo
