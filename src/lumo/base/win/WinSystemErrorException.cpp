// win::CWinSystemErrorException: keeps the error code and takes the system's text for it
// (strerror_r, in either flavour) as the message.
#include <lumo/base/win/WinSystemErrorException.h>

#include <cstring>

namespace lumo {
namespace base {
namespace win {

LUMO_DEFINE_CLASS(CWinSystemErrorException, "lumo::base::win::CWinSystemErrorException",
                  "lumo::base::CException");

namespace {
// strerror_r comes in two flavours; both overloads accept the call.
[[maybe_unused]] char const* ErrorText(int, char const* gnu, char const*) {
    return gnu;
}
[[maybe_unused]] char const* ErrorText(int rc, int, char const* buffer) {
    return rc == 0 ? buffer : nullptr;
}
} // namespace

CWinSystemErrorException::CWinSystemErrorException(char const* file, unsigned long line,
                                                   char const* errorDescription,
                                                   unsigned long errorCode)
    : CException(file, line, errorDescription, nullptr), m_errorCode(errorCode) {
    if (errorCode == 0)
        return;
    char buffer[256] = {0};
    auto result = strerror_r(static_cast<int>(errorCode), buffer, sizeof buffer);
    char const* text = ErrorText(0, result, buffer);
    if (text != nullptr && *text != '\0')
        SetMessage(text);
}

} // namespace win
} // namespace base
} // namespace lumo
