// The token interfaces' out-of-line destructors and the text tokenizer's tokens, which
// hold copies of their names and values.
#include <lumo/io/XMLToken.h>

#include <lumo/base/FixBlockAllocator.h>

namespace lumo {
namespace io {

using base::CRef;
using base::CUnicodeString;

IXMLToken::~IXMLToken() {}
IXMLTextToken::~IXMLTextToken() {}
IXMLCDATAToken::~IXMLCDATAToken() {}
IXMLCommentToken::~IXMLCommentToken() {}
IXMLPIToken::~IXMLPIToken() {}
IXMLElementToken::~IXMLElementToken() {}
IXMLStartElementToken::~IXMLStartElementToken() {}
IXMLEndElementToken::~IXMLEndElementToken() {}

CXMLToken::~CXMLToken() {}

XMLTokenType CXMLToken::GetType() const {
    return m_type;
}

namespace {
// The smallest block class of the process-wide pools holds every token of this unit.
std::size_t const kPooledSize = 76;

// Looked up once: a reader makes and drops a token per markup event.
base::CFixBlockAllocator& TokenPool() {
    static base::CFixBlockAllocator& pool = base::CFixBlockAllocator::StringPool(0);
    return pool;
}
} // namespace

void* CXMLToken::operator new(std::size_t size) {
    if (size <= kPooledSize)
        return TokenPool().AllocateCached();
    return base::CBase::operator new(size);
}

void CXMLToken::operator delete(void* block, std::size_t size) noexcept {
    if (block == nullptr)
        return;
    if (size <= kPooledSize)
        TokenPool().FreeCached(block);
    else
        base::CBase::operator delete(block);
}

CRef<IXMLToken> CXMLToken::CreateCharacterToken(CUnicodeString const& characters, bool isCDATA) {
    if (isCDATA)
        return CRef<IXMLToken>(new CXMLCDATAToken(characters));
    return CRef<IXMLToken>(new CXMLTextToken(characters));
}

CXMLTextToken::CXMLTextToken(CUnicodeString const& value) noexcept
    : CXMLToken(XMLTokenText), m_value(value) {}
CXMLTextToken::~CXMLTextToken() {}
CUnicodeString CXMLTextToken::GetValue() const {
    return m_value;
}

CXMLCDATAToken::CXMLCDATAToken(CUnicodeString const& value) noexcept
    : CXMLToken(XMLTokenCDATA), m_value(value) {}
CXMLCDATAToken::~CXMLCDATAToken() {}
CUnicodeString CXMLCDATAToken::GetValue() const {
    return m_value;
}

CXMLCommentToken::CXMLCommentToken(CUnicodeString const& value) noexcept
    : CXMLToken(XMLTokenComment), m_value(value) {}
CXMLCommentToken::~CXMLCommentToken() {}
CUnicodeString CXMLCommentToken::GetValue() const {
    return m_value;
}

CXMLPIToken::CXMLPIToken(CUnicodeString const& target, CUnicodeString const& data) noexcept
    : CXMLToken(XMLTokenProcessingInstruction), m_target(target), m_data(data) {}
CXMLPIToken::~CXMLPIToken() {}
CUnicodeString CXMLPIToken::GetValue() const {
    return m_target;
}
CUnicodeString CXMLPIToken::GetData() const {
    return m_data;
}

CXMLElementToken::CXMLElementToken(XMLTokenType type, CUnicodeString const& namespaceURI,
                                   CUnicodeString const& localName,
                                   CUnicodeString const& qualifiedName) noexcept
    : CXMLToken(type), m_qualifiedName(qualifiedName), m_localName(localName),
      m_namespaceURI(namespaceURI) {}

CXMLElementToken::CXMLElementToken(XMLTokenType type, CUnicodeString const& qualifiedName) noexcept
    : CXMLToken(type), m_qualifiedName(qualifiedName), m_localName(qualifiedName) {}

CXMLElementToken::~CXMLElementToken() {}
CUnicodeString CXMLElementToken::GetValue() const {
    return m_qualifiedName;
}
bool CXMLElementToken::IsNamespaceURIEmpty() const {
    return m_namespaceURI.IsEmpty();
}
CUnicodeString CXMLElementToken::GetQualifiedName() const {
    return m_qualifiedName;
}
CUnicodeString CXMLElementToken::GetLocalName() const {
    return m_localName;
}
CUnicodeString CXMLElementToken::GetNamespaceURI() const {
    return m_namespaceURI;
}

CXMLStartElementToken::CXMLStartElementToken(CUnicodeString const& namespaceURI,
                                             CUnicodeString const& localName,
                                             CUnicodeString const& qualifiedName,
                                             XMLAttributeList const& attributes)
    : CXMLElementToken(XMLTokenStartElement, namespaceURI, localName, qualifiedName),
      m_attributes(attributes) {}

CXMLStartElementToken::CXMLStartElementToken(CUnicodeString const& qualifiedName,
                                             XMLAttributeList const& attributes)
    : CXMLElementToken(XMLTokenStartElement, qualifiedName), m_attributes(attributes) {}

CXMLStartElementToken::CXMLStartElementToken(CUnicodeString const& namespaceURI,
                                             CUnicodeString const& localName,
                                             CUnicodeString const& qualifiedName,
                                             XMLAttributeList&& attributes) noexcept
    : CXMLElementToken(XMLTokenStartElement, namespaceURI, localName, qualifiedName),
      m_attributes(static_cast<XMLAttributeList&&>(attributes)) {}

CXMLStartElementToken::CXMLStartElementToken(CUnicodeString const& qualifiedName,
                                             XMLAttributeList&& attributes) noexcept
    : CXMLElementToken(XMLTokenStartElement, qualifiedName),
      m_attributes(static_cast<XMLAttributeList&&>(attributes)) {}

CXMLStartElementToken::~CXMLStartElementToken() {}

bool CXMLStartElementToken::HasAttribute(unsigned short const* localName,
                                         unsigned short const* namespaceURI) const {
    return m_attributes.HasAttribute(localName, namespaceURI);
}

bool CXMLStartElementToken::HasAttribute(unsigned short const* qualifiedName) const {
    return m_attributes.HasAttribute(qualifiedName);
}

CUnicodeString CXMLStartElementToken::GetAttribute(unsigned short const* localName,
                                                   unsigned short const* namespaceURI) const {
    return m_attributes.GetAttribute(localName, namespaceURI);
}

CUnicodeString CXMLStartElementToken::GetAttribute(unsigned short const* qualifiedName) const {
    return m_attributes.GetAttribute(qualifiedName);
}

CXMLEndElementToken::CXMLEndElementToken(CUnicodeString const& namespaceURI,
                                         CUnicodeString const& localName,
                                         CUnicodeString const& qualifiedName) noexcept
    : CXMLElementToken(XMLTokenEndElement, namespaceURI, localName, qualifiedName) {}

CXMLEndElementToken::CXMLEndElementToken(CUnicodeString const& qualifiedName) noexcept
    : CXMLElementToken(XMLTokenEndElement, qualifiedName) {}

CXMLEndElementToken::~CXMLEndElementToken() {}

} // namespace io
} // namespace lumo
