// Tests of CPrintStream: the format of every overload, line ends and autoflush, and
// pass-through, close and ownership of the wrapped stream.
#include "support/Streams.h"

#include <lumo/base/String.h>
#include <lumo/io/CRLFPrintStream.h>
#include <lumo/io/PrintStream.h>
#include <vela/Ucs.h>

#include <gtest/gtest.h>

#include <string>

using lumo::base::CIllegalArgumentException;
using lumo::base::CRef;
using lumo::base::CString;
using lumo::io::CCRLFPrintStream;
using lumo::io::CIOException;
using lumo::io::COutputStream;
using lumo::io::CPrintStream;
using lumotest::ExpectThrowWith;
using lumotest::RecordingOutputStream;

TEST(PrintStream, FormatsEveryOverload) {
    RecordingOutputStream sink;
    CPrintStream out(&sink, false);
    out.Print(1.5f);
    out.Print(' ');
    out.Print(true);
    out.Print(false);
    out.Print(short(-3));
    out.Print(' ');
    out.Print(-7L);
    out.Print(' ');
    out.Print(4000000000ul);
    out.Print(' ');
    out.Print(0.1);
    out.Print(' ');
    out.Print(1e20);
    out.Print(' ');
    out.Print(static_cast<char const*>(nullptr));
    out.Print("text");
    out.Print(CString("|cs|"));
    out.Print(CString());
    EXPECT_EQ(sink.bytes, "1.5 truefalse-3 -7 4000000000 0.1 1e+20 text|cs|");
    // Each value is one block write.
    EXPECT_EQ(sink.charWrites, 0);

    sink.bytes.clear();
    out.Print('\0');
    EXPECT_EQ(sink.bytes, std::string(1, '\0'));
}

TEST(PrintStream, LineEndsAndAutoFlush) {
    RecordingOutputStream sink;
    CPrintStream out(&sink, true);
    EXPECT_STREQ(out.GetLineSeparator(), Vela::EOL);
    out.Print(1L);
    EXPECT_EQ(sink.flushes, 0); // only line ends flush
    out.Println(2L);
    EXPECT_EQ(sink.bytes, std::string("12") + Vela::EOL);
    EXPECT_EQ(sink.flushedAt, std::vector<std::size_t>{sink.bytes.size()});
    out.SetLineSeparator("<>");
    out.Println();
    out.Println("x");
    out.Println(true);
    out.Println('c');
    out.Println(short(5));
    out.Println(6ul);
    out.Println(0.5f);
    out.Println(0.25);
    out.Println(CString("s"));
    out.Println(static_cast<char const*>(nullptr));
    EXPECT_EQ(sink.bytes.substr(2 + std::string(Vela::EOL).size()),
              "<>x<>true<>c<>5<>6<>0.5<>0.25<>s<><>");
    EXPECT_EQ(sink.flushes, 11);

    RecordingOutputStream crlfSink;
    CCRLFPrintStream crlf(&crlfSink, false);
    crlf.Println(7L);
    EXPECT_EQ(crlfSink.bytes, "7\r\n");
    EXPECT_EQ(crlfSink.flushes, 0);
    EXPECT_STREQ(crlf.GetClass()->GetQualifiedBaseClassName1(), "lumo::io::CPrintStream");
}

TEST(PrintStream, PassThroughCloseAndOwnership) {
    ExpectThrowWith<CIllegalArgumentException>(
        [] { CPrintStream(static_cast<COutputStream*>(nullptr), false); },
        "Invalid output stream.");
    ExpectThrowWith<CIllegalArgumentException>(
        [] { CCRLFPrintStream(CRef<COutputStream>(), false); }, "Invalid output stream.");

    RecordingOutputStream sink;
    CPrintStream out(&sink, false);
    out.Write('a');
    out.Write("xbcx", 1, 2);
    out.Write("d", 1);
    out.Flush();
    EXPECT_EQ(sink.bytes, "abcd");
    EXPECT_EQ(sink.flushes, 1);
    out.Close();
    out.Close();
    EXPECT_EQ(sink.closes, 1);
    ExpectThrowWith<CIOException>([&] { out.Print(1L); }, "Stream closed.");
    ExpectThrowWith<CIOException>([&] { out.Println(); }, "Stream closed.");
    lumotest::ExpectOutputClosed(out);

    bool destroyed = false;
    {
        CCRLFPrintStream shared(CRef<COutputStream>(new RecordingOutputStream(&destroyed)), false);
        shared.Print("x");
    }
    EXPECT_TRUE(destroyed);
    destroyed = false;
    auto* borrowed = new RecordingOutputStream(&destroyed);
    { CPrintStream p(borrowed, false); }
    EXPECT_FALSE(destroyed);
    delete borrowed;
}
