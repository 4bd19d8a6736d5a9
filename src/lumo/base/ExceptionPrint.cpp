#include <lumo/base/Exception.h>

namespace lumo {
namespace base {

// The report is written through the print streams; until they exist there is no
// stream to write to, so nothing can reach this.
void CException::Print(io::CPrintStream&) const {}

} // namespace base
} // namespace lumo
