// The DOM-backed start-element token: an element node's names and its attributes,
// looked up on the node.
#ifndef LUMO_IO_XMLDOMSTARTELEMENTTOKEN_H
#define LUMO_IO_XMLDOMSTARTELEMENTTOKEN_H

#include <lumo/io/XMLAttributeList.h>
#include <lumo/io/XMLDOMToken.h>

namespace lumo {
namespace io {

/// The start of an element node (type 5). Attributes are the node's own, namespace
/// declarations included, matched exactly code unit by code unit; an attribute made
/// without namespace support matches the (local name, URI) form by its qualified name
/// and the empty URI. Failures are CXMLException from unit
/// "lumo/io/XMLDOMStartElementToken".
class LUMO_API CXMLDOMStartElementToken : public IXMLStartElementToken, public CXMLDOMElementToken {
public:
    /// The start token for an `element` node of `document`.
    CXMLDOMStartElementToken(DOM_Document const& document, xercesc::DOMNode* element) noexcept
        : CXMLDOMElementToken(XMLTokenStartElement, document, element) {}
    ~CXMLDOMStartElementToken() override;

    /// A null local name: "Invalid local name."; a null URI: "Invalid namespace URI.".
    /// A missing attribute gives false.
    bool HasAttribute(unsigned short const* localName,
                      unsigned short const* namespaceURI) const override;
    /// A null name: "Invalid qualidied name.". A missing attribute gives false.
    bool HasAttribute(unsigned short const* qualifiedName) const override;
    /// The attribute's value. Null names as HasAttribute; a missing attribute: "No such
    /// attibute."; any other failure: "Failed to get the specified attribute.".
    ///@{
    base::CUnicodeString GetAttribute(unsigned short const* localName,
                                      unsigned short const* namespaceURI) const override;
    base::CUnicodeString GetAttribute(unsigned short const* qualifiedName) const override;
    ///@}

    /// A copy of all attributes in the node's order (the DOM keeps no document order
    /// of attributes). Throws CMemoryException when out of memory.
    XMLAttributeList GetAttributes() const;
};

} // namespace io
} // namespace lumo

#endif
