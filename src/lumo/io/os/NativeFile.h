// Internal: the portable interface of the platform file handle behind
// CNativeFileOutputStream; one backend per platform.
#ifndef LUMO_IO_OS_NATIVEFILE_H
#define LUMO_IO_OS_NATIVEFILE_H

#include <lumo/base/Base.h>

#include <cstdint>

namespace lumo {
namespace io {

// The platform file handle behind CNativeFileOutputStream (its implementation
// object); one backend per platform (NativeFile_POSIX.cpp). Failures throw
// CIOException with the implementation object's source name,
// lumo/io/NativeFileOutputStreamIW.
class CNativeFile : public base::CBase {
public:
    // Opens (creating, never truncating) the file at the non-empty `path`; with
    // `append` the position moves to the end. A path that is not well-formed throws
    // CIllegalArgumentException "Invalid file path.".
    CNativeFile(unsigned short const* path, bool append);
    ~CNativeFile();

    CNativeFile(CNativeFile const&) = delete;
    CNativeFile& operator=(CNativeFile const&) = delete;

    bool IsOpen() const { return m_handle != kInvalidHandle; }
    // All `len` bytes or a CIOException.
    void Write(char const* buf, unsigned long len);
    void Flush();
    void Close() noexcept;

private:
    static constexpr std::intptr_t kInvalidHandle = -1;

    std::intptr_t m_handle;
    bool m_guardPipe = false; // writes may meet a reader that went away
};

} // namespace io
} // namespace lumo

#endif
