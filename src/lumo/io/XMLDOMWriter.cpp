// The XML DOM writer: builds a Xerces-C DOM document through the writer interface,
// with a placeholder document until the first element names the real one.
#include <lumo/io/XMLDOMWriter.h>

#include <lumo/base/Exception.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/IOException.h>

#include <xercesc/dom/DOMCDATASection.hpp>
#include <xercesc/dom/DOMComment.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMEntityReference.hpp>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/dom/DOMProcessingInstruction.hpp>
#include <xercesc/dom/DOMText.hpp>
#include <xercesc/util/XMLString.hpp>

#include <string>

namespace lumo {
namespace io {

using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;

namespace {

char const kUnit[] = "lumo/io/XMLDOMWriter";
char const kNoDocumentElement[] = "Document element hasn't been written yet.";
char const kStartFailed[] = "Failed to write start element.";
char const kAttributeFailed[] = "Failed to add attribute to the current DOM element node.";
char16_t const kPlaceholderName[] = u"DocumentRoot";

[[noreturn]] void Fail(int line, char const* message) {
    throw CXMLException(kUnit, static_cast<unsigned long>(line), message, nullptr);
}

// Runs one change of the tree: the library's own exceptions pass, a DOM exception is
// mapped by its code, anything else (the DOM out of memory) becomes `failure`.
template <class F> void ChangeTree(int line, char const* failure, F&& body) {
    try {
        body();
    } catch (base::CException const&) {
        throw;
    } catch (xercesc::DOMException const& e) {
        if (e.code == xercesc::DOMException::INVALID_CHARACTER_ERR)
            Fail(line, "Invalid character error.");
        if (e.code == xercesc::DOMException::NAMESPACE_ERR)
            Fail(line, "Namespace error.");
        Fail(line, "DOM exception.");
    } catch (...) {
        Fail(line, failure);
    }
}

// A zero-terminated XMLCh copy of the library's UTF-16 text, on the stack when short,
// since the writer converts every name and text it is handed. Null stays null.
class CXMLChText {
public:
    explicit CXMLChText(unsigned short const* text) {
        if (text == nullptr)
            return;
        std::size_t n = 0;
        while (text[n] != 0)
            ++n;
        char16_t* out = m_inline;
        if (n >= kInline) {
            m_heap.resize(n);
            out = &m_heap[0];
        }
        for (std::size_t i = 0; i < n; ++i)
            out[i] = static_cast<char16_t>(text[i]);
        out[n] = 0;
        m_text = out;
    }
    CXMLChText(CXMLChText const&) = delete;
    CXMLChText& operator=(CXMLChText const&) = delete;

