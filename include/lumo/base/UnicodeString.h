// CUnicodeString: text of UTF-16 code units with shared copy-on-write storage, taking
// UTF-8 input by conversion, with the same operations and operators as CString.
#ifndef LUMO_BASE_UNICODESTRING_H
#define LUMO_BASE_UNICODESTRING_H

#include <lumo/Config.h>
#include <lumo/base/String.h>

#include <cstdarg>
#include <cstdint>
#include <type_traits>

namespace lumo {
namespace base {

/// Text of UTF-16 code units (`unsigned short`), with shared copy-on-write storage:
/// copies share one buffer, the first change makes a private copy.
///
/// The string holds one pointer: null for a string that never had storage, else the
/// first unit of a buffer preceded by three 32-bit words (capacity in units with the
/// terminator, length in units without it, number of sharers; 0 sharers marks a
/// buffer that must not be shared). Buffers of up to 1024 units come from fixed-block
/// pools by class (64, 128, 256, 512, 1024), larger ones from the C heap.
///
/// A string is empty when it has no storage or its length is 0; both behave alike.
/// Indexes and lengths count 16-bit units. Null text pointers are accepted everywhere
/// and act as empty texts. 8-bit arguments are UTF-8 and are converted to UTF-16
/// first: a single char is a character only when it is ASCII (another byte finds,
/// inserts, replaces or trims nothing), and conversion of a text stops at its first
/// malformed sequence. Allocation failures raise CMemoryException and leave the
/// string as it was.
/// Not safe for concurrent change: sharers count with plain increments.
class LUMO_API CUnicodeString {
    /// Integer unit arguments other than char and unsigned short (u'x', int, wchar_t)
    /// go to the unsigned short forms instead of being ambiguous.
    template <typename T>
    using OtherUnit =
        std::enable_if_t<std::is_integral<T>::value && !std::is_same<T, char>::value &&
                         !std::is_same<T, unsigned short>::value && !std::is_same<T, bool>::value>;

public:
    /// An empty string without storage; never allocates.
    CUnicodeString() noexcept : m_text(nullptr) {}
    /// Null gives an empty string.
    CUnicodeString(unsigned short const* s);
    /// Keeps at most n units of `s` (a shorter source is padded with zeros) but records
    /// the whole source's length, even when that exceeds n: `s` must be terminated.
    /// Null or n = 0 gives an empty string.
    CUnicodeString(unsigned short const* s, unsigned long n);
    /// UTF-8 input, converted; the second form reads at most n bytes and stops at a 0
    /// byte. Conversion stops at the first malformed sequence.
    ///@{
    CUnicodeString(char const* s);
    CUnicodeString(char const* s, unsigned long n);
    ///@}
    /// Shares the source's buffer; an empty source (or one that must not be shared)
    /// gives a string without storage.
    CUnicodeString(CUnicodeString const& other) noexcept : m_text(Share(other.m_text)) {}
    /// Takes the source's buffer; the source is left empty.
    CUnicodeString(CUnicodeString&& other) noexcept : m_text(other.m_text) {
        other.m_text = nullptr;
    }
    ~CUnicodeString() {
        if (m_text != nullptr)
            Release(m_text);
    }

    /// Shares the source's buffer as the copy constructor does; the old buffer is released.
    CUnicodeString& operator=(CUnicodeString const& other);
    /// Takes the source's buffer; the source is left empty.
    CUnicodeString& operator=(CUnicodeString&& other) noexcept;
    /// A copy of the zero-terminated text; null empties the string.
    CUnicodeString& operator=(unsigned short const* s);
    /// The UTF-8 text converted; null empties the string. Conversion stops at the first malformed
    /// sequence.
    CUnicodeString& operator=(char const* s);
    /// As CUnicodeString(s, n), length rule included.
    ///@{
    void Set(unsigned short const* s, unsigned long n);
    void Set(char const* s, unsigned long n);
    ///@}

    /// The number of units, terminator excluded.
    unsigned long GetLength() const noexcept { return m_text == nullptr ? 0 : Words(m_text)[1]; }
    /// Units the buffer holds, terminator included (0 without storage).
    unsigned long GetCapacity() const noexcept { return m_text == nullptr ? 0 : Words(m_text)[0]; }
    /// True when the string has no storage or length 0.
    bool IsEmpty() const noexcept { return GetLength() == 0; }
    /// Never null: an empty string gives a constant empty text.
    operator unsigned short const*() const noexcept {
        return m_text == nullptr ? EmptyText() : m_text;
    }

