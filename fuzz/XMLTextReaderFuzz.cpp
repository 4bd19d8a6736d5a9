// Fuzzes CXMLTextReader over arbitrary bytes: every token is walked, with searches, text
// joins and typed reads of values and attributes mixed in as the input's first bytes say.
#include "XMLFuzzSupport.h"

#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/XMLTextReader.h>

#include <cstring>
#include <memory>

using namespace lumo::io;
using namespace lumofuzz;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Start();
    Input in(data, size);
    std::string const ops = in.Bytes(48);
    std::string const document = in.Rest();
    char* copy = static_cast<char*>(std::malloc(document.size() + 1));
    std::memcpy(copy, document.data(), document.size());
    // The reader takes the stream over, also when its constructor fails (a malformed
    // prolog).
    std::unique_ptr<CXMLTextReader> reader;
    if (!Try([&] {
            reader.reset(new CXMLTextReader(
                new CMemoryInputStream(copy, static_cast<unsigned long>(document.size()), true)));
        }))
        return 0;
    // The walk reads tokens once the chosen operations run out.
    Input choices(reinterpret_cast<std::uint8_t const*>(ops.data()), ops.size());
    Walk(*reader, choices, 4000, [](std::uint8_t) {});
    return 0;
}
