// The stream, reader or writer that a filter wraps: the raw pointer it works through and
// the reference that keeps a shared one alive. Internal: the filters' own headers are its
// only users.
#ifndef LUMO_IO_DETAIL_WRAPPEDSTREAM_H
#define LUMO_IO_DETAIL_WRAPPEDSTREAM_H

#include <lumo/base/Ref.h>

namespace lumo {
namespace io {
namespace detail {

/// T is CInputStream, COutputStream, CReader or CWriter. Made from a raw pointer it
/// borrows (the caller keeps the object alive and deletes it); made from a CRef it
/// shares, and the reference lives as long as this object, closed or not. The filter
/// is closed exactly when the raw pointer is null. Copy, move and destruction are the
/// members' own.
template <class T> class WrappedStream {
public:
    /// Nothing wrapped: closed from the start.
    WrappedStream() noexcept : m_stream(nullptr) {}
    explicit WrappedStream(T* borrowed) noexcept : m_stream(borrowed) {}
    explicit WrappedStream(base::CRef<T> const& shared) noexcept
        : m_stream(shared.Get()), m_shared(shared) {}

    bool IsOpen() const noexcept { return m_stream != nullptr; }
    /// Null once closed (or when made from a null pointer).
    T* Get() const noexcept { return m_stream; }
    T* operator->() const noexcept { return m_stream; }
    T& operator*() const noexcept { return *m_stream; }

    /// Marks the filter closed, then closes the wrapped object, so the filter stays
    /// closed even when that Close throws. Does nothing when already closed.
    void Close() {
        if (m_stream == nullptr)
            return;
        T* const released = m_stream;
        m_stream = nullptr;
        released->Close();
    }

    /// Close for the filters that hold output back: `flush` writes it out first. The
    /// wrapped object is closed even when `flush` throws, and the flush failure is the
    /// one that passes on. Does nothing when already closed.
    template <class Flush> void Close(Flush flush) {
        if (m_stream == nullptr)
            return;
        try {
            flush();
        } catch (...) {
            Close();
            throw;
        }
        Close();
    }

private:
    T* m_stream;
    base::CRef<T> m_shared;
};

} // namespace detail
} // namespace io
} // namespace lumo

#endif
