// Tests of CException::Print: the layout of the report, and printing it to the debug
// output.
#include <lumo/base/Exception.h>
#include <lumo/io/CRLFPrintStream.h>
#include <lumo/io/DebugPrintStream.h>
#include <lumo/io/IOException.h>
#include <lumo/io/MemoryOutputStream.h>
#include <lumo/io/PrintStream.h>
#include <vela/Debug.h>

#include <gtest/gtest.h>

#include <string>

using lumo::base::CException;
using lumo::io::CCRLFPrintStream;
using lumo::io::CMemoryOutputStream;

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
