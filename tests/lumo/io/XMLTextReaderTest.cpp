// The text reader against the parser's events: token shapes, element strings, handed-out
// tokens, an independent parser's view of the same documents, documents that point
// outside themselves, and hostile or broken input. Searches and text joining are in the
// navigation script shared with the other readers (XMLReadersTest).
#include "support/XML.h"

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Location.h>

#include "support/Files.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>

using namespace lumo::io;
using lumo::base::CRef;
using lumo::base::CUnicodeString;
using lumotest::Dump;
using lumotest::ReaderOver;
using lumotest::Utf8;
using lumotest::W;
using Lines = std::vector<std::string>;

namespace {

::testing::Environment* const kEnv =
    ::testing::AddGlobalTestEnvironment(new lumotest::LibraryEnvironment);

// The token types exactly as delivered, without joining.
std::string Types(std::string const& xml) {
    auto reader = ReaderOver(xml);
    std::string out;
    while (reader->ReadToken())
        out += static_cast<char>('0' + reader->GetCurrentTokenType());
    return out;
}

template <class F> std::string MessageOf(F&& f) {
    try {
        f();
    } catch (lumo::base::CException const& e) {
        return e.GetErrorDescription() != nullptr ? e.GetErrorDescription() : "";
    }
    return "(no exception)";
}

TEST(XMLTextReader, TokenShapes) {
    struct Case {
        char const* xml;
        char const* types;
    } const cases[] = {
        {"<a/>", "56"},
        {" <!--c-->\n<?p d?> <a>x</a>\n <!--d--> ", "12536"
                                                    "1"},
        {"<a>x<![CDATA[y]]>z</a>", "53436"},
        {"<a><b/>t<c>u</c></a>", "5563536"
                                 "6"},
    };
    for (Case const& c : cases)
        EXPECT_EQ(c.types, Types(c.xml)) << c.xml;

    // An empty element gives start and end with the same names.
    EXPECT_EQ((Lines{"S|urn:x|e|p:e", "A|http://www.w3.org/2000/xmlns/|p|xmlns:p|urn:x",
                     "E|urn:x|e|p:e"}),
              Dump(*ReaderOver("<p:e xmlns:p='urn:x'/>")));
}

// The element string forms: empty elements both ways, blanks kept, a namespace.
TEST(XMLTextReader, ElementStrings) {
    auto strings = ReaderOver("<r><a/><a></a><a> s </a><n:a xmlns:n='urn:n'>t</n:a></r>");
    EXPECT_EQ("", Utf8(strings->ReadElementString(W("a"))));
    EXPECT_EQ("", Utf8(strings->ReadElementString(W("a"))));
    EXPECT_EQ(" s ", Utf8(strings->ReadElementString(W("a"))));
    EXPECT_EQ("t", Utf8(strings->ReadElementString(W("a"), W("urn:n"))));
    strings->ReadEndElement(W("r"));
}

// Tokens are made only when asked for, from values the reader reuses: what a caller
// was handed must stay as it was while reading goes on, and the type and value read
// before and after the token is made must agree.
TEST(XMLTextReader, HandedOutTokensAndValuesOutliveLaterReads) {
    // Twenty comments before the root arrive in one step, more than the queue's start.
    std::string xml;
    for (int i = 0; i < 20; ++i)
        xml += "<!--c" + std::to_string(i) + "-->";
    xml += "<r><e a='v0'>t0</e><e a='v1'>t1</e><e a='v2'>a text longer than thirty-two units "
           "2</e><e a='v3'/></r>";
    auto reader = ReaderOver(xml);
    std::vector<CRef<IXMLToken>> tokens;
    std::vector<CUnicodeString> values;
    Lines seen;
    while (reader->ReadToken()) {
        XMLTokenType const type = reader->GetCurrentTokenType();
        CUnicodeString const value = reader->GetCurrentTokenValue();
        CRef<IXMLToken> const& token = reader->GetCurrentToken();
        ASSERT_FALSE(token.IsNull());
        EXPECT_EQ(token.Get(), reader->GetCurrentToken().Get()); // made once
        EXPECT_EQ(type, token->GetType());
        EXPECT_EQ(Utf8(value), Utf8(token->GetValue()));
        EXPECT_EQ(type, reader->GetCurrentTokenType());
        seen.push_back(std::to_string(type) + "|" + Utf8(value));
        tokens.push_back(token);
        values.push_back(value);
    }
    ASSERT_EQ(20u + 2u + 3u * 3u + 2u, seen.size());
    for (std::size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(seen[i], std::to_string(tokens[i]->GetType()) + "|" + Utf8(values[i]));
        EXPECT_EQ(Utf8(values[i]), Utf8(tokens[i]->GetValue()));
    }
    EXPECT_EQ("1|c0", seen[0]);
    EXPECT_EQ("3|a text longer than thirty-two units 2", seen[28]);
    auto const* start = dynamic_cast<IXMLStartElementToken const*>(tokens[30].Get());
    ASSERT_NE(nullptr, start);
    EXPECT_EQ("v3", Utf8(start->GetAttribute(W("a"))));

    // Values read without ever making a token stay intact too.
    auto plain = ReaderOver(xml);
    values.clear();
    while (plain->ReadToken())
        values.push_back(plain->GetCurrentTokenValue());
    ASSERT_EQ(seen.size(), values.size());
    for (std::size_t i = 0; i < seen.size(); ++i)
        EXPECT_EQ(seen[i].substr(seen[i].find('|') + 1), Utf8(values[i]));

    // A fault keeps the current token as it was, whether it was made or not.
    for (bool make : {false, true}) {
        auto broken = ReaderOver("<r><a>x</a><b></r>");
        broken->ReadStartElement(W("a"));
        ASSERT_TRUE(broken->ReadToken());
        if (make)
            broken->GetCurrentToken();
        while (broken->GetCurrentTokenType() != XMLTokenStartElement ||
               Utf8(broken->GetCurrentTokenValue()) != "b")
            ASSERT_TRUE(broken->ReadToken());
        EXPECT_THROW(broken->ReadToken(), CXMLException);
        EXPECT_EQ(XMLTokenStartElement, broken->GetCurrentTokenType());
        EXPECT_EQ("b", Utf8(broken->GetCurrentToken()->GetValue()));
    }
}

TEST(XMLTextReader, ArgumentAndStateFailures) {
    auto reader = ReaderOver("<a>x</a>");
    struct Case {
        char const* message;
        std::function<void()> call;
    } const cases[] = {
        {"Invalid local name.", [&] { reader->ReadStartElement(nullptr); }},
        {"Invalid local name.", [&] { reader->ReadStartElement(W("")); }},
        {"Invalid local name.", [&] { reader->ReadEndElement(nullptr, W("")); }},
        {"Invalid namespace URI.", [&] { reader->ReadEndElement(W("a"), nullptr); }},
        {"Attributes available only in start element nodes.",
         [&] { reader->HasAttribute(W("x")); }},
    };
    for (Case const& c : cases)
        EXPECT_EQ(c.message, MessageOf(c.call));

    reader->ReadStartElement(W("a"));
    EXPECT_THROW(reader->ReadAttribute(W("x")), CXMLException); // "No such attribute."
    reader->Close();
    reader->Close();
    EXPECT_EQ("Reader closed.", MessageOf([&] { reader->ReadElementText(); }));
    EXPECT_EQ("End of stream reached.",
              MessageOf([&] { ReaderOver("<a><b/></a>")->ReadStartElement(W("c")); }));

    EXPECT_EQ("Invalid input stream.",
              MessageOf([] { CXMLTextReader r(static_cast<CInputStream*>(nullptr)); }));
    EXPECT_EQ("Invalid input stream.", MessageOf([] { CXMLTextReader r{CRef<CInputStream>()}; }));
    EXPECT_EQ("Invalid xml file location.", MessageOf([] { CXMLTextReader r{IO::Location()}; }));
    EXPECT_EQ("An error occured while trying to open file.",
              MessageOf([] { CXMLTextReader r{IO::Location("/nonexistent/lumo.xml")}; }));
}

TEST(XMLTextReader, ReadsFilesAndSharedStreams) {
    lumotest::TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const path = dir.File("doc.xml");
    std::ofstream(path) << "<?xml version='1.0'?><r><v>42</v></r>";
    CXMLTextReader fromFile{IO::Location(path.c_str())};
    EXPECT_EQ(42, fromFile.ReadElementLong(W("v")));

    CRef<CInputStream> shared(new CMemoryInputStream("<r>x</r>", 8, false));
    {
        CXMLTextReader reader(shared);
        EXPECT_EQ((Lines{"S||r|r", "T|x", "E||r|r"}), Dump(reader));
    }
    EXPECT_EQ(1u, shared.GetRefCount()); // the reader let go of its share
}

// The independent parser: Python's pulldom over expat, with comments reported too.
char const kPullDomDump[] = R"PY(
import io, sys, xml.sax, xml.sax.handler as h, xml.dom.pulldom as p
class PD(p.PullDOM):
    def startCDATA(self): pass
    def endCDATA(self): pass
    def startDTD(self, *a): pass
    def endDTD(self): pass
def esc(s): return (s or '').replace('\\', '\\\\').replace('\n', '\\n').replace('\r', '\\r')
sp = xml.sax.make_parser()
es = p.DOMEventStream(open(sys.argv[1], 'rb'), sp, 2**14)
es.pulldom = PD(); sp.setContentHandler(es.pulldom)
sp.setProperty(h.property_lexical_handler, es.pulldom)
out, text = [], None
depth = 0
for ev, n in es:
    if ev == 'CHARACTERS':
        if depth > 0: text = (text or '') + n.data
        continue
    if text is not None: out.append('T|' + esc(text)); text = None
    if ev == 'START_ELEMENT':
        depth += 1
        out.append('S|%s|%s|%s' % (n.namespaceURI or '', n.localName, n.tagName))
        out += sorted('A|%s|%s|%s|%s' % (a.namespaceURI or '', a.localName, a.name, esc(a.value))
                      for a in n.attributes.values())
    elif ev == 'END_ELEMENT':
        depth -= 1
        out.append('E|%s|%s|%s' % (n.namespaceURI or '', n.localName, n.tagName))
    elif ev == 'COMMENT': out.append('C|' + esc(n.data))
    elif ev == 'PROCESSING_INSTRUCTION': out.append('P|%s|%s' % (n.target, esc(n.data)))
sys.stdout.buffer.write('\n'.join(out).encode('utf-8'))
)PY";

