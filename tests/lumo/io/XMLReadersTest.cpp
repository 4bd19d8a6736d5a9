// The XML readers through their public interface: tokens and attribute lists built
// directly; the reader base's typed values, attribute reads and composed element reads
// (driven through the text reader, with the debug log of a caught cause); one navigation
// script run over the text, DOM and pushback readers, which must move alike and fail in
// their own words; the DOM reader over trees parsed by Xerces-C; the pushback reader's
// order, free-slot rule and failures; and the text reader against the parser's events
// (token shapes, element strings, handed-out tokens, an independent parser's view of the
// same documents, documents that point outside themselves, hostile or broken input).
// Whole typed elements pushed back are in XMLRoundTripTest.
#include "support/Files.h"
#include "support/Streams.h"
#include "support/XML.h"

#include <lumo/base/Exception.h>
#include <lumo/io/DOM_Document.h>
#include <lumo/io/IOException.h>
#include <lumo/io/XMLDOMReader.h>
#include <lumo/io/XMLDOMStartElementToken.h>
#include <lumo/io/XMLPushbackReader.h>
#include <lumo/io/XMLToken.h>
#include <vela/Debug.h>
#include <vela/Location.h>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

using Lines = std::vector<std::string>;
using lumo::base::CIllegalArgumentException;
using lumo::base::CRef;
using lumo::base::CUnicodeString;
using lumotest::Dump;
using lumotest::ExpectThrowWith;
using lumotest::ReaderOver;
using lumotest::Utf8;
using lumotest::W;
using namespace lumo::io;

namespace {

::testing::Environment* const kEnv =
    ::testing::AddGlobalTestEnvironment(new lumotest::LibraryEnvironment);

// The client's way to a tree: Xerces-C's DOM parser over the text, nothing fetched.
DOM_Document Parse(std::string const& text) {
    xercesc::XercesDOMParser parser;
    parser.setDoNamespaces(true);
    parser.setLoadExternalDTD(false);
    parser.setDisableDefaultEntityResolution(true);
    parser.setCreateEntityReferenceNodes(true);
    xercesc::MemBufInputSource source(reinterpret_cast<XMLByte const*>(text.data()), text.size(),
                                      "test");
    parser.parse(source);
    EXPECT_EQ(parser.getErrorCount(), 0u) << text;
    return DOM_Document(parser.adoptDocument());
}

std::string Message(std::function<void()> const& f) {
    try {
        f();
    } catch (CXMLException const& e) {
        return e.GetErrorDescription();
    }
    return "(none)";
}

TEST(XMLToken, TypesNamesAndAttributes) {
    CRef<IXMLToken> const text = CXMLToken::CreateCharacterToken(CUnicodeString("t"), false);
    CRef<IXMLToken> const cdata = CXMLToken::CreateCharacterToken(CUnicodeString("c"), true);
    EXPECT_NE(nullptr, dynamic_cast<CXMLTextToken*>(text.Get()));
    EXPECT_NE(nullptr, dynamic_cast<IXMLCDATAToken*>(cdata.Get()));
    EXPECT_EQ(XMLTokenCDATA, cdata->GetType());
    EXPECT_EQ(1, CXMLCommentToken(CUnicodeString("x")).GetType());
    CXMLPIToken const pi(CUnicodeString("target"), CUnicodeString("data"));
    EXPECT_EQ(2, pi.GetType());
    EXPECT_EQ("data", Utf8(pi.GetData()));

    XMLAttributeList list;
    list.Add(CUnicodeString("p:a"), CUnicodeString("a"), CUnicodeString("urn:p"),
             CUnicodeString("1"));
    list.Add(CUnicodeString("a"), CUnicodeString("a"), CUnicodeString(), CUnicodeString("2"));
    CXMLStartElementToken const start(CUnicodeString("urn:e"), CUnicodeString("e"),
                                      CUnicodeString("q:e"), list);
    EXPECT_FALSE(start.IsNamespaceURIEmpty());
    EXPECT_EQ("q:e", Utf8(start.GetValue()));
    EXPECT_EQ("1", Utf8(start.GetAttribute(W("a"), W("urn:p"))));
    EXPECT_EQ("2", Utf8(start.GetAttribute(W("a"), W(""))));
    EXPECT_EQ("1", Utf8(start.GetAttribute(W("p:a"))));
    EXPECT_FALSE(start.HasAttribute(W("x")));
    EXPECT_FALSE(start.HasAttribute(W("a"), W("urn:other")));

    CXMLEndElementToken const plain(CUnicodeString("n"));
    EXPECT_TRUE(plain.IsNamespaceURIEmpty());
    EXPECT_EQ("n", Utf8(plain.GetLocalName()));

    EXPECT_EQ("No such attribute.", Message([&] { start.GetAttribute(W("x")); }));
    EXPECT_EQ("Invalid qualified name.", Message([&] { list.HasAttribute(nullptr); }));
    EXPECT_EQ("Invalid local name.", Message([&] { list.GetAttribute(nullptr, W("")); }));
    EXPECT_EQ("Invalid namespace URI.", Message([&] { list.HasAttribute(W("a"), nullptr); }));
    XMLAttributeList copy(list);
    copy = XMLAttributeList();
    EXPECT_EQ(2u, list.GetLength());
    EXPECT_EQ(0u, copy.GetLength());
    // Clearing drops the attributes, not the copies made before; the list takes new ones.
    XMLAttributeList kept(list);
    list.Clear();
    EXPECT_EQ(0u, list.GetLength());
    EXPECT_FALSE(list.HasAttribute(W("p:a")));
    list.Add(CUnicodeString("b"), CUnicodeString("b"), CUnicodeString(), CUnicodeString("3"));
    EXPECT_EQ("3", Utf8(list.GetAttribute(W("b"))));
    EXPECT_EQ(1u, list.GetLength());
    EXPECT_EQ("1", Utf8(kept.GetAttribute(W("p:a"))));
}

// The outcome of a read: its value printed, or the failure's description.
template <class F> std::string Outcome(F&& read) {
    try {
        return read();
    } catch (lumo::base::CException const& e) {
        return std::string("!") + (e.GetErrorDescription() ? e.GetErrorDescription() : "") +
               (e.GetMessage() ? e.GetMessage() : "");
    }
}

std::string Num(double v) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%g", v);
    return buffer;
}

