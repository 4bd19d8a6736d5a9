// Fuzzes CXMLTextWriter with arbitrary call sequences over names, prefixes, URIs and texts
// both legal and not: whatever it accepted must read back through the text reader without
// a parse error, with one start element per element it wrote.
#include "FuzzSupport.h"

#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/XMLTextReader.h>
#include <lumo/io/XMLTextWriter.h>

#include <algorithm>
#include <cstring>
#include <memory>

using namespace lumo::io;
using namespace lumofuzz;

namespace {

char const* const kNames[] = {"a",       "b",    "p:a", "q:b",   "xml:lang",          "xmlns",
                              "xmlns:p", "1bad", "",    "a:b:c", "\xC3\xA9t\xC3\xA9", "_x.y-z",
                              ":a",      "a:",   "p:b"};
char const* const kPrefixes[] = {"p", "q", "xml", "xmlns", "", "1", "p:q"};
char const* const kUris[] = {"", "urn:a", "urn:b", "http://www.w3.org/XML/1998/namespace",
                             "http://www.w3.org/2000/xmlns/"};

// A zero-terminated UTF-16 text, from a fixed list or from the input.
class Texts {
public:
    explicit Texts(Input& in) : m_in(in) {}

    unsigned short const* Name() { return Fixed(kNames, sizeof kNames / sizeof kNames[0]); }
    unsigned short const* Prefix() {
        return Fixed(kPrefixes, sizeof kPrefixes / sizeof kPrefixes[0]);
    }
    unsigned short const* Uri() { return Fixed(kUris, sizeof kUris / sizeof kUris[0]); }
    // Free text, sometimes null; mostly ASCII with markup characters, sometimes any unit.
    unsigned short const* Text() {
        if (m_in.Pick(16) == 0)
            return nullptr;
        Units u;
        static char const kMarkup[] = "<>&'\"]-?x \n\t]>-";
        for (unsigned n = m_in.Pick(12); n > 0; --n) {
            std::uint8_t const b = m_in.Byte();
            if (b < 0x60)
                u.push_back(static_cast<unsigned char>(kMarkup[b % 16]));
            else if (b < 0xF0)
                u.push_back(static_cast<unsigned short>('a' + b % 26));
            else
                u.push_back(static_cast<unsigned short>(m_in.Byte() << 8 | m_in.Byte()));
        }
        u.erase(std::find(u.begin(), u.end(), 0), u.end());
        return Keep(u);
    }

private:
    unsigned short const* Fixed(char const* const* list, unsigned n) {
        return Keep(lumofuzz::Units(Utf16(list[m_in.Pick(n)])));
    }
    static Units Utf16(char const* utf8) {
        lumo::base::CUnicodeString const s = lumo::base::CUnicodeString::FromUTF8(utf8);
        return Units(static_cast<unsigned short const*>(s),
                     static_cast<unsigned short const*>(s) + s.GetLength());
    }
    unsigned short const* Keep(Units u) {
        u.push_back(0);
        m_kept.push_back(std::move(u));
        return m_kept.back().data();
    }
    Input& m_in;
    std::vector<Units> m_kept;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Start();
    Input in(data, size);
    Texts t(in);
    CMemoryOutputStream sink;
    CXMLTextWriter writer(&sink, "UTF-8", in.Pick(3) * 40);
    unsigned elements = 0;
    char const bytes[] = "\x00\xFF binary \x80";
    if (in.Pick(8) != 0)
        Try([&] { writer.WriteStartDocument(); });
    for (unsigned step = 0; step < 400 && !in.Empty(); ++step) {
        unsigned const op = in.Pick(32);
        bool const ok = Try([&] {
            switch (op) {
            case 0:
                writer.WriteStartElement(t.Name());
                break;
            case 1:
                writer.WriteStartElement(t.Name(), t.Uri());
                break;
            case 2:
                writer.WriteStartElement(t.Prefix(), t.Name(), t.Uri());
                break;
            case 3:
                writer.WriteEndElement();
                break;
            case 4:
                writer.WriteFullEndElement();
                break;
            case 5:
                writer.WriteAttribute(t.Name(), t.Text());
                break;
            case 6:
                writer.WriteAttribute(t.Name(), t.Uri(), t.Text());
                break;
            case 7:
                writer.WriteAttribute(t.Prefix(), t.Name(), t.Uri(), t.Text());
                break;
            case 8:
                writer.WriteAttrDefaultNamespaceDeclaration(t.Uri());
                break;
            case 9:
                writer.WriteAttrNamespaceDeclaration(t.Prefix(), t.Uri());
                break;
            case 10:
                writer.WriteAttrLong(t.Name(), in.Value<long>());
                break;
            case 11:
                writer.WriteAttrDouble(t.Name(), in.Value<double>());
                break;
            case 12:
                writer.WriteAttrFloat(t.Name(), t.Uri(), in.Value<float>());
                break;
            case 13:
                writer.WriteString(t.Text());
                break;
            case 14:
                writer.WriteCDATA(t.Text());
                break;
            case 15:
                writer.WriteComment(t.Text());
                break;
            case 16:
                writer.WriteProcessingInstruction(t.Name(), t.Text());
                break;
            case 17:
                writer.WriteEntityRef(t.Name());
                break;
            case 18:
                writer.WriteWhitespace(t.Text());
                break;
            case 19:
                writer.WriteDouble(in.Value<double>());
                break;
            case 20:
                writer.WriteUnsignedLong(in.Value<unsigned long>());
                break;
            case 21:
                writer.WriteBase64(bytes, in.Pick(4), in.Pick(8));
                break;
            case 22:
                writer.WriteBinHex(bytes, in.Pick(4), in.Pick(8));
                break;
            case 23:
                writer.WriteElementString(t.Name(), t.Text());
                break;
            case 24:
                writer.WriteElementString(t.Name(), t.Uri(), t.Text());
                break;
            case 25:
                writer.WriteElementLong(t.Name(), in.Value<long>());
                break;
            case 26:
                writer.WriteElementFloat(t.Name(), in.Value<float>());
                break;
            case 27:
                writer.WriteElementBase64(t.Name(), bytes, in.Pick(4), in.Pick(8));
                break;
            case 28:
                writer.WriteElementBool(t.Name(), t.Uri(), in.Bool());
                break;
            case 29:
                writer.WriteAttrBool(t.Name(), in.Bool());
                break;
            case 30:
                writer.WriteAttribute(t.Prefix(), t.Name(), t.Uri(), t.Text());
                break;
            default:
                writer.Flush();
                break;
            }
        });
        if (ok && (op <= 2 || (op >= 23 && op <= 28)))
            ++elements;
    }
    if (!Try([&] { writer.WriteEndDocument(); }))
        return 0;
    writer.Flush();

    // Read back: no failure anywhere, one start element per element written.
    std::string const text(sink.GetBuffer() ? sink.GetBuffer() : "", sink.GetBufferSize());
    char* copy = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(copy, text.data(), text.size());
    unsigned starts = 0;
    bool const read = Try([&] {
        CXMLTextReader reader(
            new CMemoryInputStream(copy, static_cast<unsigned long>(text.size()), true));
        while (reader.ReadToken())
            starts += reader.GetCurrentTokenType() == XMLTokenStartElement;
    });
    if (!read || starts != elements)
        std::fprintf(stderr, "%s\n", text.c_str());
    FUZZ_CHECK(read);
    FUZZ_CHECK(starts == elements);
    return 0;
}
