// IO::File over POSIX file descriptors.
#include <vela/File.h>

#include "PosixFile.h"

#include <cerrno>
#include <climits>
#include <cstddef>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace IO {

namespace {

// One read or write call moves at most this much, well inside ssize_t.
std::size_t const kMaxTransfer = std::size_t(1) << 30;

Result ResultOfOpenError(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return RESULT_NOT_FOUND;
    case EACCES:
    case EPERM:
        return RESULT_ACCESS_DENIED;
    case EISDIR:
        return RESULT_IS_DIRECTORY;
    case ENAMETOOLONG:
        return RESULT_ILLEGAL_LOCATION;
    default:
        return RESULT_FAILED;
    }
}

} // namespace

File::File(Location const& location, NotFoundPolicy policy)
    : m_policy(policy), m_status(RESULT_OK), m_handle(kInvalidHandle), m_systemError(0) {
    try {
        m_location = location;
    } catch (...) {
        // Copying a location fails only for want of memory: std::bad_alloc, or what
        // the memory failure handler of the library above throws.
        m_status = RESULT_OUT_OF_MEMORY;
    }
}

File::~File() {
    if (IsOpen())
        ::close(static_cast<int>(m_handle));
}

Result File::Fail(int systemError) {
    m_systemError = systemError;
    return RESULT_FAILED;
}

Result File::CheckOpen() const noexcept {
    if (m_status != RESULT_OK)
        return m_status;
    return IsOpen() ? RESULT_OK : RESULT_NOT_OPEN;
}

Result File::Open(OpenMode mode) {
    if (m_status != RESULT_OK)
        return m_status;
    if (IsOpen())
        return RESULT_ALREADY_OPEN;
    if (!m_location.IsLegal())
        return RESULT_ILLEGAL_LOCATION;
    int flags = 0;
    switch (mode) {
    case MODE_READ:
        flags |= O_RDONLY;
        break;
    case MODE_WRITE:
        flags |= O_WRONLY | O_TRUNC;
        break;
    case MODE_APPEND:
        flags |= O_WRONLY | O_APPEND;
        break;
    default:
        return RESULT_INVALID_ARGUMENT;
    }
    if (m_policy == NOT_FOUND_CREATE)
        flags |= O_CREAT;
    int const fd = Vela::os::OpenFile(m_location.GetPath(), flags, 0666);
    if (fd < 0) {
        m_systemError = errno;
        return ResultOfOpenError(m_systemError);
    }
    // A directory opens for reading on POSIX; it is no file, so refuse it here
    // (and let no descriptor leak).
    struct stat info;
    int error = 0;
    if (::fstat(fd, &info) != 0)
        error = errno;
    else if (S_ISDIR(info.st_mode))
        error = EISDIR;
    if (error != 0) {
        ::close(fd);
        m_systemError = error;
        return ResultOfOpenError(error);
    }
    m_handle = fd;
    m_guardPipe = Vela::os::MayBreakPipe(fd);
    return RESULT_OK;
}

Result File::Close() {
    Result const state = CheckOpen();
    if (state != RESULT_OK)
        return state;
    int const fd = static_cast<int>(m_handle);
    // The descriptor is gone after close() whatever it reports, so it is never
    // closed twice.
    m_handle = kInvalidHandle;
    if (::close(fd) != 0 && errno != EINTR)
        return Fail(errno);
    return RESULT_OK;
}

Result File::Read(void* buffer, unsigned long size, unsigned long* done) {
    if (done != nullptr)
        *done = 0;
    Result const state = CheckOpen();
    if (state != RESULT_OK)
        return state;
    if (size == 0)
        return RESULT_OK;
    if (buffer == nullptr)
        return RESULT_INVALID_ARGUMENT;
    char* p = static_cast<char*>(buffer);
    std::size_t total = 0;
    while (total < size) {
        std::size_t chunk = size - total;
        if (chunk > kMaxTransfer)
            chunk = kMaxTransfer;
        ssize_t const n = ::read(static_cast<int>(m_handle), p + total, chunk);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            if (done != nullptr)
                *done = static_cast<unsigned long>(total);
            return Fail(errno);
        }
        if (n == 0)
            break;
        total += static_cast<std::size_t>(n);
    }
    if (done != nullptr)
        *done = static_cast<unsigned long>(total);
    return total == 0 ? RESULT_END_OF_DATA : RESULT_OK;
}

Result File::Write(void const* buffer, unsigned long size, unsigned long* done) {
    if (done != nullptr)
        *done = 0;
    Result const state = CheckOpen();
    if (state != RESULT_OK)
        return state;
    if (size == 0)
        return RESULT_OK;
    if (buffer == nullptr)
        return RESULT_INVALID_ARGUMENT;
    std::size_t total = 0;
    int const error =
        Vela::os::WriteAll(static_cast<int>(m_handle), buffer, size, &total, m_guardPipe);
    if (done != nullptr)
        *done = static_cast<unsigned long>(total);
    return error == 0 ? RESULT_OK : Fail(error);
}

Result File::Flush() {
    return CheckOpen();
}

Result File::GetDataLength(std::uint64_t* length) {
    Result const state = CheckOpen();
    if (state != RESULT_OK)
        return state;
    struct stat info;
    if (::fstat(static_cast<int>(m_handle), &info) != 0)
        return Fail(errno);
    if (length != nullptr)
        *length = static_cast<std::uint64_t>(info.st_size);
    return RESULT_OK;
}

Result File::GetAvailable(std::uint64_t* count) {
    std::uint64_t length = 0;
    Result const result = GetDataLength(&length);
    if (result != RESULT_OK)
        return result;
    off_t const position = ::lseek(static_cast<int>(m_handle), 0, SEEK_CUR);
    if (position < 0)
        return Fail(errno);
    std::uint64_t const at = static_cast<std::uint64_t>(position);
    if (count != nullptr)
        *count = at < length ? length - at : 0;
    return RESULT_OK;
}

Result File::SetPosition(std::uint64_t position) {
    Result const state = CheckOpen();
    if (state != RESULT_OK)
        return state;
    if (position > static_cast<std::uint64_t>(INT64_MAX))
        return RESULT_INVALID_ARGUMENT;
    if (::lseek(static_cast<int>(m_handle), static_cast<off_t>(position), SEEK_SET) < 0)
        return Fail(errno);
    return RESULT_OK;
}

Result File::Seek(std::int64_t offset, SeekOrigin origin, std::uint64_t* position) {
    Result const state = CheckOpen();
    if (state != RESULT_OK)
        return state;
    int whence;
    switch (origin) {
    case SEEK_FROM_START:
        whence = SEEK_SET;
        break;
    case SEEK_FROM_CURRENT:
        whence = SEEK_CUR;
        break;
    case SEEK_FROM_END:
        whence = SEEK_END;
        break;
    default:
        return RESULT_INVALID_ARGUMENT;
    }
    off_t const at = ::lseek(static_cast<int>(m_handle), static_cast<off_t>(offset), whence);
    if (at < 0) {
        m_systemError = errno;
        return errno == EINVAL ? RESULT_INVALID_ARGUMENT : RESULT_FAILED;
    }
    if (position != nullptr)
        *position = static_cast<std::uint64_t>(at);
    return RESULT_OK;
}

} // namespace IO