// Reads <v>content</v> as `type`, and the same text from attribute a of <w a='...'/>.
std::string Element(char const* type, std::string const& content) {
    auto reader = ReaderOver("<r><v>" + content + "</v><n/></r>");
    std::string const t = type;
    return Outcome([&]() -> std::string {
        std::string v;
        if (t == "bool")
            v = reader->ReadElementBool(W("v")) ? "true" : "false";
        else if (t == "short")
            v = std::to_string(reader->ReadElementShort(W("v")));
        else if (t == "long")
            v = std::to_string(reader->ReadElementLong(W("v"), W("")));
        else if (t == "ulong")
            v = std::to_string(reader->ReadElementUnsignedLong(W("v")));
        else if (t == "float")
            v = Num(reader->ReadElementFloat(W("v")));
        else if (t == "double")
            v = Num(reader->ReadElementDouble(W("v"), W("")));
        else
            v = Utf8(reader->ReadElementString(W("v")));
        reader->ReadStartElement(W("n")); // the end of v was consumed
        return v;
    });
}

std::string Attribute(char const* type, std::string const& value) {
    auto reader = ReaderOver("<w a='" + value + "'/>");
    reader->ReadStartElement();
    std::string const t = type;
    return Outcome([&]() -> std::string {
        if (t == "bool")
            return reader->ReadAttrBool(W("a")) ? "true" : "false";
        if (t == "short")
            return std::to_string(reader->ReadAttrShort(W("a"), W("")));
        if (t == "long")
            return std::to_string(reader->ReadAttrLong(W("a")));
        if (t == "ulong")
            return std::to_string(reader->ReadAttrUnsignedLong(W("a")));
        if (t == "float")
            return Num(reader->ReadAttrFloat(W("a"), W("")));
        return Num(reader->ReadAttrDouble(W("a")));
    });
}

