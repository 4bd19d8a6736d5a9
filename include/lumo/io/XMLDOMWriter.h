// The XML writer that builds a Xerces-C DOM document in memory instead of printing
// text, so the same writing routine can produce either.
#ifndef LUMO_IO_XMLDOMWRITER_H
#define LUMO_IO_XMLDOMWRITER_H

#include <lumo/io/DOM_Document.h>
#include <lumo/io/XMLWriter.h>

#include <vector>

namespace xercesc_3_2 {
class DOMElement;
class DOMNode;
} // namespace xercesc_3_2

namespace lumo {
namespace io {

/// Builds a DOM document. WriteStartDocument makes a placeholder document whose
/// element is "DocumentRoot"; comments and processing instructions written before the
/// first element go into it. The first start element makes the real document with
/// that element as its document element, re-creates the earlier comments and
/// processing instructions (same texts, same order) before it, and drops the
/// placeholder. Later elements are appended to the innermost open element.
///
/// The typed writes are the base's: 1.5 is written as 1.500000 (the text writer
/// writes 1.5). There is no short or long end form, so WriteFullEndElement is
/// WriteEndElement. WriteAttrDefaultNamespaceDeclaration, Flush and Close do nothing
/// (an element opened in a namespace carries it in the DOM, and a serializer declares
/// it); GetDocument stays available after Close.
///
/// All failures are CXMLException from unit "lumo/io/XMLDOMWriter". Every write
/// first checks that the document is started ("Document hasn't been started yet.") and
/// not ended ("Document has already been closed."). A DOM exception is mapped by its
/// code: an illegal name character gives "Invalid character error.", a namespace
/// fault "Namespace error.", any other "DOM exception."; another failure of the DOM
/// (out of memory) gives the operation's "Failed to ..." message. A failed call leaves
/// the tree as it was, except that an element whose attribute failed stays open.
class LUMO_API CXMLDOMWriter : public CXMLWriter {
    LUMO_DECLARE_CLASS(CXMLDOMWriter);

public:
    /// An empty writer; the document is made by WriteStartDocument.
    CXMLDOMWriter();
    /// Drops the writer's handle; the document lives on in the handles copied from
    /// GetDocument, else it is released (also when WriteEndDocument never came).
    ~CXMLDOMWriter() override;

    /// The document built so far: the null handle before WriteStartDocument. Copy it
    /// to keep the document after the writer is gone.
    DOM_Document const& GetDocument() const noexcept { return m_document; }

