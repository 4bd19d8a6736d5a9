// The attribute list of a start-element token: a small array of name/value records
// in document order, searched linearly (start tags carry few attributes).
#include <lumo/io/XMLAttributeList.h>

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>

#include <cstdlib>
#include <new>
#include <utility>

namespace lumo {
namespace io {

using base::CUnicodeString;

namespace {
char const kUnit[] = "lumo/io/XMLAttributeList";
} // namespace

struct XMLAttributeList::Entry {
    CUnicodeString qualifiedName;
    CUnicodeString localName;
    CUnicodeString namespaceURI;
    CUnicodeString value;
};

XMLAttributeList::XMLAttributeList() noexcept : m_entries(nullptr), m_count(0), m_capacity(0) {}

XMLAttributeList::XMLAttributeList(XMLAttributeList const& other)
    : m_entries(nullptr), m_count(0), m_capacity(0) {
    if (other.m_count == 0)
        return;
    m_entries = static_cast<Entry*>(std::malloc(other.m_count * sizeof(Entry)));
    if (m_entries == nullptr)
        throw base::CMemoryException(kUnit, __LINE__);
    m_capacity = other.m_count;
    // Copying the strings only shares their buffers: it cannot fail.
    for (; m_count < other.m_count; ++m_count)
        ::new (static_cast<void*>(m_entries + m_count)) Entry(other.m_entries[m_count]);
}

XMLAttributeList::XMLAttributeList(XMLAttributeList&& other) noexcept
    : m_entries(other.m_entries), m_count(other.m_count), m_capacity(other.m_capacity) {
    other.m_entries = nullptr;
    other.m_count = 0;
    other.m_capacity = 0;
}

XMLAttributeList& XMLAttributeList::operator=(XMLAttributeList const& other) {
    if (this != &other) {
        XMLAttributeList copy(other);
        std::swap(m_entries, copy.m_entries);
        std::swap(m_count, copy.m_count);
        std::swap(m_capacity, copy.m_capacity);
    }
    return *this;
}

XMLAttributeList::~XMLAttributeList() {
    Release();
}

void XMLAttributeList::Release() noexcept {
    for (unsigned long i = 0; i < m_count; ++i)
        m_entries[i].~Entry();
    std::free(m_entries);
    m_entries = nullptr;
    m_count = 0;
    m_capacity = 0;
}

void XMLAttributeList::Clear() noexcept {
    for (unsigned long i = 0; i < m_count; ++i)
        m_entries[i].~Entry();
    m_count = 0;
}

void XMLAttributeList::Add(CUnicodeString const& qualifiedName, CUnicodeString const& localName,
                           CUnicodeString const& namespaceURI, CUnicodeString const& value) {
    if (m_count == m_capacity) {
        unsigned long const capacity = m_capacity == 0 ? 4 : m_capacity * 2;
        Entry* fresh = static_cast<Entry*>(std::malloc(capacity * sizeof(Entry)));
        if (fresh == nullptr)
            throw base::CMemoryException(kUnit, __LINE__);
        // The strings are one pointer each: moving them is a plain copy.
        for (unsigned long i = 0; i < m_count; ++i) {
            ::new (static_cast<void*>(fresh + i)) Entry(std::move(m_entries[i]));
            m_entries[i].~Entry();
        }
        std::free(m_entries);
        m_entries = fresh;
        m_capacity = capacity;
    }
    ::new (static_cast<void*>(m_entries + m_count))
        Entry{qualifiedName, localName, namespaceURI, value};
    ++m_count;
}

XMLAttributeList::Entry const& XMLAttributeList::At(unsigned long index, int line) const {
    if (index >= m_count)
        throw base::CArrayIndexOutOfBoundsException(kUnit, static_cast<unsigned long>(line));
    return m_entries[index];
}

CUnicodeString const& XMLAttributeList::GetQualifiedName(unsigned long index) const {
    return At(index, __LINE__).qualifiedName;
}

CUnicodeString const& XMLAttributeList::GetLocalName(unsigned long index) const {
    return At(index, __LINE__).localName;
}

CUnicodeString const& XMLAttributeList::GetNamespaceURI(unsigned long index) const {
    return At(index, __LINE__).namespaceURI;
}

CUnicodeString const& XMLAttributeList::GetValue(unsigned long index) const {
    return At(index, __LINE__).value;
}

long XMLAttributeList::Find(unsigned short const* localName,
                            unsigned short const* namespaceURI) const {
    if (localName == nullptr)
        throw CXMLException(kUnit, __LINE__, "Invalid local name.", nullptr);
    if (namespaceURI == nullptr)
        throw CXMLException(kUnit, __LINE__, "Invalid namespace URI.", nullptr);
    for (unsigned long i = 0; i < m_count; ++i)
        if (m_entries[i].localName == localName && m_entries[i].namespaceURI == namespaceURI)
            return static_cast<long>(i);
    return -1;
}

long XMLAttributeList::Find(unsigned short const* qualifiedName) const {
    if (qualifiedName == nullptr)
        throw CXMLException(kUnit, __LINE__, "Invalid qualified name.", nullptr);
    for (unsigned long i = 0; i < m_count; ++i)
        if (m_entries[i].qualifiedName == qualifiedName)
            return static_cast<long>(i);
    return -1;
}

bool XMLAttributeList::HasAttribute(unsigned short const* localName,
                                    unsigned short const* namespaceURI) const {
    return Find(localName, namespaceURI) >= 0;
}

bool XMLAttributeList::HasAttribute(unsigned short const* qualifiedName) const {
    return Find(qualifiedName) >= 0;
}

CUnicodeString XMLAttributeList::GetAttribute(unsigned short const* localName,
                                              unsigned short const* namespaceURI) const {
    long const index = Find(localName, namespaceURI);
    if (index < 0)
        throw CXMLException(kUnit, __LINE__, "No such attribute.", nullptr);
    return m_entries[index].value;
}

CUnicodeString XMLAttributeList::GetAttribute(unsigned short const* qualifiedName) const {
    long const index = Find(qualifiedName);
    if (index < 0)
        throw CXMLException(kUnit, __LINE__, "No such attribute.", nullptr);
    return m_entries[index].value;
}

} // namespace io
} // namespace lumo
