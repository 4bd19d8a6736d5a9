// CSocketException: the io exception raised for a failed socket operation.
#ifndef LUMO_NET_SOCKETEXCEPTION_H
#define LUMO_NET_SOCKETEXCEPTION_H

#include <lumo/io/IOException.h>

namespace lumo {
namespace net {

LUMO_EXCEPTION_2(CSocketException, io::CIOException);

} // namespace net
} // namespace lumo

#endif
