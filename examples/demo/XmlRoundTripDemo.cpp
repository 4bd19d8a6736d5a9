// The whole XML round trip: a document written with CXMLTextWriter to a file
// (attributes, namespaces, typed values, base64 binary, a comment, a CDATA section),
// then read back from that file with CXMLTextReader's typed reads, with a pushback
// reader putting back an element it looked ahead at.
#include "Demos.h"

#include <lumo/Lumo.h>
#include <vela/Location.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

using lumo::base::CRef;
using lumo::base::CUnicodeString;
using namespace lumo::io;

namespace {

// UTF-16 text from UTF-8 for the writer's and reader's calls.
class Text {
public:
    explicit Text(char const* utf8) : m_text(CUnicodeString::FromUTF8(utf8)) {}
    operator unsigned short const*() const { return m_text; }

private:
    CUnicodeString m_text;
};

char const kOrders[] = "urn:example:orders";
char const kExtra[] = "urn:example:extra";
char const kPicture[] = "\x89PNG\r\n\x1a\n picture";

void WriteOrder(IO::Location const& location) {
    CXMLTextWriter writer(location, "UTF-8", 0);
    writer.WriteStartDocument();
    writer.WriteComment(Text("an order, written and read back by the lumo demo"));
    writer.WriteStartElement(Text("o"), Text("order"), Text(kOrders));
    writer.WriteAttrNamespaceDeclaration(Text("x"), Text(kExtra));
    writer.WriteAttribute(Text("id"), Text("A-17 & \"friends\""));
    writer.WriteAttribute(Text("x"), Text("channel"), Text(kExtra), Text("web"));
    writer.WriteAttrBool(Text("paid"), true);
    writer.WriteElementString(Text("customer"),
                              Text("Zo\xc3\xab <zoe@example.com> \xf0\x9f\x98\x80"));
    writer.WriteElementShort(Text("lines"), 3);
    writer.WriteElementLong(Text("quantity"), -2147483647L - 1);
    writer.WriteElementFloat(Text("weight"), 1.5f);
    writer.WriteElementDouble(Text("total"), 1234.5678);
    writer.WriteElementBase64(Text("thumbnail"), kPicture, 0, sizeof kPicture - 1);
    writer.WriteStartElement(Text("note"));
    writer.WriteCDATA(Text("<b>fragile</b> & keep upright"));
    writer.WriteEndElement();
    writer.WriteEndDocument();
    writer.Close();
}

void ReadOrder(IO::Location const& location) {
    CXMLPushbackReader reader(CRef<CXMLReader>(new CXMLTextReader(location)), 4);
    reader.ReadStartElement(Text("order"), Text(kOrders));
    CUnicodeString const id = reader.ReadAttribute(Text("id"));
    CUnicodeString const channel = reader.ReadAttribute(Text("channel"), Text(kExtra));
    bool const paid = reader.ReadAttrBool(Text("paid"));
    std::printf("  order %s, channel %s, paid %s\n", static_cast<char const*>(id.ToUTF8()),
                static_cast<char const*>(channel.ToUTF8()), paid ? "yes" : "no");
    CUnicodeString const customer = reader.ReadElementString(Text("customer"));
    std::printf("  customer: %s\n", static_cast<char const*>(customer.ToUTF8()));

    // Look ahead at the line count, then put the element back for the code that owns it.
    short const peeked = reader.ReadElementShort(Text("lines"));
    reader.UnreadElementShort(Text("lines"), peeked);
    std::printf("  looked ahead: %d lines (pushed back)\n", peeked);
    short const lines = reader.ReadElementShort(Text("lines"));
    long const quantity = reader.ReadElementLong(Text("quantity"));
    float const weight = reader.ReadElementFloat(Text("weight"));
    double const total = reader.ReadElementDouble(Text("total"));
    std::printf("  lines %d, quantity %ld, weight %g, total %g (written with \"%%g\")\n", lines,
                quantity, static_cast<double>(weight), total);

    char* picture = nullptr;
    unsigned long size = 0;
    reader.ReadElementBase64(Text("thumbnail"), picture, size);
    bool const same = size == sizeof kPicture - 1 && std::memcmp(picture, kPicture, size) == 0;
    std::printf("  thumbnail: %lu bytes, %s\n", size, same ? "as written" : "CHANGED");
    std::free(picture);

    reader.ReadStartElement(Text("note"));
    CUnicodeString note;
    reader.ReadCDATA(note);
    reader.ReadEndElement(Text("order"), Text(kOrders));
    std::printf("  note (CDATA): %s\n", static_cast<char const*>(note.ToUTF8()));
    reader.Close();
}

} // namespace

namespace demo {

void XmlRoundTrip() {
    std::printf("\n== the XML round trip through a file\n");
    char path[] = "/tmp/lumo-demo-roundtrip-XXXXXX";
    int const fd = mkstemp(path);
    if (fd < 0)
        return;
    close(fd);
    IO::Location const location(path);
    WriteOrder(location);
    std::printf("  wrote %s, reading it back:\n", path);
    try {
        ReadOrder(location);
    } catch (...) {
        std::remove(path);
        throw;
    }
    std::remove(path);
}

} // namespace demo
