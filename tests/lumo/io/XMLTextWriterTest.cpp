// Tests of the XML writer base and the text writer: exact output bytes, documents
// checked by xmllint (well-formedness, canonical form) and read back by Python's
// minidom, every failure of the failure table, and a stream that fails mid-way.
#include <lumo/Library.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/IOException.h>
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/UnsupportedEncodingException.h>
#include <lumo/io/XMLTextWriter.h>
#include <vela/Location.h>

#include "support/Files.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <functional>
#include <string>
#include <vector>

using lumo::base::CException;
using lumo::base::CIllegalArgumentException;
using lumo::base::CUnicodeString;
using namespace lumo::io;

namespace {

class LibraryEnvironment : public ::testing::Environment {
public:
    void SetUp() override { lumo::Initialize(); }
    void TearDown() override { lumo::Terminate(); }
};
::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new LibraryEnvironment);

// UTF-16 text from UTF-8, kept alive for the whole test.
unsigned short const* U(char const* utf8) {
    static std::vector<CUnicodeString> kept;
    kept.push_back(CUnicodeString::FromUTF8(utf8));
    return kept.back();
}

std::string Bytes(CMemoryOutputStream const& out) {
    return std::string(out.GetBuffer(), out.GetBufferSize());
}

// Runs a tool over a document; empty when the tool is missing (the caller skips).
std::string Tool(std::string const& document, std::string const& command, bool* ok) {
    lumotest::TempDir dir;
    std::string const path = dir.File("doc.xml");
    lumotest::WriteAll(path, document);
    std::string output;
    *ok = lumotest::RunCommand(command + " '" + path + "' 2>&1", &output);
    return output;
}

using Steps = std::function<void(CXMLTextWriter&)>;

std::string Write(Steps const& steps) {
    CMemoryOutputStream out;
    CXMLTextWriter writer(&out, "UTF-8", 0);
    steps(writer);
    writer.Close();
    return Bytes(out);
}

char const kXmlUri[] = "http://www.w3.org/XML/1998/namespace";
char const kXmlnsUri[] = "http://www.w3.org/2000/xmlns/";
#define STEPS(...) [](CXMLTextWriter& w) { __VA_ARGS__; }

std::string const kDecl = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n";

