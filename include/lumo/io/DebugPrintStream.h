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
    /// An open stream; nothing to wrap.
    CDebugPrintStream();
    ~CDebugPrintStream() override;

    /// Refused: CIOException "Unsupported on class CDebugPrintStream." (or "Stream closed." after
    /// Close).
    ///@{
    void Write(char const* buf, unsigned long off, unsigned long len) override;
    void Write(char const* buf, unsigned long len) override;
    void Write(char c) override;
    ///@}
    /// Nothing to flush; CIOException "Stream closed." after Close.
    void Flush() override;
    /// Closes the stream; later operations throw "Stream closed.". Closing again does nothing.
    void Close() override;

    /// "true" or "false".
    void Print(bool value) override;
    /// "%d".
    void Print(short value) override;
    /// "%ld".
    void Print(long value) override;
    /// The letters "lu"; the value is not printed.
    void Print(unsigned long value) override;
    /// "%f".
    void Print(float value) override;
    /// The low 32 bits of the value's IEEE bits as a signed decimal ("%ld").
    void Print(double value) override;
    /// "%c".
    void Print(char value) override;
    /// The text; null prints nothing.
    void Print(char const* value) override;
    /// The text.
    void Print(base::CString const& value) override;

    /// The value and "\n" in one call: "true" or "false", "%d", "%ld", "%lu", "%f", "%lf", "%c".
    ///@{
    void Println(bool value) override;
    void Println(short value) override;
    void Println(long value) override;
    void Println(unsigned long value) override;
    void Println(float value) override;
    void Println(double value) override;
    void Println(char value) override;
    ///@}
    /// Prints only a non-empty text.
    void Println(char const* value) override;
    /// The text and "\n".
    void Println(base::CString const& value) override;
    /// "\n".
    void Println() override;

private:
    void CheckDebugOpen() const;

    bool m_open;
};

} // namespace io
} // namespace lumo

#endif
