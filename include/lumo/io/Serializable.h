// ISerializable: an object that writes itself to a data output stream and reads itself
// back from a data input stream.
#ifndef LUMO_IO_SERIALIZABLE_H
#define LUMO_IO_SERIALIZABLE_H

#include <lumo/Config.h>

namespace lumo {
namespace io {

class CDataInputStream;
class CDataOutputStream;

/// An object that writes itself to a data stream and reads itself back. Nothing is
/// added around what Serialize writes.
class LUMO_API ISerializable {
public:
    virtual ~ISerializable();
    /// Reads the object's state back from `in`, as Serialize wrote it.
    virtual void Deserialize(CDataInputStream& in) = 0;
    /// Writes the object's state to `out`.
    virtual void Serialize(CDataOutputStream& out) const = 0;

protected:
    ISerializable() {}
    /// Copying an interface copies nothing.
    ///@{
    ISerializable(ISerializable const&) {}
    ISerializable& operator=(ISerializable const&) { return *this; }
    ///@}
};

} // namespace io
} // namespace lumo

#endif