TEST(XMLTextWriterTest, ExactOutputAndCanonicalForm) {
    struct Case {
        char const* what;
        Steps steps;
        std::string bytes;
        std::string canonical;
    };
    std::vector<Case> const cases = {
        {"empty root",
         STEPS(w.WriteStartDocument(), w.WriteStartElement(U("a")), w.WriteEndElement()),
         kDecl + "<a/>\r\n", "<a></a>"},
        {"escaped attribute",
         STEPS(w.WriteStartDocument(), w.WriteStartElement(U("a")),
               w.WriteAttribute(U("t"), U("a&b<c>'\"")), w.WriteEndElement()),
         kDecl + "<a t=\"a&amp;b&lt;c&gt;&apos;&quot;\"/>\r\n",
         "<a t=\"a&amp;b&lt;c>'&quot;\"></a>"},
        {"element with content, comment, PI, CDATA, full end",
         STEPS(w.WriteStartDocument(), w.WriteComment(U("c")), w.WriteStartElement(U("r")),
               w.WriteElementString(U("n"), U("x>y")),
               w.WriteProcessingInstruction(U("pi"), U("d a")), w.WriteCDATA(U("<&>")),
               w.WriteStartElement(U("e")), w.WriteFullEndElement(), w.WriteEndDocument()),
         kDecl + "<!-- c-->\r\n<r>\r\n<n>x&gt;y</n>\r\n<?pi d "
                 "a?>\r\n<![CDATA[<&>]]>\r\n<e>\r\n</e>\r\n</r>\r\n",
         "<!-- c-->\n<r>\n<n>x&gt;y</n>\n<?pi d a?>\n&lt;&amp;&gt;\n<e>\n</e>\n</r>"},
        {"text, entity, whitespace, binary",
         STEPS(w.WriteStartDocument(), w.WriteStartElement(U("r")), w.WriteString(U("1<2 & \"q\"")),
               w.WriteEntityRef(U("amp")), w.WriteWhitespace(U(" \t")),
               w.WriteBase64("\0\1\2hello", 1, 7), w.WriteBinHex("\xAB\x01", 0, 2),
               w.WriteEndElement()),
         kDecl + "<r>\r\n1&lt;2 &amp; &quot;q&quot;&amp; \tAQJoZWxsbw==AB01</r>\r\n",
         "<r>\n1&lt;2 &amp; \"q\"&amp; \tAQJoZWxsbw==AB01</r>"},
        {"typed elements and attributes",
         STEPS(w.WriteStartDocument(), w.WriteStartElement(U("r")),
               w.WriteAttrShort(U("s"), -32768), w.WriteAttrDouble(U("d"), 1.5),
               w.WriteAttrBool(U("b"), true), w.WriteElementFloat(U("f"), 1.5f),
               w.WriteElementFloat(U("fm"), FLT_MAX), w.WriteElementDouble(U("dm"), -DBL_MAX),
               w.WriteElementDouble(U("tenth"), 0.1), w.WriteElementLong(U("l"), LONG_MIN),
               w.WriteElementUnsignedLong(U("u"), ULONG_MAX),
               w.WriteElementInt64(U("i"), LLONG_MIN), w.WriteElementChar(U("c"), -5),
               w.WriteEndElement()),
         kDecl + "<r s=\"-32768\" d=\"1.5\" b=\"true\">\r\n<f>1.5</f>\r\n<fm>3.40282e+38</fm>\r\n"
                 "<dm>-1.79769e+308</dm>\r\n<tenth>0.1</tenth>\r\n"
                 "<l>-9223372036854775808</l>\r\n<u>18446744073709551615</u>\r\n"
                 "<i>-9223372036854775808</i>\r\n<c>-5</c>\r\n</r>\r\n",
         "<r b=\"true\" d=\"1.5\" s=\"-32768\">\n<f>1.5</f>\n<fm>3.40282e+38</fm>\n"
         "<dm>-1.79769e+308</dm>\n<tenth>0.1</tenth>\n"
         "<l>-9223372036854775808</l>\n<u>18446744073709551615</u>\n"
         "<i>-9223372036854775808</i>\n<c>-5</c>\n</r>"},
        {"content through the print writer's formats",
         STEPS(w.WriteStartDocument(), w.WriteStartElement(U("r")), w.WriteDouble(1.5),
               w.Write(U(" ")), w.WriteBool(false), w.Write(U(" ")), w.WriteShort(-3),
               w.Write(U(" ")), w.WriteUnsignedShort(65535), w.WriteEndElement()),
         kDecl + "<r>\r\n1.500000 false -3 65535</r>\r\n", "<r>\n1.500000 false -3 65535</r>"},
        // The prefix p declared again for its own namespace writes nothing.
        {"namespaces declared where needed",
         STEPS(w.WriteStartDocument(), w.WriteStartElement(U("p"), U("r"), U("urn:p")),
               w.WriteAttrNamespaceDeclaration(U("p"), U("urn:p")),
               w.WriteAttrDefaultNamespaceDeclaration(U("urn:d")),
               w.WriteAttribute(U("p"), U("a"), U("urn:p"), U("1")),
               w.WriteStartElement(U("p"), U("c"), U("urn:p")),
               w.WriteAttribute(U("b"), U("urn:p"), U("2")), w.WriteEndElement(),
               w.WriteStartElement(U("d"), U("urn:d")), w.WriteEndElement(),
               w.WriteElementString(U("e"), U("urn:x"), U("v")), w.WriteEndDocument()),
         kDecl + "<p:r xmlns:p=\"urn:p\" xmlns=\"urn:d\" p:a=\"1\">\r\n<p:c p:b=\"2\"/>\r\n<d/>\r\n"
                 "<e xmlns=\"urn:x\">v</e>\r\n</p:r>\r\n",
         "<p:r xmlns=\"urn:d\" xmlns:p=\"urn:p\" p:a=\"1\">\n<p:c p:b=\"2\"></p:c>\n<d></d>\n"
         "<e xmlns=\"urn:x\">v</e>\n</p:r>"},
    };
    bool const haveXmllint = lumotest::HaveCommand("xmllint");
    for (Case const& c : cases) {
        SCOPED_TRACE(c.what);
        std::string const bytes = Write(c.steps);
        EXPECT_EQ(c.bytes, bytes);
        if (!haveXmllint)
            continue;
        bool ok = false;
        EXPECT_EQ("", Tool(bytes, "xmllint --noout", &ok));
        EXPECT_TRUE(ok);
        EXPECT_EQ(c.canonical, Tool(bytes, "xmllint --c14n", &ok));
    }
    if (!haveXmllint)
        GTEST_SKIP() << "xmllint is not installed: only the exact bytes were checked";
}

