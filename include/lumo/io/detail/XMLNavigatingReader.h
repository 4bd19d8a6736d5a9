// Internal: the navigation every XML reader shares (the current token, the token held
// back by a text read, the forward searches for elements and the joined text reads),
// built on each reader's own way of producing its next token. Public headers name it
// only as the readers' base.
#ifndef LUMO_IO_DETAIL_XMLNAVIGATINGREADER_H
#define LUMO_IO_DETAIL_XMLNAVIGATINGREADER_H

#include <lumo/base/Ref.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/XMLReader.h>

#include <cstddef>

namespace lumo {
namespace io {

struct CXMLTokenEvent;

namespace detail {

/// What tells the readers' failures apart: the unit their raise sites name, and the
/// messages in which they differ.
struct CXMLReaderFailures {
    char const* unit;
    /// When set, the current-token queries fail with it when there is no token.
    char const* noToken;
    /// The current-token queries' other failures; null keeps CXMLReader's own queries.
    char const* typeFailure;
    char const* valueFailure;
    /// Other failures of the named end-element searches and of the unnamed one.
    char const* namedEndFailure;
    char const* endFailure;
};

/// The part of an XML reader that only moves over tokens. A reader derived from it
/// supplies how its next token is made and marks itself closed in its Close; every
/// failure here names the reader's own unit and messages (CXMLReaderFailures).
/// A start- or end-element search reads tokens until one of that type and name is
/// current ("End of stream reached." when none comes); a text read joins adjacent
/// text and CDATA into one text token and holds back the token that ended it for the
/// next ReadToken. Bad search names are CXMLException "Invalid local name.", "Local
/// name must be unqualified name." and "Invalid namespace URI."; other failures of
/// a search or text read are logged and replaced by "Failed to read the specified
/// start element.", "Failed to read start element.", the table's end-element
/// messages and "Failed to read element text.".
class LUMO_API CXMLNavigatingReader : public CXMLReader {
public:
    ~CXMLNavigatingReader() override;

    /// The current token, made from a pending event first; null before the first
    /// read and at the end.
    base::CRef<IXMLToken> const& GetCurrentToken() const override;
    XMLTokenType GetCurrentTokenType() override;
    base::CUnicodeString GetCurrentTokenValue() override;
    /// The token held back by a text read if there is one, else the reader's next;
    /// false (and no current token) at the end. Closed: "Reader closed.".
    bool ReadToken() override;
    void ReadStartElement(unsigned short const* localName,
                          unsigned short const* namespaceURI) override;
    void ReadStartElement(unsigned short const* name) override;
    void ReadStartElement() override;
    void ReadEndElement(unsigned short const* localName,
                        unsigned short const* namespaceURI) override;
    void ReadEndElement(unsigned short const* name) override;
    void ReadEndElement() override;
    void ReadElementText(base::CUnicodeString& text) override;
    void ReadElementText() override;
    bool ReadElementTextIfAvailable() override;

protected:
    explicit CXMLNavigatingReader(CXMLReaderFailures const& failures)
        : m_failures(failures), m_event(nullptr), m_open(true) {}

    /// Makes the source's next token current (SetCurrent or SetPending) and answers
    /// true, or clears it and answers false at the end.
    virtual bool ProduceToken() = 0;
    /// Keeps the token that ended a text read for the next ReadToken; by default in
    /// the one-token look-ahead slot.
    virtual void HoldBack(base::CRef<IXMLToken> const& token);

    /// Makes `token` the current token; answers whether it is not null.
    bool SetCurrent(base::CRef<IXMLToken> const& token) {
        m_current = token;
        m_event = nullptr;
        return !m_current.IsNull();
    }
    bool SetCurrent(base::CRef<IXMLToken>&& token) {
        m_current = static_cast<base::CRef<IXMLToken>&&>(token);
        m_event = nullptr;
        return !m_current.IsNull();
    }
    /// Leaves no current token.
    void SetCurrent(std::nullptr_t) {
        m_current = nullptr;
        m_event = nullptr;
    }
    /// Makes `event` the current token without making a token object for it: the
    /// type and value are read from it until a token is asked for. The event must
    /// stay unchanged until the next SetCurrent, SetPending or MarkClosed.
    void SetPending(CXMLTokenEvent const& event) {
        m_current = nullptr;
        m_event = &event;
    }
    /// For Close: releases the current and the held-back token; later reads fail with
    /// "Reader closed.".
    void MarkClosed();

private:
    bool Advance();
    [[noreturn]] void ThrowClosed() const;
    bool TakeHeldBack();
    /// The current token, made from the pending event first.
    base::CRef<IXMLToken> const& Current() const {
        return m_event != nullptr ? MakePending() : m_current;
    }
    base::CRef<IXMLToken> const& MakePending() const;
    template <class Match> void Search(XMLTokenType type, Match const& matches);
    void JoinText();
    XMLTokenType CurrentType() const;
    base::CUnicodeString CurrentValue() const;
    [[noreturn]] void MapCaught(int line, char const* failure) const;
    XMLTokenType TypeWithoutToken();
    base::CUnicodeString ValueWithoutToken();

    CXMLReaderFailures const m_failures;
    mutable base::CRef<IXMLToken> m_current;
    /// The current token while it is still a pending event (m_current is then null).
    mutable CXMLTokenEvent const* m_event;
    base::CRef<IXMLToken> m_lookAhead;
    bool m_open;
};

} // namespace detail
} // namespace io
} // namespace lumo

#endif
