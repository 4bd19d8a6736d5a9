// The DOM document handle: adoption of a document and its release with the last copy.
#include <lumo/io/DOM_Document.h>

#include <lumo/base/Exception.h>

#include <xercesc/dom/DOMDocument.hpp>

#include <new>

namespace lumo {
namespace io {

namespace {

struct ReleaseDocument {
    void operator()(xercesc::DOMDocument* document) const noexcept { document->release(); }
};

} // namespace

DOM_Document::DOM_Document(xercesc::DOMDocument* document) {
    if (document == nullptr)
        return;
    try {
        m_document.reset(document, ReleaseDocument());
    } catch (std::bad_alloc const&) {
        // shared_ptr has already applied the deleter to the document.
        throw base::CMemoryException("lumo/io/DOM_Document", __LINE__);
    }
}

} // namespace io
} // namespace lumo
