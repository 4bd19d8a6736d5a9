// The whole round trip: values written with each typed write of the text writer read
// back equal through the matching typed reads of the text reader, directly and through
// a pushback reader wrapping it, from memory and from a file.
#include "support/XML.h"

#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/XMLPushbackReader.h>
#include <lumo/io/XMLTextWriter.h>
#include <vela/Location.h>

#include "support/Files.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>

using namespace lumo::io;
using lumo::base::CRef;
using lumotest::ReaderOver;
using lumotest::Utf8;
using lumotest::W;

namespace {

::testing::Environment* const kEnv =
    ::testing::AddGlobalTestEnvironment(new lumotest::LibraryEnvironment);

char const kUri[] = "urn:lumo:round-trip";

short const kShorts[] = {SHRT_MIN, -1, 0, 1, 12345, SHRT_MAX};
long const kLongs[] = {LONG_MIN, INT_MIN, -1, 0, 1, INT_MAX, LONG_MAX};
unsigned long const kUnsignedLongs[] = {0, 1, 0xFFFFFFFFul, ULONG_MAX};
float const kFloats[] = {0.0f,    1.5f,     0.25f,   -2.0f,        1e10f,       3.14159265f,
                         FLT_MAX, -FLT_MAX, FLT_MIN, FLT_TRUE_MIN, -123456.789f};
double const kDoubles[] = {0.0,
                           1.5,
                           0.25,
                           -2.0,
                           1e10,
                           2.718281828459045,
                           DBL_MAX,
                           -DBL_MAX,
                           DBL_MIN,
                           DBL_TRUE_MIN,
                           -9.87654321e-200};
// All five special characters, blanks kept as they are, multi-byte UTF-8 and
// characters outside the Basic Multilingual Plane.
char const* const kStrings[] = {"plain",
                                "a&b<c>d'e\"f",
                                "&amp; is not an entity here",
                                "  leading and trailing  ",
                                "Gr\xc3\xbc\xc3\x9f"
                                "e \xe6\x97\xa5\xe6\x9c\xac \xd0\x9f\xd1\x80\xd0\xb8",
                                "\xf0\x9f\x98\x80 \xf0\x9d\x84\x9e<&>\xf0\x9f\x8e\x89"};
unsigned long const kBinarySizes[] = {0, 1, 2, 3, 4, 5, 57, 58, 59, 100, 1000, 2999, 3000};

// The text writer writes floats and doubles with "%g" (six significant digits), so a
// value reads back as the value that "%g" prints, parsed again: that is the expected
// value, computed independently with the C library. 1.5, 0.25, -2 and 1e10 print
// exactly and must come back unchanged.
float ExpectedFloat(float v) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(v));
    return std::strtof(text, nullptr);
}

double ExpectedDouble(double v) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", v);
    return std::strtod(text, nullptr);
}

std::vector<char> Bytes(unsigned long size) {
    std::mt19937 random(static_cast<unsigned>(size) * 7919u + 1u);
    std::vector<char> bytes(size);
    for (char& b : bytes)
        b = static_cast<char>(random());
    return bytes;
}

