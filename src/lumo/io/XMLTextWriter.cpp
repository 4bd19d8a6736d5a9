// The XML text writer: checks every call against the document's state and the XML
// name rules, then prints its fixed line-oriented form into a buffer of UTF-16
// units that goes to the print writer in blocks.
#include <lumo/io/XMLTextWriter.h>

#include <lumo/base/BinaryData.h>
#include <lumo/base/Exception.h>
#include <lumo/io/FileOutputStream.h>
#include <lumo/io/IOException.h>
#include <lumo/io/OutputStreamWriter.h>
#include <lumo/io/UnsupportedEncodingException.h>
#include <lumo/io/WCharToCharConverter.h>
#include <vela/Location.h>
#include <vela/Ucs.h>

#include "detail/XMLTextWriterContext.h"
#include "detail/XMLValueText.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

namespace lumo {
namespace io {

namespace {

char const kUnit[] = "lumo/io/XMLTextWriter";

unsigned long const kDefaultBufferUnits = 8192;
unsigned long const kMinimumBufferUnits = 64;
// The most units one character of text can become ("&apos;").
unsigned long const kMaxEscapedUnits = 6;

// Flags of the ASCII characters, for names and for text.
enum : unsigned char {
    kNameStart = 1,
    kNameChar = 2,
    kInvalidInText = 4,
    kEscaped = 8,
};

constexpr std::array<unsigned char, 128> MakeAsciiFlags() {
    std::array<unsigned char, 128> flags{};
    for (int c = 0; c < 0x20; ++c)
        flags[c] = kInvalidInText;
    flags['\t'] = flags['\n'] = flags['\r'] = 0;
    for (int c = 'A'; c <= 'Z'; ++c)
        flags[c] = kNameStart | kNameChar;
    for (int c = 'a'; c <= 'z'; ++c)
        flags[c] = kNameStart | kNameChar;
    for (int c = '0'; c <= '9'; ++c)
        flags[c] = kNameChar;
    flags['_'] = kNameStart | kNameChar;
    flags['-'] = flags['.'] = kNameChar;
    flags['&'] = flags['<'] = flags['>'] = flags['\''] = flags['"'] = kEscaped;
    return flags;
}

constexpr std::array<unsigned char, 128> kAscii = MakeAsciiFlags();

// The replacement of each escaped character, and its length.
struct CEntity {
    unsigned short units[6];
    unsigned long length;
};
CEntity const kAmp = {{'&', 'a', 'm', 'p', ';'}, 5};
CEntity const kLt = {{'&', 'l', 't', ';'}, 4};
CEntity const kGt = {{'&', 'g', 't', ';'}, 4};
CEntity const kApos = {{'&', 'a', 'p', 'o', 's', ';'}, 6};
CEntity const kQuot = {{'&', 'q', 'u', 'o', 't', ';'}, 6};

CEntity const& EntityOf(unsigned short c) {
    switch (c) {
    case '&':
        return kAmp;
    case '<':
        return kLt;
    case '>':
        return kGt;
    case '\'':
        return kApos;
    default:
        return kQuot;
    }
}

// The print writer's line separator.
unsigned short const kCloseStartTag[] = {'>', '\r', '\n'};
unsigned short const kEmptyElementEnd[] = {'/', '>', '\r', '\n'};
unsigned short const kEndTagOpen[] = {'<', '/'};
unsigned short const kLineEnd[] = {'\r', '\n'};
unsigned short const kAttributeOpen[] = {'=', '"'};
unsigned short const kXmlns[] = {'x', 'm', 'l', 'n', 's', 0};
unsigned short const kXml[] = {'x', 'm', 'l', 0};
unsigned short const kEmpty[] = {0};
// The two namespace names the namespace rules reserve: the first belongs to the prefix
// "xml" alone, the second to no declaration at all.
unsigned short const kXmlUri[] = {'h', 't', 't', 'p', ':', '/', '/', 'w', 'w', 'w', '.', 'w', '3',
                                  '.', 'o', 'r', 'g', '/', 'X', 'M', 'L', '/', '1', '9', '9', '8',
                                  '/', 'n', 'a', 'm', 'e', 's', 'p', 'a', 'c', 'e', 0};
unsigned short const kXmlnsUri[] = {'h', 't', 't', 'p', ':', '/', '/', 'w', 'w', 'w',
                                    '.', 'w', '3', '.', 'o', 'r', 'g', '/', '2', '0',
                                    '0', '0', '/', 'x', 'm', 'l', 'n', 's', '/', 0};

bool IsNameStartCode(unsigned long c) {
    if (c < 0x80)
        return (kAscii[c] & kNameStart) != 0;
    return (c >= 0xC0 && c <= 0xD6) || (c >= 0xD8 && c <= 0xF6) || (c >= 0xF8 && c <= 0x2FF) ||
           (c >= 0x370 && c <= 0x37D) || (c >= 0x37F && c <= 0x1FFF) ||
           (c >= 0x200C && c <= 0x200D) || (c >= 0x2070 && c <= 0x218F) ||
           (c >= 0x2C00 && c <= 0x2FEF) || (c >= 0x3001 && c <= 0xD7FF) ||
           (c >= 0xF900 && c <= 0xFDCF) || (c >= 0xFDF0 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0xEFFFF);
}

bool IsNameCode(unsigned long c) {
    if (c < 0x80)
        return (kAscii[c] & kNameChar) != 0;
    return IsNameStartCode(c) || c == 0xB7 || (c >= 0x300 && c <= 0x36F) ||
           (c >= 0x203F && c <= 0x2040);
}

// True when s[0 .. n) is a name without a colon (the namespaces' NCName).
bool IsNCName(unsigned short const* s, unsigned long n) {
    if (n == 0)
        return false;
    for (unsigned long i = 0; i < n;) {
        bool const first = i == 0;
        unsigned long c = s[i++];
        if (c >= 0xD800 && c <= 0xDFFF) {
            if (c > 0xDBFF || i >= n || (s[i] & 0xFC00) != 0xDC00)
                return false;
            c = 0x10000 + ((c - 0xD800) << 10) + (s[i++] - 0xDC00u);
        }
        if (!(first ? IsNameStartCode(c) : IsNameCode(c)))
            return false;
    }
    return true;
}

bool SameText(unsigned short const* a, unsigned long n, unsigned short const* b) {
    return Vela::ucslen(b) == n && Vela::ucsncmp(a, b, n) == 0;
}

bool Contains(unsigned short const* text, char const* ascii) {
    unsigned short sub[4];
    unsigned long i = 0;
    for (; ascii[i] != 0; ++i)
        sub[i] = static_cast<unsigned char>(ascii[i]);
    sub[i] = 0;
    return Vela::ucsstr(text, sub) != nullptr;
}

[[noreturn]] void Fail(unsigned long line, char const* message) {
    throw CXMLException(kUnit, line, message, nullptr);
}

[[noreturn]] void MemoryFull(unsigned long line) {
    throw CIOException(kUnit, line, "Memory full.", nullptr);
}

// Checks of the parts of names; each throws the failure table's message.
unsigned long CheckLocalName(unsigned short const* local) {
    if (local == nullptr || local[0] == 0)
        Fail(__LINE__, "Invalid local name.");
    unsigned long const n = Vela::ucslen(local);
    if (Vela::ucschr(local, ':') != nullptr)
        Fail(__LINE__, "Local name must be unqualified name.");
    if (!IsNCName(local, n))
        Fail(__LINE__, "Invalid character error.");
    return n;
}

unsigned long CheckPrefix(unsigned short const* prefix) {
    if (prefix == nullptr || prefix[0] == 0)
        Fail(__LINE__, "Invalid prefix.");
    unsigned long const n = Vela::ucslen(prefix);
    if (!IsNCName(prefix, n))
        Fail(__LINE__, "Invalid character error.");
    // "xmlns" only ever declares; it names nothing.
    if (SameText(prefix, n, kXmlns))
        Fail(__LINE__, "Invalid prefix.");
    return n;
}

void CheckUri(unsigned short const* uri) {
    if (uri == nullptr)
        Fail(__LINE__, "Invalid namespace URI.");
}

} // namespace

// A name in its two parts; the prefix length is 0 for an unprefixed name.
struct CXMLTextWriter::CName {
    unsigned short const* prefix;
    unsigned long prefixLength;
    unsigned short const* local;
    unsigned long localLength;

