// Fuzzes the base64 and binhex decoders (8-bit and UTF-16 text, static and member forms)
// against a plain per-group model, and the encoders and the base64 output stream by
// encoding arbitrary bytes and decoding them back.
#include "FuzzSupport.h"

#include <lumo/base/BinaryData.h>
#include <lumo/io/Base64OutputStream.h>
#include <lumo/io/MemoryOutputStream.h>

#include <algorithm>
#include <cstring>
#include <memory>

using lumo::base::CBinaryData;
using lumo::base::CString;
using lumo::base::CUnicodeString;
using namespace lumofuzz;

namespace {

char const kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

int Base64Value(unsigned c) {
    char const* p = c != 0 && c < 0x80 ? std::strchr(kAlphabet, int(c)) : nullptr;
    return p == nullptr ? -1 : int(p - kAlphabet);
}

// The documented decoding, group by group: four alphabet characters give three bytes,
// "xx==" one and "xxx=" two, in any group; anything else fails.
template <class Text> bool ModelBase64(Text const& text, std::string& out) {
    out.clear();
    if (text.size() % 4 != 0)
        return false;
    for (std::size_t i = 0; i < text.size(); i += 4) {
        int v[4];
        for (int k = 0; k < 4; ++k)
            v[k] = Base64Value(unsigned(text[i + k]) & (sizeof(text[0]) == 1 ? 0xFF : 0xFFFF));
        int pad = text[i + 3] == '=' ? (text[i + 2] == '=' ? 2 : 1) : 0;
        for (int k = 0; k < 4 - pad; ++k)
            if (v[k] < 0)
                return false;
        std::uint32_t const bits = (std::uint32_t(v[0]) << 18) | (std::uint32_t(v[1]) << 12) |
                                   (pad < 2 ? std::uint32_t(v[2]) << 6 : 0) |
                                   (pad < 1 ? std::uint32_t(v[3]) : 0);
        out += char(bits >> 16);
        if (pad < 2)
            out += char(bits >> 8);
        if (pad < 1)
            out += char(bits);
    }
    return true;
}

template <class Text> bool ModelBinHex(Text const& text, std::string& out) {
    out.clear();
    if (text.size() % 2 != 0)
        return false;
    auto digit = [](unsigned c) {
        return c >= '0' && c <= '9' ? int(c - '0') : c >= 'A' && c <= 'F' ? int(c - 'A' + 10) : -1;
    };
    for (std::size_t i = 0; i < text.size(); i += 2) {
        int const hi = digit(unsigned(text[i]) & (sizeof(text[0]) == 1 ? 0xFF : 0xFFFF));
        int const lo = digit(unsigned(text[i + 1]) & (sizeof(text[0]) == 1 ? 0xFF : 0xFFFF));
        if (hi < 0 || lo < 0)
            return false;
        out += char(hi * 16 + lo);
    }
    return true;
}

std::string Encode64(std::string const& bytes) {
    std::string out;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::size_t const n = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t v = 0;
        for (std::size_t k = 0; k < 3; ++k)
            v = (v << 8) | (k < n ? std::uint8_t(bytes[i + k]) : 0);
        for (std::size_t k = 0; k < 4; ++k)
            out += k <= n ? kAlphabet[(v >> (18 - 6 * k)) & 63] : '=';
    }
    return out;
}

std::string EncodeHex(std::string const& bytes) {
    std::string out;
    for (unsigned char c : bytes) {
        out += "0123456789ABCDEF"[c >> 4];
        out += "0123456789ABCDEF"[c & 15];
    }
    return out;
}

// Runs a decoder that hands back a malloc'ed block; false when it threw.
template <class F> bool Decoded(F&& decode, std::string& out, unsigned long* reported = nullptr) {
    char* data = nullptr;
    unsigned long length = 0;
    bool const ok = Try([&] { decode(data, length); });
    std::unique_ptr<char, decltype(&std::free)> hold(data, &std::free);
    if (!ok) {
        FUZZ_CHECK(data == nullptr && length == 0);
        return false;
    }
    if (reported != nullptr)
        *reported = length;
    out.assign(data == nullptr ? "" : data, length);
    return true;
}

void CheckDecoders8(std::string const& text) {
    std::string expect, got;
    // A CString holds the text up to its first 0 byte.
    std::string const upToZero(text.c_str());
    CString const s(upToZero.c_str());
    bool const ok64 = ModelBase64(upToZero, expect);
    bool const lib64 =
        Decoded([&](char*& d, unsigned long& n) { CBinaryData::ParseBase64String(s, d, n); }, got);
    FUZZ_CHECK(ok64 == lib64);
    FUZZ_CHECK(!ok64 || got == expect);

    bool okHex = ModelBinHex(upToZero, expect);
    bool const libHex =
        Decoded([&](char*& d, unsigned long& n) { CBinaryData::ParseBinHexString(s, d, n); }, got);
    FUZZ_CHECK(okHex == libHex);
    FUZZ_CHECK(!okHex || got == expect);
    okHex = ModelBinHex(text, expect);
    // The raw-pointer forms reject an empty text; with a length they read embedded zeros.
    if (!text.empty()) {
        bool const libLen = Decoded(
            [&](char*& d, unsigned long& n) {
                CBinaryData::ParseBinHexString(text.data(), static_cast<unsigned long>(text.size()),
                                               d, n);
            },
            got);
        FUZZ_CHECK(okHex == libLen);
        FUZZ_CHECK(!okHex || got == expect);
        CBinaryData block(text.data(), static_cast<unsigned long>(text.size()));
        bool const member = Try(
            [&] { block.FromBinHexString(text.data(), static_cast<unsigned long>(text.size())); });
        FUZZ_CHECK(member == okHex);
        // A malformed text leaves the block empty.
        std::string const held(block.GetData() ? block.GetData() : "", block.GetDataLength());
        FUZZ_CHECK(held == (member ? expect : std::string()));
    }
}

