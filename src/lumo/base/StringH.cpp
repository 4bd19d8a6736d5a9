// CStringH: stores its text in a handle of the root layer's handle memory manager, and
// its comparisons, lock count and Empty, which writes '0' rather than a terminator.
#include <lumo/base/StringH.h>

#include <lumo/base/Exception.h>
#include <lumo/base/String.h>
#include <vela/Chars.h>
#include <vela/Memory.h>

#include <cstring>

namespace lumo {
namespace base {

// Line numbers that the library's documented behaviour fixes for these failures.
unsigned long const kMemoryLine = 263; // no handle memory for the text

namespace {

// "No limit" for Store: the whole text is copied with CHCopyC.
unsigned long const kWhole = ~0ul;

} // namespace

CStringH::CStringH(char const* s) : CStringH() {
    Store(s, kWhole);
}

CStringH::CStringH(CString const& s) : CStringH() {
    Store(s, s.GetLength());
}

CStringH::CStringH(CStringH const& other) : CStringH() {
    if (other.m_handle != nullptr)
        Store(other, other.m_length);
}

CStringH::~CStringH() {
    Vela::bmManager::KillHandle(m_handle);
}

CStringH& CStringH::operator=(char const* s) {
    Store(s, kWhole);
    return *this;
}

CStringH& CStringH::operator=(CString const& s) {
    Store(s, s.GetLength());
    return *this;
}

CStringH& CStringH::operator=(CStringH const& other) {
    if (this != &other)
        Store(other, other.m_length);
    return *this;
}

CStringH::operator char const*() const {
    return Vela::bmManager::Access(m_handle);
}

void CStringH::Empty() {
    if (m_handle == nullptr || m_length == 0)
        return;
    Vela::bmManager::Access(m_handle)[0] = '0';
    m_length = 0;
}

int CStringH::Compare(char const* s) const {
    return CompareText(s, s == nullptr || *s == '\0');
}

int CStringH::Compare(CStringH const& s) const {
    return CompareText(s, s.IsEmpty());
}

int CStringH::Compare(CString const& s) const {
    return CompareText(s, s.IsEmpty());
}

int CStringH::CompareText(char const* s, bool sEmpty) const {
    if (sEmpty)
        return m_length > 0 ? 1 : 0;
    if (m_length == 0)
        return -1;
    return Vela::CHCompareTexts(Vela::bmManager::Access(m_handle), -1, s, -1,
                                Vela::CH_CASE_SENSITIVE);
}

// Copies s (at most maxLength bytes unless kWhole) into the handle. A null text with no
// handle yet stores nothing; otherwise it stores an empty text.
void CStringH::Store(char const* s, unsigned long maxLength) {
    if (s == nullptr) {
        if (m_handle == nullptr)
            return;
        s = "";
    }
    std::size_t const n = maxLength == kWhole ? std::strlen(s) : ::strnlen(s, maxLength);
    if (n >= 0xFFFFFFFFu)
        throw CMemoryException("lumo/base/StringH", kMemoryLine);
    // A text inside our own block is copied out first: the copy routines may not
    // overlap, and the block may move when it grows.
    CString own;
    char const* block = Vela::bmManager::Access(m_handle);
    if (block != nullptr && s >= block && s < block + m_capacity) {
        own.SetLength(n);
        std::memcpy(own.GetBuffer(n), s, n);
        s = own;
    }
    MakeRoom(static_cast<std::uint32_t>(n + 1));
    char* target = Vela::bmManager::Access(m_handle);
    long const copied = maxLength == kWhole
                            ? Vela::CHCopyC(target, long(m_capacity), s)
                            : Vela::CHTruncate(target, long(m_capacity), s, long(n));
    m_length = copied < 0 ? 0 : static_cast<std::uint32_t>(copied);
}

void CStringH::MakeRoom(std::uint32_t n) {
    if (m_capacity >= n)
        return;
    Vela::BMHandle handle = m_handle != nullptr ? Vela::bmManager::ResizeHandle(m_handle, n)
                                                : Vela::bmManager::NewHandle(n);
    if (handle == nullptr)
        throw CMemoryException("lumo/base/StringH", kMemoryLine);
    m_handle = handle;
    m_capacity = n;
}

bool operator==(CStringH const& a, char const* b) {
    return a.Compare(b) == 0;
}
bool operator==(CStringH const& a, CString const& b) {
    return a.Compare(b) == 0;
}
bool operator==(CStringH const& a, CStringH const& b) {
    return a.Compare(b) == 0;
}
bool operator==(char const* a, CStringH const& b) {
    return b.Compare(a) == 0;
}
bool operator==(CString const& a, CStringH const& b) {
    return b.Compare(a) == 0;
}
bool operator!=(CStringH const& a, char const* b) {
    return a.Compare(b) != 0;
}
bool operator!=(CStringH const& a, CString const& b) {
    return a.Compare(b) != 0;
}
bool operator!=(CStringH const& a, CStringH const& b) {
    return a.Compare(b) != 0;
}
bool operator!=(char const* a, CStringH const& b) {
    return b.Compare(a) != 0;
}
bool operator!=(CString const& a, CStringH const& b) {
    return b.Compare(a) != 0;
}

} // namespace base
} // namespace lumo
