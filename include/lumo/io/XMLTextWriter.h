// The XML writer that prints XML text, line by line, through a print writer over
// an encoding writer on a byte stream.
#ifndef LUMO_IO_XMLTEXTWRITER_H
#define LUMO_IO_XMLTEXTWRITER_H

#include <lumo/base/Ref.h>
#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/OutputStream.h>
#include <lumo/io/PrintWriter.h>
#include <lumo/io/XMLWriter.h>

#include <memory>
#include <vector>

namespace IO {
class Location;
}

namespace lumo {
namespace io {

namespace detail {
class CXMLTextWriterContextStack;
}

/// Writes XML text. Every start tag, end tag, comment, processing instruction and
/// CDATA section ends with a line break (the print writer's CR LF); there is no
/// indentation. A start tag stays open ("<name" and its attributes) until the next
/// content, child or end: WriteEndElement then prints the short form "/>". An
/// element written with its value (WriteElementString and the typed element writes)
/// takes one line: `<name>value</name>`.
///
/// Text and attribute values are escaped in one pass: "&" "<" ">" "'" and the
/// quotation mark become &amp; &lt; &gt; &apos; &quot;. Comments, CDATA sections
/// and processing instructions are printed unescaped.
///
/// Numbers: the element and attribute forms write short "%hd" (attributes "%d"),
/// long "%ld", unsigned long "%lu", 64-bit "%lld" / "%llu", float "%g" and double
/// "%lg" (six significant digits: 1.5 is 1.5, the largest float 3.40282e+38, so a
/// value that needs more digits reads back rounded). The plain content writes (WriteBool to
/// WriteDouble) print through the print writer's own typed Print, so WriteDouble(1.5)
/// writes 1.500000.
///
/// Checks, all made before anything of the call is written, so that a failed call
/// leaves the output as it was and the writer in its state before the call:
///   - after Close: CIOException "Writer closed.";
///   - before WriteStartDocument: CXMLException "Document hasn't been started yet.";
///     a second WriteStartDocument: "Document has already been started.";
///   - content (text, typed content, binary, CDATA, entity references) outside the
///     root element: "Document root hasn't been written yet." before it, "Document
///     root has already been written." after it; a second root element: the latter;
///   - WriteEndElement / WriteFullEndElement with no open element: "There is no
///     start elements to close in the current context.";
///   - attributes and namespace declarations with no open start tag: "Attributes
///     must be written at start element."; the same attribute name twice on one
///     start tag: "Duplicate attribute.";
///   - names (XML 1.0 Name rules, and the namespace rules: at most one ':' that
///     neither starts nor ends the name): null or empty "Invalid local name.", a ':'
///     in a local name "Local name must be unqualified name.", any other illegal
///     name "Invalid character error."; prefixes: null, empty or "xmlns" "Invalid
///     prefix.", illegal characters "Invalid character error.";
///   - namespace URIs: null, or empty where a prefix is bound, or another URI for
///     "xml", or a declaration that would bind the XML namespace name to another
///     prefix or as the default namespace, or declare the xmlns namespace name:
///     "Invalid namespace URI.";
///   - a prefix not declared in an open element (the open start tag included) for
///     that URI: "Undeclared namespace."; a second default namespace declaration on
///     one start tag: "This start element already contains default namespace
///     declaration." (also for a default declaration that would move an element
///     opened with WriteStartElement(local, uri) out of its namespace); one prefix
///     bound to two URIs on one start tag, or the element's own prefix bound away
///     from the URI it was opened with: "This start element already declares the
///     prefix.";
///   - characters that XML does not allow (controls other than tab, LF and CR, an
///     unpaired surrogate, U+FFFE, U+FFFF) in any text: "Invalid character error.";
///   - a comment holding "--" or ending with "-": "Invalid comment text."; a CDATA
///     section holding "]]>": "Invalid CDATA text."; a processing instruction
///     target that is not a name or is "xml" in any case: "Invalid processing
///     instruction target."; data holding "?>": "Invalid processing instruction
///     data.";
///   - memory exhausted: CIOException "Memory full.".
/// Failures of the stream pass through as the stream reports them (CIOException).
///
/// Namespaces: WriteStartElement(prefix, local, uri) declares xmlns:prefix="uri" on
/// the element unless the prefix already stands for that URI; WriteStartElement
/// (local, uri) declares xmlns="uri" unless that is already the default namespace.
/// A prefixed name given whole (the (name) forms) must use a prefix declared on an
/// enclosing element or, for attributes, on the open start tag. WriteAttribute
/// (local, uri, value) uses a prefix declared for the URI (an empty URI: no prefix).
/// WriteAttribute with the name "xmlns" (also as a local name with an empty URI) or a
/// name prefixed "xmlns:" is a namespace declaration.
///
/// The destructor neither flushes nor closes: what was not flushed is lost.
class LUMO_API CXMLTextWriter : public CXMLWriter {
    LUMO_DECLARE_CLASS(CXMLTextWriter);

public:
    /// Writes to `out` (shared) in the encoding named `encoding` (looked up in the
    /// encoder registry and written into the declaration as given). `bufferSize` is
    /// the size, in UTF-16 units, of the writer's own buffer, which collects the
    /// output and hands it to the print writer in blocks; 0 means 8192 and smaller
    /// sizes are raised to 64 (a single value longer than the buffer still goes
    /// out whole). A null stream: CIllegalArgumentException "Invalid output
    /// stream."; a null or empty encoding: CIllegalArgumentException "Invalid
    /// encoding specification."; an unknown encoding:
    /// CUnsupportedEncodingException; no memory: CIOException "Memory full.".
    CXMLTextWriter(base::CRef<COutputStream> const& out, char const* encoding,
                   unsigned long bufferSize);
    /// As above, borrowing `out`; Close still closes it.
    CXMLTextWriter(COutputStream* out, char const* encoding, unsigned long bufferSize);
    /// Writes a new file at `location` (an existing one is replaced). The encoding
    /// is checked before the file is opened; failures to open pass through from
    /// CFileOutputStream.
    CXMLTextWriter(IO::Location const& location, char const* encoding, unsigned long bufferSize);
    ~CXMLTextWriter() override;