void CheckDecoders16(Units const& text) {
    std::string expect, got;
    // A CUnicodeString holds the text up to its first 0 unit.
    Units const upToZero(text.begin(), std::find(text.begin(), text.end(), 0));
    Units terminated = upToZero;
    terminated.push_back(0);
    CUnicodeString const s(terminated.data());
    bool const ok64 = ModelBase64(upToZero, expect);
    // This form reports no length: the model's length is read from the block.
    char* data = nullptr;
    bool const lib64 = Try([&] { CBinaryData::ParseBase64UnicodeString(s, data, 0); });
    std::unique_ptr<char, decltype(&std::free)> hold(data, &std::free);
    FUZZ_CHECK(ok64 == lib64);
    FUZZ_CHECK(!ok64 || expect.empty() == (data == nullptr));
    FUZZ_CHECK(!ok64 || expect.empty() || std::memcmp(data, expect.data(), expect.size()) == 0);

    bool okHex = ModelBinHex(upToZero, expect);
    bool const libHex = Decoded(
        [&](char*& d, unsigned long& n) { CBinaryData::ParseBinHexUnicodeString(s, d, n); }, got);
    FUZZ_CHECK(okHex == libHex);
    FUZZ_CHECK(!okHex || got == expect);
    okHex = ModelBinHex(text, expect);
    if (!text.empty()) {
        bool const libLen = Decoded(
            [&](char*& d, unsigned long& n) {
                CBinaryData::ParseBinHexUnicodeString(
                    text.data(), static_cast<unsigned long>(text.size()), d, n);
            },
            got);
        FUZZ_CHECK(okHex == libLen);
        FUZZ_CHECK(!okHex || got == expect);
    }
}

// Encoders agree with the model and decode back; the stream's lines join to the same text.
void CheckRoundTrip(std::string const& bytes, Input& in) {
    auto const length = static_cast<unsigned long>(bytes.size());
    char const* data = bytes.empty() ? "" : bytes.data();
    std::string const b64 = Encode64(bytes), hex = EncodeHex(bytes);
    CString const s64 = CBinaryData::ToBase64String(data, length);
    FUZZ_CHECK(std::string(s64, s64.GetLength()) == b64);
    CUnicodeString const u64 = CBinaryData::ToBase64UnicodeString(data, length);
    FUZZ_CHECK(Units(static_cast<unsigned short const*>(u64),
                     static_cast<unsigned short const*>(u64) + u64.GetLength()) ==
               Units(b64.begin(), b64.end()));
    CString const sHex = CBinaryData::ToBinHexString(data, length);
    FUZZ_CHECK(std::string(sHex, sHex.GetLength()) == hex);
    CUnicodeString const uHex = CBinaryData(data, length).ToBinHexUnicodeString();
    FUZZ_CHECK(uHex.GetLength() == hex.size());

    std::string back;
    FUZZ_CHECK(Decoded(
        [&](char*& d, unsigned long& n) { CBinaryData::ParseBase64String(s64, d, n); }, back));
    FUZZ_CHECK(back == bytes);
    FUZZ_CHECK(Decoded(
        [&](char*& d, unsigned long& n) { CBinaryData::ParseBinHexUnicodeString(uHex, d, n); },
        back));
    FUZZ_CHECK(back == bytes);

    // The base64 stream, written in arbitrary pieces.
    unsigned long const lineLength = in.Pick(80);
    lumo::io::CMemoryOutputStream sink;
    {
        lumo::io::CBase64OutputStream stream(&sink, lineLength);
        std::size_t pos = 0;
        while (pos < bytes.size()) {
            std::size_t n = in.Pick(9);
            n = std::min(n, bytes.size() - pos);
            if (n == 1 && in.Bool())
                stream.Write(bytes[pos]);
            else
                stream.Write(bytes.data(), static_cast<unsigned long>(pos),
                             static_cast<unsigned long>(n));
            pos += n;
            if (in.Empty() && pos < bytes.size()) {
                stream.Write(bytes.data() + pos, static_cast<unsigned long>(bytes.size() - pos));
                pos = bytes.size();
            }
        }
        stream.Close();
    }
    std::string const written(sink.GetBuffer() ? sink.GetBuffer() : "", sink.GetBufferSize());
    std::string joined;
    std::size_t lineStart = 0;
    for (std::size_t i = 0; i < written.size(); ++i) {
        if (written[i] == '\r') {
            FUZZ_CHECK(i + 1 < written.size() && written[i + 1] == '\n');
            FUZZ_CHECK(lineLength == 0 || i - lineStart == lineLength);
            lineStart = i + 2;
            ++i;
        } else {
            joined += written[i];
        }
    }
    FUZZ_CHECK(lineLength == 0 || written.size() - lineStart <= lineLength);
    FUZZ_CHECK(joined == b64);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Start();
    Input in(data, size);
    switch (in.Pick(3)) {
    case 0:
        CheckDecoders8(in.Rest());
        break;
    case 1: {
        // Mostly 8-bit units, sometimes wide ones, so the alphabet is met often.
        Units text;
        while (!in.Empty()) {
            unsigned short c = in.Byte();
            if (c == 0xFF)
                c = static_cast<unsigned short>(in.Byte() << 8 | in.Byte());
            text.push_back(c);
        }
        CheckDecoders16(text);
        break;
    }
    default: {
        std::string const bytes = in.Bytes(255);
        CheckRoundTrip(bytes, in);
        break;
    }
    }
    return 0;
}
