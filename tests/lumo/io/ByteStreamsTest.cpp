// Tests of the byte streams: CInputStream's and COutputStream's default methods, the
// memory input stream, the buffered input and output streams, the pushback input stream
// and the base64 output stream (equal to OpenSSL's in any write pattern). Refills, reads
// that bypass a buffer, skip, reset, construction, ownership of the wrapped stream and
// Close for each; and one check of every byte filter's construction and ownership.
#include "support/Streams.h"

#include <lumo/io/Base64OutputStream.h>
#include <lumo/io/BufferedInputStream.h>
#include <lumo/io/BufferedOutputStream.h>
#include <lumo/io/CRLFPrintStream.h>
#include <lumo/io/DataInputStream.h>
#include <lumo/io/DataOutputStream.h>
#include <lumo/io/InputStream.h>
#include <lumo/io/JavaDataInputStream.h>
#include <lumo/io/JavaDataOutputStream.h>
#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/OutputStream.h>
#include <lumo/io/PushbackInputStream.h>

#include <gtest/gtest.h>

#include <openssl/evp.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

using lumo::base::CIllegalArgumentException;
using lumo::base::CRef;
using lumo::io::CBase64OutputStream;
using lumo::io::CBufferedInputStream;
using lumo::io::CBufferedOutputStream;
using lumo::io::CInputStream;
using lumo::io::CIOException;
using lumo::io::CMemoryInputStream;
using lumo::io::COutputStream;
using lumo::io::CPushbackInputStream;
using lumotest::ExpectThrowWith;
using lumotest::RecordingOutputStream;
using lumotest::ScriptedInputStream;

namespace {

// Only the pure operations: every other call takes the base class's default.
class CharOnlyOutputStream : public COutputStream {
public:
    void Write(char c) override { bytes.push_back(c); }
    void Flush() override {}
    void Close() override {}
    using COutputStream::Write;
    std::string bytes;
};

} // namespace

TEST(InputStream, DefaultSingleReadSignExtendsAndEndsWithEOS) {
    ScriptedInputStream in(std::string("\x41\xFF\x80", 3));
    CInputStream& base = in;
    EXPECT_EQ(base.Read(), 0x41);
    EXPECT_EQ(base.Read(), -1); // 0xFF, not the end
    EXPECT_EQ(base.Read(), -128);
    EXPECT_EQ(base.Read(), CInputStream::EOS);
    EXPECT_EQ(CInputStream::EOS, 65535);
    // Each single read went through the block slot with a length of 1.
    EXPECT_EQ(in.requested, std::vector<unsigned long>(4, 1));

    in.Reset();
    char buf[4] = {};
    EXPECT_EQ(base.Read(buf, 2), 2); // two-argument form reaches the block slot at 0
    EXPECT_EQ(std::string(buf, 2), std::string("\x41\xFF", 2));
}

TEST(InputStream, DefaultSkipReturnsTheCountNotSkipped) {
    ScriptedInputStream in("abcdefgh");
    CInputStream& base = in;
    EXPECT_EQ(base.Skip(0), 0);
    EXPECT_EQ(in.blockReads, 0);
    EXPECT_EQ(base.Skip(4), 0); // all consumed
    EXPECT_EQ(in.position, 4u);
    EXPECT_EQ(base.Skip(10), 6); // 4 left: 6 not skipped
    EXPECT_EQ(base.Read(), CInputStream::EOS);
}

TEST(OutputStream, DefaultBlockWritesGoByteByByteAndIgnoreNull) {
    CharOnlyOutputStream out;
    COutputStream& base = out;
    base.Write("xabcx", 1, 3);
    base.Write("de", 2);
    base.Write(nullptr, 5);
    base.Write(nullptr, 0, 5);
    EXPECT_EQ(out.bytes, "abcde");
    EXPECT_STREQ(out.GetClass()->GetQualifiedName(), "lumo::io::COutputStream");
    EXPECT_STREQ(CInputStream::m_classCInputStream.GetQualifiedBaseClassName1(),
                 "lumo::base::CObject");
}

