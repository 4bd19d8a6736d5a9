// Tests of the UTF-16 character streams: CReader's and CWriter's default methods, the
// buffered reader and writer, the pushback reader, and COutputStreamWriter (encoded
// bytes buffered, surrogate pairs across writes). Construction, ownership of the
// wrapped stream and Close for each, the first two in one check of every character
// filter (the print writer too).
#include "support/CharStreams.h"
#include "support/Streams.h"

#include <lumo/io/BufferedReader.h>
#include <lumo/io/BufferedWriter.h>
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/OutputStreamWriter.h>
#include <lumo/io/PrintWriter.h>
#include <lumo/io/PushbackReader.h>
#include <lumo/io/UnsupportedEncodingException.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

using lumo::base::CRef;
using lumo::base::CUnicodeString;
using lumo::io::CBufferedReader;
using lumo::io::CBufferedWriter;
using lumo::io::COutputStream;
using lumo::io::COutputStreamWriter;
using lumo::io::CPushbackReader;
using lumo::io::CReader;
using lumo::io::CWriter;
using lumotest::ArgumentErrorOf;
using lumotest::ArrayReader;
using lumotest::ArrayWriter;
using lumotest::IcuUtf8;
using lumotest::IOErrorOf;
using lumotest::RecordingOutputStream;
using lumotest::ToU16;

TEST(ReaderTest, DefaultsGoThroughTheBlockRead) {
    EXPECT_EQ(1048575, lumo::io::CReader::EOS);
    ArrayReader r(u"a\xFFFF\x8000xyz");
    EXPECT_TRUE(r.IsInstanceOf(&lumo::io::CReader::m_classCReader));
    EXPECT_EQ('a', r.Read());
    // Units come back zero-extended: 0xFFFF is a unit, not the end.
    EXPECT_EQ(65535, r.Read());
    EXPECT_EQ(0x8000, r.Read());
    unsigned short buf[8];
    EXPECT_EQ(2, r.Read(buf, 2));
    EXPECT_EQ('x', buf[0]);
    // Skip answers how many units were NOT skipped.
    EXPECT_EQ(4, r.Skip(5));
    EXPECT_EQ(0, r.Skip(0));
    EXPECT_EQ(lumo::io::CReader::EOS, r.Read());
    EXPECT_EQ(-1, r.Read(buf, 8));
    r.Reset();
    EXPECT_EQ(0, r.Skip(3));
    EXPECT_EQ('x', r.Read());
}

TEST(WriterTest, DefaultsGoThroughTheBlockWrite) {
    ArrayWriter w;
    unsigned short const text[] = {'h', 'i', 0};
    w.Write(text);
    w.Write(static_cast<unsigned short const*>(nullptr));
    w.Write(static_cast<unsigned short>(0xFFFF));
    w.Write(text, 1);
    CUnicodeString const s("abcdef");
    w.Write(s);
    w.Write(s, 4, 10); // cut to the end
    w.Write(s, 6, 1);  // at the end: nothing
    w.Write(CUnicodeString());
    w.Write(CUnicodeString(), 0, 5);
    EXPECT_EQ(u"hi\xFFFFh"
              u"abcdefef",
              w.text);
    EXPECT_EQ((std::vector<unsigned long>{2, 1, 1, 6, 2}), w.blockWrites);
}

// Every filter over a reader or writer refuses a null one, raw or shared, with its
// message; shares one given by CRef (deleted with the last holder, kept alive by the
// filter) and borrows one given by pointer (left to its owner).
template <class Filter, class... Args> void ExpectNullRefusedSharedKeptBorrowedLeft(Args... args) {
    constexpr bool reader = std::is_base_of_v<CReader, Filter>;
    using Inner = std::conditional_t<reader, CReader, CWriter>;
    using Double = std::conditional_t<reader, ArrayReader, ArrayWriter>;
    std::string const message = reader ? "Invalid reader." : "Invalid writer.";
    SCOPED_TRACE(typeid(Filter).name());
    EXPECT_EQ(message, ArgumentErrorOf([&] { Filter(static_cast<Inner*>(nullptr), args...); }));
    EXPECT_EQ(message, ArgumentErrorOf([&] { Filter(CRef<Inner>(), args...); }));
    int destroyed = 0;
    auto make = [&] {
        Double* d;
        if constexpr (reader)
            d = new ArrayReader(u"abc");
        else
            d = new ArrayWriter;
        d->destroyed = &destroyed;
        return d;
    };
    Double* const borrowed = make();
    { Filter f(borrowed, args...); }
    EXPECT_EQ(0, destroyed);
    delete borrowed;
    destroyed = 0;
    {
        CRef<Inner> shared(make());
        Filter f(shared, args...);
        shared = nullptr;
        EXPECT_EQ(0, destroyed);
        if constexpr (reader)
            EXPECT_EQ('a', f.Read());
        else
            f.Write(static_cast<unsigned short>('a'));
    }
    EXPECT_EQ(1, destroyed);
}

TEST(CharFilters, ConstructionAndOwnership) {
    ArrayReader source(u"x");
    ArrayWriter sink;
    EXPECT_EQ("Invalid buffer size.", ArgumentErrorOf([&] { CBufferedReader r(&source, 0); }));
    EXPECT_EQ("Invalid pushback buffer size.",
              ArgumentErrorOf([&] { CPushbackReader r(&source, 0); }));
    EXPECT_EQ("Invalid buffer size.", ArgumentErrorOf([&] { CBufferedWriter w(&sink, 0); }));
    ExpectNullRefusedSharedKeptBorrowedLeft<CBufferedReader>(2ul);
    ExpectNullRefusedSharedKeptBorrowedLeft<CPushbackReader>(1ul);
    ExpectNullRefusedSharedKeptBorrowedLeft<CBufferedWriter>(4ul);
    ExpectNullRefusedSharedKeptBorrowedLeft<lumo::io::CPrintWriter>(false);
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
