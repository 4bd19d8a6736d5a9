// Tests of the print streams and writer: CPrintStream and CCRLFPrintStream, CPrintWriter
// and CDebugPrintStream (the format of every overload, line ends and autoflush,
// pass-through, close and ownership), and CException::Print's report layout, to a
// stream and to the debug output.
#include "support/CharStreams.h"
#include "support/Streams.h"

#include <lumo/base/Exception.h>
#include <lumo/base/String.h>
#include <lumo/io/CRLFPrintStream.h>
#include <lumo/io/DebugPrintStream.h>
#include <lumo/io/IOException.h>
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/OutputStreamWriter.h>
#include <lumo/io/PrintStream.h>
#include <lumo/io/PrintWriter.h>
#include <vela/Debug.h>
#include <vela/Ucs.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using lumo::base::CException;
using lumo::base::CIllegalArgumentException;
using lumo::base::CRef;
using lumo::base::CString;
using lumo::base::CUnicodeString;
using lumo::io::CCRLFPrintStream;
using lumo::io::CDebugPrintStream;
using lumo::io::CIOException;
using lumo::io::CMemoryOutputStream;
using lumo::io::COutputStream;
using lumo::io::CPrintStream;
using lumo::io::CPrintWriter;
using lumo::io::CWriter;
using lumotest::ArrayWriter;
using lumotest::ExpectThrowWith;
using lumotest::IOErrorOf;
using lumotest::RecordingOutputStream;

TEST(PrintStream, FormatsEveryOverload) {
    RecordingOutputStream sink;
    CPrintStream out(&sink, false);
    out.Print(1.5f), out.Print(' '), out.Print(true), out.Print(false), out.Print(short(-3)),
        out.Print(' '), out.Print(-7L), out.Print(' '), out.Print(4000000000ul), out.Print(' '),
        out.Print(0.1), out.Print(' '), out.Print(1e20), out.Print(' '),
        out.Print(static_cast<char const*>(nullptr)), out.Print("text"), out.Print(CString("|cs|")),
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
    out.SetLineSeparator("<>"), out.Println(), out.Println("x"), out.Println(true),
        out.Println('c'), out.Println(short(5)), out.Println(6ul), out.Println(0.5f),
        out.Println(0.25), out.Println(CString("s")),
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
    RecordingOutputStream sink;
    CPrintStream out(&sink, false);
    out.Write('a'), out.Write("xbcx", 1, 2), out.Write("d", 1), out.Flush();
    EXPECT_EQ(sink.bytes, "abcd");
    EXPECT_EQ(sink.flushes, 1);
    out.Close();
    out.Close();
    EXPECT_EQ(sink.closes, 1);
    ExpectThrowWith<CIOException>([&] { out.Print(1L); }, "Stream closed.");
    ExpectThrowWith<CIOException>([&] { out.Println(); }, "Stream closed.");
    lumotest::ExpectOutputClosed(out);
}