TEST(MemoryInputStream, ReadsSignExtendedBytesThenEnds) {
    char const data[] = {0x41, char(0xFF), char(0x80)};
    CMemoryInputStream in(data, 3, false);
    EXPECT_EQ(in.GetAvailable(), 3u);
    EXPECT_EQ(in.Read(), 0x41);
    EXPECT_EQ(in.Read(), -1);
    EXPECT_EQ(in.Read(), -128);
    EXPECT_EQ(in.Read(), CInputStream::EOS);
    char buf[10];
    EXPECT_EQ(in.Read(buf, 10), -1);
    EXPECT_EQ(in.Read(buf, 0), 0);

    in.Reset();
    EXPECT_EQ(in.Read(buf, 1, 2), 2);
    EXPECT_EQ(buf[1], 0x41);
    EXPECT_EQ(buf[2], char(0xFF));
    EXPECT_EQ(in.Read(buf, 0, 10), 1); // only what is left
    EXPECT_EQ(buf[0], char(0x80));
    EXPECT_STREQ(in.GetClass()->GetQualifiedBaseClassName1(), "lumo::io::CInputStream");
}

TEST(MemoryInputStream, SkipReturnsTheCountSkippedAndNullBuffersSkip) {
    char const data[] = "0123456789";
    CMemoryInputStream in(data, 10, false);
    EXPECT_EQ(in.Skip(0), 0);
    EXPECT_EQ(in.Skip(6), 6);
    EXPECT_EQ(in.Skip(10), 4); // 4 were left
    EXPECT_EQ(in.Read(), CInputStream::EOS);

    in.Reset();
    EXPECT_EQ(in.Read(nullptr, 5), 5);
    EXPECT_EQ(in.Read(nullptr, 2, 0), 0);
    EXPECT_EQ(in.Read(), '5');
    EXPECT_EQ(in.Read(nullptr, 0, 99), 4);
    EXPECT_EQ(in.GetAvailable(), 0u);
}

TEST(MemoryInputStream, ConstructionAndClose) {
    ExpectThrowWith<CIllegalArgumentException>([] { CMemoryInputStream(nullptr, 3, false); },
                                               "Invalid source buffer.");

    // An owned block is freed exactly once (AddressSanitizer checks the count).
    char* owned = static_cast<char*>(std::malloc(4));
    std::memcpy(owned, "abcd", 4);
    {
        CMemoryInputStream in(owned, 4, true);
        EXPECT_EQ(in.Read(), 'a');
        in.Close();
        lumotest::ExpectInputClosed(in);
        ExpectThrowWith<CIOException>([&] { in.Reset(); }, "Stream closed.");
    }
    owned = static_cast<char*>(std::malloc(4));
    { CMemoryInputStream in(owned, 4, true); } // freed by the destructor

    char borrowed[] = "xy";
    {
        CMemoryInputStream in(borrowed, 2, false);
        in.Close();
    }
    EXPECT_EQ(borrowed[0], 'x'); // untouched, not freed
}

namespace {
std::string Letters(std::size_t n) {
    std::string s;
    for (std::size_t i = 0; i < n; ++i)
        s.push_back(char('a' + i % 26));
    return s;
}
} // namespace

