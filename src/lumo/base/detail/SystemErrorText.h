// Internal: the system's text for an error code (an errno value on POSIX), shared by
// the exceptions that carry a system error code.
#ifndef LUMO_BASE_DETAIL_SYSTEMERRORTEXT_H
#define LUMO_BASE_DETAIL_SYSTEMERRORTEXT_H

#include <lumo/base/Exception.h>

#include <cstring>

namespace lumo {
namespace detail {

namespace systemerror {
// strerror_r comes in two flavours; both overloads accept the call.
[[maybe_unused]] inline char const* Pick(char const* gnu, char const*) {
    return gnu;
}
[[maybe_unused]] inline char const* Pick(int rc, char const* buffer) {
    return rc == 0 ? buffer : nullptr;
}
} // namespace systemerror

/// Sets the system's text for `code` as the message of `e`; a zero code or a code
/// without text leaves the message as it is.
inline void SetSystemErrorMessage(base::CException& e, unsigned long code) {
    if (code == 0)
        return;
    char buffer[256] = {0};
    char const* text =
        systemerror::Pick(strerror_r(static_cast<int>(code), buffer, sizeof buffer), buffer);
    if (text != nullptr && *text != '\0')
        e.SetMessage(text);
}

} // namespace detail
} // namespace lumo

#endif
