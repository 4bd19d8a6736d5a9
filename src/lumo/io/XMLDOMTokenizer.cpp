// The DOM reader's tokenizer: the depth-first walk over the element tree and the
// DOM-backed token made for each node.
#include "detail/XMLDOMTokenizer.h"

#include <lumo/io/XMLDOMStartElementToken.h>
#include <lumo/io/XMLDOMToken.h>

#include <lumo/base/Exception.h>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNode.hpp>

#include <new>

namespace lumo {
namespace io {

using base::CRef;
using xercesc::DOMNode;

CXMLDOMTokenizer::CXMLDOMTokenizer(DOM_Document const& document) noexcept
    : m_document(document), m_node(document->getDocumentElement()), m_leaving(false) {}

CXMLDOMTokenizer::~CXMLDOMTokenizer() {}

void CXMLDOMTokenizer::Advance(DOMNode* node) noexcept {
    if (m_ancestors.empty()) {
        m_node = nullptr; // the document element is done
        return;
    }
    DOMNode* next = node->getNextSibling();
    if (next != nullptr) {
        m_node = next;
        m_leaving = false;
    } else {
        m_node = m_ancestors.back();
        m_ancestors.pop_back();
        m_leaving = true;
    }
}

CRef<IXMLToken> CXMLDOMTokenizer::GetNextToken() {
    while (m_node != nullptr) {
        DOMNode* const node = m_node;
        if (m_leaving) {
            Advance(node);
            return CRef<IXMLToken>(new CXMLDOMEndElementToken(m_document, node));
        }
        switch (node->getNodeType()) {
        case DOMNode::ELEMENT_NODE: {
            DOMNode* const child = node->getFirstChild();
            if (child != nullptr) {
                try {
                    m_ancestors.push_back(node);
                } catch (std::bad_alloc const&) {
                    throw base::CMemoryException("lumo/io/XMLDOMTokenizer", __LINE__);
                }
                m_node = child;
            } else {
                m_leaving = true;
            }
            return CRef<IXMLToken>(new CXMLDOMStartElementToken(m_document, node));
        }
        case DOMNode::TEXT_NODE:
        case DOMNode::ENTITY_REFERENCE_NODE:
            Advance(node);
            return CRef<IXMLToken>(new CXMLDOMTextToken(m_document, node));
        case DOMNode::CDATA_SECTION_NODE:
            Advance(node);
            return CRef<IXMLToken>(new CXMLDOMCDATAToken(m_document, node));
        case DOMNode::COMMENT_NODE:
            Advance(node);
            return CRef<IXMLToken>(new CXMLDOMCommentToken(m_document, node));
        case DOMNode::PROCESSING_INSTRUCTION_NODE:
            Advance(node);
            return CRef<IXMLToken>(new CXMLDOMPIToken(m_document, node));
        default:
            Advance(node);
            break;
        }
    }
    return CRef<IXMLToken>();
}

} // namespace io
} // namespace lumo
