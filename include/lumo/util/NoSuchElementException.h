// The containers' exceptions: CNoSuchElementException (its class record names
// CMemoryException as base, for compatibility), CEmptyStackException, CEmptyQueueException.
#ifndef LUMO_UTIL_NOSUCHELEMENTEXCEPTION_H
#define LUMO_UTIL_NOSUCHELEMENTEXCEPTION_H

#include <lumo/base/Exception.h>

namespace lumo {
namespace util {

/// Its class record names CMemoryException as base (so IsInstanceOf against that
/// record is true) while the C++ base is base::CException: kept for compatibility.
LUMO_EXCEPTION_0(CNoSuchElementException, base::CException);
/// Pop or Peek on an empty stack.
LUMO_EXCEPTION_0(CEmptyStackException, base::CException);
/// Take or Peek on an empty queue.
LUMO_EXCEPTION_0(CEmptyQueueException, base::CException);

} // namespace util
} // namespace lumo

#endif
