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
// A string that reuses its buffer keeps it only up to this capacity in units (the
// pooled sizes), so that one long text does not stay held for the whole document.
unsigned long const kKeptCapacity = 1024;

// Makes `target` exactly the n units at `chars`, writing into its own buffer when no
// other string shares it: the tokenizer overwrites the same strings event after event.
void CopyUnits(CUnicodeString& target, XMLCh const* chars, std::size_t n) {
    if (target.GetCapacity() > kKeptCapacity)
        target = CUnicodeString();
    else
        target.Empty(); // a shared buffer is left to the others, a private one kept
    if (n == 0)
        return;
    unsigned short* buffer = target.GetBuffer(static_cast<unsigned long>(n));
    for (std::size_t i = 0; i < n; ++i)
        buffer[i] = static_cast<unsigned short>(chars[i]);
    target.SetLength(static_cast<unsigned long>(n));
}

} // namespace

CRef<IXMLToken> CXMLTokenEvent::MakeToken() const {
    switch (type) {
    case XMLTokenStartElement:
        // The list is copied, not moved: a failure leaves the event whole, and the
        // event keeps the list's room for the next start tag.
        if (namespaced)
            return CRef<IXMLToken>(
                new CXMLStartElementToken(namespaceURI, localName, value, attributes));
        return CRef<IXMLToken>(new CXMLStartElementToken(value, attributes));
    case XMLTokenEndElement:
        if (namespaced)
            return CRef<IXMLToken>(new CXMLEndElementToken(namespaceURI, localName, value));
        return CRef<IXMLToken>(new CXMLEndElementToken(value));
    case XMLTokenComment:
        return CRef<IXMLToken>(new CXMLCommentToken(value));
    case XMLTokenProcessingInstruction:
        return CRef<IXMLToken>(new CXMLPIToken(value, data));
    case XMLTokenText:
    case XMLTokenCDATA:
        break;
    }
    return CXMLToken::CreateCharacterToken(value, type == XMLTokenCDATA);
}

CXMLEventRing::~CXMLEventRing() {
    delete[] m_slots;
}

void CXMLEventRing::Grow() {
    std::uint32_t const capacity = m_slots == nullptr ? 8 : (m_mask + 1) * 2;
    CXMLTokenEvent* slots = new (std::nothrow) CXMLTokenEvent[capacity];
    if (slots == nullptr)
        throw base::CMemoryException(kUnit, __LINE__);
    if (m_slots != nullptr) {
        // The current event goes to slot 0, the waiting ones behind it. The lists are
        // copied first (which may fail, leaving the ring as it was); the rest moves.
        try {
            for (std::uint32_t i = 0; i <= m_size; ++i)
                slots[i].attributes = m_slots[(m_head - 1 + i) & m_mask].attributes;
        } catch (...) {
            delete[] slots;
            throw;
        }
        for (std::uint32_t i = 0; i <= m_size; ++i) {
            CXMLTokenEvent& from = m_slots[(m_head - 1 + i) & m_mask];
            slots[i].type = from.type;
            slots[i].namespaced = from.namespaced;
            slots[i].value = static_cast<CUnicodeString&&>(from.value);
            slots[i].localName = static_cast<CUnicodeString&&>(from.localName);
            slots[i].namespaceURI = static_cast<CUnicodeString&&>(from.namespaceURI);
            slots[i].data = static_cast<CUnicodeString&&>(from.data);
        }
        delete[] m_slots;
    }
    m_slots = slots;
    m_mask = capacity - 1;
    m_head = 1;
}

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

