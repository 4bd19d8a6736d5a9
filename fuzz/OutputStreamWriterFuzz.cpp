// Fuzzes the "UTF-8" COutputStreamWriter: UTF-16 text cut into arbitrary writes (single
// units, blocks, strings, long repeated runs that outgrow the buffer), with flushes on
// the way, against a model of the encoder's documented per-call surrogate rules; text
// without surrogates must come out exactly as ICU converts it in one piece.
#include "FuzzSupport.h"

#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/OutputStreamWriter.h>

#include <unicode/ustring.h>

using lumo::base::CUnicodeString;
using namespace lumo::io;
using namespace lumofuzz;

namespace {

bool IsHigh(unsigned short u) {
    return (u & 0xFC00) == 0xD800;
}
bool IsLow(unsigned short u) {
    return (u & 0xFC00) == 0xDC00;
}

void PutCode(std::string& out, std::uint32_t c) {
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

// The encoder's contract, call by call: a pair split across two calls is one
// character; a high surrogate followed by anything within a call is one "?" for both; a
// lone low surrogate is its own 3 bytes; a high surrogate waiting in vain puts "?" in
// front of every later call until one starts with a low surrogate.
struct Encoder {
    int pending = -1;
    std::string out;

    void Call(Units const& u) {
        if (u.empty())
            return;
        std::size_t i = 0;
        if (pending >= 0) {
            if (IsLow(u[0])) {
                PutCode(out, 0x10000 + ((std::uint32_t(pending) - 0xD800) << 10) + (u[0] - 0xDC00));
                pending = -1;
                i = 1;
            } else {
                out += '?';
            }
        }
        for (; i < u.size(); ++i) {
            if (!IsHigh(u[i])) {
                PutCode(out, u[i]);
            } else if (i + 1 < u.size()) {
                out += '?';
                ++i;
            } else {
                pending = u[i];
            }
        }
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Start();
    Input in(data, size);
    CMemoryOutputStream sink;
    COutputStreamWriter writer(&sink, "UTF-8");
    Encoder model;
    Units all;
    bool surrogates = false;
    while (!in.Empty()) {
        unsigned const op = in.Pick(6);
        Units chunk;
        if (op == 4) {
            // A long run, so the writer's buffer has to be written out or doubled.
            Units const unit = in.Units16(3);
            std::size_t const times = 1 + in.Byte() * 40u;
            for (std::size_t k = 0; k < times && !unit.empty(); ++k)
                chunk.insert(chunk.end(), unit.begin(), unit.end());
        } else if (op == 5) {
            writer.Flush();
            FUZZ_CHECK(std::string(sink.GetBuffer() ? sink.GetBuffer() : "",
                                   sink.GetBufferSize()) == model.out);
            continue;
        } else {
            chunk = in.Units16(op == 0 ? 1 : 64);
        }
        for (unsigned short& c : chunk) {
            // Surrogates and ASCII are the interesting units; make them common.
            if ((c & 0xF000) == 0xA000)
                c = static_cast<unsigned short>(0xD800 | (c & 0x7FF));
            surrogates = surrogates || (c & 0xF800) == 0xD800;
        }
        if (chunk.empty())
            continue;
        switch (op) {
        case 0:
            writer.Write(chunk[0]);
            break;
        case 1: {
            // A CUnicodeString stops at a 0 unit.
            chunk.erase(std::find(chunk.begin(), chunk.end(), 0), chunk.end());
            Units terminated = chunk;
            terminated.push_back(0);
            writer.Write(CUnicodeString(terminated.data()));
            break;
        }
        case 2: {
            // A block with something on either side that is not written.
            Units padded(1, 'x');
            padded.insert(padded.end(), chunk.begin(), chunk.end());
            padded.push_back('y');
            writer.Write(padded.data(), 1, static_cast<unsigned long>(chunk.size()));
            break;
        }
        default:
            writer.Write(chunk.data(), static_cast<unsigned long>(chunk.size()));
            break;
        }
        model.Call(chunk);
        all.insert(all.end(), chunk.begin(), chunk.end());
    }
    writer.Flush();
    std::string const written(sink.GetBuffer() ? sink.GetBuffer() : "", sink.GetBufferSize());
    FUZZ_CHECK(written == model.out);
    if (!surrogates) {
        std::string icu(all.size() * 3 + 1, '\0');
        int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8(&icu[0], int32_t(icu.size()), &length,
                    reinterpret_cast<UChar const*>(all.data()), int32_t(all.size()), &status);
        FUZZ_CHECK(U_SUCCESS(status));
        icu.resize(std::size_t(length));
        FUZZ_CHECK(written == icu);
    }
    writer.Close();
    FUZZ_CHECK(!Try([&] { writer.Write('z'); }));
    return 0;
}
