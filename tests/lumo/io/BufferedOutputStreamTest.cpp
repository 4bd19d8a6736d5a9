// Tests of CBufferedOutputStream: construction, whole-buffer writes, Close that flushes
// and closes despite errors, and ownership of the wrapped stream.
#include "support/Streams.h"

#include <lumo/io/BufferedOutputStream.h>

#include <gtest/gtest.h>

#include <string>

using lumo::base::CIllegalArgumentException;
using lumo::base::CRef;
using lumo::io::CBufferedOutputStream;
using lumo::io::CIOException;
using lumo::io::COutputStream;
using lumotest::ExpectThrowWith;
using lumotest::RecordingOutputStream;

TEST(BufferedOutputStream, Construction) {
    RecordingOutputStream sink;
    ExpectThrowWith<CIllegalArgumentException>([&] { CBufferedOutputStream(&sink, 0); },
                                               "Invaid buffer size.");
    ExpectThrowWith<CIllegalArgumentException>(
        [] { CBufferedOutputStream(static_cast<COutputStream*>(nullptr), 8); },
        "Invalid output stream.");
    ExpectThrowWith<CIllegalArgumentException>(
        [] { CBufferedOutputStream(CRef<COutputStream>(), 8); }, "Invalid output stream.");
}

TEST(BufferedOutputStream, CollectsAndWritesWholeBuffers) {
    RecordingOutputStream sink;
    std::string const text = "0123456789abcdefghijklmnopqrstuvwxyz";
    {
        CBufferedOutputStream out(&sink, 16);
        out.Write(text.data(), 15);
        EXPECT_TRUE(sink.bytes.empty());
        out.Write(text[15]); // exactly full: not yet written
        EXPECT_TRUE(sink.bytes.empty());
        out.Write(text[16]); // full before adding: the 16 go out first
        EXPECT_EQ(sink.blockWrites, std::vector<unsigned long>{16});
        out.Write(text.data(), 17, 15); // 1 + 15 fill the buffer exactly
        EXPECT_EQ(sink.blockWrites, (std::vector<unsigned long>{16, 16}));
        EXPECT_EQ(sink.bytes, text.substr(0, 32));

        out.Write(text.data(), 32, 2); // 2 waiting
        out.Write(text.data(), 16);    // as large as the buffer: waiting bytes, then direct
        EXPECT_EQ(sink.blockWrites, (std::vector<unsigned long>{16, 16, 2, 16}));
        EXPECT_EQ(sink.bytes, text.substr(0, 34) + text.substr(0, 16));

        out.Write(nullptr, 3);
        out.Write("abc", 1, 1);
        out.Flush();
        EXPECT_EQ(sink.flushes, 1);
        EXPECT_EQ(sink.bytes.back(), 'b');
        out.Write("tail", 4);
    }
    // Destroyed with bytes waiting: they are lost, and nothing is flushed or closed.
    EXPECT_EQ(sink.bytes.find("tail"), std::string::npos);
    EXPECT_EQ(sink.flushes, 1);
    EXPECT_EQ(sink.closes, 0);
}

TEST(BufferedOutputStream, CloseFlushesClosesAndSurvivesErrors) {
    RecordingOutputStream sink;
    CBufferedOutputStream out(&sink, 8);
    out.Write("abc", 3);
    out.Close();
    EXPECT_EQ(sink.bytes, "abc");
    EXPECT_EQ(sink.closes, 1);
    out.Close(); // ignored
    EXPECT_EQ(sink.closes, 1);
    lumotest::ExpectOutputClosed(out);

    RecordingOutputStream failing;
    failing.throwOnClose = true;
    CBufferedOutputStream out2(&failing, 8);
    out2.Write('z');
    ExpectThrowWith<CIOException>([&] { out2.Close(); }, "close failed");
    EXPECT_EQ(failing.bytes, "z");
    ExpectThrowWith<CIOException>([&] { out2.Write('x'); }, "Stream closed.");
    out2.Close(); // already marked closed
    EXPECT_EQ(failing.closes, 1);
}

TEST(BufferedOutputStream, OwnershipOfTheWrappedStream) {
    bool destroyed = false;
    auto* sink = new RecordingOutputStream(&destroyed);
    { CBufferedOutputStream out(sink, 4); }
    EXPECT_FALSE(destroyed);
    delete sink;

    destroyed = false;
    {
        CBufferedOutputStream out(CRef<COutputStream>(new RecordingOutputStream(&destroyed)), 4);
        out.Write("abcd", 4);
        EXPECT_FALSE(destroyed);
    }
    EXPECT_TRUE(destroyed);
}
