// Tests of CBufferedWriter: construction, collected writes, and Close with failing
// wrapped writers.
#include <lumo/io/BufferedWriter.h>

#include "support/CharStreams.h"

#include <gtest/gtest.h>

using lumo::base::CRef;
using lumo::base::CUnicodeString;
using lumo::io::CBufferedWriter;
using lumo::io::CWriter;
using lumotest::ArgumentErrorOf;
using lumotest::ArrayWriter;
using lumotest::IOErrorOf;

TEST(BufferedWriterTest, Construction) {
    ArrayWriter sink;
    EXPECT_EQ("Invalid writer.",
              ArgumentErrorOf([&] { CBufferedWriter w(static_cast<CWriter*>(nullptr), 4); }));
    EXPECT_EQ("Invalid buffer size.", ArgumentErrorOf([&] { CBufferedWriter w(&sink, 0); }));
    int destroyed = 0;
    ArrayWriter* shared = new ArrayWriter;
    shared->destroyed = &destroyed;
    {
        CBufferedWriter w(CRef<CWriter>(shared), 4);
        w.Write(static_cast<unsigned short>('a'));
    }
    // Shared ownership ends with the writer; its buffer was never flushed.
    EXPECT_EQ(1, destroyed);
}

TEST(BufferedWriterTest, CollectsWrites) {
    ArrayWriter sink;
    CBufferedWriter w(&sink, 4);
    unsigned short const abc[] = {'a', 'b', 'c', 0};
    w.Write(abc, 0, 3);
    EXPECT_TRUE(sink.blockWrites.empty());
    // Becomes exactly full: written out at once.
    w.Write(static_cast<unsigned short>('d'));
    EXPECT_TRUE(sink.blockWrites.empty());
    w.Write(static_cast<unsigned short>('e'));
    EXPECT_EQ((std::vector<unsigned long>{4}), sink.blockWrites);
    // A block smaller than the buffer goes in pieces.
    w.Write(abc, 0, 3);
    EXPECT_EQ((std::vector<unsigned long>{4, 4}), sink.blockWrites);
    // A block as large as the buffer: the buffer, then the block itself.
    unsigned short const big[] = {'1', '2', '3', '4', '5'};
    w.Write(big, 1, 4);
    EXPECT_EQ((std::vector<unsigned long>{4, 4, 4}), sink.blockWrites);
    EXPECT_EQ(u"abcdeabc2345", sink.text);
    w.Write(abc);
    w.Write(CUnicodeString("xyz"), 1, 5);
    w.Write(static_cast<unsigned short const*>(nullptr), 0, 3);
    EXPECT_EQ(0, sink.flushes);
    w.Flush();
    EXPECT_EQ(1, sink.flushes);
    EXPECT_EQ(u"abcdeabc2345abcyz", sink.text);
}

TEST(BufferedWriterTest, CloseAndFailures) {
    ArrayWriter sink;
    {
        CBufferedWriter w(&sink, 8);
        w.Write(CUnicodeString("lost"));
    }
    EXPECT_EQ(u"", sink.text);

    CBufferedWriter w(&sink, 8);
    w.Write(CUnicodeString("kept"));
    // A failing wrapped writer keeps the units waiting for the next attempt.
    sink.failWrites = true;
    EXPECT_THROW(w.Flush(), lumo::io::CIOException);
    sink.failWrites = false;
    w.Close();
    EXPECT_EQ(u"kept", sink.text);
    EXPECT_TRUE(sink.closed);
    w.Close(); // a second Close does nothing
    lumotest::ExpectWriterClosed(w);

    // When the buffer cannot be written out, Close still closes the wrapped writer.
    ArrayWriter failing;
    CBufferedWriter v(&failing, 8);
    v.Write(CUnicodeString("zz"));
    failing.failWrites = true;
    EXPECT_EQ("Write failed.", IOErrorOf([&] { v.Close(); }));
    EXPECT_TRUE(failing.closed);
    EXPECT_EQ("Writer closed.", IOErrorOf([&] { v.Flush(); }));
}
