// CNativeFileOutputStream's file handle over a POSIX file descriptor.
#include "NativeFileOutputStreamIW.h"

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Location.h>

#include <cerrno>
#include <cstddef>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lumo {
namespace io {

namespace {

char const kUnit[] = "lumo/io/NativeFileOutputStreamIW";
char const kWriteFailed[] = "Failed to write the specified byte the the underlying file.";

std::size_t const kMaxTransfer = std::size_t(1) << 30;

} // namespace

CNativeFileOutputStreamIW::CNativeFileOutputStreamIW(unsigned short const* path, bool append)
    : m_handle(kInvalidHandle) {
    IO::Location location;
    try {
        location = IO::Location(path);
    } catch (std::bad_alloc const&) {
        throw base::CMemoryException(kUnit, __LINE__);
    }
    if (!location.IsLegal())
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid file path.");
    // Created when missing, never truncated.
    int fd;
    do {
        fd = ::open(location.GetPath(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    } while (fd < 0 && errno == EINTR);
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
}

CNativeFileOutputStreamIW::~CNativeFileOutputStreamIW() {
    Close();
}

void CNativeFileOutputStreamIW::Write(char const* buf, unsigned long len) {
    if (len == 0)
        return;
    if (buf == nullptr)
        throw CIOException(kUnit, __LINE__, kWriteFailed, nullptr);
    std::size_t done = 0;
    while (done < len) {
        std::size_t chunk = len - done;
        if (chunk > kMaxTransfer)
            chunk = kMaxTransfer;
        ssize_t const n = ::write(static_cast<int>(m_handle), buf + done, chunk);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            throw CIOException(kUnit, __LINE__, kWriteFailed, nullptr);
        }
        done += static_cast<std::size_t>(n);
    }
}

void CNativeFileOutputStreamIW::Flush() {
    // Files that cannot be synchronised (pipes, terminals, /dev/null) have nothing
    // to write through.
    if (::fsync(static_cast<int>(m_handle)) != 0 && errno != EINVAL && errno != EROFS)
        throw CIOException(kUnit, __LINE__, "Failed to flush the buffers of the underlying file.",
                           nullptr);
}

void CNativeFileOutputStreamIW::Close() noexcept {
    if (m_handle == kInvalidHandle)
        return;
    ::close(static_cast<int>(m_handle));
    m_handle = kInvalidHandle;
}

} // namespace io
} // namespace lumo