// Names, namespace URIs and values read back by minidom equal what was written:
// the expected listing is built from the same values, not from the writer's output.
TEST(XMLTextWriterTest, MinidomReadsBackWhatWasWritten) {
    if (!lumotest::HaveCommand("python3") || !lumotest::HaveCommand("xmllint"))
        GTEST_SKIP() << "python3 or xmllint is not installed";
    std::vector<std::string> const values = {
        "plain", "&<>'\"",   "a&amp;b", "Grüße ∑ 日本語", "emoji 😀 and 𝄞 beyond the BMP",
        "",      "]]> -- ?>"};
    std::string expected;
    std::string const document = Write([&](CXMLTextWriter& w) {
        w.WriteStartDocument();
        w.WriteStartElement(U("root"), U("urn:root"));
        expected += "E urn:root root\n";
        for (std::string const& v : values) {
            unsigned short const* value = U(v.c_str());
            w.WriteStartElement(U("ns"), U("item"), U("http://example.com/ns?a=1&b=2"));
            w.WriteAttribute(U("ns"), U("v"), U("http://example.com/ns?a=1&b=2"), value);
            w.WriteAttribute(U("plain"), value);
            w.WriteElementString(U("ns:text"), value);
            w.WriteEndElement();
            expected +=
                "E http://example.com/ns?a=1&b=2 item\nA http://example.com/ns?a=1&b=2 v=" + v +
                "\nA None plain=" + v + "\nE http://example.com/ns?a=1&b=2 text\nT " + v + "\n";
        }
        w.WriteStartElement(U("ünï"));
        w.WriteString(U(values[4].c_str()));
        w.WriteEndDocument();
        expected += "E urn:root ünï\nT \n" + values[4] + "\n";
    });
    char const* script =
        "import sys, xml.dom.minidom as m\n"
        "out = []\n"
        "def walk(n):\n"
        "    if n.nodeType == n.ELEMENT_NODE:\n"
        "        out.append('E %s %s' % (n.namespaceURI, n.localName))\n"
        "        for k in sorted(n.attributes.keys()):\n"
        "            a = n.attributes[k]\n"
        "            if a.prefix != 'xmlns' and a.name != 'xmlns':\n"
        "                out.append('A %s %s=%s' % (a.namespaceURI, a.localName, a.value))\n"
        "        text = ''.join(c.data for c in n.childNodes if c.nodeType == c.TEXT_NODE)\n"
        "        if text.strip() or not any(c.nodeType == c.ELEMENT_NODE for c in n.childNodes):\n"
        "            out.append('T ' + text)\n"
        "        for c in n.childNodes: walk(c)\n"
        "walk(m.parse(sys.argv[1]).documentElement)\n"
        "sys.stdout.buffer.write(('\\n'.join(out) + '\\n').encode('utf-8'))\n";
    lumotest::TempDir dir;
    lumotest::WriteAll(dir.File("read.py"), script);
    bool ok = false;
    EXPECT_EQ("", Tool(document, "xmllint --noout", &ok));
    EXPECT_EQ(expected, Tool(document, "python3 '" + dir.File("read.py") + "'", &ok));
    EXPECT_TRUE(ok);
}