    // A qualified name given whole: one colon at most, neither first nor last.
    static CName Parse(unsigned short const* name) {
        if (name == nullptr || name[0] == 0)
            Fail(__LINE__, "Invalid local name.");
        unsigned long const n = Vela::ucslen(name);
        unsigned short const* colon = Vela::ucschr(name, ':');
        CName parsed = {nullptr, 0, name, n};
        if (colon != nullptr) {
            parsed.prefix = name;
            parsed.prefixLength = static_cast<unsigned long>(colon - name);
            parsed.local = colon + 1;
            parsed.localLength = n - parsed.prefixLength - 1;
            if (!IsNCName(parsed.prefix, parsed.prefixLength))
                Fail(__LINE__, "Invalid character error.");
        }
        if (!IsNCName(parsed.local, parsed.localLength))
            Fail(__LINE__, "Invalid character error.");
        return parsed;
    }
};

// The span of one public call: the output it appends stays in the buffer until it
// ends, and if it fails the output and the flags are put back as they were.
class CXMLTextWriter::CCallScope {
public:
    explicit CCallScope(CXMLTextWriter& writer)
        : m_writer(writer), m_startTagOpen(writer.m_startTagOpen),
          m_rootWritten(writer.m_rootWritten), m_done(false) {
        writer.m_mark = writer.m_count;
    }
    ~CCallScope() {
        if (!m_done) {
            m_writer.m_count = m_writer.m_mark;
            m_writer.m_startTagOpen = m_startTagOpen;
            m_writer.m_rootWritten = m_rootWritten;
        }
    }
    CCallScope(CCallScope const&) = delete;
    CCallScope& operator=(CCallScope const&) = delete;

