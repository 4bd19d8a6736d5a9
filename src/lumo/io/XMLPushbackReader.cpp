// CXMLPushbackReader: serves pushed-back tokens from a stack that grows downward before
// the wrapped reader's, and builds the tokens of whole small elements to push back.
#include <lumo/io/XMLPushbackReader.h>

#include <lumo/base/Exception.h>

#include "detail/XMLTokenSearch.h"
#include "detail/XMLValueText.h"

#include <new>
#include <utility>

namespace lumo {
namespace io {

using base::CRef;
using base::CUnicodeString;

namespace {

char const kUnit[] = "lumo/io/XMLPushbackReader";
char const kEndFailure[] = "Failed to read the end element.";

detail::CXMLReaderFailures const kFailures = {
    kUnit,
    nullptr,
    "Failed to get the token type of the current XML token.",
    "Failed to get the value of the current XML token.",
    kEndFailure,
    kEndFailure,
};

// The text the writers would write for the value.
template <class T> CUnicodeString Text(T value) {
    return CUnicodeString(detail::CXMLValueText(value));
}

void CheckText(unsigned short const* text, int line) {
    if (text == nullptr || text[0] == 0)
        throw CXMLException(kUnit, static_cast<unsigned long>(line), "Invalid element text.",
                            nullptr);
}

} // namespace

// The names of an element to push back, checked on construction: a qualified name, or
// a local name with its namespace URI.
struct CXMLPushbackReader::CElementName {
    explicit CElementName(unsigned short const* name) : name(name), namespaceURI(nullptr) {
        detail::CheckSearchName(kUnit, __LINE__, name);
    }
    CElementName(unsigned short const* localName, unsigned short const* uri)
        : name(localName), namespaceURI(uri) {
        detail::CheckSearchLocalName(kUnit, __LINE__, localName, uri);
    }

    CRef<IXMLToken> Start() const {
        if (namespaceURI == nullptr)
            return CRef<IXMLToken>(new CXMLStartElementToken(name, XMLAttributeList()));
        return CRef<IXMLToken>(
            new CXMLStartElementToken(namespaceURI, name, name, XMLAttributeList()));
    }
    CRef<IXMLToken> End() const {
        if (namespaceURI == nullptr)
            return CRef<IXMLToken>(new CXMLEndElementToken(name));
        return CRef<IXMLToken>(new CXMLEndElementToken(namespaceURI, name, name));
    }

