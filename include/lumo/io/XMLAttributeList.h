#ifndef LUMO_IO_XMLATTRIBUTELIST_H
#define LUMO_IO_XMLATTRIBUTELIST_H

#include <lumo/base/Base.h>
#include <lumo/base/UnicodeString.h>

namespace lumo {
namespace io {

/// The attributes of one start tag, in document order. Each holds its qualified name,
/// local name, namespace URI and value; lookups compare names exactly, code unit by
/// code unit. Copies share the strings (they are copy-on-write).
class LUMO_API XMLAttributeList : public base::CBase {
public:
    XMLAttributeList() noexcept;
    /// Copies the entries (the strings are shared); CMemoryException when out of memory.
    XMLAttributeList(XMLAttributeList const& other);
    /// Takes the other list's entries; the other list is left empty.
    XMLAttributeList(XMLAttributeList&& other) noexcept;
    /// Replaces the entries with copies of the other list's; CMemoryException when out of memory
    /// (the list is then unchanged).
    XMLAttributeList& operator=(XMLAttributeList const& other);
    ~XMLAttributeList();

    /// Appends an attribute. Throws CMemoryException when the list cannot grow (the
    /// list is then unchanged).
    void Add(base::CUnicodeString const& qualifiedName, base::CUnicodeString const& localName,
             base::CUnicodeString const& namespaceURI, base::CUnicodeString const& value);

    /// Removes every attribute, keeping the room they took for the next ones.
    void Clear() noexcept;

    /// The number of attributes.
    unsigned long GetLength() const noexcept { return m_count; }
    /// The parts of the attribute at `index`; an index past the end throws
    /// CArrayIndexOutOfBoundsException.
    ///@{
    base::CUnicodeString const& GetQualifiedName(unsigned long index) const;
    base::CUnicodeString const& GetLocalName(unsigned long index) const;
    base::CUnicodeString const& GetNamespaceURI(unsigned long index) const;
    base::CUnicodeString const& GetValue(unsigned long index) const;
    ///@}

    /// Whether an attribute of that local name and namespace URI (empty for none) is
    /// present. A null local name throws CXMLException "Invalid local name.", a null
    /// URI "Invalid namespace URI.".
    bool HasAttribute(unsigned short const* localName, unsigned short const* namespaceURI) const;
    /// Whether an attribute of that qualified name is present. A null name throws
    /// CXMLException "Invalid qualified name.".
    bool HasAttribute(unsigned short const* qualifiedName) const;
    /// The value of the attribute named by local name and URI. Null names as for
    /// HasAttribute; a missing attribute throws CXMLException "No such attribute.".
    base::CUnicodeString GetAttribute(unsigned short const* localName,
                                      unsigned short const* namespaceURI) const;
    /// The value of the attribute of that qualified name; failures as above.
    base::CUnicodeString GetAttribute(unsigned short const* qualifiedName) const;

private:
    struct Entry;

    /// The index of the attribute, or -1.
    long Find(unsigned short const* localName, unsigned short const* namespaceURI) const;
    long Find(unsigned short const* qualifiedName) const;
    Entry const& At(unsigned long index, int line) const;
    void Release() noexcept;

    Entry* m_entries;
    unsigned long m_count;
    unsigned long m_capacity;
};

} // namespace io
} // namespace lumo

#endif
