// Tests of CBufferedInputStream: construction and default size, refills, large reads
// that bypass the buffer, skip, reset and close, and ownership of the wrapped stream.
#include "support/Streams.h"

#include <lumo/io/BufferedInputStream.h>
#include <lumo/io/MemoryInputStream.h>

#include <gtest/gtest.h>

#include <string>

using lumo::base::CIllegalArgumentException;
using lumo::base::CRef;
using lumo::io::CBufferedInputStream;
using lumo::io::CInputStream;
using lumo::io::CIOException;
using lumotest::ExpectThrowWith;
using lumotest::ScriptedInputStream;

namespace {
std::string Letters(std::size_t n) {
    std::string s;
    for (std::size_t i = 0; i < n; ++i)
        s.push_back(char('a' + i % 26));
    return s;
}
} // namespace

TEST(BufferedInputStream, ConstructionAndDefaultSize) {
    ExpectThrowWith<CIllegalArgumentException>(
        [] { CBufferedInputStream(static_cast<CInputStream*>(nullptr), 16); },
        "Invalid input stream.");
    ExpectThrowWith<CIllegalArgumentException>(
        [] { CBufferedInputStream(CRef<CInputStream>(), 16); }, "Invalid input stream.");

    ScriptedInputStream inner(Letters(2000));
    CBufferedInputStream in(&inner, 0);
    EXPECT_EQ(in.Read(), 'a');
    ASSERT_EQ(inner.requested.size(), 1u);
    EXPECT_EQ(inner.requested[0], 512u); // size 0 means 512 bytes
    EXPECT_EQ(in.GetAvailable(), 1999u);
    EXPECT_STREQ(in.GetClass()->GetQualifiedBaseClassName1(), "lumo::io::CInputStream");
}

TEST(BufferedInputStream, SingleReadsRefillAndEnd) {
    ScriptedInputStream inner(std::string("\x01\xFF", 2));
    CBufferedInputStream in(&inner, 16);
    EXPECT_EQ(in.Read(), 1);
    EXPECT_EQ(in.Read(), -1); // sign-extended 0xFF
    EXPECT_EQ(in.Read(), CInputStream::EOS);

    ScriptedInputStream empty("");
    CBufferedInputStream e(&empty, 16);
    EXPECT_EQ(e.Read(), CInputStream::EOS);
    char buf[10];
    EXPECT_EQ(e.Read(buf, 0, 10), 0); // the end gives 0 here, not -1
}

TEST(BufferedInputStream, BlockReadsRefillOnceAndLargeOnesBypass) {
    ScriptedInputStream inner(Letters(200), 7); // at most 7 bytes per inner read
    CBufferedInputStream in(&inner, 16);
    char buf[128] = {};
    EXPECT_EQ(in.Read(buf, 0, 3), 3); // fills 7, hands out 3
    EXPECT_EQ(std::string(buf, 3), "abc");
    EXPECT_EQ(inner.blockReads, 1);
    // 4 waiting, one refill adds at most 7 more: 4 + 7 = 11 of the 12 asked.
    EXPECT_EQ(in.Read(buf, 1, 12), 11);
    EXPECT_EQ(std::string(buf + 1, 11), "defghijklmn");
    EXPECT_EQ(inner.blockReads, 2);
    EXPECT_EQ(inner.requested[1], 16u); // the whole buffer was free for the refill

    EXPECT_EQ(in.Read(), 'o');
    EXPECT_EQ(in.Read(), 'p');
    EXPECT_EQ(in.Read(), 'q');
    EXPECT_EQ(in.Read(), 'r'); // leaves 3 waiting: s t u
    ASSERT_EQ(inner.blockReads, 3);
    // A request above the capacity goes straight to the wrapped stream; the
    // waiting bytes stay for later.
    EXPECT_EQ(in.Read(buf, 0, 100), 7);
    EXPECT_EQ(std::string(buf, 7), "vwxyzab");
    EXPECT_EQ(inner.requested.back(), 100u);
    EXPECT_EQ(in.Read(buf, 0, 3), 3);
    EXPECT_EQ(std::string(buf, 3), "stu");

    // Unwritable (null) buffers skip instead; with nothing waiting the result is the
    // wrapped stream's Skip, whose default counts what was NOT skipped.
    EXPECT_EQ(in.Read(nullptr, 0, 2), 0);
    EXPECT_EQ(in.Read(nullptr, 0, 0), 0);
    EXPECT_EQ(in.Read(), 'e');
}

TEST(BufferedInputStream, SkipResetAndClose) {
    ScriptedInputStream inner(Letters(100), 10);
    CBufferedInputStream in(&inner, 16);
    EXPECT_EQ(in.Read(), 'a'); // 9 waiting
    EXPECT_EQ(in.Skip(0), 0);
    EXPECT_EQ(in.Skip(4), 4);
    // 5 waiting are dropped, the wrapped stream's default Skip reports the count it
    // did NOT skip (0 here), so the sum is 5 + 0.
    EXPECT_EQ(in.Skip(20), 5);
    EXPECT_EQ(inner.position, 25u);
    EXPECT_EQ(in.Read(), 'z');

    in.Reset();
    EXPECT_EQ(inner.resets, 1);
    EXPECT_EQ(in.Read(), 'a');

    inner.position = 0;
    in.Close();
    EXPECT_EQ(inner.closes, 1);
    lumotest::ExpectInputClosed(in);
    EXPECT_EQ(inner.closes, 1);
}

TEST(BufferedInputStream, OwnershipOfTheWrappedStream) {
    bool destroyed = false;
    auto* borrowed = new ScriptedInputStream("abc", 100, &destroyed);
    {
        CBufferedInputStream in(borrowed, 4);
        in.Close();
    }
    EXPECT_FALSE(destroyed); // the raw-pointer form borrows
    delete borrowed;
    EXPECT_TRUE(destroyed);

    destroyed = false;
    CRef<CInputStream> shared(new ScriptedInputStream("abc", 100, &destroyed));
    {
        CBufferedInputStream in(shared, 4);
        EXPECT_EQ(shared.GetRefCount(), 2u);
        shared = nullptr;
        EXPECT_FALSE(destroyed); // kept alive by the wrapper
        EXPECT_EQ(in.Read(), 'a');
    }
    EXPECT_TRUE(destroyed);
}

// A request of exactly the capacity makes the same single wrapped read as a refill,
// whether bytes are waiting or not, and at the end gives 0.
TEST(BufferedInputStream, CapacitySizedReads) {
    ScriptedInputStream inner(Letters(40), 10);
    CBufferedInputStream in(&inner, 16);
    char buf[16] = {};
    EXPECT_EQ(in.Read(buf, 0, 16), 10); // nothing waiting
    EXPECT_EQ(std::string(buf, 10), "abcdefghij");
    EXPECT_EQ(inner.requested.back(), 16u);
    EXPECT_EQ(in.Read(), 'k');          // refills k..t
    EXPECT_EQ(in.Read(buf, 0, 16), 16); // 9 waiting and 7 of the next refill
    EXPECT_EQ(std::string(buf, 16), "lmnopqrstuvwxyza");
    EXPECT_EQ(inner.requested.back(), 16u);
    EXPECT_EQ(in.GetAvailable(), 13u); // b c d waiting, 10 more inside
    EXPECT_EQ(in.Read(buf, 0, 3), 3);
    EXPECT_EQ(in.Read(buf, 0, 16), 10);
    EXPECT_EQ(std::string(buf, 10), "efghijklmn");
    EXPECT_EQ(in.Read(buf, 0, 16), 0);
    EXPECT_EQ(in.Read(), CInputStream::EOS);
}
