// Internal: what the XML readers share for their forward searches and attribute reads:
// the checks of the names a search is given and the tests that end a search.
#ifndef LUMO_IO_DETAIL_XMLTOKENSEARCH_H
#define LUMO_IO_DETAIL_XMLTOKENSEARCH_H

#include <lumo/io/IOException.h>
#include <lumo/io/XMLToken.h>

namespace lumo {
namespace io {
namespace detail {

/// Text and CDATA tokens, which the text reads join.
inline bool IsTextToken(XMLTokenType type) {
    return type == XMLTokenText || type == XMLTokenCDATA;
}

/// The arguments of a (local name, namespace URI) search, raised as CXMLException from
/// the reader's `unit` and `line`: "Invalid local name." (null or empty), "Local name
/// must be unqualified name." (a ':'), "Invalid namespace URI." (null).
inline void CheckSearchLocalName(char const* unit, int line, unsigned short const* localName,
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

/// The argument of a qualified-name search: null or empty is "Invalid local name.".
inline void CheckSearchName(char const* unit, int line, unsigned short const* name) {
    if (name == nullptr || name[0] == 0)
        throw CXMLException(unit, static_cast<unsigned long>(line), "Invalid local name.", nullptr);
}

/// Matches an element token by local name and namespace URI.
struct ByLocalName {
    unsigned short const* localName;
    unsigned short const* namespaceURI;
    bool operator()(IXMLToken const& token) const {
        IXMLElementToken const* element = dynamic_cast<IXMLElementToken const*>(&token);
        return element != nullptr && element->GetLocalName() == localName &&
               element->GetNamespaceURI() == namespaceURI;
    }
};

/// Matches an element token by qualified name.
struct ByQualifiedName {
    unsigned short const* name;
    bool operator()(IXMLToken const& token) const {
        IXMLElementToken const* element = dynamic_cast<IXMLElementToken const*>(&token);
        return element != nullptr && element->GetQualifiedName() == name;
    }
};

/// Matches any token of the searched type.
struct AnyName {
    bool operator()(IXMLToken const&) const { return true; }
};

/// The token as the start element whose attributes are read; not one (or none):
/// CIOException "Attributes available only in start element nodes." from `unit`.
inline IXMLStartElementToken const& StartElementOf(IXMLToken const* token, char const* unit,
                                                   int line) {
    IXMLStartElementToken const* start =
        token != nullptr && token->GetType() == XMLTokenStartElement
            ? dynamic_cast<IXMLStartElementToken const*>(token)
            : nullptr;
    if (start == nullptr)
        throw CIOException(unit, static_cast<unsigned long>(line),
                           "Attributes available only in start element nodes.", nullptr);
    return *start;
}

} // namespace detail
} // namespace io
} // namespace lumo

#endif
