// The roots below CObject: CBase (class-level allocation on the C heap, failing with a
// CMemoryException), CNonCopyable, and CNull, the type of the library-wide constant null.
#ifndef LUMO_BASE_BASE_H
#define LUMO_BASE_BASE_H

#include <lumo/Config.h>

#include <cstddef>

namespace lumo {
namespace base {

/// Class-level allocation for every library object: C heap memory, and a
/// CMemoryException naming the allocation site when the heap is exhausted.
class LUMO_API CBase {
public:
    /// Allocate `size` bytes from the C heap; the forms with `file` and `line` name that site in
    /// the CMemoryException thrown when the heap is exhausted (the others name "lumo/base/Base").
    /// The placement forms return `place` and never throw.
    ///@{
    static void* operator new(std::size_t size);
    static void* operator new[](std::size_t size);
    static void* operator new(std::size_t size, char const* file, int line);
    static void* operator new[](std::size_t size, char const* file, int line);
    static void* operator new(std::size_t size, void* place) noexcept;
    static void* operator new[](std::size_t size, void* place) noexcept;
    static void* operator new(std::size_t size, void* place, char const* file, int line) noexcept;
    static void* operator new[](std::size_t size, void* place, char const* file, int line) noexcept;
    ///@}

    /// Return the block to the C heap; null is ignored. The placement forms do nothing.
    ///@{
    static void operator delete(void* p) noexcept;
    static void operator delete[](void* p) noexcept;
    static void operator delete(void* p, char const* file, int line) noexcept;
    static void operator delete[](void* p, char const* file, int line) noexcept;
    static void operator delete(void* p, void* place) noexcept;
    static void operator delete[](void* p, void* place) noexcept;
    static void operator delete(void* p, void* place, char const* file, int line) noexcept;
    static void operator delete[](void* p, void* place, char const* file, int line) noexcept;
    ///@}

private:
    [[noreturn]] static void ThrowMemoryException(char const* file, int line);
};

/// Base for classes whose objects must not be copied.
class LUMO_API CNonCopyable {
protected:
    CNonCopyable() = default;
    ~CNonCopyable() = default;

public:
    CNonCopyable(CNonCopyable const&) = delete;
    CNonCopyable& operator=(CNonCopyable const&) = delete;
};

/// Marker type of the library-wide constant `null`.
class LUMO_API CNull {
public:
    /// Assigning the null marker does nothing.
    CNull& operator=(CNull const&) { return *this; }
};

/// The library-wide null marker.
LUMO_API extern CNull const null;

} // namespace base
} // namespace lumo

#endif