// Each bad call throws its documented exception, writes nothing, and leaves the
// writer as it was: the document finished afterwards is exactly the good calls.
TEST(XMLTextWriterTest, FailuresWriteNothingAndKeepTheState) {
    struct Case {
        Steps before;
        Steps bad;
        char const* message;
        // What the bad steps wrote with good calls before the failing one.
        std::string extra = "";
    };
    Steps const none = [](CXMLTextWriter&) {};
    Steps const started = STEPS(w.WriteStartDocument());
    Steps const open = STEPS(w.WriteStartDocument(), w.WriteStartElement(U("r")),
                             w.WriteAttribute(U("a"), U("1")));
    Steps const closed =
        STEPS(w.WriteStartDocument(), w.WriteStartElement(U("r")), w.WriteEndElement());
    Steps const inside =
        STEPS(w.WriteStartDocument(), w.WriteStartElement(U("r")), w.WriteString(U("t")));
    std::vector<Case> const cases = {
        {none, STEPS(w.WriteStartElement(U("a"))), "Document hasn't been started yet."},
        {none, STEPS(w.WriteComment(U("c"))), "Document hasn't been started yet."},
        {started, STEPS(w.WriteStartDocument()), "Document has already been started."},
        {started, STEPS(w.WriteCDATA(U("x"))), "Document root hasn't been written yet."},
        {started, STEPS(w.WriteString(U("x"))), "Document root hasn't been written yet."},
        {started, STEPS(w.WriteEndElement()),
         "There is no start elements to close in the current context."},
        {closed, STEPS(w.WriteStartElement(U("b"))), "Document root has already been written."},
        {inside, STEPS(w.WriteAttribute(U("a"), U("1"))),
         "Attributes must be written at start element."},
        {inside, STEPS(w.WriteAttrNamespaceDeclaration(U("p"), U("urn:p"))),
         "Attributes must be written at start element."},
        {open, STEPS(w.WriteAttribute(U("a"), U("2"))), "Duplicate attribute."},
        // Two prefixes for one namespace name the same attribute.
        {STEPS(w.WriteStartDocument(), w.WriteStartElement(U("r")),
               w.WriteAttrNamespaceDeclaration(U("p"), U("urn:x")),
               w.WriteAttrNamespaceDeclaration(U("q"), U("urn:x")),
               w.WriteAttribute(U("p"), U("a"), U("urn:x"), U("1"))),
         STEPS(w.WriteAttribute(U("q"), U("a"), U("urn:x"), U("2"))), "Duplicate attribute."},
        {open, STEPS(w.WriteStartElement(nullptr)), "Invalid local name."},
        {open, STEPS(w.WriteStartElement(U(""))), "Invalid local name."},
        {open, STEPS(w.WriteStartElement(U("a:b"), U("urn:x"))),
         "Local name must be unqualified name."},
        {open, STEPS(w.WriteStartElement(U("1a"))), "Invalid character error."},
        {open, STEPS(w.WriteElementString(U("a b"), U("v"))), "Invalid character error."},
        {open, STEPS(w.WriteAttribute(U("a:"), U("v"))), "Invalid character error."},
        {open, STEPS(w.WriteString(U("bad \x01 char"))), "Invalid character error."},
        {open, STEPS(w.WriteStartElement(U(""), U("a"), U("urn:x"))), "Invalid prefix."},
        {open, STEPS(w.WriteStartElement(U("p"), U("a"), nullptr)), "Invalid namespace URI."},
        // The reserved namespace names: the XML one for the prefix xml alone, the xmlns
        // one for nothing.
        {open, STEPS(w.WriteStartElement(U("a"), U(kXmlUri))), "Invalid namespace URI."},
        {open, STEPS(w.WriteAttrNamespaceDeclaration(U("p"), U(kXmlUri))),
         "Invalid namespace URI."},
        {open, STEPS(w.WriteAttrDefaultNamespaceDeclaration(U(kXmlnsUri))),
         "Invalid namespace URI."},
        {open, STEPS(w.WriteElementString(U("a"), U(kXmlnsUri), U("v"))), "Invalid namespace URI."},
        {open, STEPS(w.WriteAttribute(U("q"), U("a"), U("urn:q"), U("v"))),
         "Undeclared namespace."},
        {open, STEPS(w.WriteAttribute(U("a"), U("urn:q"), U("v"))), "Undeclared namespace."},
        {open, STEPS(w.WriteStartElement(U("q:a"))), "Undeclared namespace."},
        {open,
         STEPS(w.WriteAttrDefaultNamespaceDeclaration(U("urn:1")),
               w.WriteAttrDefaultNamespaceDeclaration(U("urn:2"))),
         "This start element already contains default namespace declaration.", " xmlns=\"urn:1\""},
        // "xmlns" as a local name without a URI is the same declaration.
        {open,
         STEPS(w.WriteAttrDefaultNamespaceDeclaration(U("")),
               w.WriteAttribute(U("xmlns"), U(""), U("urn:2"))),
         "This start element already contains default namespace declaration.", " xmlns=\"\""},
        {started,
         STEPS(w.WriteStartElement(U("a"), U("")),
               w.WriteAttrDefaultNamespaceDeclaration(U("urn:moved"))),
         "This start element already contains default namespace declaration.", "<a"},
        {started,
         STEPS(w.WriteStartElement(U("p"), U("a"), U("urn:p")),
               w.WriteAttrNamespaceDeclaration(U("p"), U("urn:moved"))),
         "This start element already declares the prefix.", "<p:a xmlns:p=\"urn:p\""},
        {open, STEPS(w.WriteProcessingInstruction(U("XmL"), U("d"))),
         "Invalid processing instruction target."},
        {open, STEPS(w.WriteProcessingInstruction(U("t"), U("a?>b"))),
         "Invalid processing instruction data."},
        {open, STEPS(w.WriteComment(U("a--b"))), "Invalid comment text."},
        {open, STEPS(w.WriteCDATA(U("a]]>b"))), "Invalid CDATA text."},
        {open, STEPS(w.WriteEntityRef(U("nbsp"))), "Undeclared entity."},
        {open, STEPS(w.WriteWhitespace(U(" x"))), "Invalid whitespace."},
    };
    bool const haveXmllint = lumotest::HaveCommand("xmllint");
    for (std::size_t i = 0; i < cases.size(); ++i) {
        Case const& c = cases[i];
        SCOPED_TRACE("case " + std::to_string(i) + ": " + c.message);
        CMemoryOutputStream out;
        CXMLTextWriter writer(&out, "UTF-8", 64);
        c.before(writer);
        writer.Flush();
        std::string const good = Bytes(out);
        try {
            c.bad(writer);
            ADD_FAILURE() << "no exception";
        } catch (CXMLException const& e) {
            EXPECT_STREQ(c.message, e.GetErrorDescription());
            // The writer or its context unit.
            EXPECT_EQ(0, std::string(e.GetSourceFile()).find("lumo/io/XMLTextWriter"));
        }
        writer.Flush();
        EXPECT_EQ(good + c.extra, Bytes(out));
        // The state is unchanged too: a document with a root can be finished, and is
        // well-formed.
        try {
            writer.WriteEndDocument();
        } catch (CXMLException const&) {
            continue;
        }
        bool ok = false;
        if (haveXmllint) {
            EXPECT_EQ("", Tool(Bytes(out), "xmllint --noout", &ok));
            EXPECT_TRUE(ok);
        }
    }
}

