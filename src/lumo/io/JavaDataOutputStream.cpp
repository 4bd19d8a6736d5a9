// CJavaDataOutputStream: WriteString writes a 16-bit big-endian byte count before the
// UTF-8 bytes and refuses texts whose UTF-8 form exceeds 65535 bytes.
#include <lumo/io/JavaDataOutputStream.h>

#include <lumo/io/IOException.h>

namespace lumo {
namespace io {

namespace {
char const kUnit[] = "lumo/io/JavaDataOutputStream";
} // namespace

LUMO_DEFINE_CLASS(CJavaDataOutputStream, "lumo::io::CJavaDataOutputStream",
                  "lumo::io::CDataOutputStream");

CJavaDataOutputStream::CJavaDataOutputStream(COutputStream* out) : CDataOutputStream(out) {}

CJavaDataOutputStream::CJavaDataOutputStream(base::CRef<COutputStream> const& out)
    : CDataOutputStream(out) {}

CJavaDataOutputStream::~CJavaDataOutputStream() {}

void CJavaDataOutputStream::WriteString(base::CUnicodeString const& value) {
    CheckOpen();
    base::CString const utf8 = value.ToUTF8();
    unsigned long const n = utf8.GetLength();
    if (n > 0xFFFF)
        throw CIOException(kUnit, __LINE__, "The specified string is too long.", nullptr);
    char const count[2] = {static_cast<char>(n >> 8), static_cast<char>(n)};
    m_out->Write(count, 2);
    m_out->Write(static_cast<char const*>(utf8), n);
}

void CJavaDataOutputStream::WriteString(unsigned short const* value) {
    CheckOpen();
    if (value == nullptr || *value == 0)
        return;
    WriteString(base::CUnicodeString(value));
}

} // namespace io
} // namespace lumo
