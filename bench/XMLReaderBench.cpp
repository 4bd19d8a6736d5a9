// Pulling every token of a generated 20 MB document through CXMLTextReader over a
// memory stream, against the same bytes through a raw Xerces-C WFXMLScanner loop with
// empty handlers and through libxml2's xmlTextReader; plus the peak resident memory
// added while pulling a generated 200 MB document from a file.
#include <lumo/Library.h>
#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/XMLTextReader.h>
#include <vela/Location.h>

#include <benchmark/benchmark.h>
#include <libxml/xmlreader.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/XMLDocumentHandler.hpp>
#include <xercesc/framework/XMLPScanToken.hpp>
#include <xercesc/internal/WFXMLScanner.hpp>
#include <xercesc/validators/DTD/DTDValidator.hpp>
#include <xercesc/validators/common/GrammarResolver.hpp>

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

using lumo::base::CRef;
using lumo::io::CInputStream;
using lumo::io::CMemoryInputStream;
using lumo::io::CXMLTextReader;

namespace {

// Appends one record: an element with attributes and text, and one with CDATA.
void AppendRecord(std::string& out, unsigned long i) {
    std::string const n = std::to_string(i);
    out += "  <item id=\"" + n + "\" name=\"item " + n + "\" kind=\"sample\">Text of item " + n +
           " &amp; a little more</item>\n"
           "  <data><![CDATA[payload " +
           n + " <not markup>]]></data>\n";
}

std::string const& Document() {
    static std::string const doc = [] {
        std::string s = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root>\n";
        s.reserve(21u << 20);
        for (unsigned long i = 0; s.size() < (20u << 20); ++i)
            AppendRecord(s, i);
        return s + "</root>\n";
    }();
    return doc;
}

struct Library {
    Library() { lumo::Initialize(); }
    ~Library() { lumo::Terminate(); }
};

long PullLumo(std::string const& doc) {
    CXMLTextReader reader(CRef<CInputStream>(
        new CMemoryInputStream(doc.data(), static_cast<unsigned long>(doc.size()), false)));
    long tokens = 0;
    while (reader.ReadToken()) {
        benchmark::DoNotOptimize(reader.GetCurrentTokenType());
        benchmark::DoNotOptimize(reader.GetCurrentTokenValue().GetLength());
        ++tokens;
    }
    return tokens;
}

// Handlers that do nothing: the cost of the scan alone.
class EmptyHandler : public xercesc::XMLDocumentHandler {
public:
    void docCharacters(XMLCh const*, XMLSize_t, bool) override {}
    void docComment(XMLCh const*) override {}
    void docPI(XMLCh const*, XMLCh const*) override {}
    void endDocument() override {}
    void endElement(xercesc::XMLElementDecl const&, unsigned int, bool, XMLCh const*) override {}
    void endEntityReference(xercesc::XMLEntityDecl const&) override {}
    void ignorableWhitespace(XMLCh const*, XMLSize_t, bool) override {}
    void resetDocument() override {}
    void startDocument() override {}
    void startElement(xercesc::XMLElementDecl const&, unsigned int, XMLCh const*,
                      xercesc::RefVectorOf<xercesc::XMLAttr> const&, XMLSize_t, bool,
                      bool) override {}
    void startEntityReference(xercesc::XMLEntityDecl const&) override {}
    void XMLDecl(XMLCh const*, XMLCh const*, XMLCh const*, XMLCh const*) override {}
};

long PullScanner(std::string const& doc) {
    EmptyHandler handler;
    xercesc::GrammarResolver resolver(nullptr);
    xercesc::DTDValidator validator; // the scanner does not delete it
    xercesc::WFXMLScanner scanner(&handler, nullptr, nullptr, nullptr, &validator, &resolver);
    scanner.setURIStringPool(resolver.getStringPool());
    scanner.setDoNamespaces(true);
    scanner.setDisableDefaultEntityResolution(true);
    xercesc::MemBufInputSource source(reinterpret_cast<XMLByte const*>(doc.data()), doc.size(),
                                      "bench");
    xercesc::XMLPScanToken token;
    long steps = 0;
    if (scanner.scanFirst(source, token))
        while (scanner.scanNext(token))
            ++steps;
    return steps;
}

long PullLibxml2(std::string const& doc) {
    xmlTextReaderPtr reader = xmlReaderForMemory(doc.data(), static_cast<int>(doc.size()), nullptr,
                                                 nullptr, XML_PARSE_NONET);
    long nodes = 0;
    while (xmlTextReaderRead(reader) == 1) {
        benchmark::DoNotOptimize(xmlTextReaderNodeType(reader));
        benchmark::DoNotOptimize(xmlTextReaderConstName(reader));
        benchmark::DoNotOptimize(xmlTextReaderConstValue(reader));
        ++nodes;
    }
    xmlFreeTextReader(reader);
    return nodes;
}

template <long (*Pull)(std::string const&)> void Run(benchmark::State& state) {
    Library library;
    std::string const& doc = Document();
    for (auto _ : state)
        benchmark::DoNotOptimize(Pull(doc));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * doc.size()));
}

