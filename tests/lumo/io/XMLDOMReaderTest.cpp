// Tests of the DOM reader and its tokens: documents parsed by Xerces-C's own DOM
// parser read the same as through the text reader, tokens outlive their reader, and
// the failures the shared navigation script (XMLNavigationTest) does not reach.
#include <lumo/io/DOM_Document.h>
#include <lumo/io/XMLDOMReader.h>
#include <lumo/io/XMLDOMStartElementToken.h>

#include "support/XML.h"

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

using namespace lumo::io;
using lumo::base::CRef;
using lumotest::Utf8;
using lumotest::W;

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
    std::vector<std::string> seen;
    while (reader.ReadToken())
        seen.push_back(std::to_string(reader.GetCurrentTokenType()) + ":" +
                       Utf8(reader.GetCurrentTokenValue()));
    EXPECT_EQ(seen,
              (std::vector<std::string>{"5:r", "5:e", "6:e", "3:x", "3:replaced", "3:y", "6:r"}));
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

} // namespace
