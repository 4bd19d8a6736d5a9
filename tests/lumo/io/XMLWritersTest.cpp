// Tests of the XML writers: the writer base's typed defaults (through a recording
// writer); the text writer's exact output bytes, documents checked by xmllint
// (well-formedness, canonical form) and read back by Python's minidom, every failure of
// the failure table, and a stream that fails mid-way; the DOM writer's tree, serialized
// by Xerces-C, as the canonical twin of the same content written by the text writer, its
// placeholder document, base number formats and every refused write.
#include "support/Files.h"
#include "support/XML.h"

#include <lumo/io/DOM_Document.h>
#include <lumo/io/IOException.h>
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/UnsupportedEncodingException.h>
#include <lumo/io/XMLDOMReader.h>
#include <lumo/io/XMLDOMWriter.h>
#include <lumo/io/XMLTextWriter.h>
#include <vela/Location.h>

#include <gtest/gtest.h>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>

#include <algorithm>
#include <cfloat>
#include <climits>
#include <functional>
#include <memory>
#include <string>
#include <vector>

using lumo::base::CException;
using lumo::base::CIllegalArgumentException;
using lumo::base::CUnicodeString;
using lumotest::Utf8;
using lumotest::W;
using namespace lumo::io;

namespace {

::testing::Environment* const kEnv =
    ::testing::AddGlobalTestEnvironment(new lumotest::LibraryEnvironment);

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
// One writer's steps in one line.
#define STEPS(...) [](auto& w) { __VA_ARGS__; }

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
         STEPS(w.WriteStartDocument(), w.WriteStartElement(W("a")), w.WriteEndElement()),
         kDecl + "<a/>\r\n", "<a></a>"},
        {"escaped attribute",
         STEPS(w.WriteStartDocument(), w.WriteStartElement(W("a")),
               w.WriteAttribute(W("t"), W("a&b<c>'\"")), w.WriteEndElement()),
         kDecl + "<a t=\"a&amp;b&lt;c&gt;&apos;&quot;\"/>\r\n",
         "<a t=\"a&amp;b&lt;c>'&quot;\"></a>"},
        {"element with content, comment, PI, CDATA, full end",
         STEPS(w.WriteStartDocument(), w.WriteComment(W("c")), w.WriteStartElement(W("r")),
               w.WriteElementString(W("n"), W("x>y")),
               w.WriteProcessingInstruction(W("pi"), W("d a")), w.WriteCDATA(W("<&>")),
               w.WriteStartElement(W("e")), w.WriteFullEndElement(), w.WriteEndDocument()),
         kDecl + "<!-- c-->\r\n<r>\r\n<n>x&gt;y</n>\r\n<?pi d "
                 "a?>\r\n<![CDATA[<&>]]>\r\n<e>\r\n</e>\r\n</r>\r\n",
         "<!-- c-->\n<r>\n<n>x&gt;y</n>\n<?pi d a?>\n&lt;&amp;&gt;\n<e>\n</e>\n</r>"},
        {"text, entity, whitespace, binary",
         STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")), w.WriteString(W("1<2 & \"q\"")),
               w.WriteEntityRef(W("amp")), w.WriteWhitespace(W(" \t")),
               w.WriteBase64("\0\1\2hello", 1, 7), w.WriteBinHex("\xAB\x01", 0, 2),
               w.WriteEndElement()),
         kDecl + "<r>\r\n1&lt;2 &amp; &quot;q&quot;&amp; \tAQJoZWxsbw==AB01</r>\r\n",
         "<r>\n1&lt;2 &amp; \"q\"&amp; \tAQJoZWxsbw==AB01</r>"},
        {"typed elements and attributes",
         STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")),
               w.WriteAttrShort(W("s"), -32768), w.WriteAttrDouble(W("d"), 1.5),
               w.WriteAttrBool(W("b"), true), w.WriteElementFloat(W("f"), 1.5f),
               w.WriteElementFloat(W("fm"), FLT_MAX), w.WriteElementDouble(W("dm"), -DBL_MAX),
               w.WriteElementDouble(W("tenth"), 0.1), w.WriteElementLong(W("l"), LONG_MIN),
               w.WriteElementUnsignedLong(W("u"), ULONG_MAX),
               w.WriteElementInt64(W("i"), LLONG_MIN), w.WriteElementChar(W("c"), -5),
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
         STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")), w.WriteDouble(1.5),
               w.Write(W(" ")), w.WriteBool(false), w.Write(W(" ")), w.WriteShort(-3),
               w.Write(W(" ")), w.WriteUnsignedShort(65535), w.WriteEndElement()),
         kDecl + "<r>\r\n1.500000 false -3 65535</r>\r\n", "<r>\n1.500000 false -3 65535</r>"},
        // The prefix p declared again for its own namespace writes nothing.
        {"namespaces declared where needed",
         STEPS(w.WriteStartDocument(), w.WriteStartElement(W("p"), W("r"), W("urn:p")),
               w.WriteAttrNamespaceDeclaration(W("p"), W("urn:p")),
               w.WriteAttrDefaultNamespaceDeclaration(W("urn:d")),
               w.WriteAttribute(W("p"), W("a"), W("urn:p"), W("1")),
               w.WriteStartElement(W("p"), W("c"), W("urn:p")),
               w.WriteAttribute(W("b"), W("urn:p"), W("2")), w.WriteEndElement(),
               w.WriteStartElement(W("d"), W("urn:d")), w.WriteEndElement(),
               w.WriteElementString(W("e"), W("urn:x"), W("v")), w.WriteEndDocument()),
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
        w.WriteStartElement(W("root"), W("urn:root"));
        expected += "E urn:root root\n";
        for (std::string const& v : values) {
            W const value(v.c_str());
            w.WriteStartElement(W("ns"), W("item"), W("http://example.com/ns?a=1&b=2"));
            w.WriteAttribute(W("ns"), W("v"), W("http://example.com/ns?a=1&b=2"), value);
            w.WriteAttribute(W("plain"), value);
            w.WriteElementString(W("ns:text"), value);
            w.WriteEndElement();
            expected +=
                "E http://example.com/ns?a=1&b=2 item\nA http://example.com/ns?a=1&b=2 v=" + v +
                "\nA None plain=" + v + "\nE http://example.com/ns?a=1&b=2 text\nT " + v + "\n";
        }
        w.WriteStartElement(W("ünï"));
        w.WriteString(W(values[4].c_str()));
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
    Steps const open = STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")),
                             w.WriteAttribute(W("a"), W("1")));
    Steps const closed =
        STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")), w.WriteEndElement());
    Steps const inside =
        STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")), w.WriteString(W("t")));
    std::vector<Case> const cases = {
        {none, STEPS(w.WriteStartElement(W("a"))), "Document hasn't been started yet."},
        {none, STEPS(w.WriteComment(W("c"))), "Document hasn't been started yet."},
        {started, STEPS(w.WriteStartDocument()), "Document has already been started."},
        {started, STEPS(w.WriteCDATA(W("x"))), "Document root hasn't been written yet."},
        {started, STEPS(w.WriteString(W("x"))), "Document root hasn't been written yet."},
        {started, STEPS(w.WriteEndElement()),
         "There is no start elements to close in the current context."},
        {closed, STEPS(w.WriteStartElement(W("b"))), "Document root has already been written."},
        {inside, STEPS(w.WriteAttribute(W("a"), W("1"))),
         "Attributes must be written at start element."},
        {inside, STEPS(w.WriteAttrNamespaceDeclaration(W("p"), W("urn:p"))),
         "Attributes must be written at start element."},
        {open, STEPS(w.WriteAttribute(W("a"), W("2"))), "Duplicate attribute."},
        // Two prefixes for one namespace name the same attribute.
        {STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")),
               w.WriteAttrNamespaceDeclaration(W("p"), W("urn:x")),
               w.WriteAttrNamespaceDeclaration(W("q"), W("urn:x")),
               w.WriteAttribute(W("p"), W("a"), W("urn:x"), W("1"))),
         STEPS(w.WriteAttribute(W("q"), W("a"), W("urn:x"), W("2"))), "Duplicate attribute."},
        {open, STEPS(w.WriteStartElement(nullptr)), "Invalid local name."},
        {open, STEPS(w.WriteStartElement(W(""))), "Invalid local name."},
        {open, STEPS(w.WriteStartElement(W("a:b"), W("urn:x"))),
         "Local name must be unqualified name."},
        {open, STEPS(w.WriteStartElement(W("1a"))), "Invalid character error."},
        {open, STEPS(w.WriteElementString(W("a b"), W("v"))), "Invalid character error."},
        {open, STEPS(w.WriteAttribute(W("a:"), W("v"))), "Invalid character error."},
        {open, STEPS(w.WriteString(W("bad \x01 char"))), "Invalid character error."},
        {open, STEPS(w.WriteStartElement(W(""), W("a"), W("urn:x"))), "Invalid prefix."},
        {open, STEPS(w.WriteStartElement(W("p"), W("a"), nullptr)), "Invalid namespace URI."},
        // The reserved namespace names: the XML one for the prefix xml alone, the xmlns
        // one for nothing.
        {open, STEPS(w.WriteStartElement(W("a"), W(kXmlUri))), "Invalid namespace URI."},
        {open, STEPS(w.WriteAttrNamespaceDeclaration(W("p"), W(kXmlUri))),
         "Invalid namespace URI."},
        {open, STEPS(w.WriteAttrDefaultNamespaceDeclaration(W(kXmlnsUri))),
         "Invalid namespace URI."},
        {open, STEPS(w.WriteElementString(W("a"), W(kXmlnsUri), W("v"))), "Invalid namespace URI."},
        {open, STEPS(w.WriteAttribute(W("q"), W("a"), W("urn:q"), W("v"))),
         "Undeclared namespace."},
        {open, STEPS(w.WriteAttribute(W("a"), W("urn:q"), W("v"))), "Undeclared namespace."},
        {open, STEPS(w.WriteStartElement(W("q:a"))), "Undeclared namespace."},
        {open,
         STEPS(w.WriteAttrDefaultNamespaceDeclaration(W("urn:1")),
               w.WriteAttrDefaultNamespaceDeclaration(W("urn:2"))),
         "This start element already contains default namespace declaration.", " xmlns=\"urn:1\""},
        // "xmlns" as a local name without a URI is the same declaration.
        {open,
         STEPS(w.WriteAttrDefaultNamespaceDeclaration(W("")),
               w.WriteAttribute(W("xmlns"), W(""), W("urn:2"))),
         "This start element already contains default namespace declaration.", " xmlns=\"\""},
        {started,
         STEPS(w.WriteStartElement(W("a"), W("")),
               w.WriteAttrDefaultNamespaceDeclaration(W("urn:moved"))),
         "This start element already contains default namespace declaration.", "<a"},
        {started,
         STEPS(w.WriteStartElement(W("p"), W("a"), W("urn:p")),
               w.WriteAttrNamespaceDeclaration(W("p"), W("urn:moved"))),
         "This start element already declares the prefix.", "<p:a xmlns:p=\"urn:p\""},
        // Nor an attribute's prefix, which would here move q:a onto p:a.
        {STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")),
               w.WriteAttrNamespaceDeclaration(W("p"), W("urn:x")),
               w.WriteAttrNamespaceDeclaration(W("q"), W("urn:y")), w.WriteStartElement(W("e")),
               w.WriteAttribute(W("p"), W("a"), W("urn:x"), W("1")),
               w.WriteAttribute(W("q"), W("a"), W("urn:y"), W("2"))),
         STEPS(w.WriteAttrNamespaceDeclaration(W("q"), W("urn:x"))),
         "This start element already declares the prefix."},
        {open, STEPS(w.WriteProcessingInstruction(W("XmL"), W("d"))),
         "Invalid processing instruction target."},
        {open, STEPS(w.WriteProcessingInstruction(W("t"), W("a?>b"))),
         "Invalid processing instruction data."},
        {open, STEPS(w.WriteComment(W("a--b"))), "Invalid comment text."},
        {open, STEPS(w.WriteCDATA(W("a]]>b"))), "Invalid CDATA text."},
        {open, STEPS(w.WriteEntityRef(W("nbsp"))), "Undeclared entity."},
        {open, STEPS(w.WriteWhitespace(W(" x"))), "Invalid whitespace."},
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
        writer.WriteElementString(W("a"), W("long enough to outgrow a 64-unit buffer ☃ 😀 ☃ 😀 ☃"));
        writer.Close();
        writer.Close(); // a second Close does nothing
        try {           // the stream's exception, not the XML one
            writer.WriteComment(W("c"));
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
        writer.WriteStartElement(W("r"));
        for (int i = 0; i < 100000; ++i) {
            writer.WriteStartElement(W("item"));
            writer.WriteAttrLong(W("n"), i);
            writer.WriteString(W("text & more"));
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
    EXPECT_THROW(writer.WriteComment(W("c")), CIOException);
}

// Records what the base's typed defaults delegate to. The DOM writer keeps every typed
// write of the base; its own binary writes are routed back to the base's defaults.
class CRecordingWriter : public CXMLDOMWriter {
public:
    std::string log;
    void Add(char const* what, unsigned short const* text) {
        log += what;
        log += CUnicodeString(text).ToUTF8();
        log += ";";
    }
    void WriteElementString(unsigned short const* l, unsigned short const*,
                            unsigned short const* v) override {
        Add("E2:", l), Add("", v);
    }
    void WriteElementString(unsigned short const* n, unsigned short const* v) override {
        Add("E:", n), Add("", v);
    }
    void WriteAttribute(unsigned short const* l, unsigned short const*,
                        unsigned short const* v) override {
        Add("A2:", l), Add("", v);
    }
    void WriteAttribute(unsigned short const* n, unsigned short const* v) override {
        Add("A:", n), Add("", v);
    }
    void WriteString(unsigned short const* t) override { Add("S:", t); }
    void WriteBase64(char const* d, unsigned long o, unsigned long n) override {
        CXMLWriter::WriteBase64(d, o, n);
    }
    void WriteBinHex(char const* d, unsigned long o, unsigned long n) override {
        CXMLWriter::WriteBinHex(d, o, n);
    }
};

class CPoint : public IXMLSerializable {
public:
    void ReadXML(CXMLReader&) override {}
    void WriteXML(CXMLWriter& writer) override { writer.WriteElementLong(W("x"), 7); }
};

TEST(XMLWriterTest, BaseFormatsValuesAndDelegates) {
    CRecordingWriter w;
    w.WriteElementFloat(W("f"), 1.5f), w.WriteElementDouble(W("n"), W("urn:x"), -0.25),
        w.WriteElementShort(W("s"), -7), w.WriteElementUnsignedLong(W("u"), 4000000000ul),
        w.WriteElementBool(W("b"), false), w.WriteAttrLong(W("l"), W("urn:x"), -12),
        w.WriteAttrFloat(W("af"), 2.0f), w.WriteDouble(3.0), w.WriteBase64("xhello", 1, 5),
        w.WriteBinHex("\x0f\xf0", 0, 2), w.WriteElementBase64(W("b64"), nullptr, 0, 0),
        w.WriteObject(CPoint());
    EXPECT_EQ("E:f;1.500000;E2:n;-0.250000;E:s;-7;E:u;4000000000;E:b;false;A2:l;-12;A:af;"
              "2.000000;S:3.000000;S:aGVsbG8=;S:0FF0;E:b64;;E:x;7;",
              w.log);
    EXPECT_STREQ("lumo::io::CXMLWriter", CXMLWriter::m_classCXMLWriter.GetQualifiedName());
}

// One writing routine for both writers: what the two must agree on.
void WriteContent(CXMLWriter& w) {
    w.WriteStartDocument();
    w.WriteComment(W(" first"));
    w.WriteProcessingInstruction(W("setup"), W("mode=\"fast\""));
    w.WriteStartElement(W("root"));
    w.WriteAttribute(W("id"), W("r&1<\"'>"));
    w.WriteAttrNamespaceDeclaration(W("n"), W("urn:n"));
    w.WriteStartElement(W("n"), W("item"), W("urn:n"));
    w.WriteAttribute(W("n"), W("k"), W("urn:n"), W("v"));
    w.WriteString(W("a < b & c > d"));
    w.WriteEndElement();
    w.WriteElementString(W("name"), W("x>y"));
    w.WriteElementLong(W("count"), -42);
    w.WriteElementBool(W("flag"), true);
    w.WriteStartElement(W("body"), W("urn:d"));
    w.WriteCDATA(W("raw <stuff> & ]"));
    w.WriteComment(W("inner"));
    w.WriteProcessingInstruction(W("in"), W("side"));
    w.WriteEndElement();
    w.WriteStartElement(W("empty"));
    w.WriteFullEndElement();
    w.WriteEndElement();
    w.WriteEndDocument();
}

std::string Serialize(xercesc::DOMDocument* document) {
    xercesc::DOMImplementation* impl =
        xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
    std::unique_ptr<xercesc::DOMLSSerializer, void (*)(xercesc::DOMLSSerializer*)> serializer(
        impl->createLSSerializer(), [](xercesc::DOMLSSerializer* s) { s->release(); });
    std::unique_ptr<xercesc::DOMLSOutput, void (*)(xercesc::DOMLSOutput*)> output(
        impl->createLSOutput(), [](xercesc::DOMLSOutput* o) { o->release(); });
    xercesc::MemBufFormatTarget target;
    output->setByteStream(&target);
    output->setEncoding(u"UTF-8");
    EXPECT_TRUE(serializer->write(document, output.get()));
    return std::string(reinterpret_cast<char const*>(target.getRawBuffer()), target.getLen());
}

TEST(XMLDOMWriterTest, SerializedTreeIsCanonicalTwinOfText) {
    if (!lumotest::HaveCommand("xmllint"))
        GTEST_SKIP() << "xmllint missing";
    CXMLDOMWriter dom;
    WriteContent(dom);
    std::string const serialized = Serialize(dom.GetDocument().Get());
    bool ok = false;
    EXPECT_EQ("", Tool(serialized, "xmllint --noout", &ok)) << serialized;

    CMemoryOutputStream bytes;
    {
        CXMLTextWriter text(&bytes, "UTF-8", 0);
        WriteContent(text);
        text.Close();
    }
    std::string const written(bytes.GetBuffer(), bytes.GetBufferSize());
    // Blank text between tags dropped, since the text writer puts each tag on its own
    // line and the tree has no such text.
    std::string domCanonical = Tool(serialized, "xmllint --noblanks --c14n", &ok);
    ASSERT_TRUE(ok) << domCanonical;
    std::string textCanonical = Tool(written, "xmllint --noblanks --c14n", &ok);
    ASSERT_TRUE(ok) << textCanonical;
    // The text writer's own layout: a blank after "<!--", and line breaks after its
    // tags, which stay as text where they touch content (the content has no others).
    for (std::size_t at = 0; (at = textCanonical.find("<!-- ", at)) != std::string::npos;)
        textCanonical.erase(at += 4, 1);
    for (std::string* form : {&domCanonical, &textCanonical})
        form->erase(std::remove(form->begin(), form->end(), '\n'), form->end());
    EXPECT_EQ(domCanonical, textCanonical) << serialized << "\n---\n" << written;
    EXPECT_NE(domCanonical.find("<root"), std::string::npos);
}

std::string Ascii(XMLCh const* s) {
    std::string out;
    for (; s != nullptr && *s != 0; ++s)
        out += static_cast<char>(*s);
    return out;
}

// The document's top-level nodes as "type:name".
std::string TopLevel(DOM_Document const& document) {
    std::string out;
    for (xercesc::DOMNode* n = document->getFirstChild(); n != nullptr; n = n->getNextSibling())
        out += std::to_string(n->getNodeType()) + ":" + Ascii(n->getNodeName()) + " ";
    return out;
}

TEST(XMLDOMWriterTest, PlaceholderReplacedAndNumbersInBaseFormat) {
    DOM_Document kept;
    {
        CXMLDOMWriter w;
        EXPECT_TRUE(w.GetDocument().IsNull());
        w.WriteStartDocument();
        ASSERT_FALSE(w.GetDocument().IsNull());
        EXPECT_EQ(Ascii(w.GetDocument()->getDocumentElement()->getTagName()), "DocumentRoot");
        w.WriteComment(W("c"));
        w.WriteProcessingInstruction(W("t"), W("d"));
        w.WriteComment(W("c2"));
        w.WriteStartElement(W("a"));
        w.WriteAttrFloat(W("at"), 2.25f);
        w.WriteElementFloat(W("f"), 1.5f);
        w.WriteDouble(0.5);
        kept = w.GetDocument();
        // The writer goes before WriteEndDocument; the copy keeps the tree.
    }
    EXPECT_EQ(TopLevel(kept), "8:#comment 7:t 8:#comment 1:a ");
    EXPECT_EQ(Ascii(kept->getFirstChild()->getNodeValue()), "c");
    EXPECT_EQ(Ascii(kept->getDocumentElement()->getAttribute(u"at")), "2.250000");
    EXPECT_EQ(Ascii(kept->getDocumentElement()->getTextContent()), "1.5000000.500000");

    // The tree reads back through the DOM reader, nodes outside the root unseen.
    CXMLDOMReader reader(kept);
    reader.ReadStartElement();
    EXPECT_EQ(Utf8(reader.GetCurrentTokenValue()), "a");
    EXPECT_EQ(reader.ReadAttrFloat(W("at")), 2.25f);
    EXPECT_EQ(reader.ReadElementFloat(W("f")), 1.5f);
}

TEST(XMLDOMWriterTest, ContentNodesReadBackThroughTheDOMReader) {
    CXMLDOMWriter w;
    w.WriteStartDocument();
    w.WriteStartElement(W("p"), W("r"), W("urn:p"));
    w.WriteAttrNamespaceDeclaration(W("p"), W("urn:p"));
    w.WriteAttribute(W("p"), W("a"), W("urn:p"), W("1"));
    w.WriteWhitespace(W("  "));
    w.WriteEntityRef(W("undeclared"));
    w.WriteCDATA(W("c"));
    w.WriteString(nullptr); // nothing
    w.WriteString(W("t"));
    w.WriteElementString(W("e"), W("urn:e"), nullptr);
    w.WriteEndElement();
    w.WriteEndDocument();
    w.Close();
    CXMLDOMReader reader(w.GetDocument());
    std::vector<std::string> seen;
    while (reader.ReadToken())
        seen.push_back(std::to_string(reader.GetCurrentTokenType()) + ":" +
                       Utf8(reader.GetCurrentTokenValue()));
    // An entity reference the document does not declare reads as empty text.
    EXPECT_EQ(seen, (std::vector<std::string>{"5:p:r", "3:  ", "3:", "4:c", "3:t", "5:e", "6:e",
                                              "6:p:r"}));
    CXMLDOMReader again(w.GetDocument());
    again.ReadStartElement(W("r"), W("urn:p"));
    EXPECT_EQ(Utf8(again.ReadAttribute(W("a"), W("urn:p"))), "1");
    EXPECT_EQ(Utf8(again.ReadAttribute(W("p"), W("http://www.w3.org/2000/xmlns/"))), "urn:p");
    again.ReadStartElement(W("e"), W("urn:e"));
    EXPECT_FALSE(again.HasAttribute(W("xmlns:p")));
}

void ExpectFailure(std::function<void()> const& call, char const* message) {
    try {
        call();
        ADD_FAILURE() << "no exception, expected " << message;
    } catch (CXMLException const& e) {
        EXPECT_STREQ(e.GetErrorDescription(), message);
        EXPECT_STREQ(e.GetSourceFile(), "lumo/io/XMLDOMWriter");
    }
}

using DOMSteps = std::function<void(CXMLDOMWriter&)>;

TEST(XMLDOMWriterTest, RefusedWrites) {
    DOMSteps const none = [](CXMLDOMWriter&) {};
    DOMSteps const begun = STEPS(w.WriteStartDocument());
    DOMSteps const inRoot = STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")));
    DOMSteps const inContent =
        STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")), w.WriteString(W("x")));
    DOMSteps const rootClosed =
        STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")), w.WriteEndElement());
    DOMSteps const ended = STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")),
                                 w.WriteEndElement(), w.WriteEndDocument());
    struct Case {
        DOMSteps before;
        DOMSteps call;
        char const* message;
    } const cases[] = {
        {none, STEPS(w.WriteStartElement(W("a"))), "Document hasn't been started yet."},
        {none, STEPS(w.WriteEndDocument()), "Document hasn't been started yet."},
        {ended, STEPS(w.WriteComment(W("c"))), "Document has already been closed."},
        {ended, STEPS(w.WriteStartDocument()), "Document has already been started once."},
        {begun, STEPS(w.WriteString(W("t"))), "Document element hasn't been written yet."},
        {begun, STEPS(w.WriteElementString(W("e"), W("t"))),
         "Document element hasn't been written yet."},
        {begun, STEPS(w.WriteEndElement()), "Document element hasn't been written yet."},
        {begun, STEPS(w.WriteCDATA(W("t"))), "CDATA section invalid at the top of XML document."},
        {begun, STEPS(w.WriteEntityRef(W("e"))),
         "Entity reference invalid at the top of XML document."},
        {begun, STEPS(w.WriteWhitespace(W(" "))), "Whitespaces don't allowed top of XML document."},
        {inRoot, STEPS(w.WriteEntityRef(W(""))), "Invalid entity name."},
        {begun, STEPS(w.WriteProcessingInstruction(W(""), W("d"))),
         "Invalid processing instruction target."},
        {begun, STEPS(w.WriteProcessingInstruction(W("t"), nullptr)),
         "Invalid processing instruction data."},
        {begun, STEPS(w.WriteStartElement(nullptr)), "Invalid local name."},
        {begun, STEPS(w.WriteStartElement(W("a:b"), W(""))),
         "Local name must be unqualified name."},
        {begun, STEPS(w.WriteStartElement(W(""), W("a"), W("urn:a"))), "Invalid prefix."},
        {begun, STEPS(w.WriteStartElement(W("1st"))), "Invalid character error."},
        {inRoot, STEPS(w.WriteStartElement(W("a b"))), "Invalid character error."},
        {inRoot, STEPS(w.WriteAttribute(W("<"), W("v"))), "Invalid character error."},
        {inRoot, STEPS(w.WriteElementString(W("x\x01"), W("v"))), "Invalid character error."},
        {inRoot, STEPS(w.WriteStartElement(W("xml"), W("a"), W("urn:not-xml"))),
         "Namespace error."},
        {inContent, STEPS(w.WriteAttribute(W("a"), W("v"))),
         "Attributes can be written only in start element state."},
        {rootClosed, STEPS(w.WriteEndElement()), "Element stack is empty."},
        {rootClosed, STEPS(w.WriteStartElement(W("second"))), "DOM exception."},
    };
    for (Case const& c : cases) {
        CXMLDOMWriter w;
        c.before(w);
        ExpectFailure([&] { c.call(w); }, c.message);
    }
}

TEST(XMLDOMWriterTest, WriterGoneBeforeEndLeaksNothing) {
    // Run under AddressSanitizer: every node belongs to a document released here.
    for (int round = 0; round < 3; ++round) {
        CXMLDOMWriter w;
        w.WriteStartDocument();
        w.WriteComment(W("kept until the first element"));
        if (round > 0) {
            w.WriteStartElement(W("r"));
            w.WriteStartElement(W("n"), W("x"), W("urn:n"));
            w.WriteCDATA(W("c"));
            w.WriteEntityRef(W("amp"));
        }
        if (round > 1)
            w.WriteEndDocument();
    }
}

} // namespace
