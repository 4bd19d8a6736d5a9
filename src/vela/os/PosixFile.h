// Internal: the one POSIX file helper of the library (open and write with EINTR
// retry, pipes that lose their reader reported as EPIPE instead of SIGPIPE), shared
// by IO::File and the native file output stream's backend.
#ifndef VELA_OS_POSIXFILE_H
#define VELA_OS_POSIXFILE_H

#include <cstddef>

namespace Vela {
namespace os {

/// open(2) retried on EINTR, always close-on-exec; the descriptor, or -1 with errno.
int OpenFile(char const* path, int flags, int mode);

/// Whether a write to `fd` can raise SIGPIPE (a pipe, FIFO or socket).
bool MayBreakPipe(int fd);

/// Writes all `size` bytes (EINTR retried, at most 1 GiB a call); returns 0 or the
/// errno of the failing call, with the bytes written in `done`. With `guardPipe`,
/// SIGPIPE is blocked in the calling thread for the write and one the write raised
/// is consumed, so a reader that went away is EPIPE and not the end of the process;
/// the application's signal disposition is never changed.
int WriteAll(int fd, void const* data, std::size_t size, std::size_t* done, bool guardPipe);

} // namespace os
} // namespace Vela

#endif