TEST(XMLReader, TypedValues) {
    struct Case {
        char const* type;
        char const* text;
        char const* element;
        char const* attribute;
    } const cases[] = {
        {"bool", " true\n ", "true", "!Invalid bool literal."},
        {"bool", "false", "false", "false"},
        {"bool", "TRUE", "!Invalid bool literal.", "!Invalid bool literal."},
        {"bool", "1", "!Invalid bool literal.", "!Invalid bool literal."},
        {"short", "42xyz", "42", "42"},
        {"short", "x", "!Invalid short literal.", "!Invalid short literal."},
        {"long", " -7 ", "-7", "-7"},
        {"long", "3.5", "3", "3"},
        {"long", "abc", "!Invalid long literal.", "!Invalid long literal."},
        {"ulong", "4000000000", "4000000000", "4000000000"},
        {"ulong", "abc", "!Invalid long literal.", "!Invalid unsigned long literal."},
        {"float", "2.5e1", "25", "25"},
        {"float", "-", "!Invalid float literal.", "!Invalid float literal."},
        {"double", "\t0.125", "0.125", "0.125"},
        {"double", "", "!End of stream reached.", "!Invalid double literal."},
        {"string", " as is ", " as is ", nullptr},
        {"string", "", "", nullptr},
    };
    for (Case const& c : cases) {
        EXPECT_EQ(c.element, Element(c.type, c.text)) << c.type << " '" << c.text << "'";
        if (c.attribute != nullptr) {
            EXPECT_EQ(c.attribute, Attribute(c.type, c.text)) << c.type << " '" << c.text << "'";
        }
    }
}

TEST(XMLReader, BinaryCDATAAndObjects) {
    auto reader = ReaderOver("<r><h>00FF10</h><b> AAE= </b><x>!!!!</x><c>t<![CDATA[raw]]></c></r>");
    char* data = nullptr;
    unsigned long size = 0;
    reader->ReadElementBinHex(W("h"), data, size);
    ASSERT_EQ(3u, size);
    EXPECT_EQ(0x10, data[2]);
    std::free(data);
    reader->ReadElementBase64(W("b"), W(""), data, size);
    ASSERT_EQ(2u, size);
    EXPECT_EQ(1, data[1]);
    std::free(data);
    reader->ReadStartElement(W("x"));
    reader->ReadElementText();
    EXPECT_EQ("!Invalid binhex encoded string literal.", Outcome([&] {
                  reader->ReadBase64(data, size);
                  return std::string();
              }));
    CUnicodeString cdata;
    reader->ReadCDATA(cdata);
    EXPECT_EQ("raw", Utf8(cdata));
    EXPECT_EQ("!End of stream reached.", Outcome([&] {
                  reader->ReadCDATA();
                  return std::string();
              }));

    struct Point : IXMLSerializable {
        long x = 0;
        void ReadXML(CXMLReader& r) override { x = r.ReadElementLong(W("x")); }
        void WriteXML(CXMLWriter&) override {}
    } point;
    auto objects = ReaderOver("<p><x>12</x></p>");
    objects->ReadObject(point);
    EXPECT_EQ(12, point.x);
}

// An empty binary element is the empty block and the read stops at its end; text
// after a comment inside an element is still found.
TEST(XMLReader, EmptyBinaryElements) {
    auto reader = ReaderOver("<r><e/>\n<c><!--k-->AQI=</c><n></n> <t>AB</t></r>");
    char* data = reinterpret_cast<char*>(1);
    unsigned long size = 9;
    reader->ReadElementBase64(W("e"), data, size);
    EXPECT_EQ(nullptr, data);
    EXPECT_EQ(0u, size);
    reader->ReadElementBase64(W("c"), data, size);
    ASSERT_EQ(2u, size);
    EXPECT_EQ(2, data[1]);
    std::free(data);
    reader->ReadElementBinHex(W("n"), W(""), data, size);
    EXPECT_EQ(0u, size);
    reader->ReadElementBinHex(W("t"), data, size);
    ASSERT_EQ(1u, size);
    EXPECT_EQ('\xAB', data[0]);
    std::free(data);
}

TEST(XMLReader, NoCurrentTokenIsLoggedAndReplaced) {
    std::string log;
    Vela::DBSetOutput(
        [](char const* text, void* context) { *static_cast<std::string*>(context) += text; }, &log);
    auto reader = ReaderOver("<r/>");
    using Read = std::function<void()>;
    struct Case {
        char const* message;
        Read read;
    } const cases[] = {
        {"Failed to read the value of current token as bool.", [&] { reader->ReadBool(); }},
        {"Failed to read the value of current token as short.", [&] { reader->ReadShort(); }},
        {"Failed to read the value of current token as long.", [&] { reader->ReadLong(); }},
        {"Failed to read the value of current token as unsigned long.",
         [&] { reader->ReadUnsignedLong(); }},
        {"Failed to read the value of current token as float.", [&] { reader->ReadFloat(); }},
        {"Failed to read the value of current token as double.", [&] { reader->ReadDouble(); }},
        {"Failed to get the value of current XML token.", [&] { reader->GetCurrentTokenValue(); }},
        {"Failed to read the value of current token as binhex encoded binary data.",
         [&] {
             char* d;
             unsigned long n;
             reader->ReadBinHex(d, n);
         }},
    };
    for (Case const& c : cases) {
        log.clear();
        EXPECT_EQ(std::string("!") + c.message, Outcome([&] {
                      c.read();
                      return std::string();
                  }));
        EXPECT_NE(std::string::npos, log.find("CNullReferenceException")) << c.message;
    }
    Vela::DBSetOutput(nullptr, nullptr);
    EXPECT_THROW(reader->ReadString(), lumo::base::CNullReferenceException);
    EXPECT_STREQ("lumo::io::CXMLTextReader", reader->GetClass()->GetQualifiedName());
}

