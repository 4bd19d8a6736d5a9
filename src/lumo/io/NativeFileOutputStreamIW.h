#ifndef LUMO_SRC_IO_NATIVEFILEOUTPUTSTREAMIW_H
#define LUMO_SRC_IO_NATIVEFILEOUTPUTSTREAMIW_H

#include <lumo/base/Base.h>

#include <cstdint>

namespace lumo {
namespace io {

// The platform file handle behind CNativeFileOutputStream; one backend per platform
// (NativeFileOutputStreamIW_POSIX.cpp). Failures throw CIOException from
// lumo/io/NativeFileOutputStreamIW.
class CNativeFileOutputStreamIW : public base::CBase {
public:
    // Opens (creating, never truncating) the file at the non-empty `path`; with
    // `append` the position moves to the end. A path that is not well-formed throws
    // CIllegalArgumentException "Invalid file path.".
    CNativeFileOutputStreamIW(unsigned short const* path, bool append);
    ~CNativeFileOutputStreamIW();

    CNativeFileOutputStreamIW(CNativeFileOutputStreamIW const&) = delete;
    CNativeFileOutputStreamIW& operator=(CNativeFileOutputStreamIW const&) = delete;

    bool IsOpen() const { return m_handle != kInvalidHandle; }
    // All `len` bytes or a CIOException.
    void Write(char const* buf, unsigned long len);
    void Flush();
    void Close() noexcept;

private:
    static constexpr std::intptr_t kInvalidHandle = -1;

    std::intptr_t m_handle;
};

} // namespace io
} // namespace lumo

#endif
