// Shared by the XML reader targets: a walk over any CXMLReader that mixes token reads,
// searches, text joins and typed reads (of values and attributes) as the fuzzer's
// choices say, with the checks every reader owes whatever the document.
#ifndef LUMO_FUZZ_XMLFUZZSUPPORT_H
#define LUMO_FUZZ_XMLFUZZSUPPORT_H

#include "FuzzSupport.h"

#include <lumo/io/XMLAttributeList.h>
#include <lumo/io/XMLDOMStartElementToken.h>
#include <lumo/io/XMLReader.h>
#include <lumo/io/XMLToken.h>

#include <cstdlib>

namespace lumofuzz {

// A name seen in the document, to search for and ask about later.
struct SeenName {
    lumo::base::CUnicodeString qualified, local, uri;
};

inline void Remember(lumo::io::IXMLToken const& token, SeenName& element, SeenName& attribute) {
    using namespace lumo::io;
    auto const* e = dynamic_cast<IXMLElementToken const*>(&token);
    if (e == nullptr)
        return;
    element = SeenName{e->GetQualifiedName(), e->GetLocalName(), e->GetNamespaceURI()};
    XMLAttributeList list;
    if (auto const* start = dynamic_cast<CXMLStartElementToken const*>(&token))
        list = start->GetAttributes();
    else if (auto const* dom = dynamic_cast<CXMLDOMStartElementToken const*>(&token))
        list = dom->GetAttributes();
    if (list.GetLength() > 0) {
        unsigned long const i = list.GetLength() - 1;
        attribute =
            SeenName{list.GetQualifiedName(i), list.GetLocalName(i), list.GetNamespaceURI(i)};
    }
}

// Checks what any token must hold: a known type, and an element's qualified name ending
// in its local name.
inline void CheckToken(lumo::io::IXMLToken const& token) {
    using namespace lumo::io;
    XMLTokenType const type = token.GetType();
    FUZZ_CHECK(type >= XMLTokenComment && type <= XMLTokenEndElement);
    token.GetValue();
    if (auto const* e = dynamic_cast<IXMLElementToken const*>(&token)) {
        lumo::base::CUnicodeString const q = e->GetQualifiedName(), l = e->GetLocalName();
        FUZZ_CHECK(!l.IsEmpty() && q.GetLength() >= l.GetLength());
        FUZZ_CHECK(
            std::equal(static_cast<unsigned short const*>(l),
                       static_cast<unsigned short const*>(l) + l.GetLength(),
                       static_cast<unsigned short const*>(q) + q.GetLength() - l.GetLength()));
        FUZZ_CHECK(e->IsNamespaceURIEmpty() == e->GetNamespaceURI().IsEmpty());
    }
    if (auto const* pi = dynamic_cast<IXMLPIToken const*>(&token))
        pi->GetData();
}

// Frees a block handed out by ReadBinHex / ReadBase64.
inline void Free(char* data) {
    std::free(data);
}

// Walks `reader` for at most `steps` operations chosen by `ops`; `extra(op)` may add
// operations of a reader's own (the pushback reader's give-backs). Library exceptions
// are expected everywhere; the walk stops at the end of the document.
template <class Extra>
void Walk(lumo::io::CXMLReader& reader, Input& ops, unsigned steps, Extra&& extra) {
    using namespace lumo::io;
    using lumo::base::CUnicodeString;
    SeenName element, attribute;
    unsigned ends = 0;
    for (unsigned step = 0; step < steps && ends < 3; ++step) {
        std::uint8_t const op = ops.Empty() ? 0 : ops.Byte();
        unsigned const sub = op >> 4;
        switch (op & 15) {
        case 0:
        case 1:
        case 2:
        case 3: {
            bool more = false;
            Try([&] { more = reader.ReadToken(); });
            if (!more) {
                ++ends;
                break;
            }
            auto const& token = reader.GetCurrentToken();
            FUZZ_CHECK(token);
            CheckToken(*token);
            FUZZ_CHECK(reader.GetCurrentTokenType() == token->GetType());
            Remember(*token, element, attribute);
            break;
        }
        case 4:
            Try([&] {
                switch (sub % 8) {
                case 0:
                    reader.ReadBool();
                    break;
                case 1:
                    reader.ReadShort();
                    break;
                case 2:
                    reader.ReadLong();
                    break;
                case 3:
                    reader.ReadUnsignedLong();
                    break;
                case 4:
                    reader.ReadFloat();
                    break;
                case 5:
                    reader.ReadDouble();
                    break;
                case 6:
                    reader.ReadString();
                    break;
                default:
                    reader.GetCurrentTokenValue();
                    break;
                }
            });
            break;
        case 5: {
            char* data = nullptr;
            unsigned long size = 0;
            Try([&] {
                if (sub & 1)
                    reader.ReadBase64(data, size);
                else
                    reader.ReadBinHex(data, size);
            });
            Free(data);
            break;
        }
        case 6:
            Try([&] {
                switch (sub % 4) {
                case 0:
                    reader.ReadStartElement();
                    break;
                case 1:
                    reader.ReadStartElement(element.qualified);
                    break;
                case 2:
                    reader.ReadStartElement(element.local, element.uri);
                    break;
                default:
                    reader.ReadStartElement(element.local);
                    break;
                }
            });
            break;
        case 7:
            Try([&] {
                switch (sub % 3) {
                case 0:
                    reader.ReadEndElement();
                    break;
                case 1:
                    reader.ReadEndElement(element.qualified);
                    break;
                default:
                    reader.ReadEndElement(element.local, element.uri);
                    break;
                }
            });
            break;
        case 8:
            Try([&] {
                CUnicodeString text;
                switch (sub % 5) {
                case 0:
                    reader.ReadElementText(text);
                    break;
                case 1:
                    reader.ReadElementText();
                    break;
                case 2:
                    reader.ReadElementTextIfAvailable();
                    break;
                case 3:
                    reader.ReadCDATA(text);
                    break;
                default:
                    reader.ReadCDATA();
                    break;
                }
            });
            break;
        case 9:
        case 10:
            Try([&] {
                bool const byUri = (op & 15) == 10;
                unsigned short const* l = byUri ? attribute.local : attribute.qualified;
                unsigned short const* u = attribute.uri;
                switch (sub % 8) {
                case 0:
                    byUri ? reader.HasAttribute(l, u) : reader.HasAttribute(l);
                    break;
                case 1:
                    byUri ? reader.ReadAttribute(l, u) : reader.ReadAttribute(l);
                    break;
                case 2:
                    byUri ? reader.ReadAttrBool(l, u) : reader.ReadAttrBool(l);
                    break;
                case 3:
                    byUri ? reader.ReadAttrShort(l, u) : reader.ReadAttrShort(l);
                    break;
                case 4:
                    byUri ? reader.ReadAttrLong(l, u) : reader.ReadAttrLong(l);
                    break;
                case 5:
                    byUri ? reader.ReadAttrUnsignedLong(l, u) : reader.ReadAttrUnsignedLong(l);
                    break;
                case 6:
                    byUri ? reader.ReadAttrFloat(l, u) : reader.ReadAttrFloat(l);
                    break;
                default:
                    byUri ? reader.ReadAttrDouble(l, u) : reader.ReadAttrDouble(l);
                    break;
                }
            });
            break;
        case 11:
        case 12: {
            bool const byUri = (op & 15) == 12;
            unsigned short const* l = byUri ? element.local : element.qualified;
            unsigned short const* u = element.uri;
            char* data = nullptr;
            unsigned long size = 0;
            Try([&] {
                switch (sub % 9) {
                case 0:
                    byUri ? reader.ReadElementBool(l, u) : reader.ReadElementBool(l);
                    break;
                case 1:
                    byUri ? reader.ReadElementShort(l, u) : reader.ReadElementShort(l);
                    break;
                case 2:
                    byUri ? reader.ReadElementLong(l, u) : reader.ReadElementLong(l);
                    break;
                case 3:
                    byUri ? reader.ReadElementUnsignedLong(l, u)
                          : reader.ReadElementUnsignedLong(l);
                    break;
                case 4:
                    byUri ? reader.ReadElementFloat(l, u) : reader.ReadElementFloat(l);
                    break;
                case 5:
                    byUri ? reader.ReadElementDouble(l, u) : reader.ReadElementDouble(l);
                    break;
                case 6:
                    byUri ? reader.ReadElementString(l, u) : reader.ReadElementString(l);
                    break;
                case 7:
                    byUri ? reader.ReadElementBinHex(l, u, data, size)
                          : reader.ReadElementBinHex(l, data, size);
                    break;
                default:
                    byUri ? reader.ReadElementBase64(l, u, data, size)
                          : reader.ReadElementBase64(l, data, size);
                    break;
                }
            });
            Free(data);
            break;
        }
        default:
            extra(op);
            break;
        }
    }
    Try([&] { reader.Close(); });
    FUZZ_CHECK(!Try([&] { reader.ReadToken(); }));
}

} // namespace lumofuzz

#endif