    void Commit() {
        m_done = true;
        m_writer.m_mark = m_writer.m_count;
    }

private:
    CXMLTextWriter& m_writer;
    bool m_startTagOpen;
    bool m_rootWritten;
    bool m_done;
};

void CXMLTextWriter::CFreeUnits::operator()(unsigned short* units) const {
    std::free(units);
}

LUMO_DEFINE_CLASS(CXMLTextWriter, "lumo::io::CXMLTextWriter", "lumo::io::CXMLWriter");

CXMLTextWriter::CXMLTextWriter(base::CRef<COutputStream> const& out, char const* encoding,
                               unsigned long bufferSize)
    : m_documentStarted(false), m_rootWritten(false), m_startTagOpen(false), m_capacity(0),
      m_count(0), m_mark(0) {
    Init(out, out.Get(), encoding, bufferSize);
}

CXMLTextWriter::CXMLTextWriter(COutputStream* out, char const* encoding, unsigned long bufferSize)
    : m_documentStarted(false), m_rootWritten(false), m_startTagOpen(false), m_capacity(0),
      m_count(0), m_mark(0) {
    Init(base::CRef<COutputStream>(), out, encoding, bufferSize);
}

CXMLTextWriter::CXMLTextWriter(IO::Location const& location, char const* encoding,
                               unsigned long bufferSize)
    : m_documentStarted(false), m_rootWritten(false), m_startTagOpen(false), m_capacity(0),
      m_count(0), m_mark(0) {
    // A bad encoding must not cost the caller an existing file.
    if (encoding == nullptr || *encoding == '\0')
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid encoding specification.");
    if (CWCharToCharConverterFactory::GetConverterFactory(encoding) == nullptr)
        throw CUnsupportedEncodingException(kUnit, __LINE__, encoding);
    base::CRef<COutputStream> file(new (kUnit, __LINE__) CFileOutputStream(location, false));
    Init(file, file.Get(), encoding, bufferSize);
}

CXMLTextWriter::~CXMLTextWriter() {}

void CXMLTextWriter::Init(base::CRef<COutputStream> const& shared, COutputStream* out,
                          char const* encoding, unsigned long bufferSize) {
    if (out == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid output stream.");
    if (encoding == nullptr || *encoding == '\0')
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid encoding specification.");
    try {
        m_encoding = encoding;
        COutputStreamWriter* const streamWriter =
            shared ? new (kUnit, __LINE__) COutputStreamWriter(shared, encoding)
                   : new (kUnit, __LINE__) COutputStreamWriter(out, encoding);
        base::CRef<CWriter> writer(streamWriter);
        m_printWriter = base::CRef<CPrintWriter>(new (kUnit, __LINE__) CPrintWriter(writer, false));
        m_contexts.reset(new detail::CXMLTextWriterContextStack);
    } catch (base::CMemoryException const&) {
        MemoryFull(__LINE__);
    } catch (std::bad_alloc const&) {
        MemoryFull(__LINE__);
    }
    m_capacity = bufferSize == 0
                     ? kDefaultBufferUnits
                     : (bufferSize < kMinimumBufferUnits ? kMinimumBufferUnits : bufferSize);
    if (m_capacity > 0x3FFFFFFFul)
        MemoryFull(__LINE__);
    m_buffer.reset(static_cast<unsigned short*>(std::malloc(m_capacity * sizeof(unsigned short))));
    if (!m_buffer)
        MemoryFull(__LINE__);
}

// ---- state checks -----------------------------------------------------------

void CXMLTextWriter::CheckOpen() const {
    if (!m_printWriter)
        throw CIOException(kUnit, __LINE__, "Writer closed.", nullptr);
}

void CXMLTextWriter::CheckStarted() const {
    CheckOpen();
    if (!m_documentStarted)
        Fail(__LINE__, "Document hasn't been started yet.");
}

void CXMLTextWriter::CheckContent() const {
    CheckStarted();
    if (m_contexts->IsEmpty()) {
        if (!m_rootWritten)
            Fail(__LINE__, "Document root hasn't been written yet.");
        Fail(__LINE__, "Document root has already been written.");
    }
}

void CXMLTextWriter::CheckNewElement() const {
    CheckStarted();
    if (m_contexts->IsEmpty() && m_rootWritten)
        Fail(__LINE__, "Document root has already been written.");
}

void CXMLTextWriter::CheckStartTagOpen() const {
    CheckStarted();
    if (!m_startTagOpen)
        Fail(__LINE__, "Attributes must be written at start element.");
}

// ---- the buffer -------------------------------------------------------------

void CXMLTextWriter::WriteOut(unsigned short const* units, unsigned long n) {
    // The encoder joins a surrogate pair only when its halves arrive in two writes,
    // so every high surrogate ends a write. Blocks without one (nearly all) are
    // passed over with a branch-free test.
    unsigned long const kBlock = 64;
    unsigned long start = 0;
    for (unsigned long block = 0; block < n; block += kBlock) {
        unsigned long const end = n - block < kBlock ? n : block + kBlock;
        unsigned int any = 0;
        for (unsigned long i = block; i < end; ++i)
            any |= (units[i] & 0xFC00u) == 0xD800u;
        if (any == 0)
            continue;
        for (unsigned long i = block; i < end; ++i) {
            if ((units[i] & 0xFC00u) == 0xD800u) {
                m_printWriter->Write(units, start, i + 1 - start);
                start = i + 1;
            }
        }
    }
    if (start < n)
        m_printWriter->Write(units, start, n - start);
}

void CXMLTextWriter::FlushBuffer() {
    if (m_count > 0)
        WriteOut(m_buffer.get(), m_count);
    m_count = 0;
    m_mark = 0;
}

void CXMLTextWriter::MakeRoom(unsigned long n) {
    // What earlier calls wrote can go; the running call's output stays so that a
    // failure can still take it back.
    if (m_mark > 0) {
        WriteOut(m_buffer.get(), m_mark);
        std::memmove(m_buffer.get(), m_buffer.get() + m_mark,
                     (m_count - m_mark) * sizeof(unsigned short));
        m_count -= m_mark;
        m_mark = 0;
    }
    if (m_capacity - m_count >= n)
        return;
    unsigned long const needed = m_count + n;
    unsigned long const larger = needed > m_capacity * 2 ? needed : m_capacity * 2;
    if (needed < m_count || larger > 0x3FFFFFFFul)
        MemoryFull(__LINE__);
    void* const block = std::realloc(m_buffer.get(), larger * sizeof(unsigned short));
    if (block == nullptr)
        MemoryFull(__LINE__);
    m_buffer.release();
    m_buffer.reset(static_cast<unsigned short*>(block));
    m_capacity = larger;
}

void CXMLTextWriter::Append(unsigned short const* units, unsigned long n) {
    if (m_capacity - m_count < n)
        MakeRoom(n);
    std::memcpy(m_buffer.get() + m_count, units, n * sizeof(unsigned short));
    m_count += n;
}

void CXMLTextWriter::AppendAscii(char const* text) {
    unsigned long const n = std::strlen(text);
    if (m_capacity - m_count < n)
        MakeRoom(n);
    unsigned short* out = m_buffer.get() + m_count;
    for (unsigned long i = 0; i < n; ++i)
        out[i] = static_cast<unsigned char>(text[i]);
    m_count += n;
}

void CXMLTextWriter::AppendName(CName const& name) {
    if (name.prefixLength > 0) {
        Append(name.prefix, name.prefixLength);
        unsigned short const colon = ':';
        Append(&colon, 1);
    }
    Append(name.local, name.localLength);
}

void CXMLTextWriter::AppendText(unsigned short const* text, bool escape) {
    if (text == nullptr)
        return;
    // One pass: each unit is checked, and copied or replaced by its entity.
    unsigned short* out = m_buffer.get();
    unsigned long count = m_count;
    for (unsigned short const* p = text;; ++p) {
        if (m_capacity - count < kMaxEscapedUnits) {
            m_count = count;
            MakeRoom(kMaxEscapedUnits);
            out = m_buffer.get();
            count = m_count;
        }
        unsigned short const c = *p;
        if (c < 0x80) {
            unsigned char const flags = kAscii[c];
            if ((flags & (kInvalidInText | kEscaped)) == 0) {
                out[count++] = c;
                continue;
            }
            if (c == 0)
                break;
            if ((flags & kInvalidInText) != 0)
                Fail(__LINE__, "Invalid character error.");
            if (!escape) {
                out[count++] = c;
                continue;
            }
            CEntity const& entity = EntityOf(c);
            for (unsigned long k = 0; k < entity.length; ++k)
                out[count + k] = entity.units[k];
            count += entity.length;
            continue;
        }
        if (c >= 0xD800) {
            if (c <= 0xDBFF) {
                if ((p[1] & 0xFC00) != 0xDC00)
                    Fail(__LINE__, "Invalid character error.");
                out[count++] = c;
                out[count++] = *++p;
                continue;
            }
            if (c <= 0xDFFF || c >= 0xFFFE)
                Fail(__LINE__, "Invalid character error.");
        }
        out[count++] = c;
    }
    m_count = count;
}

// ---- elements ---------------------------------------------------------------

void CXMLTextWriter::CloseStartTag() {
    if (m_startTagOpen) {
        Append(kCloseStartTag, 3);
        m_startTagOpen = false;
    }
}

void CXMLTextWriter::AppendDeclaration(CName const& name, unsigned short const* uri) {
    // Every declaration passes here, inside its call's scope, so a refusal leaves the
    // output as it was; a reader would reject these bindings as not well formed.
    if (Vela::ucscmp(uri, kXmlnsUri) == 0 ||
        (Vela::ucscmp(uri, kXmlUri) == 0 && !SameText(name.prefix, name.prefixLength, kXml)))
        Fail(__LINE__, "Invalid namespace URI.");
    if (name.prefixLength > 0) {
        AppendAscii(" xmlns:");
        Append(name.prefix, name.prefixLength);
    } else {
        AppendAscii(" xmlns");
    }
    Append(kAttributeOpen, 2);
    AppendText(uri, true);
    unsigned short const quote = '"';
    Append(&quote, 1);
}

// "<" and the name after closing an open start tag, with the namespace declaration
// the tag needs, if any.
inline void CXMLTextWriter::OpenTag(CName const& name, unsigned short const* declaredUri) {
    CloseStartTag();
    unsigned short const open = '<';
    Append(&open, 1);
    AppendName(name);
    if (declaredUri != nullptr)
        AppendDeclaration(name, declaredUri);
}

// A qualified element name, whose prefix must be declared and must not be "xmlns".
CXMLTextWriter::CName CXMLTextWriter::QualifiedElementName(unsigned short const* name) const {
    CName const parsed = CName::Parse(name);
    if (parsed.prefixLength > 0) {
        if (SameText(parsed.prefix, parsed.prefixLength, kXmlns))
            Fail(__LINE__, "Invalid prefix.");
        if (m_contexts->LookupPrefix(parsed.prefix, parsed.prefixLength) == nullptr)
            Fail(__LINE__, "Undeclared namespace.");
    }
    return parsed;
}

// The default namespace an unprefixed element in `uri` must declare: null when it is
// the one in scope already.
unsigned short const* CXMLTextWriter::DefaultToDeclare(unsigned short const* uri) const {
    unsigned short const* inScope = m_contexts->LookupDefaultNamespace();
    return Vela::ucscmp(inScope == nullptr ? kEmpty : inScope, uri) == 0 ? nullptr : uri;
}

void CXMLTextWriter::StartElement(CName const& name, unsigned short const* elementUri,
                                  unsigned short const* declaredUri) {
    CCallScope scope(*this);
    OpenTag(name, declaredUri);
    try {
        detail::CXMLTextWriterContext& context =
            m_contexts->Push(name.prefix, name.prefixLength, name.local, name.localLength);
        try {
            if (elementUri != nullptr)
                context.SetElementNamespace(elementUri);
            if (declaredUri != nullptr && name.prefixLength > 0) {
                m_scratch.Set(name.prefix, name.prefixLength);
                context.DeclarePrefix(m_scratch, declaredUri);
            } else if (declaredUri != nullptr) {
                context.DeclareDefaultNamespace(declaredUri);
            }
        } catch (...) {
            m_contexts->Pop();
            throw;
        }
    } catch (base::CMemoryException const&) {
        MemoryFull(__LINE__);
    } catch (std::bad_alloc const&) {
        MemoryFull(__LINE__);
    }
    m_attributeNames.clear();
    m_startTagOpen = true;
    m_rootWritten = true;
    scope.Commit();
}

void CXMLTextWriter::WriteStartElement(unsigned short const* prefix, unsigned short const* local,
                                       unsigned short const* uri) {
    CheckNewElement();
    unsigned long const prefixLength = CheckPrefix(prefix);
    unsigned long const localLength = CheckLocalName(local);
    CheckUri(uri);
    if (uri[0] == 0)
        Fail(__LINE__, "Invalid namespace URI.");
    unsigned short const* bound = m_contexts->LookupPrefix(prefix, prefixLength);
    if (SameText(prefix, prefixLength, kXml) && Vela::ucscmp(bound, uri) != 0)
        Fail(__LINE__, "Invalid namespace URI.");
    CName const name = {prefix, prefixLength, local, localLength};
    StartElement(name, uri, bound != nullptr && Vela::ucscmp(bound, uri) == 0 ? nullptr : uri);
}

void CXMLTextWriter::WriteStartElement(unsigned short const* local, unsigned short const* uri) {
    CheckNewElement();
    unsigned long const localLength = CheckLocalName(local);
    CheckUri(uri);
    CName const name = {nullptr, 0, local, localLength};
    StartElement(name, uri, DefaultToDeclare(uri));
}

void CXMLTextWriter::WriteStartElement(unsigned short const* name) {
    CheckNewElement();
    StartElement(QualifiedElementName(name), nullptr, nullptr);
}

void CXMLTextWriter::EndElement(bool full) {
    CheckStarted();
    if (m_contexts->IsEmpty())
        Fail(__LINE__, "There is no start elements to close in the current context.");
    CCallScope scope(*this);
    if (m_startTagOpen && !full) {
        Append(kEmptyElementEnd, 4);
        m_startTagOpen = false;
    } else {
        CloseStartTag();
        base::CUnicodeString const& name = m_contexts->Top().GetName();
        Append(kEndTagOpen, 2);
        Append(name, name.GetLength());
        Append(kCloseStartTag, 3);
    }
    m_contexts->Pop();
    scope.Commit();
}

void CXMLTextWriter::WriteEndElement() {
    EndElement(false);
}

void CXMLTextWriter::WriteFullEndElement() {
    EndElement(true);
}

void CXMLTextWriter::ElementWithValue(CName const& name, unsigned short const* declaredUri,
                                      unsigned short const* value) {
    CCallScope scope(*this);
    OpenTag(name, declaredUri);
    unsigned short const close = '>';
    Append(&close, 1);
    AppendText(value, true);
    Append(kEndTagOpen, 2);
    AppendName(name);
    Append(kCloseStartTag, 3);
    m_rootWritten = true;
    scope.Commit();
}

void CXMLTextWriter::WriteElementString(unsigned short const* local, unsigned short const* uri,
                                        unsigned short const* value) {
    CheckNewElement();
    unsigned long const localLength = CheckLocalName(local);
    CheckUri(uri);
    CName const name = {nullptr, 0, local, localLength};
    ElementWithValue(name, DefaultToDeclare(uri), value);
}

void CXMLTextWriter::WriteElementString(unsigned short const* name, unsigned short const* value) {
    CheckNewElement();
    ElementWithValue(QualifiedElementName(name), nullptr, value);
}

// ---- typed elements ---------------------------------------------------------

void CXMLTextWriter::WriteElementFloat(unsigned short const* local, unsigned short const* uri,
                                       float value) {
    WriteElementString(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementFloat(unsigned short const* name, float value) {
    WriteElementString(name, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementDouble(unsigned short const* local, unsigned short const* uri,
                                        double value) {
    WriteElementString(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementDouble(unsigned short const* name, double value) {
    WriteElementString(name, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementChar(unsigned short const* local, unsigned short const* uri,
                                      char value) {
    WriteElementString(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementChar(unsigned short const* name, char value) {
    WriteElementString(name, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementUnsignedChar(unsigned short const* local,
                                              unsigned short const* uri, unsigned char value) {
    WriteElementString(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementUnsignedChar(unsigned short const* name, unsigned char value) {
    WriteElementString(name, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementUnsignedShort(unsigned short const* local,
                                               unsigned short const* uri, unsigned short value) {
    WriteElementString(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementUnsignedShort(unsigned short const* name, unsigned short value) {
    WriteElementString(name, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementInt64(unsigned short const* local, unsigned short const* uri,
                                       long long value) {
    WriteElementString(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementInt64(unsigned short const* name, long long value) {
    WriteElementString(name, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementUnsignedInt64(unsigned short const* local,
                                               unsigned short const* uri,
                                               unsigned long long value) {
    WriteElementString(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteElementUnsignedInt64(unsigned short const* name,
                                               unsigned long long value) {
    WriteElementString(name, detail::CXMLValueText(value));
}

// ---- attributes -------------------------------------------------------------

void CXMLTextWriter::AttributeText(CName const& name, unsigned short const* value) {
    // The same qualified name twice, or two prefixes bound to one namespace before the
    // same local name, would make the start tag ill-formed.
    unsigned short const* const uri =
        name.prefixLength > 0 ? m_contexts->LookupPrefix(name.prefix, name.prefixLength) : nullptr;
    for (unsigned long i = 0; i < m_attributeNames.size();) {
        CName const seen = RecordedAttribute(i);
        if (seen.localLength != name.localLength ||
            Vela::ucsncmp(seen.local, name.local, name.localLength) != 0)
            continue;
        bool const samePrefix = seen.prefixLength == name.prefixLength &&
                                Vela::ucsncmp(seen.prefix, name.prefix, seen.prefixLength) == 0;
        unsigned short const* const seenUri =
            seen.prefixLength > 0 && uri != nullptr
                ? m_contexts->LookupPrefix(seen.prefix, seen.prefixLength)
                : nullptr;
        if (samePrefix || (seenUri != nullptr && Vela::ucscmp(seenUri, uri) == 0))
            Fail(__LINE__, "Duplicate attribute.");
    }
    CCallScope scope(*this);
    unsigned short const blank = ' ';
    Append(&blank, 1);
    AppendName(name);
    Append(kAttributeOpen, 2);
    AppendText(value, true);
    unsigned short const quote = '"';
    Append(&quote, 1);
    unsigned long const before = m_attributeNames.size();
    try {
        if (name.prefixLength > 0) {
            m_attributeNames.insert(m_attributeNames.end(), name.prefix,
                                    name.prefix + name.prefixLength);
            m_attributeNames.push_back(':');
        }
        m_attributeNames.insert(m_attributeNames.end(), name.local, name.local + name.localLength);
        m_attributeNames.push_back(0);
    } catch (std::bad_alloc const&) {
        m_attributeNames.resize(before);
        MemoryFull(__LINE__);
    }
    scope.Commit();
}

// The attribute name recorded at `at` in m_attributeNames, split at its colon; `at`
// moves on to the next one.
CXMLTextWriter::CName CXMLTextWriter::RecordedAttribute(unsigned long& at) const {
    unsigned short const* const seen = &m_attributeNames[at];
    unsigned long const length = Vela::ucslen(seen);
    at += length + 1;
    unsigned long colon = 0;
    while (colon < length && seen[colon] != ':')
        ++colon;
    if (colon == length)
        return CName{nullptr, 0, seen, length};
    return CName{seen, colon, seen + colon + 1, length - colon - 1};
}

bool CXMLTextWriter::AttributeUsesPrefix(unsigned short const* prefix,
                                         unsigned long prefixLength) const {
    for (unsigned long i = 0; i < m_attributeNames.size();) {
        CName const seen = RecordedAttribute(i);
        if (seen.prefixLength == prefixLength &&
            Vela::ucsncmp(seen.prefix, prefix, prefixLength) == 0)
            return true;
    }
    return false;
}

void CXMLTextWriter::WriteAttribute(unsigned short const* prefix, unsigned short const* local,
                                    unsigned short const* uri, unsigned short const* value) {
    CheckStartTagOpen();
    unsigned long const prefixLength = CheckPrefix(prefix);
    unsigned long const localLength = CheckLocalName(local);
    CheckUri(uri);
    unsigned short const* bound = m_contexts->LookupPrefix(prefix, prefixLength);
    if (bound == nullptr || Vela::ucscmp(bound, uri) != 0)
        Fail(__LINE__, "Undeclared namespace.");
    CName const name = {prefix, prefixLength, local, localLength};
    AttributeText(name, value);
}

void CXMLTextWriter::WriteAttribute(unsigned short const* local, unsigned short const* uri,
                                    unsigned short const* value) {
    CheckStartTagOpen();
    unsigned long const localLength = CheckLocalName(local);
    CheckUri(uri);
    CName name = {nullptr, 0, local, localLength};
    if (uri[0] != 0) {
        name.prefix = m_contexts->LookupPrefixOf(uri);
        if (name.prefix == nullptr)
            Fail(__LINE__, "Undeclared namespace.");
        name.prefixLength = Vela::ucslen(name.prefix);
    } else if (SameText(local, localLength, kXmlns)) {
        // Unprefixed, "xmlns" is the default namespace declaration, as in the name form.
        WriteAttrDefaultNamespaceDeclaration(value == nullptr ? kEmpty : value);
        return;
    }
    AttributeText(name, value);
}

void CXMLTextWriter::WriteAttribute(unsigned short const* name, unsigned short const* value) {
    CheckStartTagOpen();
    CName const parsed = CName::Parse(name);
    if (parsed.prefixLength == 0 && SameText(parsed.local, parsed.localLength, kXmlns)) {
        WriteAttrDefaultNamespaceDeclaration(value == nullptr ? kEmpty : value);
        return;
    }
    if (parsed.prefixLength > 0) {
        if (SameText(parsed.prefix, parsed.prefixLength, kXmlns)) {
            m_scratch.Set(parsed.local, parsed.localLength);
            WriteAttrNamespaceDeclaration(m_scratch, value);
            return;
        }
        if (m_contexts->LookupPrefix(parsed.prefix, parsed.prefixLength) == nullptr)
            Fail(__LINE__, "Undeclared namespace.");
    }
    AttributeText(parsed, value);
}

void CXMLTextWriter::WriteAttrDefaultNamespaceDeclaration(unsigned short const* uri) {
    CheckStartTagOpen();
    CheckUri(uri);
    detail::CXMLTextWriterContext& context = m_contexts->Top();
    if (context.HasDefaultNamespace())
        context.DeclareDefaultNamespace(uri); // throws the second-default failure
    // An element opened unprefixed in a namespace already has its default one.
    unsigned short const* elementUri = context.GetElementNamespace();
    if (elementUri != nullptr && context.GetName().Find(':') < 0 &&
        Vela::ucscmp(elementUri, uri) != 0)
        Fail(__LINE__, "This start element already contains default namespace declaration.");
    CCallScope scope(*this);
    CName const name = {nullptr, 0, nullptr, 0};
    AppendDeclaration(name, uri);
    try {
        context.DeclareDefaultNamespace(uri);
    } catch (base::CMemoryException const&) {
        MemoryFull(__LINE__);
    }
    scope.Commit();
}

void CXMLTextWriter::WriteAttrNamespaceDeclaration(unsigned short const* prefix,
                                                   unsigned short const* uri) {
    CheckStartTagOpen();
    unsigned long const prefixLength = CheckPrefix(prefix);
    CheckUri(uri);
    if (uri[0] == 0)
        Fail(__LINE__, "Invalid namespace URI.");
    if (SameText(prefix, prefixLength, kXml) &&
        Vela::ucscmp(m_contexts->LookupPrefix(prefix, prefixLength), uri) != 0)
        Fail(__LINE__, "Invalid namespace URI.");
    detail::CXMLTextWriterContext& context = m_contexts->Top();
    unsigned short const* declared = context.FindPrefix(prefix, prefixLength);
    if (declared != nullptr) {
        if (Vela::ucscmp(declared, uri) != 0)
            Fail(__LINE__, "This start element already declares the prefix.");
        return;
    }
    // Nor may the element's own prefix be bound away from the namespace it was
    // opened in.
    base::CUnicodeString const& elementName = context.GetName();
    unsigned short const* elementUri = context.GetElementNamespace();
    if (elementUri != nullptr && elementName.GetLength() > prefixLength &&
        elementName.GetAt(prefixLength) == ':' &&
        Vela::ucsncmp(elementName, prefix, prefixLength) == 0 && Vela::ucscmp(elementUri, uri) != 0)
        Fail(__LINE__, "This start element already declares the prefix.");
    // Nor the prefix of an attribute already written here: the attribute would change
    // namespace, perhaps into one where another of the same local name stands.
    unsigned short const* const inherited = m_contexts->LookupPrefix(prefix, prefixLength);
    if ((inherited == nullptr || Vela::ucscmp(inherited, uri) != 0) &&
        AttributeUsesPrefix(prefix, prefixLength))
        Fail(__LINE__, "This start element already declares the prefix.");
    CCallScope scope(*this);
    CName const name = {prefix, prefixLength, nullptr, 0};
    AppendDeclaration(name, uri);
    try {
        context.DeclarePrefix(prefix, uri);
    } catch (base::CMemoryException const&) {
        MemoryFull(__LINE__);
    }
    scope.Commit();
}

void CXMLTextWriter::WriteAttrFloat(unsigned short const* local, unsigned short const* uri,
                                    float value) {
    WriteAttribute(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrFloat(unsigned short const* name, float value) {
    WriteAttribute(name, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrDouble(unsigned short const* local, unsigned short const* uri,
                                     double value) {
    WriteAttribute(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrDouble(unsigned short const* name, double value) {
    WriteAttribute(name, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrChar(unsigned short const* local, unsigned short const* uri,
                                   char value) {
    WriteAttribute(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrChar(unsigned short const* name, char value) {
    WriteAttribute(name, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrUnsignedChar(unsigned short const* local, unsigned short const* uri,
                                           unsigned char value) {
    WriteAttribute(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrUnsignedChar(unsigned short const* name, unsigned char value) {
    WriteAttribute(name, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrUnsignedShort(unsigned short const* local, unsigned short const* uri,
                                            unsigned short value) {
    WriteAttribute(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrUnsignedShort(unsigned short const* name, unsigned short value) {
    WriteAttribute(name, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrInt64(unsigned short const* local, unsigned short const* uri,
                                    long long value) {
    WriteAttribute(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrInt64(unsigned short const* name, long long value) {
    WriteAttribute(name, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrUnsignedInt64(unsigned short const* local, unsigned short const* uri,
                                            unsigned long long value) {
    WriteAttribute(local, uri, detail::CXMLValueText(value));
}

void CXMLTextWriter::WriteAttrUnsignedInt64(unsigned short const* name, unsigned long long value) {
    WriteAttribute(name, detail::CXMLValueText(value));
}

// ---- content ----------------------------------------------------------------

template <class Print> void CXMLTextWriter::PrintContent(Print print) {
    CheckContent();
    {
        CCallScope scope(*this);
        CloseStartTag();
        scope.Commit();
    }
    FlushBuffer();
    print(*m_printWriter);
}

void CXMLTextWriter::WriteBool(bool value) {
    PrintContent([value](CPrintWriter& out) { out.Print(value); });
}

void CXMLTextWriter::WriteShort(short value) {
    PrintContent([value](CPrintWriter& out) { out.Print(value); });
}

void CXMLTextWriter::WriteLong(long value) {
    PrintContent([value](CPrintWriter& out) { out.Print(value); });
}

void CXMLTextWriter::WriteUnsignedLong(unsigned long value) {
    PrintContent([value](CPrintWriter& out) { out.Print(value); });
}

void CXMLTextWriter::WriteFloat(float value) {
    PrintContent([value](CPrintWriter& out) { out.Print(value); });
}

void CXMLTextWriter::WriteDouble(double value) {
    PrintContent([value](CPrintWriter& out) { out.Print(value); });
}

void CXMLTextWriter::WriteChar(char value) {
    PrintContent([value](CPrintWriter& out) { out.PrintInt(static_cast<signed char>(value)); });
}

void CXMLTextWriter::WriteUnsignedChar(unsigned char value) {
    PrintContent([value](CPrintWriter& out) { out.PrintUnsignedChar(value); });
}

void CXMLTextWriter::WriteUnsignedShort(unsigned short value) {
    PrintContent([value](CPrintWriter& out) { out.PrintUnsignedShort(value); });
}

void CXMLTextWriter::WriteInt(int value) {
    PrintContent([value](CPrintWriter& out) { out.PrintInt(value); });
}

void CXMLTextWriter::WriteUnsignedInt(unsigned int value) {
    PrintContent([value](CPrintWriter& out) { out.PrintUnsignedInt(value); });
}

void CXMLTextWriter::WriteString(unsigned short const* text) {
    CheckContent();
    CCallScope scope(*this);
    CloseStartTag();
    AppendText(text, true);
    scope.Commit();
}

void CXMLTextWriter::WriteBase64(char const* data, unsigned long offset, unsigned long length) {
    CheckContent();
    CCallScope scope(*this);
    CloseStartTag();
    if (data != nullptr) {
        try {
            base::CBinaryData::ToBase64UnicodeString(data + offset, length, m_scratch);
        } catch (base::CMemoryException const&) {
            MemoryFull(__LINE__);
        }
        Append(m_scratch, m_scratch.GetLength());
    }
    scope.Commit();
}

void CXMLTextWriter::WriteBinHex(char const* data, unsigned long offset, unsigned long length) {
    CheckContent();
    CCallScope scope(*this);
    CloseStartTag();
    if (data != nullptr) {
        try {
            base::CBinaryData::ToBinHexUnicodeString(data + offset, length, m_scratch);
        } catch (base::CMemoryException const&) {
            MemoryFull(__LINE__);
        }
        Append(m_scratch, m_scratch.GetLength());
    }
    scope.Commit();
}

void CXMLTextWriter::WriteEntityRef(unsigned short const* name) {
    CheckContent();
    unsigned long const n = name == nullptr ? 0 : Vela::ucslen(name);
    if (!IsNCName(name, n))
        Fail(__LINE__, "Invalid character error.");
    static char const* const predefined[] = {"amp", "lt", "gt", "apos", "quot"};
    bool known = false;
    for (char const* entity : predefined) {
        unsigned long k = 0;
        while (k < n && entity[k] != 0 && name[k] == static_cast<unsigned char>(entity[k]))
            ++k;
        known = known || (k == n && entity[k] == 0);
    }
    if (!known)
        Fail(__LINE__, "Undeclared entity.");
    CCallScope scope(*this);
    CloseStartTag();
    unsigned short const amp = '&';
    unsigned short const semicolon = ';';
    Append(&amp, 1);
    Append(name, n);
    Append(&semicolon, 1);
    scope.Commit();
}

void CXMLTextWriter::WriteWhitespace(unsigned short const* text) {
    CheckStarted();
    if (text == nullptr)
        Fail(__LINE__, "Invalid whitespace.");
    unsigned long n = 0;
    for (; text[n] != 0; ++n) {
        unsigned short const c = text[n];
        if (c != ' ' && c != '\t' && c != '\r' && c != '\n')
            Fail(__LINE__, "Invalid whitespace.");
    }
    CCallScope scope(*this);
    CloseStartTag();
    Append(text, n);
    scope.Commit();
}

// ---- document, comments, CDATA, processing instructions ---------------------

void CXMLTextWriter::WriteStartDocument() {
    CheckOpen();
    if (m_documentStarted)
        Fail(__LINE__, "Document has already been started.");
    CCallScope scope(*this);
    AppendAscii("<?xml version=\"1.0\" encoding=\"");
    AppendAscii(m_encoding);
    AppendAscii("\"?>");
    Append(kLineEnd, 2);
    m_documentStarted = true;
    scope.Commit();
}

void CXMLTextWriter::WriteEndDocument() {
    CheckStarted();
    if (!m_rootWritten)
        Fail(__LINE__, "Document root hasn't been written yet.");
    while (!m_contexts->IsEmpty())
        EndElement(false);
    Flush();
}

void CXMLTextWriter::WriteComment(unsigned short const* text) {
    CheckStarted();
    if (text != nullptr && text[0] != 0 &&
        (Contains(text, "--") || text[Vela::ucslen(text) - 1] == '-'))
        Fail(__LINE__, "Invalid comment text.");
    CCallScope scope(*this);
    CloseStartTag();
    AppendAscii("<!-- ");
    AppendText(text, false);
    AppendAscii("-->");
    Append(kLineEnd, 2);
    scope.Commit();
}

void CXMLTextWriter::WriteCDATA(unsigned short const* text) {
    CheckContent();
    if (text != nullptr && Contains(text, "]]>"))
        Fail(__LINE__, "Invalid CDATA text.");
    CCallScope scope(*this);
    CloseStartTag();
    AppendAscii("<![CDATA[");
    AppendText(text, false);
    AppendAscii("]]>");
    Append(kLineEnd, 2);
    scope.Commit();
}

void CXMLTextWriter::WriteProcessingInstruction(unsigned short const* target,
                                                unsigned short const* data) {
    CheckStarted();
    unsigned long const n = target == nullptr ? 0 : Vela::ucslen(target);
    if (!IsNCName(target, n) || (n == 3 && (target[0] | 0x20) == 'x' && (target[1] | 0x20) == 'm' &&
                                 (target[2] | 0x20) == 'l'))
        Fail(__LINE__, "Invalid processing instruction target.");
    if (data != nullptr && Contains(data, "?>"))
        Fail(__LINE__, "Invalid processing instruction data.");
    CCallScope scope(*this);
    CloseStartTag();
    AppendAscii("<?");
    Append(target, n);
    AppendAscii(" ");
    AppendText(data, false);
    AppendAscii("?>");
    Append(kLineEnd, 2);
    scope.Commit();
}

// ---- flush and close --------------------------------------------------------

void CXMLTextWriter::Flush() {
    CheckOpen();
    FlushBuffer();
    m_printWriter->Flush();
}

void CXMLTextWriter::Close() {
    if (!m_printWriter)
        return;
    // The print writer is closed and released even when the last output fails; the
    // first failure is the one reported.
    std::exception_ptr failure;
    try {
        FlushBuffer();
    } catch (...) {
        failure = std::current_exception();
    }
    base::CRef<CPrintWriter> const writer = m_printWriter;
    m_printWriter = nullptr;
    m_count = 0;
    m_mark = 0;
    try {
        writer->Close();
    } catch (...) {
        if (!failure)
            failure = std::current_exception();
    }
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace io
} // namespace lumo