// Searches skip <s>, find names in a namespace and end elements by qualified name.
char const kDoc[] = "<r xmlns:n='urn:n'><s>skip</s><a k='v'>x<![CDATA[y]]>z</a><b/><c>t</c>"
                    "<n:d>1</n:d><e> 1.5 </e><n:f/></r>";

// The current token in short: its type and value.
std::string CurrentToken(CXMLReader& reader) {
    CRef<IXMLToken> const& token = reader.GetCurrentToken();
    return token.IsNull() ? "-" : std::to_string(token->GetType()) + Utf8(token->GetValue());
}

// Each step's result, or its failure as "!X message@unit" (X: an XML exception, I: any
// other I/O exception).
std::vector<std::string> RunScript(CXMLReader& reader) {
    std::vector<std::function<std::string()>> const steps = {
        [&] { return std::to_string(reader.GetCurrentTokenType()); },
        [&] { return Utf8(reader.GetCurrentTokenValue()); },
        [&] { return Utf8(reader.ReadAttribute(W("k"))); },
        [&] { return reader.ReadStartElement(W("a")), Utf8(reader.ReadAttribute(W("k"))); },
        [&] { return reader.ReadElementText(), CurrentToken(reader); },
        [&] { return reader.ReadToken() ? CurrentToken(reader) : "end"; },
        [&] { return Utf8(reader.ReadAttribute(W("k"))); },
        [&] { return reader.ReadStartElement(), CurrentToken(reader); },
        [&] { return reader.ReadElementTextIfAvailable() ? "text" : CurrentToken(reader); },
        [&] { return reader.ReadEndElement(W("b")), CurrentToken(reader); },
        [&] { return Utf8(reader.ReadElementString(W("c"))); },
        [&] { return std::to_string(reader.ReadElementLong(W("d"), W("urn:n"))); },
        [&] { return std::to_string(reader.ReadElementDouble(W("e"), W(""))); },
        [&] {
            return reader.ReadStartElement(W("f"), W("urn:n")), reader.ReadEndElement(W("n:f")),
                   CurrentToken(reader);
        },
        [&] { return reader.ReadEndElement(), CurrentToken(reader); },
        [&] { return reader.ReadStartElement(W("x:y"), W("")), ""; },
        [&] { return reader.ReadEndElement(W("r")), ""; },
        [&] { return reader.Close(), ""; },
        [&] { return reader.ReadToken() ? "token" : "end"; },
    };
    std::vector<std::string> outcomes;
    for (auto const& step : steps) {
        try {
            outcomes.push_back(step());
        } catch (lumo::base::CException const& e) {
            // The class too: an XML exception or a plain I/O one.
            bool const xml = dynamic_cast<CXMLException const*>(&e) != nullptr;
            outcomes.push_back(std::string(xml ? "!X " : "!I ") + e.GetErrorDescription() + "@" +
                               e.GetSourceFile());
        }
    }
    return outcomes;
}

// The outcomes of the script for a reader whose failures name `unit`.
std::vector<std::string> Expected(std::string const& unit, std::string const& noTokenType,
                                  std::string const& noTokenValue, std::string const& attrUnit) {
    return {noTokenType,
            noTokenValue,
            "!I Attributes available only in start element nodes.@" + attrUnit,
            "v",
            "3xyz",
            "6a",
            "!I Attributes available only in start element nodes.@" + attrUnit,
            "5b",
            "5b",
            "6b",
            "t",
            "1",
            "1.500000",
            "6n:f",
            "6r",
            "!X Local name must be unqualified name.@" + unit,
            "!I End of stream reached.@" + unit,
            "",
            "!I Reader closed.@" + unit};
}

