// The XML text reader: hands out the tokenizer's tokens one at a time, with a
// one-token look-ahead for the text reads, and searches forward for elements.
#include <lumo/io/XMLTextReader.h>

#include <lumo/base/Exception.h>
#include <vela/File.h>
#include <vela/Location.h>

#include "../../vela/detail/XMLChannelInputSource.h"
#include "detail/CaughtExceptionLog.h"
#include "detail/XMLTextTokenizer.h"
#include "detail/XMLTokenSearch.h"

#include <new>
#include <utility>

namespace lumo {
namespace io {

using base::CRef;
using base::CUnicodeString;

namespace {

char const kUnit[] = "lumo/io/XMLTextReader";
char const kEndOfStream[] = "End of stream reached.";

template <class F> auto Guard(int line, char const* failure, F&& body) -> decltype(body()) {
    return detail::MapReadFailures(kUnit, line, failure, static_cast<F&&>(body));
}

using detail::AnyName;
using detail::ByLocalName;
using detail::ByQualifiedName;

CRef<CInputStream> TakeOver(CInputStream* stream) {
    if (stream == nullptr)
        throw CIOException(kUnit, __LINE__, "Invalid input stream.", nullptr);
    return CRef<CInputStream>(stream);
}

// Opens the file and wraps it in a channel source that owns it.
xercesc::InputSource* OpenSource(IO::Location const& location) {
    if (location.IsEmpty() || !location.IsLegal())
        throw CIOException(kUnit, __LINE__, "Invalid xml file location.", nullptr);
    std::unique_ptr<IO::File> file(new (std::nothrow) IO::File(location, IO::File::NOT_FOUND_FAIL));
    if (file == nullptr || file->GetStatus() != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__,
                           "Failed to create file for reading the specified xml file.", nullptr);
    IO::Result const result = file->Open(IO::File::MODE_READ);
    if (result == IO::RESULT_ACCESS_DENIED)
        throw CIOException(kUnit, __LINE__, "Access denied.", nullptr);
    if (result != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__, "An error occured while trying to open file.", nullptr);
    try {
        xercesc::InputSource* source = new VelaXML::IChannelInputSource(file.get(), true);
        file.release();
        return source;
    } catch (...) {
        throw CIOException(kUnit, __LINE__, "Failed to create XML text tokenizer.", nullptr);
    }
}

} // namespace

LUMO_DEFINE_CLASS(CXMLTextReader, "lumo::io::CXMLTextReader", "lumo::io::CXMLReader");

CXMLTextReader::CXMLTextReader(CRef<CInputStream> const& stream) : m_stream(stream) {
    if (stream.IsNull())
        throw CIOException(kUnit, __LINE__, "Invalid input stream.", nullptr);
    m_tokenizer.reset(new CXMLTextTokenizer(stream));
}

CXMLTextReader::CXMLTextReader(CInputStream* stream) : CXMLTextReader(TakeOver(stream)) {}

CXMLTextReader::CXMLTextReader(IO::Location const& location) {
    m_tokenizer.reset(new CXMLTextTokenizer(OpenSource(location)));
}

CXMLTextReader::~CXMLTextReader() {}

void CXMLTextReader::CheckOpen(int line) const {
    if (m_tokenizer == nullptr)
        throw CIOException(kUnit, static_cast<unsigned long>(line), "Reader closed.", nullptr);
}

CRef<IXMLToken> const& CXMLTextReader::Current() const {
    if (m_unmade) {
        m_current = m_tokenizer->Current().MakeToken();
        m_unmade = false;
    }
    return m_current;
}

XMLTokenType CXMLTextReader::CurrentType() const {
    return m_unmade ? m_tokenizer->Current().type : m_current->GetType();
}

CUnicodeString CXMLTextReader::CurrentValue() const {
    return m_unmade ? m_tokenizer->Current().value : m_current->GetValue();
}

CRef<IXMLToken> const& CXMLTextReader::GetCurrentToken() const {
    return Current();
}

// An event not yet made into a token answers from the tokenizer's values, which
// cannot fail; a made token (or none) takes the base class's guarded way.
XMLTokenType CXMLTextReader::GetCurrentTokenType() {
    if (m_unmade)
        return m_tokenizer->Current().type;
    return CXMLReader::GetCurrentTokenType();
}

CUnicodeString CXMLTextReader::GetCurrentTokenValue() {
    if (m_unmade)
        return m_tokenizer->Current().value;
    return CXMLReader::GetCurrentTokenValue();
}

bool CXMLTextReader::ReadToken() {
    CheckOpen(__LINE__);
    if (!m_lookAhead.IsNull()) {
        m_current = std::move(m_lookAhead);
        m_unmade = false;
        return true;
    }
    // A failure leaves the current token (and the tokenizer's current event) as it was.
    bool const more = m_tokenizer->Advance();
    m_current = nullptr;
    m_unmade = more;
    return more;
}

template <class Match> void CXMLTextReader::Search(XMLTokenType type, Match&& matches) {
    while (ReadToken()) {
        if (CurrentType() == type && matches(*Current()))
            return;
    }
    throw CIOException(kUnit, __LINE__, kEndOfStream, nullptr);
}

void CXMLTextReader::ReadStartElement(unsigned short const* localName,
                                      unsigned short const* namespaceURI) {
    detail::CheckSearchLocalName(kUnit, __LINE__, localName, namespaceURI);
    Guard(__LINE__, "Failed to read the specified start element.", [&] {
        Search(XMLTokenStartElement, ByLocalName{localName, namespaceURI});
    });
}

void CXMLTextReader::ReadStartElement(unsigned short const* name) {
    detail::CheckSearchName(kUnit, __LINE__, name);
    Guard(__LINE__, "Failed to read the specified start element.",
          [&] { Search(XMLTokenStartElement, ByQualifiedName{name}); });
}

void CXMLTextReader::ReadStartElement() {
    Guard(__LINE__, "Failed to read start element.",
          [&] { Search(XMLTokenStartElement, AnyName()); });
}

bool CXMLTextReader::HasAttribute(unsigned short const* localName,
                                  unsigned short const* namespaceURI) {
    return CXMLReader::HasAttribute(localName, namespaceURI);
}

bool CXMLTextReader::HasAttribute(unsigned short const* name) {
    return CXMLReader::HasAttribute(name);
}

CUnicodeString CXMLTextReader::ReadAttribute(unsigned short const* localName,
                                             unsigned short const* namespaceURI) {
    return CXMLReader::ReadAttribute(localName, namespaceURI);
}

CUnicodeString CXMLTextReader::ReadAttribute(unsigned short const* name) {
    return CXMLReader::ReadAttribute(name);
}

void CXMLTextReader::ReadEndElement(unsigned short const* localName,
                                    unsigned short const* namespaceURI) {
    detail::CheckSearchLocalName(kUnit, __LINE__, localName, namespaceURI);
    Guard(__LINE__, "Failed to read the end element.", [&] {
        Search(XMLTokenEndElement, ByLocalName{localName, namespaceURI});
    });
}

void CXMLTextReader::ReadEndElement(unsigned short const* name) {
    detail::CheckSearchName(kUnit, __LINE__, name);
    Guard(__LINE__, "Failed to read the end element.",
          [&] { Search(XMLTokenEndElement, ByQualifiedName{name}); });
}

void CXMLTextReader::ReadEndElement() {
    Guard(__LINE__, "Failed to read the end element.",
          [&] { Search(XMLTokenEndElement, AnyName()); });
}

void CXMLTextReader::JoinText() {
    CRef<IXMLToken> const first = Current();
    CUnicodeString text = first->GetValue();
    bool joined = false;
    while (ReadToken()) {
        if (!detail::IsTextToken(CurrentType())) {
            m_lookAhead = Current();
            break;
        }
        text += CurrentValue();
        joined = true;
    }
    m_unmade = false;
    // A lone text token already is the joined text.
    if (!joined && first->GetType() == XMLTokenText)
        m_current = first;
    else
        m_current = CRef<IXMLToken>(new CXMLTextToken(text));
}

void CXMLTextReader::ReadElementText(CUnicodeString& text) {
    ReadElementText();
    text = Current()->GetValue();
}

void CXMLTextReader::ReadElementText() {
    Guard(__LINE__, "Failed to read element text.", [&] {
        do {
            if (!ReadToken())
                throw CIOException(kUnit, __LINE__, kEndOfStream, nullptr);
        } while (!detail::IsTextToken(CurrentType()));
        JoinText();
    });
}

bool CXMLTextReader::ReadElementTextIfAvailable() {
    return Guard(__LINE__, "Failed to read element text.", [&] {
        CRef<IXMLToken> const previous = Current();
        if (!ReadToken()) {
            m_current = previous;
            return false;
        }
        if (!detail::IsTextToken(CurrentType())) {
            // Nothing consumed: the token waits for the next read.
            m_lookAhead = Current();
            m_current = previous;
            return false;
        }
        JoinText();
        return true;
    });
}

void CXMLTextReader::Close() {
    m_tokenizer.reset();
    m_current = nullptr;
    m_unmade = false;
    m_lookAhead = nullptr;
    if (!m_stream.IsNull()) {
        CRef<CInputStream> const stream = std::move(m_stream);
        stream->Close();
    }
}

} // namespace io
} // namespace lumo
