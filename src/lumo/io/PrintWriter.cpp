// CPrintWriter: formats values into a UTF-16 scratch buffer, converts 8-bit texts from
// UTF-8 (malformed bytes becoming U+FFFD) and ends lines with CR LF.
#include <lumo/io/PrintWriter.h>

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>

#include "../../vela/detail/Utf8Codec.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace lumo {
namespace io {

namespace {

namespace utf8 = Vela::detail::utf8;

char const kUnit[] = "lumo/io/PrintWriter";

// Formatted numbers fit here; only "%f" of a huge value needs the heap.
unsigned long const kScratchUnits = 256;

unsigned short const kLineEnd[] = {0x000D, 0x000A, 0};
unsigned short const kTrue[] = {'t', 'r', 'u', 'e'};
unsigned short const kFalse[] = {'f', 'a', 'l', 's', 'e'};

} // namespace

LUMO_DEFINE_CLASS(CPrintWriter, "lumo::io::CPrintWriter", "lumo::io::CWriter");

CPrintWriter::CPrintWriter(CWriter* writer, bool autoFlush)
    : m_writer(writer), m_autoFlush(autoFlush) {
    if (m_writer.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid writer.");
}

CPrintWriter::CPrintWriter(base::CRef<CWriter> const& writer, bool autoFlush)
    : m_writer(writer), m_autoFlush(autoFlush) {
    if (m_writer.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid writer.");
}

CPrintWriter::~CPrintWriter() = default;

void CPrintWriter::CheckOpen() const {
    if (!m_writer.IsOpen())
        throw CIOException(kUnit, __LINE__, "Writer closed.", nullptr);
}

void CPrintWriter::WriteNewLine() {
    // A closed print writer has no writer left to hand the line end to.
    CheckOpen();
    m_writer->Write(kLineEnd);
    if (m_autoFlush)
        m_writer->Flush();
}

void CPrintWriter::PrintNumber(char const* format, ...) {
    CheckOpen();
    char scratch[kScratchUnits];
    va_list args;
    va_start(args, format);
    int length = std::vsnprintf(scratch, sizeof scratch, format, args);
    va_end(args);
    if (length < 0)
        return;
    char* text = scratch;
    if (static_cast<unsigned long>(length) >= sizeof scratch) {
        text = static_cast<char*>(std::malloc(static_cast<std::size_t>(length) + 1));
        if (text == nullptr)
            throw base::CMemoryException(kUnit, __LINE__);
        va_start(args, format);
        length = std::vsnprintf(text, static_cast<std::size_t>(length) + 1, format, args);
        va_end(args);
    }
    unsigned short units[kScratchUnits];
    unsigned long const n = static_cast<unsigned long>(length);
    try {
        // Numbers are ASCII; widen in pieces so a long one needs no second block.
        for (unsigned long done = 0; done < n;) {
            unsigned long piece = n - done < kScratchUnits ? n - done : kScratchUnits;
            for (unsigned long i = 0; i < piece; ++i)
                units[i] = static_cast<unsigned char>(text[done + i]);
            m_writer->Write(units, 0, piece);
            done += piece;
        }
    } catch (...) {
        if (text != scratch)
            std::free(text);
        throw;
    }
    if (text != scratch)
        std::free(text);
}

void CPrintWriter::PrintUtf8(char const* text, unsigned long length) {
    CheckOpen();
    // Malformed bytes become U+FFFD, one per byte; the units go out a scratch buffer
    // at a time.
    unsigned short units[kScratchUnits];
    auto const* p = utf8::Bytes(text);
    auto const* const end = p + length;
    while (p < end) {
        utf8::DecodeResult const step =
            utf8::Decode<utf8::StrictReplace>(p, end, units, kScratchUnits);
        m_writer->Write(units, 0, static_cast<unsigned long>(step.units));
        p += step.bytes;
    }
}

void CPrintWriter::Write(unsigned short const* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    m_writer->Write(buf, off, len);
}

void CPrintWriter::Write(unsigned short const* buf, unsigned long len) {
    Write(buf, 0, len);
}

void CPrintWriter::Write(unsigned short const* text) {
    CheckOpen();
    m_writer->Write(text);
}

void CPrintWriter::Write(base::CUnicodeString const& s, unsigned long off, unsigned long len) {
    CheckOpen();
    m_writer->Write(s, off, len);
}

void CPrintWriter::Write(base::CUnicodeString const& s) {
    CheckOpen();
    m_writer->Write(s);
}

void CPrintWriter::Write(unsigned short c) {
    CheckOpen();
    m_writer->Write(c);
}

void CPrintWriter::Flush() {
    CheckOpen();
    m_writer->Flush();
}

void CPrintWriter::Close() {
    m_writer.Close();
}

void CPrintWriter::Print(bool value) {
    CheckOpen();
    if (value)
        m_writer->Write(kTrue, 0, 4);
    else
        m_writer->Write(kFalse, 0, 5);
}

void CPrintWriter::Print(short value) {
    PrintNumber("%d", value);
}
void CPrintWriter::Print(long value) {
    PrintNumber("%ld", value);
}
void CPrintWriter::Print(unsigned long value) {
    PrintNumber("%lu", value);
}
void CPrintWriter::Print(float value) {
    PrintNumber("%f", static_cast<double>(value));
}
void CPrintWriter::Print(double value) {
    PrintNumber("%lf", value);
}

void CPrintWriter::Print(char value) {
    CheckOpen();
    unsigned char const byte = static_cast<unsigned char>(value);
    m_writer->Write(static_cast<unsigned short>(byte < 0x80 ? byte : 0xFFFD));
}

void CPrintWriter::Print(unsigned short value) {
    CheckOpen();
    m_writer->Write(value);
}

void CPrintWriter::Print(char const* value) {
    CheckOpen();
    if (value != nullptr)
        PrintUtf8(value, static_cast<unsigned long>(std::strlen(value)));
}

void CPrintWriter::Print(base::CString const& value) {
    PrintUtf8(static_cast<char const*>(value), value.GetLength());
}

void CPrintWriter::Print(base::CUnicodeString const& value) {
    CheckOpen();
    if (!value.IsEmpty())
        m_writer->Write(static_cast<unsigned short const*>(value), 0, value.GetLength());
}

void CPrintWriter::Print(unsigned short const* value) {
    CheckOpen();
    if (value != nullptr)
        m_writer->Write(value);
}

void CPrintWriter::PrintUnsignedChar(unsigned char value) {
    PrintNumber("%d", value);
}
void CPrintWriter::PrintUnsignedShort(unsigned short value) {
    PrintNumber("%hu", value);
}
void CPrintWriter::PrintInt(int value) {
    PrintNumber("%d", value);
}
void CPrintWriter::PrintUnsignedInt(unsigned int value) {
    PrintNumber("%u", value);
}

void CPrintWriter::Println(bool value) {
    Print(value);
    WriteNewLine();
}
void CPrintWriter::Println(short value) {
    Print(value);
    WriteNewLine();
}
void CPrintWriter::Println(long value) {
    Print(value);
    WriteNewLine();
}
void CPrintWriter::Println(unsigned long value) {
    Print(value);
    WriteNewLine();
}
void CPrintWriter::Println(float value) {
    Print(value);
    WriteNewLine();
}
void CPrintWriter::Println(double value) {
    Print(value);
    WriteNewLine();
}
void CPrintWriter::Println(char value) {
    Print(value);
    WriteNewLine();
}
void CPrintWriter::Println(unsigned short value) {
    Print(value);
    WriteNewLine();
}
void CPrintWriter::Println(char const* value) {
    Print(value);
    WriteNewLine();
}
void CPrintWriter::Println(base::CString const& value) {
    Print(value);
    WriteNewLine();
}
void CPrintWriter::Println(base::CUnicodeString const& value) {
    Print(value);
    WriteNewLine();
}
void CPrintWriter::Println(unsigned short const* value) {
    Print(value);
    WriteNewLine();
}
void CPrintWriter::PrintlnUnsignedChar(unsigned char value) {
    PrintUnsignedChar(value);
    WriteNewLine();
}
void CPrintWriter::PrintlnUnsignedShort(unsigned short value) {
    PrintUnsignedShort(value);
    WriteNewLine();
}
void CPrintWriter::PrintlnInt(int value) {
    PrintInt(value);
    WriteNewLine();
}
void CPrintWriter::PrintlnUnsignedInt(unsigned int value) {
    PrintUnsignedInt(value);
    WriteNewLine();
}
void CPrintWriter::Println() {
    WriteNewLine();
}

} // namespace io
} // namespace lumo
