// Reads a small settings document back twice: token by token, the way a generic
// tool would see it, and with the typed element reads an application uses.
#include "Demos.h"

#include <lumo/Lumo.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace lumo::base;
using namespace lumo::io;

namespace {

char const kDocument[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         "<!-- written by an earlier run -->\n"
                         "<settings version=\"3\" xmlns:ui=\"urn:example:ui\">\n"
                         "  <name>Caf\xc3\xa9 layout</name>\n"
                         "  <ui:visible>true</ui:visible>\n"
                         "  <width>1280</width>\n"
                         "  <scale>1.25</scale>\n"
                         "  <icon>bHVtbw==</icon>\n"
                         "  <note><![CDATA[<b>kept</b> as text]]></note>\n"
                         "</settings>\n";

// A zero-terminated UTF-16 copy of an ASCII name.
struct Name {
    explicit Name(char const* ascii) : text(ascii) {}
    operator unsigned short const*() const { return text; }
    CUnicodeString text;
};

CRef<CInputStream> Document() {
    return CRef<CInputStream>(new CMemoryInputStream(
        kDocument, static_cast<unsigned long>(std::strlen(kDocument)), false));
}

char const* TypeName(XMLTokenType type) {
    switch (type) {
    case XMLTokenComment:
        return "comment";
    case XMLTokenProcessingInstruction:
        return "pi";
    case XMLTokenText:
        return "text";
    case XMLTokenCDATA:
        return "cdata";
    case XMLTokenStartElement:
        return "start";
    case XMLTokenEndElement:
        return "end";
    }
    return "?";
}

} // namespace

namespace demo {

void XmlRead() {
    std::printf("\n== XML read back token by token\n");
    CXMLTextReader tokens(Document());
    while (tokens.ReadToken()) {
        CString const value = tokens.GetCurrentTokenValue().ToUTF8();
        // Indentation between elements is text too; show it as its length.
        bool blank = true;
        for (char const* p = value; *p != '\0'; ++p)
            blank = blank && (*p == ' ' || *p == '\n');
        if (tokens.GetCurrentTokenType() == XMLTokenText && blank)
            continue;
        std::printf("  %-7s %s\n", TypeName(tokens.GetCurrentTokenType()),
                    static_cast<char const*>(value));
    }
    tokens.Close();

    std::printf("\n== XML read back with typed element reads\n");
    CXMLTextReader reader(Document());
    reader.ReadStartElement(Name("settings"));
    long const version = reader.ReadAttrLong(Name("version"));
    CString const name = reader.ReadElementString(Name("name")).ToUTF8();
    bool const visible = reader.ReadElementBool(Name("visible"), Name("urn:example:ui"));
    long const width = reader.ReadElementLong(Name("width"));
    double const scale = reader.ReadElementDouble(Name("scale"));
    char* icon = nullptr;
    unsigned long iconSize = 0;
    reader.ReadElementBase64(Name("icon"), icon, iconSize);
    reader.ReadStartElement(Name("note"));
    CUnicodeString note;
    reader.ReadCDATA(note);
    reader.ReadEndElement(Name("settings"));
    std::printf("  version %ld, name \"%s\", visible %s, width %ld, scale %g\n", version,
                static_cast<char const*>(name), visible ? "yes" : "no", width, scale);
    std::printf("  icon: %lu bytes \"%.*s\", note: %s\n", iconSize, static_cast<int>(iconSize),
                icon, static_cast<char const*>(note.ToUTF8()));
    std::free(icon);

    // A mismatch is reported the library's way, with the parser's own words.
    try {
        CXMLTextReader broken(CRef<CInputStream>(new CMemoryInputStream("<a><b></a>", 10, false)));
        broken.ReadElementText();
    } catch (CXMLException const& e) {
        std::printf("  malformed input: %s\n", e.GetMessage());
    }
}

} // namespace demo
