#ifndef LUMO_UTIL_NOSUCHELEMENTEXCEPTION_H
#define LUMO_UTIL_NOSUCHELEMENTEXCEPTION_H

#include <lumo/base/Exception.h>

namespace lumo {
namespace util {

using base::CException;

// Its class record names CMemoryException as base (so IsInstanceOf against that
// record is true) while the C++ base is CException: kept for compatibility.
LUMO_EXCEPTION_0(CNoSuchElementException, CException);
LUMO_EXCEPTION_0(CEmptyStackException, CException);
LUMO_EXCEPTION_0(CEmptyQueueException, CException);

} // namespace util
} // namespace lumo

#endif
