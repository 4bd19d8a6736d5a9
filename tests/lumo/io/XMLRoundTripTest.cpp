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
#include <iterator>
#include <random>
#include <type_traits>

using namespace lumo::io;
using lumo::base::CRef;
using lumotest::ReaderOver;
using lumotest::Utf8;
using lumotest::W;

namespace {

::testing::Environment* const kEnv =
    ::testing::AddGlobalTestEnvironment(new lumotest::LibraryEnvironment);

char const kUri[] = "urn:lumo:round-trip";

bool const kBools[] = {true, false};
short const kShorts[] = {SHRT_MIN, -1, 0, 1, 12345, SHRT_MAX};
long const kLongs[] = {LONG_MIN, INT_MIN, -1, 0, 1, INT_MAX, LONG_MAX};
unsigned long const kUnsignedLongs[] = {0, 1, 0xFFFFFFFFul, ULONG_MAX};
float const kFloats[] = {FLT_MAX, -FLT_MAX, 0.0f,        1.5f,         0.25f,       -2.0f,
                         1e10f,   FLT_MIN,  3.14159265f, FLT_TRUE_MIN, -123456.789f};
double const kDoubles[] = {
    DBL_MIN, DBL_MAX,         0.0, 1.5, 0.25, -2.0, 2.718281828459045, -DBL_MAX, DBL_TRUE_MIN,
    1e10,    -9.87654321e-200};
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

// The value kinds with an element write and read of that name, and their values.
#define ROUND_TRIP_KINDS(X)                                                                        \
    X(Bool, kBools)                                                                                \
    X(Short, kShorts)                                                                              \
    X(Long, kLongs) X(UnsignedLong, kUnsignedLongs) X(Float, kFloats) X(Double, kDoubles)

// The text writer writes floats and doubles with "%g" (six significant digits), so a
// value reads back as the value that "%g" prints, parsed again: that is the expected
// value, computed independently with the C library.
template <class T> T Expected(T v) {
    return v;
}
float Expected(float v) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(v));
    return std::strtof(text, nullptr);
}
double Expected(double v) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", v);
    return std::strtod(text, nullptr);
}

// Pushes an element back in both of the pushback reader's forms, the plain one on top;
// there are none for unsigned long.
template <class T> bool Unread(CXMLPushbackReader& p, T v) {
    if constexpr (std::is_same_v<T, bool>)
        p.UnreadElementBool(W("Bool"), W(kUri), v), p.UnreadElementBool(W("Bool"), v);
    else if constexpr (std::is_same_v<T, short>)
        p.UnreadElementShort(W("Short"), W(kUri), v), p.UnreadElementShort(W("Short"), v);
    else if constexpr (std::is_same_v<T, long>)
        p.UnreadElementLong(W("Long"), W(kUri), v), p.UnreadElementLong(W("Long"), v);
    else if constexpr (std::is_same_v<T, float>)
        p.UnreadElementFloat(W("Float"), W(kUri), v), p.UnreadElementFloat(W("Float"), v);
    else if constexpr (std::is_same_v<T, double>)
        p.UnreadElementDouble(W("Double"), W(kUri), v), p.UnreadElementDouble(W("Double"), v);
    else
        return false;
    return true;
}

std::vector<char> Bytes(unsigned long size) {
    std::mt19937 random(static_cast<unsigned>(size) * 7919u + 1u);
    std::vector<char> bytes(size);
    for (char& b : bytes)
        b = static_cast<char>(random());
    return bytes;
}

// Writes every value: elements by qualified name and in a namespace, attributes (the
// first and last value of each kind), and the binary blocks in base64 and binhex (from
// an offset into a larger buffer).
void WriteAll(CXMLTextWriter& w) {
    w.WriteStartDocument();
    w.WriteStartElement(W("root"));
    w.WriteAttrNamespaceDeclaration(W("t"), W(kUri));
#define WRITE_ELEMENTS(Kind, values)                                                               \
    for (auto v : values)                                                                          \
        w.WriteElement##Kind(W(#Kind), v), w.WriteElement##Kind(W(#Kind), W(kUri), v);
    ROUND_TRIP_KINDS(WRITE_ELEMENTS)
    for (char const* v : kStrings)
        w.WriteElementString(W("string"), W(v)), w.WriteElementString(W("string"), W(kUri), W(v));
    w.WriteStartElement(W("attrs"));
#define WRITE_ATTRIBUTES(Kind, values)                                                             \
    w.WriteAttr##Kind(W(#Kind), values[0]);                                                        \
    w.WriteAttr##Kind(W(#Kind), W(kUri), values[std::size(values) - 1]);
    ROUND_TRIP_KINDS(WRITE_ATTRIBUTES)
    for (unsigned i = 0; i < std::size(kStrings); ++i)
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
// is also pushed back whole in both forms and read again, so its formats meet the reads.
void ReadAll(CXMLReader& r, CXMLPushbackReader* pushback) {
    r.ReadStartElement(W("root"));
#define READ_ELEMENTS(Kind, values)                                                                \
    for (auto v : values) {                                                                        \
        SCOPED_TRACE(#Kind + std::string(" ") + std::to_string(v));                                \
        EXPECT_EQ(Expected(v), r.ReadElement##Kind(W(#Kind)));                                     \
        EXPECT_EQ(Expected(v), r.ReadElement##Kind(W(#Kind), W(kUri)));                            \
        if (pushback != nullptr && Unread(*pushback, Expected(v))) {                               \
            EXPECT_EQ(Expected(v), r.ReadElement##Kind(W(#Kind)));                                 \
            EXPECT_EQ(Expected(v), r.ReadElement##Kind(W(#Kind), W(kUri)));                        \
        }                                                                                          \
    }
    ROUND_TRIP_KINDS(READ_ELEMENTS)
    for (char const* v : kStrings) {
        EXPECT_EQ(v, Utf8(r.ReadElementString(W("string"))));
        EXPECT_EQ(v, Utf8(r.ReadElementString(W("string"), W(kUri))));
        if (pushback != nullptr) {
            pushback->UnreadElementString(W("string"), W(kUri), W(v));
            pushback->UnreadElementString(W("string"), W(v));
            EXPECT_EQ(v, Utf8(r.ReadElementString(W("string"))));
            EXPECT_EQ(v, Utf8(r.ReadElementString(W("string"), W(kUri))));
        }
    }
    r.ReadStartElement(W("attrs"));
#define READ_ATTRIBUTES(Kind, values)                                                              \
    EXPECT_EQ(Expected(values[0]), r.ReadAttr##Kind(W(#Kind)));                                    \
    EXPECT_EQ(Expected(values[std::size(values) - 1]), r.ReadAttr##Kind(W(#Kind), W(kUri)));
    ROUND_TRIP_KINDS(READ_ATTRIBUTES)
    for (unsigned i = 0; i < std::size(kStrings); ++i)
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

TEST(XMLRoundTrip, TypedValuesReadBackEqual) {
    CMemoryOutputStream out;
    CXMLTextWriter writer(&out, "UTF-8", 0);
    WriteAll(writer);
    writer.Close();
    std::string const document(out.GetBuffer(), out.GetBufferSize());
    {
        SCOPED_TRACE("text reader");
        ReadAll(*ReaderOver(document), nullptr);
    }
    {
        SCOPED_TRACE("pushback reader over a text reader");
        CXMLPushbackReader pushback(CRef<CXMLReader>(ReaderOver(document).release()), 6);
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
