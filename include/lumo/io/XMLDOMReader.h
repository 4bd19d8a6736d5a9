// The pull reader over a parsed document tree: the same token sequence as the text
// reader gives for the equivalent text, so one reading routine serves both.
#ifndef LUMO_IO_XMLDOMREADER_H
#define LUMO_IO_XMLDOMREADER_H

#include <lumo/base/Ref.h>
#include <lumo/io/DOM_Document.h>
#include <lumo/io/XMLReader.h>

#include <memory>

namespace lumo {
namespace io {

class CXMLDOMTokenizer;

/// The CXMLReader over a DOM document. The walk starts at the document element:
/// comments and processing instructions outside it give no token (the text reader
/// delivers them). An entity reference node reads as a text token. The tokens read
/// their node on each call and keep the document alive, so a token kept after the
/// reader is closed or gone still reads correctly. The document must not be changed
/// while it is being read.
///
/// Failures are CIOException from unit "lumo/io/XMLDOMReader" unless stated; a
/// lower-level exception inside a read is printed to the debug output and replaced by
/// the read's own failure, exactly as the text reader does.
class LUMO_API CXMLDOMReader : public CXMLReader {
    LUMO_DECLARE_CLASS(CXMLDOMReader);

public:
    /// Reads `document`, sharing it. A null document: "Invalid DOM document.".
    explicit CXMLDOMReader(DOM_Document const& document);
    ~CXMLDOMReader() override;

    base::CRef<IXMLToken> const& GetCurrentToken() const override;
    /// The current token's type; no current token: "There is no valid token."; any
    /// other failure: "Failed to get the token type of current XML token.".
    XMLTokenType GetCurrentTokenType() override;
    /// The current token's value; no current token: "There is no valid token."; any
    /// other failure: "Failed to get the value of current XML token.".
    base::CUnicodeString GetCurrentTokenValue() override;
    /// The token kept back by a text read if there is one, else the next of the walk;
    /// false (and no current token) at the end. After Close: "Reader closed.".
    bool ReadToken() override;
    /// Reads tokens until a start element of that local name and namespace URI is
    /// current. A null or empty local name: CXMLException "Invalid local name."; one
    /// containing ':': CXMLException "Local name must be unqualified name."; a null
    /// URI: CXMLException "Invalid namespace URI."; the end of the document on the way:
    /// "End of stream reached."; another failure: "Failed to read the specified start
    /// element.".
    void ReadStartElement(unsigned short const* localName,
                          unsigned short const* namespaceURI) override;
    /// As above by exact qualified name (null or empty: "Invalid local name.").
    void ReadStartElement(unsigned short const* name) override;
    /// Reads tokens until any start element is current ("End of stream reached.",
    /// "Failed to read start element.").
    void ReadStartElement() override;
    /// The current start element's attribute; not a start element (or no token):
    /// "Attributes available only in start element nodes."; the token's CXMLException
    /// ("No such attibute.", "Invalid qualidied name.") passes unchanged.
    bool HasAttribute(unsigned short const* localName, unsigned short const* namespaceURI) override;
    bool HasAttribute(unsigned short const* name) override;
    base::CUnicodeString ReadAttribute(unsigned short const* localName,
                                       unsigned short const* namespaceURI) override;
    base::CUnicodeString ReadAttribute(unsigned short const* name) override;
    /// The end-element searches, with the arguments of the start-element ones; other
    /// failures: "Failed to read the specified end element." (named forms) and "Failed
    /// to read end element." (any name).
    void ReadEndElement(unsigned short const* localName,
                        unsigned short const* namespaceURI) override;
    void ReadEndElement(unsigned short const* name) override;
    void ReadEndElement() override;
    /// Skips to the next text or CDATA token and, as the text reader does, joins the
    /// text and CDATA tokens that follow it into one text token, which becomes current
    /// (a lone text token stays the node's own token); the first other token is kept
    /// for the next ReadToken. "End of stream reached." when no text comes; "Failed to
    /// read element text." on another failure.
    void ReadElementText(base::CUnicodeString& text) override;
    void ReadElementText() override;
    /// Joins text as ReadElementText when the very next token is text or CDATA;
    /// otherwise keeps that token for the next ReadToken and returns false.
    bool ReadElementTextIfAvailable() override;
    /// Drops the walk and the tokens held (tokens handed out stay valid); later reads
    /// throw "Reader closed.". Closing again does nothing.
    void Close() override;

private:
    void CheckOpen(int line) const;
    IXMLStartElementToken const& CurrentStartElement(int line) const;
    template <class Match> void Search(XMLTokenType type, Match&& matches);
    void JoinText();

    std::unique_ptr<CXMLDOMTokenizer> m_tokenizer;
    base::CRef<IXMLToken> m_current;
    base::CRef<IXMLToken> m_lookAhead;
};

} // namespace io
} // namespace lumo

#endif
