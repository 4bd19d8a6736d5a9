// The pushback reader through its public interface: construction, the order tokens
// come back in, the free-slot rule, every failure message, and a text reader wrapped by
// it. Whole typed elements pushed back and read again are in XMLRoundTripTest.
#include "support/XML.h"

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <lumo/io/XMLPushbackReader.h>

#include "support/Streams.h"

using namespace lumo::io;
using lumo::base::CIllegalArgumentException;
using lumo::base::CRef;
using lumo::base::CUnicodeString;
using lumotest::Dump;
using lumotest::ExpectThrowWith;
using lumotest::ReaderOver;
using lumotest::Utf8;
using lumotest::W;

namespace {

::testing::Environment* const kEnv =
    ::testing::AddGlobalTestEnvironment(new lumotest::LibraryEnvironment);

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
    ExpectThrowWith<CIOException>([&] { reader->GetCurrentTokenType(); },
                                  "Failed to get the token type of the current XML token.");
    ExpectThrowWith<CIOException>([&] { reader->GetCurrentTokenValue(); },
                                  "Failed to get the value of the current XML token.");
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
        [&] { reader->ReadToken(); },
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

} // namespace