TEST(XMLNavigation, ReadersMoveAlikeAndFailInTheirOwnWords) {
    std::string const base = "lumo/io/XMLReader";
    {
        auto text = lumotest::ReaderOver(kDoc);
        EXPECT_EQ(RunScript(*text),
                  Expected("lumo/io/XMLTextReader",
                           "!I Failed to get the token type of current XML token.@" + base,
                           "!I Failed to get the value of current XML token.@" + base, base));
    }
    {
        std::string const unit = "lumo/io/XMLDOMReader";
        CXMLDOMReader dom(Parse(kDoc));
        EXPECT_EQ(RunScript(dom), Expected(unit, "!I There is no valid token.@" + unit,
                                           "!I There is no valid token.@" + unit, unit));
    }
    {
        std::string const unit = "lumo/io/XMLPushbackReader";
        CXMLPushbackReader pushback(CRef<CXMLReader>(lumotest::ReaderOver(kDoc).release()), 4);
        EXPECT_EQ(RunScript(pushback),
                  Expected(unit,
                           "!I Failed to get the token type of the current XML token.@" + unit,
                           "!I Failed to get the value of the current XML token.@" + unit, base));
    }
}

// A text read holds back the token that ends it: the look-ahead slot of the text
// reader, the stack of the pushback reader, where a token pushed back afterwards
// comes first.
TEST(XMLNavigation, HeldBackTokenAndPushedBackTokensKeepTheirOrder) {
    CXMLPushbackReader reader(CRef<CXMLReader>(lumotest::ReaderOver(kDoc).release()), 2);
    reader.ReadStartElement(W("a"));
    reader.ReadElementText();
    reader.UnreadElementText(W("w"));
    EXPECT_THROW(reader.UnreadElementText(W("v")), CIOException); // the end of a holds a slot
    ASSERT_TRUE(reader.ReadToken());
    EXPECT_EQ(CurrentToken(reader), "3w");
    ASSERT_TRUE(reader.ReadToken());
    EXPECT_EQ(CurrentToken(reader), "6a");
}

// A pushback reader sharing a text reader over `xml`.
std::unique_ptr<CXMLPushbackReader> Over(std::string const& xml, unsigned long size = 8) {
    CRef<CXMLReader> const text(ReaderOver(xml).release());
    return std::unique_ptr<CXMLPushbackReader>(new CXMLPushbackReader(text, size));
}

// "kind:value" of the current token.
std::string Current(CXMLReader& reader) {
    return std::to_string(reader.GetCurrentTokenType()) + ":" + Utf8(reader.GetCurrentTokenValue());
}

// The tokens that remain, as "kind:value" separated by blanks.
std::string Rest(CXMLReader& reader) {
    std::string out;
    while (reader.ReadToken())
        out += (out.empty() ? "" : " ") + Current(reader);
    return out;
}

// The text reader's dump without the nodes outside the root element, which the DOM
// reader does not visit.
std::vector<std::string> TextDumpOfRoot(std::string const& text) {
    std::vector<std::string> lines = lumotest::Dump(*lumotest::ReaderOver(text));
    std::size_t first = 0;
    while (first < lines.size() && lines[first].compare(0, 2, "S|") != 0)
        ++first;
    std::size_t last = lines.size();
    while (last > first && lines[last - 1].compare(0, 2, "E|") != 0)
        --last;
    return std::vector<std::string>(lines.begin() + first, lines.begin() + last);
}

TEST(XMLDOMReaderTest, ParsedTreeReadsAsTheTextReaderReadsTheText) {
    char const* const documents[] = {
        "<a/>",
        "<?xml version=\"1.0\"?>\n<!-- before --><?pi before?>\n<r x='1' y=\"&lt;2&gt;\">"
        "text &amp; more<b/><c>in c</c><!--inner--><?go now please?></r>\n<!-- after -->",
        "<r>one<![CDATA[<raw> & ]]>two<![CDATA[]]>three&#65;&#x10400;</r>",
        "<p:root xmlns:p='urn:p' xmlns='urn:d' p:at='v' plain='w'><child><p:leaf "
        "xmlns:q='urn:q' q:z=''/></child><other xmlns=''>x</other></p:root>",
        "<doc>\n  <item n='1'>first</item>\n  <item n='2'>\tsecond\r\n line</item>\n"
        "  <empty></empty>\n</doc>",
        "<deep><a><b><c><d><e>bottom</e></d></c></b></a><tail/></deep>",
    };
    for (char const* text : documents) {
        DOM_Document const document = Parse(text);
        ASSERT_FALSE(document.IsNull());
        CXMLDOMReader reader(document);
        EXPECT_EQ(lumotest::Dump(reader), TextDumpOfRoot(text)) << text;
        EXPECT_FALSE(reader.ReadToken());
        EXPECT_TRUE(reader.GetCurrentToken().IsNull());
    }
}