    /// The encoding name as given to the constructor.
    base::CString const& GetEncoding() const { return m_encoding; }

    /// "<?xml version="1.0" encoding="NAME"?>" and a line break.
    void WriteStartDocument() override;
    /// Closes every open element as WriteEndElement does, then flushes (as Flush).
    /// Fails with "Document root hasn't been written yet." when there was no root.
    /// Afterwards only comments, processing instructions and white space may follow.
    void WriteEndDocument() override;
    /// "<![CDATA[", text, "]]>", line break. Inside the root element only.
    void WriteCDATA(unsigned short const* text) override;
    /// "<!-- ", text, "-->", line break (a blank after the opener only).
    void WriteComment(unsigned short const* text) override;
    /// "<?", target, " ", data, "?>", line break; null data is empty.
    void WriteProcessingInstruction(unsigned short const* target,
                                    unsigned short const* data) override;
    /// "&name;" as content. A document written here has no DTD, so only the five
    /// predefined entities amp, lt, gt, apos and quot are accepted: another legal
    /// name fails with CXMLException "Undeclared entity.".
    void WriteEntityRef(unsigned short const* name) override;
    /// The text as it stands, after closing an open start tag; allowed wherever a
    /// comment is. Only blanks, tabs, CR and LF: anything else (or null) fails with
    /// CXMLException "Invalid whitespace.".
    void WriteWhitespace(unsigned short const* text) override;
    void WriteStartElement(unsigned short const* prefix, unsigned short const* local,
                           unsigned short const* uri) override;
    void WriteStartElement(unsigned short const* local, unsigned short const* uri) override;
    void WriteStartElement(unsigned short const* name) override;
    void WriteEndElement() override;
    void WriteFullEndElement() override;

