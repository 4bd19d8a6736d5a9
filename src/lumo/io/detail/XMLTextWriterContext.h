// The text writer's element contexts: one per open element, with the element's
// qualified name and the namespace prefixes declared on it, kept on a stack.
#ifndef LUMO_SRC_IO_DETAIL_XMLTEXTWRITERCONTEXT_H
#define LUMO_SRC_IO_DETAIL_XMLTEXTWRITERCONTEXT_H

#include <lumo/base/UnicodeString.h>
#include <lumo/util/UnicodeStringMap.h>

#include <memory>
#include <vector>

namespace lumo {
namespace io {
namespace detail {

// One open element. The default namespace is kept beside the prefix map, whose
// keys cannot be empty.
class CXMLTextWriterContext {
public:
    CXMLTextWriterContext() : m_hasDefault(false), m_hasElementNamespace(false) {}

    // Makes the context that of a new element named prefix:local (just local when
    // the prefix length is 0), forgetting its earlier declarations. Throws
    // CMemoryException.
    void Reset(unsigned short const* prefix, unsigned long prefixLength,
               unsigned short const* local, unsigned long localLength);

    base::CUnicodeString const& GetName() const { return m_name; }

    // The namespace the element was opened in, when it was given with the element;
    // a later declaration on the start tag must not move the element out of it.
    // Throws CMemoryException.
    void SetElementNamespace(unsigned short const* uri);
    // Null when the element was opened by its qualified name alone.
    unsigned short const* GetElementNamespace() const {
        return m_hasElementNamespace ? static_cast<unsigned short const*>(m_elementNamespace)
                                     : nullptr;
    }

    // Throws CXMLException "This start element already contains default namespace
    // declaration." when one was declared already.
    void DeclareDefaultNamespace(unsigned short const* uri);
    bool HasDefaultNamespace() const { return m_hasDefault; }
    base::CUnicodeString const& GetDefaultNamespace() const { return m_default; }

    // Enters prefix -> uri (replacing an earlier entry). Throws CMemoryException.
    void DeclarePrefix(unsigned short const* prefix, unsigned short const* uri);
    // The URI declared here for `prefix` (n units), or null.
    unsigned short const* FindPrefix(unsigned short const* prefix, unsigned long n) const;
    // The first prefix declared here for `uri`, or null.
    unsigned short const* FindPrefixOf(unsigned short const* uri) const;

private:
    base::CUnicodeString m_name;
    util::CUnicodeStringMap m_prefixes;
    base::CUnicodeString m_default;
    bool m_hasDefault;
    base::CUnicodeString m_elementNamespace;
    bool m_hasElementNamespace;
};

// The open elements, innermost on top. Popped contexts are kept for reuse, so a
// steady nesting depth allocates nothing per element.
class CXMLTextWriterContextStack {
public:
    CXMLTextWriterContextStack() : m_depth(0) {}

    bool IsEmpty() const { return m_depth == 0; }
    unsigned long GetDepth() const { return m_depth; }
    // The innermost context; the stack must not be empty.
    CXMLTextWriterContext& Top() { return *m_contexts[m_depth - 1]; }

    // Opens a context for the element prefix:local (see Reset). Throws
    // CMemoryException or std::bad_alloc, leaving the stack as it was.
    CXMLTextWriterContext& Push(unsigned short const* prefix, unsigned long prefixLength,
                                unsigned short const* local, unsigned long localLength);
    void Pop() { --m_depth; }

    // The URI `prefix` (n units) stands for in the open contexts, innermost first;
    // "xml" is always bound. Null when undeclared.
    unsigned short const* LookupPrefix(unsigned short const* prefix, unsigned long n) const;
    // The default namespace in scope; null when none was declared.
    unsigned short const* LookupDefaultNamespace() const;
    // A prefix that stands for `uri` in scope (not hidden by an inner declaration of
    // the same prefix), or null.
    unsigned short const* LookupPrefixOf(unsigned short const* uri) const;

private:
    std::vector<std::unique_ptr<CXMLTextWriterContext>> m_contexts;
    unsigned long m_depth;
};

} // namespace detail
} // namespace io
} // namespace lumo

#endif
