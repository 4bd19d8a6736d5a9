// Tests of the DOM writer: a tree it builds, serialized by Xerces-C's own serializer,
// is the canonical twin of the same content written by the text writer; the
// placeholder document, the base's number formats and every refused write.
#include <lumo/io/DOM_Document.h>
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/XMLDOMReader.h>
#include <lumo/io/XMLDOMWriter.h>
#include <lumo/io/XMLTextWriter.h>

#include "support/Files.h"
#include "support/XML.h"

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace lumo::io;
using lumotest::Utf8;
using lumotest::W;

::testing::Environment* const kEnv =
    ::testing::AddGlobalTestEnvironment(new lumotest::LibraryEnvironment);

// One writing routine for both writers: what the two must agree on.
void WriteContent(CXMLWriter& w) {
    w.WriteStartDocument();
    w.WriteComment(W(" first"));
    w.WriteProcessingInstruction(W("setup"), W("mode=\"fast\""));
    w.WriteStartElement(W("root"));
    w.WriteAttribute(W("id"), W("r&1<\"'>"));
    w.WriteAttrNamespaceDeclaration(W("n"), W("urn:n"));
    w.WriteStartElement(W("n"), W("item"), W("urn:n"));
    w.WriteAttribute(W("n"), W("k"), W("urn:n"), W("v"));
    w.WriteString(W("a < b & c > d"));
    w.WriteEndElement();
    w.WriteElementString(W("name"), W("x>y"));
    w.WriteElementLong(W("count"), -42);
    w.WriteElementBool(W("flag"), true);
    w.WriteStartElement(W("body"), W("urn:d"));
    w.WriteCDATA(W("raw <stuff> & ]"));
    w.WriteComment(W("inner"));
    w.WriteProcessingInstruction(W("in"), W("side"));
    w.WriteEndElement();
    w.WriteStartElement(W("empty"));
    w.WriteFullEndElement();
    w.WriteEndElement();
    w.WriteEndDocument();
}

std::string Serialize(xercesc::DOMDocument* document) {
    xercesc::DOMImplementation* impl =
        xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
    std::unique_ptr<xercesc::DOMLSSerializer, void (*)(xercesc::DOMLSSerializer*)> serializer(
        impl->createLSSerializer(), [](xercesc::DOMLSSerializer* s) { s->release(); });
    std::unique_ptr<xercesc::DOMLSOutput, void (*)(xercesc::DOMLSOutput*)> output(
        impl->createLSOutput(), [](xercesc::DOMLSOutput* o) { o->release(); });
    xercesc::MemBufFormatTarget target;
    output->setByteStream(&target);
    output->setEncoding(u"UTF-8");
    EXPECT_TRUE(serializer->write(document, output.get()));
    return std::string(reinterpret_cast<char const*>(target.getRawBuffer()), target.getLen());
}

// xmllint's canonical form of a document (blank text between tags dropped, since the
// text writer puts each tag on its own line and the tree has no such text).
bool Canonical(std::string const& xml, std::string* out, std::string const& options) {
    lumotest::TempDir dir;
    std::string const path = dir.File("doc.xml");
    lumotest::WriteAll(path, xml);
    return lumotest::RunCommand("xmllint " + options + " '" + path + "' 2>&1", out);
}

TEST(XMLDOMWriterTest, SerializedTreeIsCanonicalTwinOfText) {
    if (!lumotest::HaveCommand("xmllint"))
        GTEST_SKIP() << "xmllint missing";
    CXMLDOMWriter dom;
    WriteContent(dom);
    std::string const serialized = Serialize(dom.GetDocument().Get());
    std::string lint;
    EXPECT_TRUE(Canonical(serialized, &lint, "--noout")) << serialized << lint;

    CMemoryOutputStream bytes;
    {
        CXMLTextWriter text(&bytes, "UTF-8", 0);
        WriteContent(text);
        text.Close();
    }
    std::string const written(bytes.GetBuffer(), bytes.GetBufferSize());
    std::string domCanonical, textCanonical;
    ASSERT_TRUE(Canonical(serialized, &domCanonical, "--noblanks --c14n")) << domCanonical;
    ASSERT_TRUE(Canonical(written, &textCanonical, "--noblanks --c14n")) << textCanonical;
    // The text writer's own layout: a blank after "<!--", and line breaks after its
    // tags, which stay as text where they touch content (the content has no others).
    for (std::size_t at = 0; (at = textCanonical.find("<!-- ", at)) != std::string::npos;)
        textCanonical.erase(at += 4, 1);
    for (std::string* form : {&domCanonical, &textCanonical})
        form->erase(std::remove(form->begin(), form->end(), '\n'), form->end());
    EXPECT_EQ(domCanonical, textCanonical) << serialized << "\n---\n" << written;
    EXPECT_NE(domCanonical.find("<root"), std::string::npos);
}

