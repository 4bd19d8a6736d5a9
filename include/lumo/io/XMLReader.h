#ifndef LUMO_IO_XMLREADER_H
#define LUMO_IO_XMLREADER_H

#include <lumo/base/Object.h>
#include <lumo/base/Ref.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/IOException.h>
#include <lumo/io/XMLSerializable.h>
#include <lumo/io/XMLToken.h>

namespace lumo {
namespace io {

/// The pull reader over a document's token sequence. A concrete reader supplies the
/// tokens and the element navigation; this base turns the current token into typed
/// values, reads the current start element's attributes and composes typed element
/// reads from the navigation. Names are zero-terminated UTF-16; in every pair of
/// overloads the (local name, namespace URI) form comes first.
///
/// Unless stated otherwise failures are CIOException from unit "lumo/io/XMLReader";
/// a CMemoryException inside a typed read becomes CIOException "Memory full.". A
/// caught lower-level exception is printed to the debug output before it is replaced.
class LUMO_API CXMLReader : public base::CObject {
    LUMO_DECLARE_CLASS(CXMLReader);

public:
    ~CXMLReader() override;

    /// The current token, a null reference before the first read and at the end.
    virtual base::CRef<IXMLToken> const& GetCurrentToken() const = 0;
    /// The current token's type; with no current token: "Failed to get the token type
    /// of current XML token.".
    virtual XMLTokenType GetCurrentTokenType();
    /// The current token's value; with no current token: "Failed to get the value of
    /// current XML token.".
    virtual base::CUnicodeString GetCurrentTokenValue();

