#include <lumo/base/String.h>

#include <lumo/base/Exception.h>
#include <lumo/base/FixBlockAllocator.h>
#include <lumo/base/StringH.h>
#include <vela/Chars.h>
#include <vela/Ucs.h>

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace lumo {
namespace base {

namespace {

char const kUnit[] = "lumo/base/String";

// Three 32-bit words in front of the characters (the layout String.h reads inline).
struct Header {
    std::uint32_t capacity;
    std::uint32_t length;
    std::uint32_t references;
};
static_assert(sizeof(Header) == 12, "the header is three 32-bit words");

char const kEmpty[1] = {0};

// The largest capacity the 32-bit header can describe together with itself.
std::uint64_t const kMaxCapacity = 0xFFFFFFFFu - sizeof(Header);

Header* HeaderOf(char* text) {
    return reinterpret_cast<Header*>(text) - 1;
}
std::uint32_t LengthOf(char const* text) {
    return text == nullptr ? 0 : HeaderOf(const_cast<char*>(text))->length;
}

// The five pools, looked up once.
CFixBlockAllocator* Pool(int sizeClass) {
    static CFixBlockAllocator* const pools[5] = {
        &CFixBlockAllocator::StringPool(0), &CFixBlockAllocator::StringPool(1),
        &CFixBlockAllocator::StringPool(2), &CFixBlockAllocator::StringPool(3),
        &CFixBlockAllocator::StringPool(4)};
    return pools[sizeClass];
}

// A private buffer for n bytes (terminator included) holding an empty text.
char* NewBuffer(std::uint64_t n) {
    Header* header;
    std::uint32_t capacity;
    if (n <= 1024) {
        int const sizeClass = n <= 64 ? 0 : n <= 128 ? 1 : n <= 256 ? 2 : n <= 512 ? 3 : 4;
        header = static_cast<Header*>(Pool(sizeClass)->AllocateCached());
        capacity = 64u << sizeClass;
    } else {
        if (n > kMaxCapacity)
            throw CMemoryException(kUnit, 1936);
        header = static_cast<Header*>(std::malloc(sizeof(Header) + n));
        if (header == nullptr)
            throw CMemoryException(kUnit, 1936);
        capacity = static_cast<std::uint32_t>(n);
    }
    header->capacity = capacity;
    header->length = 0;
    header->references = 1;
    char* text = reinterpret_cast<char*>(header + 1);
    text[0] = '\0';
    return text;
}

// Back to the pool of the buffer's class, or to the heap.
void FreeText(char* text) {
    Header* header = HeaderOf(text);
    std::uint32_t const capacity = header->capacity;
    if (capacity < 65)
        Pool(0)->FreeCached(header);
    else if (capacity < 129)
        Pool(1)->FreeCached(header);
    else if (capacity <= 256)
        Pool(2)->FreeCached(header);
    else if (capacity <= 512)
        Pool(3)->FreeCached(header);
    else if (capacity <= 1024)
        Pool(4)->FreeCached(header);
    else
        std::free(header);
}

// Leaves a shared buffer to its other users, frees a private one; null is ignored.
void ReleaseText(char* text) {
    if (text == nullptr)
        return;
    if (HeaderOf(text)->references >= 2)
        --HeaderOf(text)->references;
    else
        FreeText(text);
}

// Owns a private buffer for the length of a scope.
struct Scratch {
    char* text = nullptr;
    ~Scratch() { ReleaseText(text); }
};

// The string becomes exactly the n bytes at s (n = 0: no storage). The new buffer is
// taken before the old one goes, so s may point into it and a failure changes nothing.
void AssignBytes(char*& text, char const* s, std::uint64_t n) {
    char* fresh = nullptr;
    if (n != 0) {
        fresh = NewBuffer(n + 1);
        std::memcpy(fresh, s, n);
        fresh[n] = '\0';
        HeaderOf(fresh)->length = static_cast<std::uint32_t>(n);
    }
    ReleaseText(text);
    text = fresh;
}

// Makes the buffer private and able to hold n bytes (never fewer than the text needs),
// keeping the text. `append` lets a heap buffer grow geometrically so that repeated
// appends stay linear; a private heap buffer is resized in place where the heap can.
void Reserve(char*& text, std::uint64_t n, bool append) {
    std::uint32_t length = 0;
    if (text != nullptr) {
        Header* header = HeaderOf(text);
        length = header->length;
        if (n < std::uint64_t(length) + 1)
            n = std::uint64_t(length) + 1;
        if (header->references < 2) {
            if (header->capacity >= n)
                return;
            if (append && n > 1024) {
                std::uint64_t const doubled = std::uint64_t(header->capacity) * 2;
                if (doubled > n)
                    n = doubled < kMaxCapacity ? doubled : (n > kMaxCapacity ? n : kMaxCapacity);
            }
            if (header->capacity > 1024) {
                if (n > kMaxCapacity)
                    throw CMemoryException(kUnit, 1936);
                auto* moved = static_cast<Header*>(std::realloc(header, sizeof(Header) + n));
                if (moved == nullptr)
                    throw CMemoryException(kUnit, 1936);
                moved->capacity = static_cast<std::uint32_t>(n);
                text = reinterpret_cast<char*>(moved + 1);
                return;
            }
        }
    }
    char* fresh = NewBuffer(n);
    if (text != nullptr) {
        std::memcpy(fresh, text, std::size_t(length) + 1);
        HeaderOf(fresh)->length = length;
        ReleaseText(text);
    }
    text = fresh;
}

void MakePrivate(char*& text) {
    if (text != nullptr && HeaderOf(text)->references > 1)
        Reserve(text, 0, false);
}

void SetTextLength(char* text, std::uint64_t length) {
    HeaderOf(text)->length = static_cast<std::uint32_t>(length);
    text[length] = '\0';
}

// True when s points into the string's own buffer (which a change may move).
bool Inside(char const* text, char const* s) {
    if (text == nullptr)
        return false;
    std::uintptr_t const start = reinterpret_cast<std::uintptr_t>(text);
    std::uintptr_t const at = reinterpret_cast<std::uintptr_t>(s);
    return at >= start && at - start < HeaderOf(const_cast<char*>(text))->capacity;
}

// Inserts n bytes at `index` (cut to the length); returns the new length.
unsigned long InsertBytes(char*& text, std::uint64_t index, char const* s, std::uint64_t n) {
    std::uint32_t const length = LengthOf(text);
    if (n == 0)
        return length;
    if (index > length)
        index = length;
    Scratch copy;
    if (Inside(text, s)) {
        AssignBytes(copy.text, s, n);
        s = copy.text;
    }
    Reserve(text, length + n + 1, true);
    std::memmove(text + index + n, text + index, length - index + 1);
    std::memcpy(text + index, s, n);
    HeaderOf(text)->length = static_cast<std::uint32_t>(length + n);
    return HeaderOf(text)->length;
}

// Appends n bytes; the common case (private buffer with room) stays short.
void AppendBytes(char*& text, char const* s, std::size_t n) {
    if (n == 0)
        return;
    if (text != nullptr) {
        Header* header = HeaderOf(text);
        std::uint32_t const length = header->length;
        if (header->references < 2 && header->capacity - length > n && !Inside(text, s)) {
            std::memcpy(text + length, s, n);
            text[length + n] = '\0';
            header->length = static_cast<std::uint32_t>(length + n);
            return;
        }
    }
    InsertBytes(text, ~0ul, s, n);
}

unsigned short Widen(char c) {
    return static_cast<unsigned short>(static_cast<short>(static_cast<signed char>(c)));
}

// Where the character at p ends, never past `end`, always at least one byte on.
char const* NextChar(char const* p, char const* end) {
    char const* next = Vela::CHGetNextCharPtr(p);
    if (next <= p)
        next = p + 1;
    return next < end ? next : end;
}

long FindChar(char const* text, char c, unsigned long start, bool reverse) {
    std::uint32_t const length = LengthOf(text);
    if (length == 0 || start >= length)
        return -1;
    long const rest = static_cast<long>(length - start);
    char const* hit = reverse ? Vela::CHSearchCharRight(text + start, rest, Widen(c))
                              : Vela::CHSearchCharLeft(text + start, rest, Widen(c));
    return hit == nullptr ? -1 : static_cast<long>(hit - text);
}

// First (or last) occurrence of s at or after `start`.
long FindText(char const* text, char const* s, unsigned long start, int caseType, bool reverse) {
    std::uint32_t const length = LengthOf(text);
    if (length == 0 || start >= length || s == nullptr || *s == '\0')
        return -1;
    long const n = static_cast<long>(std::strlen(s));
    char const* const end = text + length;
    char const* hit = Vela::CHSearchSubstring(text + start, end - (text + start), s, n, caseType);
    // Backwards: keep searching one character after each match; the last one wins.
    while (reverse && hit != nullptr) {
        char const* next = NextChar(hit, end);
        char const* again =
            next < end ? Vela::CHSearchSubstring(next, end - next, s, n, caseType) : nullptr;
        if (again == nullptr)
            break;
        hit = again;
    }
    return hit == nullptr ? -1 : static_cast<long>(hit - text);
}

bool HasAffix(char const* text, char const* s, bool atEnd, int caseType) {
    if (s == nullptr)
        return false;
    std::size_t const n = std::strlen(s);
    std::uint32_t const length = LengthOf(text);
    if (n == 0)
        return true;
    if (n > length)
        return false;
    char const* part = atEnd ? text + length - n : text;
    return Vela::CHCompareTexts(part, static_cast<long>(n), s, static_cast<long>(n), caseType) == 0;
}

int CompareTo(char const* text, char const* s, int caseType) {
    if (LengthOf(text) == 0)
        return s != nullptr ? -1 : 0;
    if (s == nullptr || *s == '\0')
        return 1;
    return Vela::CHCompareTexts(text, -1, s, -1, caseType);
}

// Whether the character [p, q) is trimmed: white space when `set` is null, else a
// character of the set.
bool Trimmed(char const* p, char const* q, char const* set, std::size_t setLength) {
    if (set == nullptr)
        return q - p == 1 && std::isspace(static_cast<unsigned char>(*p));
    return Vela::CHSearchSubstring(set, static_cast<long>(setLength), p, q - p,
                                   Vela::CH_CASE_SENSITIVE) != nullptr;
}

void TrimText(char*& text, char const* set, std::size_t setLength, bool right) {
    std::uint32_t const length = LengthOf(text);
    if (length == 0 || (set != nullptr && setLength == 0))
        return;
    char const* const end = text + length;
    char const* p = text;
    char const* keep = right ? text : end;
    while (p < end) {
        char const* q = NextChar(p, end);
        if (!Trimmed(p, q, set, setLength)) {
            if (!right) {
                keep = p;
                break;
            }
            keep = q;
        }
        p = q;
    }
    std::size_t const cut = keep - text;
    if (right ? cut == length : cut == 0)
        return;
    MakePrivate(text);
    if (right) {
        SetTextLength(text, cut);
    } else {
        std::memmove(text, text + cut, length - cut + 1);
        HeaderOf(text)->length = static_cast<std::uint32_t>(length - cut);
    }
}

// Windows' _vsnprintf: the length written, or -1 when the text did not fit (the
// buffer then holds what fitted, terminated).
int WinVsnprintf(char* buffer, std::size_t size, char const* format, va_list args) {
    va_list copy;
    va_copy(copy, args);
    int const result = std::vsnprintf(buffer, size, format, copy);
    va_end(copy);
    if (result < 0)
        buffer[0] = '\0';
    return result < 0 || static_cast<std::size_t>(result) >= size ? -1 : result;
}

struct FreeDeleter {
    void operator()(char* p) const { std::free(p); }
};

} // namespace

void CString::FreeBuffer(char* text) noexcept {
    FreeText(text);
}

char const* CString::EmptyText() noexcept {
    return kEmpty;
}

CString::CString(char const* s) : m_text(nullptr) {
    if (s != nullptr)
        AssignBytes(m_text, s, std::strlen(s));
}

CString::CString(char const* s, unsigned long n) : m_text(nullptr) {
    Set(s, n);
}

CString::CString(unsigned short const* text) : m_text(nullptr) {
    *this = text;
}

CString::CString(unsigned short const* text, unsigned long n) : m_text(nullptr) {
    if (text == nullptr)
        return;
    unsigned long units = 0;
    while (units < n && units < 0x7FFFFFFFul && text[units] != 0)
        ++units;
    long const needed = units == 0 ? 0 : Vela::CHUnicode2ANSI(text, long(units), nullptr, 0);
    if (needed <= 0)
        return;
    char* fresh = NewBuffer(std::uint64_t(needed) + 1);
    long written = Vela::CHUnicode2ANSI(text, long(units), fresh, needed + 1);
    SetTextLength(fresh, written < 0 ? 0 : written > needed ? needed : written);
    m_text = fresh;
}

CString::CString(CStringH const& other) : m_text(nullptr) {
    *this = other;
}

CString& CString::operator=(CString const& other) {
    if (m_text != other.m_text) {
        char* shared = Share(other.m_text);
        ReleaseText(m_text);
        m_text = shared;
    }
    return *this;
}

CString& CString::operator=(CString&& other) noexcept {
    if (this != &other) {
        ReleaseText(m_text);
        m_text = other.m_text;
        other.m_text = nullptr;
    }
    return *this;
}

CString& CString::operator=(char const* s) {
    AssignBytes(m_text, s, s == nullptr ? 0 : std::strlen(s));
    return *this;
}

CString& CString::operator=(unsigned short const* text) {
    CString converted(text, text == nullptr ? 0 : Vela::ucslen(text));
    return *this = static_cast<CString&&>(converted);
}

CString& CString::operator=(CStringH const& other) {
    AssignBytes(m_text, other, other.GetLength());
    return *this;
}

void CString::Set(char const* s, unsigned long n) {
    if (s == nullptr || n == 0) {
        AssignBytes(m_text, nullptr, 0);
        return;
    }
    // The recorded length is strlen of the whole source. The buffer reaches at least
    // that far, zero-filled behind the kept bytes, so that no later operation that
    // trusts the length can leave it.
    std::size_t const whole = std::strlen(s);
    std::size_t const kept = whole < n ? whole : n;
    std::uint64_t const longest = whole > n ? whole : n;
    if (longest >= kMaxCapacity)
        throw CMemoryException(kUnit, 1936);
    std::uint64_t const room = longest + 1;
    char* fresh = NewBuffer(room);
    std::memcpy(fresh, s, kept);
    std::memset(fresh + kept, 0, room - kept);
    HeaderOf(fresh)->length = static_cast<std::uint32_t>(whole);
    ReleaseText(m_text);
    m_text = fresh;
}

void CString::SetAt(unsigned long i, char c) {
    if (i >= GetLength())
        return;
    MakePrivate(m_text);
    m_text[i] = c;
}

void CString::Empty() {
    if (m_text == nullptr)
        return;
    if (HeaderOf(m_text)->references >= 2) {
        ReleaseText(m_text);
        m_text = nullptr;
    } else {
        SetTextLength(m_text, 0);
    }
}

void CString::EnsureCapacity(unsigned long n) {
    Reserve(m_text, n, false);
}

// n + 1 must not wrap around: a request beyond the header's range is exhaustion.
char* CString::GetBuffer(unsigned long n) {
    Reserve(m_text, n < kMaxCapacity ? n + 1 : ~std::uint64_t(0), false);
    return m_text;
}

void CString::SetLength(unsigned long n) {
    if (m_text == nullptr && n == 0)
        return;
    Reserve(m_text, n < kMaxCapacity ? n + 1 : ~std::uint64_t(0), false);
    SetTextLength(m_text, n);
}

int CString::Compare(char const* s) const {
    return CompareTo(m_text, s, Vela::CH_CASE_SENSITIVE);
}

int CString::Compare(CString const& s) const {
    return CompareTo(m_text, s.IsEmpty() ? nullptr : s.m_text, Vela::CH_CASE_SENSITIVE);
}

int CString::CompareIgnoreCase(char const* s) const {
    return CompareTo(m_text, s, Vela::CH_CASE_INSENSITIVE);
}

int CString::CompareIgnoreCase(CString const& s) const {
    return CompareTo(m_text, s.IsEmpty() ? nullptr : s.m_text, Vela::CH_CASE_INSENSITIVE);
}

long CString::Find(char c, unsigned long start) const {
    return FindChar(m_text, c, start, false);
}

long CString::Find(char const* s, unsigned long start) const {
    return FindText(m_text, s, start, Vela::CH_CASE_SENSITIVE, false);
}

long CString::Find(CString const& s, unsigned long start) const {
    return Find(s.m_text, start);
}

long CString::FindIgnoreCase(char const* s, unsigned long start) const {
    return FindText(m_text, s, start, Vela::CH_CASE_INSENSITIVE, false);
}

long CString::FindIgnoreCase(CString const& s, unsigned long start) const {
    return FindIgnoreCase(s.m_text, start);
}

long CString::ReverseFind(char c, unsigned long start) const {
    return FindChar(m_text, c, start, true);
}

long CString::ReverseFind(char const* s, unsigned long start) const {
    return FindText(m_text, s, start, Vela::CH_CASE_SENSITIVE, true);
}

long CString::ReverseFind(CString const& s, unsigned long start) const {
    return ReverseFind(s.m_text, start);
}

long CString::ReverseFindIgnoreCase(char const* s, unsigned long start) const {
    return FindText(m_text, s, start, Vela::CH_CASE_INSENSITIVE, true);
}

long CString::ReverseFindIgnoreCase(CString const& s, unsigned long start) const {
    return ReverseFindIgnoreCase(s.m_text, start);
}

bool CString::StartsWith(char const* s) const {
    return HasAffix(m_text, s, false, Vela::CH_CASE_SENSITIVE);
}

bool CString::StartsWith(CString const& s) const {
    return StartsWith(static_cast<char const*>(s));
}

bool CString::StartsWithIgnoreCase(char const* s) const {
    return HasAffix(m_text, s, false, Vela::CH_CASE_INSENSITIVE);
}

bool CString::StartsWithIgnoreCase(CString const& s) const {
    return StartsWithIgnoreCase(static_cast<char const*>(s));
}

bool CString::EndsWith(char const* s) const {
    return HasAffix(m_text, s, true, Vela::CH_CASE_SENSITIVE);
}

bool CString::EndsWith(CString const& s) const {
    return EndsWith(static_cast<char const*>(s));
}

bool CString::EndsWithIgnoreCase(char const* s) const {
    return HasAffix(m_text, s, true, Vela::CH_CASE_INSENSITIVE);
}

bool CString::EndsWithIgnoreCase(CString const& s) const {
    return EndsWithIgnoreCase(static_cast<char const*>(s));
}

CString CString::SubString(unsigned long start) const {
    return SubString(start, GetLength());
}

CString CString::SubString(unsigned long start, unsigned long end) const {
    unsigned long const length = GetLength();
    if (length == 0 || start >= length || start >= end)
        return CString();
    if (end > length)
        end = length;
    if (start == 0 && end == length)
        return *this;
    CString piece;
    AssignBytes(piece.m_text, m_text + start, end - start);
    return piece;
}

CString CString::Mid(unsigned long start, long count) const {
    if (count <= 0)
        return CString();
    unsigned long const n = static_cast<unsigned long>(count);
    return SubString(start, n > ~0ul - start ? ~0ul : start + n);
}

CString CString::Left(unsigned long n) const {
    return SubString(0, n);
}

CString CString::Right(unsigned long n) const {
    unsigned long const length = GetLength();
    if (n >= length)
        return *this;
    return Mid(length - n - 1, static_cast<long>(n));
}

CString& CString::operator+=(CString const& s) {
    if (IsEmpty())
        return *this = s;
    AppendBytes(m_text, s.m_text, s.GetLength());
    return *this;
}

CString& CString::operator+=(char const* s) {
    if (s != nullptr)
        AppendBytes(m_text, s, std::strlen(s));
    return *this;
}

CString& CString::operator+=(char c) {
    AppendBytes(m_text, &c, 1);
    return *this;
}

unsigned long CString::Insert(unsigned long index, char c) {
    return InsertBytes(m_text, index, &c, 1);
}

unsigned long CString::Insert(unsigned long index, char const* s) {
    return InsertBytes(m_text, index, s, s == nullptr ? 0 : std::strlen(s));
}

unsigned long CString::Delete(unsigned long index, unsigned long count) {
    unsigned long const length = GetLength();
    if (length == 0 || count == 0 || index >= length)
        return length;
    // Past the end there is nothing to delete; stopping there keeps the buffer whole.
    if (count > length - index)
        count = length - index;
    MakePrivate(m_text);
    std::memmove(m_text + index, m_text + index + count, length - index - count + 1);
    HeaderOf(m_text)->length = static_cast<std::uint32_t>(length - count);
    return length;
}

unsigned long CString::Replace(char oldChar, char newChar) {
    std::uint32_t const length = LengthOf(m_text);
    if (length == 0 || oldChar == '\0')
        return 0;
    char const* hit = Vela::CHSearchCharLeft(m_text, length, Widen(oldChar));
    if (hit == nullptr)
        return 0;
    std::size_t at = hit - m_text;
    MakePrivate(m_text);
    unsigned long count = 0;
    for (;;) {
        m_text[at++] = newChar;
        ++count;
        if (at >= length ||
            !(hit = Vela::CHSearchCharLeft(m_text + at, long(length - at), Widen(oldChar))))
            return count;
        at = hit - m_text;
    }
}

unsigned long CString::Replace(char const* old, char const* replacement) {
    std::uint32_t const length = LengthOf(m_text);
    if (length == 0 || old == nullptr || *old == '\0')
        return 0;
    std::size_t const n = std::strlen(old);
    std::size_t const m = replacement == nullptr ? 0 : std::strlen(replacement);
    char const* const end = m_text + length;
    unsigned long count = 0;
    for (char const* p = m_text;
         (p = Vela::CHSearchSubstring(p, end - p, old, long(n), Vela::CH_CASE_SENSITIVE)); p += n)
        ++count;
    if (count == 0)
        return 0;
    // Built in a new buffer: the old one stays intact until the result is complete.
    std::uint64_t const newLength = std::uint64_t(length) - count * n + std::uint64_t(count) * m;
    Scratch result;
    result.text = NewBuffer(newLength + 1);
    char* w = result.text;
    char const* p = m_text;
    for (char const* hit;
         (hit = Vela::CHSearchSubstring(p, end - p, old, long(n), Vela::CH_CASE_SENSITIVE));
         p = hit + n) {
        std::memcpy(w, p, hit - p);
        w += hit - p;
        if (m != 0)
            std::memcpy(w, replacement, m);
        w += m;
    }
    std::memcpy(w, p, end - p);
    SetTextLength(result.text, newLength);
    std::swap(m_text, result.text);
    return count;
}

unsigned long CString::Remove(char c) {
    std::uint32_t const length = LengthOf(m_text);
    if (length == 0 || c == '\0')
        return 0;
    char const* hit = Vela::CHSearchCharLeft(m_text, length, Widen(c));
    if (hit == nullptr)
        return 0;
    std::size_t const at = hit - m_text;
    MakePrivate(m_text);
    char const* const end = m_text + length;
    char* w = m_text + at;
    char const* r = w;
    unsigned long count = 0;
    while (r < end) {
        hit = Vela::CHSearchCharLeft(r, end - r, Widen(c));
        char const* stop = hit == nullptr ? end : hit;
        std::memmove(w, r, stop - r);
        w += stop - r;
        if (hit == nullptr)
            break;
        ++count;
        r = hit + 1;
    }
    SetTextLength(m_text, w - m_text);
    return count;
}

void CString::MakeUpper() {
    if (IsEmpty())
        return;
    MakePrivate(m_text);
    SetTextLength(m_text, Vela::CHtoUpper(m_text, GetLength()));
}

void CString::MakeLower() {
    if (IsEmpty())
        return;
    MakePrivate(m_text);
    SetTextLength(m_text, Vela::CHtoLower(m_text, GetLength()));
}

void CString::MakeReverse() {
    std::uint32_t const length = LengthOf(m_text);
    if (length < 2)
        return;
    char* fresh = NewBuffer(std::uint64_t(length) + 1);
    char const* const end = m_text + length;
    for (char const *p = m_text, *q; p < end; p = q) {
        q = NextChar(p, end);
        std::memcpy(fresh + (end - q), p, q - p);
    }
    SetTextLength(fresh, length);
    ReleaseText(m_text);
    m_text = fresh;
}

void CString::TrimLeft() {
    TrimText(m_text, nullptr, 0, false);
}
void CString::TrimRight() {
    TrimText(m_text, nullptr, 0, true);
}
void CString::TrimLeft(char c) {
    char const set[2] = {c, '\0'};
    TrimText(m_text, set, c == '\0' ? 0 : 1, false);
}
void CString::TrimRight(char c) {
    char const set[2] = {c, '\0'};
    TrimText(m_text, set, c == '\0' ? 0 : 1, true);
}
void CString::TrimLeft(char const* set) {
    TrimText(m_text, set == nullptr ? "" : set, set == nullptr ? 0 : std::strlen(set), false);
}
void CString::TrimRight(char const* set) {
    TrimText(m_text, set == nullptr ? "" : set, set == nullptr ? 0 : std::strlen(set), true);
}
void CString::TrimLeft(CString const& set) {
    TrimLeft(static_cast<char const*>(set));
}
void CString::TrimRight(CString const& set) {
    TrimRight(static_cast<char const*>(set));
}

void CString::Format(char const* format, ...) {
    va_list args;
    va_start(args, format);
    try {
        FormatV(format, args);
    } catch (...) {
        va_end(args);
        throw;
    }
    va_end(args);
}

void CString::FormatV(char const* format, va_list args) {
    if (format == nullptr) {
        Empty();
        return;
    }
    std::size_t size = 1024;
    std::unique_ptr<char, FreeDeleter> work(static_cast<char*>(std::malloc(size)));
    if (!work)
        throw CMemoryException(kUnit, 1732);
    int result = WinVsnprintf(work.get(), size, format, args);
    // Only an exact fit of size - 1 asks for more room; a cut text (-1) is kept as cut.
    while (result == static_cast<int>(size - 1)) {
        work.reset();
        size += 1024;
        work.reset(static_cast<char*>(std::malloc(size)));
        if (!work)
            throw CMemoryException(kUnit, 1749);
        result = WinVsnprintf(work.get(), size, format, args);
    }
    AssignBytes(m_text, work.get(), std::strlen(work.get()));
}

// Comparison operators. An empty operand (no text, or length 0) sorts before every
// non-empty one and equals another empty one.
namespace {

struct Side {
    char const* text;
    bool empty;
};
Side SideOf(CString const& s) {
    return {s, s.IsEmpty()};
}
Side SideOf(char const* s) {
    return {s, s == nullptr || *s == '\0'};
}

bool Equal(Side a, Side b) {
    if (a.empty || b.empty)
        return a.empty == b.empty;
    return std::strcmp(a.text, b.text) == 0;
}

int Order(Side a, Side b) {
    if (!a.empty && !b.empty)
        return Vela::CHCompareTexts(a.text, -1, b.text, -1, Vela::CH_CASE_SENSITIVE);
    return int(!a.empty) - int(!b.empty);
}

} // namespace

#define LUMO_STRING_OPERATORS(A, B)                                                                \
    bool operator==(A a, B b) {                                                                    \
        return Equal(SideOf(a), SideOf(b));                                                        \
    }                                                                                              \
    bool operator!=(A a, B b) {                                                                    \
        return !Equal(SideOf(a), SideOf(b));                                                       \
    }                                                                                              \
    bool operator<(A a, B b) {                                                                     \
        return Order(SideOf(a), SideOf(b)) < 0;                                                    \
    }                                                                                              \
    bool operator<=(A a, B b) {                                                                    \
        return Order(SideOf(a), SideOf(b)) <= 0;                                                   \
    }                                                                                              \
    bool operator>(A a, B b) {                                                                     \
        return Order(SideOf(a), SideOf(b)) > 0;                                                    \
    }                                                                                              \
    bool operator>=(A a, B b) {                                                                    \
        return Order(SideOf(a), SideOf(b)) >= 0;                                                   \
    }

LUMO_STRING_OPERATORS(CString const&, CString const&)
LUMO_STRING_OPERATORS(CString const&, char const*)
LUMO_STRING_OPERATORS(char const*, CString const&)

#undef LUMO_STRING_OPERATORS

CString operator+(CString const& a, CString const& b) {
    CString sum(a);
    sum += b;
    return sum;
}

CString operator+(CString const& a, char const* b) {
    CString sum(a);
    sum += b;
    return sum;
}

CString operator+(char const* a, CString const& b) {
    if (a == nullptr || *a == '\0')
        return b;
    CString sum;
    std::size_t const n = std::strlen(a);
    char* buffer = sum.GetBuffer(n + b.GetLength());
    std::memcpy(buffer, a, n);
    std::memcpy(buffer + n, static_cast<char const*>(b), b.GetLength());
    sum.SetLength(n + b.GetLength());
    return sum;
}

} // namespace base
} // namespace lumo
