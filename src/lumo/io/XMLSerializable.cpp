// The XML serializable interface's out-of-line destructor (anchors its virtual table).
#include <lumo/io/XMLSerializable.h>

namespace lumo {
namespace io {

IXMLSerializable::~IXMLSerializable() {}

} // namespace io
} // namespace lumo
