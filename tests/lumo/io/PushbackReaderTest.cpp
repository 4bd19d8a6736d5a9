// Tests of CPushbackReader: construction, the order of units given back, and skip,
// reset and close.
#include <lumo/io/PushbackReader.h>

#include "support/CharStreams.h"

#include <gtest/gtest.h>

using lumo::base::CRef;
using lumo::io::CPushbackReader;
using lumo::io::CReader;
using lumotest::ArgumentErrorOf;
using lumotest::ArrayReader;
using lumotest::IOErrorOf;
using lumotest::ToU16;

TEST(PushbackReaderTest, Construction) {
    ArrayReader source(u"x");
    EXPECT_EQ("Invalid reader.",
              ArgumentErrorOf([] { CPushbackReader r(static_cast<CReader*>(nullptr), 2); }));
    EXPECT_EQ("Invalid pushback buffer size.",
              ArgumentErrorOf([&] { CPushbackReader r(&source, 0); }));
    int destroyed = 0;
    ArrayReader* shared = new ArrayReader(u"q");
    shared->destroyed = &destroyed;
    {
        CPushbackReader r(CRef<CReader>(shared), 1);
        EXPECT_EQ('q', r.Read());
    }
    EXPECT_EQ(1, destroyed);
}

TEST(PushbackReaderTest, PushbackOrder) {
    ArrayReader source(u"xyz");
    CPushbackReader r(&source, 4);
    // One by one: last given back, first read.
    r.Unread('a');
    r.Unread('b');
    EXPECT_EQ('b', r.Read());
    EXPECT_EQ('a', r.Read());
    // A block comes back in its own order.
    unsigned short const ab[] = {'-', 'a', 'b'};
    r.Unread(ab, 1, 2);
    EXPECT_EQ('a', r.Read());
    EXPECT_EQ('b', r.Read());
    EXPECT_EQ('x', r.Read());
    // Units given back in front of a block given back.
    r.Unread(ab, 1, 2);
    r.Unread(0xFFFF);
    unsigned short buf[8];
    EXPECT_EQ(2, r.Read(buf, 0, 2));
    EXPECT_EQ(u"\xFFFF"
              u"a",
              ToU16(buf, 2));
    // The rest of the held-back units, then the source.
    EXPECT_EQ(3, r.Read(buf, 0, 5));
    EXPECT_EQ(u"byz", ToU16(buf, 3));
    EXPECT_EQ(CReader::EOS, r.Read());
    EXPECT_EQ(-1, r.Read(buf, 0, 5));

    // Held-back units at the end of the source are returned without the end's -1.
    r.Unread('k');
    EXPECT_EQ(1, r.Read(buf, 0, 5));
    EXPECT_EQ('k', buf[0]);

    // Full buffer: nothing is given back.
    unsigned short const five[] = {'1', '2', '3', '4', '5'};
    EXPECT_EQ("Pushback buffer is full.", IOErrorOf([&] { r.Unread(five, 5); }));
    r.Unread(five, 4);
    EXPECT_EQ("Pushback buffer is full.", IOErrorOf([&] { r.Unread('0'); }));
    EXPECT_EQ('1', r.Read());
    r.Unread(static_cast<unsigned short const*>(nullptr), 1); // nothing happens
    r.Unread(five, 0);
    EXPECT_EQ('2', r.Read());
}

TEST(PushbackReaderTest, SkipResetClose) {
    ArrayReader source(u"abcdef");
    CPushbackReader r(&source, 4);
    unsigned short const xy[] = {'x', 'y', 'z'};
    r.Unread(xy, 3);
    EXPECT_EQ(0, r.Skip(0));
    EXPECT_EQ(2, r.Skip(2));
    // The held-back unit, then the source's Skip, which counts what it did not skip.
    EXPECT_EQ(1, r.Skip(3));
    EXPECT_EQ('c', r.Read());
    // A null buffer skips; nothing is held back, so the result is the source's.
    EXPECT_EQ(0, r.Read(nullptr, 0, 2));
    EXPECT_EQ('f', r.Read());
    r.Unread('q');
    r.Reset();
    EXPECT_EQ(1, source.resets);
    EXPECT_EQ('a', r.Read());

    r.Close();
    EXPECT_TRUE(source.closed);
    lumotest::ExpectReaderClosed(r);
    // Giving back makes no closed test.
    r.Unread('z');
}