TEST(XMLDOMReaderTest, DocumentHandle) {
    DOM_Document const none;
    EXPECT_TRUE(none.IsNull());
    EXPECT_EQ(none.Get(), nullptr);
    EXPECT_TRUE(DOM_Document(nullptr).IsNull());
    DOM_Document const parsed = Parse("<r/>");
    DOM_Document copy = parsed;
    EXPECT_FALSE(copy.IsNull());
    EXPECT_EQ(copy, parsed);
    EXPECT_NE(copy, none);
    EXPECT_EQ(copy->getDocumentElement(), parsed.Get()->getDocumentElement());
    copy = none; // the original still holds the document
    EXPECT_NE(parsed->getDocumentElement(), nullptr);
}

TEST(XMLDOMReaderTest, WalkEdges) {
    // The root is the first token even after a comment; an empty element's end follows
    // its start at once; an entity reference reads as text.
    DOM_Document const document =
        Parse("<!DOCTYPE r [<!ENTITY e 'replaced'>]><!-- c --><r><e/>x&e;y</r>");
    CXMLDOMReader reader(document);
    EXPECT_EQ("5:r 5:e 6:e 3:x 3:replaced 3:y 6:r", Rest(reader));
}

TEST(XMLDOMReaderTest, TokensOutliveReaderAndDocumentHandle) {
    CRef<IXMLToken> start, pi, text;
    {
        DOM_Document document = Parse("<r a='1' xmlns:n='urn:n' n:b='2'><?t d?>hello</r>");
        CXMLDOMReader reader(document);
        ASSERT_TRUE(reader.ReadToken());
        start = reader.GetCurrentToken();
        ASSERT_TRUE(reader.ReadToken());
        pi = reader.GetCurrentToken();
        ASSERT_TRUE(reader.ReadToken());
        text = reader.GetCurrentToken();
        reader.Close();
        EXPECT_TRUE(reader.GetCurrentToken().IsNull());
    }
    // Reader and handle are gone: the tokens hold the document.
    auto const& element = dynamic_cast<IXMLStartElementToken const&>(*start);
    EXPECT_EQ(Utf8(element.GetQualifiedName()), "r");
    EXPECT_TRUE(element.IsNamespaceURIEmpty());
    EXPECT_EQ(Utf8(element.GetAttribute(W("a"))), "1");
    EXPECT_EQ(Utf8(element.GetAttribute(W("b"), W("urn:n"))), "2");
    EXPECT_TRUE(element.HasAttribute(W("n:b")));
    EXPECT_FALSE(element.HasAttribute(W("b"), W("")));
    EXPECT_EQ(Utf8(pi->GetValue()), "t");
    EXPECT_EQ(Utf8(dynamic_cast<IXMLPIToken const&>(*pi).GetData()), "d");
    EXPECT_EQ(Utf8(text->GetValue()), "hello");
}

void ExpectFailure(std::function<void()> const& call, char const* message, bool xml) {
    try {
        call();
        ADD_FAILURE() << "no exception, expected " << message;
    } catch (CXMLException const& e) {
        EXPECT_TRUE(xml) << message;
        EXPECT_STREQ(e.GetErrorDescription(), message);
    } catch (CIOException const& e) {
        EXPECT_FALSE(xml) << message;
        EXPECT_STREQ(e.GetErrorDescription(), message);
    }
}

TEST(XMLDOMReaderTest, Failures) {
    ExpectFailure([] { CXMLDOMReader reader{DOM_Document()}; }, "Invalid DOM document.", false);

    DOM_Document const document = Parse("<r a='1'><b/></r>");
    CXMLDOMReader reader(document);
    ExpectFailure([&] { reader.ReadStartElement(W("")); }, "Invalid local name.", true);
    ExpectFailure([&] { reader.ReadStartElement(W("y"), nullptr); }, "Invalid namespace URI.",
                  true);
    reader.ReadStartElement(W("r"));
    EXPECT_FALSE(reader.HasAttribute(W("x")));
    ExpectFailure([&] { reader.ReadAttribute(W("x")); }, "No such attibute.", true);
    ExpectFailure([&] { reader.ReadAttribute(W("x"), W("")); }, "No such attibute.", true);
    ExpectFailure([&] { reader.HasAttribute(nullptr); }, "Invalid qualidied name.", true);
    ExpectFailure([&] { reader.ReadStartElement(W("nowhere")); }, "End of stream reached.", false);
    reader.Close();
    reader.Close(); // a second Close does nothing
}

