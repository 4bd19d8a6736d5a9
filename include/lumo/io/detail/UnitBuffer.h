// The buffer a filtering stream, reader or writer owns: a heap block of units, its
// capacity, the count of units it holds and the position of the next one to hand out.
// Internal: the filters' own headers are its only users.
#ifndef LUMO_IO_DETAIL_UNITBUFFER_H
#define LUMO_IO_DETAIL_UNITBUFFER_H

#include <lumo/base/Exception.h>
#include <lumo/io/IOException.h>
#include <vela/Memory.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace lumo {
namespace io {
namespace detail {

/// Unit is char (byte streams) or unsigned short (readers and writers). Three uses:
/// - read ahead: units wait in [position, count); Refill reads behind them;
/// - collect output: [0, count) waits to be drained into the wrapped object;
/// - give back: made with AllocateGiveBack, count stays at the capacity and the
///   buffer fills from its end down, so [position, count) are the units given back,
///   the one at position being the next to read.
/// The block belongs to this object alone; copy is refused, move and destruction are
/// the block's own.
template <class Unit> class UnitBuffer {
public:
    /// How Skip treats a request that the waiting units cover exactly.
    enum class ExactFit { StaysHere, AsksSource };

    UnitBuffer() noexcept : m_capacity(0), m_count(0), m_position(0) {}

    /// Fresh storage for `size` units, empty; the old block is freed. False, with
    /// nothing changed, when the heap refuses, or when a block of wide units would
    /// pass 2 GiB (byte blocks get whatever the heap grants).
    bool TryAllocate(unsigned long size) {
        if (sizeof(Unit) > 1 && size > 0x7FFFFFFFul / sizeof(Unit))
            return false;
        Unit* const units = static_cast<Unit*>(std::malloc(size * sizeof(Unit)));
        if (units == nullptr)
            return false;
        m_units.reset(units);
        m_capacity = size;
        m_count = 0;
        m_position = 0;
        return true;
    }
    /// TryAllocate, or CMemoryException naming the caller's unit and line.
    void Allocate(unsigned long size, char const* unit, int line) {
        if (!TryAllocate(size))
            throw base::CMemoryException(unit, line);
    }
    /// Allocate for giving back: nothing given back yet, all the room before the end.
    void AllocateGiveBack(unsigned long size, char const* unit, int line) {
        Allocate(size, unit, line);
        m_count = size;
        m_position = size;
    }

    Unit* Data() const noexcept { return m_units.get(); }
    unsigned long Capacity() const noexcept { return m_capacity; }
    unsigned long Count() const noexcept { return m_count; }
    /// Free room behind the count.
    unsigned long Room() const noexcept { return m_capacity - m_count; }
    bool IsFull() const noexcept { return m_count >= m_capacity; }
    /// Units in [position, count).
    unsigned long Waiting() const noexcept { return m_count - m_position; }
    bool HasWaiting() const noexcept { return m_position < m_count; }

    /// Forgets everything held: count and position back to 0.
    void Empty() noexcept {
        m_count = 0;
        m_position = 0;
    }
    /// Forgets the waiting units (a give-back buffer is then empty again).
    void DropWaiting() noexcept { m_position = m_count; }

    /// Moves up to len waiting units to dst; returns how many.
    unsigned long Take(Unit* dst, unsigned long len) noexcept {
        unsigned long const waiting = m_count - m_position;
        unsigned long const n = len < waiting ? len : waiting;
        if (n > 0)
            std::memcpy(dst, m_units.get() + m_position, n * sizeof(Unit));
        m_position += n;
        return n;
    }
    /// Moves the waiting units to the front and has `source` read once into the room
    /// behind them; returns what that Read returned (what it read is counted in).
    template <class Source> long Refill(Source& source) {
        if (m_position < m_count && m_position > 0)
            std::memmove(m_units.get(), m_units.get() + m_position,
                         (m_count - m_position) * sizeof(Unit));
        m_count -= m_position;
        m_position = 0;
        long const n = source.Read(m_units.get(), m_count, m_capacity - m_count);
        if (n > 0)
            m_count += static_cast<unsigned long>(n);
        return n;
    }
    /// Read() of the read-ahead filters: the next waiting unit, refilling once from
    /// `source` when none waits; Source::EOS when still none.
    template <class Source> long ReadAhead(Source& source) {
        if (m_position >= m_count) {
            Refill(source);
            if (m_position >= m_count)
                return Source::EOS;
        }
        return static_cast<long>(m_units[m_position++]);
    }
    /// Read() of the give-back filters: the unit given back last, else `source`'s.
    template <class Source> long ReadGivenBack(Source& source) {
        if (m_position < m_count)
            return static_cast<long>(m_units[m_position++]);
        return source.Read();
    }
    /// The waiting units first, then `source`'s Skip for the rest, whose result is
    /// added as it comes. n = 0 gives 0 without asking `source`.
    template <class Source> long Skip(Source& source, unsigned long n, ExactFit exactFit) {
        if (n == 0)
            return 0;
        unsigned long const waiting = m_count - m_position;
        if (n < waiting || (n == waiting && exactFit == ExactFit::StaysHere)) {
            m_position += n;
            return static_cast<long>(n);
        }
        m_position = m_count;
        return static_cast<long>(waiting) + source.Skip(n - waiting);
    }

    /// Room for c must be there (not IsFull).
    void Append(Unit c) noexcept { m_units[m_count++] = c; }
    /// The count grows by n units written into the room by someone else.
    void Added(unsigned long n) noexcept { m_count += n; }
    /// Copies src in, calling `drain` each time the buffer becomes full.
    template <class Drain> void Append(Unit const* src, unsigned long len, Drain drain) {
        while (len > 0) {
            unsigned long const room = m_capacity - m_count;
            unsigned long const piece = len < room ? len : room;
            std::memcpy(m_units.get() + m_count, src, piece * sizeof(Unit));
            m_count += piece;
            src += piece;
            len -= piece;
            if (m_count >= m_capacity)
                drain();
        }
    }
    /// One block write of [0, count) on `sink`, if there is anything; emptied only
    /// after the write succeeded, so a failed write keeps the units.
    template <class Sink> void DrainTo(Sink& sink) {
        if (m_count == 0)
            return;
        sink.Write(m_units.get(), 0, m_count);
        m_count = 0;
    }

    /// Gives c back just before the position; CIOException "Pushback buffer is
    /// full." (caller's unit and line) when the position is 0.
    void GiveBack(Unit c, char const* unit, int line) {
        if (m_position == 0)
            throw CIOException(unit, line, "Pushback buffer is full.", nullptr);
        m_units[--m_position] = c;
    }
    /// Gives a block back in its own order, all or nothing: "Pushback buffer is full."
    /// when len passes the room before the position. A null or unreadable block, or
    /// len 0, gives back nothing.
    void GiveBack(Unit const* buf, unsigned long off, unsigned long len, char const* unit,
                  int line) {
        if (len > m_position)
            throw CIOException(unit, line, "Pushback buffer is full.", nullptr);
        if (buf == nullptr || len == 0 ||
            !Vela::bnManager::IsReadable(buf + off, len * sizeof(Unit)))
            return;
        m_position -= len;
        std::memcpy(m_units.get() + m_position, buf + off, len * sizeof(Unit));
    }

private:
    struct FreeBlock {
        void operator()(Unit* units) const noexcept { std::free(units); }
    };

    std::unique_ptr<Unit[], FreeBlock> m_units;
    unsigned long m_capacity;
    unsigned long m_count;
    unsigned long m_position;
};

} // namespace detail
} // namespace io
} // namespace lumo

#endif