    /// The unit at i; i up to the length is read from the text (the length itself
    /// gives the terminator), beyond it the result is 0.
    unsigned short GetAt(unsigned long i) const noexcept { return i < GetLength() ? m_text[i] : 0; }
    /// The unit at i as GetAt does; a negative index gives 0.
    ///@{
    template <typename Index, typename = std::enable_if_t<std::is_integral<Index>::value>>
    unsigned short operator[](Index i) const noexcept {
        if constexpr (std::is_signed<Index>::value) {
            if (i < 0)
                return 0;
        }
        return GetAt(static_cast<unsigned long>(i));
    }
    ///@}
    /// Replaces the unit at i (i below the length; other indexes are ignored).
    void SetAt(unsigned long i, unsigned short c);

    /// A shared buffer is left to its other users (this string loses its storage); a
    /// private one is kept with length 0.
    void Empty();
    /// Makes the buffer private and able to hold n units, terminator included (never
    /// less than the present text); the text is kept.
    void EnsureCapacity(unsigned long n);
    /// Makes the buffer private with room for n units plus a terminator, keeping the
    /// text, and returns it for writing. Valid until the next change, copy or
    /// assignment; finish with SetLength.
    unsigned short* GetBuffer(unsigned long n);
    /// Sets the length to n and places the terminator at n (growing the buffer if need
    /// be).
    void SetLength(unsigned long n);

    /// <0, 0, >0 by unit values (the ignore-case forms after simple case folding). An
    /// empty string gives -1 against any non-null text (even an empty one) and 0
    /// against null; a non-empty string gives 1 against a null or empty text. An
    /// empty CUnicodeString operand counts as null.
    ///@{
    int Compare(unsigned short const* s) const;
    int Compare(CUnicodeString const& s) const;
    int CompareIgnoreCase(unsigned short const* s) const;
    int CompareIgnoreCase(CUnicodeString const& s) const;
    ///@}

    /// Unit indexes of the first (last) match at or after `start`, or -1.
    ///@{
    long Find(unsigned short c, unsigned long start = 0) const;
    long Find(char c, unsigned long start = 0) const;
    template <typename T, typename = OtherUnit<T>> long Find(T c, unsigned long start = 0) const {
        return Find(static_cast<unsigned short>(c), start);
    }
    long Find(unsigned short const* s, unsigned long start = 0) const;
    long Find(char const* s, unsigned long start = 0) const;
    long Find(CUnicodeString const& s, unsigned long start = 0) const;
    long FindIgnoreCase(unsigned short const* s, unsigned long start = 0) const;
    long FindIgnoreCase(char const* s, unsigned long start = 0) const;
    long FindIgnoreCase(CUnicodeString const& s, unsigned long start = 0) const;
    long ReverseFind(unsigned short c, unsigned long start = 0) const;
    long ReverseFind(char c, unsigned long start = 0) const;
    template <typename T, typename = OtherUnit<T>>
    long ReverseFind(T c, unsigned long start = 0) const {
        return ReverseFind(static_cast<unsigned short>(c), start);
    }
    long ReverseFind(unsigned short const* s, unsigned long start = 0) const;
    long ReverseFind(char const* s, unsigned long start = 0) const;
    long ReverseFind(CUnicodeString const& s, unsigned long start = 0) const;
    long ReverseFindIgnoreCase(unsigned short const* s, unsigned long start = 0) const;
    long ReverseFindIgnoreCase(char const* s, unsigned long start = 0) const;
    long ReverseFindIgnoreCase(CUnicodeString const& s, unsigned long start = 0) const;
    ///@}
    /// An empty text starts and ends every string; a null one none.
    ///@{
    bool StartsWith(unsigned short const* s) const;
    bool StartsWith(char const* s) const;
    bool StartsWith(CUnicodeString const& s) const;
    bool StartsWithIgnoreCase(unsigned short const* s) const;
    bool StartsWithIgnoreCase(char const* s) const;
    bool StartsWithIgnoreCase(CUnicodeString const& s) const;
    bool EndsWith(unsigned short const* s) const;
    bool EndsWith(char const* s) const;
    bool EndsWith(CUnicodeString const& s) const;
    bool EndsWithIgnoreCase(unsigned short const* s) const;
    bool EndsWithIgnoreCase(char const* s) const;
    bool EndsWithIgnoreCase(CUnicodeString const& s) const;
    ///@}

