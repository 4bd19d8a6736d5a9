// Out-of-line destructors of ILockable, ILockable_ and IWaitable, which anchor the
// interfaces' virtual tables in the library.
#include <lumo/base/Lockable.h>

namespace lumo {
namespace base {

// Out-of-line destructors anchor the interfaces' virtual tables in the library.
ILockable::~ILockable() {}
ILockable_::~ILockable_() {}
IWaitable::~IWaitable() {}

} // namespace base
} // namespace lumo
