// The navigation the three XML readers share, run as one script over the text reader,
// the DOM reader and the pushback reader: they must move alike, and each failure must
// name the reader's own unit and message.
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

char const kDoc[] = "<r><a k='v'>x<![CDATA[y]]>z</a><b/><c>t</c><d>1</d></r>";

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

// Each step's result, or its failure as "!message@unit".
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
        [&] { return std::to_string(reader.ReadElementLong(W("d"), W(""))); },
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
            outcomes.push_back(std::string("!") + e.GetErrorDescription() + "@" +
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
            "!Attributes available only in start element nodes.@" + attrUnit,
            "v",
            "3xyz",
            "6a",
            "!Attributes available only in start element nodes.@" + attrUnit,
            "5b",
            "5b",
            "6b",
            "t",
            "1",
            "6r",
            "!Local name must be unqualified name.@" + unit,
            "!End of stream reached.@" + unit,
            "",
            "!Reader closed.@" + unit};
}

TEST(XMLNavigation, ReadersMoveAlikeAndFailInTheirOwnWords) {
    std::string const base = "lumo/io/XMLReader";
    {
        auto text = lumotest::ReaderOver(kDoc);
        EXPECT_EQ(RunScript(*text),
                  Expected("lumo/io/XMLTextReader",
                           "!Failed to get the token type of current XML token.@" + base,
                           "!Failed to get the value of current XML token.@" + base, base));
    }
    {
        std::string const unit = "lumo/io/XMLDOMReader";
        CXMLDOMReader dom(Parse(kDoc));
        EXPECT_EQ(RunScript(dom), Expected(unit, "!There is no valid token.@" + unit,
                                           "!There is no valid token.@" + unit, unit));
    }
    {
        std::string const unit = "lumo/io/XMLPushbackReader";
        CXMLPushbackReader pushback(CRef<CXMLReader>(lumotest::ReaderOver(kDoc).release()), 4);
        EXPECT_EQ(RunScript(pushback),
                  Expected(unit, "!Failed to get the token type of the current XML token.@" + unit,
                           "!Failed to get the value of the current XML token.@" + unit, base));
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
