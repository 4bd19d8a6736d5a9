// The text tokenizer: Xerces-C's well-formedness scanner driven progressively, its
// callbacks turned into queued tokens, and every external entity answered empty.
#include "detail/XMLTextTokenizer.h"

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>

#include "../base/detail/XercesSupport.h"
#include "detail/CaughtExceptionLog.h"
#include "detail/XercesInputSources.h"

#include <cstring>
#include <new>
#include <utility>

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/validators/DTD/DTDValidator.hpp>

namespace lumo {
namespace io {

using base::CRef;
using base::CUnicodeString;
using lumo::detail::FromXMLCh;

namespace {

char const kUnit[] = "lumo/io/XMLTextTokenizer";
char const kCreateFailed[] = "Failed to create XML text tokenizer.";
char const kNextFailed[] = "Failed to get the next token of xml text tokenizer.";

std::size_t Length(XMLCh const* s) {
    std::size_t n = 0;
    if (s != nullptr)
        while (s[n] != 0)
            ++n;
    return n;
}

// Texts up to this length go through the tokenizer's cache.
std::size_t const kShortText = 32;

} // namespace

CXMLTokenRing::~CXMLTokenRing() {
    delete[] m_slots;
}

void CXMLTokenRing::Grow() {
    std::uint32_t const capacity = m_slots == nullptr ? 8 : (m_mask + 1) * 2;
    base::CRef<IXMLToken>* slots = new (std::nothrow) base::CRef<IXMLToken>[capacity];
    if (slots == nullptr)
        throw base::CMemoryException(kUnit, __LINE__);
    for (std::uint32_t i = 0; i < m_size; ++i)
        slots[i] = static_cast<base::CRef<IXMLToken>&&>(m_slots[(m_head + i) & m_mask]);
    delete[] m_slots;
    m_slots = slots;
    m_mask = capacity - 1;
    m_head = 0;
}

struct CXMLTextTokenizer::Names {
    bool namespaced;
    CUnicodeString uri;
    CUnicodeString local;
    CUnicodeString qualified;
};

CXMLTextTokenizer::CXMLTextTokenizer(CRef<CInputStream> const& stream)
    : m_depth(0), m_finished(false), m_uriCached() {
    if (stream.IsNull())
        throw CIOException(kUnit, __LINE__, "Invalid input stream.", nullptr);
    try {
        m_source.reset(new detail::CInputStreamInputSource(stream));
    } catch (...) {
        throw CIOException(kUnit, __LINE__, kCreateFailed, nullptr);
    }
    Start();
}

CXMLTextTokenizer::CXMLTextTokenizer(xercesc::InputSource* source)
    : m_source(source), m_depth(0), m_finished(false), m_uriCached() {
    Start();
}

CXMLTextTokenizer::~CXMLTextTokenizer() {}

void CXMLTextTokenizer::Start() {
    try {
        m_resolver.reset(new xercesc::GrammarResolver(nullptr));
        // The well-formedness scanner keeps the validator but never deletes it.
        m_validator.reset(new xercesc::DTDValidator(this));
        m_scanner.reset(new xercesc::WFXMLScanner(this, nullptr, this, this, m_validator.get(),
                                                  m_resolver.get()));
        // The URI pool must be in place before namespaces are switched on.
        m_scanner->setURIStringPool(m_resolver->getStringPool());
        m_scanner->setDoNamespaces(true);
        m_scanner->setEntityHandler(this);
        // Debian's build carries a network accessor: never let it resolve anything.
        m_scanner->setDisableDefaultEntityResolution(true);
        m_scanner->setLoadExternalDTD(false);
        if (!m_scanner->scanFirst(*m_source, m_scanToken))
            throw CIOException(kUnit, __LINE__, kCreateFailed, nullptr);
    } catch (CIOException const&) {
        throw; // the parser's own complaint about the prolog, or the stream's
    } catch (base::CMemoryException const&) {
        throw;
    } catch (base::CException const& e) {
        detail::LogCaught(e);
        throw CIOException(kUnit, __LINE__, kCreateFailed, nullptr);
    } catch (...) {
        throw CIOException(kUnit, __LINE__, kCreateFailed, nullptr);
    }
}

CRef<IXMLToken> CXMLTextTokenizer::GetNextToken() {
    try {
        if (m_queue.IsEmpty()) {
            if (m_pending) {
                std::exception_ptr pending = m_pending;
                m_pending = nullptr;
                std::rethrow_exception(pending);
            }
            ScanUntilToken();
            if (m_queue.IsEmpty())
                return CRef<IXMLToken>();
        }
        return m_queue.Pop();
    } catch (CIOException const&) {
        throw;
    } catch (base::CMemoryException const&) {
        throw;
    } catch (base::CException const& e) {
        detail::LogCaught(e);
        throw CXMLException(kUnit, __LINE__, kNextFailed, nullptr);
    } catch (...) {
        throw CXMLException(kUnit, __LINE__, kNextFailed, nullptr);
    }
}

void CXMLTextTokenizer::ScanUntilToken() {
    while (m_queue.IsEmpty() && !m_finished) {
        bool more;
        try {
            more = m_scanner->scanNext(m_scanToken);
        } catch (...) {
            // The scanner cannot go on after a failure; tokens it queued before the
            // fault are handed out first.
            m_finished = true;
            if (m_queue.IsEmpty())
                throw;
            m_pending = std::current_exception();
            return;
        }
        if (!more)
            m_finished = true;
    }
}

CUnicodeString CXMLTextTokenizer::Text(XMLCh const* chars, std::size_t length) {
    if (length == 0 || length > kShortText)
        return FromXMLCh(chars, length);
    // A cheap slot choice from the length and three units; a full comparison decides.
    std::uint32_t const hash = static_cast<std::uint32_t>(length) * 97u + chars[0] * 31u +
                               chars[length / 2] * 7u + chars[length - 1];
    CUnicodeString& cached = m_texts[hash % kTextSlots];
    // Both unit types are 16-bit unsigned integers: their bytes compare alike.
    if (cached.GetLength() == length &&
        std::memcmp(static_cast<unsigned short const*>(cached), chars, length * 2) == 0)
        return cached;
    cached = FromXMLCh(chars, length);
    return cached;
}

CUnicodeString CXMLTextTokenizer::Text(XMLCh const* chars) {
    return Text(chars, Length(chars));
}

CUnicodeString const& CXMLTextTokenizer::URIText(unsigned int uriId) {
    if (uriId < kCachedURIs) {
        if (!m_uriCached[uriId]) {
            m_uriCache[uriId] = FromXMLCh(m_scanner->getURIText(uriId));
            m_uriCached[uriId] = true;
        }
        return m_uriCache[uriId];
    }
    m_uriScratch = FromXMLCh(m_scanner->getURIText(uriId));
    return m_uriScratch;
}

CXMLTextTokenizer::Names CXMLTextTokenizer::ElementNames(xercesc::XMLElementDecl const& elemDecl,
                                                         unsigned int uriId) {
    Names names;
    names.qualified = Text(elemDecl.getFullName());
    names.namespaced = uriId != 0;
    if (names.namespaced) {
        names.uri = URIText(uriId);
        XMLCh const* local = elemDecl.getBaseName();
        std::size_t const n = Length(local);
        // Without a prefix the local name is the qualified name.
        names.local = n == names.qualified.GetLength() ? names.qualified : Text(local, n);
    }
    return names;
}

void CXMLTextTokenizer::startElement(xercesc::XMLElementDecl const& elemDecl, unsigned int uriId,
                                     XMLCh const*,
                                     xercesc::RefVectorOf<xercesc::XMLAttr> const& attrList,
                                     XMLSize_t attrCount, bool isEmpty, bool) {
    Names const names = ElementNames(elemDecl, uriId);
    XMLAttributeList attributes;
    for (XMLSize_t i = 0; i < attrCount; ++i) {
        xercesc::XMLAttr const* attr = attrList.elementAt(i);
        CUnicodeString const qualified = Text(attr->getQName());
        XMLCh const* local = attr->getName();
        std::size_t const localLength = Length(local);
        unsigned int uri = attr->getURIId();
        // The scanner leaves a default namespace declaration without namespace; like
        // the prefixed declarations it belongs to the xmlns namespace.
        if (xercesc::XMLString::equals(attr->getQName(), xercesc::XMLUni::fgXMLNSString))
            uri = m_scanner->getXMLNSNamespaceId();
        attributes.Add(qualified,
                       localLength == qualified.GetLength() ? qualified : Text(local, localLength),
                       uri != 0 ? URIText(uri) : CUnicodeString(), Text(attr->getValue()));
    }
    CRef<IXMLToken> start(
        names.namespaced ? new CXMLStartElementToken(names.uri, names.local, names.qualified,
                                                     static_cast<XMLAttributeList&&>(attributes))
                         : new CXMLStartElementToken(names.qualified,
                                                     static_cast<XMLAttributeList&&>(attributes)));
    m_queue.Push(std::move(start));
    if (isEmpty) {
        // The parser reports no end for an empty element.
        CRef<IXMLToken> end(names.namespaced
                                ? new CXMLEndElementToken(names.uri, names.local, names.qualified)
                                : new CXMLEndElementToken(names.qualified));
        m_queue.Push(std::move(end));
    } else {
        ++m_depth;
    }
}

void CXMLTextTokenizer::endElement(xercesc::XMLElementDecl const& elemDecl, unsigned int uriId,
                                   bool, XMLCh const*) {
    Names const names = ElementNames(elemDecl, uriId);
    CRef<IXMLToken> end(names.namespaced
                            ? new CXMLEndElementToken(names.uri, names.local, names.qualified)
                            : new CXMLEndElementToken(names.qualified));
    m_queue.Push(std::move(end));
    if (m_depth > 0)
        --m_depth;
}

void CXMLTextTokenizer::docCharacters(XMLCh const* chars, XMLSize_t length, bool cdataSection) {
    // Character data outside the root element is dropped.
    if (m_depth > 0)
        m_queue.Push(CXMLToken::CreateCharacterToken(Text(chars, length), cdataSection));
}

void CXMLTextTokenizer::docComment(XMLCh const* comment) {
    m_queue.Push(CRef<IXMLToken>(new CXMLCommentToken(FromXMLCh(comment))));
}

void CXMLTextTokenizer::docPI(XMLCh const* target, XMLCh const* data) {
    m_queue.Push(CRef<IXMLToken>(new CXMLPIToken(FromXMLCh(target), FromXMLCh(data))));
}

void CXMLTextTokenizer::endDocument() {}
void CXMLTextTokenizer::endEntityReference(xercesc::XMLEntityDecl const&) {}
void CXMLTextTokenizer::ignorableWhitespace(XMLCh const*, XMLSize_t, bool) {}
void CXMLTextTokenizer::resetDocument() {}
void CXMLTextTokenizer::startDocument() {}
void CXMLTextTokenizer::startEntityReference(xercesc::XMLEntityDecl const&) {}
void CXMLTextTokenizer::XMLDecl(XMLCh const*, XMLCh const*, XMLCh const*, XMLCh const*) {}

void CXMLTextTokenizer::endInputSource(xercesc::InputSource const&) {}

bool CXMLTextTokenizer::expandSystemId(XMLCh const*, xercesc::XMLBuffer&) {
    return false;
}

void CXMLTextTokenizer::resetEntities() {}

xercesc::InputSource* CXMLTextTokenizer::resolveEntity(xercesc::XMLResourceIdentifier*) {
    return detail::NewEmptyEntitySource();
}

void CXMLTextTokenizer::startInputSource(xercesc::InputSource const&) {}

void CXMLTextTokenizer::error(unsigned int, XMLCh const*, xercesc::XMLErrorReporter::ErrTypes,
                              XMLCh const* errorText, XMLCh const*, XMLCh const*, XMLFileLoc,
                              XMLFileLoc) {
    base::CString const text = FromXMLCh(errorText).ToUTF8();
    throw CXMLException(kUnit, __LINE__, nullptr, static_cast<char const*>(text));
}

void CXMLTextTokenizer::resetErrors() {}

} // namespace io
} // namespace lumo
