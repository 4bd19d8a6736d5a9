// The abstract push writer of XML: a document is produced by a sequence of calls
// (start document, start element, attributes, content, end element, end document).
#ifndef LUMO_IO_XMLWRITER_H
#define LUMO_IO_XMLWRITER_H

#include <lumo/base/Object.h>
#include <lumo/io/XMLSerializable.h>

namespace lumo {
namespace io {

/// The XML writer interface. Names and texts are zero-terminated UTF-16 strings;
/// binary values are a byte buffer, the index of the first byte and the byte count.
///
/// The virtual operations keep a fixed order (after the five of CObject): document,
/// CDATA, comment, processing instruction, entity reference, whitespace, the start
/// and end of elements, the typed element writes (each as a (local, uri, value) and
/// a (name, value) pair), attributes and namespace declarations, the typed
/// attribute writes, the typed content writes, WriteString, WriteBase64,
/// WriteBinHex, WriteObject, Flush and Close.
///
/// The base class holds no data. It implements every typed write by formatting the
/// value (Vela::snuprintf with "%d" for short, "%ld", "%lu", "%f" and "%lf"; a bool
/// as "true" or "false"; binary data through CBinaryData's base64 or binhex text)
/// and handing the text to WriteElementString, WriteAttribute or WriteString of the
/// same naming form. A writer that keeps these defaults writes 1.5 as 1.500000.
/// Failures are those of the primitive the default delegates to.
class LUMO_API CXMLWriter : public base::CObject {
    LUMO_DECLARE_CLASS(CXMLWriter);

public:
    ~CXMLWriter() override;

    /// Writers are not copyable.
    ///@{
    CXMLWriter(CXMLWriter const&) = delete;
    CXMLWriter& operator=(CXMLWriter const&) = delete;
    ///@}

    /// Starts the document (the XML declaration).
    virtual void WriteStartDocument() = 0;
    /// Ends the document.
    virtual void WriteEndDocument() = 0;
    /// A CDATA section holding `text` (null: empty).
    virtual void WriteCDATA(unsigned short const* text) = 0;
    /// A comment holding `text` (null: empty).
    virtual void WriteComment(unsigned short const* text) = 0;
    /// A processing instruction.
    virtual void WriteProcessingInstruction(unsigned short const* target,
                                            unsigned short const* data) = 0;
    /// A reference to the entity `name`.
    virtual void WriteEntityRef(unsigned short const* name) = 0;
    /// White space between markup.
    virtual void WriteWhitespace(unsigned short const* text) = 0;
    /// Opens an element `prefix:local` in the namespace `uri`.
    virtual void WriteStartElement(unsigned short const* prefix, unsigned short const* local,
                                   unsigned short const* uri) = 0;
    /// Opens an element `local` in the namespace `uri` (the default namespace).
    virtual void WriteStartElement(unsigned short const* local, unsigned short const* uri) = 0;
    /// Opens an element by its qualified name.
    virtual void WriteStartElement(unsigned short const* name) = 0;
    /// Closes the innermost open element (the short form when it has no content).
    virtual void WriteEndElement() = 0;
    /// Closes the innermost open element, never in the short form.
    virtual void WriteFullEndElement() = 0;

