// One writing routine and one reading routine that work over XML text and over a DOM
// tree alike: the order is written as text with CXMLTextWriter and as a tree with
// CXMLDOMWriter, then each is read back with the matching reader.
#include "Demos.h"

#include <lumo/Lumo.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

using lumo::base::CException;
using lumo::base::CUnicodeString;
using namespace lumo::io;

namespace demo {

namespace {

class U {
public:
    explicit U(char const* utf8) : m_text(CUnicodeString::FromUTF8(utf8)) {}
    operator unsigned short const*() const { return m_text; }

private:
    CUnicodeString m_text;
};

std::string Utf8(CUnicodeString const& s) {
    lumo::base::CString const u = s.ToUTF8();
    return std::string(static_cast<char const*>(u), u.GetLength());
}

// The writing routine: it knows only CXMLWriter.
void WriteOrder(CXMLWriter& out) {
    out.WriteStartDocument();
    out.WriteComment(U("an order"));
    out.WriteStartElement(U("order"));
    out.WriteAttrLong(U("id"), 1042);
    out.WriteElementString(U("customer"), U("Ada & Co"));
    out.WriteStartElement(U("line"));
    out.WriteAttribute(U("sku"), U("X-1"));
    out.WriteElementLong(U("quantity"), 3);
    out.WriteElementDouble(U("price"), 1.5);
    out.WriteEndElement();
    out.WriteEndElement();
    out.WriteEndDocument();
}

// The reading routine: it knows only CXMLReader.
void ReadOrder(CXMLReader& in, char const* source) {
    in.ReadStartElement(U("order"));
    long const id = in.ReadAttrLong(U("id"));
    CUnicodeString const customer = in.ReadElementString(U("customer"));
    in.ReadStartElement(U("line"));
    CUnicodeString const sku = in.ReadAttribute(U("sku"));
    long const quantity = in.ReadElementLong(U("quantity"));
    double const price = in.ReadElementDouble(U("price"));
    in.ReadEndElement(U("order"));
    std::printf("  from %-4s: order %ld for %s: %ld x %s at %g\n", source, id,
                Utf8(customer).c_str(), quantity, Utf8(sku).c_str(), price);
}

} // namespace

void XmlDom() {
    std::printf("\n== XML over text and over a DOM tree\n");
    try {
        CMemoryOutputStream text;
        {
            CXMLTextWriter writer(&text, "UTF-8", 0);
            WriteOrder(writer);
            writer.Close();
        }
        std::printf("%.*s", static_cast<int>(text.GetBufferSize()), text.GetBuffer());

        DOM_Document tree;
        {
            CXMLDOMWriter writer;
            WriteOrder(writer);
            tree = writer.GetDocument(); // the tree outlives its writer
        }

        char* bytes = static_cast<char*>(std::malloc(text.GetBufferSize()));
        std::memcpy(bytes, text.GetBuffer(), text.GetBufferSize());
        CXMLTextReader textReader(new CMemoryInputStream(bytes, text.GetBufferSize(), true));
        ReadOrder(textReader, "text");
        CXMLDOMReader treeReader(tree);
        ReadOrder(treeReader, "tree");
    } catch (CException const& e) {
        std::printf("  failed: %s\n", e.GetErrorDescription());
    }
}

} // namespace demo
