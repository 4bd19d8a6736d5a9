// The pull reader over a parsed document tree: the same token sequence as the text
// reader gives for the equivalent text, so one reading routine serves both.
#ifndef LUMO_IO_XMLDOMREADER_H
#define LUMO_IO_XMLDOMREADER_H

#include <lumo/base/Ref.h>
#include <lumo/io/DOM_Document.h>
#include <lumo/io/detail/XMLNavigatingReader.h>

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
/// the read's own failure, exactly as the text reader does. The navigation is the text
/// reader's (detail::CXMLNavigatingReader), with these messages of its own: no current
/// token for GetCurrentTokenType or GetCurrentTokenValue: "There is no valid token.",
/// their other failures "Failed to get the token type of current XML token." and
/// "Failed to get the value of current XML token."; other failures of the end-element
/// searches: "Failed to read the specified end element." (named forms) and "Failed to
/// read end element." (any name).
class LUMO_API CXMLDOMReader : public detail::CXMLNavigatingReader {
    LUMO_DECLARE_CLASS(CXMLDOMReader);

public:
    /// Reads `document`, sharing it. A null document: "Invalid DOM document.".
    explicit CXMLDOMReader(DOM_Document const& document);
    ~CXMLDOMReader() override;

    /// The current start element's attribute; not a start element (or no token):
    /// "Attributes available only in start element nodes."; the token's CXMLException
    /// ("No such attibute.", "Invalid qualidied name.") passes unchanged.
    ///@{
    bool HasAttribute(unsigned short const* localName, unsigned short const* namespaceURI) override;
    bool HasAttribute(unsigned short const* name) override;
    base::CUnicodeString ReadAttribute(unsigned short const* localName,
                                       unsigned short const* namespaceURI) override;
    base::CUnicodeString ReadAttribute(unsigned short const* name) override;
    ///@}
    /// Drops the walk and the tokens held (tokens handed out stay valid); later reads
    /// throw "Reader closed.". Closing again does nothing.
    void Close() override;

private:
    bool ProduceToken() override;

    std::unique_ptr<CXMLDOMTokenizer> m_tokenizer;
};

} // namespace io
} // namespace lumo

#endif