TEST(XMLTextWriterTest, ConstructorsAndEncodings) {
    CMemoryOutputStream out;
    auto expectArgument = [](std::function<void()> make, char const* message) {
        try {
            make();
            ADD_FAILURE() << "no exception for " << message;
        } catch (CIllegalArgumentException const& e) {
            EXPECT_STREQ(message, e.GetErrorDescription());
        }
    };
    expectArgument([] { CXMLTextWriter(static_cast<COutputStream*>(nullptr), "UTF-8", 0); },
                   "Invalid output stream.");
    expectArgument([&] { CXMLTextWriter(&out, nullptr, 0); }, "Invalid encoding specification.");
    expectArgument([&] { CXMLTextWriter(&out, "", 0); }, "Invalid encoding specification.");
    EXPECT_THROW(CXMLTextWriter(&out, "EBCDIC-42", 0), CUnsupportedEncodingException);

    lumotest::TempDir dir;
    std::string const path = dir.File("doc.xml");
    EXPECT_THROW(CXMLTextWriter(IO::Location(path.c_str()), "EBCDIC-42", 0),
                 CUnsupportedEncodingException);
    EXPECT_NE(0, ::access(path.c_str(), F_OK)); // no file made for a bad encoding
    {
        CXMLTextWriter writer(IO::Location(path.c_str()), "UTF-8", 1);
        EXPECT_STREQ("UTF-8", writer.GetEncoding());
        writer.WriteStartDocument();
        writer.WriteElementString(U("a"), U("long enough to outgrow a 64-unit buffer ☃ 😀 ☃ 😀 ☃"));
        writer.Close();
        writer.Close(); // a second Close does nothing
        try {           // the stream's exception, not the XML one
            writer.WriteComment(U("c"));
            ADD_FAILURE() << "no exception after Close";
        } catch (CIOException const& e) {
            EXPECT_STREQ("Writer closed.", e.GetErrorDescription());
            EXPECT_EQ(nullptr, dynamic_cast<CXMLException const*>(&e));
        }
    }
    EXPECT_EQ(kDecl + "<a>long enough to outgrow a 64-unit buffer ☃ 😀 ☃ 😀 ☃</a>\r\n",
              lumotest::ReadText(path));

    lumo::base::CRef<COutputStream> shared(new CMemoryOutputStream);
    {
        CXMLTextWriter writer(shared, "UTF-8", 0);
        writer.WriteStartDocument();
    } // the destructor does not flush
    EXPECT_EQ(0ul, static_cast<CMemoryOutputStream*>(shared.Get())->GetBufferSize());
}

