// The DOM reader and writer against the direct Xerces-C DOM code a user would write
// otherwise, over a document whose text form is 20 MB (a catalog of items with
// attributes, text and a child element). Ratio_XMLDomWalk: CXMLDOMReader reading every
// token's type and value against a recursive walk reading each node's name and value;
// "ratio" is the reader's speed over the walk's (target at least 0.5).
// Ratio_XMLDomBuild: CXMLDOMWriter building the tree against DOMDocument calls;
// "ratio" is the writer's time over the direct calls' (target at most 1.3). Both
// alternate for seven rounds and the best thread CPU time of each counts.
#include <lumo/Library.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/DOM_Document.h>
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/XMLDOMReader.h>
#include <lumo/io/XMLDOMWriter.h>
#include <lumo/io/XMLTextWriter.h>

#include <benchmark/benchmark.h>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMText.hpp>
#include <xercesc/util/XMLString.hpp>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

using lumo::base::CUnicodeString;
using namespace lumo::io;

namespace {

constexpr unsigned long kTargetBytes = 20ul << 20;
constexpr int kDistinct = 997;

struct Library {
    Library() { lumo::Initialize(); }
    ~Library() { lumo::Terminate(); }
};

// Each value in the library's UTF-16 and in Xerces-C's XMLCh.
struct Sample {
    CUnicodeString name16;
    CUnicodeString text16;
    std::u16string name;
    std::u16string text;
    double price;
};

std::u16string ToU16(CUnicodeString const& s) {
    unsigned short const* p = s;
    return std::u16string(p, p + s.GetLength());
}

std::vector<Sample> const& Samples() {
    static std::vector<Sample> const samples = [] {
        std::vector<Sample> v;
        for (int i = 0; i < kDistinct; ++i) {
            Sample s;
            std::string const name = "Item <" + std::to_string(i) + "> \"special\" & 'quoted'";
            std::string const text = "Description " + std::to_string(i * 7919) +
                                     ": price < list & stock > 0, see \"notes\" for details.";
            s.name16 = CUnicodeString::FromUTF8(name.c_str());
            s.text16 = CUnicodeString::FromUTF8(text.c_str());
            s.name = ToU16(s.name16);
            s.text = ToU16(s.text16);
            s.price = i * 1.25 + 0.5;
            v.push_back(std::move(s));
        }
        return v;
    }();
    return samples;
}

CUnicodeString const kCatalog("catalog"), kItem("item"), kId("id"), kName("name"), kPrice("price"),
    kCount("count");

// The same content through any writer: items until `items` are written, or, with
// items 0, until the text output reaches the target (returns the count written).
long WriteItems(CXMLWriter& writer, long items, CMemoryOutputStream const* text) {
    std::vector<Sample> const& samples = Samples();
    writer.WriteStartDocument();
    writer.WriteStartElement(kCatalog);
    long i = 0;
    for (; items > 0 ? i < items : text->GetBufferSize() < kTargetBytes; ++i) {
        Sample const& s = samples[static_cast<std::size_t>(i % kDistinct)];
        writer.WriteStartElement(kItem);
        writer.WriteAttrLong(kId, i);
        writer.WriteAttribute(kName, s.name16);
        writer.WriteAttrDouble(kPrice, s.price);
        writer.WriteString(s.text16);
        writer.WriteElementLong(kCount, i * 3);
        writer.WriteEndElement();
    }
    writer.WriteEndElement();
    writer.WriteEndDocument();
    return i;
}

// The number of items whose text form is 20 MB.
long ItemCount() {
    static long const count = [] {
        CMemoryOutputStream out(kTargetBytes + (1ul << 20), 1ul << 20);
        CXMLTextWriter writer(&out, "UTF-8", 0);
        return WriteItems(writer, 0, &out);
    }();
    return count;
}

DOM_Document BuildLumo(long items) {
    CXMLDOMWriter writer;
    WriteItems(writer, items, nullptr);
    return writer.GetDocument();
}

// What a user writes without the library: numbers formatted as the writer does.
std::u16string Number(char const* format, double value) {
    char buffer[64];
    int const n = std::snprintf(buffer, sizeof buffer, format, value);
    return std::u16string(buffer, buffer + n);
}

std::u16string Number(long value) {
    char buffer[32];
    int const n = std::snprintf(buffer, sizeof buffer, "%ld", value);
    return std::u16string(buffer, buffer + n);
}

DOM_Document BuildDirect(long items) {
    std::vector<Sample> const& samples = Samples();
    xercesc::DOMImplementation* impl =
        xercesc::DOMImplementationRegistry::getDOMImplementation(u"Core");
    DOM_Document document(impl->createDocument(nullptr, u"catalog", nullptr));
    xercesc::DOMElement* root = document->getDocumentElement();
    for (long i = 0; i < items; ++i) {
        Sample const& s = samples[static_cast<std::size_t>(i % kDistinct)];
        xercesc::DOMElement* item = document->createElement(u"item");
        root->appendChild(item);
        item->setAttribute(u"id", Number(i).c_str());
        item->setAttribute(u"name", s.name.c_str());
        item->setAttribute(u"price", Number("%lf", s.price).c_str());
        item->appendChild(document->createTextNode(s.text.c_str()));
        xercesc::DOMElement* count = document->createElement(u"count");
        count->appendChild(document->createTextNode(Number(i * 3).c_str()));
        item->appendChild(count);
    }
    return document;
}

long WalkLumo(DOM_Document const& document) {
    CXMLDOMReader reader(document);
    long sum = 0;
    while (reader.ReadToken()) {
        IXMLToken const& token = *reader.GetCurrentToken();
        sum += token.GetType() + static_cast<long>(token.GetValue().GetLength());
    }
    return sum;
}

long WalkNode(xercesc::DOMNode const* node) {
    long sum = static_cast<long>(node->getNodeType()) +
               static_cast<long>(xercesc::XMLString::stringLen(node->getNodeName())) +
               static_cast<long>(xercesc::XMLString::stringLen(node->getNodeValue()));
    for (xercesc::DOMNode const* child = node->getFirstChild(); child != nullptr;
         child = child->getNextSibling())
        sum += WalkNode(child);
    return sum;
}

long WalkDirect(DOM_Document const& document) {
    return WalkNode(document->getDocumentElement());
}

// The calling thread's CPU time, so that time spent preempted on a busy machine
// counts against neither side.
double ThreadSeconds() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

template <class F> double Seconds(F f) {
    double const start = ThreadSeconds();
    f();
    return ThreadSeconds() - start;
}

} // namespace

