// The DOM-backed start-element token: attribute look-ups on the element node, with
// the DOM token's own messages.
#include <lumo/io/XMLDOMStartElementToken.h>

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>

#include "../base/detail/XercesSupport.h"

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/dom/DOMNode.hpp>

namespace lumo {
namespace io {

using base::CUnicodeString;

namespace {

char const kUnit[] = "lumo/io/XMLDOMStartElementToken";

// Compares the library's UTF-16 text with a Xerces-C text (null reads as empty).
bool SameText(unsigned short const* ours, XMLCh const* theirs) {
    if (theirs == nullptr)
        return ours[0] == 0;
    std::size_t i = 0;
    for (; ours[i] != 0; ++i)
        if (static_cast<char16_t>(ours[i]) != theirs[i])
            return false;
    return theirs[i] == 0;
}

// The attribute of `element` that `matches` accepts, or null.
template <class Match> xercesc::DOMNode* FindAttribute(xercesc::DOMNode* element, Match matches) {
    xercesc::DOMNamedNodeMap* attributes = element->getAttributes();
    if (attributes == nullptr)
        return nullptr;
    XMLSize_t const count = attributes->getLength();
    for (XMLSize_t i = 0; i < count; ++i) {
        xercesc::DOMNode* attribute = attributes->item(i);
        if (matches(*attribute))
            return attribute;
    }
    return nullptr;
}

xercesc::DOMNode* ByName(xercesc::DOMNode* element, unsigned short const* qualifiedName) {
    if (qualifiedName == nullptr)
        throw CXMLException(kUnit, __LINE__, "Invalid qualidied name.", nullptr);
    return FindAttribute(element, [&](xercesc::DOMNode const& attribute) {
        return SameText(qualifiedName, attribute.getNodeName());
    });
}

xercesc::DOMNode* ByLocalName(xercesc::DOMNode* element, unsigned short const* localName,
                              unsigned short const* namespaceURI) {
    if (localName == nullptr)
        throw CXMLException(kUnit, __LINE__, "Invalid local name.", nullptr);
    if (namespaceURI == nullptr)
        throw CXMLException(kUnit, __LINE__, "Invalid namespace URI.", nullptr);
    return FindAttribute(element, [&](xercesc::DOMNode const& attribute) {
        XMLCh const* local = attribute.getLocalName();
        return SameText(localName, local != nullptr ? local : attribute.getNodeName()) &&
               SameText(namespaceURI, attribute.getNamespaceURI());
    });
}

// The value of the attribute found, with the token's failures.
template <class Find> CUnicodeString ValueOf(Find&& find) {
    xercesc::DOMNode* attribute;
    try {
        attribute = find();
    } catch (CXMLException const&) {
        throw;
    } catch (...) {
        throw CXMLException(kUnit, __LINE__, "Failed to get the specified attribute.", nullptr);
    }
    if (attribute == nullptr)
        throw CXMLException(kUnit, __LINE__, "No such attibute.", nullptr);
    try {
        return detail::FromXMLCh(attribute->getNodeValue());
    } catch (...) {
        throw CXMLException(kUnit, __LINE__, "Failed to get the specified attribute.", nullptr);
    }
}

} // namespace

CXMLDOMStartElementToken::~CXMLDOMStartElementToken() {}

bool CXMLDOMStartElementToken::HasAttribute(unsigned short const* localName,
                                            unsigned short const* namespaceURI) const {
    return ByLocalName(GetNode(), localName, namespaceURI) != nullptr;
}

bool CXMLDOMStartElementToken::HasAttribute(unsigned short const* qualifiedName) const {
    return ByName(GetNode(), qualifiedName) != nullptr;
}

CUnicodeString CXMLDOMStartElementToken::GetAttribute(unsigned short const* localName,
                                                      unsigned short const* namespaceURI) const {
    return ValueOf([&] { return ByLocalName(GetNode(), localName, namespaceURI); });
}

CUnicodeString CXMLDOMStartElementToken::GetAttribute(unsigned short const* qualifiedName) const {
    return ValueOf([&] { return ByName(GetNode(), qualifiedName); });
}

XMLAttributeList CXMLDOMStartElementToken::GetAttributes() const {
    XMLAttributeList list;
    xercesc::DOMNamedNodeMap* attributes = GetNode()->getAttributes();
    XMLSize_t const count = attributes != nullptr ? attributes->getLength() : 0;
    for (XMLSize_t i = 0; i < count; ++i) {
        xercesc::DOMNode const* attribute = attributes->item(i);
        XMLCh const* local = attribute->getLocalName();
        list.Add(detail::FromXMLCh(attribute->getNodeName()),
                 detail::FromXMLCh(local != nullptr ? local : attribute->getNodeName()),
                 detail::FromXMLCh(attribute->getNamespaceURI()),
                 detail::FromXMLCh(attribute->getNodeValue()));
    }
    return list;
}

} // namespace io
} // namespace lumo
