// Tests of CDebugPrintStream: one debug-output call per printed value in its format, and
// refused raw writes and Close.
#include "support/Streams.h"

#include <lumo/base/String.h>
#include <lumo/io/DebugPrintStream.h>
#include <vela/Debug.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using lumo::base::CString;
using lumo::io::CDebugPrintStream;
using lumo::io::CIOException;
using lumotest::ExpectThrowWith;

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
    out.Print('c');
    out.Print("text");
    out.Print(static_cast<char const*>(nullptr));
    out.Print(CString("cs"));
    EXPECT_EQ(capture.pieces, (std::vector<std::string>{"true", "-3", "-7", "lu", "1.500000", "0",
                                                        "-1717986918", "c", "text", "cs"}));

    capture.pieces.clear();
    out.Println(false);
    out.Println(short(5));
    out.Println(6L);
    out.Println(7ul);
    out.Println(0.5f);
    out.Println(0.25);
    out.Println('d');
    out.Println("line");
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
