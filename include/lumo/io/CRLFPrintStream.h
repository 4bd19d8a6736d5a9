// CCRLFPrintStream: a print stream whose lines end in CR LF on every platform.
#ifndef LUMO_IO_CRLFPRINTSTREAM_H
#define LUMO_IO_CRLFPRINTSTREAM_H

#include <lumo/io/PrintStream.h>

namespace lumo {
namespace io {

/// A print stream whose lines end in CR LF on every platform.
class LUMO_API CCRLFPrintStream : public CPrintStream {
    LUMO_DECLARE_CLASS(CCRLFPrintStream);

public:
    /// As CPrintStream's constructors (a null stream throws CIllegalArgumentException "Invalid
    /// output stream."), with CR LF as the line separator.
    ///@{
    CCRLFPrintStream(COutputStream* out, bool autoFlush);
    CCRLFPrintStream(base::CRef<COutputStream> const& out, bool autoFlush);
    ///@}
    ~CCRLFPrintStream() override;
};

} // namespace io
} // namespace lumo

#endif
