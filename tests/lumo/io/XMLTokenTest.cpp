// Tokens and attribute lists built directly: types, names, lookups and their messages.
#include <lumo/io/IOException.h>
#include <lumo/io/XMLToken.h>

#include "support/XML.h"

using namespace lumo::io;
using lumo::base::CRef;
using lumo::base::CUnicodeString;
using lumotest::Utf8;
using lumotest::W;

namespace {

std::string Message(std::function<void()> const& f) {
    try {
        f();
    } catch (CXMLException const& e) {
        return e.GetErrorDescription();
    }
    return "(none)";
}

TEST(XMLToken, TypesNamesAndAttributes) {
    CRef<IXMLToken> const text = CXMLToken::CreateCharacterToken(CUnicodeString("t"), false);
    CRef<IXMLToken> const cdata = CXMLToken::CreateCharacterToken(CUnicodeString("c"), true);
    EXPECT_NE(nullptr, dynamic_cast<CXMLTextToken*>(text.Get()));
    EXPECT_NE(nullptr, dynamic_cast<IXMLCDATAToken*>(cdata.Get()));
    EXPECT_EQ(XMLTokenCDATA, cdata->GetType());
    EXPECT_EQ(1, CXMLCommentToken(CUnicodeString("x")).GetType());
    CXMLPIToken const pi(CUnicodeString("target"), CUnicodeString("data"));
    EXPECT_EQ(2, pi.GetType());
    EXPECT_EQ("data", Utf8(pi.GetData()));

    XMLAttributeList list;
    list.Add(CUnicodeString("p:a"), CUnicodeString("a"), CUnicodeString("urn:p"),
             CUnicodeString("1"));
    list.Add(CUnicodeString("a"), CUnicodeString("a"), CUnicodeString(), CUnicodeString("2"));
    CXMLStartElementToken const start(CUnicodeString("urn:e"), CUnicodeString("e"),
                                      CUnicodeString("q:e"), list);
    EXPECT_FALSE(start.IsNamespaceURIEmpty());
    EXPECT_EQ("q:e", Utf8(start.GetValue()));
    EXPECT_EQ("1", Utf8(start.GetAttribute(W("a"), W("urn:p"))));
    EXPECT_EQ("2", Utf8(start.GetAttribute(W("a"), W(""))));
    EXPECT_EQ("1", Utf8(start.GetAttribute(W("p:a"))));
    EXPECT_FALSE(start.HasAttribute(W("x")));
    EXPECT_FALSE(start.HasAttribute(W("a"), W("urn:other")));

    CXMLEndElementToken const plain(CUnicodeString("n"));
    EXPECT_TRUE(plain.IsNamespaceURIEmpty());
    EXPECT_EQ("n", Utf8(plain.GetLocalName()));

    EXPECT_EQ("No such attribute.", Message([&] { start.GetAttribute(W("x")); }));
    EXPECT_EQ("Invalid qualified name.", Message([&] { list.HasAttribute(nullptr); }));
    EXPECT_EQ("Invalid local name.", Message([&] { list.GetAttribute(nullptr, W("")); }));
    EXPECT_EQ("Invalid namespace URI.", Message([&] { list.HasAttribute(W("a"), nullptr); }));
    XMLAttributeList copy(list);
    copy = XMLAttributeList();
    EXPECT_EQ(2u, list.GetLength());
    EXPECT_EQ(0u, copy.GetLength());
    // Clearing drops the attributes, not the copies made before; the list takes new ones.
    XMLAttributeList kept(list);
    list.Clear();
    EXPECT_EQ(0u, list.GetLength());
    EXPECT_FALSE(list.HasAttribute(W("p:a")));
    list.Add(CUnicodeString("b"), CUnicodeString("b"), CUnicodeString(), CUnicodeString("3"));
    EXPECT_EQ("3", Utf8(list.GetAttribute(W("b"))));
    EXPECT_EQ(1u, list.GetLength());
    EXPECT_EQ("1", Utf8(kept.GetAttribute(W("p:a"))));
}

} // namespace
