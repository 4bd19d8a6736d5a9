// Writing an XML document to a file with CXMLTextWriter and reading it back: an
// inventory of items with attributes and escaped text, printed as written, then read
// item by item with CXMLTextReader.
#include <lumo/Lumo.h>

#include <vela/Location.h>

#include <unistd.h>

#include <cstdio>
#include <string>

using namespace lumo::base;
using namespace lumo::io;

namespace {

struct Item {
    char const* sku;
    long quantity;
    char const* name;
};
Item const kItems[] = {
    {"A-1", 12, "Tea & biscuits"}, {"B-7", 0, "<fragile> glass"}, {"C-3", 250, "Crème brûlée"}};

CUnicodeString U(char const* text) {
    return CUnicodeString::FromUTF8(text);
}

void Write(IO::Location const& location) {
    CXMLTextWriter writer(location, "UTF-8", 0); // 0: the default buffer size
    writer.WriteStartDocument();                 // the <?xml ...?> declaration
    writer.WriteStartElement(U("inventory"));
    writer.WriteAttrLong(U("count"), static_cast<long>(sizeof kItems / sizeof kItems[0]));
    for (Item const& item : kItems) {
        writer.WriteStartElement(U("item"));
        writer.WriteAttribute(U("sku"), U(item.sku));
        writer.WriteAttrLong(U("qty"), item.quantity);
        writer.WriteElementString(U("name"), U(item.name)); // '&' and '<' are escaped
        writer.WriteEndElement();
    }
    writer.WriteEndElement();
    writer.WriteEndDocument();
    writer.Close(); // flushes and closes the file
}

void Read(IO::Location const& location) {
    CXMLTextReader reader(location);
    reader.ReadStartElement(U("inventory"));
    long const count = reader.ReadAttrLong(U("count"));
    for (long i = 0; i < count; ++i) {
        reader.ReadStartElement(U("item"));
        CString const sku = reader.ReadAttribute(U("sku")).ToUTF8();
        long const quantity = reader.ReadAttrLong(U("qty"));
        CUnicodeString const name = reader.ReadElementString(U("name")); // unescaped
        reader.ReadEndElement(U("item"));
        std::printf("  %-4s %4ld  %s\n", static_cast<char const*>(sku), quantity,
                    static_cast<char const*>(name.ToUTF8()));
    }
    reader.ReadEndElement(U("inventory"));
    reader.Close();
}

} // namespace

int main() {
    lumo::Initialize();
    char dir[] = "/tmp/lumo-xmlroundtrip-XXXXXX";
    if (mkdtemp(dir) == nullptr)
        return 1;
    std::string const path = std::string(dir) + "/inventory.xml";
    IO::Location const location(path.c_str());
    int status = 0;
    try {
        Write(location);
        // Show the file; the writer ends lines with CR LF, printed here as plain '\n'.
        std::printf("the file:\n");
        if (std::FILE* file = std::fopen(path.c_str(), "rb")) {
            for (int c; (c = std::fgetc(file)) != EOF;)
                if (c != '\r')
                    std::putchar(c);
            std::fclose(file);
        }
        std::printf("read back:\n");
        Read(location);
    } catch (CException const& e) {
        std::printf("failed: %s\n", e.GetClass()->GetName());
        status = 1;
    }
    std::remove(path.c_str());
    rmdir(dir);
    lumo::Terminate();
    return status;
}