// All three in one run, alternating, so the ratios hold on a busy machine.
void XMLPull_Ratios(benchmark::State& state) {
    Library library;
    std::string const& doc = Document();
    double lumo = 0, scanner = 0, libxml2 = 0;
    auto timed = [&](long (*pull)(std::string const&), double& total) {
        auto const start = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(pull(doc));
        total += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    for (auto _ : state) {
        timed(PullLumo, lumo);
        timed(PullScanner, scanner);
        timed(PullLibxml2, libxml2);
    }
    double const mb = static_cast<double>(doc.size()) * state.iterations() / (1 << 20);
    state.counters["lumo_MBps"] = mb / lumo;
    state.counters["scanner_MBps"] = mb / scanner;
    state.counters["libxml2_MBps"] = mb / libxml2;
    // Throughput of the reader over the baseline's (target: >= 0.75 and >= 1.0).
    state.counters["ratio_vs_scanner"] = scanner / lumo;
    state.counters["ratio_vs_libxml2"] = libxml2 / lumo;
}

long ProcStatusKiB(char const* field) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.compare(0, std::strlen(field), field) == 0)
            return std::atol(line.c_str() + std::strlen(field));
    return -1;
}

// Peak resident memory added while pulling a 200 MB file (target: < 16 MB). The
// peak is reset first (clear_refs 5), so earlier benchmarks do not hide it.
void XMLPull_200MBFile_PeakRSS(benchmark::State& state) {
    Library library;
    std::string const path = "/tmp/lumo-xmlbench-" + std::to_string(::getpid()) + ".xml";
    {
        std::ofstream out(path, std::ios::binary);
        out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root>\n";
        std::string chunk;
        unsigned long long written = 0;
        for (unsigned long i = 0; written < (200ull << 20); ++i) {
            AppendRecord(chunk, i);
            if (chunk.size() > (1u << 16)) {
                out << chunk;
                written += chunk.size();
                chunk.clear();
            }
        }
        out << chunk << "</root>\n";
    }
    for (auto _ : state) {
        std::ofstream("/proc/self/clear_refs") << "5";
        long const before = ProcStatusKiB("VmRSS:");
        long tokens = 0;
        {
            CXMLTextReader reader{IO::Location(path.c_str())};
            while (reader.ReadToken()) {
                benchmark::DoNotOptimize(reader.GetCurrentTokenValue().GetLength());
                ++tokens;
            }
        }
        long const peak = ProcStatusKiB("VmHWM:");
        state.counters["tokens"] = static_cast<double>(tokens);
        state.counters["peak_rss_added_MB"] = (peak - before) / 1024.0;
    }
    std::remove(path.c_str());
}

} // namespace

BENCHMARK(Run<PullLumo>)->Name("XMLPull20MB_LumoTextReader")->Unit(benchmark::kMillisecond);
BENCHMARK(Run<PullScanner>)->Name("XMLPull20MB_RawWFXMLScanner")->Unit(benchmark::kMillisecond);
BENCHMARK(Run<PullLibxml2>)->Name("XMLPull20MB_Libxml2TextReader")->Unit(benchmark::kMillisecond);
BENCHMARK(XMLPull_Ratios)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(XMLPull_200MBFile_PeakRSS)->Unit(benchmark::kMillisecond)->Iterations(1);