static void Ratio_XMLDomWalk_Lumo_vs_Direct(benchmark::State& state) {
    Library library;
    DOM_Document const document = BuildDirect(ItemCount());
    double bestLumo = 1e30, bestDirect = 1e30;
    long lumoSum = 0, directSum = 0;
    for (auto _ : state) {
        for (int round = 0; round < 7; ++round) {
            bestLumo = std::min(bestLumo, Seconds([&] { lumoSum = WalkLumo(document); }));
            bestDirect = std::min(bestDirect, Seconds([&] { directSum = WalkDirect(document); }));
        }
    }
    benchmark::DoNotOptimize(lumoSum);
    benchmark::DoNotOptimize(directSum);
    state.counters["items"] = static_cast<double>(ItemCount());
    state.counters["lumo_ms"] = bestLumo * 1e3;
    state.counters["direct_ms"] = bestDirect * 1e3;
    state.counters["ratio"] = bestDirect / bestLumo; // speed of lumo over speed of the walk
}
BENCHMARK(Ratio_XMLDomWalk_Lumo_vs_Direct)->Iterations(1)->Unit(benchmark::kMillisecond);

static void Ratio_XMLDomBuild_Lumo_vs_Direct(benchmark::State& state) {
    Library library;
    long const items = ItemCount();
    double bestLumo = 1e30, bestDirect = 1e30;
    for (auto _ : state) {
        for (int round = 0; round < 7; ++round) {
            bestLumo = std::min(bestLumo, Seconds([&] { BuildLumo(items); }));
            bestDirect = std::min(bestDirect, Seconds([&] { BuildDirect(items); }));
        }
    }
    state.counters["items"] = static_cast<double>(items);
    state.counters["lumo_ms"] = bestLumo * 1e3;
    state.counters["direct_ms"] = bestDirect * 1e3;
    state.counters["ratio"] = bestLumo / bestDirect; // time of lumo over time of direct calls
}
BENCHMARK(Ratio_XMLDomBuild_Lumo_vs_Direct)->Iterations(1)->Unit(benchmark::kMillisecond);
