// CString: 8-bit text in the platform's multibyte code (UTF-8) with shared copy-on-write
// storage, its search, edit, trim and format operations, and its comparison operators.
#ifndef LUMO_BASE_STRING_H
#define LUMO_BASE_STRING_H

#include <lumo/Config.h>

#include <cstdarg>
#include <cstdint>
#include <type_traits>

namespace lumo {
namespace base {

class CStringH;

/// 8-bit text in the platform's multibyte code (UTF-8), with shared copy-on-write
/// storage: copies share one buffer, the first change makes a private copy.
///
/// The string holds one pointer: null for a string that never had storage, else the
/// first character of a buffer preceded by three 32-bit words (capacity in bytes with
/// the terminator, length in bytes without it, number of sharers; 0 sharers marks a
/// buffer that must not be shared). Buffers of up to 1024 bytes come from fixed-block
/// pools by class (64, 128, 256, 512, 1024), larger ones from the C heap.
///
/// A string is empty when it has no storage or its length is 0; both behave alike.
/// Indexes and lengths are byte counts. Null text pointers are accepted everywhere and
/// act as empty texts unless stated otherwise. Allocation failures raise
/// CMemoryException and leave the string as it was. Not safe for concurrent change:
/// sharers count with plain increments.
class LUMO_API CString {
public:
    /// An empty string without storage; never allocates.
    CString() noexcept : m_text(nullptr) {}
    /// Null gives an empty string.
    CString(char const* s);
    /// Keeps at most n bytes of `s` (a shorter source is padded with zeros) but records
    /// strlen(s) as the length, even when that exceeds n: `s` must be terminated. Null
    /// or n = 0 gives an empty string. To build from a slice of an unterminated
    /// buffer, use GetBuffer and SetLength.
    CString(char const* s, unsigned long n);
    /// UTF-16 input, converted to the multibyte code; the second form reads at most n
    /// units and stops at a 0 unit.
    ///@{
    CString(unsigned short const* text);
    CString(unsigned short const* text, unsigned long n);
    ///@}
    /// A copy of the handle string's text.
    CString(CStringH const& other);
    /// Shares the source's buffer; an empty source (or one that must not be shared)
    /// gives a string without storage.
    CString(CString const& other) noexcept : m_text(Share(other.m_text)) {}
    /// Takes the source's buffer; the source is left empty.
    CString(CString&& other) noexcept : m_text(other.m_text) { other.m_text = nullptr; }
    ~CString() {
        if (m_text != nullptr)
            Release(m_text);
    }

    /// Shares the source's buffer as the copy constructor does; the old buffer is released.
    CString& operator=(CString const& other);
    /// Takes the source's buffer; the source is left empty.
    CString& operator=(CString&& other) noexcept;
    /// A copy of the zero-terminated text; null empties the string.
    CString& operator=(char const* s);
    /// The UTF-16 text converted to the multibyte code; null empties the string.
    CString& operator=(unsigned short const* text);
    /// A copy of the handle string's text.
    CString& operator=(CStringH const& other);
    /// As CString(s, n), length rule included.
    void Set(char const* s, unsigned long n);

    /// The number of bytes, terminator excluded.
    unsigned long GetLength() const noexcept { return m_text == nullptr ? 0 : Words(m_text)[1]; }
    /// Bytes the buffer holds, terminator included (0 without storage).
    unsigned long GetCapacity() const noexcept { return m_text == nullptr ? 0 : Words(m_text)[0]; }
    /// True when the string has no storage or length 0.
    bool IsEmpty() const noexcept { return GetLength() == 0; }
    /// Never null: an empty string gives a constant empty text.
    operator char const*() const noexcept { return m_text == nullptr ? EmptyText() : m_text; }