bool CXMLTextTokenizer::Advance() {
    try {
        if (m_queue.IsEmpty()) {
            if (m_pending) {
                std::exception_ptr pending = m_pending;
                m_pending = nullptr;
                std::rethrow_exception(pending);
            }
            ScanUntilToken();
            if (m_queue.IsEmpty())
                return false;
        }
        m_queue.Pop();
        return true;
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

CUnicodeString const& CXMLTextTokenizer::CachedText(XMLCh const* chars, std::size_t length) {
    // A cheap slot choice from the length and three units; a full comparison decides.
    std::uint32_t const hash = static_cast<std::uint32_t>(length) * 97u + chars[0] * 31u +
                               chars[length / 2] * 7u + chars[length - 1];
    CUnicodeString& cached = m_texts[hash % kTextSlots];
    // Both unit types are 16-bit unsigned integers: their bytes compare alike.
    if (cached.GetLength() != length ||
        std::memcmp(static_cast<unsigned short const*>(cached), chars, length * 2) != 0)
        CopyUnits(cached, chars, length);
    return cached;
}

CUnicodeString CXMLTextTokenizer::Text(XMLCh const* chars, std::size_t length) {
    if (length == 0 || length > kShortText)
        return FromXMLCh(chars, length);
    return CachedText(chars, length);
}

void CXMLTextTokenizer::SetText(CUnicodeString& target, XMLCh const* chars, std::size_t length) {
    if (length == 0 || length > kShortText)
        CopyUnits(target, chars, length);
    else
        target = CachedText(chars, length);
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

void CXMLTextTokenizer::SetElementNames(CXMLTokenEvent& event,
                                        xercesc::XMLElementDecl const& elemDecl,
                                        unsigned int uriId) {
    XMLCh const* qualified = elemDecl.getFullName();
    SetText(event.value, qualified, Length(qualified));
    event.namespaced = uriId != 0;
    if (event.namespaced) {
        event.namespaceURI = URIText(uriId);
        XMLCh const* local = elemDecl.getBaseName();
        std::size_t const n = Length(local);
        // Without a prefix the local name is the qualified name.
        if (n == event.value.GetLength())
            event.localName = event.value;
        else
            SetText(event.localName, local, n);
    }
}

void CXMLTextTokenizer::startElement(xercesc::XMLElementDecl const& elemDecl, unsigned int uriId,
                                     XMLCh const*,
                                     xercesc::RefVectorOf<xercesc::XMLAttr> const& attrList,
                                     XMLSize_t attrCount, bool isEmpty, bool) {
    CXMLTokenEvent& start = m_queue.Back();
    start.type = XMLTokenStartElement;
    SetElementNames(start, elemDecl, uriId);
    start.attributes.Clear();
    for (XMLSize_t i = 0; i < attrCount; ++i) {
        xercesc::XMLAttr const* attr = attrList.elementAt(i);
        XMLCh const* qualifiedName = attr->getQName();
        std::size_t const qualifiedLength = Length(qualifiedName);
        CUnicodeString const qualified = Text(qualifiedName, qualifiedLength);
        XMLCh const* local = attr->getName();
        std::size_t const localLength = Length(local);
        unsigned int uri = attr->getURIId();
        // The scanner leaves a default namespace declaration without namespace; like
        // the prefixed declarations it belongs to the xmlns namespace.
        if (qualifiedLength == 5 &&
            xercesc::XMLString::equals(qualifiedName, xercesc::XMLUni::fgXMLNSString))
            uri = m_scanner->getXMLNSNamespaceId();
        start.attributes.Add(
            qualified, localLength == qualified.GetLength() ? qualified : Text(local, localLength),
            uri != 0 ? URIText(uri) : CUnicodeString(), Text(attr->getValue()));
    }
    m_queue.Push();
    if (isEmpty) {
        // The parser reports no end for an empty element. (The start event stays in
        // place: Back keeps the slots of waiting events.)
        CXMLTokenEvent& end = m_queue.Back();
        CXMLTokenEvent const& queued = m_queue.Last();
        end.type = XMLTokenEndElement;
        end.namespaced = queued.namespaced;
        end.value = queued.value;
        end.localName = queued.localName;
        end.namespaceURI = queued.namespaceURI;
        m_queue.Push();
    } else {
        ++m_depth;
    }
}

void CXMLTextTokenizer::endElement(xercesc::XMLElementDecl const& elemDecl, unsigned int uriId,
                                   bool, XMLCh const*) {
    CXMLTokenEvent& end = m_queue.Back();
    end.type = XMLTokenEndElement;
    SetElementNames(end, elemDecl, uriId);
    m_queue.Push();
    if (m_depth > 0)
        --m_depth;
}

void CXMLTextTokenizer::docCharacters(XMLCh const* chars, XMLSize_t length, bool cdataSection) {
    // Character data outside the root element is dropped.
    if (m_depth > 0) {
        CXMLTokenEvent& text = m_queue.Back();
        text.type = cdataSection ? XMLTokenCDATA : XMLTokenText;
        SetText(text.value, chars, length);
        m_queue.Push();
    }
}

void CXMLTextTokenizer::docComment(XMLCh const* comment) {
    CXMLTokenEvent& event = m_queue.Back();
    event.type = XMLTokenComment;
    event.value = FromXMLCh(comment);
    m_queue.Push();
}

void CXMLTextTokenizer::docPI(XMLCh const* target, XMLCh const* data) {
    CXMLTokenEvent& event = m_queue.Back();
    event.type = XMLTokenProcessingInstruction;
    event.value = FromXMLCh(target);
    event.data = FromXMLCh(data);
    m_queue.Push();
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
