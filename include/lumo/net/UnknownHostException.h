// CUnknownHostException: a host name that does not resolve, always described as
// "Unknown host name.".
#ifndef LUMO_NET_UNKNOWNHOSTEXCEPTION_H
#define LUMO_NET_UNKNOWNHOSTEXCEPTION_H

#include <lumo/base/String.h>
#include <lumo/io/IOException.h>

namespace lumo {
namespace net {

/// A host name that does not resolve; the description is always "Unknown host name.".
class LUMO_API CUnknownHostException : public io::CIOException {
    LUMO_DECLARE_CLASS(CUnknownHostException);

public:
    /// Described as "Unknown host name."; keeps a copy of `hostName` (null gives the empty text).
    CUnknownHostException(char const* file, unsigned long line, char const* hostName);

    /// The name that did not resolve, as given (the empty text for a null name).
    char const* GetHostName() const { return m_hostName; }

private:
    base::CString m_hostName;
};

} // namespace net
} // namespace lumo

#endif