    /// The byte at i; i up to the length is read from the text (the length itself gives
    /// the terminator), beyond it the result is 0.
    char GetAt(unsigned long i) const noexcept { return i < GetLength() ? m_text[i] : '\0'; }
    /// The byte at i as GetAt gives it; a negative index gives 0.
    ///@{
    template <typename Index, typename = std::enable_if_t<std::is_integral<Index>::value>>
    char operator[](Index i) const noexcept {
        if constexpr (std::is_signed<Index>::value) {
            if (i < 0)
                return '\0';
        }
        return GetAt(static_cast<unsigned long>(i));
    }
    ///@}
    /// Replaces the byte at i (i below the length; other indexes are ignored).
    void SetAt(unsigned long i, char c);

    /// A shared buffer is left to its other users (this string loses its storage); a
    /// private one is kept with length 0.
    void Empty();
    /// Makes the buffer private and able to hold n bytes, terminator included (never
    /// less than the present text); the text is kept.
    void EnsureCapacity(unsigned long n);
    /// Makes the buffer private with room for n bytes plus a terminator, keeping the
    /// text, and returns it for writing. Valid until the next change, copy or
    /// assignment; finish with SetLength.
    char* GetBuffer(unsigned long n);
    /// Sets the length to n and places the terminator at n (growing the buffer if need
    /// be). Bytes between the old length and n are what was written through GetBuffer.
    void SetLength(unsigned long n);

    /// <0, 0, >0. An empty string gives -1 against any non-null text (even an empty
    /// one) and 0 against null; a non-empty string gives 1 against a null or empty
    /// text. An empty CString operand counts as null.
    ///@{
    int Compare(char const* s) const;
    int Compare(CString const& s) const;
    int CompareIgnoreCase(char const* s) const;
    int CompareIgnoreCase(CString const& s) const;
    ///@}

    /// Byte indexes of the first (last) match at or after `start`, or -1; a char is
    /// sign-extended to 16 bits and matched as the platform's character routines do.
    ///@{
    long Find(char c, unsigned long start = 0) const;
    long Find(char const* s, unsigned long start = 0) const;
    long Find(CString const& s, unsigned long start = 0) const;
    long FindIgnoreCase(char const* s, unsigned long start = 0) const;
    long FindIgnoreCase(CString const& s, unsigned long start = 0) const;
    long ReverseFind(char c, unsigned long start = 0) const;
    long ReverseFind(char const* s, unsigned long start = 0) const;
    long ReverseFind(CString const& s, unsigned long start = 0) const;
    long ReverseFindIgnoreCase(char const* s, unsigned long start = 0) const;
    long ReverseFindIgnoreCase(CString const& s, unsigned long start = 0) const;
    ///@}
    /// An empty text starts and ends every string; a null one none.
    ///@{
    bool StartsWith(char const* s) const;
    bool StartsWith(CString const& s) const;
    bool StartsWithIgnoreCase(char const* s) const;
    bool StartsWithIgnoreCase(CString const& s) const;
    bool EndsWith(char const* s) const;
    bool EndsWith(CString const& s) const;
    bool EndsWithIgnoreCase(char const* s) const;
    bool EndsWithIgnoreCase(CString const& s) const;
    ///@}

    /// Bytes from `start` up to, not including, `end` (cut to the length); empty when
    /// start >= length or start >= end. A piece that is the whole text shares it.
    ///@{
    CString SubString(unsigned long start) const;
    CString SubString(unsigned long start, unsigned long end) const;
    CString Mid(unsigned long start) const { return SubString(start); }
    /// A count of 0 or below gives an empty result.
    CString Mid(unsigned long start, long count) const;
    /// The first n bytes; the whole string for n at or beyond the length.
    CString Left(unsigned long n) const;
    /// For n below the length, the n bytes that end one byte before the last one
    /// (Right(2) of "abcde" is "cd"); the whole string for larger n.
    CString Right(unsigned long n) const;
    ///@}

    /// Appends the text or the character and returns this string; a null or empty text appends
    /// nothing.
    ///@{
    CString& operator+=(CString const& s);
    CString& operator+=(char const* s);
    CString& operator+=(char c);
    ///@}