std::string Ascii(XMLCh const* s) {
    std::string out;
    for (; s != nullptr && *s != 0; ++s)
        out += static_cast<char>(*s);
    return out;
}

// The document's top-level nodes as "type:name".
std::string TopLevel(DOM_Document const& document) {
    std::string out;
    for (xercesc::DOMNode* n = document->getFirstChild(); n != nullptr; n = n->getNextSibling())
        out += std::to_string(n->getNodeType()) + ":" + Ascii(n->getNodeName()) + " ";
    return out;
}

TEST(XMLDOMWriterTest, PlaceholderReplacedAndNumbersInBaseFormat) {
    DOM_Document kept;
    {
        CXMLDOMWriter w;
        EXPECT_TRUE(w.GetDocument().IsNull());
        w.WriteStartDocument();
        ASSERT_FALSE(w.GetDocument().IsNull());
        EXPECT_EQ(Ascii(w.GetDocument()->getDocumentElement()->getTagName()), "DocumentRoot");
        w.WriteComment(W("c"));
        w.WriteProcessingInstruction(W("t"), W("d"));
        w.WriteComment(W("c2"));
        w.WriteStartElement(W("a"));
        w.WriteAttrFloat(W("at"), 2.25f);
        w.WriteElementFloat(W("f"), 1.5f);
        w.WriteDouble(0.5);
        kept = w.GetDocument();
        // The writer goes before WriteEndDocument; the copy keeps the tree.
    }
    EXPECT_EQ(TopLevel(kept), "8:#comment 7:t 8:#comment 1:a ");
    EXPECT_EQ(Ascii(kept->getFirstChild()->getNodeValue()), "c");
    EXPECT_EQ(Ascii(kept->getDocumentElement()->getAttribute(u"at")), "2.250000");
    EXPECT_EQ(Ascii(kept->getDocumentElement()->getTextContent()), "1.5000000.500000");

    // The tree reads back through the DOM reader, nodes outside the root unseen.
    CXMLDOMReader reader(kept);
    reader.ReadStartElement();
    EXPECT_EQ(Utf8(reader.GetCurrentTokenValue()), "a");
    EXPECT_EQ(reader.ReadAttrFloat(W("at")), 2.25f);
    EXPECT_EQ(reader.ReadElementFloat(W("f")), 1.5f);
}

TEST(XMLDOMWriterTest, ContentNodesReadBackThroughTheDOMReader) {
    CXMLDOMWriter w;
    w.WriteStartDocument();
    w.WriteStartElement(W("p"), W("r"), W("urn:p"));
    w.WriteAttrNamespaceDeclaration(W("p"), W("urn:p"));
    w.WriteAttribute(W("p"), W("a"), W("urn:p"), W("1"));
    w.WriteWhitespace(W("  "));
    w.WriteEntityRef(W("undeclared"));
    w.WriteCDATA(W("c"));
    w.WriteString(nullptr); // nothing
    w.WriteString(W("t"));
    w.WriteElementString(W("e"), W("urn:e"), nullptr);
    w.WriteEndElement();
    w.WriteEndDocument();
    w.Close();
    CXMLDOMReader reader(w.GetDocument());
    std::vector<std::string> seen;
    while (reader.ReadToken())
        seen.push_back(std::to_string(reader.GetCurrentTokenType()) + ":" +
                       Utf8(reader.GetCurrentTokenValue()));
    // An entity reference the document does not declare reads as empty text.
    EXPECT_EQ(seen, (std::vector<std::string>{"5:p:r", "3:  ", "3:", "4:c", "3:t", "5:e", "6:e",
                                              "6:p:r"}));
    CXMLDOMReader again(w.GetDocument());
    again.ReadStartElement(W("r"), W("urn:p"));
    EXPECT_EQ(Utf8(again.ReadAttribute(W("a"), W("urn:p"))), "1");
    EXPECT_EQ(Utf8(again.ReadAttribute(W("p"), W("http://www.w3.org/2000/xmlns/"))), "urn:p");
    again.ReadStartElement(W("e"), W("urn:e"));
    EXPECT_FALSE(again.HasAttribute(W("xmlns:p")));
}

