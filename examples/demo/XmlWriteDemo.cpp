// Writes an XML document with CXMLTextWriter to a file (attributes, namespaces,
// typed values, base64 binary, a comment and a CDATA section) and prints the file.
#include "Demos.h"

#include <lumo/Lumo.h>
#include <vela/Location.h>

#include <unistd.h>

#include <cfloat>
#include <cstdio>

using lumo::base::CException;
using lumo::base::CUnicodeString;
using namespace lumo::io;

namespace demo {

namespace {

// UTF-16 text from UTF-8 for the writer's calls.
class U {
public:
    explicit U(char const* utf8) : m_text(CUnicodeString::FromUTF8(utf8)) {}
    operator unsigned short const*() const { return m_text; }

private:
    CUnicodeString m_text;
};

} // namespace

void XmlWrite() {
    std::printf("\n== an XML document written with CXMLTextWriter\n");
    char path[] = "/tmp/lumo-demo-xml-XXXXXX";
    int const fd = mkstemp(path);
    if (fd < 0)
        return;
    close(fd);
    {
        CXMLTextWriter writer(IO::Location(path), "UTF-8", 0);
        writer.WriteStartDocument();
        writer.WriteComment(U("an order, written by the lumo demo"));
        writer.WriteStartElement(U("o"), U("order"), U("urn:example:orders"));
        writer.WriteAttrNamespaceDeclaration(U("x"), U("urn:example:extra"));
        writer.WriteAttribute(U("id"), U("A-17 & \"friends\""));
        writer.WriteAttribute(U("x"), U("channel"), U("urn:example:extra"), U("web"));
        writer.WriteAttrBool(U("paid"), true);
        writer.WriteElementString(U("customer"), U("Zoë <zoe@example.com> 😀"));
        writer.WriteElementShort(U("lines"), 3);
        writer.WriteElementLong(U("quantity"), -2147483647L - 1);
        writer.WriteElementUnsignedLong(U("serial"), 4294967295ul);
        writer.WriteElementFloat(U("weight"), 1.5f);
        writer.WriteElementDouble(U("total"), DBL_MAX);
        char const thumbnail[] = "\x89PNG\r\n\x1a\n tiny";
        writer.WriteElementBase64(U("thumbnail"), thumbnail, 0, sizeof thumbnail - 1);
        writer.WriteStartElement(U("note"));
        writer.WriteCDATA(U("<b>fragile</b> & keep upright"));
        writer.WriteEndElement();
        writer.WriteEndDocument();
        writer.Close();
    }
    std::FILE* file = std::fopen(path, "rb");
    if (file != nullptr) {
        char chunk[512];
        for (std::size_t n; (n = std::fread(chunk, 1, sizeof chunk, file)) > 0;)
            std::fwrite(chunk, 1, n, stdout);
        std::fclose(file);
    }
    std::remove(path);

    try {
        CMemoryOutputStream memory;
        CXMLTextWriter writer(&memory, "UTF-8", 0);
        writer.WriteStartDocument();
        writer.WriteStartElement(U("a"));
        writer.WriteAttribute(U("p"), U("b"), U("urn:never-declared"), U("v"));
    } catch (CXMLException const& e) {
        std::printf("an attribute with an undeclared prefix: %s\n", e.GetErrorDescription());
    }
}

} // namespace demo
