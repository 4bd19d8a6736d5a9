// CStringBuffer and CUnicodeStringBuffer: growable C-heap arrays rounded to a capacity
// increment in 32-bit arithmetic, with conversion between UTF-8 and UTF-16 arguments.
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

std::size_t BoundedLength(char const* s, std::size_t limit) {
    return strnlen(s, limit);
}
std::size_t BoundedLength(unsigned short const* s, std::size_t limit) {
    std::size_t n = 0;
    while (n < limit && s[n] != 0)
        ++n;
    return n;
}

// The storage rules shared by both buffers, over the fields of one of them.
template <typename Char> class Array {
public:
    Array(Char*& chars, std::uint32_t& capacity, std::uint32_t increment)
        : m_chars(chars), m_capacity(capacity), m_increment(increment) {}

    static Char* Allocate(std::uint32_t n, unsigned long line) {
        void* p = std::malloc(std::size_t(n) * sizeof(Char));
        if (p == nullptr)
            throw CMemoryException(kUnit, line);
        return static_cast<Char*>(p);
    }

    std::size_t Length() const {
        return m_chars == nullptr ? 0 : BoundedLength(m_chars, m_capacity);
    }

    // Grows to the rounded n, keeping the whole array (what was written through
    // GetBuffer beyond the terminator too). An array filled to the end without a
    // terminator gets one behind the old end.
    void Ensure(std::uint64_t n) {
        std::uint32_t const rounded = Rounded(n, m_increment, kGrowLine);
        if (rounded <= m_capacity)
            return;
        Char* fresh = Allocate(rounded, kGrowLine);
        if (m_chars != nullptr) {
            std::memcpy(fresh, m_chars, std::size_t(m_capacity) * sizeof(Char));
            fresh[m_capacity] = 0;
            std::free(m_chars);
        } else {
            fresh[0] = 0;
        }
        m_chars = fresh;
        m_capacity = rounded;
    }

    // Room for a text of n characters, the present contents not kept. The old array
    // is handed back for the caller to free once the text is in place, since the
    // text may come from it.
    Char* Prepare(std::size_t n, Char*& old) {
        old = nullptr;
        std::uint32_t const rounded = Rounded(std::uint64_t(n) + 1, m_increment, kAssignLine);
        if (rounded <= m_capacity)
            return m_chars;
        old = m_chars;
        return Allocate(rounded, kAssignLine);
    }
    void Commit(Char* target, Char* old, std::size_t n) {
        target[n] = 0;
        if (target != m_chars) {
            m_chars = target;
            m_capacity = Rounded(std::uint64_t(n) + 1, m_increment, kAssignLine);
        }
        std::free(old);
    }

    void Assign(Char const* text, std::size_t n) {
        if (n == 0) {
            if (m_chars != nullptr)
                m_chars[0] = 0;
            return;
        }
        Char* old;
        Char* target = Prepare(n, old);
        std::memmove(target, text, n * sizeof(Char));
        Commit(target, old, n);
    }

    void Append(Char const* text, std::size_t n) {
        if (n == 0)
            return;
        std::size_t const length = Length();
        // A text from this very array moves with it.
        std::uintptr_t const at = reinterpret_cast<std::uintptr_t>(text);
        std::uintptr_t const start = reinterpret_cast<std::uintptr_t>(m_chars);
        bool const inside =
            m_chars != nullptr && at >= start && at - start < m_capacity * sizeof(Char);
        std::size_t const offset = inside ? (at - start) / sizeof(Char) : 0;
        Ensure(std::uint64_t(length) + n + 1);
        if (inside)
            text = m_chars + offset;
        std::memmove(m_chars + length, text, n * sizeof(Char));
        m_chars[length + n] = 0;
    }

    // A converted text: `convert(target, size)` writes at most size - 1 characters and
    // a terminator and returns the count; with a null target it returns the count
    // needed.
    template <typename Convert> void AssignConverted(Convert convert) {
        long const needed = convert(nullptr, 0);
        if (needed <= 0) {
            Assign(nullptr, 0);
            return;
        }
        Char* old;
        Char* target = Prepare(std::size_t(needed), old);
        long written = convert(target, needed + 1);
        if (written < 0 || written > needed)
            written = written < 0 ? 0 : needed;
        Commit(target, old, std::size_t(written));
    }
    template <typename Convert> void AppendConverted(Convert convert) {
        long const needed = convert(nullptr, 0);
        if (needed <= 0)
            return;
        std::size_t const length = Length();
        Ensure(std::uint64_t(length) + std::uint64_t(needed) + 1);
        long written = convert(m_chars + length, needed + 1);
        if (written < 0 || written > needed)
            written = written < 0 ? 0 : needed;
        m_chars[length + std::size_t(written)] = 0;
    }

    void Trim() {
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
        m_capacity = rounded;
    }

    // Storage for n characters (rounded), all zero.
    void AllocateZeroed(unsigned long n) {
        std::uint32_t const rounded = Rounded(n, m_increment, kGrowLine);
        if (rounded == 0)
            return;
        void* p = std::calloc(rounded, sizeof(Char));
        if (p == nullptr)
            throw CMemoryException(kUnit, kGrowLine);
        m_chars = static_cast<Char*>(p);
        m_capacity = rounded;
    }

private:
    Char*& m_chars;
    std::uint32_t& m_capacity;
    std::uint32_t m_increment;
};