    /// Typed elements: an element with the value as its only content.
    ///@{
    virtual void WriteElementBool(unsigned short const* local, unsigned short const* uri,
                                  bool value);
    virtual void WriteElementBool(unsigned short const* name, bool value);
    virtual void WriteElementShort(unsigned short const* local, unsigned short const* uri,
                                   short value);
    virtual void WriteElementShort(unsigned short const* name, short value);
    virtual void WriteElementLong(unsigned short const* local, unsigned short const* uri,
                                  long value);
    virtual void WriteElementLong(unsigned short const* name, long value);
    virtual void WriteElementUnsignedLong(unsigned short const* local, unsigned short const* uri,
                                          unsigned long value);
    virtual void WriteElementUnsignedLong(unsigned short const* name, unsigned long value);
    virtual void WriteElementFloat(unsigned short const* local, unsigned short const* uri,
                                   float value);
    virtual void WriteElementFloat(unsigned short const* name, float value);
    virtual void WriteElementDouble(unsigned short const* local, unsigned short const* uri,
                                    double value);
    virtual void WriteElementDouble(unsigned short const* name, double value);
    ///@}
    /// The element primitive the typed element defaults delegate to.
    ///@{
    virtual void WriteElementString(unsigned short const* local, unsigned short const* uri,
                                    unsigned short const* value) = 0;
    virtual void WriteElementString(unsigned short const* name, unsigned short const* value) = 0;
    ///@}
    /// Binary elements: bytes data[offset .. offset + length) as binhex or base64.
    ///@{
    virtual void WriteElementBinHex(unsigned short const* local, unsigned short const* uri,
                                    char const* data, unsigned long offset, unsigned long length);
    virtual void WriteElementBinHex(unsigned short const* name, char const* data,
                                    unsigned long offset, unsigned long length);
    virtual void WriteElementBase64(unsigned short const* local, unsigned short const* uri,
                                    char const* data, unsigned long offset, unsigned long length);
    virtual void WriteElementBase64(unsigned short const* name, char const* data,
                                    unsigned long offset, unsigned long length);
    ///@}

    /// An attribute of the open start tag.
    ///@{
    virtual void WriteAttribute(unsigned short const* prefix, unsigned short const* local,
                                unsigned short const* uri, unsigned short const* value) = 0;
    virtual void WriteAttribute(unsigned short const* local, unsigned short const* uri,
                                unsigned short const* value) = 0;
    virtual void WriteAttribute(unsigned short const* name, unsigned short const* value) = 0;
    ///@}
    /// Namespace declarations on the open start tag.
    ///@{
    virtual void WriteAttrDefaultNamespaceDeclaration(unsigned short const* uri) = 0;
    virtual void WriteAttrNamespaceDeclaration(unsigned short const* prefix,
                                               unsigned short const* uri) = 0;
    ///@}

    /// Typed attributes of the open start tag.
    ///@{
    virtual void WriteAttrBool(unsigned short const* local, unsigned short const* uri, bool value);
    virtual void WriteAttrBool(unsigned short const* name, bool value);
    virtual void WriteAttrShort(unsigned short const* local, unsigned short const* uri,
                                short value);
    virtual void WriteAttrShort(unsigned short const* name, short value);
    virtual void WriteAttrLong(unsigned short const* local, unsigned short const* uri, long value);
    virtual void WriteAttrLong(unsigned short const* name, long value);
    virtual void WriteAttrUnsignedLong(unsigned short const* local, unsigned short const* uri,
                                       unsigned long value);
    virtual void WriteAttrUnsignedLong(unsigned short const* name, unsigned long value);
    virtual void WriteAttrFloat(unsigned short const* local, unsigned short const* uri,
                                float value);
    virtual void WriteAttrFloat(unsigned short const* name, float value);
    virtual void WriteAttrDouble(unsigned short const* local, unsigned short const* uri,
                                 double value);
    virtual void WriteAttrDouble(unsigned short const* name, double value);
    ///@}

    /// Typed content of the current element.
    ///@{
    virtual void WriteBool(bool value);
    virtual void WriteShort(short value);
    virtual void WriteLong(long value);
    virtual void WriteUnsignedLong(unsigned long value);
    virtual void WriteFloat(float value);
    virtual void WriteDouble(double value);
    ///@}
    /// Text content of the current element (null: nothing).
    virtual void WriteString(unsigned short const* text) = 0;
    /// Bytes data[offset .. offset + length) as base64 or binhex text content. A null
    /// buffer writes the empty text.
    ///@{
    virtual void WriteBase64(char const* data, unsigned long offset, unsigned long length);
    virtual void WriteBinHex(char const* data, unsigned long offset, unsigned long length);
    ///@}
    /// Lets `object` write itself here (its WriteXML with this writer).
    virtual void WriteObject(IXMLSerializable const& object);
    /// Hands everything written so far to the output.
    virtual void Flush() = 0;
    /// Flushes and closes the output; later writes throw CIOException "Writer closed.".
    virtual void Close() = 0;

protected:
    CXMLWriter() {}
};

} // namespace io
} // namespace lumo

#endif
