// Fuzzes the native and Java data input streams over memory, buffered and pushback
// streams stacked at random: the input drives a sequence of typed reads, give-backs and
// resets, checked against a byte-level model of each stream; then typed values written
// by the data output streams must read back unchanged.
#include "FuzzSupport.h"

#include <lumo/io/BufferedInputStream.h>
#include <lumo/io/BufferedOutputStream.h>
#include <lumo/io/DataInputStream.h>
#include <lumo/io/DataOutputStream.h>
#include <lumo/io/JavaDataInputStream.h>
#include <lumo/io/JavaDataOutputStream.h>
#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/PushbackInputStream.h>

#include <algorithm>
#include <cstring>
#include <memory>

using lumo::base::CUnicodeString;
using namespace lumo::io;
using namespace lumofuzz;

namespace {

long const kEos = 0xFFFF;

// Models of the three streams, as their contracts describe them.
struct Model {
    virtual ~Model() = default;
    virtual long Read1() = 0;
    virtual long ReadN(char* buf, std::size_t len) = 0;
    virtual void Reset() = 0;
};

struct MemoryModel : Model {
    explicit MemoryModel(std::string d) : data(std::move(d)) {}
    long Read1() override { return pos < data.size() ? long(data[pos++]) : kEos; }
    long ReadN(char* buf, std::size_t len) override {
        if (len == 0)
            return 0;
        if (pos >= data.size())
            return -1;
        std::size_t const n = std::min(len, data.size() - pos);
        std::memcpy(buf, data.data() + pos, n);
        pos += n;
        return long(n);
    }
    void Reset() override { pos = 0; }
    std::string data;
    std::size_t pos = 0;
};

// Waiting bytes first; a refill asks the wrapped stream for the free room once; a
// request larger than the buffer goes straight to the wrapped stream.
struct BufferedModel : Model {
    BufferedModel(Model& in, std::size_t capacity) : in(in), capacity(capacity) {}
    void Fill() {
        std::string room(capacity - waiting.size(), '\0');
        long const n = in.ReadN(&room[0], room.size());
        if (n > 0)
            waiting.append(room, 0, std::size_t(n));
    }
    std::size_t Take(char* buf, std::size_t len) {
        std::size_t const n = std::min(len, waiting.size());
        std::memcpy(buf, waiting.data(), n);
        waiting.erase(0, n);
        return n;
    }
    long Read1() override {
        if (waiting.empty())
            Fill();
        if (waiting.empty())
            return kEos;
        char c;
        Take(&c, 1);
        return long(static_cast<unsigned char>(c));
    }
    long ReadN(char* buf, std::size_t len) override {
        if (len == 0)
            return 0;
        if (len > capacity)
            return in.ReadN(buf, len);
        std::size_t const first = Take(buf, len);
        if (first == len)
            return long(len);
        Fill();
        return long(first + Take(buf + first, len - first));
    }
    void Reset() override {
        waiting.clear();
        in.Reset();
    }
    Model& in;
    std::size_t capacity;
    std::string waiting;
};

// Bytes given back come first; a block read they do not cover adds the wrapped
// stream's result as it is, -1 included.
struct PushbackModel : Model {
    PushbackModel(Model& in, std::size_t capacity) : in(in), capacity(capacity) {}
    long Read1() override {
        if (held.empty())
            return in.Read1();
        char const c = held[0];
        held.erase(0, 1);
        return long(c);
    }
    long ReadN(char* buf, std::size_t len) override {
        if (len == 0)
            return 0;
        std::size_t const n = std::min(len, held.size());
        std::memcpy(buf, held.data(), n);
        held.erase(0, n);
        if (n == len && !held.empty())
            return long(len);
        return long(n) + in.ReadN(buf + n, len - n);
    }
    void Reset() override {
        held.clear();
        in.Reset();
    }
    bool Unread(std::string const& bytes) {
        if (capacity - held.size() < bytes.size())
            return false;
        held.insert(0, bytes);
        return true;
    }
    Model& in;
    std::size_t capacity;
    std::string held;
};

// Bytes past a short read's reported count are not specified (a data stream reads
// them anyway), and what follows may then differ too: the model stops comparing.
bool g_exact = true;

std::string Raw(Model& m, std::size_t n) {
    std::string b(n, '\0');
    if (m.ReadN(&b[0], n) != long(n))
        g_exact = false;
    return b;
}

std::uint32_t Big(std::string const& b) {
    std::uint32_t v = 0;
    for (unsigned char c : b)
        v = (v << 8) | c;
    return v;
}

template <class T> T Little(std::string const& b) {
    T v;
    std::memcpy(&v, b.data(), sizeof v);
    return v;
}

template <class T> bool Equal(T a, T b) {
    return a == b;
}

template <class T> bool SameBits(T a, T b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// The string of a byte count read before: at most 64 KiB comes in the first read.
CUnicodeString ModelString(Model& m, std::uint32_t count) {
    std::size_t const want = std::min<std::size_t>(count, 64 * 1024);
    std::string text(want, '\0');
    long const got = want == 0 ? 0 : m.ReadN(&text[0], want);
    std::size_t const n = got <= 0 ? 0 : std::min(std::size_t(got), want);
    return CUnicodeString::FromUTF8(text.data(), long(n));
}

bool SameText(CUnicodeString const& a, CUnicodeString const& b) {
    return a.GetLength() == b.GetLength() &&
           std::equal(static_cast<unsigned short const*>(a),
                      static_cast<unsigned short const*>(a) + a.GetLength(),
                      static_cast<unsigned short const*>(b));
}

struct Layer {
    std::unique_ptr<CInputStream> stream;
    std::unique_ptr<Model> model;
    CPushbackInputStream* pushback = nullptr;
    PushbackModel* pushbackModel = nullptr;
};

void ReadSequence(Input& in) {
    bool const java = in.Bool();
    unsigned const shape = in.Pick(5);
    std::size_t const size1 = 1 + in.Pick(24), size2 = 1 + in.Pick(24);
    std::string const ops = in.Bytes(64);
    std::string data = in.Rest();

    char* copy = static_cast<char*>(std::malloc(data.size() + 1));
    std::memcpy(copy, data.data(), data.size());
    std::vector<Layer> layers(1);
    layers[0].stream.reset(
        new CMemoryInputStream(copy, static_cast<unsigned long>(data.size()), true));
    layers[0].model.reset(new MemoryModel(data));
    // 0 memory, 1 buffered, 2 pushback, 3 pushback over buffered, 4 buffered over pushback.
    auto addBuffered = [&](std::size_t n) {
        Layer l;
        l.stream.reset(
            new CBufferedInputStream(layers.back().stream.get(), static_cast<unsigned long>(n)));
        l.model.reset(new BufferedModel(*layers.back().model, n));
        layers.push_back(std::move(l));
    };
    auto addPushback = [&](std::size_t n) {
        Layer l;
        auto* p =
            new CPushbackInputStream(layers.back().stream.get(), static_cast<unsigned long>(n));
        auto* pm = new PushbackModel(*layers.back().model, n);
        l.stream.reset(p);
        l.model.reset(pm);
        l.pushback = p;
        l.pushbackModel = pm;
        layers.push_back(std::move(l));
    };
    if (shape == 1 || shape == 3)
        addBuffered(size1);
    if (shape >= 2)
        addPushback(size2);
    if (shape == 4)
        addBuffered(size1);
    Layer* pushLayer = nullptr;
    for (auto& l : layers)
        if (l.pushback != nullptr)
            pushLayer = &l;

    std::unique_ptr<CDataInputStream> reader(
        java ? new CJavaDataInputStream(layers.back().stream.get())
             : new CDataInputStream(layers.back().stream.get()));
    Model& m = *layers.back().model;
    g_exact = true;
// Both sides run every time; the result is compared while the model is exact.
#define CHECK_EXACT(got, expect, same)                                                             \
    do {                                                                                           \
        auto const gotValue = (got);                                                               \
        auto const expectValue = (expect);                                                         \
        FUZZ_CHECK(!g_exact || same(gotValue, expectValue));                                       \
    } while (0)
    for (unsigned char op : ops) {
        switch (op % 14) {
        case 0:
            CHECK_EXACT(reader->ReadBool(), m.Read1() == 1, Equal);
            break;
        case 1:
            CHECK_EXACT(reader->ReadByte(), char(m.Read1() & 0xFF), Equal);
            break;
        case 2:
            CHECK_EXACT(reader->ReadSByte(), static_cast<unsigned char>(m.Read1() & 0xFF), Equal);
            break;
        case 3:
            CHECK_EXACT(reader->ReadInt16(), short(Big(Raw(m, 2))), Equal);
            break;
        case 4:
            CHECK_EXACT(reader->ReadUInt16(), (unsigned short)Big(Raw(m, 2)), Equal);
            break;
        case 5:
            CHECK_EXACT(reader->ReadInt32(), long(std::int32_t(Big(Raw(m, 4)))), Equal);
            break;
        case 6:
            CHECK_EXACT(reader->ReadUInt32(), (unsigned long)Big(Raw(m, 4)), Equal);
            break;
        case 7:
            CHECK_EXACT(reader->ReadFloat(), Little<float>(Raw(m, 4)), SameBits);
            break;
        case 8:
            CHECK_EXACT(reader->ReadDouble(), Little<double>(Raw(m, 8)), SameBits);
            break;
        case 9:
        case 10: {
            CHECK_EXACT(reader->ReadString(), ModelString(m, Big(Raw(m, java ? 2 : 4))), SameText);
            break;
        }
        case 11: {
            // Give back a few bytes (one at a time or as a block) to the pushback layer.
            if (pushLayer == nullptr)
                break;
            std::string bytes(1 + op / 14 % 6, char(op));
            bytes[0] = char(op * 7);
            if (bytes.size() == 1) {
                bool const fits = pushLayer->pushbackModel->Unread(bytes);
                bool const done = Try([&] { pushLayer->pushback->Unread(bytes[0]); });
                FUZZ_CHECK(!g_exact || done == fits);
            } else {
                bool const fits = pushLayer->pushbackModel->Unread(bytes);
                bool const done = Try([&] {
                    pushLayer->pushback->Unread(bytes.data(),
                                                static_cast<unsigned long>(bytes.size()));
                });
                FUZZ_CHECK(!g_exact || done == fits);
            }
            break;
        }
        case 12:
            reader->Reset();
            m.Reset();
            break;
        default: {
            // A plain block read through the data stream.
            std::size_t const n = op / 14;
            std::string got(n, '\0'), expect(n, '\0');
            long const r = reader->Read(&got[0], static_cast<unsigned long>(n));
            long const e = m.ReadN(&expect[0], n);
            std::size_t const reported = e < 0 ? 0 : std::size_t(e);
            FUZZ_CHECK(!g_exact || (r == e && got.compare(0, reported, expect, 0, reported) == 0));
            if (e != long(n))
                g_exact = false;
            break;
        }
        }
    }
#undef CHECK_EXACT
    reader->Close();
    FUZZ_CHECK(!Try([&] { reader->ReadInt32(); }));
}

// Typed values written by the output streams read back unchanged, through a buffered
// output stream sometimes and a buffered input stream sometimes.
void RoundTrip(Input& in) {
    bool const java = in.Bool();
    // A read larger than an input buffer bypasses the bytes waiting in it (its defined
    // behaviour), so the input buffer holds at least the longest string (40 units).
    unsigned const outBuffer = in.Pick(3) * 7, inBuffer = in.Pick(3) * 128;
    struct Value {
        int kind;
        std::uint64_t bits;
        CUnicodeString text;
    };
    std::vector<Value> values;
    CMemoryOutputStream sink;
    {
        std::unique_ptr<CBufferedOutputStream> buffered(
            outBuffer ? new CBufferedOutputStream(&sink, outBuffer) : nullptr);
        COutputStream* target = buffered ? static_cast<COutputStream*>(buffered.get()) : &sink;
        std::unique_ptr<CDataOutputStream> out(java ? new CJavaDataOutputStream(target)
                                                    : new CDataOutputStream(target));
        while (!in.Empty() && values.size() < 64) {
            Value v{int(in.Pick(9)), in.Value<std::uint64_t>(), CUnicodeString()};
            switch (v.kind) {
            case 0:
                out->WriteBool(v.bits & 1);
                break;
            case 1:
                out->WriteByte(char(v.bits));
                break;
            case 2:
                out->WriteInt16(short(v.bits));
                break;
            case 3:
                out->WriteUInt16(static_cast<unsigned short>(v.bits));
                break;
            case 4:
                out->WriteInt32(long(std::int32_t(v.bits)));
                break;
            case 5:
                out->WriteUInt32(static_cast<std::uint32_t>(v.bits));
                break;
            case 6: {
                float f;
                std::uint32_t const b = std::uint32_t(v.bits);
                std::memcpy(&f, &b, 4);
                out->WriteFloat(f);
                break;
            }
            case 7: {
                double d;
                std::memcpy(&d, &v.bits, 8);
                out->WriteDouble(d);
                break;
            }
            default: {
                Units u = in.Units16(40);
                u.erase(std::find(u.begin(), u.end(), 0), u.end());
                u.push_back(0);
                v.text = CUnicodeString(u.data());
                out->WriteString(v.text);
                break;
            }
            }
            values.push_back(v);
        }
        out->Flush();
    }
    std::unique_ptr<CInputStream> source(new CMemoryInputStream(
        sink.GetBuffer() ? sink.GetBuffer() : "", sink.GetBufferSize(), false));
    std::unique_ptr<CInputStream> buffered(
        inBuffer ? new CBufferedInputStream(source.get(), inBuffer) : nullptr);
    CInputStream* from = buffered ? buffered.get() : source.get();
    std::unique_ptr<CDataInputStream> reader(java ? new CJavaDataInputStream(from)
                                                  : new CDataInputStream(from));
    for (Value const& v : values) {
        switch (v.kind) {
        case 0:
            FUZZ_CHECK(reader->ReadBool() == bool(v.bits & 1));
            break;
        case 1:
            FUZZ_CHECK(reader->ReadByte() == char(v.bits));
            break;
        case 2:
            FUZZ_CHECK(reader->ReadInt16() == short(v.bits));
            break;
        case 3:
            FUZZ_CHECK(reader->ReadUInt16() == static_cast<unsigned short>(v.bits));
            break;
        case 4:
            FUZZ_CHECK(reader->ReadInt32() == long(std::int32_t(v.bits)));
            break;
        case 5:
            FUZZ_CHECK(reader->ReadUInt32() == static_cast<std::uint32_t>(v.bits));
            break;
        case 6: {
            float const f = reader->ReadFloat();
            std::uint32_t b;
            std::memcpy(&b, &f, 4);
            FUZZ_CHECK(b == std::uint32_t(v.bits));
            break;
        }
        case 7: {
            double const d = reader->ReadDouble();
            std::uint64_t b;
            std::memcpy(&b, &d, 8);
            FUZZ_CHECK(b == v.bits);
            break;
        }
        default:
            FUZZ_CHECK(SameText(reader->ReadString(), v.text));
            break;
        }
    }
    FUZZ_CHECK(reader->GetAvailable() == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Start();
    Input in(data, size);
    if (in.Bool())
        Try([&] { ReadSequence(in); });
    else
        RoundTrip(in);
    return 0;
}