// Writes every value: elements by qualified name and in a namespace, attributes, and
// the binary blocks in base64 and binhex (from an offset into a larger buffer).
void WriteAll(CXMLTextWriter& w) {
    w.WriteStartDocument();
    w.WriteStartElement(W("root"));
    w.WriteAttrNamespaceDeclaration(W("t"), W(kUri));
    for (bool v : {true, false}) {
        w.WriteElementBool(W("bool"), v);
        w.WriteElementBool(W("bool"), W(kUri), v);
    }
    for (short v : kShorts) {
        w.WriteElementShort(W("short"), v);
        w.WriteElementShort(W("short"), W(kUri), v);
    }
    for (long v : kLongs) {
        w.WriteElementLong(W("long"), v);
        w.WriteElementLong(W("long"), W(kUri), v);
    }
    for (unsigned long v : kUnsignedLongs) {
        w.WriteElementUnsignedLong(W("ulong"), v);
        w.WriteElementUnsignedLong(W("ulong"), W(kUri), v);
    }
    for (float v : kFloats) {
        w.WriteElementFloat(W("float"), v);
        w.WriteElementFloat(W("float"), W(kUri), v);
    }
    for (double v : kDoubles) {
        w.WriteElementDouble(W("double"), v);
        w.WriteElementDouble(W("double"), W(kUri), v);
    }
    for (char const* v : kStrings) {
        w.WriteElementString(W("string"), W(v));
        w.WriteElementString(W("string"), W(kUri), W(v));
    }
    // One element per value kind with every attribute form on it.
    w.WriteStartElement(W("attrs"));
    w.WriteAttrBool(W("b"), true);
    w.WriteAttrBool(W("b"), W(kUri), false);
    w.WriteAttrShort(W("h"), SHRT_MIN);
    w.WriteAttrShort(W("h"), W(kUri), SHRT_MAX);
    w.WriteAttrLong(W("l"), LONG_MIN);
    w.WriteAttrLong(W("l"), W(kUri), LONG_MAX);
    w.WriteAttrUnsignedLong(W("u"), ULONG_MAX);
    w.WriteAttrUnsignedLong(W("u"), W(kUri), 0);
    w.WriteAttrFloat(W("f"), -FLT_MAX);
    w.WriteAttrFloat(W("f"), W(kUri), 1.5f);
    w.WriteAttrDouble(W("d"), DBL_MIN);
    w.WriteAttrDouble(W("d"), W(kUri), 1e10);
    for (unsigned i = 0; i < sizeof kStrings / sizeof kStrings[0]; ++i)
        w.WriteAttribute(W(("s" + std::to_string(i)).c_str()), W(kStrings[i]));
    w.WriteEndElement();
    for (unsigned long size : kBinarySizes) {
        std::vector<char> const bytes = Bytes(size + 3);
        w.WriteElementBase64(W("b64"), bytes.data(), 3, size);
        w.WriteElementBinHex(W("hex"), W(kUri), bytes.data(), 3, size);
    }
    w.WriteEndElement();
    w.WriteEndDocument();
}