    unsigned short const* name;
    unsigned short const* namespaceURI;
};

LUMO_DEFINE_CLASS(CXMLPushbackReader, "lumo::io::CXMLPushbackReader", "lumo::io::CXMLReader");

CXMLPushbackReader::CXMLPushbackReader(CRef<CXMLReader> const& reader, unsigned long size)
    : CXMLNavigatingReader(kFailures), m_reader(reader), m_capacity(0), m_position(0) {
    Init(size);
}

CXMLPushbackReader::CXMLPushbackReader(CXMLReader* reader, unsigned long size)
    : CXMLNavigatingReader(kFailures), m_reader(reader, false), m_capacity(0), m_position(0) {
    Init(size);
}

void CXMLPushbackReader::Init(unsigned long size) {
    if (m_reader.IsNull())
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid XML reader.");
    if (size == 0)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid pushback buffer size.");
    // Sizes are 32-bit in meaning: a buffer past 2 GB is refused as out of memory.
    if (size > 0x7FFFFFFFul / sizeof(CRef<IXMLToken>))
        throw base::CMemoryException(kUnit, __LINE__);
    m_buffer.reset(new (std::nothrow) CRef<IXMLToken>[size]);
    if (m_buffer == nullptr)
        throw base::CMemoryException(kUnit, __LINE__);
    m_capacity = size;
    m_position = size;
}

CXMLPushbackReader::~CXMLPushbackReader() {}

void CXMLPushbackReader::CheckOpen(int line) const {
    if (m_reader.IsNull())
        throw CIOException(kUnit, static_cast<unsigned long>(line), "Reader closed.", nullptr);
}

bool CXMLPushbackReader::ProduceToken() {
    if (m_position < m_capacity) {
        SetCurrent(std::move(m_buffer[m_position]));
        ++m_position;
        return true;
    }
    SetCurrent(nullptr);
    if (!m_reader->ReadToken())
        return false;
    SetCurrent(m_reader->GetCurrentToken());
    return true;
}

void CXMLPushbackReader::Push(CRef<IXMLToken> const& token) {
    if (m_position == 0)
        throw CIOException(kUnit, __LINE__, "Pushback buffer is full.", nullptr);
    --m_position;
    m_buffer[m_position] = token;
}

// There is always room: the token came either from the slot it returns to or from the
// wrapped reader, which is asked only when the stack is empty.
void CXMLPushbackReader::HoldBack(CRef<IXMLToken> const& token) {
    Push(token);
}

void CXMLPushbackReader::Close() {
    if (m_reader.IsNull())
        return;
    CRef<CXMLReader> const reader = std::move(m_reader);
    m_reader = nullptr;
    MarkClosed();
    for (unsigned long i = m_position; i < m_capacity; ++i)
        m_buffer[i] = nullptr;
    m_position = m_capacity;
    reader->Close();
}

void CXMLPushbackReader::UnreadToken() {
    UnreadToken(GetCurrentToken());
}

void CXMLPushbackReader::UnreadToken(CRef<IXMLToken> const& token) {
    CheckOpen(__LINE__);
    if (token.IsNull())
        throw CIOException(kUnit, __LINE__, "There is no valid token.", nullptr);
    Push(token);
}

// The names are checked before the reader's state, as for every push of an element.
void CXMLPushbackReader::UnreadTag(CElementName const& element, bool start) {
    CheckOpen(__LINE__);
    Push(start ? element.Start() : element.End());
}

void CXMLPushbackReader::UnreadStartElement(unsigned short const* name) {
    UnreadTag(CElementName(name), true);
}

void CXMLPushbackReader::UnreadStartElement(unsigned short const* localName,
                                            unsigned short const* namespaceURI) {
    UnreadTag(CElementName(localName, namespaceURI), true);
}

void CXMLPushbackReader::UnreadEndElement(unsigned short const* name) {
    UnreadTag(CElementName(name), false);
}

void CXMLPushbackReader::UnreadEndElement(unsigned short const* localName,
                                          unsigned short const* namespaceURI) {
    UnreadTag(CElementName(localName, namespaceURI), false);
}

void CXMLPushbackReader::UnreadElementText(unsigned short const* text) {
    CheckText(text, __LINE__);
    CheckOpen(__LINE__);
    Push(CRef<IXMLToken>(new CXMLTextToken(CUnicodeString(text))));
}

// Last in, first out: pushed end, text, start, the element reads back in order.
void CXMLPushbackReader::UnreadElement(CElementName const& name, CUnicodeString const& text) {
    CheckOpen(__LINE__);
    Push(name.End());
    Push(CRef<IXMLToken>(new CXMLTextToken(text)));
    Push(name.Start());
}

void CXMLPushbackReader::UnreadElementBool(unsigned short const* name, bool value) {
    UnreadElement(CElementName(name), Text(value));
}

void CXMLPushbackReader::UnreadElementBool(unsigned short const* localName,
                                           unsigned short const* namespaceURI, bool value) {
    UnreadElement(CElementName(localName, namespaceURI), Text(value));
}

void CXMLPushbackReader::UnreadElementShort(unsigned short const* name, short value) {
    UnreadElement(CElementName(name), Text(value));
}

void CXMLPushbackReader::UnreadElementShort(unsigned short const* localName,
                                            unsigned short const* namespaceURI, short value) {
    UnreadElement(CElementName(localName, namespaceURI), Text(value));
}

void CXMLPushbackReader::UnreadElementLong(unsigned short const* name, long value) {
    UnreadElement(CElementName(name), Text(value));
}

void CXMLPushbackReader::UnreadElementLong(unsigned short const* localName,
                                           unsigned short const* namespaceURI, long value) {
    UnreadElement(CElementName(localName, namespaceURI), Text(value));
}

void CXMLPushbackReader::UnreadElementFloat(unsigned short const* name, float value) {
    UnreadElement(CElementName(name), Text(value));
}

void CXMLPushbackReader::UnreadElementFloat(unsigned short const* localName,
                                            unsigned short const* namespaceURI, float value) {
    UnreadElement(CElementName(localName, namespaceURI), Text(value));
}

void CXMLPushbackReader::UnreadElementDouble(unsigned short const* name, double value) {
    UnreadElement(CElementName(name), Text(value));
}

void CXMLPushbackReader::UnreadElementDouble(unsigned short const* localName,
                                             unsigned short const* namespaceURI, double value) {
    UnreadElement(CElementName(localName, namespaceURI), Text(value));
}

void CXMLPushbackReader::UnreadElementString(unsigned short const* name,
                                             unsigned short const* value) {
    CElementName const element(name);
    CheckText(value, __LINE__);
    UnreadElement(element, CUnicodeString(value));
}

void CXMLPushbackReader::UnreadElementString(unsigned short const* localName,
                                             unsigned short const* namespaceURI,
                                             unsigned short const* value) {
    CElementName const element(localName, namespaceURI);
    CheckText(value, __LINE__);
    UnreadElement(element, CUnicodeString(value));
}

} // namespace io
} // namespace lumo
