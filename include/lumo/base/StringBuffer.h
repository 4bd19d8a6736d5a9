// CStringBuffer and CUnicodeStringBuffer: plain, unshared, growable character arrays
// holding a terminated text, used as work areas for building text.
#ifndef LUMO_BASE_STRINGBUFFER_H
#define LUMO_BASE_STRINGBUFFER_H

#include <lumo/Config.h>
#include <lumo/base/detail/CharArray.h>

#include <cstdint>

namespace lumo {
namespace base {

class CString;
class CUnicodeString;

/// A plain, unshared, growable array of 8-bit characters holding a 0-terminated text:
/// a work area for building text. The array comes from the C heap and is allocated on
/// first need.
///
/// Sizes are rounded up by the capacity increment (never below 8): a request for n
/// characters gives n + (((increment - 1) * n) mod increment), in 32-bit arithmetic,
/// which is n rounded up to a multiple of the increment. The array grows to exactly
/// that size as far as callers see (GetCapacity); the heap block underneath grows
/// geometrically, so appending costs amortized constant time whatever the increment.
///
/// UTF-16 arguments are converted to UTF-8 (an unpaired surrogate becomes '?'). Null
/// texts are empty texts. Allocation failures raise CMemoryException and leave the
/// buffer as it was.
class LUMO_API CStringBuffer {
public:
    /// No storage yet.
    explicit CStringBuffer(unsigned long increment = 64);
    /// Storage for `capacity` characters (rounded), all zero.
    CStringBuffer(unsigned long capacity, unsigned long increment);
    /// Copies the text and the increment.
    CStringBuffer(CStringBuffer const& other);
    /// Takes the other buffer's array; the other is left without storage.
    CStringBuffer(CStringBuffer&& other) noexcept;
    ~CStringBuffer();

    /// Assignments replace the text; the increment stays.
    ///@{
    CStringBuffer& operator=(CStringBuffer const& other);
    CStringBuffer& operator=(CStringBuffer&& other) noexcept;
    CStringBuffer& operator=(char const* text);
    CStringBuffer& operator=(unsigned short const* text);
    CStringBuffer& operator=(CString const& text);
    CStringBuffer& operator=(CUnicodeString const& text);
    ///@}

    /// Append the text (converted when it is in the other width); null appends nothing. Return this
    /// buffer.
    ///@{
    CStringBuffer& operator+=(CStringBuffer const& other);
    CStringBuffer& operator+=(char const* text);
    CStringBuffer& operator+=(unsigned short const* text);
    CStringBuffer& operator+=(CString const& text);
    CStringBuffer& operator+=(CUnicodeString const& text);
    ///@}

    /// The array, for writing; a buffer without storage first gets some, so the
    /// result is never null.
    operator char*();
    /// The text; "" for a buffer without storage.
    operator char const*() const;
    /// Makes room for n characters (at least 1, for a terminator) and returns the array.
    char* GetBuffer(unsigned long n);

    /// Characters up to the terminator (the capacity if the array holds none).
    unsigned long GetSize() const;
    /// True when the text is empty (or there is no storage).
    bool IsEmpty() const;
    /// Sets the first character to 0; the storage stays.
    void Empty();
    /// Grows the array to hold n characters (rounded), keeping its contents.
    void EnsureCapacity(unsigned long n);
    /// Shrinks the array to the rounded size of the text and its terminator.
    void TrimToSize();
    /// Characters the array holds (0 without storage).
    unsigned long GetCapacity() const { return m_array.Capacity(); }

    /// Values below 8 are raised to 8.
    void SetCapacityIncrement(unsigned long increment);
    /// The capacity increment (at least 8).
    unsigned long GetCapacityIncrement() const { return m_array.Increment(); }

private:
    detail::CharArray<char> m_array;
};

/// The same in 16-bit units; 8-bit arguments are UTF-8 and are converted to UTF-16
/// (conversion stops at the first malformed sequence).
class LUMO_API CUnicodeStringBuffer {
public:
    /// As CStringBuffer's: no storage yet, or storage for `capacity` units (rounded), all zero.
    ///@{
    explicit CUnicodeStringBuffer(unsigned long increment = 64);
    CUnicodeStringBuffer(unsigned long capacity, unsigned long increment);
    ///@}
    /// Copy the text and the increment, or take the other buffer's array.
    ///@{
    CUnicodeStringBuffer(CUnicodeStringBuffer const& other);
    CUnicodeStringBuffer(CUnicodeStringBuffer&& other) noexcept;
    ///@}
    ~CUnicodeStringBuffer();

    /// Assignments replace the text (8-bit texts are converted from UTF-8); the increment stays.
    ///@{
    CUnicodeStringBuffer& operator=(CUnicodeStringBuffer const& other);
    CUnicodeStringBuffer& operator=(CUnicodeStringBuffer&& other) noexcept;
    CUnicodeStringBuffer& operator=(unsigned short const* text);
    CUnicodeStringBuffer& operator=(char const* text);
    CUnicodeStringBuffer& operator=(CString const& text);
    CUnicodeStringBuffer& operator=(CUnicodeString const& text);
    ///@}

    /// Append the text (8-bit texts converted from UTF-8); null appends nothing. Return this
    /// buffer.
    ///@{
    CUnicodeStringBuffer& operator+=(CUnicodeStringBuffer const& other);
    CUnicodeStringBuffer& operator+=(unsigned short const* text);
    CUnicodeStringBuffer& operator+=(char const* text);
    CUnicodeStringBuffer& operator+=(CString const& text);
    CUnicodeStringBuffer& operator+=(CUnicodeString const& text);
    ///@}

    /// The array, for writing; a buffer without storage first gets some, so the result is never
    /// null.
    operator unsigned short*();
    /// The text; an empty text for a buffer without storage.
    operator unsigned short const*() const;
    /// Makes room for n units (at least 1, for a terminator) and returns the array.
    unsigned short* GetBuffer(unsigned long n);

    /// Units up to the terminator (the capacity if the array holds none).
    unsigned long GetSize() const;
    /// True when the text is empty (or there is no storage).
    bool IsEmpty() const;
    /// Sets the first unit to 0; the storage stays.
    void Empty();
    /// Grows the array to hold n units (rounded), keeping its contents.
    void EnsureCapacity(unsigned long n);
    /// Shrinks the array to the rounded size of the text and its terminator.
    void TrimToSize();
    /// Units the array holds (0 without storage).
    unsigned long GetCapacity() const { return m_array.Capacity(); }

    /// Values below 8 are raised to 8.
    void SetCapacityIncrement(unsigned long increment);
    /// The capacity increment (at least 8).
    unsigned long GetCapacityIncrement() const { return m_array.Increment(); }

private:
    detail::CharArray<unsigned short> m_array;
};

} // namespace base
} // namespace lumo

#endif
