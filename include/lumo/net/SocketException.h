// CSocketException: the io exception raised for a failed socket operation.
#ifndef LUMO_NET_SOCKETEXCEPTION_H
#define LUMO_NET_SOCKETEXCEPTION_H

#include <lumo/io/IOException.h>

namespace lumo {
namespace net {

/// A socket operation that failed or was called in the wrong state (not connected, already bound,
/// closed).
LUMO_EXCEPTION_2(CSocketException, io::CIOException);

} // namespace net
} // namespace lumo

#endif
