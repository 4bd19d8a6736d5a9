// win::CWinSystemErrorException: a failed system call, carrying its error code (an errno
// value on POSIX) and the system's text for it as the message.
#ifndef LUMO_BASE_WIN_WINSYSTEMERROREXCEPTION_H
#define LUMO_BASE_WIN_WINSYSTEMERROREXCEPTION_H

#include <lumo/base/Exception.h>

namespace lumo {
namespace base {
namespace win {

/// A failed system call: the error code (an errno value on POSIX) and, as message,
/// the system's text for it.
class LUMO_API CWinSystemErrorException : public CException {
    LUMO_DECLARE_CLASS(CWinSystemErrorException);

public:
    /// The system's text for `errorCode` becomes the message.
    CWinSystemErrorException(char const* file, unsigned long line, char const* errorDescription,
                             unsigned long errorCode);

    /// The system's error code (an errno value on POSIX).
    unsigned long GetErrorCode() const { return m_errorCode; }

private:
    unsigned long m_errorCode;
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
