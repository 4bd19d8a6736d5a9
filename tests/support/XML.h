// Helpers shared by the XML reading tests: the library started once, UTF-16 literals,
// readers over in-memory text, and a canonical dump of a token sequence.
#ifndef LUMO_TESTS_SUPPORT_XML_H
#define LUMO_TESTS_SUPPORT_XML_H

#include <lumo/Library.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/XMLDOMStartElementToken.h>
#include <lumo/io/XMLTextReader.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace lumotest {

// Starts the library (and with it Xerces-C) around the whole test program.
class LibraryEnvironment : public ::testing::Environment {
public:
    void SetUp() override { lumo::Initialize(); }
    void TearDown() override { lumo::Terminate(); }
};

// A zero-terminated UTF-16 copy of UTF-8 text, usable where the API takes names.
class W {
public:
    W(char const* utf8) : m_text(lumo::base::CUnicodeString::FromUTF8(utf8)) {}
    operator unsigned short const*() const { return m_text; }

private:
    lumo::base::CUnicodeString m_text;
};

inline std::string Utf8(lumo::base::CUnicodeString const& s) {
    lumo::base::CString const u = s.ToUTF8();
    return std::string(static_cast<char const*>(u), u.GetLength());
}

// A text reader over a private copy of `bytes`.
inline std::unique_ptr<lumo::io::CXMLTextReader> ReaderOver(std::string const& bytes) {
    char* copy = static_cast<char*>(std::malloc(bytes.size() + 1));
    std::memcpy(copy, bytes.data(), bytes.size());
    return std::unique_ptr<lumo::io::CXMLTextReader>(new lumo::io::CXMLTextReader(
        new lumo::io::CMemoryInputStream(copy, static_cast<unsigned long>(bytes.size()), true)));
}

inline std::string Escape(std::string const& s) {
    std::string out;
    for (char c : s) {
        if (c == '\n')
            out += "\\n";
        else if (c == '\r')
            out += "\\r";
        else if (c == '\\')
            out += "\\\\";
        else
            out += c;
    }
    return out;
}

// One line per token: S|uri|local|qname then A|uri|local|qname|value per attribute
// (sorted), E|uri|local|qname, T|text (adjacent text and CDATA joined), C|comment,
// P|target|data. The same format as the independent parser's dump in the tests. Text
// and DOM readers' start tokens both give their attributes.
inline std::vector<std::string> Dump(lumo::io::CXMLReader& reader) {
    using namespace lumo::io;
    std::vector<std::string> lines;
    std::string text;
    bool inText = false;
    auto flush = [&] {
        if (inText)
            lines.push_back("T|" + Escape(text));
        text.clear();
        inText = false;
    };
    while (reader.ReadToken()) {
        IXMLToken const& token = *reader.GetCurrentToken();
        switch (token.GetType()) {
        case XMLTokenText:
        case XMLTokenCDATA:
            text += Utf8(token.GetValue());
            inText = true;
            break;
        case XMLTokenComment:
            flush();
            lines.push_back("C|" + Escape(Utf8(token.GetValue())));
            break;
        case XMLTokenProcessingInstruction:
            flush();
            lines.push_back("P|" + Utf8(token.GetValue()) + "|" +
                            Escape(Utf8(dynamic_cast<IXMLPIToken const&>(token).GetData())));
            break;
        case XMLTokenStartElement:
        case XMLTokenEndElement: {
            flush();
            auto const& element = dynamic_cast<IXMLElementToken const&>(token);
            lines.push_back(std::string(token.GetType() == XMLTokenStartElement ? "S|" : "E|") +
                            Utf8(element.GetNamespaceURI()) + "|" + Utf8(element.GetLocalName()) +
                            "|" + Utf8(element.GetQualifiedName()));
            XMLAttributeList list;
            if (auto start = dynamic_cast<CXMLStartElementToken const*>(&token))
                list = start->GetAttributes();
            else if (auto domStart = dynamic_cast<CXMLDOMStartElementToken const*>(&token))
                list = domStart->GetAttributes();
            {
                std::vector<std::string> attrs;
                for (unsigned long i = 0; i < list.GetLength(); ++i)
                    attrs.push_back("A|" + Utf8(list.GetNamespaceURI(i)) + "|" +
                                    Utf8(list.GetLocalName(i)) + "|" +
                                    Utf8(list.GetQualifiedName(i)) + "|" +
                                    Escape(Utf8(list.GetValue(i))));
                std::sort(attrs.begin(), attrs.end());
                lines.insert(lines.end(), attrs.begin(), attrs.end());
            }
            break;
        }
        }
    }
    flush();
    return lines;
}

} // namespace lumotest

#endif
