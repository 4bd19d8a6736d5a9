// CPrintStream: writes the text form of values (numbers, booleans, strings) to the
// wrapped byte stream, with a settable line separator and optional autoflush.
#ifndef LUMO_IO_PRINTSTREAM_H
#define LUMO_IO_PRINTSTREAM_H

#include <lumo/base/Ref.h>
#include <lumo/base/String.h>
#include <lumo/io/OutputStream.h>
#include <lumo/io/detail/WrappedStream.h>

namespace lumo {
namespace io {

/// Writes the text form of values to the wrapped stream: "%hd", "%ld", "%lu", "%g"
/// for float and double, true/false for bool, strings as their bytes. Println adds the
/// line separator (the platform's end of line unless changed), and with autoflush
/// flushes the wrapped stream after it. The raw-pointer form borrows the wrapped
/// stream, the CRef form shares it. Every operation throws CIOException "Stream
/// closed." after Close.
class LUMO_API CPrintStream : public COutputStream {
    LUMO_DECLARE_CLASS(CPrintStream);

public:
    /// A null stream throws CIllegalArgumentException "Invalid output stream.".
    CPrintStream(COutputStream* out, bool autoFlush);
    /// Shares `out`; a null reference throws CIllegalArgumentException "Invalid output stream.".
    CPrintStream(base::CRef<COutputStream> const& out, bool autoFlush);
    ~CPrintStream() override;

    void Write(char const* buf, unsigned long off, unsigned long len) override;
    void Write(char const* buf, unsigned long len) override;
    void Write(char c) override;
    void Flush() override;
    /// Closes the wrapped stream; a second Close does nothing.
    void Close() override;

    /// The value's text: "true" or "false", "%hd", "%ld", "%lu", "%g" for float and double, one
    /// byte for a char.
    ///@{
    virtual void Print(bool value);
    virtual void Print(short value);
    virtual void Print(long value);
    virtual void Print(unsigned long value);
    virtual void Print(float value);
    virtual void Print(double value);
    virtual void Print(char value);
    ///@}
    /// A null text prints nothing.
    ///@{
    virtual void Print(char const* value);
    virtual void Print(base::CString const& value);
    ///@}

    /// Print(value), then the line separator; with autoflush, the wrapped stream's Flush.
    ///@{
    virtual void Println(bool value);
    virtual void Println(short value);
    virtual void Println(long value);
    virtual void Println(unsigned long value);
    virtual void Println(float value);
    virtual void Println(double value);
    virtual void Println(char value);
    virtual void Println(char const* value);
    virtual void Println(base::CString const& value);
    virtual void Println();
    ///@}

    /// The text Println appends; the platform's end of line ("\n") unless changed.
    base::CString const& GetLineSeparator() const { return m_lineSeparator; }
    /// Replaces the text Println appends; an empty separator ends lines with nothing.
    void SetLineSeparator(base::CString const& separator) { m_lineSeparator = separator; }

protected:
    /// For streams that print elsewhere than to a wrapped stream.
    CPrintStream();

    /// Throws CIOException "Stream closed." after Close.
    void CheckOpen() const;
    /// Writes the line separator, then flushes the wrapped stream with autoflush.
    void WriteNewLine();

    /// The wrapped stream in either form (a shared one kept alive); null after Close and for
    /// streams that print elsewhere.
    detail::WrappedStream<COutputStream> m_out;
    /// Whether each Println flushes the wrapped stream.
    bool m_autoFlush;
    /// Numbers are formatted here, so printing allocates nothing.
    char m_scratch[64];
    /// The text Println appends.
    base::CString m_lineSeparator;

private:
    CPrintStream(CPrintStream const&);
    CPrintStream& operator=(CPrintStream const&);

    void PrintScratch(int length);
};

} // namespace io
} // namespace lumo

#endif
