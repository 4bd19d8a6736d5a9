// The text writer's stack of open element contexts and the namespace look-ups
// that walk it from the innermost element outwards.
#include "detail/XMLTextWriterContext.h"

#include <vela/Ucs.h>

namespace lumo {
namespace io {
namespace detail {

namespace {

unsigned short const kXmlPrefix[] = {'x', 'm', 'l', 0};
// The namespace the prefix "xml" is bound to by definition.
unsigned short const kXmlNamespace[] = {
    'h', 't', 't', 'p', ':', '/', '/', 'w', 'w', 'w', '.', 'w', '3', '.', 'o', 'r', 'g', '/', 'X',
    'M', 'L', '/', '1', '9', '9', '8', '/', 'n', 'a', 'm', 'e', 's', 'p', 'a', 'c', 'e', 0};

} // namespace

CXMLTextWriterContext& CXMLTextWriterContextStack::Push(unsigned short const* prefix,
                                                        unsigned long prefixLength,
                                                        unsigned short const* local,
                                                        unsigned long localLength) {
    if (m_depth == m_contexts.size()) {
        // Either step may fail with std::bad_alloc; the writer turns that into its
        // own memory failure, and the stack stays as it was.
        std::unique_ptr<CXMLTextWriterContext> context(new CXMLTextWriterContext);
        m_contexts.push_back(std::move(context));
    }
    CXMLTextWriterContext& context = *m_contexts[m_depth];
    context.Reset(prefix, prefixLength, local, localLength);
    ++m_depth;
    return context;
}

unsigned short const* CXMLTextWriterContextStack::LookupPrefix(unsigned short const* prefix,
                                                               unsigned long n) const {
    for (unsigned long i = m_depth; i > 0; --i) {
        unsigned short const* uri = m_contexts[i - 1]->FindPrefix(prefix, n);
        if (uri != nullptr)
            return uri;
    }
    if (n == 3 && Vela::ucsncmp(prefix, kXmlPrefix, 3) == 0)
        return kXmlNamespace;
    return nullptr;
}

unsigned short const* CXMLTextWriterContextStack::LookupDefaultNamespace() const {
    for (unsigned long i = m_depth; i > 0; --i) {
        if (m_contexts[i - 1]->HasDefaultNamespace())
            return m_contexts[i - 1]->GetDefaultNamespace();
    }
    return nullptr;
}

unsigned short const* CXMLTextWriterContextStack::LookupPrefixOf(unsigned short const* uri) const {
    for (unsigned long i = m_depth; i > 0; --i) {
        unsigned short const* prefix = m_contexts[i - 1]->FindPrefixOf(uri);
        // An inner element may have bound the same prefix to another namespace.
        if (prefix != nullptr && Vela::ucscmp(LookupPrefix(prefix, Vela::ucslen(prefix)), uri) == 0)
            return prefix;
    }
    if (Vela::ucscmp(uri, kXmlNamespace) == 0)
        return kXmlPrefix;
    return nullptr;
}

} // namespace detail
} // namespace io
} // namespace lumo
