// The reader base's typed values, attribute reads and composed element reads, driven
// through the text reader, with the exact failure messages and the debug log of the
// caught cause.
#include "support/XML.h"

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Debug.h>

#include <cmath>
#include <cstdlib>
#include <functional>

using namespace lumo::io;
using lumo::base::CUnicodeString;
using lumotest::ReaderOver;
using lumotest::Utf8;
using lumotest::W;

namespace {

::testing::Environment* const kEnv =
    ::testing::AddGlobalTestEnvironment(new lumotest::LibraryEnvironment);

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

} // namespace
