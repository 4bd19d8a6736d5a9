// IO::File: a file named by a location, opened, read, written and positioned through the
// platform's file calls with no buffering of its own, reporting the layer's result codes.
#ifndef VELA_FILE_H
#define VELA_FILE_H

#include <vela/Channel.h>
#include <vela/Config.h>
#include <vela/Location.h>

#include <cstdint>

namespace IO {

/// A file named by a location, read and written through the platform's file calls
/// without buffering of its own. Constructing a File opens nothing; Open does, and
/// Close (or the destructor) releases the platform handle. A failed Open leaves no
/// handle behind. Every operation reports through a result code.
class VELA_API File : public IChannel {
public:
    /// What Open does when the file does not exist.
    enum NotFoundPolicy { NOT_FOUND_FAIL = 0, NOT_FOUND_CREATE = 1 };
    /// Read from the start; write from the start, truncating what was there; or
    /// write at the end (every write goes to the end as it is then).
    enum OpenMode { MODE_READ = 0, MODE_WRITE = 2, MODE_APPEND = 4 };
    /// Where Seek counts from.
    enum SeekOrigin { SEEK_FROM_START = 0, SEEK_FROM_CURRENT = 1, SEEK_FROM_END = 2 };

    /// A closed file for `location` (copied; see GetStatus) with the policy Open follows when the
    /// file does not exist.
    File(Location const& location, NotFoundPolicy policy);
    ~File() override;

    /// Not copyable: the object owns its platform handle.
    ///@{
    File(File const&) = delete;
    File& operator=(File const&) = delete;
    ///@}

    /// RESULT_OK, or why the object could not be prepared (RESULT_OUT_OF_MEMORY when
    /// the location could not be copied); every other call then fails with it.
    Result GetStatus() const noexcept { return m_status; }
    /// The location given at construction.
    Location const& GetLocation() const noexcept { return m_location; }
    /// The system's error number of the last failed platform call, 0 if none.
    int GetSystemError() const noexcept { return m_systemError; }

    /// RESULT_NOT_FOUND, RESULT_ACCESS_DENIED, RESULT_IS_DIRECTORY,
    /// RESULT_ILLEGAL_LOCATION, RESULT_ALREADY_OPEN or RESULT_FAILED on failure.
    Result Open(OpenMode mode);
    /// The handle is released even when the platform reports an error.
    Result Close();
    /// True between a successful Open and Close.
    bool IsOpen() const noexcept { return m_handle != kInvalidHandle; }

    Result Read(void* buffer, unsigned long size, unsigned long* done) override;
    Result Write(void const* buffer, unsigned long size, unsigned long* done) override;
    /// Nothing is held back by the layer, so this only checks that the file is open.
    Result Flush() override;

    /// Bytes between the position and the end of the data.
    Result GetAvailable(std::uint64_t* count);
    /// The data's length in bytes, into `*length`.
    Result GetDataLength(std::uint64_t* length);
    /// Moves to `position` bytes from the start.
    Result SetPosition(std::uint64_t position);
    /// Moves relative to `origin`; a position before the start is refused with
    /// RESULT_INVALID_ARGUMENT. `*position` (when given) receives the new position.
    Result Seek(std::int64_t offset, SeekOrigin origin, std::uint64_t* position = nullptr);

private:
    static constexpr std::intptr_t kInvalidHandle = -1;

    Result Fail(int systemError);
    Result CheckOpen() const noexcept;

    Location m_location;
    NotFoundPolicy m_policy;
    Result m_status;
    std::intptr_t m_handle;
    int m_systemError;
    bool m_guardPipe = false; // writes may meet a reader that went away
};

} // namespace IO

#endif
