// IXMLSerializable: an object that reads its state from an XML reader and writes it to an
// XML writer (the reading operation first in the virtual table).
#ifndef LUMO_IO_XMLSERIALIZABLE_H
#define LUMO_IO_XMLSERIALIZABLE_H

#include <lumo/Config.h>

namespace lumo {
namespace io {

class CXMLReader;
class CXMLWriter;

/// An object that reads itself from an XML reader and writes itself to an XML
/// writer. The reading operation comes first in the virtual table, the writing one
/// second; CXMLReader::ReadObject and CXMLWriter::WriteObject call them.
class LUMO_API IXMLSerializable {
public:
    virtual ~IXMLSerializable();
    /// Reads the object's state from the reader's current position.
    virtual void ReadXML(CXMLReader& reader) = 0;
    /// Writes the object's state at the writer's current position.
    virtual void WriteXML(CXMLWriter& writer) = 0;

protected:
    IXMLSerializable() {}
    /// Copying an interface copies nothing.
    ///@{
    IXMLSerializable(IXMLSerializable const&) {}
    IXMLSerializable& operator=(IXMLSerializable const&) { return *this; }
    ///@}
};

} // namespace io
} // namespace lumo

#endif
