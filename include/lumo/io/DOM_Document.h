// The reference-counted handle to one Xerces-C DOM document, which the DOM reader,
// its tokens and the DOM writer share.
#ifndef LUMO_IO_DOM_DOCUMENT_H
#define LUMO_IO_DOM_DOCUMENT_H

#include <lumo/Config.h>

#include <memory>

/// Xerces-C 3.2 puts its classes in the versioned namespace xercesc_3_2 and names it
/// xercesc by an alias; both are declared here the same way so that this header needs
/// no Xerces-C header (a redeclared alias naming the same namespace is allowed).
namespace xercesc_3_2 {
class DOMDocument;
}
namespace xercesc = xercesc_3_2;

namespace lumo {
namespace io {

/// A copyable handle to one xercesc::DOMDocument. The handle made from a document
/// pointer adopts it; the last copy releases the document (DOMDocument::release), and
/// with it every node of the document. Copies may be made and dropped on different
/// threads (the count is atomic); the document itself belongs to one thread at a time.
/// Releasing needs Xerces-C running: let go of every handle before the last
/// lumo::Terminate().
class LUMO_API DOM_Document {
public:
    /// The null handle.
    DOM_Document() noexcept {}
    /// Adopts `document` (null gives the null handle). A document must be adopted by
    /// one handle only; copy that handle to share it. If the count record cannot be
    /// made the document is released and CMemoryException is thrown.
    explicit DOM_Document(xercesc::DOMDocument* document);

    /// True when the handle holds no document.
    bool IsNull() const noexcept { return m_document == nullptr; }
    /// The document, null for the null handle. It stays valid while a handle lives.
    xercesc::DOMDocument* Get() const noexcept { return m_document.get(); }
    /// The document's members; the handle must not be null.
    xercesc::DOMDocument* operator->() const noexcept { return m_document.get(); }

    /// Two handles are equal when they hold the same document.
    bool operator==(DOM_Document const& other) const noexcept {
        return m_document == other.m_document;
    }
    /// True when the handles hold different documents.
    bool operator!=(DOM_Document const& other) const noexcept { return !(*this == other); }

private:
    std::shared_ptr<xercesc::DOMDocument> m_document;
};

} // namespace io
} // namespace lumo

#endif
