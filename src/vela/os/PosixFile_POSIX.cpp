// The POSIX file helper: opens, whole writes, and the SIGPIPE guard for pipes.
#include "PosixFile.h"

#include <cerrno>
#include <csignal>
#include <ctime>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Vela {
namespace os {

namespace {

// One write call moves at most this much, well inside ssize_t.
std::size_t const kMaxTransfer = std::size_t(1) << 30;

int WriteLoop(int fd, char const* p, std::size_t size, std::size_t* done) {
    std::size_t total = 0;
    int error = 0;
    while (total < size) {
        std::size_t const chunk = size - total < kMaxTransfer ? size - total : kMaxTransfer;
        ssize_t const n = ::write(fd, p + total, chunk);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            error = errno;
            break;
        }
        total += static_cast<std::size_t>(n);
    }
    *done = total;
    return error;
}

// Blocks SIGPIPE in this thread for its life; a SIGPIPE raised meanwhile by a write
// that failed with EPIPE is taken off the thread's pending set before the old mask
// comes back (unless one was pending already, which belongs to somebody else).
class PipeSignalGuard {
public:
    PipeSignalGuard() {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_old);
    }
    ~PipeSignalGuard() {
        if (m_broken && !m_wasPending) {
            timespec const now = {0, 0};
            while (sigtimedwait(&m_pipe, nullptr, &now) < 0 && errno == EINTR) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &m_old, nullptr);
    }
    PipeSignalGuard(PipeSignalGuard const&) = delete;
    PipeSignalGuard& operator=(PipeSignalGuard const&) = delete;

    void SetBroken() { m_broken = true; }

private:
    sigset_t m_pipe;
    sigset_t m_old;
    bool m_wasPending = false;
    bool m_broken = false;
};

} // namespace

int OpenFile(char const* path, int flags, int mode) {
    int fd;
    do {
        fd = ::open(path, flags | O_CLOEXEC, mode);
    } while (fd < 0 && errno == EINTR);
    return fd;
}

bool MayBreakPipe(int fd) {
    struct stat info;
    return ::fstat(fd, &info) == 0 && (S_ISFIFO(info.st_mode) || S_ISSOCK(info.st_mode));
}

int WriteAll(int fd, void const* data, std::size_t size, std::size_t* done, bool guardPipe) {
    char const* const p = static_cast<char const*>(data);
    if (!guardPipe)
        return WriteLoop(fd, p, size, done);
    PipeSignalGuard guard;
    int const error = WriteLoop(fd, p, size, done);
    if (error == EPIPE)
        guard.SetBroken();
    return error;
}

} // namespace os
} // namespace Vela