TEST(XMLPushbackReader, Construction) {
    ExpectThrowWith<CIllegalArgumentException>([] { CXMLPushbackReader(CRef<CXMLReader>(), 4); },
                                               "Invalid XML reader.");
    ExpectThrowWith<CIllegalArgumentException>(
        [] { CXMLPushbackReader(static_cast<CXMLReader*>(nullptr), 4); }, "Invalid XML reader.");
    auto text = ReaderOver("<a/>");
    ExpectThrowWith<CIllegalArgumentException>([&] { CXMLPushbackReader(text.get(), 0); },
                                               "Invalid pushback buffer size.");
    CXMLPushbackReader reader(text.get(), 1);
    EXPECT_STREQ("lumo::io::CXMLPushbackReader", reader.GetClass()->GetQualifiedName());
    EXPECT_TRUE(reader.GetCurrentToken().IsNull());
    EXPECT_EQ("5:a 6:a", Rest(reader));
}

TEST(XMLPushbackReader, TokensComeBackLastInFirstOut) {
    auto reader = Over("<r><x>1</x><y/></r>");
    reader->ReadStartElement(W("x"));
    reader->UnreadToken(); // the start element of x comes back as it was
    EXPECT_TRUE(reader->ReadToken());
    EXPECT_EQ("5:x", Current(*reader));

    CRef<IXMLToken> const a(new CXMLCommentToken(CUnicodeString::FromUTF8("A")));
    CRef<IXMLToken> const b(new CXMLTextToken(CUnicodeString::FromUTF8("B")));
    reader->UnreadToken(a);
    reader->UnreadToken(b);
    reader->UnreadStartElement(W("s"));
    reader->UnreadEndElement(W("t"), W("urn:t"));
    reader->UnreadElementText(W("txt"));
    EXPECT_EQ("3:txt 6:t 5:s 3:B 1:A 3:1 6:x 5:y 6:y 6:r", Rest(*reader));

    // The namespace form builds tokens with those names and no attributes.
    auto names = Over("<r/>");
    names->UnreadStartElement(W("e"), W("urn:e"));
    names->UnreadEndElement(W("p:e"));
    EXPECT_EQ((std::vector<std::string>{"E||p:e|p:e", "S|urn:e|e|e", "S||r|r", "E||r|r"}),
              Dump(*names));
}

TEST(XMLPushbackReader, FullBufferKeepsWhatWasPushed) {
    auto reader = Over("<r/>", 2);
    ExpectThrowWith<CIOException>([&] { reader->UnreadElementShort(W("x"), 5); },
                                  "Pushback buffer is full.");
    // End tag and text went in before the buffer filled; they stay, in order.
    ExpectThrowWith<CIOException>([&] { reader->UnreadToken(reader->GetCurrentToken()); },
                                  "There is no valid token.");
    ExpectThrowWith<CIOException>([&] { reader->UnreadElementText(W("t")); },
                                  "Pushback buffer is full.");
    EXPECT_EQ("3:5 6:x 5:r 6:r", Rest(*reader));

    // Each read frees a slot; exactly three free slots take a whole element.
    auto three = Over("<r/>", 3);
    three->UnreadElementLong(W("n"), -7);
    EXPECT_EQ(-7, three->ReadElementLong(W("n")));
    three->UnreadElementBool(W("b"), true);
    ExpectThrowWith<CIOException>([&] { three->UnreadStartElement(W("c")); },
                                  "Pushback buffer is full.");
}

