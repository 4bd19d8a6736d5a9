// Class records of the containers' exceptions; CNoSuchElementException's names
// CMemoryException as its base on purpose.
#include <lumo/util/NoSuchElementException.h>

namespace lumo {
namespace util {

// The record's base is CMemoryException on purpose (see the header).
LUMO_DEFINE_CLASS(CNoSuchElementException, "lumo::util::CNoSuchElementException",
                  "lumo::base::CMemoryException");
LUMO_DEFINE_CLASS(CEmptyStackException, "lumo::util::CEmptyStackException",
                  "lumo::base::CException");
LUMO_DEFINE_CLASS(CEmptyQueueException, "lumo::util::CEmptyQueueException",
                  "lumo::base::CException");

} // namespace util
} // namespace lumo
