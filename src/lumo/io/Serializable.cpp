#include <lumo/io/Serializable.h>

namespace lumo {
namespace io {

ISerializable::~ISerializable() {}

} // namespace io
} // namespace lumo
