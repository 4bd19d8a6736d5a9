// Tests of CPushbackInputStream: construction, the order in which bytes and blocks come
// back, block reads past the pushback, and ownership of the wrapped stream.
#include "support/Streams.h"

#include <lumo/io/BufferedInputStream.h>
#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/PushbackInputStream.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using lumo::base::CIllegalArgumentException;
using lumo::base::CRef;
using lumo::io::CBufferedInputStream;
using lumo::io::CInputStream;
using lumo::io::CIOException;
using lumo::io::CMemoryInputStream;
using lumo::io::CPushbackInputStream;
using lumotest::ExpectThrowWith;
using lumotest::ScriptedInputStream;

TEST(PushbackInputStream, Construction) {
    ScriptedInputStream inner("x");
    ExpectThrowWith<CIllegalArgumentException>([&] { CPushbackInputStream(&inner, 0); },
                                               "Invalid pushback buffer size.");
    ExpectThrowWith<CIllegalArgumentException>(
        [] { CPushbackInputStream(static_cast<CInputStream*>(nullptr), 4); },
        "Invalid input stream.");
    ExpectThrowWith<CIllegalArgumentException>(
        [] { CPushbackInputStream(CRef<CInputStream>(), 4); }, "Invalid input stream.");
}

TEST(PushbackInputStream, SingleBytesComeBackReversedBlocksInOrder) {
    CMemoryInputStream inner("xyz", 3, false);
    CPushbackInputStream in(&inner, 3);
    in.Unread('a');
    in.Unread('b');
    EXPECT_EQ(in.GetAvailable(), 5u);
    EXPECT_EQ(in.Read(), 'b');
    EXPECT_EQ(in.Read(), 'a');
    EXPECT_EQ(in.Read(), 'x');

    in.Unread("ab", 2);
    EXPECT_EQ(in.Read(), 'a');
    EXPECT_EQ(in.Read(), 'b');

    in.Unread(char(0xFE));
    EXPECT_EQ(in.Read(), -2); // sign-extended like every single read

    in.Unread("-12-", 1, 2);
    in.Unread('0');
    ExpectThrowWith<CIOException>([&] { in.Unread('!'); }, "Pushback buffer is full.");
    char buf[8] = {};
    EXPECT_EQ(in.Read(buf, 0, 2), 2);
    EXPECT_EQ(std::string(buf, 2), "01");
    // A block that does not fit is refused whole.
    ExpectThrowWith<CIOException>([&] { in.Unread("abc", 3); }, "Pushback buffer is full.");
    in.Unread(nullptr, 2); // nothing given back
    in.Unread("abc", 0);
    EXPECT_EQ(in.GetAvailable(), 1u + 2u); // one held back, "yz" in the wrapped stream
    EXPECT_EQ(in.Read(), '2');
}

TEST(PushbackInputStream, BlockReadsAddTheWrappedResultAsItIs) {
    CMemoryInputStream inner("", 0, false);
    CPushbackInputStream in(&inner, 4);
    in.Unread("pq", 2);
    char buf[10] = {};
    // Two held back, the wrapped stream at its end returns -1: 2 + -1.
    EXPECT_EQ(in.Read(buf, 0, 10), 1);
    EXPECT_EQ(std::string(buf, 2), "pq");

    CMemoryInputStream more("rstu", 4, false);
    CPushbackInputStream in2(&more, 4);
    in2.Unread("pq", 2);
    EXPECT_EQ(in2.Read(buf, 1, 5), 5);
    EXPECT_EQ(std::string(buf + 1, 5), "pqrst");
    in2.Unread("ab", 2);
    EXPECT_EQ(in2.Skip(1), 1);
    EXPECT_EQ(in2.Skip(5), 1 + 1); // one held back plus the memory stream's one
    EXPECT_EQ(in2.Read(), CInputStream::EOS);
    EXPECT_EQ(in2.Read(nullptr, 0, 3), 0); // skips, nothing left

    in2.Unread('z');
    in2.Reset();
    EXPECT_EQ(in2.Read(), 'r'); // held-back bytes dropped, wrapped stream reset
    in2.Close();
    lumotest::ExpectInputClosed(in2);
    ExpectThrowWith<CIOException>([&] { more.Read(); }, "Stream closed.");
}

TEST(PushbackInputStream, OwnershipOfTheWrappedStream) {
    bool destroyed = false;
    {
        CRef<CInputStream> shared(new ScriptedInputStream("abc", 100, &destroyed));
        CPushbackInputStream in(shared, 2);
        shared = nullptr;
        EXPECT_EQ(in.Read(), 'a');
        EXPECT_FALSE(destroyed);
    }
    EXPECT_TRUE(destroyed);
}

namespace {
// Records the Skip calls that reach it.
class SkipRecordingStream : public ScriptedInputStream {
public:
    using ScriptedInputStream::ScriptedInputStream;
    long Skip(unsigned long n) override {
        skips.push_back(n);
        return ScriptedInputStream::Skip(n);
    }
    std::vector<unsigned long> skips;
};
} // namespace

// The two filters differ on a Skip that the bytes they hold cover exactly: the
// pushback stream still asks the wrapped stream (for 0 bytes), the buffered one does
// not; one byte more reaches the wrapped stream from both.
TEST(PushbackInputStream, ExactSkipOfTheHeldBytesStillAsksTheWrappedStream) {
    SkipRecordingStream pushbackInner("abcdef");
    CPushbackInputStream pushback(&pushbackInner, 4);
    pushback.Unread("xyz", 3);
    EXPECT_EQ(pushback.Skip(3), 3);
    EXPECT_EQ(pushbackInner.skips, std::vector<unsigned long>{0});
    pushback.Unread("xy", 2);
    pushback.Skip(3);
    EXPECT_EQ(pushbackInner.skips, (std::vector<unsigned long>{0, 1}));

    SkipRecordingStream bufferedInner("abcdefghij", 4);
    CBufferedInputStream buffered(&bufferedInner, 8);
    EXPECT_EQ(buffered.Read(), 'a'); // 3 waiting
    EXPECT_EQ(buffered.Skip(3), 3);
    EXPECT_TRUE(bufferedInner.skips.empty());
    EXPECT_EQ(buffered.Read(), 'e'); // 3 waiting again
    buffered.Skip(4);
    EXPECT_EQ(bufferedInner.skips, std::vector<unsigned long>{1});
}
