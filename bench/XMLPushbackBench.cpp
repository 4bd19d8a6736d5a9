// Pulling every token of a generated 20 MB document through CXMLPushbackReader over a
// CXMLTextReader, against the same text reader alone, in one run; the pushback reader
// should add at most 10% to the time.
#include <lumo/Library.h>
#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/XMLPushbackReader.h>
#include <lumo/io/XMLTextReader.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <string>

using lumo::base::CRef;
using lumo::io::CInputStream;
using lumo::io::CMemoryInputStream;
using lumo::io::CXMLPushbackReader;
using lumo::io::CXMLReader;
using lumo::io::CXMLTextReader;

namespace {

// Records of elements with attributes, escaped text, numbers and CDATA.
std::string const& PushbackDocument() {
    static std::string const doc = [] {
        std::string s = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root>\n";
        s.reserve(21u << 20);
        for (unsigned long i = 0; s.size() < (20u << 20); ++i) {
            std::string const n = std::to_string(i);
            s += "  <item id=\"" + n + "\" kind=\"sample\"><name>item " + n +
                 " &amp; more</name><count>" + n + "</count><data><![CDATA[payload " + n +
                 "]]></data></item>\n";
        }
        return s + "</root>\n";
    }();
    return doc;
}

struct Library {
    Library() { lumo::Initialize(); }
    ~Library() { lumo::Terminate(); }
};

CXMLTextReader* TextReaderOver(std::string const& doc) {
    return new CXMLTextReader(CRef<CInputStream>(
        new CMemoryInputStream(doc.data(), static_cast<unsigned long>(doc.size()), false)));
}

// What a consumer does with each token: its type and value.
long Pull(CXMLReader& reader) {
    long tokens = 0;
    while (reader.ReadToken()) {
        benchmark::DoNotOptimize(reader.GetCurrentTokenType());
        benchmark::DoNotOptimize(reader.GetCurrentTokenValue().GetLength());
        ++tokens;
    }
    return tokens;
}

long PullText(std::string const& doc) {
    CRef<CXMLReader> const reader(TextReaderOver(doc));
    return Pull(*reader);
}

long PullPushback(std::string const& doc) {
    CXMLPushbackReader reader(CRef<CXMLReader>(TextReaderOver(doc)), 16);
    return Pull(reader);
}

template <long (*PullDoc)(std::string const&)> void XMLPushback_Pull(benchmark::State& state) {
    Library library;
    std::string const& doc = PushbackDocument();
    for (auto _ : state)
        benchmark::DoNotOptimize(PullDoc(doc));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * doc.size()));
}
BENCHMARK_TEMPLATE(XMLPushback_Pull, PullText)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(XMLPushback_Pull, PullPushback)->Unit(benchmark::kMillisecond);

// Both in one run, alternating, so the ratio holds on a busy machine.
void XMLPushback_Ratio(benchmark::State& state) {
    Library library;
    std::string const& doc = PushbackDocument();
    double text = 0, pushback = 0;
    auto timed = [&](long (*pull)(std::string const&), double& total) {
        auto const start = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(pull(doc));
        total += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    for (auto _ : state) {
        timed(PullText, text);
        timed(PullPushback, pushback);
    }
    double const mb = static_cast<double>(doc.size()) * state.iterations() / (1 << 20);
    state.counters["text_MBps"] = mb / text;
    state.counters["pushback_MBps"] = mb / pushback;
    // Time through the pushback reader over the text reader's alone (target: <= 1.10).
    state.counters["time_ratio"] = pushback / text;
}
BENCHMARK(XMLPushback_Ratio)->Iterations(6)->Unit(benchmark::kMillisecond);

} // namespace
