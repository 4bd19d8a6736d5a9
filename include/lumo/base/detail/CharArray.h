// The character array that CStringBuffer and CUnicodeStringBuffer hold: the text,
// its documented capacity and increment, and what makes appending cheap. Internal:
// the buffers' header is its only user.
#ifndef LUMO_BASE_DETAIL_CHARARRAY_H
#define LUMO_BASE_DETAIL_CHARARRAY_H

#include <cstddef>
#include <cstdint>

namespace lumo {
namespace base {
namespace detail {

/// Char is char or unsigned short. The capacity callers see follows the documented
/// rounding; the heap block underneath grows geometrically (in place where the heap
/// allows), so a capacity step costs no copy. The text's length is remembered, except
/// after a writable pointer was handed out: then the caller may have rewritten the
/// text, and the length is read from the array until a documented reallocation ends
/// that pointer's validity.
template <typename Char> class CharArray {
public:
    explicit CharArray(std::uint32_t increment)
        : m_chars(nullptr), m_capacity(0), m_increment(increment), m_block(0), m_length(0),
          m_exposed(false) {}
    /// The text and the increment.
    CharArray(CharArray const& other);
    CharArray(CharArray&& other) noexcept;
    /// The text; the increment stays.
    CharArray& operator=(CharArray const& other);
    CharArray& operator=(CharArray&& other) noexcept;
    ~CharArray();

    Char* Data() const { return m_chars; }
    std::uint32_t Capacity() const { return m_capacity; }
    std::uint32_t Increment() const { return m_increment; }
    void SetIncrement(std::uint32_t increment) { m_increment = increment; }

    /// Characters up to the terminator (the capacity when there is none).
    std::size_t Length() const;
    /// Grows to the rounded n, keeping the whole array; CMemoryException when the
    /// heap refuses.
    void Ensure(std::uint64_t n);
    /// Ensure, then the array for the caller to write into.
    Char* Writable(std::uint64_t n);
    void Assign(Char const* text, std::size_t n);
    void Append(Char const* text, std::size_t n);
    /// A converted text: `convert(target, size)` writes at most size - 1 characters
    /// and a terminator and returns the count; with a null target it returns the
    /// count needed.
    template <typename Convert> void AssignConverted(Convert convert);
    template <typename Convert> void AppendConverted(Convert convert);
    void Empty();
    void Trim();
    /// Storage for n characters (rounded), all zero.
    void AllocateZeroed(unsigned long n);

private:
    void Ensure(std::uint64_t n, std::size_t length);
    Char* Prepare(std::size_t n, Char*& old, std::uint32_t& rounded);
    void Commit(Char* target, Char* old, std::size_t n, std::uint32_t rounded);

    Char* m_chars;
    std::uint32_t m_capacity; // documented
    std::uint32_t m_increment;
    std::uint32_t m_block;  // characters in the heap block
    std::uint32_t m_length; // valid unless exposed
    bool m_exposed;
};

} // namespace detail
} // namespace base
} // namespace lumo

#endif
