// The XML readers' shared navigation: reading on through the reader's own tokens to
// the searched element or text, joining text, and holding back the token that ends it.
#include <lumo/io/detail/XMLNavigatingReader.h>

#include <lumo/base/Exception.h>

#include "CaughtExceptionLog.h"
#include "XMLTextTokenizer.h"
#include "XMLTokenSearch.h"

#include <utility>

namespace lumo {
namespace io {
namespace detail {

using base::CRef;
using base::CUnicodeString;

namespace {

char const kEndOfStream[] = "End of stream reached.";
char const kStartFailure[] = "Failed to read the specified start element.";
char const kTextFailure[] = "Failed to read element text.";

} // namespace

CXMLNavigatingReader::~CXMLNavigatingReader() {}

void CXMLNavigatingReader::HoldBack(CRef<IXMLToken> const& token) {
    m_lookAhead = token;
}

void CXMLNavigatingReader::MarkClosed() {
    m_open = false;
    SetCurrent(nullptr);
    m_lookAhead = nullptr;
}

XMLTokenType CXMLNavigatingReader::CurrentType() const {
    return m_event != nullptr ? m_event->type : m_current->GetType();
}

CUnicodeString CXMLNavigatingReader::CurrentValue() const {
    return m_event != nullptr ? m_event->value : m_current->GetValue();
}

LUMO_NOINLINE CRef<IXMLToken> const& CXMLNavigatingReader::MakePending() const {
    m_current = m_event->MakeToken();
    m_event = nullptr;
    return m_current;
}

CRef<IXMLToken> const& CXMLNavigatingReader::GetCurrentToken() const {
    return Current();
}

// A pending event answers from its values, which cannot fail; a made token is asked
// directly, and only a failure reads the reader's table (so the common cases stay
// short); no token at all takes the slower way.
XMLTokenType CXMLNavigatingReader::GetCurrentTokenType() {
    if (m_event != nullptr)
        return m_event->type;
    if (m_failures.typeFailure != nullptr && !m_current.IsNull()) {
        try {
            return m_current->GetType();
        } catch (...) {
            MapCaught(__LINE__, m_failures.typeFailure);
        }
    }
    return TypeWithoutToken();
}

CUnicodeString CXMLNavigatingReader::GetCurrentTokenValue() {
    if (m_event != nullptr)
        return m_event->value;
    if (m_failures.valueFailure != nullptr && !m_current.IsNull()) {
        try {
            return m_current->GetValue();
        } catch (...) {
            MapCaught(__LINE__, m_failures.valueFailure);
        }
    }
    return ValueWithoutToken();
}

// Called from a handler: the exception in flight, mapped as every read maps it.
void CXMLNavigatingReader::MapCaught(int line, char const* failure) const {
    MapReadFailures(m_failures.unit, line, failure, [] { throw; });
    throw; // not reached: the mapping always throws
}

// Without a table entry the documented base's query answers; with one, the missing
// token is the table's failure.
XMLTokenType CXMLNavigatingReader::TypeWithoutToken() {
    if (m_failures.typeFailure == nullptr)
        return CXMLReader::GetCurrentTokenType();
    if (m_failures.noToken != nullptr)
        throw CIOException(m_failures.unit, __LINE__, m_failures.noToken, nullptr);
    return MapReadFailures(m_failures.unit, __LINE__, m_failures.typeFailure,
                           [&] { return m_current->GetType(); });
}

CUnicodeString CXMLNavigatingReader::ValueWithoutToken() {
    if (m_failures.valueFailure == nullptr)
        return CXMLReader::GetCurrentTokenValue();
    if (m_failures.noToken != nullptr)
        throw CIOException(m_failures.unit, __LINE__, m_failures.noToken, nullptr);
    return MapReadFailures(m_failures.unit, __LINE__, m_failures.valueFailure,
                           [&] { return m_current->GetValue(); });
}

LUMO_NOINLINE void CXMLNavigatingReader::ThrowClosed() const {
    throw CIOException(m_failures.unit, __LINE__, "Reader closed.", nullptr);
}

LUMO_NOINLINE bool CXMLNavigatingReader::TakeHeldBack() {
    SetCurrent(std::move(m_lookAhead));
    return true;
}

// The searches and text reads move through here rather than the overridable ReadToken;
// the rare ways are calls of their own, so the common one needs no stack frame.
inline bool CXMLNavigatingReader::Advance() {
    if (!m_open)
        ThrowClosed();
    if (!m_lookAhead.IsNull())
        return TakeHeldBack();
    return ProduceToken();
}

bool CXMLNavigatingReader::ReadToken() {
    return Advance();
}

template <class Match> void CXMLNavigatingReader::Search(XMLTokenType type, Match const& matches) {
    while (Advance()) {
        if (CurrentType() == type && matches(*Current()))
            return;
    }
    throw CIOException(m_failures.unit, __LINE__, kEndOfStream, nullptr);
}

void CXMLNavigatingReader::ReadStartElement(unsigned short const* localName,
                                            unsigned short const* namespaceURI) {
    CheckSearchLocalName(m_failures.unit, __LINE__, localName, namespaceURI);
    MapReadFailures(m_failures.unit, __LINE__, kStartFailure, [&] {
        Search(XMLTokenStartElement, ByLocalName{localName, namespaceURI});
    });
}

void CXMLNavigatingReader::ReadStartElement(unsigned short const* name) {
    CheckSearchName(m_failures.unit, __LINE__, name);
    MapReadFailures(m_failures.unit, __LINE__, kStartFailure,
                    [&] { Search(XMLTokenStartElement, ByQualifiedName{name}); });
}

void CXMLNavigatingReader::ReadStartElement() {
    MapReadFailures(m_failures.unit, __LINE__, "Failed to read start element.",
                    [&] { Search(XMLTokenStartElement, AnyName()); });
}

void CXMLNavigatingReader::ReadEndElement(unsigned short const* localName,
                                          unsigned short const* namespaceURI) {
    CheckSearchLocalName(m_failures.unit, __LINE__, localName, namespaceURI);
    MapReadFailures(m_failures.unit, __LINE__, m_failures.namedEndFailure, [&] {
        Search(XMLTokenEndElement, ByLocalName{localName, namespaceURI});
    });
}

void CXMLNavigatingReader::ReadEndElement(unsigned short const* name) {
    CheckSearchName(m_failures.unit, __LINE__, name);
    MapReadFailures(m_failures.unit, __LINE__, m_failures.namedEndFailure,
                    [&] { Search(XMLTokenEndElement, ByQualifiedName{name}); });
}

void CXMLNavigatingReader::ReadEndElement() {
    MapReadFailures(m_failures.unit, __LINE__, m_failures.endFailure,
                    [&] { Search(XMLTokenEndElement, AnyName()); });
}

// Makes the current text token the whole text that starts with it. A lone text token
// already is that text and stays as it is.
void CXMLNavigatingReader::JoinText() {
    CRef<IXMLToken> const first = Current();
    CUnicodeString text = first->GetValue();
    bool joined = false;
    while (Advance()) {
        if (!IsTextToken(CurrentType())) {
            HoldBack(Current());
            break;
        }
        text += CurrentValue();
        joined = true;
    }
    if (!joined && first->GetType() == XMLTokenText)
        SetCurrent(first);
    else
        SetCurrent(CRef<IXMLToken>(new CXMLTextToken(text)));
}

void CXMLNavigatingReader::ReadElementText(CUnicodeString& text) {
    ReadElementText();
    text = m_current->GetValue();
}

void CXMLNavigatingReader::ReadElementText() {
    MapReadFailures(m_failures.unit, __LINE__, kTextFailure, [&] {
        do {
            if (!Advance())
                throw CIOException(m_failures.unit, __LINE__, kEndOfStream, nullptr);
        } while (!IsTextToken(CurrentType()));
        JoinText();
    });
}

bool CXMLNavigatingReader::ReadElementTextIfAvailable() {
    return MapReadFailures(m_failures.unit, __LINE__, kTextFailure, [&] {
        CRef<IXMLToken> const previous = Current();
        if (!Advance()) {
            SetCurrent(previous);
            return false;
        }
        if (!IsTextToken(CurrentType())) {
            // Nothing consumed: the token waits for the next read.
            HoldBack(Current());
            SetCurrent(previous);
            return false;
        }
        JoinText();
        return true;
    });
}

} // namespace detail
} // namespace io
} // namespace lumo
