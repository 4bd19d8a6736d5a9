// The DOM-backed tokens other than the start element: each reads its value or names
// from its node on every call.
#include <lumo/io/XMLDOMToken.h>

#include "../base/detail/XercesSupport.h"

#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMProcessingInstruction.hpp>

namespace lumo {
namespace io {

using base::CUnicodeString;
using detail::FromXMLCh;

CXMLDOMToken::~CXMLDOMToken() {}
CXMLDOMTextToken::~CXMLDOMTextToken() {}
CXMLDOMCDATAToken::~CXMLDOMCDATAToken() {}
CXMLDOMCommentToken::~CXMLDOMCommentToken() {}
CXMLDOMPIToken::~CXMLDOMPIToken() {}
CXMLDOMElementToken::~CXMLDOMElementToken() {}
CXMLDOMEndElementToken::~CXMLDOMEndElementToken() {}

CUnicodeString CXMLDOMTextToken::GetValue() const {
    xercesc::DOMNode const* node = GetNode();
    // An entity reference has no value of its own; its replacement text is its content.
    if (node->getNodeType() == xercesc::DOMNode::ENTITY_REFERENCE_NODE)
        return FromXMLCh(node->getTextContent());
    return FromXMLCh(node->getNodeValue());
}

CUnicodeString CXMLDOMCDATAToken::GetValue() const {
    return FromXMLCh(GetNode()->getNodeValue());
}

CUnicodeString CXMLDOMCommentToken::GetValue() const {
    return FromXMLCh(GetNode()->getNodeValue());
}

CUnicodeString CXMLDOMPIToken::GetValue() const {
    return FromXMLCh(static_cast<xercesc::DOMProcessingInstruction*>(GetNode())->getTarget());
}

CUnicodeString CXMLDOMPIToken::GetData() const {
    return FromXMLCh(static_cast<xercesc::DOMProcessingInstruction*>(GetNode())->getData());
}

CUnicodeString CXMLDOMElementToken::GetValue() const {
    // Read directly rather than through GetQualifiedName: a walk asks every token.
    return FromXMLCh(GetNode()->getNodeName());
}

bool CXMLDOMElementToken::IsNamespaceURIEmpty() const {
    XMLCh const* uri = GetNode()->getNamespaceURI();
    return uri == nullptr || uri[0] == 0;
}

CUnicodeString CXMLDOMElementToken::GetQualifiedName() const {
    return FromXMLCh(GetNode()->getNodeName());
}

CUnicodeString CXMLDOMElementToken::GetLocalName() const {
    xercesc::DOMNode const* node = GetNode();
    XMLCh const* local = node->getLocalName();
    return FromXMLCh(local != nullptr ? local : node->getNodeName());
}

CUnicodeString CXMLDOMElementToken::GetNamespaceURI() const {
    return FromXMLCh(GetNode()->getNamespaceURI());
}

} // namespace io
} // namespace lumo
