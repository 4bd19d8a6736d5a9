// CPrintStream: formats numbers into a scratch buffer without allocating, prints texts
// as their bytes, and writes the line separator with optional autoflush.
#include <lumo/io/PrintStream.h>

#include <lumo/io/IOException.h>
#include <vela/Ucs.h>

#include <cstdio>
#include <cstring>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/PrintStream";
} // namespace

LUMO_DEFINE_CLASS(CPrintStream, "lumo::io::CPrintStream", "lumo::io::COutputStream");

CPrintStream::CPrintStream(COutputStream* out, bool autoFlush)
    : m_out(out), m_autoFlush(autoFlush), m_scratch(), m_lineSeparator(Vela::EOL) {
    if (m_out.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid output stream.");
}

CPrintStream::CPrintStream(base::CRef<COutputStream> const& out, bool autoFlush)
    : m_out(out), m_autoFlush(autoFlush), m_scratch(), m_lineSeparator(Vela::EOL) {
    if (m_out.Get() == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid output stream.");
}

CPrintStream::CPrintStream() : m_autoFlush(false), m_scratch(), m_lineSeparator(Vela::EOL) {}

CPrintStream::~CPrintStream() = default;

void CPrintStream::CheckOpen() const {
    if (!m_out.IsOpen())
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

void CPrintStream::WriteNewLine() {
    CheckOpen();
    m_out->Write(static_cast<char const*>(m_lineSeparator), m_lineSeparator.GetLength());
    if (m_autoFlush)
        m_out->Flush();
}

void CPrintStream::Write(char const* buf, unsigned long off, unsigned long len) {
    CheckOpen();
    m_out->Write(buf, off, len);
}

void CPrintStream::Write(char const* buf, unsigned long len) {
    CheckOpen();
    m_out->Write(buf, len);
}

void CPrintStream::Write(char c) {
    CheckOpen();
    m_out->Write(c);
}

void CPrintStream::Flush() {
    CheckOpen();
    m_out->Flush();
}

void CPrintStream::Close() {
    m_out.Close();
}

void CPrintStream::PrintScratch(int length) {
    if (length < 0)
        length = 0;
    if (static_cast<std::size_t>(length) >= sizeof m_scratch)
        length = static_cast<int>(sizeof m_scratch) - 1;
    Write(m_scratch, static_cast<unsigned long>(length));
}

void CPrintStream::Print(bool value) {
    if (value)
        Write("true", 4);
    else
        Write("false", 5);
}

void CPrintStream::Print(short value) {
    PrintScratch(std::snprintf(m_scratch, sizeof m_scratch, "%hd", value));
}

void CPrintStream::Print(long value) {
    PrintScratch(std::snprintf(m_scratch, sizeof m_scratch, "%ld", value));
}

void CPrintStream::Print(unsigned long value) {
    PrintScratch(std::snprintf(m_scratch, sizeof m_scratch, "%lu", value));
}

void CPrintStream::Print(float value) {
    PrintScratch(std::snprintf(m_scratch, sizeof m_scratch, "%g", static_cast<double>(value)));
}

void CPrintStream::Print(double value) {
    PrintScratch(std::snprintf(m_scratch, sizeof m_scratch, "%lg", value));
}

void CPrintStream::Print(char value) {
    m_scratch[0] = value;
    Write(m_scratch, 1);
}

void CPrintStream::Print(char const* value) {
    if (value == nullptr)
        return;
    Write(value, std::strlen(value));
}

void CPrintStream::Print(base::CString const& value) {
    Write(static_cast<char const*>(value), value.GetLength());
}

void CPrintStream::Println(bool value) {
    Print(value);
    WriteNewLine();
}

void CPrintStream::Println(short value) {
    Print(value);
    WriteNewLine();
}

void CPrintStream::Println(long value) {
    Print(value);
    WriteNewLine();
}

void CPrintStream::Println(unsigned long value) {
    Print(value);
    WriteNewLine();
}

void CPrintStream::Println(float value) {
    Print(value);
    WriteNewLine();
}

void CPrintStream::Println(double value) {
    Print(value);
    WriteNewLine();
}

void CPrintStream::Println(char value) {
    Print(value);
    WriteNewLine();
}

void CPrintStream::Println(char const* value) {
    Print(value);
    WriteNewLine();
}

void CPrintStream::Println(base::CString const& value) {
    Print(value);
    WriteNewLine();
}

void CPrintStream::Println() {
    WriteNewLine();
}

} // namespace io
} // namespace lumo
