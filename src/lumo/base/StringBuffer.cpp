// CStringBuffer and CUnicodeStringBuffer, and the character array they hold.
#include <lumo/base/StringBuffer.h>

#include <lumo/base/Exception.h>
#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>
#include <vela/Chars.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace lumo {
namespace base {

namespace {

char const kUnit[] = "lumo/base/StringBuffer";
unsigned long const kGrowLine = 296;   // EnsureCapacity and everything that keeps the text
unsigned long const kAssignLine = 356; // a new array for an assignment

std::uint32_t const kMinIncrement = 8;

std::uint32_t IncrementOf(unsigned long increment) {
    if (increment < kMinIncrement)
        return kMinIncrement;
    return increment > 0xFFFFFFFFul ? 0xFFFFFFFFu : static_cast<std::uint32_t>(increment);
}

// n + (((increment - 1) * n) mod increment) in 32-bit arithmetic. A request beyond
// 32 bits, or one whose rounding wraps, cannot be held and fails like the heap.
std::uint32_t Rounded(std::uint64_t n, std::uint32_t increment, unsigned long line) {
    if (n > 0xFFFFFFFFu)
        throw CMemoryException(kUnit, line);
    std::uint32_t const m = static_cast<std::uint32_t>(n);
    std::uint32_t const rounded = m + ((increment - 1u) * m) % increment;
    if (rounded < m)
        throw CMemoryException(kUnit, line);
    return rounded;
}

// Whether Rounded(n) fits the capacity, told without a division where the increment is
// a power of two: it is then the next multiple, even where the rounding's product
// wraps, since 2^32 is a multiple of the increment and the wrap keeps the remainder.
inline bool FitsRounded(std::uint64_t n, std::uint32_t increment, std::uint32_t capacity) {
    std::uint64_t const mask = std::uint64_t(increment) - 1;
    return (increment & mask) == 0 && ((n + mask) & ~mask) <= capacity;
}

std::size_t BoundedLength(char const* s, std::size_t limit) {
    return strnlen(s, limit);
}
std::size_t BoundedLength(unsigned short const* s, std::size_t limit) {
    std::size_t n = 0;
    while (n < limit && s[n] != 0)
        ++n;
    return n;
}

std::size_t Strlen(char const* s) {
    return s == nullptr ? 0 : std::strlen(s);
}
std::size_t Ucslen(unsigned short const* s) {
    return s == nullptr ? 0 : BoundedLength(s, ~std::size_t(0));
}

// Converters for AssignConverted / AppendConverted.
auto ToBytes(unsigned short const* text, long length) {
    return [text, length](char* target, long size) {
        return text == nullptr ? 0 : Vela::CHUnicode2ANSI(text, length, target, size);
    };
}
auto ToUnits(char const* text, long length) {
    return [text, length](unsigned short* target, long size) {
        return text == nullptr ? 0 : Vela::CHANSI2Unicode(text, length, target, size);
    };
}

char const kNoText[1] = {0};
unsigned short const kNoUnits[1] = {0};

} // namespace

namespace detail {

template <typename Char> Char* AllocateChars(std::uint32_t n, unsigned long line) {
    void* p = std::malloc(std::size_t(n) * sizeof(Char));
    if (p == nullptr)
        throw CMemoryException(kUnit, line);
    return static_cast<Char*>(p);
}

template <typename Char>
CharArray<Char>::CharArray(CharArray const& other) : CharArray(other.m_increment) {
    Assign(other.m_chars, other.Length());
}

template <typename Char>
CharArray<Char>::CharArray(CharArray&& other) noexcept
    : m_chars(other.m_chars), m_capacity(other.m_capacity), m_increment(other.m_increment),
      m_block(other.m_block), m_length(other.m_length), m_exposed(other.m_exposed) {
    other.m_chars = nullptr;
    other.m_capacity = other.m_block = other.m_length = 0;
    other.m_exposed = false;
}

template <typename Char> CharArray<Char>& CharArray<Char>::operator=(CharArray const& other) {
    if (this != &other)
        Assign(other.m_chars, other.Length());
    return *this;
}

template <typename Char> CharArray<Char>& CharArray<Char>::operator=(CharArray&& other) noexcept {
    if (this != &other) {
        std::free(m_chars);
        m_chars = other.m_chars;
        m_capacity = other.m_capacity;
        m_block = other.m_block;
        m_length = other.m_length;
        m_exposed = other.m_exposed;
        other.m_chars = nullptr;
        other.m_capacity = other.m_block = other.m_length = 0;
        other.m_exposed = false;
    }
    return *this;
}

template <typename Char> CharArray<Char>::~CharArray() {
    std::free(m_chars);
}

template <typename Char> std::size_t CharArray<Char>::Length() const {
    if (m_chars == nullptr)
        return 0;
    return m_exposed ? BoundedLength(m_chars, m_capacity) : m_length;
}

template <typename Char> void CharArray<Char>::Ensure(std::uint64_t n) {
    Ensure(n, Length());
}

// `length` is the text's present length. The block is reallocated in place where
// the heap allows; what lies beyond the terminator is kept too (a caller may have
// written there), and an array filled to the end gets a terminator behind it.
template <typename Char> void CharArray<Char>::Ensure(std::uint64_t n, std::size_t length) {
    if (FitsRounded(n, m_increment, m_capacity))
        return;
    std::uint32_t const rounded = Rounded(n, m_increment, kGrowLine);
    if (rounded <= m_capacity)
        return;
    if (rounded > m_block) {
        std::uint64_t block = std::uint64_t(m_block) * 2;
        if (block < rounded || block > 0xFFFFFFFFu)
            block = rounded;
        void* p = std::realloc(m_chars, std::size_t(block) * sizeof(Char));
        if (p == nullptr && block != rounded) {
            block = rounded;
            p = std::realloc(m_chars, std::size_t(block) * sizeof(Char));
        }
        if (p == nullptr)
            throw CMemoryException(kUnit, kGrowLine);
        if (m_chars == nullptr)
            length = 0;
        m_chars = static_cast<Char*>(p);
        m_block = static_cast<std::uint32_t>(block);
    }
    m_chars[m_capacity] = 0; // behind the old end, or the first character of a new array
    m_capacity = rounded;
    // To the caller the array is new: no pointer handed out before is valid.
    m_length = static_cast<std::uint32_t>(length);
    m_exposed = false;
}

template <typename Char> Char* CharArray<Char>::Writable(std::uint64_t n) {
    Ensure(n);
    m_exposed = true;
    return m_chars;
}

// Room for a text of n characters, the present contents not kept. A new block is
// handed back in `old` for the caller to free once the text is in place, since the
// text may come from it.
template <typename Char>
Char* CharArray<Char>::Prepare(std::size_t n, Char*& old, std::uint32_t& rounded) {
    old = nullptr;
    rounded = Rounded(std::uint64_t(n) + 1, m_increment, kAssignLine);
    if (rounded <= m_block)
        return m_chars;
    old = m_chars;
    return AllocateChars<Char>(rounded, kAssignLine);
}

template <typename Char>
void CharArray<Char>::Commit(Char* target, Char* old, std::size_t n, std::uint32_t rounded) {
    target[n] = 0;
    if (target != m_chars) {
        m_chars = target;
        m_block = rounded;
    }
    if (rounded > m_capacity) {
        m_capacity = rounded;
        m_exposed = false; // a new array, as far as callers know
    }
    m_length = static_cast<std::uint32_t>(n);
    std::free(old);
}

template <typename Char> void CharArray<Char>::Assign(Char const* text, std::size_t n) {
    if (n == 0) {
        Empty();
        return;
    }
    Char* old;
    std::uint32_t rounded;
    Char* target = Prepare(n, old, rounded);
    std::memmove(target, text, n * sizeof(Char));
    Commit(target, old, n, rounded);
}

template <typename Char> void CharArray<Char>::Append(Char const* text, std::size_t n) {
    if (n == 0)
        return;
    std::size_t const length = Length();
    // A text from this very array moves with it.
    std::uintptr_t const at = reinterpret_cast<std::uintptr_t>(text);
    std::uintptr_t const start = reinterpret_cast<std::uintptr_t>(m_chars);
    bool const inside = m_chars != nullptr && at >= start && at - start < m_block * sizeof(Char);
    std::size_t const offset = inside ? (at - start) / sizeof(Char) : 0;
    Ensure(std::uint64_t(length) + n + 1, length);
    if (inside)
        text = m_chars + offset;
    std::memmove(m_chars + length, text, n * sizeof(Char));
    m_chars[length + n] = 0;
    m_length = static_cast<std::uint32_t>(length + n);
}

template <typename Char>
template <typename Convert>
void CharArray<Char>::AssignConverted(Convert convert) {
    long const needed = convert(nullptr, 0);
    if (needed <= 0) {
        Empty();
        return;
    }
    Char* old;
    std::uint32_t rounded;
    Char* target = Prepare(std::size_t(needed), old, rounded);
    long written = convert(target, needed + 1);
    if (written < 0 || written > needed)
        written = written < 0 ? 0 : needed;
    Commit(target, old, std::size_t(written), rounded);
}

template <typename Char>
template <typename Convert>
void CharArray<Char>::AppendConverted(Convert convert) {
    long const needed = convert(nullptr, 0);
    if (needed <= 0)
        return;
    std::size_t const length = Length();
    Ensure(std::uint64_t(length) + std::uint64_t(needed) + 1, length);
    long written = convert(m_chars + length, needed + 1);
    if (written < 0 || written > needed)
        written = written < 0 ? 0 : needed;
    m_chars[length + std::size_t(written)] = 0;
    m_length = static_cast<std::uint32_t>(length + std::size_t(written));
}

template <typename Char> void CharArray<Char>::Empty() {
    if (m_chars != nullptr) {
        m_chars[0] = 0;
        m_length = 0;
    }
}

template <typename Char> void CharArray<Char>::Trim() {
    std::size_t const length = Length();
    if (m_chars == nullptr || length >= m_capacity)
        return;
    std::uint32_t const rounded = Rounded(std::uint64_t(length) + 1, m_increment, kGrowLine);
    if (rounded >= m_capacity)
        return;
    // A shrink the heap refuses leaves the larger array in use.
    void* smaller = std::realloc(m_chars, std::size_t(rounded) * sizeof(Char));
    if (smaller == nullptr)
        return;
    m_chars = static_cast<Char*>(smaller);
    m_capacity = m_block = rounded;
}

template <typename Char> void CharArray<Char>::AllocateZeroed(unsigned long n) {
    std::uint32_t const rounded = Rounded(n, m_increment, kGrowLine);
    if (rounded == 0)
        return;
    void* p = std::calloc(rounded, sizeof(Char));
    if (p == nullptr)
        throw CMemoryException(kUnit, kGrowLine);
    std::free(m_chars);
    m_chars = static_cast<Char*>(p);
    m_capacity = m_block = rounded;
    m_length = 0;
    m_exposed = false;
}

template class CharArray<char>;
template class CharArray<unsigned short>;

} // namespace detail

// ---------------------------------------------------------------------------------
// CStringBuffer

CStringBuffer::CStringBuffer(unsigned long increment) : m_array(IncrementOf(increment)) {}

CStringBuffer::CStringBuffer(unsigned long capacity, unsigned long increment)
    : m_array(IncrementOf(increment)) {
    m_array.AllocateZeroed(capacity);
}

CStringBuffer::CStringBuffer(CStringBuffer const& other) = default;
CStringBuffer::CStringBuffer(CStringBuffer&& other) noexcept = default;
CStringBuffer::~CStringBuffer() = default;
CStringBuffer& CStringBuffer::operator=(CStringBuffer const& other) = default;
CStringBuffer& CStringBuffer::operator=(CStringBuffer&& other) noexcept = default;

CStringBuffer& CStringBuffer::operator=(char const* text) {
    m_array.Assign(text, Strlen(text));
    return *this;
}

CStringBuffer& CStringBuffer::operator=(unsigned short const* text) {
    m_array.AssignConverted(ToBytes(text, -1));
    return *this;
}

CStringBuffer& CStringBuffer::operator=(CString const& text) {
    return *this = static_cast<char const*>(text);
}

CStringBuffer& CStringBuffer::operator=(CUnicodeString const& text) {
    m_array.AssignConverted(ToBytes(text, static_cast<long>(text.GetLength())));
    return *this;
}

CStringBuffer& CStringBuffer::operator+=(CStringBuffer const& other) {
    m_array.Append(other.m_array.Data(), other.m_array.Length());
    return *this;
}

CStringBuffer& CStringBuffer::operator+=(char const* text) {
    m_array.Append(text, Strlen(text));
    return *this;
}

CStringBuffer& CStringBuffer::operator+=(unsigned short const* text) {
    m_array.AppendConverted(ToBytes(text, -1));
    return *this;
}

CStringBuffer& CStringBuffer::operator+=(CString const& text) {
    return *this += static_cast<char const*>(text);
}

CStringBuffer& CStringBuffer::operator+=(CUnicodeString const& text) {
    m_array.AppendConverted(ToBytes(text, static_cast<long>(text.GetLength())));
    return *this;
}

CStringBuffer::operator char*() {
    return GetBuffer(1);
}

CStringBuffer::operator char const*() const {
    return m_array.Data() == nullptr ? kNoText : m_array.Data();
}

char* CStringBuffer::GetBuffer(unsigned long n) {
    return m_array.Writable(n == 0 ? 1 : n);
}

unsigned long CStringBuffer::GetSize() const {
    return static_cast<unsigned long>(m_array.Length());
}

bool CStringBuffer::IsEmpty() const {
    return m_array.Data() == nullptr || m_array.Data()[0] == 0;
}

void CStringBuffer::Empty() {
    m_array.Empty();
}

void CStringBuffer::EnsureCapacity(unsigned long n) {
    m_array.Ensure(n);
}

void CStringBuffer::TrimToSize() {
    m_array.Trim();
}

void CStringBuffer::SetCapacityIncrement(unsigned long increment) {
    m_array.SetIncrement(IncrementOf(increment));
}

// ---------------------------------------------------------------------------------
// CUnicodeStringBuffer

CUnicodeStringBuffer::CUnicodeStringBuffer(unsigned long increment)
    : m_array(IncrementOf(increment)) {}

CUnicodeStringBuffer::CUnicodeStringBuffer(unsigned long capacity, unsigned long increment)
    : m_array(IncrementOf(increment)) {
    m_array.AllocateZeroed(capacity);
}

CUnicodeStringBuffer::CUnicodeStringBuffer(CUnicodeStringBuffer const& other) = default;
CUnicodeStringBuffer::CUnicodeStringBuffer(CUnicodeStringBuffer&& other) noexcept = default;
CUnicodeStringBuffer::~CUnicodeStringBuffer() = default;
CUnicodeStringBuffer& CUnicodeStringBuffer::operator=(CUnicodeStringBuffer const& other) = default;
CUnicodeStringBuffer&
CUnicodeStringBuffer::operator=(CUnicodeStringBuffer&& other) noexcept = default;

CUnicodeStringBuffer& CUnicodeStringBuffer::operator=(unsigned short const* text) {
    m_array.Assign(text, Ucslen(text));
    return *this;
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator=(char const* text) {
    m_array.AssignConverted(ToUnits(text, -1));
    return *this;
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator=(CString const& text) {
    return *this = static_cast<char const*>(text);
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator=(CUnicodeString const& text) {
    return *this = static_cast<unsigned short const*>(text);
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator+=(CUnicodeStringBuffer const& other) {
    m_array.Append(other.m_array.Data(), other.m_array.Length());
    return *this;
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator+=(unsigned short const* text) {
    m_array.Append(text, Ucslen(text));
    return *this;
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator+=(char const* text) {
    m_array.AppendConverted(ToUnits(text, -1));
    return *this;
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator+=(CString const& text) {
    return *this += static_cast<char const*>(text);
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator+=(CUnicodeString const& text) {
    return *this += static_cast<unsigned short const*>(text);
}

CUnicodeStringBuffer::operator unsigned short*() {
    return GetBuffer(1);
}

CUnicodeStringBuffer::operator unsigned short const*() const {
    return m_array.Data() == nullptr ? kNoUnits : m_array.Data();
}

unsigned short* CUnicodeStringBuffer::GetBuffer(unsigned long n) {
    return m_array.Writable(n == 0 ? 1 : n);
}

unsigned long CUnicodeStringBuffer::GetSize() const {
    return static_cast<unsigned long>(m_array.Length());
}

bool CUnicodeStringBuffer::IsEmpty() const {
    return m_array.Data() == nullptr || m_array.Data()[0] == 0;
}

void CUnicodeStringBuffer::Empty() {
    m_array.Empty();
}

void CUnicodeStringBuffer::EnsureCapacity(unsigned long n) {
    m_array.Ensure(n);
}

void CUnicodeStringBuffer::TrimToSize() {
    m_array.Trim();
}

void CUnicodeStringBuffer::SetCapacityIncrement(unsigned long increment) {
    m_array.SetIncrement(IncrementOf(increment));
}

} // namespace base
} // namespace lumo