    /// Makes the placeholder document. A second call: "Document has already been
    /// started once."; a document that cannot be made: "Failed to create the
    /// underlying DOM document.".
    void WriteStartDocument() override;
    /// Ends the document; every later write fails. Open elements stay as they are.
    void WriteEndDocument() override;
    /// A CDATA section (null: empty) in the current element; with no element open:
    /// "CDATA section invalid at the top of XML document."; a node that cannot be
    /// made: "Failed to create DOM CDATA node.".
    void WriteCDATA(unsigned short const* text) override;
    /// A comment (null: empty) in the current element, or in the document when no
    /// element is open. A node that cannot be made: "Failed to create comment DOM
    /// node." at the top of the document, "Failed to create DOM comment node." in an
    /// element.
    void WriteComment(unsigned short const* text) override;
    /// A processing instruction, placed as a comment is. A null or empty target:
    /// "Invalid processing instruction target."; null data: "Invalid processing
    /// instruction data."; a node that cannot be made: "Failed to create processing
    /// instruction DOM node.".
    void WriteProcessingInstruction(unsigned short const* target,
                                    unsigned short const* data) override;
    /// An entity reference node in the current element. A null or empty name:
    /// "Invalid entity name."; no element open: "Entity reference invalid at the top
    /// of XML document."; a node that cannot be made: "Failed to create DOM entity ref
    /// node.".
    void WriteEntityRef(unsigned short const* name) override;
    /// A text node holding `text` (null: nothing) in the current element; no element
    /// open: "Whitespaces don't allowed top of XML document."; a node that cannot be
    /// made: "Failed to create DOM text node.". The text is not checked to be white
    /// space.
    void WriteWhitespace(unsigned short const* text) override;
    /// Opens `prefix:local` in namespace `uri`. A null or empty prefix: "Invalid
    /// prefix."; then as the (local, uri) form.
    void WriteStartElement(unsigned short const* prefix, unsigned short const* local,
                           unsigned short const* uri) override;
    /// Opens `local` in namespace `uri`. A null or empty local name: "Invalid local
    /// name."; one containing ':': "Local name must be unqualified name."; a null URI:
    /// "Invalid namespace URI."; another failure: "Failed to write start element.".
    void WriteStartElement(unsigned short const* local, unsigned short const* uri) override;
    /// Opens an element by its qualified name (without namespace). A null or empty
    /// name: "Invalid local name."; other failures as above.
    void WriteStartElement(unsigned short const* name) override;
    /// Closes the current element. Before the document element: "Document element
    /// hasn't been written yet."; no element open: "Element stack is empty.".
    void WriteEndElement() override;
    /// Exactly WriteEndElement.
    void WriteFullEndElement() override;
    /// An element holding one text node (`value`, null: empty), appended to the current
    /// element and not left open. Before the document element: "Document element
    /// hasn't been written yet."; names checked as the WriteStartElement forms; nodes
    /// that cannot be made: "Failed to create element DOM node.", "Failed to create
    /// text DOM node.", "Failed to create DOM element node with text content.".
    void WriteElementString(unsigned short const* local, unsigned short const* uri,
                            unsigned short const* value) override;
    void WriteElementString(unsigned short const* name, unsigned short const* value) override;
    /// Attributes of the element just started (before any of its content). Otherwise:
    /// "Attributes can be written only in start element state."; names checked as the
    /// WriteStartElement forms (null value: empty); another failure: "Failed to add
    /// attribute to the current DOM element node.".
    void WriteAttribute(unsigned short const* prefix, unsigned short const* local,
                        unsigned short const* uri, unsigned short const* value) override;
    void WriteAttribute(unsigned short const* local, unsigned short const* uri,
                        unsigned short const* value) override;
    void WriteAttribute(unsigned short const* name, unsigned short const* value) override;
    /// Does nothing.
    void WriteAttrDefaultNamespaceDeclaration(unsigned short const* uri) override;
    /// An "xmlns:prefix" attribute in the xmlns namespace, as WriteAttribute.
    void WriteAttrNamespaceDeclaration(unsigned short const* prefix,
                                       unsigned short const* uri) override;
    /// A text node (null: nothing) in the current element. Before the document
    /// element: "Document element hasn't been written yet."; a node that cannot be
    /// made: "Failed to create DOM text node.".
    void WriteString(unsigned short const* text) override;
    /// The base64 or binhex text of the bytes, as WriteString.
    void WriteBase64(char const* data, unsigned long offset, unsigned long length) override;
    void WriteBinHex(char const* data, unsigned long offset, unsigned long length) override;
    /// Do nothing.
    void Flush() override;
    void Close() override;

private:
    void CheckState(int line) const;
    /// Where content goes: the current element, or the document when none is open.
    xercesc::DOMNode* Parent() const noexcept;
    /// Appends a new element (making the real document for the first) and opens it.
    void StartElement(unsigned short const* uri, unsigned short const* qualifiedName);
    void StartFirstElement(unsigned short const* uri, unsigned short const* qualifiedName);
    void SetAttribute(unsigned short const* uri, unsigned short const* qualifiedName,
                      unsigned short const* value);
    void AppendElementString(unsigned short const* uri, unsigned short const* qualifiedName,
                             unsigned short const* value);
    void AppendText(unsigned short const* text, int line, char const* failure);

    DOM_Document m_document;
    std::vector<xercesc::DOMElement*> m_elements;
    bool m_started;
    bool m_closed;
    bool m_rootWritten;
    bool m_inStartElement;
};

} // namespace io
} // namespace lumo

#endif
