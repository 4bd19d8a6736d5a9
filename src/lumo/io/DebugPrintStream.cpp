// CDebugPrintStream: every Print and Println formats its value and hands it to
// Vela::DBPrintf in one call; raw byte writes throw.
#include <lumo/io/DebugPrintStream.h>

#include <lumo/io/IOException.h>
#include <vela/Debug.h>

#include <cstdint>
#include <cstring>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/DebugPrintStream";
} // namespace

LUMO_DEFINE_CLASS(CDebugPrintStream, "lumo::io::CDebugPrintStream", "lumo::io::CPrintStream");

CDebugPrintStream::CDebugPrintStream() : m_open(true) {}

CDebugPrintStream::~CDebugPrintStream() {}

void CDebugPrintStream::CheckDebugOpen() const {
    if (!m_open)
        throw CIOException(kUnit, __LINE__, "Stream closed.", nullptr);
}

void CDebugPrintStream::Write(char const*, unsigned long, unsigned long) {
    CheckDebugOpen();
    throw CIOException(kUnit, __LINE__, "Unsupported on class CDebugPrintStream.", nullptr);
}

void CDebugPrintStream::Write(char const*, unsigned long) {
    CheckDebugOpen();
    throw CIOException(kUnit, __LINE__, "Unsupported on class CDebugPrintStream.", nullptr);
}

void CDebugPrintStream::Write(char) {
    CheckDebugOpen();
    throw CIOException(kUnit, __LINE__, "Unsupported on class CDebugPrintStream.", nullptr);
}

void CDebugPrintStream::Flush() {
    CheckDebugOpen();
}

void CDebugPrintStream::Close() {
    m_open = false;
}

void CDebugPrintStream::Print(bool value) {
    CheckDebugOpen();
    Vela::DBPrintf("%s", value ? "true" : "false");
}

void CDebugPrintStream::Print(short value) {
    CheckDebugOpen();
    Vela::DBPrintf("%d", value);
}

void CDebugPrintStream::Print(long value) {
    CheckDebugOpen();
    Vela::DBPrintf("%ld", value);
}

void CDebugPrintStream::Print(unsigned long value) {
    CheckDebugOpen();
    // The format has no conversion: the letters lu are printed and the value ignored.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-extra-args"
    Vela::DBPrintf("lu", value);
#pragma GCC diagnostic pop
}

void CDebugPrintStream::Print(float value) {
    CheckDebugOpen();
    Vela::DBPrintf("%f", static_cast<double>(value));
}

void CDebugPrintStream::Print(double value) {
    CheckDebugOpen();
    // "%ld" with a double read the double's low word on the 32-bit platforms; that
    // word is passed as the long it was taken for.
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    Vela::DBPrintf("%ld", static_cast<long>(static_cast<std::int32_t>(bits & 0xFFFFFFFFu)));
}

void CDebugPrintStream::Print(char value) {
    CheckDebugOpen();
    Vela::DBPrintf("%c", value);
}

void CDebugPrintStream::Print(char const* value) {
    CheckDebugOpen();
    if (value != nullptr)
        Vela::DBPrintf("%s", value);
}

void CDebugPrintStream::Print(base::CString const& value) {
    CheckDebugOpen();
    Vela::DBPrintf("%s", static_cast<char const*>(value));
}

void CDebugPrintStream::Println(bool value) {
    CheckDebugOpen();
    Vela::DBPrintf("%s\n", value ? "true" : "false");
}

void CDebugPrintStream::Println(short value) {
    CheckDebugOpen();
    Vela::DBPrintf("%d\n", value);
}

void CDebugPrintStream::Println(long value) {
    CheckDebugOpen();
    Vela::DBPrintf("%ld\n", value);
}

void CDebugPrintStream::Println(unsigned long value) {
    CheckDebugOpen();
    Vela::DBPrintf("%lu\n", value);
}

void CDebugPrintStream::Println(float value) {
    CheckDebugOpen();
    Vela::DBPrintf("%f\n", static_cast<double>(value));
}

void CDebugPrintStream::Println(double value) {
    CheckDebugOpen();
    Vela::DBPrintf("%lf\n", value);
}

void CDebugPrintStream::Println(char value) {
    CheckDebugOpen();
    Vela::DBPrintf("%c\n", value);
}

void CDebugPrintStream::Println(char const* value) {
    CheckDebugOpen();
    if (value != nullptr && *value != '\0')
        Vela::DBPrintf("%s\n", value);
}

void CDebugPrintStream::Println(base::CString const& value) {
    CheckDebugOpen();
    Vela::DBPrintf("%s\n", static_cast<char const*>(value));
}

void CDebugPrintStream::Println() {
    CheckDebugOpen();
    Vela::DBPrintf("\n");
}

} // namespace io
} // namespace lumo