    /// The current token's value, trimmed, exactly "false" or "true"; anything else:
    /// "Invalid bool literal."; no current token: "Failed to read the value of current
    /// token as bool.".
    virtual bool ReadBool() const;
    /// The trimmed value scanned with "%hd" (trailing text ignored); "Invalid short
    /// literal." when nothing converts; no token: "Failed to read the value of current
    /// token as short.".
    virtual short ReadShort() const;
    /// As ReadShort with "%ld": "Invalid long literal.", "... as long.".
    virtual long ReadLong() const;
    /// As ReadShort with "%lu": "Invalid long literal." (shared with ReadLong on
    /// purpose), "... as unsigned long.".
    virtual unsigned long ReadUnsignedLong() const;
    /// As ReadShort with "%f": "Invalid float literal.", "... as float.".
    virtual float ReadFloat() const;
    /// As ReadShort with "%lf": "Invalid double literal.", "... as double.".
    virtual double ReadDouble() const;
    /// The current token's value untrimmed; no current token lets the
    /// CNullReferenceException pass.
    virtual base::CUnicodeString ReadString();
    /// The trimmed value decoded from binhex into a new buffer the caller frees with
    /// free(). A bad text: "Invalid binhex encoded string literal."; other failures:
    /// "Failed to read the value of current token as binhex encoded binary data.".
    virtual void ReadBinHex(char*& data, unsigned long& size) const;
    /// As ReadBinHex for base64; a bad text gives "Invalid binhex encoded string
    /// literal." too, other failures "Failed to read the value of current token as
    /// base64 encoded binary data.".
    virtual void ReadBase64(char*& data, unsigned long& size) const;
    /// Advances to the next token; false at the end of the document.
    virtual bool ReadToken() = 0;
    /// Forward searches for a start element: by local name and URI, by qualified name,
    /// or the next one of any name.
    ///@{
    virtual void ReadStartElement(unsigned short const* localName,
                                  unsigned short const* namespaceURI) = 0;
    virtual void ReadStartElement(unsigned short const* name) = 0;
    virtual void ReadStartElement() = 0;
    ///@}
    /// Whether the current start element has the attribute; when the current token
    /// is not a start element: "Attributes available only in start element nodes.".
    ///@{
    virtual bool HasAttribute(unsigned short const* localName, unsigned short const* namespaceURI);
    virtual bool HasAttribute(unsigned short const* name);
    ///@}
    /// The attribute's value, untrimmed; failures as HasAttribute, and the token's
    /// CXMLException "No such attribute." for a missing one.
    ///@{
    virtual base::CUnicodeString ReadAttribute(unsigned short const* localName,
                                               unsigned short const* namespaceURI);
    virtual base::CUnicodeString ReadAttribute(unsigned short const* name);
    ///@}
    /// Typed attributes: the value is converted like the typed reads above but not
    /// trimmed; an invalid unsigned long says "Invalid unsigned long literal.".
    ///@{
    virtual bool ReadAttrBool(unsigned short const* localName, unsigned short const* namespaceURI);
    virtual bool ReadAttrBool(unsigned short const* name);
    virtual short ReadAttrShort(unsigned short const* localName,
                                unsigned short const* namespaceURI);
    virtual short ReadAttrShort(unsigned short const* name);
    virtual long ReadAttrLong(unsigned short const* localName, unsigned short const* namespaceURI);
    virtual long ReadAttrLong(unsigned short const* name);
    virtual unsigned long ReadAttrUnsignedLong(unsigned short const* localName,
                                               unsigned short const* namespaceURI);
    virtual unsigned long ReadAttrUnsignedLong(unsigned short const* name);
    virtual float ReadAttrFloat(unsigned short const* localName,
                                unsigned short const* namespaceURI);
    virtual float ReadAttrFloat(unsigned short const* name);
    virtual double ReadAttrDouble(unsigned short const* localName,
                                  unsigned short const* namespaceURI);
    virtual double ReadAttrDouble(unsigned short const* name);
    ///@}
    /// Forward searches for an end element, as the start-element searches.
    ///@{
    virtual void ReadEndElement(unsigned short const* localName,
                                unsigned short const* namespaceURI) = 0;
    virtual void ReadEndElement(unsigned short const* name) = 0;
    virtual void ReadEndElement() = 0;
    ///@}
    /// Reads up to the next text and joins the text that follows it, making it the
    /// current token; the first form also stores it in `text`.
    ///@{
    virtual void ReadElementText(base::CUnicodeString& text) = 0;
    virtual void ReadElementText() = 0;
    ///@}
    /// Joins text as ReadElementText when the next token is text; otherwise leaves
    /// that token to be read next and returns false.
    virtual bool ReadElementTextIfAvailable() = 0;
    /// Skips to the next CDATA token ("End of stream reached." when there is none;
    /// "Failed to read XML CDATA token." on another failure) and stores its value.
    ///@{
    virtual void ReadCDATA(base::CUnicodeString& text);
    virtual void ReadCDATA();
    ///@}
    /// Element reads with typed content: the start element, its text read as the
    /// typed read of the same type, then its end element.
    ///@{
    virtual bool ReadElementBool(unsigned short const* localName,
                                 unsigned short const* namespaceURI);
    virtual bool ReadElementBool(unsigned short const* name);
    virtual short ReadElementShort(unsigned short const* localName,
                                   unsigned short const* namespaceURI);
    virtual short ReadElementShort(unsigned short const* name);
    virtual long ReadElementLong(unsigned short const* localName,
                                 unsigned short const* namespaceURI);
    virtual long ReadElementLong(unsigned short const* name);
    virtual unsigned long ReadElementUnsignedLong(unsigned short const* localName,
                                                  unsigned short const* namespaceURI);
    virtual unsigned long ReadElementUnsignedLong(unsigned short const* name);
    virtual float ReadElementFloat(unsigned short const* localName,
                                   unsigned short const* namespaceURI);
    virtual float ReadElementFloat(unsigned short const* name);
    virtual double ReadElementDouble(unsigned short const* localName,
                                     unsigned short const* namespaceURI);
    virtual double ReadElementDouble(unsigned short const* name);
    ///@}
    /// The element's text, "" for an empty element; "Failed to read element with
    /// string content." when the text token vanished during the read.
    ///@{
    virtual base::CUnicodeString ReadElementString(unsigned short const* localName,
                                                   unsigned short const* namespaceURI);
    virtual base::CUnicodeString ReadElementString(unsigned short const* name);
    ///@}
    /// The element's text decoded into a new buffer the caller frees with free(); an
    /// empty element (`<a/>`, `<a></a>`) is the empty block: a null buffer and size 0.
    ///@{
    virtual void ReadElementBinHex(unsigned short const* localName,
                                   unsigned short const* namespaceURI, char*& data,
                                   unsigned long& size);
    virtual void ReadElementBinHex(unsigned short const* name, char*& data, unsigned long& size);
    virtual void ReadElementBase64(unsigned short const* localName,
                                   unsigned short const* namespaceURI, char*& data,
                                   unsigned long& size);
    virtual void ReadElementBase64(unsigned short const* name, char*& data, unsigned long& size);
    ///@}
    /// Lets the object read itself from this reader (IXMLSerializable::ReadXML).
    virtual void ReadObject(IXMLSerializable& object);
    /// Releases the source; later reads fail.
    virtual void Close() = 0;

protected:
    CXMLReader() {}
    CXMLReader(CXMLReader const&) = delete;
    CXMLReader& operator=(CXMLReader const&) = delete;

private:
    /// The current token when it is a start element, else the attribute failure.
    IXMLStartElementToken const& CurrentStartElement(int line) const;
};

} // namespace io
} // namespace lumo

#endif