// A stream that fails once it holds `limit` bytes.
class CFailingStream : public CMemoryOutputStream {
public:
    explicit CFailingStream(unsigned long limit) : m_limit(limit) {}
    using CMemoryOutputStream::Write;
    void Write(char const* buf, unsigned long off, unsigned long len) override {
        if (GetBufferSize() + len > m_limit)
            throw CIOException("tests/FailingStream", __LINE__, "Disk full.", nullptr);
        CMemoryOutputStream::Write(buf, off, len);
    }

private:
    unsigned long m_limit;
};

TEST(XMLTextWriterTest, StreamFailingMidDocumentReportsIOException) {
    CFailingStream out(20000);
    CXMLTextWriter writer(&out, "UTF-8", 256);
    bool failed = false;
    try {
        writer.WriteStartDocument();
        writer.WriteStartElement(U("r"));
        for (int i = 0; i < 100000; ++i) {
            writer.WriteStartElement(U("item"));
            writer.WriteAttrLong(U("n"), i);
            writer.WriteString(U("text & more"));
            writer.WriteEndElement();
        }
        writer.WriteEndDocument();
    } catch (CIOException const& e) {
        failed = true;
        EXPECT_STREQ("Disk full.", e.GetErrorDescription());
    }
    EXPECT_TRUE(failed);
    // Closing reports the stream's failure again but releases everything.
    EXPECT_THROW(writer.Close(), CIOException);
    EXPECT_THROW(writer.WriteComment(U("c")), CIOException);
}

