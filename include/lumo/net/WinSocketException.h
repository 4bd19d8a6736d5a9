#ifndef LUMO_NET_WINSOCKETEXCEPTION_H
#define LUMO_NET_WINSOCKETEXCEPTION_H

#include <lumo/net/SocketException.h>

namespace lumo {
namespace net {

/// A failed call of the system's socket layer: the error code (an errno value on
/// POSIX, ECONNREFUSED, EPIPE, EADDRINUSE, ...) and, as message, the system's text
/// for it (no message for code 0).
class LUMO_API CWinSocketException : public CSocketException {
    LUMO_DECLARE_CLASS(CWinSocketException);

public:
    /// The system's text for `errorCode` becomes the message (none for code 0).
    CWinSocketException(char const* file, unsigned long line, char const* errorDescription,
                        unsigned long errorCode);

    /// The system's error code (an errno value on POSIX).
    unsigned long GetErrorCode() const { return m_errorCode; }

private:
    unsigned long m_errorCode;
};

} // namespace net
} // namespace lumo

#endif
