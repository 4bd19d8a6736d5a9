// CCRLFPrintStream: a CPrintStream whose constructors set the line separator to CR LF.
#include <lumo/io/CRLFPrintStream.h>

namespace lumo {
namespace io {

LUMO_DEFINE_CLASS(CCRLFPrintStream, "lumo::io::CCRLFPrintStream", "lumo::io::CPrintStream");

CCRLFPrintStream::CCRLFPrintStream(COutputStream* out, bool autoFlush)
    : CPrintStream(out, autoFlush) {
    m_lineSeparator = "\r\n";
}

CCRLFPrintStream::CCRLFPrintStream(base::CRef<COutputStream> const& out, bool autoFlush)
    : CPrintStream(out, autoFlush) {
    m_lineSeparator = "\r\n";
}

CCRLFPrintStream::~CCRLFPrintStream() {}

} // namespace io
} // namespace lumo
