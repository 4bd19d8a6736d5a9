#include <lumo/base/Comparable.h>

namespace lumo {
namespace base {

IComparable::~IComparable() {}

} // namespace base
} // namespace lumo