    XMLCh const* Get() const noexcept { return m_text; }
    /// The text, or the empty text for null.
    XMLCh const* OrEmpty() const noexcept { return m_text != nullptr ? m_text : u""; }
    /// The text, or null for null and empty (the DOM's "no namespace").
    XMLCh const* OrNull() const noexcept {
        return m_text != nullptr && m_text[0] != 0 ? m_text : nullptr;
    }

private:
    static std::size_t const kInline = 64;
    char16_t m_inline[kInline];
    std::u16string m_heap;
    XMLCh const* m_text = nullptr;
};

bool IsEmpty(unsigned short const* text) {
    return text == nullptr || text[0] == 0;
}

bool HasColon(unsigned short const* text) {
    for (; *text != 0; ++text)
        if (*text == ':')
            return true;
    return false;
}

void CheckLocalName(unsigned short const* local, unsigned short const* uri) {
    if (IsEmpty(local))
        Fail(__LINE__, "Invalid local name.");
    if (HasColon(local))
        Fail(__LINE__, "Local name must be unqualified name.");
    if (uri == nullptr)
        Fail(__LINE__, "Invalid namespace URI.");
}

void CheckPrefix(unsigned short const* prefix) {
    if (IsEmpty(prefix))
        Fail(__LINE__, "Invalid prefix.");
}

// "prefix:local" as library text.
base::CUnicodeString Qualified(unsigned short const* prefix, unsigned short const* local) {
    base::CUnicodeString name(prefix);
    name += static_cast<unsigned short>(':');
    name += local;
    return name;
}

xercesc::DOMImplementation* Implementation() {
    return xercesc::DOMImplementationRegistry::getDOMImplementation(u"Core");
}

// An element named `qualifiedName`, in namespace `uri` (null: none). A qualified name
// with a prefix but no namespace is made without namespace support, as a parser
// without namespaces would.
DOMElement* NewElement(DOMDocument* document, XMLCh const* uri, CXMLChText const& qualifiedName) {
    XMLCh const* name = qualifiedName.Get();
    if (uri == nullptr && xercesc::XMLString::indexOf(name, u':') >= 0)
        return document->createElement(name);
    return document->createElementNS(uri, name);
}

} // namespace

LUMO_DEFINE_CLASS(CXMLDOMWriter, "lumo::io::CXMLDOMWriter", "lumo::io::CXMLWriter");

CXMLDOMWriter::CXMLDOMWriter()
    : m_started(false), m_closed(false), m_rootWritten(false), m_inStartElement(false) {}

CXMLDOMWriter::~CXMLDOMWriter() {}

void CXMLDOMWriter::CheckState(int line) const {
    if (!m_started)
        Fail(line, "Document hasn't been started yet.");
    if (m_closed)
        Fail(line, "Document has already been closed.");
}

DOMNode* CXMLDOMWriter::Parent() const noexcept {
    if (!m_elements.empty())
        return m_elements.back();
    return m_document.Get();
}

void CXMLDOMWriter::WriteStartDocument() {
    if (m_started)
        Fail(__LINE__, "Document has already been started once.");
    char const failure[] = "Failed to create the underlying DOM document.";
    ChangeTree(__LINE__, failure, [&] {
        xercesc::DOMImplementation* implementation = Implementation();
        if (implementation == nullptr)
            Fail(__LINE__, failure);
        m_document =
            DOM_Document(implementation->createDocument(nullptr, kPlaceholderName, nullptr));
    });
    if (m_document.IsNull())
        Fail(__LINE__, failure);
    m_started = true;
}

void CXMLDOMWriter::WriteEndDocument() {
    CheckState(__LINE__);
    m_closed = true;
    m_inStartElement = false;
}

void CXMLDOMWriter::WriteCDATA(unsigned short const* text) {
    CheckState(__LINE__);
    if (m_elements.empty())
        Fail(__LINE__, "CDATA section invalid at the top of XML document.");
    CXMLChText const value(text);
    ChangeTree(__LINE__, "Failed to create DOM CDATA node.", [&] {
        m_elements.back()->appendChild(m_document->createCDATASection(value.OrEmpty()));
    });
    m_inStartElement = false;
}

void CXMLDOMWriter::WriteComment(unsigned short const* text) {
    CheckState(__LINE__);
    CXMLChText const value(text);
    ChangeTree(__LINE__,
               m_elements.empty() ? "Failed to create comment DOM node."
                                  : "Failed to create DOM comment node.",
               [&] { Parent()->appendChild(m_document->createComment(value.OrEmpty())); });
    m_inStartElement = false;
}

void CXMLDOMWriter::WriteProcessingInstruction(unsigned short const* target,
                                               unsigned short const* data) {
    CheckState(__LINE__);
    if (IsEmpty(target))
        Fail(__LINE__, "Invalid processing instruction target.");
    if (data == nullptr)
        Fail(__LINE__, "Invalid processing instruction data.");
    CXMLChText const targetText(target);
    CXMLChText const dataText(data);
    ChangeTree(__LINE__, "Failed to create processing instruction DOM node.", [&] {
        Parent()->appendChild(
            m_document->createProcessingInstruction(targetText.Get(), dataText.Get()));
    });
    m_inStartElement = false;
}

void CXMLDOMWriter::WriteEntityRef(unsigned short const* name) {
    CheckState(__LINE__);
    if (IsEmpty(name))
        Fail(__LINE__, "Invalid entity name.");
    if (m_elements.empty())
        Fail(__LINE__, "Entity reference invalid at the top of XML document.");
    CXMLChText const nameText(name);
    ChangeTree(__LINE__, "Failed to create DOM entity ref node.", [&] {
        m_elements.back()->appendChild(m_document->createEntityReference(nameText.Get()));
    });
    m_inStartElement = false;
}

void CXMLDOMWriter::WriteWhitespace(unsigned short const* text) {
    CheckState(__LINE__);
    if (m_elements.empty())
        Fail(__LINE__, "Whitespaces don't allowed top of XML document.");
    AppendText(text, __LINE__, "Failed to create DOM text node.");
}

void CXMLDOMWriter::AppendText(unsigned short const* text, int line, char const* failure) {
    if (IsEmpty(text))
        return;
    CXMLChText const value(text);
    ChangeTree(line, failure,
               [&] { Parent()->appendChild(m_document->createTextNode(value.Get())); });
    m_inStartElement = false;
}

void CXMLDOMWriter::StartFirstElement(unsigned short const* uri,
                                      unsigned short const* qualifiedName) {
    CXMLChText const uriText(uri);
    CXMLChText const name(qualifiedName);
    DOM_Document document;
    DOMElement* element = nullptr;
    ChangeTree(__LINE__, kStartFailed, [&] {
        xercesc::DOMImplementation* implementation = Implementation();
        if (implementation == nullptr)
            Fail(__LINE__, kStartFailed);
        document = DOM_Document(implementation->createDocument());
        element = NewElement(document.Get(), uriText.OrNull(), name);
        // The comments and instructions of the placeholder, in their order.
        for (DOMNode* node = m_document->getFirstChild(); node != nullptr;
             node = node->getNextSibling()) {
            if (node->getNodeType() == DOMNode::COMMENT_NODE) {
                document->appendChild(document->createComment(node->getNodeValue()));
            } else if (node->getNodeType() == DOMNode::PROCESSING_INSTRUCTION_NODE) {
                auto const* pi = static_cast<xercesc::DOMProcessingInstruction const*>(node);
                document->appendChild(
                    document->createProcessingInstruction(pi->getTarget(), pi->getData()));
            }
        }
        document->appendChild(element);
        m_elements.reserve(16);
    });
    m_document = document;
    m_elements.push_back(element);
    m_rootWritten = true;
}

void CXMLDOMWriter::StartElement(unsigned short const* uri, unsigned short const* qualifiedName) {
    if (!m_rootWritten) {
        StartFirstElement(uri, qualifiedName);
    } else {
        CXMLChText const uriText(uri);
        CXMLChText const name(qualifiedName);
        ChangeTree(__LINE__, kStartFailed, [&] {
            DOMNode* const parent = Parent();
            DOMElement* const element = NewElement(m_document.Get(), uriText.OrNull(), name);
            // The stack grows first, so a failure leaves tree and stack as they were.
            m_elements.push_back(element);
            try {
                parent->appendChild(element);
            } catch (...) {
                m_elements.pop_back();
                throw;
            }
        });
    }
    m_inStartElement = true;
}

void CXMLDOMWriter::WriteStartElement(unsigned short const* prefix, unsigned short const* local,
                                      unsigned short const* uri) {
    CheckState(__LINE__);
    CheckPrefix(prefix);
    CheckLocalName(local, uri);
    StartElement(uri, Qualified(prefix, local));
}

void CXMLDOMWriter::WriteStartElement(unsigned short const* local, unsigned short const* uri) {
    CheckState(__LINE__);
    CheckLocalName(local, uri);
    StartElement(uri, local);
}

void CXMLDOMWriter::WriteStartElement(unsigned short const* name) {
    CheckState(__LINE__);
    if (IsEmpty(name))
        Fail(__LINE__, "Invalid local name.");
    StartElement(nullptr, name);
}

void CXMLDOMWriter::WriteEndElement() {
    CheckState(__LINE__);
    if (!m_rootWritten)
        Fail(__LINE__, kNoDocumentElement);
    if (m_elements.empty())
        Fail(__LINE__, "Element stack is empty.");
    m_elements.pop_back();
    m_inStartElement = false;
}

void CXMLDOMWriter::WriteFullEndElement() {
    WriteEndElement();
}

void CXMLDOMWriter::AppendElementString(unsigned short const* uri,
                                        unsigned short const* qualifiedName,
                                        unsigned short const* value) {
    CXMLChText const uriText(uri);
    CXMLChText const name(qualifiedName);
    CXMLChText const text(value);
    DOMElement* element = nullptr;
    ChangeTree(__LINE__, "Failed to create element DOM node.",
               [&] { element = NewElement(m_document.Get(), uriText.OrNull(), name); });
    if (text.Get() != nullptr && text.Get()[0] != 0) {
        DOMNode* content = nullptr;
        ChangeTree(__LINE__, "Failed to create text DOM node.",
                   [&] { content = m_document->createTextNode(text.Get()); });
        ChangeTree(__LINE__, "Failed to create DOM element node with text content.",
                   [&] { element->appendChild(content); });
    }
    ChangeTree(__LINE__, "Failed to create DOM element node with text content.",
               [&] { Parent()->appendChild(element); });
    m_inStartElement = false;
}

void CXMLDOMWriter::WriteElementString(unsigned short const* local, unsigned short const* uri,
                                       unsigned short const* value) {
    CheckState(__LINE__);
    if (!m_rootWritten)
        Fail(__LINE__, kNoDocumentElement);
    CheckLocalName(local, uri);
    AppendElementString(uri, local, value);
}

void CXMLDOMWriter::WriteElementString(unsigned short const* name, unsigned short const* value) {
    CheckState(__LINE__);
    if (!m_rootWritten)
        Fail(__LINE__, kNoDocumentElement);
    if (IsEmpty(name))
        Fail(__LINE__, "Invalid local name.");
    AppendElementString(nullptr, name, value);
}

void CXMLDOMWriter::SetAttribute(unsigned short const* uri, unsigned short const* qualifiedName,
                                 unsigned short const* value) {
    CXMLChText const uriText(uri);
    CXMLChText const name(qualifiedName);
    CXMLChText const text(value);
    ChangeTree(__LINE__, kAttributeFailed, [&] {
        DOMElement* element = m_elements.back();
        XMLCh const* namespaceURI = uriText.OrNull();
        if (namespaceURI == nullptr && xercesc::XMLString::indexOf(name.Get(), u':') >= 0)
            element->setAttribute(name.Get(), text.OrEmpty());
        else
            element->setAttributeNS(namespaceURI, name.Get(), text.OrEmpty());
    });
}

void CXMLDOMWriter::WriteAttribute(unsigned short const* prefix, unsigned short const* local,
                                   unsigned short const* uri, unsigned short const* value) {
    CheckState(__LINE__);
    if (!m_inStartElement)
        Fail(__LINE__, "Attributes can be written only in start element state.");
    CheckPrefix(prefix);
    CheckLocalName(local, uri);
    SetAttribute(uri, Qualified(prefix, local), value);
}

void CXMLDOMWriter::WriteAttribute(unsigned short const* local, unsigned short const* uri,
                                   unsigned short const* value) {
    CheckState(__LINE__);
    if (!m_inStartElement)
        Fail(__LINE__, "Attributes can be written only in start element state.");
    CheckLocalName(local, uri);
    SetAttribute(uri, local, value);
}

void CXMLDOMWriter::WriteAttribute(unsigned short const* name, unsigned short const* value) {
    CheckState(__LINE__);
    if (!m_inStartElement)
        Fail(__LINE__, "Attributes can be written only in start element state.");
    if (IsEmpty(name))
        Fail(__LINE__, "Invalid local name.");
    SetAttribute(nullptr, name, value);
}

void CXMLDOMWriter::WriteAttrDefaultNamespaceDeclaration(unsigned short const*) {}

void CXMLDOMWriter::WriteAttrNamespaceDeclaration(unsigned short const* prefix,
                                                  unsigned short const* uri) {
    CheckState(__LINE__);
    if (!m_inStartElement)
        Fail(__LINE__, "Attributes can be written only in start element state.");
    CheckPrefix(prefix);
    if (uri == nullptr)
        Fail(__LINE__, "Invalid namespace URI.");
    base::CUnicodeString name;
    name += "xmlns:";
    name += prefix;
    base::CUnicodeString xmlns;
    xmlns += "http://www.w3.org/2000/xmlns/";
    SetAttribute(xmlns, name, uri);
}

void CXMLDOMWriter::WriteString(unsigned short const* text) {
    CheckState(__LINE__);
    if (!m_rootWritten)
        Fail(__LINE__, kNoDocumentElement);
    AppendText(text, __LINE__, "Failed to create DOM text node.");
}

void CXMLDOMWriter::WriteBase64(char const* data, unsigned long offset, unsigned long length) {
    CXMLWriter::WriteBase64(data, offset, length);
}

void CXMLDOMWriter::WriteBinHex(char const* data, unsigned long offset, unsigned long length) {
    CXMLWriter::WriteBinHex(data, offset, length);
}

void CXMLDOMWriter::Flush() {}

void CXMLDOMWriter::Close() {}

} // namespace io
} // namespace lumo
