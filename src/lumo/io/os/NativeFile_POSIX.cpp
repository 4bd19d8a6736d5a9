// CNativeFileOutputStream's file handle over a POSIX file descriptor.
#include "NativeFile.h"

#include "vela/os/PosixFile.h"

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Location.h>

#include <cerrno>
#include <cstddef>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lumo {
namespace io {

namespace {

// The implementation object's documented source name.
char const kUnit[] = "lumo/io/NativeFileOutputStreamIW";
char const kWriteFailed[] = "Failed to write the specified byte the the underlying file.";

} // namespace

CNativeFile::CNativeFile(unsigned short const* path, bool append) : m_handle(kInvalidHandle) {
    IO::Location const location(path);
    if (!location.IsLegal())
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid file path.");
    // Created when missing, never truncated.
    int const fd = Vela::os::OpenFile(location.GetPath(), O_WRONLY | O_CREAT, 0666);
    if (fd < 0) {
        if (errno == EACCES || errno == EPERM)
            throw CIOException(kUnit, __LINE__, "Access denied.", nullptr);
        throw CIOException(kUnit, __LINE__, "Failed to open the specified file.", nullptr);
    }
    if (append && ::lseek(fd, 0, SEEK_END) < 0) {
        ::close(fd);
        throw CIOException(kUnit, __LINE__,
                           "Failed to move the file pointer to the end of the file.", nullptr);
    }
    m_handle = fd;
    m_guardPipe = Vela::os::MayBreakPipe(fd);
}

CNativeFile::~CNativeFile() {
    Close();
}

void CNativeFile::Write(char const* buf, unsigned long len) {
    if (len == 0)
        return;
    if (buf == nullptr)
        throw CIOException(kUnit, __LINE__, kWriteFailed, nullptr);
    std::size_t done = 0;
    if (Vela::os::WriteAll(static_cast<int>(m_handle), buf, len, &done, m_guardPipe) != 0)
        throw CIOException(kUnit, __LINE__, kWriteFailed, nullptr);
}

void CNativeFile::Flush() {
    // Files that cannot be synchronised (pipes, terminals, /dev/null) have nothing
    // to write through.
    if (::fsync(static_cast<int>(m_handle)) != 0 && errno != EINVAL && errno != EROFS)
        throw CIOException(kUnit, __LINE__, "Failed to flush the buffers of the underlying file.",
                           nullptr);
}

void CNativeFile::Close() noexcept {
    if (m_handle == kInvalidHandle)
        return;
    ::close(static_cast<int>(m_handle));
    m_handle = kInvalidHandle;
}

} // namespace io
} // namespace lumo