    /// Units from `start` up to, not including, `end` (cut to the length); empty when
    /// start >= length or start >= end. A piece that is the whole text shares it.
    ///@{
    CUnicodeString SubString(unsigned long start) const;
    CUnicodeString SubString(unsigned long start, unsigned long end) const;
    CUnicodeString Mid(unsigned long start) const { return SubString(start); }
    /// A count of 0 or below gives an empty result.
    CUnicodeString Mid(unsigned long start, long count) const;
    /// The first n units; the whole string for n at or beyond the length.
    CUnicodeString Left(unsigned long n) const;
    /// For n below the length, the n units that end one unit before the last one
    /// (Right(2) of "abcde" is "cd"); the whole string for larger n.
    CUnicodeString Right(unsigned long n) const;
    ///@}

    /// Appends the text, the UTF-8 text converted, or one unit (a char only when ASCII). Returns
    /// this string. A null or empty text appends nothing.
    ///@{
    CUnicodeString& operator+=(CUnicodeString const& s);
    CUnicodeString& operator+=(unsigned short const* s);
    CUnicodeString& operator+=(char const* s);
    CUnicodeString& operator+=(unsigned short c);
    CUnicodeString& operator+=(char c);
    template <typename T, typename = OtherUnit<T>> CUnicodeString& operator+=(T c) {
        return *this += static_cast<unsigned short>(c);
    }
    ///@}

    /// An index beyond the length is cut to it; return the new length.
    ///@{
    unsigned long Insert(unsigned long index, unsigned short c);
    unsigned long Insert(unsigned long index, char c);
    template <typename T, typename = OtherUnit<T>> unsigned long Insert(unsigned long index, T c) {
        return Insert(index, static_cast<unsigned short>(c));
    }
    unsigned long Insert(unsigned long index, unsigned short const* s);
    unsigned long Insert(unsigned long index, char const* s);
    ///@}
    /// Removes `count` units at `index` (a count running past the end stops there);
    /// returns the length before the deletion. Nothing happens for count 0 or an
    /// index at or beyond the length.
    unsigned long Delete(unsigned long index, unsigned long count = 1);
    /// Return the number of replacements / removals. A null `replacement` removes.
    ///@{
    unsigned long Replace(unsigned short oldChar, unsigned short newChar);
    unsigned long Replace(char oldChar, char newChar);
    template <typename T, typename = OtherUnit<T>> unsigned long Replace(T oldChar, T newChar) {
        return Replace(static_cast<unsigned short>(oldChar), static_cast<unsigned short>(newChar));
    }
    unsigned long Replace(unsigned short const* old, unsigned short const* replacement);
    unsigned long Replace(char const* old, char const* replacement);
    unsigned long Remove(unsigned short c);
    unsigned long Remove(char c);
    template <typename T, typename = OtherUnit<T>> unsigned long Remove(T c) {
        return Remove(static_cast<unsigned short>(c));
    }
    ///@}

    /// Simple case mapping, unit by unit.
    ///@{
    void MakeUpper();
    void MakeLower();
    ///@}
    /// Reverses the units; surrogate pairs are not kept together.
    void MakeReverse();

    /// Remove leading / trailing white space, or a run of the unit, or of any unit of
    /// the set.
    ///@{
    void TrimLeft();
    void TrimRight();
    void TrimLeft(unsigned short c);
    void TrimRight(unsigned short c);
    void TrimLeft(char c);
    void TrimRight(char c);
    template <typename T, typename = OtherUnit<T>> void TrimLeft(T c) {
        TrimLeft(static_cast<unsigned short>(c));
    }
    template <typename T, typename = OtherUnit<T>> void TrimRight(T c) {
        TrimRight(static_cast<unsigned short>(c));
    }
    void TrimLeft(unsigned short const* set);
    void TrimRight(unsigned short const* set);
    void TrimLeft(char const* set);
    void TrimRight(char const* set);
    void TrimLeft(CUnicodeString const& set);
    void TrimRight(CUnicodeString const& set);
    ///@}

