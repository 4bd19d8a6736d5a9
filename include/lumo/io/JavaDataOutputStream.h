// CJavaDataOutputStream: a data output stream whose strings carry a 16-bit big-endian
// byte count, as Java's DataInputStream.readUTF expects them.
#ifndef LUMO_IO_JAVADATAOUTPUTSTREAM_H
#define LUMO_IO_JAVADATAOUTPUTSTREAM_H

#include <lumo/io/DataOutputStream.h>

namespace lumo {
namespace io {

/// A data output stream whose strings carry a 16-bit big-endian byte count, as Java's
/// DataInputStream.readUTF expects them. Floats and doubles keep the host byte order
/// of the native form.
class LUMO_API CJavaDataOutputStream : public CDataOutputStream {
    LUMO_DECLARE_CLASS(CJavaDataOutputStream);

public:
    /// As CDataOutputStream's: a null stream throws CIllegalArgumentException "Invalid output
    /// stream.".
    ///@{
    explicit CJavaDataOutputStream(COutputStream* out);
    explicit CJavaDataOutputStream(base::CRef<COutputStream> const& out);
    ///@}
    ~CJavaDataOutputStream() override;

    /// A UTF-8 form longer than 65535 bytes throws CIOException "The specified string
    /// is too long." and writes nothing.
    void WriteString(base::CUnicodeString const& value) override;
    void WriteString(unsigned short const* value) override;
};

} // namespace io
} // namespace lumo

#endif
