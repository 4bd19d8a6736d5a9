#ifndef LUMO_IO_XMLTOKEN_H
#define LUMO_IO_XMLTOKEN_H

#include <lumo/base/Base.h>
#include <lumo/base/Ref.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/XMLAttributeList.h>

#include <cstddef>

namespace lumo {
namespace io {

/// The kind of a token. The numbers are fixed: readers and their users compare them.
/// No other kind is ever produced (the XML and document type declarations make none).
enum XMLTokenType {
    XMLTokenComment = 1,
    XMLTokenProcessingInstruction = 2,
    XMLTokenText = 3,
    XMLTokenCDATA = 4,
    XMLTokenStartElement = 5,
    XMLTokenEndElement = 6
};

/// One markup event of a document. Tokens are immutable once built. Every token
/// interface derives virtually from this one, so a token that implements an interface
/// and a shared implementation base has a single IXMLToken part.
class LUMO_API IXMLToken : public base::CBase {
public:
    virtual ~IXMLToken();
    /// The token's kind.
    virtual XMLTokenType GetType() const = 0;
    /// The token's text: the character data of a text, CDATA or comment token, the
    /// target of a processing instruction, the qualified name of an element token.
    virtual base::CUnicodeString GetValue() const = 0;
};

/// Character data (type 3).
class LUMO_API IXMLTextToken : public virtual IXMLToken {
public:
    ~IXMLTextToken() override;
};

/// Character data from a CDATA section, without its delimiters (type 4).
class LUMO_API IXMLCDATAToken : public virtual IXMLToken {
public:
    ~IXMLCDATAToken() override;
};

/// A comment's text, without its delimiters (type 1).
class LUMO_API IXMLCommentToken : public virtual IXMLToken {
public:
    ~IXMLCommentToken() override;
};

/// A processing instruction (type 2): GetValue is the target.
class LUMO_API IXMLPIToken : public virtual IXMLToken {
public:
    ~IXMLPIToken() override;
    /// The instruction's data (empty when it has none).
    virtual base::CUnicodeString GetData() const = 0;
};

/// What start and end tags share: the element's names.
class LUMO_API IXMLElementToken : public virtual IXMLToken {
public:
    ~IXMLElementToken() override;
    /// True when the element has no namespace URI.
    virtual bool IsNamespaceURIEmpty() const = 0;
    /// The name as written, with its prefix.
    virtual base::CUnicodeString GetQualifiedName() const = 0;
    /// The name without its prefix (the qualified name when namespaces are not known).
    virtual base::CUnicodeString GetLocalName() const = 0;
    /// The namespace URI, empty for none.
    virtual base::CUnicodeString GetNamespaceURI() const = 0;
};

/// A start tag (type 5) with its attributes. Names are zero-terminated UTF-16.
class LUMO_API IXMLStartElementToken : public virtual IXMLElementToken {
public:
    ~IXMLStartElementToken() override;
    /// Whether the attribute is present; a missing one gives false, never an exception.
    /// A null local name throws CXMLException "Invalid local name.", a null URI
    /// "Invalid namespace URI.".
    virtual bool HasAttribute(unsigned short const* localName,
                              unsigned short const* namespaceURI) const = 0;
    /// As above by qualified name; null throws CXMLException "Invalid qualified name.".
    virtual bool HasAttribute(unsigned short const* qualifiedName) const = 0;
    /// The attribute's value; a missing attribute throws CXMLException (the text
    /// tokens say "No such attribute.").
    ///@{
    virtual base::CUnicodeString GetAttribute(unsigned short const* localName,
                                              unsigned short const* namespaceURI) const = 0;
    virtual base::CUnicodeString GetAttribute(unsigned short const* qualifiedName) const = 0;
    ///@}
};

/// An end tag (type 6).
class LUMO_API IXMLEndElementToken : public virtual IXMLElementToken {
public:
    ~IXMLEndElementToken() override;
};

/// The implementation base of the text tokenizer's tokens: it holds the type.
class LUMO_API CXMLToken : public virtual IXMLToken {
public:
    /// A token of kind `type`.
    explicit CXMLToken(XMLTokenType type) noexcept : m_type(type) {}
    ~CXMLToken() override;

    XMLTokenType GetType() const override;

    /// Makes the token for a run of character data: a CXMLCDATAToken when `isCDATA`,
    /// a CXMLTextToken otherwise. Throws CMemoryException when out of memory.
    static base::CRef<IXMLToken> CreateCharacterToken(base::CUnicodeString const& characters,
                                                      bool isCDATA);

