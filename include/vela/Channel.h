// IO::IChannel, the sequential byte channel that files expose, and the file layer's result
// codes; only the block operations and Flush are abstract, the smaller forms default to them.
#ifndef VELA_CHANNEL_H
#define VELA_CHANNEL_H

#include <vela/Config.h>

namespace IO {

/// Result codes of the file layer: 0 is success, everything else an error.
typedef unsigned long Result;

/// Success.
Result const RESULT_OK = 0;
/// A general failure of the platform call; the file keeps the system's error number.
Result const RESULT_FAILED = 0x81000001;
/// The file is not open.
Result const RESULT_NOT_OPEN = 0x81000002;
/// Open was called on a file that is open.
Result const RESULT_ALREADY_OPEN = 0x81000003;
/// A null buffer where one is needed, or a position before the start.
Result const RESULT_INVALID_ARGUMENT = 0x81000004;
/// Memory for the operation could not be obtained.
Result const RESULT_OUT_OF_MEMORY = 0x81000005;
/// A read found no data left.
Result const RESULT_END_OF_DATA = 0x81000100;
/// The file does not exist.
Result const RESULT_NOT_FOUND = 0x81010101;
/// The platform refused access to the file.
Result const RESULT_ACCESS_DENIED = 0x81010102;
/// The location is empty or not legal.
Result const RESULT_ILLEGAL_LOCATION = 0x81010103;
/// The location names a directory.
Result const RESULT_IS_DIRECTORY = 0x81010104;

/// A sequential byte channel. Only the block operations and Flush must be given;
/// the single-byte and 16-bit forms default to one block call each. A 16-bit unit
/// travels as two bytes, low byte first, whatever the machine's order.
class VELA_API IChannel {
public:
    virtual ~IChannel() {}

    /// Reads up to `size` bytes, fewer only at the end of the data; `*done` (when
    /// given) receives the count also on failure. RESULT_END_OF_DATA when `size` > 0
    /// and nothing was left.
    virtual Result Read(void* buffer, unsigned long size, unsigned long* done) = 0;
    /// Writes all `size` bytes or fails; `*done` (when given) receives the count written.
    virtual Result Write(void const* buffer, unsigned long size, unsigned long* done) = 0;
    /// Hands what was written to the platform; RESULT_OK or the failure.
    virtual Result Flush() = 0;

    /// One byte through Read; RESULT_END_OF_DATA when none was left.
    ///@{
    virtual Result ReadByte(unsigned char* value) {
        unsigned long done = 0;
        Result const result = Read(value, 1, &done);
        return result == RESULT_OK && done != 1 ? RESULT_END_OF_DATA : result;
    }
    ///@}
    /// RESULT_END_OF_DATA when no byte was left; RESULT_FAILED when only one was (the
    /// unit was cut off; that byte is consumed).
    virtual Result ReadUnit16(unsigned short* value) {
        unsigned char bytes[2];
        unsigned long done = 0;
        Result const result = Read(bytes, 2, &done);
        if (result != RESULT_OK)
            return result;
        if (done != 2)
            return done == 0 ? RESULT_END_OF_DATA : RESULT_FAILED;
        *value = static_cast<unsigned short>(bytes[0] | (bytes[1] << 8));
        return RESULT_OK;
    }
    /// One byte or one 16-bit unit (low byte first) through Write.
    ///@{
    virtual Result WriteByte(unsigned char value) { return Write(&value, 1, nullptr); }
    virtual Result WriteUnit16(unsigned short value) {
        unsigned char const bytes[2] = {static_cast<unsigned char>(value & 0xFF),
                                        static_cast<unsigned char>(value >> 8)};
        return Write(bytes, 2, nullptr);
    }
    ///@}
};

} // namespace IO

#endif