TEST(PrintWriterTest, Formats) {
    ArrayWriter sink;
    CPrintWriter p(&sink, false);
    p.Print(true), p.Print(false), p.Print(static_cast<short>(-3)), p.Print(7L),
        p.Print(4000000000UL), p.Print(1.5f), p.Print(' '), p.Print(-2.25);
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
    p.PrintUnsignedChar(200), p.PrintUnsignedShort(65535), p.PrintInt(-5),
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
    p.Println(), p.Println("x"), p.PrintlnInt(3), p.Println(static_cast<unsigned short>('y'));
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

TEST(PrintWriterTest, Close) {
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

namespace {

// Collects each DBPrintf call as one piece.
class DebugCapture {
public:
    DebugCapture() { Vela::DBSetOutput(&Collect, this); }
    ~DebugCapture() { Vela::DBSetOutput(nullptr, nullptr); }
    std::vector<std::string> pieces;

private:
    static void Collect(char const* text, void* self) {
        static_cast<DebugCapture*>(self)->pieces.push_back(text);
    }
};

} // namespace

TEST(DebugPrintStream, OneDebugCallPerValueWithItsFormat) {
    DebugCapture capture;
    CDebugPrintStream out;
    out.Print(true);
    out.Print(short(-3));
    out.Print(-7L);
    out.Print(42ul); // "lu": the letters, not the value
    out.Print(1.5f); // "%f"
    out.Print(1.5);  // "%ld" of the low 32 bits of the double's bits: 0
    out.Print(-0.1); // 0xBFB999999999999A: low word 0x9999999A
    out.Print('c'), out.Print("text"), out.Print(static_cast<char const*>(nullptr)),
        out.Print(CString("cs"));
    EXPECT_EQ(capture.pieces, (std::vector<std::string>{"true", "-3", "-7", "lu", "1.500000", "0",
                                                        "-1717986918", "c", "text", "cs"}));

    capture.pieces.clear();
    out.Println(false), out.Println(short(5)), out.Println(6L), out.Println(7ul), out.Println(0.5f),
        out.Println(0.25), out.Println('d'), out.Println("line");
    out.Println(""); // nothing for an empty text
    out.Println(static_cast<char const*>(nullptr));
    out.Println(CString("s"));
    out.Println();
    EXPECT_EQ(capture.pieces,
              (std::vector<std::string>{"false\n", "5\n", "6\n", "7\n", "0.500000\n", "0.250000\n",
                                        "d\n", "line\n", "s\n", "\n"}));
    EXPECT_STREQ(out.GetClass()->GetQualifiedBaseClassName1(), "lumo::io::CPrintStream");
}

TEST(DebugPrintStream, RefusesWritesAndCloses) {
    DebugCapture capture;
    CDebugPrintStream out;
    ExpectThrowWith<CIOException>([&] { out.Write('a'); },
                                  "Unsupported on class CDebugPrintStream.");
    ExpectThrowWith<CIOException>([&] { out.Write("ab", 2); },
                                  "Unsupported on class CDebugPrintStream.");
    ExpectThrowWith<CIOException>([&] { out.Write("ab", 0, 2); },
                                  "Unsupported on class CDebugPrintStream.");
    out.Flush();
    out.Close();
    out.Close(); // never throws
    ExpectThrowWith<CIOException>([&] { out.Print(1L); }, "Stream closed.");
    ExpectThrowWith<CIOException>([&] { out.Println(); }, "Stream closed.");
    lumotest::ExpectOutputClosed(out);
    EXPECT_TRUE(capture.pieces.empty());
}

namespace {

std::string const kHeader =
    "--- Exception occured ----------------------------------------------------------\r\n";
std::string const kDetails =
    "--- Details --------------------------------------------------------------------\r\n";

std::string Report(CException const& e) {
    CMemoryOutputStream memory;
    CCRLFPrintStream out(&memory, false);
    e.Print(out);
    return std::string(memory.GetBuffer() == nullptr ? "" : memory.GetBuffer(),
                       memory.GetBufferSize());
}

void Collect(char const* text, void* sink) {
    *static_cast<std::string*>(sink) += text;
}

} // namespace

TEST(ExceptionPrint, ReportLayout) {
    EXPECT_EQ(kHeader.size(), 82u); // 80 characters and the line end
    EXPECT_EQ(kDetails.size(), 82u);

    EXPECT_EQ(Report(CException(nullptr, 0, nullptr, nullptr)),
              kHeader + "\tlumo::base::CException\r\n");

    EXPECT_EQ(Report(lumo::io::CIOException("lumo/io/Unit", 123, "Stream closed.", "details")),
              kHeader + "\tlumo::io::CIOException\r\n" + kDetails + "\tLocation :\r\n" +
                  "\t\tlumo/io/Unit(123)\r\n" + "\tError description :\r\n" +
                  "\t\tStream closed.\r\n" + "\tMessage : \r\n" + "\t\tdetails\r\n");

    // A line of 0, or no file, means no location; the heading still comes for a
    // description or message.
    EXPECT_EQ(Report(CException("file", 0, nullptr, "m")),
              kHeader + "\tlumo::base::CException\r\n" + kDetails + "\tMessage : \r\n\t\tm\r\n");
    EXPECT_EQ(Report(lumo::base::CIllegalArgumentException(nullptr, 9, "Bad.")),
              kHeader + "\tlumo::base::CIllegalArgumentException\r\n" + kDetails +
                  "\tError description :\r\n\t\tBad.\r\n");
    EXPECT_EQ(Report(CException("f", 4, nullptr, "")), // an empty message is none
              kHeader + "\tlumo::base::CException\r\n" + kDetails + "\tLocation :\r\n\t\tf(4)\r\n");
    // The line prints as a signed 32-bit number.
    EXPECT_NE(Report(CException("f", 0xFFFFFFFFul, nullptr, nullptr)).find("\t\tf(-1)\r\n"),
              std::string::npos);
}

TEST(ExceptionPrint, ToTheDebugOutput) {
    std::string captured;
    Vela::DBSetOutput(&Collect, &captured);
    lumo::io::CDebugPrintStream debug;
    CException("u", 7, "D.", nullptr).Print(debug);
    Vela::DBSetOutput(nullptr, nullptr);
    std::string const header(kHeader, 0, 80);
    std::string const details(kDetails, 0, 80);
    EXPECT_EQ(captured, header + "\n\tlumo::base::CException\n" + details +
                            "\n\tLocation :\n\t\tu(7)\n\tError description :\n\t\tD.\n");
}
