// CStringVectorH: keeps its strings and their offsets in two handles of the root layer's
// handle memory manager, zeroing new bytes and compacting after removals.
#include <lumo/util/StringVectorH.h>

#include <lumo/base/Exception.h>
#include <lumo/util/Capacity.h>
#include <lumo/util/NoSuchElementException.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace lumo {
namespace util {

using base::CString;
using Vela::bmManager;

namespace {

char const kUnit[] = "lumo/util/StringVectorH";

std::uint32_t IncrementOf(unsigned long increment, std::uint32_t replacement) {
    if (increment == 0)
        return replacement;
    return increment > 0xFFFFFFFFul ? 0xFFFFFFFFu : static_cast<std::uint32_t>(increment);
}

[[noreturn]] void ThrowMemory(int line) {
    throw base::CMemoryException(kUnit, static_cast<unsigned long>(line));
}

// Gives `handle` (or a new one) `size` bytes, zeroing any bytes it gains so that
// nothing in a block is ever unset. False when the block cannot be obtained; the
// handle and its contents are then untouched.
bool SizeBlock(Vela::BMHandle& handle, std::uint32_t size) {
    if (handle == nullptr) {
        Vela::BMHandle fresh = bmManager::NewHandle(size);
        if (fresh == nullptr)
            return false;
        std::memset(bmManager::Access(fresh), 0, size);
        handle = fresh;
        return true;
    }
    unsigned long const old = bmManager::GetSize(handle);
    Vela::BMHandle resized = bmManager::ResizeHandle(handle, size);
    if (resized == nullptr)
        return false;
    handle = resized;
    if (size > old)
        std::memset(bmManager::Access(handle) + old, 0, size - old);
    return true;
}

} // namespace

CStringVectorH::CStringVectorH(unsigned long initialDataCapacity, unsigned long dataIncrement,
                               unsigned long initialIndexCapacity, unsigned long indexIncrement)
    : m_size(0), m_data(nullptr), m_dataUsed(0), m_dataCapacity(0),
      m_dataIncrement(IncrementOf(dataIncrement, 256)), m_index(nullptr), m_indexCapacity(0),
      m_indexIncrement(IncrementOf(indexIncrement, 1)) {
    try {
        if (initialDataCapacity > 0)
            EnsureData(initialDataCapacity);
        if (initialIndexCapacity > 0)
            EnsureIndex(initialIndexCapacity);
    } catch (...) {
        bmManager::KillHandle(m_data);
        throw;
    }
}

CStringVectorH::CStringVectorH(CStringVectorH const& other)
    : m_size(0), m_data(nullptr), m_dataUsed(0), m_dataCapacity(0),
      m_dataIncrement(other.m_dataIncrement), m_index(nullptr), m_indexCapacity(0),
      m_indexIncrement(other.m_indexIncrement) {
    try {
        // A slot kept after its string was cut off still reads the bytes past data
        // used (see RemoveElementAt): they are copied too, so the copy answers every
        // query as the original does.
        std::uint32_t bytes = other.m_dataUsed;
        if (other.m_size > 0) {
            std::uint32_t length;
            char const* const last = other.TextAt(other.m_size - 1, length);
            if (length > 0) {
                std::uint32_t const end =
                    static_cast<std::uint32_t>(last - bmManager::Access(other.m_data)) + length;
                bytes = std::max(bytes, end);
            }
        }
        if (bytes > 0) {
            EnsureData(static_cast<std::uint64_t>(bytes) + 1);
            char* const data = bmManager::Access(m_data);
            std::memcpy(data, bmManager::Access(other.m_data), bytes);
            data[bytes] = '\0';
        }
        if (other.m_size > 0) {
            EnsureIndex(other.m_size);
            std::memcpy(Offsets(), other.Offsets(), other.m_size * sizeof(std::uint32_t));
        }
    } catch (...) {
        bmManager::KillHandle(m_data);
        bmManager::KillHandle(m_index);
        throw;
    }
    m_size = other.m_size;
    m_dataUsed = other.m_dataUsed;
}

CStringVectorH& CStringVectorH::operator=(CStringVectorH const& other) {
    if (this != &other) {
        CStringVectorH copy(other);
        std::swap(m_size, copy.m_size);
        std::swap(m_data, copy.m_data);
        std::swap(m_dataUsed, copy.m_dataUsed);
        std::swap(m_dataCapacity, copy.m_dataCapacity);
        std::swap(m_dataIncrement, copy.m_dataIncrement);
        std::swap(m_index, copy.m_index);
        std::swap(m_indexCapacity, copy.m_indexCapacity);
        std::swap(m_indexIncrement, copy.m_indexIncrement);
    }
    return *this;
}

CStringVectorH::~CStringVectorH() {
    bmManager::KillHandle(m_data);
    bmManager::KillHandle(m_index);
}

std::uint32_t* CStringVectorH::Offsets() const {
    return reinterpret_cast<std::uint32_t*>(bmManager::Access(m_index));
}

std::uint32_t CStringVectorH::CheckIndex(unsigned long index, int line) const {
    if (index >= m_size)
        throw base::CArrayIndexOutOfBoundsException(kUnit, static_cast<unsigned long>(line));
    return static_cast<std::uint32_t>(index);
}

unsigned long CStringVectorH::GetOffsetAt(unsigned long index) const {
    return Offsets()[CheckIndex(index, __LINE__)];
}

char const* CStringVectorH::TextAt(std::uint32_t index, std::uint32_t& length) const {
    // A slot kept after its string was cut off (see RemoveElementAt) may point at
    // or beyond the bytes in use: read what the block holds there, never past it.
    std::uint32_t const offset = Offsets()[index];
    unsigned long const size = m_data != nullptr ? bmManager::GetSize(m_data) : 0;
    if (offset >= size) {
        length = 0;
        return "";
    }
    char const* text = bmManager::Access(m_data) + offset;
    length = static_cast<std::uint32_t>(strnlen(text, size - offset));
    return text;
}

bool CStringVectorH::EqualsAt(std::uint32_t index, char const* text, std::uint32_t length) const {
    std::uint32_t stored;
    char const* at = TextAt(index, stored);
    return stored == length && std::memcmp(at, text, length) == 0;
}

void CStringVectorH::EnsureData(std::uint64_t bytes) {
    std::uint32_t capacity;
    if (!RoundUpCapacity(bytes, m_dataIncrement, capacity)) {
        m_dataCapacity = 0;
        ThrowMemory(__LINE__);
    }
    if (capacity <= m_dataCapacity)
        return;
    if (!SizeBlock(m_data, capacity)) {
        m_dataCapacity = 0;
        ThrowMemory(__LINE__);
    }
    m_dataCapacity = capacity;
}

void CStringVectorH::EnsureIndex(std::uint64_t entries) {
    std::uint32_t capacity;
    if (!RoundUpCapacity(entries, m_indexIncrement, capacity) ||
        capacity > 0xFFFFFFFFu / sizeof(std::uint32_t)) {
        m_indexCapacity = 0;
        ThrowMemory(__LINE__);
    }
    if (capacity <= m_indexCapacity)
        return;
    if (!SizeBlock(m_index, capacity * static_cast<std::uint32_t>(sizeof(std::uint32_t)))) {
        m_indexCapacity = 0;
        ThrowMemory(__LINE__);
    }
    m_indexCapacity = capacity;
}

// Shrinks the blocks after a removal: the data block to its bytes in use plus one
// increment (rounded), the index like a vector buffer. A block that cannot be
// shrunk simply stays larger.
void CStringVectorH::Compact() {
    std::uint32_t const dataTarget = CompactedCapacityWithSlack(m_dataUsed, m_dataIncrement);
    if (m_data != nullptr && dataTarget < m_dataCapacity && SizeBlock(m_data, dataTarget))
        m_dataCapacity = dataTarget;
    std::uint32_t const indexTarget = CompactedCapacity(m_size, m_indexIncrement);
    if (m_index != nullptr && indexTarget < m_indexCapacity &&
        SizeBlock(m_index, indexTarget * static_cast<std::uint32_t>(sizeof(std::uint32_t))))
        m_indexCapacity = indexTarget;
}

void CStringVectorH::AddElement(CString const& text) {
    InsertElementAt(text, m_size);
}

void CStringVectorH::InsertElementAt(CString const& text, unsigned long index) {
    if (index > m_size)
        throw base::CArrayIndexOutOfBoundsException(kUnit, __LINE__);
    char const* chars = text;
    std::uint32_t const bytes = static_cast<std::uint32_t>(std::strlen(chars)) + 1;
    EnsureData(static_cast<std::uint64_t>(m_dataUsed) + bytes);
    EnsureIndex(static_cast<std::uint64_t>(m_size) + 1);
    char* data = bmManager::Access(m_data);
    std::uint32_t* offsets = Offsets();
    std::uint32_t const at = static_cast<std::uint32_t>(index);
    std::uint32_t const offset = at < m_size ? offsets[at] : m_dataUsed;
    std::memmove(data + offset + bytes, data + offset, m_dataUsed - offset);
    std::memcpy(data + offset, chars, bytes);
    std::memmove(offsets + at + 1, offsets + at, (m_size - at) * sizeof(std::uint32_t));
    offsets[at] = offset;
    for (std::uint32_t i = at + 1; i <= m_size; ++i)
        offsets[i] += bytes;
    m_dataUsed += bytes;
    ++m_size;
}

void CStringVectorH::SetElementAt(unsigned long index, CString const& text) {
    std::uint32_t const at = CheckIndex(index, __LINE__);
    char const* chars = text;
    std::uint32_t const bytes = static_cast<std::uint32_t>(std::strlen(chars)) + 1;
    std::uint32_t const offset = Offsets()[at];
    bool const last = (at + 1 == m_size);
    std::uint32_t const end = last ? m_dataUsed : Offsets()[at + 1];
    std::uint32_t const slot = end - offset;
    if (bytes > slot)
        EnsureData(static_cast<std::uint64_t>(m_dataUsed) + (bytes - slot));
    char* data = bmManager::Access(m_data);
    std::uint32_t* offsets = Offsets();
    if (!last) {
        std::memmove(data + offset + bytes, data + end, m_dataUsed - end);
        for (std::uint32_t i = at + 1; i < m_size; ++i)
            offsets[i] = offsets[i] + bytes - slot; // wraps back for a shorter text
    }
    std::memcpy(data + offset, chars, bytes);
    m_dataUsed = m_dataUsed + bytes - slot;
}

CString CStringVectorH::GetElementAt(unsigned long index) const {
    CString text;
    GetElementAt(index, text);
    return text;
}

void CStringVectorH::GetElementAt(unsigned long index, CString& text) const {
    std::uint32_t length;
    char const* at = TextAt(CheckIndex(index, __LINE__), length);
    CString result;
    if (length > 0) {
        std::memcpy(result.GetBuffer(length), at, length);
        result.SetLength(length);
    }
    text = std::move(result);
}

CString CStringVectorH::GetFirstElement() const {
    CString text;
    GetFirstElement(text);
    return text;
}

void CStringVectorH::GetFirstElement(CString& text) const {
    if (m_size == 0)
        throw CNoSuchElementException(kUnit, __LINE__);
    GetElementAt(0, text);
}

CString CStringVectorH::GetLastElement() const {
    CString text;
    GetLastElement(text);
    return text;
}

void CStringVectorH::GetLastElement(CString& text) const {
    if (m_size == 0)
        throw CNoSuchElementException(kUnit, __LINE__);
    GetElementAt(m_size - 1, text);
}

long CStringVectorH::GetIndexOf(CString const& text) const {
    char const* chars = text;
    std::uint32_t const length = static_cast<std::uint32_t>(std::strlen(chars));
    for (std::uint32_t i = 0; i < m_size; ++i)
        if (EqualsAt(i, chars, length))
            return static_cast<long>(i);
    return -1;
}

long CStringVectorH::GetLastIndexOf(CString const& text) const {
    char const* chars = text;
    std::uint32_t const length = static_cast<std::uint32_t>(std::strlen(chars));
    for (std::uint32_t i = m_size; i > 0; --i)
        if (EqualsAt(i - 1, chars, length))
            return static_cast<long>(i - 1);
    return -1;
}

void CStringVectorH::RemoveElement(CString const& text) {
    long const index = GetIndexOf(text);
    if (index >= 0)
        RemoveElementAt(static_cast<unsigned long>(index));
}

void CStringVectorH::RemoveElementAt(unsigned long index) {
    std::uint32_t const at = CheckIndex(index, __LINE__);
    std::uint32_t* offsets = Offsets();
    if (at + 1 < m_size) {
        std::uint32_t const offset = offsets[at];
        std::uint32_t const removed = offsets[at + 1] - offset;
        char* data = bmManager::Access(m_data);
        std::memmove(data + offset, data + offset + removed, m_dataUsed - offset - removed);
        for (std::uint32_t i = at + 1; i < m_size; ++i)
            offsets[i - 1] = offsets[i] - removed;
        --m_size;
        m_dataUsed -= removed;
    } else {
        // The last string: its bytes go, its slot stays counted.
        m_dataUsed = offsets[at];
    }
    Compact();
}

void CStringVectorH::RemoveAllElements() {
    m_size = 0;
    m_dataUsed = 0;
    Compact();
}

} // namespace util
} // namespace lumo