    /// An index beyond the length is cut to it; return the new length.
    ///@{
    unsigned long Insert(unsigned long index, char c);
    unsigned long Insert(unsigned long index, char const* s);
    ///@}
    /// Removes `count` bytes at `index` (a count running past the end stops there);
    /// returns the length before the deletion. Nothing happens for count 0 or an
    /// index at or beyond the length.
    unsigned long Delete(unsigned long index, unsigned long count = 1);
    /// Return the number of replacements / removals. A null `replacement` removes.
    ///@{
    unsigned long Replace(char oldChar, char newChar);
    unsigned long Replace(char const* old, char const* replacement);
    unsigned long Remove(char c);
    ///@}

    /// Unicode simple case mapping, character by character. The text never grows (a character
    /// whose mapping needs more bytes stays as it is) but may shrink.
    ///@{
    void MakeUpper();
    void MakeLower();
    ///@}
    /// Reverses the characters; a multibyte character stays whole.
    void MakeReverse();

    /// Remove leading / trailing white space (C isspace), or a run of the character,
    /// or of any character of the set.
    ///@{
    void TrimLeft();
    void TrimRight();
    void TrimLeft(char c);
    void TrimRight(char c);
    void TrimLeft(char const* set);
    void TrimRight(char const* set);
    void TrimLeft(CString const& set);
    void TrimRight(CString const& set);
    ///@}

    /// printf into a 1024-byte work buffer. Only a result of exactly size - 1 bytes
    /// takes another round with 1024 more bytes; a longer text is cut to what fitted.
    /// A null format empties the string.
    ///@{
    void Format(char const* format, ...) LUMO_PRINTF_FORMAT(2, 3);
    void FormatV(char const* format, va_list args);
    ///@}

private:
    /// Header words in front of the text: capacity, length, sharers.
    static std::uint32_t* Words(char* text) noexcept {
        return reinterpret_cast<std::uint32_t*>(text) - 3;
    }
    static char* Share(char* text) noexcept {
        if (text == nullptr || Words(text)[1] == 0 || Words(text)[2] == 0)
            return nullptr;
        ++Words(text)[2];
        return text;
    }
    static void Release(char* text) noexcept {
        if (Words(text)[2] >= 2)
            --Words(text)[2];
        else
            FreeBuffer(text);
    }
    static void FreeBuffer(char* text) noexcept;
    static char const* EmptyText() noexcept;

    char* m_text;
};

/// Equality is exact, byte by byte; ordering by the platform's case-sensitive comparison. An empty
/// operand (null, no text or length 0) equals another empty one and sorts before a non-empty one.
///@{
LUMO_API bool operator==(CString const& a, CString const& b);
LUMO_API bool operator==(CString const& a, char const* b);
LUMO_API bool operator==(char const* a, CString const& b);
LUMO_API bool operator!=(CString const& a, CString const& b);
LUMO_API bool operator!=(CString const& a, char const* b);
LUMO_API bool operator!=(char const* a, CString const& b);
LUMO_API bool operator<(CString const& a, CString const& b);
LUMO_API bool operator<(CString const& a, char const* b);
LUMO_API bool operator<(char const* a, CString const& b);
LUMO_API bool operator<=(CString const& a, CString const& b);
LUMO_API bool operator<=(CString const& a, char const* b);
LUMO_API bool operator<=(char const* a, CString const& b);
LUMO_API bool operator>(CString const& a, CString const& b);
LUMO_API bool operator>(CString const& a, char const* b);
LUMO_API bool operator>(char const* a, CString const& b);
LUMO_API bool operator>=(CString const& a, CString const& b);
LUMO_API bool operator>=(CString const& a, char const* b);
LUMO_API bool operator>=(char const* a, CString const& b);
///@}

/// A new string holding `a` followed by `b`; a null text adds nothing.
///@{
LUMO_API CString operator+(CString const& a, CString const& b);
LUMO_API CString operator+(CString const& a, char const* b);
LUMO_API CString operator+(char const* a, CString const& b);
///@}

} // namespace base
} // namespace lumo

#endif
