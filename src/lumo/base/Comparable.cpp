// IComparable's out-of-line destructor, which anchors the interface in the library.
#include <lumo/base/Comparable.h>

namespace lumo {
namespace base {

IComparable::~IComparable() {}

} // namespace base
} // namespace lumo
