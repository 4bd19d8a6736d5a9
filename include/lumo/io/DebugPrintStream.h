// CDebugPrintStream: a print stream that sends each printed value to the debug output
// (Vela::DBPrintf) and refuses raw byte writes.
#ifndef LUMO_IO_DEBUGPRINTSTREAM_H
#define LUMO_IO_DEBUGPRINTSTREAM_H

#include <lumo/io/PrintStream.h>

namespace lumo {
namespace io {

/// Sends each printed value to the debug output (Vela::DBPrintf), one call per value.
/// Raw writes are refused with CIOException "Unsupported on class CDebugPrintStream.".
/// After Close every operation but Close throws "Stream closed.".
///
/// Two formats are kept as they have always been: Print(unsigned long) prints the
/// letters "lu" and not the value, and Print(double) prints the low 32 bits of the
/// value's IEEE bits as a signed decimal, as "%ld" did on the 32-bit platforms.
class LUMO_API CDebugPrintStream : public CPrintStream {
    LUMO_DECLARE_CLASS(CDebugPrintStream);

public:
    CDebugPrintStream();
    ~CDebugPrintStream() override;

    void Write(char const* buf, unsigned long off, unsigned long len) override;
    void Write(char const* buf, unsigned long len) override;
    void Write(char c) override;
    void Flush() override;
    void Close() override;

    void Print(bool value) override;
    void Print(short value) override;
    void Print(long value) override;
    void Print(unsigned long value) override;
    void Print(float value) override;
    void Print(double value) override;
    void Print(char value) override;
    void Print(char const* value) override;
    void Print(base::CString const& value) override;

    void Println(bool value) override;
    void Println(short value) override;
    void Println(long value) override;
    void Println(unsigned long value) override;
    void Println(float value) override;
    void Println(double value) override;
    void Println(char value) override;
    /// Prints only a non-empty text.
    void Println(char const* value) override;
    void Println(base::CString const& value) override;
    void Println() override;

private:
    void CheckDebugOpen() const;

    bool m_open;
};

} // namespace io
} // namespace lumo

#endif