// A writer that keeps the base's typed defaults and records what reaches it.
class CRecordingWriter : public CXMLWriter {
public:
    std::string log;
    void Add(char const* what, unsigned short const* text) {
        log += what;
        log += CUnicodeString(text).ToUTF8();
        log += ";";
    }
    void WriteStartDocument() override {}
    void WriteEndDocument() override {}
    void WriteCDATA(unsigned short const*) override {}
    void WriteComment(unsigned short const*) override {}
    void WriteProcessingInstruction(unsigned short const*, unsigned short const*) override {}
    void WriteEntityRef(unsigned short const*) override {}
    void WriteWhitespace(unsigned short const*) override {}
    void WriteStartElement(unsigned short const*, unsigned short const*,
                           unsigned short const*) override {}
    void WriteStartElement(unsigned short const*, unsigned short const*) override {}
    void WriteStartElement(unsigned short const*) override {}
    void WriteEndElement() override {}
    void WriteFullEndElement() override {}
    void WriteElementString(unsigned short const* l, unsigned short const*,
                            unsigned short const* v) override {
        Add("E2:", l), Add("", v);
    }
    void WriteElementString(unsigned short const* n, unsigned short const* v) override {
        Add("E:", n), Add("", v);
    }
    void WriteAttribute(unsigned short const*, unsigned short const*, unsigned short const*,
                        unsigned short const*) override {}
    void WriteAttribute(unsigned short const* l, unsigned short const*,
                        unsigned short const* v) override {
        Add("A2:", l), Add("", v);
    }
    void WriteAttribute(unsigned short const* n, unsigned short const* v) override {
        Add("A:", n), Add("", v);
    }
    void WriteAttrDefaultNamespaceDeclaration(unsigned short const*) override {}
    void WriteAttrNamespaceDeclaration(unsigned short const*, unsigned short const*) override {}
    void WriteString(unsigned short const* t) override { Add("S:", t); }
    void Flush() override {}
    void Close() override {}
};

class CPoint : public IXMLSerializable {
public:
    void ReadXML(CXMLReader&) override {}
    void WriteXML(CXMLWriter& writer) override { writer.WriteElementLong(U("x"), 7); }
};

TEST(XMLWriterTest, BaseFormatsValuesAndDelegates) {
    CRecordingWriter w;
    w.WriteElementFloat(U("f"), 1.5f);
    w.WriteElementDouble(U("n"), U("urn:x"), -0.25);
    w.WriteElementShort(U("s"), -7);
    w.WriteElementUnsignedLong(U("u"), 4000000000ul);
    w.WriteElementBool(U("b"), false);
    w.WriteAttrLong(U("l"), U("urn:x"), -12);
    w.WriteAttrFloat(U("af"), 2.0f);
    w.WriteDouble(3.0);
    w.WriteBase64("xhello", 1, 5);
    w.WriteBinHex("\x0f\xf0", 0, 2);
    w.WriteElementBase64(U("b64"), nullptr, 0, 0);
    w.WriteObject(CPoint());
    EXPECT_EQ("E:f;1.500000;E2:n;-0.250000;E:s;-7;E:u;4000000000;E:b;false;A2:l;-12;A:af;"
              "2.000000;S:3.000000;S:aGVsbG8=;S:0FF0;E:b64;;E:x;7;",
              w.log);
    EXPECT_STREQ("lumo::io::CXMLWriter", CXMLWriter::m_classCXMLWriter.GetQualifiedName());
}

} // namespace