Lines PullDomDump(std::string const& script, std::string const& file) {
    std::string out;
    lumotest::RunCommand("python3 " + script + " " + file, &out);
    Lines lines;
    std::istringstream in(out);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

TEST(XMLTextReader, AgreesWithAnIndependentParser) {
    if (std::system("python3 -c 'import xml.dom.pulldom' >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "python3 with xml.dom.pulldom is not installed";
    lumotest::TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const script = dir.File("dump.py");
    std::ofstream(script) << kPullDomDump;

    std::string const utf16Text = "<?xml version='1.0' encoding='UTF-16'?>"
                                  "<r a='\xc3\xa9'>\xe2\x82\xac \xf0\x9f\x98\x80<s/></r>";
    std::string utf16 = "\xff\xfe"; // BOM, little endian
    {
        lumo::base::CUnicodeString const u =
            lumo::base::CUnicodeString::FromUTF8(utf16Text.c_str());
        for (unsigned long i = 0; i < u.GetLength(); ++i) {
            utf16 += static_cast<char>(u.GetAt(i) & 0xFF);
            utf16 += static_cast<char>(u.GetAt(i) >> 8);
        }
    }
    std::string const documents[] = {
        "<?xml version='1.0'?>\n<!-- before --><?style href='x'?>\n"
        "<r xmlns='urn:d' xmlns:p='urn:p' p:a='1' b=\"two &amp; &lt;three&gt;\">\n"
        "  <p:c x='&#65;&#x42;'>text &#169; &#x1F600; more</p:c>\n"
        "  <e><![CDATA[<not markup> & ]]>after</e><?inner data here?><!--inside-->\n"
        "  <f xmlns=''>no namespace</f><p:g p:k='v' xmlns:q='urn:q' q:z='w'/>\n"
        "</r>\n<!-- after --><?tail?>\n",
        "<doc>\xc3\xa4\xc3\xb6\xc3\xbc \xe4\xb8\xad\xe6\x96\x87 \xf0\x90\x8d\x88"
        "<a attr='\xe2\x82\xac &#10;&#9;x'>line1\r\nline2\rline3</a></doc>",
        "<!DOCTYPE d SYSTEM 'd.dtd'><d>x<![CDATA[]]>y<![CDATA[z]]></d>",
        utf16,
    };
    int index = 0;
    for (std::string const& doc : documents) {
        std::string const file = dir.File(("doc" + std::to_string(index++) + ".xml").c_str());
        std::ofstream(file, std::ios::binary) << doc;
        Lines const expected = PullDomDump(script, file);
        ASSERT_FALSE(expected.empty()) << file;
        CXMLTextReader reader{IO::Location(file.c_str())};
        EXPECT_EQ(expected, Dump(reader)) << "document " << index - 1;
    }
}

// Listens on a loopback port and reports whether anyone connected within the test.
class LoopbackListener {
public:
    LoopbackListener() : m_fd(::socket(AF_INET, SOCK_STREAM, 0)), m_port(0) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (m_fd >= 0 && ::bind(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
            ::listen(m_fd, 4) == 0 &&
            ::getsockname(m_fd, reinterpret_cast<sockaddr*>(&address), &length) == 0)
            m_port = ntohs(address.sin_port);
    }
    ~LoopbackListener() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    int Port() const { return m_port; }
    bool SawConnection() const {
        pollfd p{m_fd, POLLIN, 0};
        return ::poll(&p, 1, 200) > 0;
    }

private:
    int m_fd;
    int m_port;
};

TEST(XMLTextReader, NeverReadsOutsideTheDocument) {
    LoopbackListener listener;
    ASSERT_NE(0, listener.Port());
    lumotest::TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const secret = dir.File("secret.txt");
    std::ofstream(secret) << "SECRET-CONTENT";
    std::string const url = "http://127.0.0.1:" + std::to_string(listener.Port());
    std::string const doc = "<?xml version='1.0'?>\n<!DOCTYPE r SYSTEM '" + url +
                            "/r.dtd' [\n"
                            "<!ENTITY web SYSTEM '" +
                            url +
                            "/e.xml'>\n"
                            "<!ENTITY file SYSTEM 'file://" +
                            secret +
                            "'>\n"
                            "<!ENTITY % param SYSTEM '" +
                            url +
                            "/p.dtd'> %param;\n]>\n"
                            "<r><a>before</a><b>&file;</b><c>&web;</c></r>";
    std::string seen;
    bool failed = false;
    try {
        auto reader = ReaderOver(doc);
        while (reader->ReadToken())
            seen += Utf8(reader->GetCurrentTokenValue()) + "|";
    } catch (CXMLException const&) {
        failed = true; // the skipped internal subset leaves the entities undeclared
    }
    EXPECT_TRUE(failed);
    EXPECT_NE(std::string::npos, seen.find("before")); // tokens before the fault arrived
    EXPECT_EQ(std::string::npos, seen.find("SECRET"));
    EXPECT_FALSE(listener.SawConnection());

    // An external DTD alone does not stop the document from being read.
    auto plain = ReaderOver("<!DOCTYPE r SYSTEM '" + url + "/r.dtd'><r>ok</r>");
    EXPECT_EQ((Lines{"S||r|r", "T|ok", "E||r|r"}), Dump(*plain));
    EXPECT_FALSE(listener.SawConnection());
}

TEST(XMLTextReader, BrokenAndHostileInput) {
    // Each fails with the parser's message once the tokens before the fault are read.
    struct Case {
        std::string xml;
        size_t tokensBefore;
    } const broken[] = {
        {"<a><b>x</c></a>", 3},
        {"<a><b>x</b>", 4},
        {"<a x='1' x='2'/>", 0},
        {"<a>&undefined;</a>", 1},
        {"<?xml version='1.0' encoding='NO-SUCH-CODE'?><a/>", 0},
        {"", 0},
        {"<a></a><b/>", 2},
        {"<a>\x01</a>", 1},
        {"<?xml version='1.0'?><!DOCTYPE l [<!ENTITY l0 'ha'>"
         "<!ENTITY l1 '&l0;&l0;&l0;&l0;&l0;&l0;&l0;&l0;&l0;&l0;'>"
         "<!ENTITY l2 '&l1;&l1;&l1;&l1;&l1;&l1;&l1;&l1;&l1;&l1;'>"
         "<!ENTITY l3 '&l2;&l2;&l2;&l2;&l2;&l2;&l2;&l2;&l2;&l2;'>]><l>&l3;&l3;&l3;</l>",
         1},
    };
    for (Case const& c : broken) {
        size_t count = 0;
        std::string message;
        try {
            auto reader = ReaderOver(c.xml);
            while (reader->ReadToken())
                ++count;
        } catch (CXMLException const& e) {
            message = e.GetMessage() != nullptr ? e.GetMessage() : "";
        }
        EXPECT_FALSE(message.empty()) << c.xml;
        EXPECT_EQ(c.tokensBefore, count) << c.xml << ": " << message;
    }

    // Deep nesting reads correctly.
    std::string deep;
    for (int i = 0; i < 10000; ++i)
        deep += "<d>";
    deep += "x";
    for (int i = 0; i < 10000; ++i)
        deep += "</d>";
    auto reader = ReaderOver(deep);
    size_t count = 0;
    while (reader->ReadToken())
        ++count;
    EXPECT_EQ(20001u, count);

    // Readers closed or dropped mid-document release everything (checked under ASan).
    for (int stop = 0; stop < 6; ++stop) {
        auto partial = ReaderOver("<r><a>1</a><b k='v'>2</b><!--c--></r>");
        for (int i = 0; i < stop; ++i)
            partial->ReadToken();
        if (stop % 2 == 0)
            partial->Close();
    }
}

} // namespace
