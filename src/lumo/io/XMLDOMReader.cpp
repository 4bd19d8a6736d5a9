// The XML DOM reader: hands out the DOM tokenizer's tokens one at a time; the
// navigation over them is the one all the readers share.
#include <lumo/io/XMLDOMReader.h>

#include <lumo/base/Exception.h>
#include <lumo/io/XMLDOMToken.h>

#include "detail/XMLDOMTokenizer.h"
#include "detail/XMLTokenSearch.h"

#include <utility>

namespace lumo {
namespace io {

using base::CRef;
using base::CUnicodeString;

namespace {

char const kUnit[] = "lumo/io/XMLDOMReader";

detail::CXMLReaderFailures const kFailures = {
    kUnit,
    "There is no valid token.",
    "Failed to get the token type of current XML token.",
    "Failed to get the value of current XML token.",
    "Failed to read the specified end element.",
    "Failed to read end element.",
};

DOM_Document const& CheckDocument(DOM_Document const& document) {
    if (document.IsNull())
        throw CIOException(kUnit, __LINE__, "Invalid DOM document.", nullptr);
    return document;
}

} // namespace

LUMO_DEFINE_CLASS(CXMLDOMReader, "lumo::io::CXMLDOMReader", "lumo::io::CXMLReader");

CXMLDOMReader::CXMLDOMReader(DOM_Document const& document)
    : CXMLNavigatingReader(kFailures), m_tokenizer(new CXMLDOMTokenizer(CheckDocument(document))) {}

CXMLDOMReader::~CXMLDOMReader() {}

bool CXMLDOMReader::ProduceToken() {
    return SetCurrent(m_tokenizer->GetNextToken());
}

// The attribute reads are the documented base's, failing from this reader's unit.
bool CXMLDOMReader::HasAttribute(unsigned short const* localName,
                                 unsigned short const* namespaceURI) {
    return detail::StartElementOf(GetCurrentToken().Get(), kUnit, __LINE__)
        .HasAttribute(localName, namespaceURI);
}

bool CXMLDOMReader::HasAttribute(unsigned short const* name) {
    return detail::StartElementOf(GetCurrentToken().Get(), kUnit, __LINE__).HasAttribute(name);
}

CUnicodeString CXMLDOMReader::ReadAttribute(unsigned short const* localName,
                                            unsigned short const* namespaceURI) {
    return detail::StartElementOf(GetCurrentToken().Get(), kUnit, __LINE__)
        .GetAttribute(localName, namespaceURI);
}

CUnicodeString CXMLDOMReader::ReadAttribute(unsigned short const* name) {
    return detail::StartElementOf(GetCurrentToken().Get(), kUnit, __LINE__).GetAttribute(name);
}

void CXMLDOMReader::Close() {
    MarkClosed();
    m_tokenizer.reset();
}

} // namespace io
} // namespace lumo
