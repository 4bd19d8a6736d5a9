// Internal: what the XML readers share for their forward searches: the checks of the
// element names they are given, and the predicates that match an element token by
// (local name, namespace URI), by qualified name, or by any name.
#ifndef LUMO_IO_DETAIL_XMLELEMENTMATCH_H
#define LUMO_IO_DETAIL_XMLELEMENTMATCH_H

#include <lumo/io/IOException.h>
#include <lumo/io/XMLToken.h>

namespace lumo {
namespace io {
namespace detail {

/// A local name and namespace URI as the (local, uri) forms take them: a null or
/// empty local name is "Invalid local name.", one containing ':' "Local name must be
/// unqualified name.", a null URI "Invalid namespace URI." (CXMLException of `unit`,
/// raised with the caller's `line`).
inline void CheckLocalName(char const* unit, int line, unsigned short const* localName,
                           unsigned short const* namespaceURI) {
    unsigned long const at = static_cast<unsigned long>(line);
    if (localName == nullptr || localName[0] == 0)
        throw CXMLException(unit, at, "Invalid local name.", nullptr);
    for (unsigned short const* p = localName; *p != 0; ++p)
        if (*p == ':')
            throw CXMLException(unit, at, "Local name must be unqualified name.", nullptr);
    if (namespaceURI == nullptr)
        throw CXMLException(unit, at, "Invalid namespace URI.", nullptr);
}

/// A qualified name: null or empty is "Invalid local name.".
inline void CheckName(char const* unit, int line, unsigned short const* name) {
    if (name == nullptr || name[0] == 0)
        throw CXMLException(unit, static_cast<unsigned long>(line), "Invalid local name.", nullptr);
}

inline IXMLElementToken const* AsElement(IXMLToken const& token) {
    return dynamic_cast<IXMLElementToken const*>(&token);
}

/// Matches an element token by local name and namespace URI.
struct ByLocalName {
    unsigned short const* localName;
    unsigned short const* namespaceURI;
    bool operator()(IXMLToken const& token) const {
        IXMLElementToken const* element = AsElement(token);
        return element != nullptr && element->GetLocalName() == localName &&
               element->GetNamespaceURI() == namespaceURI;
    }
};

/// Matches an element token by qualified name.
struct ByQualifiedName {
    unsigned short const* name;
    bool operator()(IXMLToken const& token) const {
        IXMLElementToken const* element = AsElement(token);
        return element != nullptr && element->GetQualifiedName() == name;
    }
};

/// Matches any element token.
struct AnyName {
    bool operator()(IXMLToken const&) const { return true; }
};

/// Text and CDATA tokens: the ones a text read joins.
inline bool IsText(XMLTokenType type) {
    return type == XMLTokenText || type == XMLTokenCDATA;
}

} // namespace detail
} // namespace io
} // namespace lumo

#endif