TEST(BufferedInputStream, ConstructionAndDefaultSize) {
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

TEST(PushbackInputStream, Construction) {
    ScriptedInputStream inner("x");
    ExpectThrowWith<CIllegalArgumentException>([&] { CPushbackInputStream(&inner, 0); },
                                               "Invalid pushback buffer size.");
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

TEST(BufferedOutputStream, Construction) {
    RecordingOutputStream sink;
    ExpectThrowWith<CIllegalArgumentException>([&] { CBufferedOutputStream(&sink, 0); },
                                               "Invaid buffer size.");
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

namespace {
std::string OpenSslBase64(std::string const& bytes) {
    std::string out(4 * ((bytes.size() + 2) / 3) + 1, '\0');
    int const n = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(&out[0]),
                                  reinterpret_cast<unsigned char const*>(bytes.data()),
                                  static_cast<int>(bytes.size()));
    out.resize(static_cast<std::size_t>(n));
    return out;
}
} // namespace

TEST(Base64OutputStream, EncodesLikeOpenSslInAnyWritePattern) {
    std::mt19937 rng(7);
    for (std::size_t length : {0u, 1u, 2u, 3u, 4u, 5u, 100u, 767u, 768u, 769u, 5000u}) {
        std::string bytes(length, '\0');
        for (char& c : bytes)
            c = static_cast<char>(rng());
        RecordingOutputStream blockSink, charSink;
        CBase64OutputStream block(&blockSink, 0), single(&charSink, 0);
        // Block writes of varying sizes, and single bytes.
        std::size_t i = 0;
        for (std::size_t step = 1; i < length; step = step * 2 + 1) {
            std::size_t const n = std::min(step, length - i);
            block.Write(bytes.data(), i, n);
            i += n;
        }
        for (char c : bytes)
            single.Write(c);
        block.Close();
        single.Close();
        EXPECT_EQ(blockSink.bytes, OpenSslBase64(bytes)) << length;
        EXPECT_EQ(charSink.bytes, OpenSslBase64(bytes)) << length;
        EXPECT_EQ(blockSink.closes, 1);
    }
}

TEST(Base64OutputStream, LineBreaksFlushAndClose) {
    RecordingOutputStream sink;
    CBase64OutputStream out(&sink, 4);
    out.Write("Man", 3);
    EXPECT_EQ(sink.bytes, "TWFu"); // no break after the last character
    out.Write("Ma", 2);
    EXPECT_EQ(sink.bytes, "TWFu");
    out.Flush(); // ends the quantum early, padding included
    EXPECT_EQ(sink.bytes, "TWFu\r\nTWE=");
    EXPECT_EQ(sink.flushedAt, std::vector<std::size_t>{10});
    out.Write('M');
    out.Close(); // the waiting byte is encoded before the wrapped stream closes
    EXPECT_EQ(sink.bytes, "TWFu\r\nTWE=\r\nTQ==");
    EXPECT_EQ(sink.closes, 1);
    out.Close();
    EXPECT_EQ(sink.closes, 1);
    lumotest::ExpectOutputClosed(out);

    RecordingOutputStream wide;
    CBase64OutputStream unbroken(&wide, 0);
    unbroken.Write(std::string(300, 'x').data(), 300);
    unbroken.Flush();
    EXPECT_EQ(wide.bytes.size(), 400u);
    EXPECT_EQ(wide.bytes.find('\r'), std::string::npos);
}

// Every filter over a byte stream refuses a null stream, raw or shared, with its
// message; shares a stream given by CRef (deleted with the last holder, kept alive by
// the filter) and borrows one given by pointer (left to its owner).
template <class Filter, class... Args> void ExpectNullRefusedSharedKeptBorrowedLeft(Args... args) {
    constexpr bool input = std::is_base_of_v<CInputStream, Filter>;
    using Stream = std::conditional_t<input, CInputStream, COutputStream>;
    char const* const message = input ? "Invalid input stream." : "Invalid output stream.";
    SCOPED_TRACE(typeid(Filter).name());
    ExpectThrowWith<CIllegalArgumentException>(
        [&] { Filter(static_cast<Stream*>(nullptr), args...); }, message);
    ExpectThrowWith<CIllegalArgumentException>([&] { Filter(CRef<Stream>(), args...); }, message);
    bool destroyed = false;
    auto make = [&]() -> Stream* {
        if constexpr (input)
            return new ScriptedInputStream("abc", 100, &destroyed);
        else
            return new RecordingOutputStream(&destroyed);
    };
    Stream* const borrowed = make();
    { Filter f(borrowed, args...); }
    EXPECT_FALSE(destroyed);
    delete borrowed;
    destroyed = false;
    {
        CRef<Stream> shared(make());
        Filter f(shared, args...);
        shared = nullptr;
        EXPECT_FALSE(destroyed);
        if constexpr (input)
            EXPECT_EQ('a', f.Read());
        else
            f.Write('a');
    }
    EXPECT_TRUE(destroyed);
}

TEST(FilterStreams, NullRefusedSharedKeptBorrowedLeft) {
    ExpectNullRefusedSharedKeptBorrowedLeft<CBufferedInputStream>(4ul);
    ExpectNullRefusedSharedKeptBorrowedLeft<CPushbackInputStream>(2ul);
    ExpectNullRefusedSharedKeptBorrowedLeft<lumo::io::CDataInputStream>();
    ExpectNullRefusedSharedKeptBorrowedLeft<lumo::io::CJavaDataInputStream>();
    ExpectNullRefusedSharedKeptBorrowedLeft<CBufferedOutputStream>(4ul);
    ExpectNullRefusedSharedKeptBorrowedLeft<CBase64OutputStream>(76ul);
    ExpectNullRefusedSharedKeptBorrowedLeft<lumo::io::CPrintStream>(false);
    ExpectNullRefusedSharedKeptBorrowedLeft<lumo::io::CCRLFPrintStream>(false);
    ExpectNullRefusedSharedKeptBorrowedLeft<lumo::io::CDataOutputStream>();
    ExpectNullRefusedSharedKeptBorrowedLeft<lumo::io::CJavaDataOutputStream>();
}
