// CXMLPushbackReader: an XML reader over another reader that can take tokens back,
// including whole small elements built from a name and a typed value.
#ifndef LUMO_IO_XMLPUSHBACKREADER_H
#define LUMO_IO_XMLPUSHBACKREADER_H

#include <lumo/base/Ref.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/detail/XMLNavigatingReader.h>

#include <memory>

namespace lumo {
namespace io {

/// An XML reader that wraps another one and lets its user push tokens back: tokens
/// pushed back are delivered again before the wrapped reader is asked for more. The
/// pushback buffer is a stack of fixed capacity, so tokens come back in the reverse
/// order of pushing (push A then B, read B then A).
///
/// The typed UnreadElement... forms push a whole element (end tag, text, start tag,
/// in that order) so that it reads back as start tag, text, end tag: exactly what the
/// matching ReadElement... consumes. They need three free slots; the tokens are pushed
/// one at a time, and when the buffer fills on the way the ones already pushed stay.
///
/// The navigation and text reads are the text reader's (detail::CXMLNavigatingReader),
/// over the pushed-back tokens first and then the wrapped reader's (its ReadToken only:
/// a text read of this reader joins text tokens itself); the token that ends a text
/// read is pushed back. ReadToken gives the last token pushed back if there is one,
/// else the wrapped reader's next token and its result. Failures are CIOException from
/// unit "lumo/io/XMLPushbackReader" unless stated; a read or push after Close: "Reader
/// closed."; no current token for GetCurrentTokenType or GetCurrentTokenValue: "Failed
/// to get the token type of the current XML token." and "Failed to get the value of
/// the current XML token.".
class LUMO_API CXMLPushbackReader : public detail::CXMLNavigatingReader {
    LUMO_DECLARE_CLASS(CXMLPushbackReader);

public:
    /// Shares `reader`; `size` is the buffer's capacity in tokens. A null reader:
    /// CIllegalArgumentException "Invalid XML reader."; size 0: CIllegalArgumentException
    /// "Invalid pushback buffer size."; no memory for the buffer: CMemoryException.
    CXMLPushbackReader(base::CRef<CXMLReader> const& reader, unsigned long size);
    /// Borrows `reader` (it is never deleted here; Close still closes it); failures as
    /// above.
    CXMLPushbackReader(CXMLReader* reader, unsigned long size);
    /// Releases the buffer and the wrapped reader without closing it.
    ~CXMLPushbackReader() override;

    /// Closes the wrapped reader, then releases it, the buffered tokens and the current
    /// token; this reader is closed even when closing the wrapped one throws (that
    /// exception passes on). Closing again does nothing.
    void Close() override;

    /// Pushes the current token back. No current token: "There is no valid token.";
    /// a full buffer: "Pushback buffer is full.".
    void UnreadToken();
    /// Pushes `token` back; a null token: "There is no valid token."; a full buffer:
    /// "Pushback buffer is full.".
    void UnreadToken(base::CRef<IXMLToken> const& token);
    /// Pushes back a new start-element token without attributes, named by qualified
    /// name (null or empty: CXMLException "Invalid local name.") or by local name and
    /// namespace URI (the qualified name is then the local name; the checks of
    /// ReadStartElement(local, uri)). A full buffer: "Pushback buffer is full.".
    ///@{
    void UnreadStartElement(unsigned short const* name);
    void UnreadStartElement(unsigned short const* localName, unsigned short const* namespaceURI);
    ///@}
    /// As UnreadStartElement, for an end-element token.
    ///@{
    void UnreadEndElement(unsigned short const* name);
    void UnreadEndElement(unsigned short const* localName, unsigned short const* namespaceURI);
    ///@}
    /// Pushes back a text token (type 3). Null or empty text: CXMLException "Invalid
    /// element text." (an empty element cannot be pushed back through it).
    void UnreadElementText(unsigned short const* text);

    /// Push back the whole element `<name>value</name>`: bool as "true" or "false",
    /// short "%hd", long "%ld", float "%g", double "%lg", a string as it is (null or
    /// empty: CXMLException "Invalid element text.", checked after the names). Names
    /// are checked as for UnreadStartElement, then that the reader is open. Three
    /// free slots are needed (see the class comment).
    ///@{
    void UnreadElementBool(unsigned short const* name, bool value);
    void UnreadElementBool(unsigned short const* localName, unsigned short const* namespaceURI,
                           bool value);
    void UnreadElementShort(unsigned short const* name, short value);
    void UnreadElementShort(unsigned short const* localName, unsigned short const* namespaceURI,
                            short value);
    void UnreadElementLong(unsigned short const* name, long value);
    void UnreadElementLong(unsigned short const* localName, unsigned short const* namespaceURI,
                           long value);
    void UnreadElementFloat(unsigned short const* name, float value);
    void UnreadElementFloat(unsigned short const* localName, unsigned short const* namespaceURI,
                            float value);
    void UnreadElementDouble(unsigned short const* name, double value);
    void UnreadElementDouble(unsigned short const* localName, unsigned short const* namespaceURI,
                             double value);
    void UnreadElementString(unsigned short const* name, unsigned short const* value);
    void UnreadElementString(unsigned short const* localName, unsigned short const* namespaceURI,
                             unsigned short const* value);
    ///@}

private:
    struct CElementName;

    void Init(unsigned long size);
    void CheckOpen(int line) const;
    bool ProduceToken() override;
    /// The token that ends a text read goes back on the stack.
    void HoldBack(base::CRef<IXMLToken> const& token) override;
    void Push(base::CRef<IXMLToken> const& token);
    void UnreadTag(CElementName const& element, bool start);
    void UnreadElement(CElementName const& name, base::CUnicodeString const& text);

    base::CRef<CXMLReader> m_reader;
    /// Slots [m_position, m_capacity) hold the tokens pushed back, the last pushed at
    /// m_position.
    std::unique_ptr<base::CRef<IXMLToken>[]> m_buffer;
    unsigned long m_capacity;
    unsigned long m_position;
};

} // namespace io
} // namespace lumo

#endif
