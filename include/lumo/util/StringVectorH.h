// CStringVectorH: a packed vector of 8-bit strings stored back to back in one relocatable
// data block, with a second block of 32-bit offsets.
#ifndef LUMO_UTIL_STRINGVECTORH_H
#define LUMO_UTIL_STRINGVECTORH_H

#include <lumo/base/String.h>
#include <vela/Memory.h>

#include <cstdint>

namespace lumo {
namespace util {

/// A packed vector of 8-bit strings: every string with its terminator back to back
/// in one relocatable data block, and a second block of 32-bit offsets, one per
/// string. Blocks grow to multiples of their increments and shrink after removals
/// (the data block keeps one increment of slack). Elements come back as new
/// strings, never as references into a block that may move.
///
/// Removing the last index cuts the data back to that string's offset but keeps
/// the slot counted: the size does not fall. This is the packed vector's defined
/// behaviour. When a block cannot be obtained its recorded capacity becomes 0 and
/// CMemoryException is thrown; the strings are kept.
class LUMO_API CStringVectorH {
public:
    /// A data increment of 0 becomes 256 bytes, an index increment of 0 becomes 1.
    /// Blocks are allocated at once only for non-zero initial capacities.
    explicit CStringVectorH(unsigned long initialDataCapacity = 0,
                            unsigned long dataIncrement = 256,
                            unsigned long initialIndexCapacity = 0,
                            unsigned long indexIncrement = 16);
    /// Copies the strings and the increments into blocks of its own.
    CStringVectorH(CStringVectorH const& other);
    /// Replaces the strings with copies of the other vector's.
    CStringVectorH& operator=(CStringVectorH const& other);
    ~CStringVectorH();

    /// The number of strings (see the class note on removing the last index).
    unsigned long GetSize() const { return m_size; }
    /// True when the size is 0.
    bool IsEmpty() const { return m_size == 0; }
    /// Bytes in use and bytes held in the data block; entries held in the index.
    ///@{
    unsigned long GetDataLength() const { return m_dataUsed; }
    unsigned long GetDataCapacity() const { return m_dataCapacity; }
    unsigned long GetIndexCapacity() const { return m_indexCapacity; }
    ///@}
    /// Where string `index` starts in the data block.
    unsigned long GetOffsetAt(unsigned long index) const;

    /// Appends a copy of `text`.
    void AddElement(base::CString const& text);
    /// index == size appends; index > size is out of bounds.
    void InsertElementAt(base::CString const& text, unsigned long index);
    /// Replaces string `index` with `text`; CArrayIndexOutOfBoundsException for an index >= size.
    void SetElementAt(unsigned long index, base::CString const& text);

    /// The element at `index`; CArrayIndexOutOfBoundsException for an index >= size.
    ///@{
    base::CString GetElementAt(unsigned long index) const;
    void GetElementAt(unsigned long index, base::CString& text) const;
    base::CString operator[](unsigned long index) const { return GetElementAt(index); }
    ///@}
    /// The first / last element; CNoSuchElementException when empty.
    ///@{
    base::CString GetFirstElement() const;
    void GetFirstElement(base::CString& text) const;
    base::CString GetLastElement() const;
    void GetLastElement(base::CString& text) const;
    ///@}

    /// Whether some string equals `text` exactly.
    bool Contains(base::CString const& text) const { return GetIndexOf(text) >= 0; }
    /// The index of the first string equal to `text`, or -1.
    long GetIndexOf(base::CString const& text) const;
    /// The index of the last string equal to `text`, or -1.
    long GetLastIndexOf(base::CString const& text) const;

    /// Removes the first string equal to `text`; nothing when there is none.
    void RemoveElement(base::CString const& text);
    /// Removes string `index`; CArrayIndexOutOfBoundsException for an index >= size.
    void RemoveElementAt(unsigned long index);
    /// Removes every string.
    void RemoveAllElements();

private:
    std::uint32_t CheckIndex(unsigned long index, int line) const;
    std::uint32_t* Offsets() const;
    /// The text of string `index`, bounded by the block, and its length.
    char const* TextAt(std::uint32_t index, std::uint32_t& length) const;
    bool EqualsAt(std::uint32_t index, char const* text, std::uint32_t length) const;
    void EnsureData(std::uint64_t bytes);
    void EnsureIndex(std::uint64_t entries);
    void Compact();

    std::uint32_t m_size;
    Vela::BMHandle m_data;
    std::uint32_t m_dataUsed;
    std::uint32_t m_dataCapacity;
    std::uint32_t m_dataIncrement;
    Vela::BMHandle m_index;
    std::uint32_t m_indexCapacity;
    std::uint32_t m_indexIncrement;
};

} // namespace util
} // namespace lumo

#endif