    /// printf into a 1024-unit work buffer. Only a result of exactly size - 1 units
    /// takes another round with 1024 more units; a longer text is cut to what fitted.
    /// A null format empties the string.
    ///@{
    void Format(unsigned short const* format, ...);
    void FormatV(unsigned short const* format, va_list args);
    ///@}

    /// Decodes UTF-8. A negative length means the text runs to its 0 byte; with a
    /// length, 0 bytes inside it are decoded as units. Decoding stops quietly at the
    /// first malformed sequence (a stray continuation byte, a lead byte without its
    /// continuation bytes, a sequence cut by the end, a byte F8-FF); overlong forms
    /// and encoded surrogates are accepted as they come. Null gives an empty string.
    static CUnicodeString FromUTF8(char const* text, long length = -1);
    /// Encodes as UTF-8. A surrogate pair becomes one 4-byte sequence; an unpaired
    /// surrogate becomes the 3-byte form of its own value, so that FromUTF8 gives the
    /// very same units back.
    CString ToUTF8() const;
    /// Writes the UTF-8 form into `target` of `size` bytes: whole sequences only, as
    /// many as fit in `size` bytes, then a 0 byte if a byte is left for it. Returns
    /// the bytes written, terminator excluded. A null target writes nothing and
    /// returns the bytes the whole text needs (terminator excluded), so a result below
    /// that tells that the target was too small; a size of 0 or below writes nothing
    /// and returns 0.
    long ToUTF8(char* target, long size) const;

private:
    /// Header words in front of the units: capacity, length, sharers.
    static std::uint32_t* Words(unsigned short* text) noexcept {
        return reinterpret_cast<std::uint32_t*>(text) - 3;
    }
    static unsigned short* Share(unsigned short* text) noexcept {
        if (text == nullptr || Words(text)[1] == 0 || Words(text)[2] == 0)
            return nullptr;
        ++Words(text)[2];
        return text;
    }
    static void Release(unsigned short* text) noexcept {
        if (Words(text)[2] >= 2)
            --Words(text)[2];
        else
            FreeBuffer(text);
    }
    static void FreeBuffer(unsigned short* text) noexcept;
    static unsigned short const* EmptyText() noexcept;

    unsigned short* m_text;
};

/// Equality is exact, unit by unit; ordering by unit values. An empty operand (null,
/// no text or length 0) equals another empty one and sorts before a non-empty one.
///@{
LUMO_API bool operator==(CUnicodeString const& a, CUnicodeString const& b);
LUMO_API bool operator==(CUnicodeString const& a, unsigned short const* b);
LUMO_API bool operator==(unsigned short const* a, CUnicodeString const& b);
LUMO_API bool operator!=(CUnicodeString const& a, CUnicodeString const& b);
LUMO_API bool operator!=(CUnicodeString const& a, unsigned short const* b);
LUMO_API bool operator!=(unsigned short const* a, CUnicodeString const& b);
LUMO_API bool operator<(CUnicodeString const& a, CUnicodeString const& b);
LUMO_API bool operator<(CUnicodeString const& a, unsigned short const* b);
LUMO_API bool operator<(unsigned short const* a, CUnicodeString const& b);
LUMO_API bool operator<=(CUnicodeString const& a, CUnicodeString const& b);
LUMO_API bool operator<=(CUnicodeString const& a, unsigned short const* b);
LUMO_API bool operator<=(unsigned short const* a, CUnicodeString const& b);
LUMO_API bool operator>(CUnicodeString const& a, CUnicodeString const& b);
LUMO_API bool operator>(CUnicodeString const& a, unsigned short const* b);
LUMO_API bool operator>(unsigned short const* a, CUnicodeString const& b);
LUMO_API bool operator>=(CUnicodeString const& a, CUnicodeString const& b);
LUMO_API bool operator>=(CUnicodeString const& a, unsigned short const* b);
LUMO_API bool operator>=(unsigned short const* a, CUnicodeString const& b);
///@}

/// A new string holding `a` followed by `b`; a null text adds nothing.
///@{
LUMO_API CUnicodeString operator+(CUnicodeString const& a, CUnicodeString const& b);
LUMO_API CUnicodeString operator+(CUnicodeString const& a, unsigned short const* b);
LUMO_API CUnicodeString operator+(unsigned short const* a, CUnicodeString const& b);
///@}

} // namespace base
} // namespace lumo

#endif