void ExpectFailure(std::function<void()> const& call, char const* message) {
    try {
        call();
        ADD_FAILURE() << "no exception, expected " << message;
    } catch (CXMLException const& e) {
        EXPECT_STREQ(e.GetErrorDescription(), message);
        EXPECT_STREQ(e.GetSourceFile(), "lumo/io/XMLDOMWriter");
    }
}

using Steps = std::function<void(CXMLDOMWriter&)>;
#define STEPS(...) [](CXMLDOMWriter& w) { __VA_ARGS__; }

TEST(XMLDOMWriterTest, RefusedWrites) {
    Steps const none = [](CXMLDOMWriter&) {};
    Steps const begun = STEPS(w.WriteStartDocument());
    Steps const inRoot = STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")));
    Steps const inContent =
        STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")), w.WriteString(W("x")));
    Steps const rootClosed =
        STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")), w.WriteEndElement());
    Steps const ended = STEPS(w.WriteStartDocument(), w.WriteStartElement(W("r")),
                              w.WriteEndElement(), w.WriteEndDocument());
    struct Case {
        Steps before;
        Steps call;
        char const* message;
    } const cases[] = {
        {none, STEPS(w.WriteStartElement(W("a"))), "Document hasn't been started yet."},
        {none, STEPS(w.WriteEndDocument()), "Document hasn't been started yet."},
        {ended, STEPS(w.WriteComment(W("c"))), "Document has already been closed."},
        {ended, STEPS(w.WriteStartDocument()), "Document has already been started once."},
        {begun, STEPS(w.WriteString(W("t"))), "Document element hasn't been written yet."},
        {begun, STEPS(w.WriteElementString(W("e"), W("t"))),
         "Document element hasn't been written yet."},
        {begun, STEPS(w.WriteEndElement()), "Document element hasn't been written yet."},
        {begun, STEPS(w.WriteCDATA(W("t"))), "CDATA section invalid at the top of XML document."},
        {begun, STEPS(w.WriteEntityRef(W("e"))),
         "Entity reference invalid at the top of XML document."},
        {begun, STEPS(w.WriteWhitespace(W(" "))), "Whitespaces don't allowed top of XML document."},
        {inRoot, STEPS(w.WriteEntityRef(W(""))), "Invalid entity name."},
        {begun, STEPS(w.WriteProcessingInstruction(W(""), W("d"))),
         "Invalid processing instruction target."},
        {begun, STEPS(w.WriteProcessingInstruction(W("t"), nullptr)),
         "Invalid processing instruction data."},
        {begun, STEPS(w.WriteStartElement(nullptr)), "Invalid local name."},
        {begun, STEPS(w.WriteStartElement(W("a:b"), W(""))),
         "Local name must be unqualified name."},
        {begun, STEPS(w.WriteStartElement(W(""), W("a"), W("urn:a"))), "Invalid prefix."},
        {begun, STEPS(w.WriteStartElement(W("1st"))), "Invalid character error."},
        {inRoot, STEPS(w.WriteStartElement(W("a b"))), "Invalid character error."},
        {inRoot, STEPS(w.WriteAttribute(W("<"), W("v"))), "Invalid character error."},
        {inRoot, STEPS(w.WriteElementString(W("x\x01"), W("v"))), "Invalid character error."},
        {inRoot, STEPS(w.WriteStartElement(W("xml"), W("a"), W("urn:not-xml"))),
         "Namespace error."},
        {inContent, STEPS(w.WriteAttribute(W("a"), W("v"))),
         "Attributes can be written only in start element state."},
        {rootClosed, STEPS(w.WriteEndElement()), "Element stack is empty."},
        {rootClosed, STEPS(w.WriteStartElement(W("second"))), "DOM exception."},
    };
    for (Case const& c : cases) {
        CXMLDOMWriter w;
        c.before(w);
        ExpectFailure([&] { c.call(w); }, c.message);
    }
}

TEST(XMLDOMWriterTest, WriterGoneBeforeEndLeaksNothing) {
    // Run under AddressSanitizer: every node belongs to a document released here.
    for (int round = 0; round < 3; ++round) {
        CXMLDOMWriter w;
        w.WriteStartDocument();
        w.WriteComment(W("kept until the first element"));
        if (round > 0) {
            w.WriteStartElement(W("r"));
            w.WriteStartElement(W("n"), W("x"), W("urn:n"));
            w.WriteCDATA(W("c"));
            w.WriteEntityRef(W("amp"));
        }
        if (round > 1)
            w.WriteEndDocument();
    }
}

} // namespace