TEST(XMLPushbackReader, FailureMessages) {
    auto reader = Over("<r/>", 4);
    ExpectThrowWith<CIOException>([&] { reader->UnreadToken(); }, "There is no valid token.");
    using Call = std::function<void()>;
    struct Case {
        char const* message;
        Call call;
    } const cases[] = {
        {"Invalid local name.", [&] { reader->UnreadStartElement(nullptr); }},
        {"Invalid local name.", [&] { reader->UnreadEndElement(W("")); }},
        {"Invalid local name.", [&] { reader->UnreadElementBool(W(""), W("u"), true); }},
        {"Local name must be unqualified name.",
         [&] { reader->UnreadEndElement(W("p:x"), W("u")); }},
        {"Local name must be unqualified name.",
         [&] { reader->UnreadElementDouble(W("p:x"), W("u"), 1); }},
        {"Invalid namespace URI.", [&] { reader->UnreadStartElement(W("x"), nullptr); }},
        {"Invalid namespace URI.", [&] { reader->UnreadElementLong(W("x"), nullptr, 1); }},
        {"Invalid element text.", [&] { reader->UnreadElementText(W("")); }},
        {"Invalid element text.", [&] { reader->UnreadElementText(nullptr); }},
        {"Invalid element text.", [&] { reader->UnreadElementString(W("x"), W("")); }},
        {"Invalid element text.", [&] { reader->UnreadElementString(W("x"), W("u"), nullptr); }},
        // Both checks apply to the string form: the name is checked first.
        {"Invalid local name.", [&] { reader->UnreadElementString(W(""), nullptr); }},
        {"Invalid local name.", [&] { reader->ReadStartElement(W("")); }},
        {"Local name must be unqualified name.", [&] { reader->ReadEndElement(W("a:b"), W("")); }},
    };
    for (Case const& c : cases)
        ExpectThrowWith<CXMLException>(c.call, c.message);
    // Nothing of the failed calls was pushed.
    EXPECT_EQ("5:r 6:r", Rest(*reader));
    ExpectThrowWith<CIOException>([&] { reader->ReadStartElement(); }, "End of stream reached.");
    ExpectThrowWith<CIOException>([&] { reader->ReadElementText(); }, "End of stream reached.");

    reader->Close();
    reader->Close(); // a second Close does nothing
    Call const afterClose[] = {
        [&] { reader->ReadStartElement(W("r")); },
        [&] { reader->ReadEndElement(); },
        [&] { reader->ReadElementText(); },
        [&] { reader->ReadElementTextIfAvailable(); },
        [&] { reader->UnreadToken(); },
        [&] { reader->UnreadToken(CRef<IXMLToken>(new CXMLTextToken(CUnicodeString()))); },
        [&] { reader->UnreadStartElement(W("x")); },
        [&] { reader->UnreadEndElement(W("x"), W("")); },
        [&] { reader->UnreadElementText(W("t")); },
        [&] { reader->UnreadElementFloat(W("x"), 1.0f); },
        [&] { reader->UnreadElementString(W("x"), W("u"), W("v")); },
    };
    for (Call const& call : afterClose)
        ExpectThrowWith<CIOException>(call, "Reader closed.");
}

TEST(XMLPushbackReader, WrapsATextReader) {
    std::string const xml = "<?xml version='1.0'?><!--c--><r xmlns:p='urn:p' k='v'>a<![CDATA[b]]>"
                            "c<p:e/><?pi d?><t>x</t><u/></r>";
    EXPECT_EQ(Dump(*ReaderOver(xml)), Dump(*Over(xml)));

    // Text reads join text and CDATA and leave the next token to be read.
    auto reader = Over(xml, 1);
    reader->ReadStartElement(W("r"));
    CUnicodeString text;
    reader->ReadElementText(text);
    EXPECT_EQ("abc", Utf8(text));
    EXPECT_FALSE(reader->ReadElementTextIfAvailable()); // the next token is p:e
    EXPECT_EQ("3:abc", Current(*reader));
    reader->ReadStartElement(W("e"), W("urn:p"));
    EXPECT_EQ("", Utf8(reader->ReadElementString(W("u"))));
    reader->ReadEndElement(W("r"));
    EXPECT_FALSE(reader->ReadToken());
    EXPECT_TRUE(reader->GetCurrentToken().IsNull());

    // Close closes the wrapped reader; a borrowed one is not deleted.
    auto inner = ReaderOver(xml);
    {
        CXMLPushbackReader outer(inner.get(), 2);
        EXPECT_TRUE(outer.ReadToken());
        outer.Close();
    }
    ExpectThrowWith<CIOException>([&] { inner->ReadToken(); }, "Reader closed.");
    // The destructor alone leaves it open.
    auto open = ReaderOver(xml);
    { CXMLPushbackReader outer(open.get(), 2); }
    EXPECT_TRUE(open->ReadToken());
}

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