// Reads everything back with the typed reads. With a pushback reader, every element
// is also pushed back whole and read a second time, so its formats meet the reads.
void ReadAll(CXMLReader& r, CXMLPushbackReader* pushback) {
    r.ReadStartElement(W("root"));
    for (bool v : {true, false}) {
        EXPECT_EQ(v, r.ReadElementBool(W("bool")));
        EXPECT_EQ(v, r.ReadElementBool(W("bool"), W(kUri)));
        if (pushback != nullptr) {
            pushback->UnreadElementBool(W("bool"), W(kUri), v);
            EXPECT_EQ(v, r.ReadElementBool(W("bool"), W(kUri)));
        }
    }
    for (short v : kShorts) {
        EXPECT_EQ(v, r.ReadElementShort(W("short")));
        EXPECT_EQ(v, r.ReadElementShort(W("short"), W(kUri)));
        if (pushback != nullptr) {
            pushback->UnreadElementShort(W("short"), v);
            EXPECT_EQ(v, r.ReadElementShort(W("short")));
        }
    }
    for (long v : kLongs) {
        EXPECT_EQ(v, r.ReadElementLong(W("long")));
        EXPECT_EQ(v, r.ReadElementLong(W("long"), W(kUri)));
        if (pushback != nullptr) {
            pushback->UnreadElementLong(W("long"), W(kUri), v);
            EXPECT_EQ(v, r.ReadElementLong(W("long"), W(kUri)));
        }
    }
    for (unsigned long v : kUnsignedLongs) {
        EXPECT_EQ(v, r.ReadElementUnsignedLong(W("ulong")));
        EXPECT_EQ(v, r.ReadElementUnsignedLong(W("ulong"), W(kUri)));
    }
    for (float v : kFloats) {
        float const expected = ExpectedFloat(v);
        EXPECT_EQ(expected, r.ReadElementFloat(W("float"))) << v;
        EXPECT_EQ(expected, r.ReadElementFloat(W("float"), W(kUri))) << v;
        if (pushback != nullptr) {
            pushback->UnreadElementFloat(W("float"), expected);
            EXPECT_EQ(expected, r.ReadElementFloat(W("float"))) << v;
        }
    }
    for (double v : kDoubles) {
        double const expected = ExpectedDouble(v);
        EXPECT_EQ(expected, r.ReadElementDouble(W("double"))) << v;
        EXPECT_EQ(expected, r.ReadElementDouble(W("double"), W(kUri))) << v;
        if (pushback != nullptr) {
            pushback->UnreadElementDouble(W("double"), W(kUri), expected);
            EXPECT_EQ(expected, r.ReadElementDouble(W("double"), W(kUri))) << v;
        }
    }
    for (char const* v : kStrings) {
        EXPECT_EQ(v, Utf8(r.ReadElementString(W("string"))));
        EXPECT_EQ(v, Utf8(r.ReadElementString(W("string"), W(kUri))));
        if (pushback != nullptr) {
            pushback->UnreadElementString(W("string"), W(v));
            EXPECT_EQ(v, Utf8(r.ReadElementString(W("string"))));
        }
    }
    for (float v : {1.5f, 0.25f, -2.0f, 1e10f}) // printed exactly by "%g"
        EXPECT_EQ(v, ExpectedFloat(v));

    r.ReadStartElement(W("attrs"));
    EXPECT_TRUE(r.ReadAttrBool(W("b")));
    EXPECT_FALSE(r.ReadAttrBool(W("b"), W(kUri)));
    EXPECT_EQ(SHRT_MIN, r.ReadAttrShort(W("h")));
    EXPECT_EQ(SHRT_MAX, r.ReadAttrShort(W("h"), W(kUri)));
    EXPECT_EQ(LONG_MIN, r.ReadAttrLong(W("l")));
    EXPECT_EQ(LONG_MAX, r.ReadAttrLong(W("l"), W(kUri)));
    EXPECT_EQ(ULONG_MAX, r.ReadAttrUnsignedLong(W("u")));
    EXPECT_EQ(0ul, r.ReadAttrUnsignedLong(W("u"), W(kUri)));
    EXPECT_EQ(ExpectedFloat(-FLT_MAX), r.ReadAttrFloat(W("f")));
    EXPECT_EQ(1.5f, r.ReadAttrFloat(W("f"), W(kUri)));
    EXPECT_EQ(ExpectedDouble(DBL_MIN), r.ReadAttrDouble(W("d")));
    EXPECT_EQ(1e10, r.ReadAttrDouble(W("d"), W(kUri)));
    for (unsigned i = 0; i < sizeof kStrings / sizeof kStrings[0]; ++i)
        EXPECT_EQ(kStrings[i], Utf8(r.ReadAttribute(W(("s" + std::to_string(i)).c_str()))));
    r.ReadEndElement(W("attrs"));

    for (unsigned long size : kBinarySizes) {
        std::vector<char> const bytes = Bytes(size + 3);
        std::vector<char> const expected(bytes.begin() + 3, bytes.end());
        char* data = nullptr;
        unsigned long length = 0;
        r.ReadElementBase64(W("b64"), data, length);
        EXPECT_EQ(expected, std::vector<char>(data, data + length)) << "base64 of " << size;
        std::free(data);
        data = nullptr;
        r.ReadElementBinHex(W("hex"), W(kUri), data, length);
        EXPECT_EQ(expected, std::vector<char>(data, data + length)) << "binhex of " << size;
        std::free(data);
    }
    r.ReadEndElement(W("root"));
    EXPECT_FALSE(r.ReadToken());
}

std::string Written() {
    CMemoryOutputStream out;
    CXMLTextWriter writer(&out, "UTF-8", 0);
    WriteAll(writer);
    writer.Close();
    return std::string(out.GetBuffer(), out.GetBufferSize());
}

TEST(XMLRoundTrip, TypedValuesReadBackEqual) {
    std::string const document = Written();
    {
        SCOPED_TRACE("text reader");
        ReadAll(*ReaderOver(document), nullptr);
    }
    {
        SCOPED_TRACE("pushback reader over a text reader");
        CXMLPushbackReader pushback(CRef<CXMLReader>(ReaderOver(document).release()), 3);
        ReadAll(pushback, &pushback);
    }
    // An independent parser finds the document well-formed.
    if (!lumotest::HaveCommand("xmllint"))
        GTEST_SKIP() << "xmllint is not installed: the document was not checked by it";
    lumotest::TempDir dir;
    std::string const path = dir.File("round-trip.xml");
    ASSERT_TRUE(lumotest::WriteAll(path, document));
    std::string output;
    EXPECT_TRUE(lumotest::RunCommand("xmllint --noout '" + path + "' 2>&1", &output)) << output;
}

TEST(XMLRoundTrip, ThroughAFile) {
    lumotest::TempDir dir;
    ASSERT_TRUE(dir.Ok());
    IO::Location const location(dir.File("round-trip.xml").c_str());
    {
        CXMLTextWriter writer(location, "UTF-8", 64);
        WriteAll(writer);
        writer.Close();
    }
    CXMLTextReader reader(location);
    ReadAll(reader, nullptr);
    reader.Close();
}

} // namespace
