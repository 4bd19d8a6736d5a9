// Tests of CBufferedReader: construction, block reads, reads from a source that returns
// short blocks, and Close.
#include <lumo/io/BufferedReader.h>

#include "support/CharStreams.h"

#include <gtest/gtest.h>

using lumo::base::CRef;
using lumo::io::CBufferedReader;
using lumo::io::CReader;
using lumotest::ArgumentErrorOf;
using lumotest::ArrayReader;
using lumotest::IOErrorOf;
using lumotest::ToU16;

TEST(BufferedReaderTest, Construction) {
    ArrayReader source(u"x");
    EXPECT_EQ("Invalid reader.",
              ArgumentErrorOf([&] { CBufferedReader r(static_cast<CReader*>(nullptr), 4); }));
    EXPECT_EQ("Invalid buffer size.", ArgumentErrorOf([&] { CBufferedReader r(&source, 0); }));
    EXPECT_THROW(CBufferedReader(CRef<CReader>(), 4), lumo::base::CIllegalArgumentException);

    // The CRef form shares the reader; the raw form borrows it.
    int destroyed = 0;
    ArrayReader* shared = new ArrayReader(u"abc");
    shared->destroyed = &destroyed;
    {
        CBufferedReader r(CRef<CReader>(shared), 2);
        EXPECT_EQ('a', r.Read());
    }
    EXPECT_EQ(1, destroyed);
    { CBufferedReader r(&source, 2); }
    EXPECT_EQ(0, source.ownCount);
}

TEST(BufferedReaderTest, ReadsInBlocks) {
    ArrayReader source(u"abcdefghijklmnopqrstuvwxyz");
    CBufferedReader r(&source, 4);
    EXPECT_EQ('a', r.Read());
    EXPECT_EQ((std::vector<unsigned long>{4}), source.blockReads);
    unsigned short buf[32] = {};
    // Three buffered, then one refill of the free part.
    EXPECT_EQ(4, r.Read(buf, 1, 4));
    EXPECT_EQ(u"bcde", ToU16(buf + 1, 4));
    EXPECT_EQ((std::vector<unsigned long>{4, 4}), source.blockReads);
    // Larger than the buffer: straight to the source; "fgh" stays buffered.
    EXPECT_EQ(5, r.Read(buf, 0, 5));
    EXPECT_EQ(u"ijklm", ToU16(buf, 5));
    EXPECT_EQ('f', r.Read());
    // Skip within the buffer, then past it through the source's Skip, which counts
    // what it did NOT skip.
    EXPECT_EQ(1, r.Skip(1));
    EXPECT_EQ(1, r.Skip(4));
    EXPECT_EQ('q', r.Read());
    EXPECT_EQ(4, r.Read(buf, 0, 4));
    EXPECT_EQ(u"rstu", ToU16(buf, 4));
    EXPECT_EQ(4, r.Read(buf, 0, 4));
    EXPECT_EQ(u"vwxy", ToU16(buf, 4));
    EXPECT_EQ('z', r.Read());
    EXPECT_EQ(CReader::EOS, r.Read());
    EXPECT_EQ(-1, r.Read(buf, 0, 4));
    EXPECT_EQ(0, r.Read(buf, 0, 0));

    // A read that meets the end after some buffered units returns those.
    source.Reset();
    CBufferedReader tail(&source, 4);
    EXPECT_EQ(0, tail.Skip(0));
    EXPECT_EQ(0, tail.Skip(24)); // the source's default Skip: none left over
    EXPECT_EQ(2, tail.Read(buf, 0, 3));
    EXPECT_EQ(u"yz", ToU16(buf, 2));

    // Reset empties the buffer and resets the source.
    r.Reset();
    EXPECT_EQ('a', r.Read());
    // A null buffer skips.
    EXPECT_EQ(3, r.Read(nullptr, 0, 3));
    EXPECT_EQ('e', r.Read());
}

TEST(BufferedReaderTest, ReadsUnitsOfAShortBlockSource) {
    // A source that hands out one unit per call still fills reads correctly.
    ArrayReader source(u"\xD83D\xDE00\xFFFF\x0041", 1);
    CBufferedReader r(&source, 8);
    unsigned short buf[8];
    EXPECT_EQ(1, r.Read(buf, 0, 3));
    EXPECT_EQ(0xDE00, r.Read());
    EXPECT_EQ(0xFFFF, r.Read());
    EXPECT_EQ(0x41, r.Read());
    EXPECT_EQ(CReader::EOS, r.Read());
}

TEST(BufferedReaderTest, Close) {
    ArrayReader source(u"abc");
    CBufferedReader r(&source, 4);
    r.Close();
    EXPECT_TRUE(source.closed);
    lumotest::ExpectReaderClosed(r);

    // Closed even when the wrapped reader's Close fails.
    ArrayReader already(u"");
    already.closed = true;
    CBufferedReader s(&already, 4);
    EXPECT_EQ("Reader closed.", IOErrorOf([&] { s.Close(); }));
    EXPECT_THROW(s.Read(), lumo::io::CIOException);
}
