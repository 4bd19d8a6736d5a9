// The DOM-backed tokens that the DOM reader hands out: each stands for one node of a
// parsed document and reads its names and values from that node when asked.
#ifndef LUMO_IO_XMLDOMTOKEN_H
#define LUMO_IO_XMLDOMTOKEN_H

#include <lumo/io/DOM_Document.h>
#include <lumo/io/XMLToken.h>

namespace xercesc_3_2 {
class DOMNode;
}

namespace lumo {
namespace io {

/// The implementation base of the DOM-backed tokens: the type, the node the token
/// stands for and a handle to the node's document, so the node stays alive as long as
/// the token does (also after the reader that made it is closed or destroyed). The
/// node must belong to the document. Tokens read the node on every call and copy
/// nothing; the document must not be changed while its tokens are read.
class LUMO_API CXMLDOMToken : public CXMLToken {
public:
    ~CXMLDOMToken() override;
    /// The node this token stands for (never null).
    xercesc::DOMNode* GetNode() const noexcept { return m_node; }
    /// The document that owns the node.
    DOM_Document const& GetDocument() const noexcept { return m_document; }

protected:
    /// A token of kind `type` for `node`, which must belong to `document`.
    CXMLDOMToken(XMLTokenType type, DOM_Document const& document, xercesc::DOMNode* node) noexcept
        : CXMLToken(type), m_document(document), m_node(node) {}

private:
    DOM_Document m_document;
    xercesc::DOMNode* m_node;
};

/// A text node (type 3); an entity reference node reads as a text token too, its
/// value being the reference's replacement text (empty when the document does not
/// declare the entity).
class LUMO_API CXMLDOMTextToken : public IXMLTextToken, public CXMLDOMToken {
public:
    /// The token for a text or entity reference `node` of `document`.
    CXMLDOMTextToken(DOM_Document const& document, xercesc::DOMNode* node) noexcept
        : CXMLDOMToken(XMLTokenText, document, node) {}
    ~CXMLDOMTextToken() override;
    base::CUnicodeString GetValue() const override;
};

/// A CDATA section node (type 4): the section's content.
class LUMO_API CXMLDOMCDATAToken : public IXMLCDATAToken, public CXMLDOMToken {
public:
    /// The token for a CDATA section `node` of `document`.
    CXMLDOMCDATAToken(DOM_Document const& document, xercesc::DOMNode* node) noexcept
        : CXMLDOMToken(XMLTokenCDATA, document, node) {}
    ~CXMLDOMCDATAToken() override;
    base::CUnicodeString GetValue() const override;
};

/// A comment node (type 1): the comment's text.
class LUMO_API CXMLDOMCommentToken : public IXMLCommentToken, public CXMLDOMToken {
public:
    /// The token for a comment `node` of `document`.
    CXMLDOMCommentToken(DOM_Document const& document, xercesc::DOMNode* node) noexcept
        : CXMLDOMToken(XMLTokenComment, document, node) {}
    ~CXMLDOMCommentToken() override;
    base::CUnicodeString GetValue() const override;
};

/// A processing instruction node (type 2): GetValue is the target, GetData the data.
class LUMO_API CXMLDOMPIToken : public IXMLPIToken, public CXMLDOMToken {
public:
    /// The token for a processing instruction `node` of `document`.
    CXMLDOMPIToken(DOM_Document const& document, xercesc::DOMNode* node) noexcept
        : CXMLDOMToken(XMLTokenProcessingInstruction, document, node) {}
    ~CXMLDOMPIToken() override;
    base::CUnicodeString GetValue() const override;
    base::CUnicodeString GetData() const override;
};

/// The names of an element node, shared by the start and end tokens. An element
/// made without namespace support (DOM level 1) has no local name: its qualified name
/// stands in, as with the text tokens.
class LUMO_API CXMLDOMElementToken : public virtual IXMLElementToken, public CXMLDOMToken {
public:
    ~CXMLDOMElementToken() override;
    /// The qualified name.
    base::CUnicodeString GetValue() const override;
    bool IsNamespaceURIEmpty() const override;
    base::CUnicodeString GetQualifiedName() const override;
    base::CUnicodeString GetLocalName() const override;
    base::CUnicodeString GetNamespaceURI() const override;

protected:
    /// A token of kind `type` for an `element` node of `document`.
    CXMLDOMElementToken(XMLTokenType type, DOM_Document const& document,
                        xercesc::DOMNode* element) noexcept
        : CXMLDOMToken(type, document, element) {}
};

/// The end of an element node (type 6).
class LUMO_API CXMLDOMEndElementToken : public IXMLEndElementToken, public CXMLDOMElementToken {
public:
    /// The end token for an `element` node of `document`.
    CXMLDOMEndElementToken(DOM_Document const& document, xercesc::DOMNode* element) noexcept
        : CXMLDOMElementToken(XMLTokenEndElement, document, element) {}
    ~CXMLDOMEndElementToken() override;
};

} // namespace io
} // namespace lumo

#endif
