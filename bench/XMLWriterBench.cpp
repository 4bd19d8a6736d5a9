// Writing a 20 MB XML document (elements with attributes, text that needs escaping,
// numbers) through CXMLTextWriter into a memory stream, against libxml2's
// xmlTextWriter into a memory buffer. Ratio_XMLWrite_Lumo_vs_LibXml2 times both in
// alternation and reports "ratio": lumo's throughput over libxml2's (above 1 is
// faster).
#include <lumo/base/UnicodeString.h>
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/XMLTextWriter.h>

#include <benchmark/benchmark.h>
#include <libxml/xmlwriter.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

using lumo::base::CUnicodeString;
using lumo::io::CMemoryOutputStream;
using lumo::io::CXMLTextWriter;

namespace {

constexpr unsigned long kTargetBytes = 20ul << 20;
constexpr int kDistinct = 997;

// The same values in both text forms each writer takes.
struct Sample {
    std::string name8;
    std::string text8;
    CUnicodeString name16;
    CUnicodeString text16;
    double price;
};

std::vector<Sample> const& Samples() {
    static std::vector<Sample> const samples = [] {
        std::vector<Sample> v;
        for (int i = 0; i < kDistinct; ++i) {
            Sample s;
            s.name8 = "Item <" + std::to_string(i) + "> \"special\" & 'quoted'";
            s.text8 = "Description " + std::to_string(i * 7919) +
                      ": price < list & stock > 0, see \"notes\" for details.";
            s.name16 = CUnicodeString::FromUTF8(s.name8.c_str());
            s.text16 = CUnicodeString::FromUTF8(s.text8.c_str());
            s.price = i * 1.25 + 0.5;
            v.push_back(std::move(s));
        }
        return v;
    }();
    return samples;
}

unsigned short const* Name(char const* ascii) {
    static std::vector<CUnicodeString> names;
    names.emplace_back(ascii);
    return names.back();
}

// Writes items until the output reaches the target; returns the bytes written.
unsigned long WriteLumo() {
    static unsigned short const* const doc = Name("catalog");
    static unsigned short const* const item = Name("item");
    static unsigned short const* const id = Name("id");
    static unsigned short const* const name = Name("name");
    static unsigned short const* const price = Name("price");
    static unsigned short const* const count = Name("count");
    std::vector<Sample> const& samples = Samples();
    CMemoryOutputStream out(kTargetBytes + (1ul << 20), 1ul << 20);
    CXMLTextWriter writer(&out, "UTF-8", 0);
    writer.WriteStartDocument();
    writer.WriteStartElement(doc);
    for (long i = 0; out.GetBufferSize() < kTargetBytes; ++i) {
        Sample const& s = samples[static_cast<std::size_t>(i % kDistinct)];
        writer.WriteStartElement(item);
        writer.WriteAttrLong(id, i);
        writer.WriteAttribute(name, s.name16);
        writer.WriteAttrDouble(price, s.price);
        writer.WriteString(s.text16);
        writer.WriteElementLong(count, i * 3);
        writer.WriteEndElement();
    }
    writer.WriteEndDocument();
    writer.Close();
    return out.GetBufferSize();
}

unsigned long WriteLibXml2() {
    std::vector<Sample> const& samples = Samples();
    xmlBufferPtr buffer = xmlBufferCreateSize(kTargetBytes + (1ul << 20));
    xmlTextWriterPtr writer = xmlNewTextWriterMemory(buffer, 0);
    xmlTextWriterStartDocument(writer, nullptr, "UTF-8", nullptr);
    xmlTextWriterStartElement(writer, BAD_CAST "catalog");
    for (long i = 0; xmlBufferLength(buffer) < static_cast<int>(kTargetBytes); ++i) {
        Sample const& s = samples[static_cast<std::size_t>(i % kDistinct)];
        xmlTextWriterStartElement(writer, BAD_CAST "item");
        xmlTextWriterWriteFormatAttribute(writer, BAD_CAST "id", "%ld", i);
        xmlTextWriterWriteAttribute(writer, BAD_CAST "name", BAD_CAST s.name8.c_str());
        xmlTextWriterWriteFormatAttribute(writer, BAD_CAST "price", "%g", s.price);
        xmlTextWriterWriteString(writer, BAD_CAST s.text8.c_str());
        xmlTextWriterWriteFormatElement(writer, BAD_CAST "count", "%ld", i * 3);
        xmlTextWriterEndElement(writer);
        // libxml2 hands its output to the buffer in blocks; flush now and then so
        // the loop sees the size grow.
        if ((i & 255) == 0)
            xmlTextWriterFlush(writer);
    }
    xmlTextWriterEndDocument(writer);
    xmlFreeTextWriter(writer);
    unsigned long const n = static_cast<unsigned long>(xmlBufferLength(buffer));
    xmlBufferFree(buffer);
    return n;
}

template <class F> double Seconds(F f, unsigned long* bytes) {
    auto const start = std::chrono::steady_clock::now();
    *bytes = f();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

static void XMLWrite_Lumo(benchmark::State& state) {
    Samples();
    unsigned long bytes = 0;
    for (auto _ : state)
        bytes += WriteLumo();
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}
BENCHMARK(XMLWrite_Lumo)->Unit(benchmark::kMillisecond);

static void XMLWrite_LibXml2(benchmark::State& state) {
    Samples();
    unsigned long bytes = 0;
    for (auto _ : state)
        bytes += WriteLibXml2();
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}
BENCHMARK(XMLWrite_LibXml2)->Unit(benchmark::kMillisecond);

// Alternating rounds, best of each, so that a noisy neighbour hits both alike.
static void Ratio_XMLWrite_Lumo_vs_LibXml2(benchmark::State& state) {
    Samples();
    double bestLumo = 1e30;
    double bestLibXml2 = 1e30;
    unsigned long lumoBytes = 0;
    unsigned long libXml2Bytes = 0;
    for (auto _ : state) {
        for (int round = 0; round < 5; ++round) {
            bestLumo = std::min(bestLumo, Seconds(WriteLumo, &lumoBytes));
            bestLibXml2 = std::min(bestLibXml2, Seconds(WriteLibXml2, &libXml2Bytes));
        }
    }
    double const lumoRate = lumoBytes / bestLumo;
    double const libXml2Rate = libXml2Bytes / bestLibXml2;
    state.counters["lumo_MBps"] = lumoRate / 1e6;
    state.counters["libxml2_MBps"] = libXml2Rate / 1e6;
    state.counters["ratio"] = lumoRate / libXml2Rate;
}
BENCHMARK(Ratio_XMLWrite_Lumo_vs_LibXml2)->Iterations(1)->Unit(benchmark::kMillisecond);
