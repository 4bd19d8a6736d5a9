// CJavaDataInputStream: a data input stream whose strings carry a 16-bit big-endian byte
// count, as Java's DataOutputStream.writeUTF writes them.
#ifndef LUMO_IO_JAVADATAINPUTSTREAM_H
#define LUMO_IO_JAVADATAINPUTSTREAM_H

#include <lumo/io/DataInputStream.h>

namespace lumo {
namespace io {

/// A data input stream whose strings carry a 16-bit big-endian byte count, as Java's
/// DataOutputStream.writeUTF writes them.
class LUMO_API CJavaDataInputStream : public CDataInputStream {
    LUMO_DECLARE_CLASS(CJavaDataInputStream);

public:
    /// As CDataInputStream's: a null stream throws CIllegalArgumentException "Invalid input
    /// stream.".
    ///@{
    explicit CJavaDataInputStream(CInputStream* in);
    explicit CJavaDataInputStream(base::CRef<CInputStream> const& in);
    ///@}
    ~CJavaDataInputStream() override;

    /// A 16-bit big-endian byte count, then that many UTF-8 bytes.
    base::CUnicodeString ReadString() override;
};

} // namespace io
} // namespace lumo

#endif
