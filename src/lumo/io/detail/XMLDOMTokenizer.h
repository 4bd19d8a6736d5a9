// Internal: the DOM reader's tokenizer, a depth-first walk over a document's element
// tree that makes one DOM-backed token per markup node, in document order.
#ifndef LUMO_IO_DETAIL_XMLDOMTOKENIZER_H
#define LUMO_IO_DETAIL_XMLDOMTOKENIZER_H

#include <lumo/base/Ref.h>
#include <lumo/io/DOM_Document.h>
#include <lumo/io/XMLToken.h>

#include <vector>

namespace xercesc_3_2 {
class DOMNode;
}

namespace lumo {
namespace io {

/// Walks from the document element down and back up: an element gives its start token
/// on the way down and its end token on the way up (at once when it has no children);
/// text, CDATA, comment and processing instruction nodes give their tokens, an entity
/// reference a text token, every other node none. Nodes outside the document element
/// are not visited. The walk's position is the node in hand, whether it is being
/// entered or left, and the elements above it (kept here, since the DOM's own way up
/// costs a dynamic cast per step), so no token is made before it is asked for.
class CXMLDOMTokenizer {
public:
    /// The document must not be null.
    explicit CXMLDOMTokenizer(DOM_Document const& document) noexcept;
    ~CXMLDOMTokenizer();

    CXMLDOMTokenizer(CXMLDOMTokenizer const&) = delete;
    CXMLDOMTokenizer& operator=(CXMLDOMTokenizer const&) = delete;

    /// The next token, a null reference once the walk has climbed above the document
    /// element (and on every later call). Throws CMemoryException when out of memory.
    base::CRef<IXMLToken> GetNextToken();

private:
    /// Moves past `node`: to its next sibling, else up to its parent, which is left.
    void Advance(xercesc::DOMNode* node) noexcept;

    DOM_Document m_document;
    std::vector<xercesc::DOMNode*> m_ancestors;
    xercesc::DOMNode* m_node;
    bool m_leaving;
};

} // namespace io
} // namespace lumo

#endif
