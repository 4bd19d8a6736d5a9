// Internal: the buffer, skip, pushback and close steps shared by the filtering byte
// streams and the filtering readers and writers, templated on the unit type.
#ifndef LUMO_SRC_IO_FILTERCORE_H
#define LUMO_SRC_IO_FILTERCORE_H

// Shared internals of the filtering byte streams (Unit = char) and
// readers/writers (Unit = unsigned short). Callers pass their own source file
// string and line so that the exceptions name the calling unit.

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include <cstdlib>
#include <cstring>

namespace lumo {
namespace io {
namespace detail {

template <class Unit> Unit* AllocateUnits(unsigned long size, char const* unit, int line) {
    Unit* const buffer = static_cast<Unit*>(std::malloc(size * sizeof(Unit)));
    if (buffer == nullptr)
        throw base::CMemoryException(unit, line);
    return buffer;
}

// Moves up to len units waiting in buffer[position, end) to dst; returns how many.
template <class Unit>
unsigned long TakeWaiting(Unit* dst, unsigned long len, Unit const* buffer, unsigned long& position,
                          unsigned long end) {
    unsigned long const waiting = end - position;
    unsigned long const n = len < waiting ? len : waiting;
    if (n > 0)
        std::memcpy(dst, buffer + position, n * sizeof(Unit));
    position += n;
    return n;
}

// Skip for the buffering filters: an exact fit stays out of the wrapped object.
template <class Wrapped>
long SkipBuffered(Wrapped* wrapped, unsigned long n, unsigned long& position, unsigned long end) {
    if (n == 0)
        return 0;
    unsigned long const waiting = end - position;
    if (n <= waiting) {
        position += n;
        return static_cast<long>(n);
    }
    position = end;
    return static_cast<long>(waiting) + wrapped->Skip(n - waiting);
}

// Pushed-back units live in buffer[position, capacity).
template <class Unit, class Wrapped>
long ReadPushedBack(Wrapped* wrapped, Unit const* buffer, unsigned long capacity,
                    unsigned long& position) {
    if (position < capacity)
        return static_cast<long>(buffer[position++]);
    return wrapped->Read();
}

// Skip for the pushback filters: an exact fit still asks the wrapped object.
template <class Wrapped>
long SkipPushedBack(Wrapped* wrapped, unsigned long n, unsigned long& position,
                    unsigned long capacity) {
    if (n == 0)
        return 0;
    unsigned long const held = capacity - position;
    if (n < held) {
        position += n;
        return static_cast<long>(n);
    }
    position = capacity;
    return static_cast<long>(held) + wrapped->Skip(n - held);
}

template <class Unit>
void PushBack(Unit* buffer, unsigned long& position, Unit const* buf, unsigned long off,
              unsigned long len, char const* unit, int line) {
    if (len > position)
        throw CIOException(unit, line, "Pushback buffer is full.", nullptr);
    if (buf == nullptr || len == 0 || !Vela::bnManager::IsReadable(buf + off, len * sizeof(Unit)))
        return;
    position -= len;
    std::memcpy(buffer + position, buf + off, len * sizeof(Unit));
}

// Copies src into the buffer, handing it to flush each time it fills up.
template <class Unit, class Flush>
void FillAndDrain(Unit* buffer, unsigned long capacity, unsigned long& count, Unit const* src,
                  unsigned long len, Flush flush) {
    while (len > 0) {
        unsigned long const room = capacity - count;
        unsigned long const piece = len < room ? len : room;
        std::memcpy(buffer + count, src, piece * sizeof(Unit));
        count += piece;
        src += piece;
        len -= piece;
        if (count >= capacity)
            flush();
    }
}

// Marks the filter closed before closing the wrapped object, so it stays closed
// even when that Close throws. Does nothing when already closed.
template <class Wrapped> void ReleaseAndClose(Wrapped*& wrapped) {
    if (wrapped == nullptr)
        return;
    Wrapped* const released = wrapped;
    wrapped = nullptr;
    released->Close();
}

// Close for the buffering writers: the wrapped object is closed even when the
// final flush fails, and the flush failure is what the caller sees.
template <class Wrapped, class Flush> void FlushAndClose(Wrapped*& wrapped, Flush flush) {
    if (wrapped == nullptr)
        return;
    try {
        flush();
    } catch (...) {
        ReleaseAndClose(wrapped);
        throw;
    }
    ReleaseAndClose(wrapped);
}

} // namespace detail
} // namespace io
} // namespace lumo

#endif
