// Tests of COutputStreamWriter: construction, buffering of the encoded bytes, surrogate
// pairs across writes, and Close.
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/OutputStreamWriter.h>
#include <lumo/io/UnsupportedEncodingException.h>

#include "support/CharStreams.h"
#include "support/Streams.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using lumo::base::CRef;
using lumo::base::CUnicodeString;
using lumo::io::COutputStream;
using lumo::io::COutputStreamWriter;
using lumotest::ArgumentErrorOf;
using lumotest::IcuUtf8;
using lumotest::IOErrorOf;
using lumotest::RecordingOutputStream;

namespace {

void WriteUnits(COutputStreamWriter& w, std::u16string const& text) {
    w.Write(reinterpret_cast<unsigned short const*>(text.data()), 0,
            static_cast<unsigned long>(text.size()));
}

} // namespace

TEST(OutputStreamWriterTest, Construction) {
    RecordingOutputStream out;
    EXPECT_EQ("Invalid output stream..", ArgumentErrorOf([&] {
                  COutputStreamWriter w(static_cast<COutputStream*>(nullptr), "UTF-8");
              }));
    EXPECT_EQ("Invalid encoding.", ArgumentErrorOf([&] { COutputStreamWriter w(&out, nullptr); }));
    EXPECT_EQ("Invalid encoding.", ArgumentErrorOf([&] { COutputStreamWriter w(&out, ""); }));
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
    RecordingOutputStream out;
    COutputStreamWriter w(&out, "UTF-8");
    std::u16string const text = u"h\u00E9llo \u20AC \uFFFF";
    WriteUnits(w, text);
    w.Write(CUnicodeString("!"));
    EXPECT_TRUE(out.blockWrites.empty());
    w.Flush();
    EXPECT_EQ(1, out.flushes);
    EXPECT_EQ(IcuUtf8(text) + "!", out.bytes);

    // Exactly full: written out at once, as one block.
    out.bytes.clear();
    out.blockWrites.clear();
    WriteUnits(w, std::u16string(8196, u'a'));
    EXPECT_EQ((std::vector<unsigned long>{8196}), out.blockWrites);
    // No room for a 3-byte sequence: the waiting bytes go out first.
    WriteUnits(w, std::u16string(8195, u'b'));
    w.Write(static_cast<unsigned short>(0x20AC));
    EXPECT_EQ((std::vector<unsigned long>{8196, 8195}), out.blockWrites);
    w.Flush();
    EXPECT_EQ((std::vector<unsigned long>{8196, 8195, 3}), out.blockWrites);

    // Text that even an empty buffer cannot hold: the buffer grows to fit it.
    std::u16string const big(10000, u'\u20AC');
    WriteUnits(w, big);
    w.Flush();
    EXPECT_EQ((std::vector<unsigned long>{8196, 8195, 3, 30000}), out.blockWrites);
    EXPECT_EQ(IcuUtf8(big), out.bytes.substr(out.bytes.size() - 30000));
}

TEST(OutputStreamWriterTest, SurrogatePairs) {
    RecordingOutputStream out;
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
    RecordingOutputStream out;
    {
        COutputStreamWriter w(&out, "UTF-8");
        w.Write(CUnicodeString("dropped"));
    }
    EXPECT_EQ("", out.bytes);

    COutputStreamWriter w(&out, "UTF-8");
    w.Write(CUnicodeString("abc"));
    w.Close();
    EXPECT_EQ("abc", out.bytes);
    EXPECT_EQ(1, out.closes);
    w.Close();
    lumotest::ExpectWriterClosed(w);

    // The stream is closed even when the waiting bytes cannot be written.
    RecordingOutputStream closedAlready;
    COutputStreamWriter v(&closedAlready, "UTF-8");
    v.Write(CUnicodeString("x"));
    closedAlready.throwOnWrite = true;
    EXPECT_EQ("write failed", IOErrorOf([&] { v.Close(); }));
    EXPECT_EQ(1, closedAlready.closes);
    EXPECT_EQ("Writer closed.", IOErrorOf([&] { v.Flush(); }));
}
