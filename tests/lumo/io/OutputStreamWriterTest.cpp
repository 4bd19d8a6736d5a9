#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/OutputStreamWriter.h>
#include <lumo/io/UnsupportedEncodingException.h>

#include "lumo/io/CharStreamsTestSupport.h"

#include <gtest/gtest.h>
#include <unicode/ustring.h>

#include <string>
#include <vector>

using lumo::base::CRef;
using lumo::base::CUnicodeString;
using lumo::io::COutputStream;
using lumo::io::COutputStreamWriter;
using lumotest::IOErrorOf;

namespace {

// Keeps every block written, so that the writer's buffering can be seen.
class RecordingStream : public COutputStream {
public:
    using COutputStream::Write;
    void Write(char c) override { Write(&c, 0, 1); }
    void Write(char const* buf, unsigned long off, unsigned long len) override {
        if (closed)
            throw lumo::io::CIOException("test", __LINE__, "Stream closed.", nullptr);
        blocks.push_back(len);
        bytes.append(buf + off, len);
    }
    void Flush() override { ++flushes; }
    void Close() override { closed = true; }

    std::string bytes;
    std::vector<unsigned long> blocks;
    int flushes = 0;
    bool closed = false;
};

std::string Icu(std::u16string const& text) {
    std::string out(text.size() * 3, '\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(&out[0], static_cast<int32_t>(out.size()), &length,
                reinterpret_cast<UChar const*>(text.data()), static_cast<int32_t>(text.size()),
                &status);
    out.resize(static_cast<std::size_t>(length));
    return out;
}

std::string ArgumentErrorOf(COutputStream* out, char const* encoding) {
    try {
        COutputStreamWriter w(out, encoding);
    } catch (lumo::base::CIllegalArgumentException const& e) {
        return e.GetErrorDescription();
    }
    return "(none)";
}

void WriteUnits(COutputStreamWriter& w, std::u16string const& text) {
    w.Write(reinterpret_cast<unsigned short const*>(text.data()), 0,
            static_cast<unsigned long>(text.size()));
}

} // namespace

TEST(OutputStreamWriterTest, Construction) {
    RecordingStream out;
    EXPECT_EQ("Invalid output stream..", ArgumentErrorOf(nullptr, "UTF-8"));
    EXPECT_EQ("Invalid encoding.", ArgumentErrorOf(&out, nullptr));
    EXPECT_EQ("Invalid encoding.", ArgumentErrorOf(&out, ""));
    try {
        COutputStreamWriter w(&out, "latin-1");
        ADD_FAILURE();
    } catch (lumo::io::CUnsupportedEncodingException const& e) {
        EXPECT_STREQ("latin-1", e.GetEncoding());
    }
    COutputStreamWriter w(&out, "UTF-8");
    EXPECT_STREQ("UTF-8", w.GetEncoding());
    EXPECT_STREQ("lumo::io::COutputStreamWriter", w.GetClass()->GetQualifiedName());

    // The CRef form shares the stream.
    CRef<COutputStream> shared(new lumo::io::CMemoryOutputStream());
    {
        COutputStreamWriter v(shared, "UTF-8");
        EXPECT_EQ(2u, shared.GetRefCount());
    }
    EXPECT_EQ(1u, shared.GetRefCount());
}

TEST(OutputStreamWriterTest, BuffersEncodedBytes) {
    RecordingStream out;
    COutputStreamWriter w(&out, "UTF-8");
    std::u16string const text = u"h\u00E9llo \u20AC \uFFFF";
    WriteUnits(w, text);
    w.Write(CUnicodeString("!"));
    EXPECT_TRUE(out.blocks.empty());
    w.Flush();
    EXPECT_EQ(1, out.flushes);
    EXPECT_EQ(Icu(text) + "!", out.bytes);

    // Exactly full: written out at once, as one block.
    out.bytes.clear();
    out.blocks.clear();
    WriteUnits(w, std::u16string(8196, u'a'));
    EXPECT_EQ((std::vector<unsigned long>{8196}), out.blocks);
    // No room for a 3-byte sequence: the waiting bytes go out first.
    WriteUnits(w, std::u16string(8195, u'b'));
    w.Write(static_cast<unsigned short>(0x20AC));
    EXPECT_EQ((std::vector<unsigned long>{8196, 8195}), out.blocks);
    w.Flush();
    EXPECT_EQ((std::vector<unsigned long>{8196, 8195, 3}), out.blocks);

    // Text that even an empty buffer cannot hold: the buffer grows to fit it.
    std::u16string const big(10000, u'\u20AC');
    WriteUnits(w, big);
    w.Flush();
    EXPECT_EQ((std::vector<unsigned long>{8196, 8195, 3, 30000}), out.blocks);
    EXPECT_EQ(Icu(big), out.bytes.substr(out.bytes.size() - 30000));
}

TEST(OutputStreamWriterTest, SurrogatePairs) {
    RecordingStream out;
    COutputStreamWriter w(&out, "UTF-8");
    // Unit by unit, a pair is split across calls and comes out whole; inside one
    // call it becomes "?".
    w.Write(static_cast<unsigned short>(0xD83D));
    w.Write(static_cast<unsigned short>(0xDE00));
    WriteUnits(w, u"\U0001F600");
    w.Flush();
    EXPECT_EQ("\xF0\x9F\x98\x80?", out.bytes);

    // A pair split where the buffer runs out of room still comes out whole.
    out.bytes.clear();
    WriteUnits(w, std::u16string(8194, u'x'));
    w.Write(static_cast<unsigned short>(0xD83D));
    w.Write(static_cast<unsigned short>(0xDE00));
    w.Flush();
    EXPECT_EQ(std::string(8194, 'x') + "\xF0\x9F\x98\x80", out.bytes);
}

TEST(OutputStreamWriterTest, Close) {
    RecordingStream out;
    {
        COutputStreamWriter w(&out, "UTF-8");
        w.Write(CUnicodeString("dropped"));
    }
    EXPECT_EQ("", out.bytes);

    COutputStreamWriter w(&out, "UTF-8");
    w.Write(CUnicodeString("abc"));
    w.Close();
    EXPECT_EQ("abc", out.bytes);
    EXPECT_TRUE(out.closed);
    w.Close();
    EXPECT_EQ("Writer closed.", IOErrorOf([&] { w.Write(static_cast<unsigned short>('x')); }));
    EXPECT_EQ("Writer closed.", IOErrorOf([&] { w.Write(CUnicodeString("x")); }));
    EXPECT_EQ("Writer closed.", IOErrorOf([&] { w.Flush(); }));

    // The stream is closed even when the waiting bytes cannot be written.
    RecordingStream closedAlready;
    COutputStreamWriter v(&closedAlready, "UTF-8");
    v.Write(CUnicodeString("x"));
    closedAlready.closed = true;
    EXPECT_EQ("Stream closed.", IOErrorOf([&] { v.Close(); }));
    EXPECT_EQ("Writer closed.", IOErrorOf([&] { v.Flush(); }));
}
