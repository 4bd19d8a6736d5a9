// Fuzzes CXMLPushbackReader over a text reader of arbitrary bytes: the shared walk with
// give-backs of tokens and whole typed elements mixed in; an element given back whole
// must read back with its value.
#include "XMLFuzzSupport.h"

#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/XMLPushbackReader.h>
#include <lumo/io/XMLTextReader.h>

#include <cstring>
#include <memory>

using lumo::base::CUnicodeString;
using namespace lumo::io;
using namespace lumofuzz;

namespace {

// Gives back one token or one whole element; an element that went back whole is read
// back at once and must give its value.
void GiveBack(CXMLPushbackReader& reader, Input& values, std::uint8_t op) {
    Units const name = Widen(op & 0x10 ? "p:e" : "e");
    Units const local = Widen("e"), uri = Widen(op & 0x20 ? "urn:x" : "");
    bool const byUri = (op & 0x40) != 0;
    switch (values.Pick(8)) {
    case 0:
        Try([&] { reader.UnreadToken(); });
        break;
    case 1:
        Try([&] {
            byUri ? reader.UnreadStartElement(local.data(), uri.data())
                  : reader.UnreadStartElement(name.data());
        });
        break;
    case 2:
        Try([&] {
            byUri ? reader.UnreadEndElement(local.data(), uri.data())
                  : reader.UnreadEndElement(name.data());
        });
        break;
    case 3: {
        Units const text = Widen(values.Bytes(8));
        Try([&] { reader.UnreadElementText(text.data()); });
        break;
    }
    case 4: {
        long const value = values.Value<long>();
        if (!Try([&] {
                byUri ? reader.UnreadElementLong(local.data(), uri.data(), value)
                      : reader.UnreadElementLong(name.data(), value);
            }))
            break;
        long got = 0;
        FUZZ_CHECK(Try([&] {
            got = byUri ? reader.ReadElementLong(local.data(), uri.data())
                        : reader.ReadElementLong(name.data());
        }));
        FUZZ_CHECK(got == value);
        break;
    }
    case 5: {
        short const value = values.Value<short>();
        if (!Try([&] { reader.UnreadElementShort(name.data(), value); }))
            break;
        short got = 0;
        FUZZ_CHECK(Try([&] { got = reader.ReadElementShort(name.data()); }));
        FUZZ_CHECK(got == value);
        break;
    }
    case 6: {
        // Letters only: the string read trims white space.
        std::string text;
        for (unsigned n = 1 + values.Pick(8); n > 0; --n)
            text += char('a' + values.Pick(26));
        Units const value = Widen(text);
        if (!Try([&] { reader.UnreadElementString(name.data(), value.data()); }))
            break;
        CUnicodeString got;
        FUZZ_CHECK(Try([&] { got = reader.ReadElementString(name.data()); }));
        FUZZ_CHECK(Utf8(got) == text);
        break;
    }
    default: {
        bool const value = values.Bool();
        if (!Try([&] { reader.UnreadElementBool(name.data(), value); }))
            break;
        bool got = !value;
        FUZZ_CHECK(Try([&] { got = reader.ReadElementBool(name.data()); }));
        FUZZ_CHECK(got == value);
        break;
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Start();
    Input in(data, size);
    unsigned long const capacity = 1 + in.Pick(6);
    std::string const ops = in.Bytes(64);
    std::string const values = in.Bytes(64);
    std::string const document = in.Rest();
    char* copy = static_cast<char*>(std::malloc(document.size() + 1));
    std::memcpy(copy, document.data(), document.size());
    std::unique_ptr<CXMLTextReader> text;
    if (!Try([&] {
            text.reset(new CXMLTextReader(
                new CMemoryInputStream(copy, static_cast<unsigned long>(document.size()), true)));
        }))
        return 0;
    CXMLPushbackReader reader(text.get(), capacity);
    Input choices(reinterpret_cast<std::uint8_t const*>(ops.data()), ops.size());
    Input valueBytes(reinterpret_cast<std::uint8_t const*>(values.data()), values.size());
    Walk(reader, choices, 4000, [&](std::uint8_t op) { GiveBack(reader, valueBytes, op); });
    return 0;
}