    void WriteElementFloat(unsigned short const* local, unsigned short const* uri,
                           float value) override;
    void WriteElementFloat(unsigned short const* name, float value) override;
    void WriteElementDouble(unsigned short const* local, unsigned short const* uri,
                            double value) override;
    void WriteElementDouble(unsigned short const* name, double value) override;
    /// A null value gives an empty element in the long form, `<name></name>`.
    void WriteElementString(unsigned short const* local, unsigned short const* uri,
                            unsigned short const* value) override;
    void WriteElementString(unsigned short const* name, unsigned short const* value) override;

    /// A null value is the empty value.
    void WriteAttribute(unsigned short const* prefix, unsigned short const* local,
                        unsigned short const* uri, unsigned short const* value) override;
    void WriteAttribute(unsigned short const* local, unsigned short const* uri,
                        unsigned short const* value) override;
    void WriteAttribute(unsigned short const* name, unsigned short const* value) override;
    /// " xmlns="uri"" (an empty URI undeclares the default namespace).
    void WriteAttrDefaultNamespaceDeclaration(unsigned short const* uri) override;
    /// " xmlns:prefix="uri""; declaring again what the start tag already declares
    /// (as WriteStartElement(prefix, local, uri) does) writes nothing. Binding the
    /// prefix of the element or of one of its attributes already written to another
    /// namespace fails with "This start element already declares the prefix.".
    void WriteAttrNamespaceDeclaration(unsigned short const* prefix,
                                       unsigned short const* uri) override;

    void WriteAttrFloat(unsigned short const* local, unsigned short const* uri,
                        float value) override;
    void WriteAttrFloat(unsigned short const* name, float value) override;
    void WriteAttrDouble(unsigned short const* local, unsigned short const* uri,
                         double value) override;
    void WriteAttrDouble(unsigned short const* name, double value) override;

    /// Content through the print writer's Print: "true"/"false", "%d", "%ld",
    /// "%lu", "%f", "%lf".
    void WriteBool(bool value) override;
    void WriteShort(short value) override;
    void WriteLong(long value) override;
    void WriteUnsignedLong(unsigned long value) override;
    void WriteFloat(float value) override;
    void WriteDouble(double value) override;
    /// Escaped text; null writes nothing (but still closes an open start tag).
    void WriteString(unsigned short const* text) override;
    /// CBinaryData's base64 / binhex text of data[offset .. offset + length); a null
    /// buffer writes nothing.
    void WriteBase64(char const* data, unsigned long offset, unsigned long length) override;
    void WriteBinHex(char const* data, unsigned long offset, unsigned long length) override;
    /// The buffer to the print writer, then the print writer's Flush.
    void Flush() override;
    /// Flushes, closes the print writer (and with it the stream) and releases it,
    /// even when flushing fails. A second Close does nothing.
    void Close() override;

    /// Content as numbers through the print writer: "%d", "%d", "%hu", "%d", "%u".
    ///@{
    void WriteChar(char value);
    void WriteUnsignedChar(unsigned char value);
    void WriteUnsignedShort(unsigned short value);
    void WriteInt(int value);
    void WriteUnsignedInt(unsigned int value);
    ///@}
    /// Elements and attributes with a number: char "%d", unsigned char "%u",
    /// unsigned short "%hu", 64-bit "%lld" and "%llu".
    ///@{
    void WriteElementChar(unsigned short const* local, unsigned short const* uri, char value);
    void WriteElementChar(unsigned short const* name, char value);
    void WriteElementUnsignedChar(unsigned short const* local, unsigned short const* uri,
                                  unsigned char value);
    void WriteElementUnsignedChar(unsigned short const* name, unsigned char value);
    void WriteElementUnsignedShort(unsigned short const* local, unsigned short const* uri,
                                   unsigned short value);
    void WriteElementUnsignedShort(unsigned short const* name, unsigned short value);
    void WriteElementInt64(unsigned short const* local, unsigned short const* uri, long long value);
    void WriteElementInt64(unsigned short const* name, long long value);
    void WriteElementUnsignedInt64(unsigned short const* local, unsigned short const* uri,
                                   unsigned long long value);
    void WriteElementUnsignedInt64(unsigned short const* name, unsigned long long value);
    void WriteAttrChar(unsigned short const* local, unsigned short const* uri, char value);
    void WriteAttrChar(unsigned short const* name, char value);
    void WriteAttrUnsignedChar(unsigned short const* local, unsigned short const* uri,
                               unsigned char value);
    void WriteAttrUnsignedChar(unsigned short const* name, unsigned char value);
    void WriteAttrUnsignedShort(unsigned short const* local, unsigned short const* uri,
                                unsigned short value);
    void WriteAttrUnsignedShort(unsigned short const* name, unsigned short value);
    void WriteAttrInt64(unsigned short const* local, unsigned short const* uri, long long value);
    void WriteAttrInt64(unsigned short const* name, long long value);
    void WriteAttrUnsignedInt64(unsigned short const* local, unsigned short const* uri,
                                unsigned long long value);
    void WriteAttrUnsignedInt64(unsigned short const* name, unsigned long long value);
    ///@}

