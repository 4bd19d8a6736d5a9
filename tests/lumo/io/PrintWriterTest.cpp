// Tests of CPrintWriter: the value formats, line ends and autoflush, construction and
// Close.
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/OutputStreamWriter.h>
#include <lumo/io/PrintWriter.h>

#include "support/CharStreams.h"

#include <gtest/gtest.h>

#include <string>

using lumo::base::CRef;
using lumo::base::CString;
using lumo::base::CUnicodeString;
using lumo::io::CPrintWriter;
using lumo::io::CWriter;
using lumotest::ArrayWriter;
using lumotest::IOErrorOf;

TEST(PrintWriterTest, Formats) {
    ArrayWriter sink;
    CPrintWriter p(&sink, false);
    p.Print(true);
    p.Print(false);
    p.Print(static_cast<short>(-3));
    p.Print(7L);
    p.Print(4000000000UL);
    p.Print(1.5f);
    p.Print(' ');
    p.Print(-2.25);
    EXPECT_EQ(u"truefalse-374000000000"
              u"1.500000 -2.250000",
              sink.text);

    sink.text.clear();
    p.Print('A');
    p.Print(static_cast<char>(0xE9));
    p.Print(static_cast<unsigned short>(0x20AC));
    p.Print("h\xC3\xA9\xF0\x9F\x98\x80|a\xFF"
            "b");
    p.Print(static_cast<char const*>(nullptr));
    p.Print(CString("cs"));
    p.Print(CUnicodeString("us"));
    unsigned short const raw[] = {'r', 0xD800, 0};
    p.Print(raw);
    EXPECT_EQ(u"A\uFFFD\u20ACh\u00E9\U0001F600|a\uFFFDbcsusr\xD800", sink.text);

    sink.text.clear();
    p.PrintUnsignedChar(200);
    p.PrintUnsignedShort(65535);
    p.PrintInt(-5);
    p.PrintUnsignedInt(4000000000u);
    EXPECT_EQ(u"20065535-54000000000", sink.text);

    // No digit is lost to the formatting buffer.
    sink.text.clear();
    p.Print(1e300);
    EXPECT_EQ(308u, sink.text.size());
    EXPECT_EQ(u".000000", sink.text.substr(301));
}

TEST(PrintWriterTest, LineEndsAndAutoFlush) {
    ArrayWriter sink;
    CPrintWriter p(&sink, true);
    p.Print(1L);
    EXPECT_EQ(0, sink.flushes);
    p.Println(2L);
    EXPECT_EQ(1, sink.flushes);
    p.Println();
    p.Println("x");
    p.PrintlnInt(3);
    p.Println(static_cast<unsigned short>('y'));
    EXPECT_EQ(u"12\r\n\r\nx\r\n3\r\ny\r\n", sink.text);
    EXPECT_EQ(5, sink.flushes);

    ArrayWriter quiet;
    CPrintWriter q(&quiet, false);
    q.Println(true);
    EXPECT_EQ(0, quiet.flushes);
    q.Flush();
    EXPECT_EQ(1, quiet.flushes);

    // Through an encoder into bytes.
    lumo::io::CMemoryOutputStream bytes;
    lumo::io::COutputStreamWriter encoder(&bytes, "UTF-8");
    CPrintWriter r(&encoder, false);
    r.Print(static_cast<unsigned short>(0x20AC));
    r.Println(0.5);
    r.Close();
    EXPECT_EQ("\xE2\x82\xAC"
              "0.500000\r\n",
              std::string(bytes.GetBuffer(), bytes.GetBufferSize()));
}

TEST(PrintWriterTest, ConstructionAndClose) {
    EXPECT_EQ("Invalid writer.", lumotest::ArgumentErrorOf([] {
                  CPrintWriter p(static_cast<CWriter*>(nullptr), false);
              }));
    EXPECT_THROW(CPrintWriter(CRef<CWriter>(), true), lumo::base::CIllegalArgumentException);

    ArrayWriter sink;
    CPrintWriter p(&sink, false);
    p.Close();
    EXPECT_TRUE(sink.closed);
    p.Close();
    EXPECT_EQ("Writer closed.", IOErrorOf([&] { p.Print(1L); }));
    EXPECT_EQ("Writer closed.", IOErrorOf([&] { p.Print("x"); }));
    EXPECT_EQ("Writer closed.", IOErrorOf([&] { p.Println(); }));
    lumotest::ExpectWriterClosed(p);
    EXPECT_TRUE(sink.text.empty());
}
