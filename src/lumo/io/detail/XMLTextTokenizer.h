// Internal: the text tokenizer behind CXMLTextReader. It drives Xerces-C's
// well-formedness scanner one step at a time and turns the scanner's callbacks into
// tokens that wait in a queue. It implements Xerces-C interfaces, so it stays out of
// the public headers.
#ifndef LUMO_IO_DETAIL_XMLTEXTTOKENIZER_H
#define LUMO_IO_DETAIL_XMLTEXTTOKENIZER_H

#include <lumo/base/Base.h>
#include <lumo/base/Ref.h>
#include <lumo/io/InputStream.h>
#include <lumo/io/XMLToken.h>

#include <xercesc/framework/XMLDocumentHandler.hpp>
#include <xercesc/framework/XMLEntityHandler.hpp>
#include <xercesc/framework/XMLErrorReporter.hpp>
#include <xercesc/framework/XMLPScanToken.hpp>
#include <xercesc/framework/XMLValidator.hpp>
#include <xercesc/internal/WFXMLScanner.hpp>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/validators/common/GrammarResolver.hpp>

#include <cstdint>
#include <exception>
#include <memory>

namespace lumo {
namespace io {

/// One markup event kept as plain values: a reader that only asks for the type and
/// value of each event never has a token object made for it.
struct CXMLTokenEvent {
    XMLTokenType type = XMLTokenText;
    // An element reported with a namespace URI id (names in the namespace form).
    bool namespaced = false;
    // The text, comment, instruction target or qualified name: the token's value.
    base::CUnicodeString value;
    base::CUnicodeString localName;
    base::CUnicodeString namespaceURI;
    base::CUnicodeString data; // of an instruction
    XMLAttributeList attributes;

    /// A new token for the event; CMemoryException when out of memory (the event is
    /// then unchanged).
    base::CRef<IXMLToken> MakeToken() const;
};

/// The events of one scanner step waiting to be handed out, first in first out, and
/// the one handed out last (the current event): a ring of slots that doubles when
/// full and never shrinks, so that the same slots, strings and lists serve the whole
/// document. The current event's slot is never written by Push.
class CXMLEventRing {
public:
    CXMLEventRing() noexcept : m_slots(nullptr), m_mask(0), m_head(0), m_size(0) {}
    ~CXMLEventRing();
    CXMLEventRing(CXMLEventRing const&) = delete;
    CXMLEventRing& operator=(CXMLEventRing const&) = delete;

    bool IsEmpty() const noexcept { return m_size == 0; }
    /// The slot behind the last waiting event (holding stale values to overwrite),
    /// which Push then adds; CMemoryException when the ring cannot grow.
    CXMLTokenEvent& Back() {
        // One slot stays free for the current event.
        if (m_slots == nullptr || m_size + 1 == m_mask + 1)
            Grow();
        return m_slots[(m_head + m_size) & m_mask];
    }
    /// Adds the event filled in through Back.
    void Push() noexcept { ++m_size; }
    /// The last waiting event; the ring must not be empty.
    CXMLTokenEvent const& Last() const noexcept { return m_slots[(m_head + m_size - 1) & m_mask]; }
    /// Makes the oldest waiting event the current one; the ring must not be empty.
    void Pop() noexcept {
        m_head = (m_head + 1) & m_mask;
        --m_size;
    }
    /// The event handed out last by Pop.
    CXMLTokenEvent& Current() noexcept { return m_slots[(m_head - 1) & m_mask]; }

private:
    void Grow();