    /// Content: the same as WriteBool ... WriteDouble and WriteString.
    ///@{
    void Write(bool value) { WriteBool(value); }
    void Write(short value) { WriteShort(value); }
    void Write(long value) { WriteLong(value); }
    void Write(unsigned long value) { WriteUnsignedLong(value); }
    void Write(float value) { WriteFloat(value); }
    void Write(double value) { WriteDouble(value); }
    void Write(unsigned short const* text) { WriteString(text); }
    ///@}

private:
    class CCallScope;
    struct CName;
    struct CFreeUnits {
        void operator()(unsigned short* units) const;
    };

    void Init(base::CRef<COutputStream> const& shared, COutputStream* out, char const* encoding,
              unsigned long bufferSize);
    void CheckOpen() const;
    void CheckStarted() const;
    void CheckContent() const;
    void CheckNewElement() const;
    void CheckStartTagOpen() const;

    void CloseStartTag();
    void OpenTag(CName const& name, unsigned short const* declaredUri);
    CName QualifiedElementName(unsigned short const* name) const;
    unsigned short const* DefaultToDeclare(unsigned short const* uri) const;
    void EndElement(bool full);
    void StartElement(CName const& name, unsigned short const* elementUri,
                      unsigned short const* declaredUri);
    void ElementWithValue(CName const& name, unsigned short const* declaredUri,
                          unsigned short const* value);
    CName RecordedAttribute(unsigned long& at) const;
    bool AttributeUsesPrefix(unsigned short const* prefix, unsigned long prefixLength) const;
    void AttributeText(CName const& name, unsigned short const* value);
    void AppendDeclaration(CName const& name, unsigned short const* uri);
    template <class Print> void PrintContent(Print print);

    void AppendName(CName const& name);
    void Append(unsigned short const* units, unsigned long n);
    void AppendAscii(char const* text);
    void AppendText(unsigned short const* text, bool escape);
    void MakeRoom(unsigned long n);
    void WriteOut(unsigned short const* units, unsigned long n);
    void FlushBuffer();

    base::CString m_encoding;
    base::CRef<CPrintWriter> m_printWriter;
    base::CUnicodeString m_scratch;
    std::unique_ptr<detail::CXMLTextWriterContextStack> m_contexts;
    bool m_documentStarted;
    bool m_rootWritten;
    bool m_startTagOpen;
    /// The output collected before it goes to the print writer. Units from m_mark on
    /// belong to the call in progress: they are dropped if the call fails, and are
    /// not handed on before it ends.
    std::unique_ptr<unsigned short[], CFreeUnits> m_buffer;
    unsigned long m_capacity;
    unsigned long m_count;
    unsigned long m_mark;
    /// The qualified attribute names of the open start tag, each followed by a 0.
    std::vector<unsigned short> m_attributeNames;
};

} // namespace io
} // namespace lumo

#endif