using Bytes = Array<char>;
using Units = Array<unsigned short>;

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

// ---------------------------------------------------------------------------------
// CStringBuffer

CStringBuffer::CStringBuffer(unsigned long increment)
    : m_chars(nullptr), m_capacity(0), m_increment(IncrementOf(increment)) {}

CStringBuffer::CStringBuffer(unsigned long capacity, unsigned long increment)
    : m_chars(nullptr), m_capacity(0), m_increment(IncrementOf(increment)) {
    Bytes(m_chars, m_capacity, m_increment).AllocateZeroed(capacity);
}

CStringBuffer::CStringBuffer(CStringBuffer const& other)
    : m_chars(nullptr), m_capacity(0), m_increment(other.m_increment) {
    Bytes(m_chars, m_capacity, m_increment).Assign(other.m_chars, other.GetSize());
}

CStringBuffer::CStringBuffer(CStringBuffer&& other) noexcept
    : m_chars(other.m_chars), m_capacity(other.m_capacity), m_increment(other.m_increment) {
    other.m_chars = nullptr;
    other.m_capacity = 0;
}

CStringBuffer::~CStringBuffer() {
    std::free(m_chars);
}

CStringBuffer& CStringBuffer::operator=(CStringBuffer const& other) {
    if (this != &other)
        Bytes(m_chars, m_capacity, m_increment).Assign(other.m_chars, other.GetSize());
    return *this;
}

CStringBuffer& CStringBuffer::operator=(CStringBuffer&& other) noexcept {
    if (this != &other) {
        std::free(m_chars);
        m_chars = other.m_chars;
        m_capacity = other.m_capacity;
        other.m_chars = nullptr;
        other.m_capacity = 0;
    }
    return *this;
}

CStringBuffer& CStringBuffer::operator=(char const* text) {
    Bytes(m_chars, m_capacity, m_increment).Assign(text, Strlen(text));
    return *this;
}

CStringBuffer& CStringBuffer::operator=(unsigned short const* text) {
    Bytes(m_chars, m_capacity, m_increment).AssignConverted(ToBytes(text, -1));
    return *this;
}

CStringBuffer& CStringBuffer::operator=(CString const& text) {
    return *this = static_cast<char const*>(text);
}

CStringBuffer& CStringBuffer::operator=(CUnicodeString const& text) {
    Bytes(m_chars, m_capacity, m_increment)
        .AssignConverted(ToBytes(text, static_cast<long>(text.GetLength())));
    return *this;
}

CStringBuffer& CStringBuffer::operator+=(CStringBuffer const& other) {
    Bytes(m_chars, m_capacity, m_increment).Append(other.m_chars, other.GetSize());
    return *this;
}

CStringBuffer& CStringBuffer::operator+=(char const* text) {
    Bytes(m_chars, m_capacity, m_increment).Append(text, Strlen(text));
    return *this;
}

CStringBuffer& CStringBuffer::operator+=(unsigned short const* text) {
    Bytes(m_chars, m_capacity, m_increment).AppendConverted(ToBytes(text, -1));
    return *this;
}

CStringBuffer& CStringBuffer::operator+=(CString const& text) {
    return *this += static_cast<char const*>(text);
}

CStringBuffer& CStringBuffer::operator+=(CUnicodeString const& text) {
    Bytes(m_chars, m_capacity, m_increment)
        .AppendConverted(ToBytes(text, static_cast<long>(text.GetLength())));
    return *this;
}

CStringBuffer::operator char*() {
    return GetBuffer(1);
}

CStringBuffer::operator char const*() const {
    return m_chars == nullptr ? kNoText : m_chars;
}

char* CStringBuffer::GetBuffer(unsigned long n) {
    Bytes(m_chars, m_capacity, m_increment).Ensure(n == 0 ? 1 : n);
    return m_chars;
}

