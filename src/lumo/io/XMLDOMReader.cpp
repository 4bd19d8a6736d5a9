// The XML DOM reader: hands out the DOM tokenizer's tokens one at a time, with a
// one-token look-ahead for the text reads, and searches forward for elements the way
// the text reader does.
#include <lumo/io/XMLDOMReader.h>

#include <lumo/base/Exception.h>
#include <lumo/io/XMLDOMToken.h>

#include "detail/CaughtExceptionLog.h"
#include "detail/XMLDOMTokenizer.h"
#include "detail/XMLTokenSearch.h"

#include <utility>

namespace lumo {
namespace io {

using base::CRef;
using base::CUnicodeString;

namespace {

char const kUnit[] = "lumo/io/XMLDOMReader";
char const kEndOfStream[] = "End of stream reached.";
char const kNoToken[] = "There is no valid token.";

template <class F> auto Guard(int line, char const* failure, F&& body) -> decltype(body()) {
    return detail::MapReadFailures(kUnit, line, failure, static_cast<F&&>(body));
}

using detail::AnyName;
using detail::ByLocalName;
using detail::ByQualifiedName;

DOM_Document const& CheckDocument(DOM_Document const& document) {
    if (document.IsNull())
        throw CIOException(kUnit, __LINE__, "Invalid DOM document.", nullptr);
    return document;
}

} // namespace

LUMO_DEFINE_CLASS(CXMLDOMReader, "lumo::io::CXMLDOMReader", "lumo::io::CXMLReader");

CXMLDOMReader::CXMLDOMReader(DOM_Document const& document)
    : m_tokenizer(new CXMLDOMTokenizer(CheckDocument(document))) {}

CXMLDOMReader::~CXMLDOMReader() {}

void CXMLDOMReader::CheckOpen(int line) const {
    if (m_tokenizer == nullptr)
        throw CIOException(kUnit, static_cast<unsigned long>(line), "Reader closed.", nullptr);
}

CRef<IXMLToken> const& CXMLDOMReader::GetCurrentToken() const {
    return m_current;
}

XMLTokenType CXMLDOMReader::GetCurrentTokenType() {
    if (m_current.IsNull())
        throw CIOException(kUnit, __LINE__, kNoToken, nullptr);
    return Guard(__LINE__, "Failed to get the token type of current XML token.",
                 [&] { return m_current->GetType(); });
}

CUnicodeString CXMLDOMReader::GetCurrentTokenValue() {
    if (m_current.IsNull())
        throw CIOException(kUnit, __LINE__, kNoToken, nullptr);
    return Guard(__LINE__, "Failed to get the value of current XML token.",
                 [&] { return m_current->GetValue(); });
}

bool CXMLDOMReader::ReadToken() {
    CheckOpen(__LINE__);
    if (!m_lookAhead.IsNull()) {
        m_current = std::move(m_lookAhead);
        return true;
    }
    m_current = m_tokenizer->GetNextToken();
    return !m_current.IsNull();
}

template <class Match> void CXMLDOMReader::Search(XMLTokenType type, Match&& matches) {
    while (ReadToken()) {
        IXMLToken const& token = *m_current;
        if (token.GetType() == type && matches(token))
            return;
    }
    throw CIOException(kUnit, __LINE__, kEndOfStream, nullptr);
}

void CXMLDOMReader::ReadStartElement(unsigned short const* localName,
                                     unsigned short const* namespaceURI) {
    detail::CheckSearchLocalName(kUnit, __LINE__, localName, namespaceURI);
    Guard(__LINE__, "Failed to read the specified start element.", [&] {
        Search(XMLTokenStartElement, ByLocalName{localName, namespaceURI});
    });
}

void CXMLDOMReader::ReadStartElement(unsigned short const* name) {
    detail::CheckSearchName(kUnit, __LINE__, name);
    Guard(__LINE__, "Failed to read the specified start element.",
          [&] { Search(XMLTokenStartElement, ByQualifiedName{name}); });
}

void CXMLDOMReader::ReadStartElement() {
    Guard(__LINE__, "Failed to read start element.",
          [&] { Search(XMLTokenStartElement, AnyName()); });
}

IXMLStartElementToken const& CXMLDOMReader::CurrentStartElement(int line) const {
    IXMLToken const* token = m_current.Get();
    IXMLStartElementToken const* start =
        token != nullptr && token->GetType() == XMLTokenStartElement
            ? dynamic_cast<IXMLStartElementToken const*>(token)
            : nullptr;
    if (start == nullptr)
        throw CIOException(kUnit, static_cast<unsigned long>(line),
                           "Attributes available only in start element nodes.", nullptr);
    return *start;
}

bool CXMLDOMReader::HasAttribute(unsigned short const* localName,
                                 unsigned short const* namespaceURI) {
    return CurrentStartElement(__LINE__).HasAttribute(localName, namespaceURI);
}

bool CXMLDOMReader::HasAttribute(unsigned short const* name) {
    return CurrentStartElement(__LINE__).HasAttribute(name);
}

CUnicodeString CXMLDOMReader::ReadAttribute(unsigned short const* localName,
                                            unsigned short const* namespaceURI) {
    return CurrentStartElement(__LINE__).GetAttribute(localName, namespaceURI);
}

CUnicodeString CXMLDOMReader::ReadAttribute(unsigned short const* name) {
    return CurrentStartElement(__LINE__).GetAttribute(name);
}

void CXMLDOMReader::ReadEndElement(unsigned short const* localName,
                                   unsigned short const* namespaceURI) {
    detail::CheckSearchLocalName(kUnit, __LINE__, localName, namespaceURI);
    Guard(__LINE__, "Failed to read the specified end element.", [&] {
        Search(XMLTokenEndElement, ByLocalName{localName, namespaceURI});
    });
}

void CXMLDOMReader::ReadEndElement(unsigned short const* name) {
    detail::CheckSearchName(kUnit, __LINE__, name);
    Guard(__LINE__, "Failed to read the specified end element.",
          [&] { Search(XMLTokenEndElement, ByQualifiedName{name}); });
}

void CXMLDOMReader::ReadEndElement() {
    Guard(__LINE__, "Failed to read end element.", [&] { Search(XMLTokenEndElement, AnyName()); });
}

void CXMLDOMReader::JoinText() {
    detail::JoinText(
        m_current, [&] { return ReadToken(); },
        [&](CRef<IXMLToken> const& token) { m_lookAhead = token; });
}

void CXMLDOMReader::ReadElementText(CUnicodeString& text) {
    ReadElementText();
    text = m_current->GetValue();
}

void CXMLDOMReader::ReadElementText() {
    Guard(__LINE__, "Failed to read element text.", [&] {
        do {
            if (!ReadToken())
                throw CIOException(kUnit, __LINE__, kEndOfStream, nullptr);
        } while (!detail::IsTextToken(m_current->GetType()));
        JoinText();
    });
}

bool CXMLDOMReader::ReadElementTextIfAvailable() {
    return Guard(__LINE__, "Failed to read element text.", [&] {
        CRef<IXMLToken> const previous = m_current;
        if (!ReadToken()) {
            m_current = previous;
            return false;
        }
        if (!detail::IsTextToken(m_current->GetType())) {
            // Nothing consumed: the token waits for the next read.
            m_lookAhead = m_current;
            m_current = previous;
            return false;
        }
        JoinText();
        return true;
    });
}

void CXMLDOMReader::Close() {
    m_tokenizer.reset();
    m_current = nullptr;
    m_lookAhead = nullptr;
}

} // namespace io
} // namespace lumo