    /// A reader makes and drops one token per markup event, so tokens come from the
    /// library's per-thread block cache rather than from the heap each time. A failed
    /// allocation throws CMemoryException.
    ///@{
    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size) noexcept;
    ///@}

private:
    XMLTokenType m_type;
};

/// Character data held as a copied string.
class LUMO_API CXMLTextToken : public IXMLTextToken, public CXMLToken {
public:
    /// Holds a copy of `value` (shared, copy-on-write).
    explicit CXMLTextToken(base::CUnicodeString const& value) noexcept;
    ~CXMLTextToken() override;
    base::CUnicodeString GetValue() const override;

private:
    base::CUnicodeString m_value;
};

/// CDATA section content held as a copied string.
class LUMO_API CXMLCDATAToken : public IXMLCDATAToken, public CXMLToken {
public:
    /// Holds a copy of `value` (shared, copy-on-write).
    explicit CXMLCDATAToken(base::CUnicodeString const& value) noexcept;
    ~CXMLCDATAToken() override;
    base::CUnicodeString GetValue() const override;

private:
    base::CUnicodeString m_value;
};

/// A comment held as a copied string.
class LUMO_API CXMLCommentToken : public IXMLCommentToken, public CXMLToken {
public:
    /// Holds a copy of `value` (shared, copy-on-write).
    explicit CXMLCommentToken(base::CUnicodeString const& value) noexcept;
    ~CXMLCommentToken() override;
    base::CUnicodeString GetValue() const override;

private:
    base::CUnicodeString m_value;
};

/// A processing instruction held as copied target and data.
class LUMO_API CXMLPIToken : public IXMLPIToken, public CXMLToken {
public:
    /// Holds copies of the target and the data.
    CXMLPIToken(base::CUnicodeString const& target, base::CUnicodeString const& data) noexcept;
    ~CXMLPIToken() override;
    base::CUnicodeString GetValue() const override;
    base::CUnicodeString GetData() const override;

private:
    base::CUnicodeString m_target;
    base::CUnicodeString m_data;
};

/// The names of an element held as copied strings; the base of the start and end
/// tokens below.
class LUMO_API CXMLElementToken : public virtual IXMLElementToken, public CXMLToken {
public:
    ~CXMLElementToken() override;
    /// The qualified name.
    base::CUnicodeString GetValue() const override;
    bool IsNamespaceURIEmpty() const override;
    base::CUnicodeString GetQualifiedName() const override;
    base::CUnicodeString GetLocalName() const override;
    base::CUnicodeString GetNamespaceURI() const override;

protected:
    /// The namespace form.
    CXMLElementToken(XMLTokenType type, base::CUnicodeString const& namespaceURI,
                     base::CUnicodeString const& localName,
                     base::CUnicodeString const& qualifiedName) noexcept;
    /// Without namespace: the local name is the qualified name, the URI empty.
    CXMLElementToken(XMLTokenType type, base::CUnicodeString const& qualifiedName) noexcept;

private:
    base::CUnicodeString m_qualifiedName;
    base::CUnicodeString m_localName;
    base::CUnicodeString m_namespaceURI;
};

/// A start tag with its names and a copy of its attribute list.
class LUMO_API CXMLStartElementToken : public IXMLStartElementToken, public CXMLElementToken {
public:
    /// A start tag with a copy of `attributes`, in the namespace form or by qualified name alone
    /// (local name = qualified name, empty URI). CMemoryException when the list cannot be copied.
    ///@{
    CXMLStartElementToken(base::CUnicodeString const& namespaceURI,
                          base::CUnicodeString const& localName,
                          base::CUnicodeString const& qualifiedName,
                          XMLAttributeList const& attributes);
    CXMLStartElementToken(base::CUnicodeString const& qualifiedName,
                          XMLAttributeList const& attributes);
    ///@}
    /// The same, taking the list over instead of copying it.
    ///@{
    CXMLStartElementToken(base::CUnicodeString const& namespaceURI,
                          base::CUnicodeString const& localName,
                          base::CUnicodeString const& qualifiedName,
                          XMLAttributeList&& attributes) noexcept;
    CXMLStartElementToken(base::CUnicodeString const& qualifiedName,
                          XMLAttributeList&& attributes) noexcept;
    ///@}
    ~CXMLStartElementToken() override;

    bool HasAttribute(unsigned short const* localName,
                      unsigned short const* namespaceURI) const override;
    bool HasAttribute(unsigned short const* qualifiedName) const override;
    base::CUnicodeString GetAttribute(unsigned short const* localName,
                                      unsigned short const* namespaceURI) const override;
    base::CUnicodeString GetAttribute(unsigned short const* qualifiedName) const override;

    /// All attributes in document order.
    XMLAttributeList const& GetAttributes() const noexcept { return m_attributes; }

private:
    XMLAttributeList m_attributes;
};

/// An end tag with its names.
class LUMO_API CXMLEndElementToken : public IXMLEndElementToken, public CXMLElementToken {
public:
    /// An end tag in the namespace form, or by qualified name alone (local name = qualified name,
    /// empty URI).
    ///@{
    CXMLEndElementToken(base::CUnicodeString const& namespaceURI,
                        base::CUnicodeString const& localName,
                        base::CUnicodeString const& qualifiedName) noexcept;
    explicit CXMLEndElementToken(base::CUnicodeString const& qualifiedName) noexcept;
    ///@}
    ~CXMLEndElementToken() override;
};

} // namespace io
} // namespace lumo

#endif