unsigned long CStringBuffer::GetSize() const {
    return m_chars == nullptr ? 0 : static_cast<unsigned long>(BoundedLength(m_chars, m_capacity));
}

bool CStringBuffer::IsEmpty() const {
    return m_chars == nullptr || m_chars[0] == '\0';
}

void CStringBuffer::Empty() {
    if (m_chars != nullptr)
        m_chars[0] = '\0';
}

void CStringBuffer::EnsureCapacity(unsigned long n) {
    Bytes(m_chars, m_capacity, m_increment).Ensure(n);
}

void CStringBuffer::TrimToSize() {
    Bytes(m_chars, m_capacity, m_increment).Trim();
}

void CStringBuffer::SetCapacityIncrement(unsigned long increment) {
    m_increment = IncrementOf(increment);
}

// ---------------------------------------------------------------------------------
// CUnicodeStringBuffer

CUnicodeStringBuffer::CUnicodeStringBuffer(unsigned long increment)
    : m_chars(nullptr), m_capacity(0), m_increment(IncrementOf(increment)) {}

CUnicodeStringBuffer::CUnicodeStringBuffer(unsigned long capacity, unsigned long increment)
    : m_chars(nullptr), m_capacity(0), m_increment(IncrementOf(increment)) {
    Units(m_chars, m_capacity, m_increment).AllocateZeroed(capacity);
}

CUnicodeStringBuffer::CUnicodeStringBuffer(CUnicodeStringBuffer const& other)
    : m_chars(nullptr), m_capacity(0), m_increment(other.m_increment) {
    Units(m_chars, m_capacity, m_increment).Assign(other.m_chars, other.GetSize());
}

CUnicodeStringBuffer::CUnicodeStringBuffer(CUnicodeStringBuffer&& other) noexcept
    : m_chars(other.m_chars), m_capacity(other.m_capacity), m_increment(other.m_increment) {
    other.m_chars = nullptr;
    other.m_capacity = 0;
}

CUnicodeStringBuffer::~CUnicodeStringBuffer() {
    std::free(m_chars);
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator=(CUnicodeStringBuffer const& other) {
    if (this != &other)
        Units(m_chars, m_capacity, m_increment).Assign(other.m_chars, other.GetSize());
    return *this;
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator=(CUnicodeStringBuffer&& other) noexcept {
    if (this != &other) {
        std::free(m_chars);
        m_chars = other.m_chars;
        m_capacity = other.m_capacity;
        other.m_chars = nullptr;
        other.m_capacity = 0;
    }
    return *this;
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator=(unsigned short const* text) {
    Units(m_chars, m_capacity, m_increment).Assign(text, Ucslen(text));
    return *this;
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator=(char const* text) {
    Units(m_chars, m_capacity, m_increment).AssignConverted(ToUnits(text, -1));
    return *this;
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator=(CString const& text) {
    return *this = static_cast<char const*>(text);
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator=(CUnicodeString const& text) {
    return *this = static_cast<unsigned short const*>(text);
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator+=(CUnicodeStringBuffer const& other) {
    Units(m_chars, m_capacity, m_increment).Append(other.m_chars, other.GetSize());
    return *this;
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator+=(unsigned short const* text) {
    Units(m_chars, m_capacity, m_increment).Append(text, Ucslen(text));
    return *this;
}

CUnicodeStringBuffer& CUnicodeStringBuffer::operator+=(char const* text) {
    Units(m_chars, m_capacity, m_increment).AppendConverted(ToUnits(text, -1));
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
    return m_chars == nullptr ? kNoUnits : m_chars;
}

unsigned short* CUnicodeStringBuffer::GetBuffer(unsigned long n) {
    Units(m_chars, m_capacity, m_increment).Ensure(n == 0 ? 1 : n);
    return m_chars;
}

unsigned long CUnicodeStringBuffer::GetSize() const {
    return m_chars == nullptr ? 0 : static_cast<unsigned long>(BoundedLength(m_chars, m_capacity));
}

bool CUnicodeStringBuffer::IsEmpty() const {
    return m_chars == nullptr || m_chars[0] == 0;
}

void CUnicodeStringBuffer::Empty() {
    if (m_chars != nullptr)
        m_chars[0] = 0;
}

void CUnicodeStringBuffer::EnsureCapacity(unsigned long n) {
    Units(m_chars, m_capacity, m_increment).Ensure(n);
}

void CUnicodeStringBuffer::TrimToSize() {
    Units(m_chars, m_capacity, m_increment).Trim();
}

void CUnicodeStringBuffer::SetCapacityIncrement(unsigned long increment) {
    m_increment = IncrementOf(increment);
}

} // namespace base
} // namespace lumo
