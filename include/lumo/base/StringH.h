// CStringH: 8-bit text kept in a relocatable handle of the root layer's handle memory
// manager, one handle per string (no sharing), with a lock count and comparisons.
#ifndef LUMO_BASE_STRINGH_H
#define LUMO_BASE_STRINGH_H

#include <lumo/Config.h>

#include <cstdint>

namespace lumo {
namespace base {

class CString;

/// 8-bit text kept in a relocatable handle of the platform's handle memory manager.
/// Each string owns its handle: no sharing, no copy-on-write. The lock count lets a
/// holder mark the text as in use while it keeps a pointer into the handle; it is
/// advisory, no operation checks it. When the manager cannot supply memory, the
/// operation raises CMemoryException and the string keeps its handle and contents.
class LUMO_API CStringH {
public:
    /// An empty string without a handle.
    CStringH() noexcept : m_handle(nullptr), m_capacity(0), m_length(0), m_locks(0) {}
    /// A null text is stored as an empty one.
    CStringH(char const* s);
    /// A copy of the text in a new handle.
    CStringH(CString const& s);
    /// A copy of the other string's text in a handle of its own.
    CStringH(CStringH const& other);
    ~CStringH();

    /// Replace the text, keeping this string's handle where it is large enough; null stores an
    /// empty text.
    ///@{
    CStringH& operator=(char const* s);
    CStringH& operator=(CString const& s);
    CStringH& operator=(CStringH const& other);
    ///@}

    /// The characters at the handle; null when there is no handle yet. After Empty()
    /// the text may still show characters: the length is what counts.
    operator char const*() const;
    /// The length in bytes, terminator excluded.
    unsigned long GetLength() const noexcept { return m_length; }
    /// True when the length is 0.
    bool IsEmpty() const noexcept { return m_length == 0; }
    /// With a handle and a length above 0: the first byte becomes the digit '0' (not
    /// the terminator) and the length 0. Otherwise nothing happens.
    void Empty();

    /// Return the new lock count; Unlock never goes below 0.
    ///@{
    unsigned long Lock() const noexcept { return ++m_locks; }
    unsigned long Unlock() const noexcept { return m_locks == 0 ? 0 : --m_locks; }
    ///@}

    /// Against a null or empty text: 1 when this string has a length, else 0;
    /// otherwise -1 when this string is empty, else the platform comparison (with case).
    ///@{
    int Compare(char const* s) const;
    int Compare(CStringH const& s) const;
    int Compare(CString const& s) const;
    ///@}

private:
    int CompareText(char const* s, bool sEmpty) const;
    void Store(char const* s, unsigned long maxLength);
    void MakeRoom(std::uint32_t n);

    char** m_handle;
    std::uint32_t m_capacity;
    std::uint32_t m_length;
    mutable std::uint32_t m_locks;
};

/// Equal when both are empty (null, no text or length 0) or both hold the same bytes.
///@{
LUMO_API bool operator==(CStringH const& a, char const* b);
LUMO_API bool operator==(CStringH const& a, CString const& b);
LUMO_API bool operator==(CStringH const& a, CStringH const& b);
LUMO_API bool operator==(char const* a, CStringH const& b);
LUMO_API bool operator==(CString const& a, CStringH const& b);
LUMO_API bool operator!=(CStringH const& a, char const* b);
LUMO_API bool operator!=(CStringH const& a, CString const& b);
LUMO_API bool operator!=(CStringH const& a, CStringH const& b);
LUMO_API bool operator!=(char const* a, CStringH const& b);
LUMO_API bool operator!=(CString const& a, CStringH const& b);
///@}

} // namespace base
} // namespace lumo

#endif