    CXMLTokenEvent* m_slots;
    std::uint32_t m_mask; // capacity - 1; the capacity is a power of two
    std::uint32_t m_head;
    std::uint32_t m_size;
};

/// Pulls a document token by token. Nothing outside the document is ever read: every
/// external entity and DTD is answered with an empty memory source. The parser's
/// errors (warnings included) become CXMLException with the parser's text, delivered
/// after the tokens that precede the fault.
class CXMLTextTokenizer : public base::CBase,
                          public xercesc::XMLDocumentHandler,
                          public xercesc::XMLEntityHandler,
                          public xercesc::XMLErrorReporter {
public:
    /// Reads the shared stream. A null stream: CIOException "Invalid input stream.".
    explicit CXMLTextTokenizer(base::CRef<CInputStream> const& stream);
    /// Reads the source, which it adopts (also when construction fails).
    explicit CXMLTextTokenizer(xercesc::InputSource* source);
    ~CXMLTextTokenizer() override;

    CXMLTextTokenizer(CXMLTextTokenizer const&) = delete;
    CXMLTextTokenizer& operator=(CXMLTextTokenizer const&) = delete;

    /// Moves to the next event; false at the end. CIOException and CMemoryException
    /// pass; any other failure is CXMLException "Failed to get the next token of xml
    /// text tokenizer.". A failure leaves the current event as it was.
    bool Advance();
    /// The event Advance moved to last (valid after it returned true).
    CXMLTokenEvent& Current() noexcept { return m_queue.Current(); }

    // XMLDocumentHandler
    void docCharacters(XMLCh const* chars, XMLSize_t length, bool cdataSection) override;
    void docComment(XMLCh const* comment) override;
    void docPI(XMLCh const* target, XMLCh const* data) override;
    void endDocument() override;
    void endElement(xercesc::XMLElementDecl const& elemDecl, unsigned int uriId, bool isRoot,
                    XMLCh const* prefixName) override;
    void endEntityReference(xercesc::XMLEntityDecl const& entDecl) override;
    void ignorableWhitespace(XMLCh const* chars, XMLSize_t length, bool cdataSection) override;
    void resetDocument() override;
    void startDocument() override;
    void startElement(xercesc::XMLElementDecl const& elemDecl, unsigned int uriId,
                      XMLCh const* prefixName,
                      xercesc::RefVectorOf<xercesc::XMLAttr> const& attrList, XMLSize_t attrCount,
                      bool isEmpty, bool isRoot) override;
    void startEntityReference(xercesc::XMLEntityDecl const& entDecl) override;
    void XMLDecl(XMLCh const* versionStr, XMLCh const* encodingStr, XMLCh const* standaloneStr,
                 XMLCh const* autoEncodingStr) override;

    // XMLEntityHandler
    void endInputSource(xercesc::InputSource const& inputSource) override;
    bool expandSystemId(XMLCh const* systemId, xercesc::XMLBuffer& toFill) override;
    void resetEntities() override;
    xercesc::InputSource*
    resolveEntity(xercesc::XMLResourceIdentifier* resourceIdentifier) override;
    void startInputSource(xercesc::InputSource const& inputSource) override;

    // XMLErrorReporter
    void error(unsigned int errCode, XMLCh const* errDomain,
               xercesc::XMLErrorReporter::ErrTypes type, XMLCh const* errorText,
               XMLCh const* systemId, XMLCh const* publicId, XMLFileLoc lineNum,
               XMLFileLoc colNum) override;
    void resetErrors() override;

private:
    void Start();
    void ScanUntilToken();
    // The URI text of a scanner id (ids of a parse never change, so they are cached).
    base::CUnicodeString const& URIText(unsigned int uriId);
    // The text as a string, shared with an earlier equal one when it is short.
    base::CUnicodeString Text(XMLCh const* chars, std::size_t length);
    base::CUnicodeString Text(XMLCh const* chars);
    // The same written into `target`, whose own buffer serves again where it can.
    void SetText(base::CUnicodeString& target, XMLCh const* chars, std::size_t length);
    // The cache's string for a text of 1 to 32 units.
    base::CUnicodeString const& CachedText(XMLCh const* chars, std::size_t length);
    void SetElementNames(CXMLTokenEvent& event, xercesc::XMLElementDecl const& elemDecl,
                         unsigned int uriId);

    CXMLEventRing m_queue;
    // The source outlives the scanner, whose readers use the streams it made.
    std::unique_ptr<xercesc::InputSource> m_source;
    std::unique_ptr<xercesc::GrammarResolver> m_resolver;
    std::unique_ptr<xercesc::XMLValidator> m_validator;
    std::unique_ptr<xercesc::WFXMLScanner> m_scanner;
    xercesc::XMLPScanToken m_scanToken;
    std::uint32_t m_depth;
    bool m_finished;
    // A parser failure met while tokens of the same step were still queued.
    std::exception_ptr m_pending;
    static unsigned int const kCachedURIs = 16;
    base::CUnicodeString m_uriCache[kCachedURIs];
    bool m_uriCached[kCachedURIs];
    base::CUnicodeString m_uriScratch;
    // Recent short texts (names, indentation, small values), so that the strings a
    // document repeats are shared instead of copied for every token.
    static unsigned int const kTextSlots = 256;
    base::CUnicodeString m_texts[kTextSlots];
};

} // namespace io
} // namespace lumo

#endif
