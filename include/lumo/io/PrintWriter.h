// CPrintWriter: writes the text form of values as UTF-16 to the wrapped writer, with its
// own number formats and CR LF line ends.
#ifndef LUMO_IO_PRINTWRITER_H
#define LUMO_IO_PRINTWRITER_H

#include <lumo/base/Ref.h>
#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/io/Writer.h>
#include <lumo/io/detail/WrappedStream.h>

namespace lumo {
namespace io {

/// Writes the text form of values as UTF-16 to the wrapped writer. Its formats are
/// its own: "%d" for short, "%ld", "%lu", and "%f" / "%lf" for float and double
/// (unlike CPrintStream's "%g"). Println adds CR LF, and with autoflush flushes the
/// wrapped writer after it. 8-bit text is UTF-8; a byte that is not part of a
/// well-formed sequence prints as U+FFFD. The raw-pointer form borrows the writer,
/// the CRef form shares it. Use after Close throws CIOException "Writer closed.".
class LUMO_API CPrintWriter : public CWriter {
    LUMO_DECLARE_CLASS(CPrintWriter);

public:
    /// A null writer throws CIllegalArgumentException "Invalid writer.".
    CPrintWriter(CWriter* writer, bool autoFlush);
    /// Shares `writer`; a null reference throws CIllegalArgumentException "Invalid writer.".
    CPrintWriter(base::CRef<CWriter> const& writer, bool autoFlush);
    ~CPrintWriter() override;

    /// Not copyable.
    ///@{
    CPrintWriter(CPrintWriter const&) = delete;
    CPrintWriter& operator=(CPrintWriter const&) = delete;
    ///@}

    void Write(base::CUnicodeString const& s, unsigned long off, unsigned long len) override;
    void Write(base::CUnicodeString const& s) override;
    void Write(unsigned short const* buf, unsigned long off, unsigned long len) override;
    void Write(unsigned short const* buf, unsigned long len) override;
    void Write(unsigned short const* text) override;
    void Write(unsigned short c) override;
    void Flush() override;
    /// Closes the wrapped writer; a second Close does nothing.
    void Close() override;

    /// "true" or "false"; numbers as "%d" (short), "%ld", "%lu", "%f" (float), "%lf" (double).
    ///@{
    virtual void Print(bool value);
    virtual void Print(short value);
    virtual void Print(long value);
    virtual void Print(unsigned long value);
    virtual void Print(float value);
    virtual void Print(double value);
    ///@}
    /// One byte: an ASCII character, else U+FFFD.
    virtual void Print(char value);
    /// One UTF-16 unit.
    virtual void Print(unsigned short value);
    /// Texts print as they are; a null text prints nothing.
    ///@{
    virtual void Print(char const* value);
    virtual void Print(base::CString const& value);
    virtual void Print(base::CUnicodeString const& value);
    virtual void Print(unsigned short const* value);
    ///@}
    /// As numbers: "%d", "%hu", "%d", "%u".
    ///@{
    virtual void PrintUnsignedChar(unsigned char value);
    virtual void PrintUnsignedShort(unsigned short value);
    virtual void PrintInt(int value);
    virtual void PrintUnsignedInt(unsigned int value);
    ///@}

    /// Print(value) (or the number form of the same name), then CR LF through WriteNewLine.
    ///@{
    virtual void Println(bool value);
    virtual void Println(short value);
    virtual void Println(long value);
    virtual void Println(unsigned long value);
    virtual void Println(float value);
    virtual void Println(double value);
    virtual void Println(char value);
    virtual void Println(unsigned short value);
    virtual void Println(char const* value);
    virtual void Println(base::CString const& value);
    virtual void Println(base::CUnicodeString const& value);
    virtual void Println(unsigned short const* value);
    virtual void PrintlnUnsignedChar(unsigned char value);
    virtual void PrintlnUnsignedShort(unsigned short value);
    virtual void PrintlnInt(int value);
    virtual void PrintlnUnsignedInt(unsigned int value);
    virtual void Println();
    ///@}

protected:
    /// Throws CIOException "Writer closed." after Close.
    void CheckOpen() const;
    /// CR LF in one write, then the wrapped writer's Flush with autoflush.
    void WriteNewLine();

private:
    void PrintNumber(char const* format, ...) LUMO_PRINTF_FORMAT(2, 3);
    void PrintUtf8(char const* text, unsigned long length);

    detail::WrappedStream<CWriter> m_writer;
    bool m_autoFlush;
};

} // namespace io
} // namespace lumo

#endif
