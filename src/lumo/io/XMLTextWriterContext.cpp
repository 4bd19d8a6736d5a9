// One open element of the text writer: its name and the namespaces declared on it.
#include "detail/XMLTextWriterContext.h"

#include <lumo/io/IOException.h>
#include <vela/Ucs.h>

#include <cstring>

namespace lumo {
namespace io {
namespace detail {

namespace {
char const kUnit[] = "lumo/io/XMLTextWriterContext";
} // namespace

void CXMLTextWriterContext::Reset(unsigned short const* prefix, unsigned long prefixLength,
                                  unsigned short const* local, unsigned long localLength) {
    unsigned long const n = prefixLength == 0 ? localLength : prefixLength + 1 + localLength;
    unsigned short* name = m_name.GetBuffer(n);
    if (prefixLength > 0) {
        std::memcpy(name, prefix, prefixLength * sizeof(unsigned short));
        name[prefixLength] = ':';
        name += prefixLength + 1;
    }
    std::memcpy(name, local, localLength * sizeof(unsigned short));
    m_name.SetLength(n);
    if (!m_prefixes.IsEmpty())
        m_prefixes.RemoveAll();
    m_hasDefault = false;
    m_hasElementNamespace = false;
}

void CXMLTextWriterContext::SetElementNamespace(unsigned short const* uri) {
    m_elementNamespace = uri;
    m_hasElementNamespace = true;
}

void CXMLTextWriterContext::DeclareDefaultNamespace(unsigned short const* uri) {
    if (m_hasDefault)
        throw CXMLException(kUnit, __LINE__,
                            "This start element already contains default namespace declaration.",
                            nullptr);
    m_default = uri;
    m_hasDefault = true;
}

void CXMLTextWriterContext::DeclarePrefix(unsigned short const* prefix, unsigned short const* uri) {
    m_prefixes.Put(prefix, uri);
}

unsigned short const* CXMLTextWriterContext::FindPrefix(unsigned short const* prefix,
                                                        unsigned long n) const {
    for (unsigned long i = 0; i < m_prefixes.GetSize(); ++i) {
        base::CUnicodeString const& key = m_prefixes.GetKeyAt(i);
        if (key.GetLength() == n && Vela::ucsncmp(key, prefix, n) == 0)
            return m_prefixes.GetAt(i);
    }
    return nullptr;
}

unsigned short const* CXMLTextWriterContext::FindPrefixOf(unsigned short const* uri) const {
    long const index = m_prefixes.GetIndexOf(uri);
    if (index < 0)
        return nullptr;
    return m_prefixes.GetKeyAt(static_cast<unsigned long>(index));
}

} // namespace detail
} // namespace io
} // namespace lumo
