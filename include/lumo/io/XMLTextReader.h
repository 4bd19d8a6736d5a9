#ifndef LUMO_IO_XMLTEXTREADER_H
#define LUMO_IO_XMLTEXTREADER_H

#include <lumo/base/Ref.h>
#include <lumo/io/InputStream.h>
#include <lumo/io/XMLReader.h>

#include <memory>

namespace IO {
class Location;
}

namespace lumo {
namespace io {

class CXMLTextTokenizer;

/// The pull reader over XML text: the parser scans the document one step at a time
/// as tokens are asked for, so the document is never held whole. Nothing outside the
/// document is ever read (external DTDs and entities are answered empty). Malformed
/// text raises CXMLException with the parser's message at the token where the fault
/// lies; the tokens before it are delivered normally.
///
/// Failures are CIOException from unit "lumo/io/XMLTextReader" unless stated.
class LUMO_API CXMLTextReader : public CXMLReader {
    LUMO_DECLARE_CLASS(CXMLTextReader);

public:
    /// Reads the shared stream (the parser detects the encoding from its bytes). A
    /// null stream: "Invalid input stream."; a scanner that cannot be built or started:
    /// "Failed to create XML text tokenizer."; a malformed prolog: CXMLException.
    explicit CXMLTextReader(base::CRef<CInputStream> const& stream);
    /// Reads the stream, which the reader takes over (and deletes, also when the
    /// constructor fails). Failures as above.
    explicit CXMLTextReader(CInputStream* stream);
    /// Reads the file. An empty or illegal location: "Invalid xml file location.";
    /// access refused: "Access denied."; another open error: "An error occured while
    /// trying to open file."; no file object: "Failed to create file for reading the
    /// specified xml file."; then as above.
    explicit CXMLTextReader(IO::Location const& location);
    /// Releases the document without closing a shared stream.
    ~CXMLTextReader() override;

    base::CRef<IXMLToken> const& GetCurrentToken() const override;
    XMLTokenType GetCurrentTokenType() override;
    base::CUnicodeString GetCurrentTokenValue() override;
    /// The token kept back by a text read if there is one, else the next of the
    /// document; false (and no current token) at the end. After Close: "Reader closed.".
    bool ReadToken() override;
    /// Reads tokens until a start element of that local name and namespace URI is
    /// current; every other token is skipped. A null or empty local name: CXMLException
    /// "Invalid local name."; one containing ':': "Local name must be unqualified
    /// name."; a null URI: "Invalid namespace URI.". The end of the document on the
    /// way: "End of stream reached."; another failure: "Failed to read the specified
    /// start element.".
    void ReadStartElement(unsigned short const* localName,
                          unsigned short const* namespaceURI) override;
    /// As above by exact qualified name (null or empty: "Invalid local name.").
    void ReadStartElement(unsigned short const* name) override;
    /// Reads tokens until any start element is current ("End of stream reached.",
    /// "Failed to read start element.").
    void ReadStartElement() override;
    bool HasAttribute(unsigned short const* localName, unsigned short const* namespaceURI) override;
    bool HasAttribute(unsigned short const* name) override;
    base::CUnicodeString ReadAttribute(unsigned short const* localName,
                                       unsigned short const* namespaceURI) override;
    base::CUnicodeString ReadAttribute(unsigned short const* name) override;
    /// The end-element searches, with the arguments and failures of the start-element
    /// ones ("Failed to read the end element." for other failures).
    void ReadEndElement(unsigned short const* localName,
                        unsigned short const* namespaceURI) override;
    void ReadEndElement(unsigned short const* name) override;
    void ReadEndElement() override;
    /// Skips to the next text or CDATA token and joins the text and CDATA tokens that
    /// follow it into one text token, which becomes current; the first other token
    /// is kept for the next ReadToken. "End of stream reached." when no text comes;
    /// "Failed to read element text." on another failure.
    void ReadElementText(base::CUnicodeString& text) override;
    void ReadElementText() override;
    /// Joins text as ReadElementText when the very next token is text or CDATA;
    /// otherwise keeps that token for the next ReadToken and returns false.
    bool ReadElementTextIfAvailable() override;
    /// Releases the parser, the input and the tokens held, and closes the stream it
    /// was given; later reads throw "Reader closed.". Closing again does nothing.
    void Close() override;

private:
    void CheckOpen(int line) const;
    /// Reads until the current token is of `type` and `matches` accepts it.
    template <class Match> void Search(XMLTokenType type, Match&& matches);
    void JoinText();
    /// The current token, made from the tokenizer's event when not made yet.
    base::CRef<IXMLToken> const& Current() const;
    /// The current token's type and value, read without making it; a token must be
    /// current.
    XMLTokenType CurrentType() const;
    base::CUnicodeString CurrentValue() const;

    std::unique_ptr<CXMLTextTokenizer> m_tokenizer;
    /// The current token, made on first request: while m_unmade is true the current
    /// token is the tokenizer's current event, and m_current is empty.
    mutable base::CRef<IXMLToken> m_current;
    mutable bool m_unmade = false;
    base::CRef<IXMLToken> m_lookAhead;
    base::CRef<CInputStream> m_stream;
};

} // namespace io
} // namespace lumo

#endif
