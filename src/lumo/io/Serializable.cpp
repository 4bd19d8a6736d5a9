// ISerializable's out-of-line destructor, which anchors the interface in the library.
#include <lumo/io/Serializable.h>

namespace lumo {
namespace io {

ISerializable::~ISerializable() {}

} // namespace io
} // namespace lumo
