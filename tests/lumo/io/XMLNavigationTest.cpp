// The navigation the three XML readers share, run as one script over the text reader,
// the DOM reader and the pushback reader: they must move alike (searches past other
// elements and into namespaces, text joined across CDATA, typed element reads), and
// each failure must name the reader's own unit, message and exception class.
#include <lumo/base/Exception.h>
#include <lumo/io/DOM_Document.h>
#include <lumo/io/XMLDOMReader.h>
#include <lumo/io/XMLPushbackReader.h>

#include "support/XML.h"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

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

// Searches skip <s>, find names in a namespace and end elements by qualified name.
char const kDoc[] = "<r xmlns:n='urn:n'><s>skip</s><a k='v'>x<![CDATA[y]]>z</a><b/><c>t</c>"
                    "<n:d>1</n:d><e> 1.5 </e><n:f/></r>";

DOM_Document Parse(std::string const& text) {
    xercesc::XercesDOMParser parser;
    parser.setDoNamespaces(true);
    xercesc::MemBufInputSource source(reinterpret_cast<XMLByte const*>(text.data()), text.size(),
                                      "test");
    parser.parse(source);
    return DOM_Document(parser.adoptDocument());
}

// The current token in short: its type and value.
std::string Current(CXMLReader& reader) {
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
        [&] { return reader.ReadElementText(), Current(reader); },
        [&] { return reader.ReadToken() ? Current(reader) : "end"; },
        [&] { return Utf8(reader.ReadAttribute(W("k"))); },
        [&] { return reader.ReadStartElement(), Current(reader); },
        [&] { return reader.ReadElementTextIfAvailable() ? "text" : Current(reader); },
        [&] { return reader.ReadEndElement(W("b")), Current(reader); },
        [&] { return Utf8(reader.ReadElementString(W("c"))); },
        [&] { return std::to_string(reader.ReadElementLong(W("d"), W("urn:n"))); },
        [&] { return std::to_string(reader.ReadElementDouble(W("e"), W(""))); },
        [&] {
            return reader.ReadStartElement(W("f"), W("urn:n")), reader.ReadEndElement(W("n:f")),
                   Current(reader);
        },
        [&] { return reader.ReadEndElement(), Current(reader); },
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
    EXPECT_EQ(Current(reader), "3w");
    ASSERT_TRUE(reader.ReadToken());
    EXPECT_EQ(Current(reader), "6a");
}

} // namespace
