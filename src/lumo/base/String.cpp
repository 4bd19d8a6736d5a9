// CString: the byte traits that instantiate StringCore over UTF-8 text with the root
// layer's character routines, and the members and operators built on them.
#include <lumo/base/String.h>

#include <lumo/base/StringH.h>
#include <vela/Chars.h>
#include <vela/Ucs.h>

#include "../../vela/detail/Utf8Codec.h"
#include "StringCore.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace lumo {
namespace base {

namespace {

namespace utf8 = Vela::detail::utf8;

unsigned short Widen(char c) {
    return static_cast<unsigned short>(static_cast<short>(static_cast<signed char>(c)));
}

// What CString's storage and shared algorithms (StringCore.h) need to know of bytes.
struct Traits {
    using Unit = char;
    static constexpr char kUnitName[] = "lumo/base/String";
    static constexpr unsigned long kHeapFailureLine = 1936;
    static constexpr unsigned long kFormatFirstLine = 1732;
    static constexpr unsigned long kFormatRetryLine = 1749;

    static CFixBlockAllocator& Pool(int sizeClass) {
        return CFixBlockAllocator::StringPool(sizeClass);
    }
    static std::size_t Length(char const* s) { return std::strlen(s); }
    static int CaseType(bool ignoreCase) {
        return ignoreCase ? Vela::CH_CASE_INSENSITIVE : Vela::CH_CASE_SENSITIVE;
    }
    static int Compare(char const* a, char const* b, bool ignoreCase) {
        return Vela::CHCompareTexts(a, -1, b, -1, CaseType(ignoreCase));
    }
    static bool Same(char const* a, char const* b) { return std::strcmp(a, b) == 0; }
    static bool SameN(char const* a, char const* b, std::size_t n, bool ignoreCase) {
        return Vela::CHCompareTexts(a, long(n), b, long(n), CaseType(ignoreCase)) == 0;
    }
    // A char is sign-extended to 16 bits and matched as the character routines do.
    static char const* SearchUnit(char const* p, std::size_t n, char c, bool reverse) {
        return reverse ? Vela::CHSearchCharRight(p, long(n), Widen(c))
                       : Vela::CHSearchCharLeft(p, long(n), Widen(c));
    }
    static char const* Search(char const* p, char const* end, char const* s, std::size_t n) {
        return Vela::CHSearchSubstring(p, end - p, s, long(n), Vela::CH_CASE_SENSITIVE);
    }
    // Windows' _vsnprintf: the length written, or -1 when the text did not fit (the
    // buffer then holds what fitted, terminated).
    static int FormatRound(char* buffer, std::size_t size, char const* format, va_list args) {
        va_list copy;
        va_copy(copy, args);
        int const result = std::vsnprintf(buffer, size, format, copy);
        va_end(copy);
        if (result < 0)
            buffer[0] = '\0';
        return result < 0 || static_cast<std::size_t>(result) >= size ? -1 : result;
    }
};

using Core = StringCore<Traits>;

char const kEmpty[1] = {0};

// Where the character at p ends, never past `end`, always at least one byte on.
char const* NextChar(char const* p, char const* end) {
    char const* next = Vela::CHGetNextCharPtr(p);
    if (next <= p)
        next = p + 1;
    return next < end ? next : end;
}

// First (or last) occurrence of s at or after `start`.
long FindText(char const* text, char const* s, unsigned long start, bool ignoreCase, bool reverse) {
    std::uint32_t const length = Core::LengthOf(text);
    if (length == 0 || start >= length || s == nullptr || *s == '\0')
        return -1;
    int const caseType = Traits::CaseType(ignoreCase);
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

// Whether the character [p, q) is trimmed: white space when `set` is null, else a
// character of the set.
bool Trimmed(char const* p, char const* q, char const* set, std::size_t setLength) {
    if (set == nullptr)
        return q - p == 1 && std::isspace(static_cast<unsigned char>(*p));
    return Vela::CHSearchSubstring(set, static_cast<long>(setLength), p, q - p,
                                   Vela::CH_CASE_SENSITIVE) != nullptr;
}

void TrimText(char*& text, char const* set, std::size_t setLength, bool right) {
    std::uint32_t const length = Core::LengthOf(text);
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
    Core::CutAt(text, keep - text, right);
}

// A fresh buffer holding [text, end) in UTF-8 (null for no text); unpaired surrogates
// become '?', as in the 8-bit routines. At most 0x7FFFFFFF units are taken.
char* Encoded(unsigned short const* text, unsigned short const* end) {
    if (end - text > 0x7FFFFFFF)
        end = text + 0x7FFFFFFF;
    std::uint64_t const needed = utf8::CountBytes<utf8::Question>(text, end);
    if (needed == 0)
        return nullptr;
    char* fresh = Core::NewBuffer(needed + 1);
    utf8::Question policy;
    auto* const out = reinterpret_cast<utf8::Byte*>(fresh);
    Core::SetTextLength(fresh, utf8::Encode(text, end, out, out + needed, policy).bytes);
    return fresh;
}

} // namespace

void CString::FreeBuffer(char* text) noexcept {
    Core::FreeText(text);
}

char const* CString::EmptyText() noexcept {
    return kEmpty;
}

CString::CString(char const* s) : m_text(nullptr) {
    if (s != nullptr)
        Core::Assign(m_text, s, std::strlen(s));
}

CString::CString(char const* s, unsigned long n) : m_text(nullptr) {
    Set(s, n);
}

CString::CString(unsigned short const* text) : m_text(nullptr) {
    *this = text;
}

CString::CString(unsigned short const* text, unsigned long n) : m_text(nullptr) {
    // The text ends at its first 0 unit.
    if (text != nullptr)
        m_text = Encoded(text, utf8::FindZero(text, text + std::min(n, 0x7FFFFFFFul)));
}

CString::CString(CStringH const& other) : m_text(nullptr) {
    *this = other;
}

CString& CString::operator=(CString const& other) {
    if (m_text != other.m_text)
        Core::Adopt(m_text, Share(other.m_text));
    return *this;
}

CString& CString::operator=(CString&& other) noexcept {
    if (this != &other) {
        Core::Adopt(m_text, other.m_text);
        other.m_text = nullptr;
    }
    return *this;
}

CString& CString::operator=(char const* s) {
    Core::Assign(m_text, s, Core::TextLength(s));
    return *this;
}

CString& CString::operator=(unsigned short const* text) {
    char* const fresh =
        text == nullptr ? nullptr : Encoded(text, utf8::FindZero<false>(text, nullptr));
    Core::Adopt(m_text, fresh);
    return *this;
}

CString& CString::operator=(CStringH const& other) {
    Core::Assign(m_text, other, other.GetLength());
    return *this;
}

// The recorded length is strlen of the whole source (see StringCore's Set).
void CString::Set(char const* s, unsigned long n) {
    Core::Set(m_text, s, n);
}

void CString::SetAt(unsigned long i, char c) {
    Core::SetAt(m_text, i, c);
}

void CString::Empty() {
    Core::Empty(m_text);
}

void CString::EnsureCapacity(unsigned long n) {
    Core::Reserve(m_text, n, false);
}

// n + 1 must not wrap around: a request beyond the header's range is exhaustion.
char* CString::GetBuffer(unsigned long n) {
    return Core::GetBuffer(m_text, n);
}

void CString::SetLength(unsigned long n) {
    Core::SetLength(m_text, n);
}

int CString::Compare(char const* s) const {
    return Core::CompareTo(m_text, s, false);
}

int CString::Compare(CString const& s) const {
    return Core::CompareTo(m_text, s.IsEmpty() ? nullptr : s.m_text, false);
}

int CString::CompareIgnoreCase(char const* s) const {
    return Core::CompareTo(m_text, s, true);
}

int CString::CompareIgnoreCase(CString const& s) const {
    return Core::CompareTo(m_text, s.IsEmpty() ? nullptr : s.m_text, true);
}

long CString::Find(char c, unsigned long start) const {
    return Core::FindUnit(m_text, c, start, false);
}

long CString::Find(char const* s, unsigned long start) const {
    return FindText(m_text, s, start, false, false);
}

long CString::Find(CString const& s, unsigned long start) const {
    return Find(s.m_text, start);
}

long CString::FindIgnoreCase(char const* s, unsigned long start) const {
    return FindText(m_text, s, start, true, false);
}

long CString::FindIgnoreCase(CString const& s, unsigned long start) const {
    return FindIgnoreCase(s.m_text, start);
}

long CString::ReverseFind(char c, unsigned long start) const {
    return Core::FindUnit(m_text, c, start, true);
}

long CString::ReverseFind(char const* s, unsigned long start) const {
    return FindText(m_text, s, start, false, true);
}

long CString::ReverseFind(CString const& s, unsigned long start) const {
    return ReverseFind(s.m_text, start);
}

long CString::ReverseFindIgnoreCase(char const* s, unsigned long start) const {
    return FindText(m_text, s, start, true, true);
}

long CString::ReverseFindIgnoreCase(CString const& s, unsigned long start) const {
    return ReverseFindIgnoreCase(s.m_text, start);
}

bool CString::StartsWith(char const* s) const {
    return Core::HasAffix(m_text, s, false, false);
}

bool CString::StartsWith(CString const& s) const {
    return StartsWith(static_cast<char const*>(s));
}

bool CString::StartsWithIgnoreCase(char const* s) const {
    return Core::HasAffix(m_text, s, false, true);
}

bool CString::StartsWithIgnoreCase(CString const& s) const {
    return StartsWithIgnoreCase(static_cast<char const*>(s));
}

bool CString::EndsWith(char const* s) const {
    return Core::HasAffix(m_text, s, true, false);
}

bool CString::EndsWith(CString const& s) const {
    return EndsWith(static_cast<char const*>(s));
}

bool CString::EndsWithIgnoreCase(char const* s) const {
    return Core::HasAffix(m_text, s, true, true);
}

bool CString::EndsWithIgnoreCase(CString const& s) const {
    return EndsWithIgnoreCase(static_cast<char const*>(s));
}

CString CString::SubString(unsigned long start) const {
    return SubString(start, GetLength());
}

CString CString::SubString(unsigned long start, unsigned long end) const {
    CString piece;
    if (!Core::CopyPiece(m_text, start, end, piece.m_text))
        return *this;
    return piece;
}

CString CString::Mid(unsigned long start, long count) const {
    return Core::Mid(*this, start, count);
}

CString CString::Left(unsigned long n) const {
    return SubString(0, n);
}

CString CString::Right(unsigned long n) const {
    return Core::Right(*this, n);
}

CString& CString::operator+=(CString const& s) {
    if (IsEmpty())
        return *this = s;
    Core::Append(m_text, s.m_text, s.GetLength());
    return *this;
}

CString& CString::operator+=(char const* s) {
    if (s != nullptr)
        Core::Append(m_text, s, std::strlen(s));
    return *this;
}

CString& CString::operator+=(char c) {
    Core::Append(m_text, &c, 1);
    return *this;
}

unsigned long CString::Insert(unsigned long index, char c) {
    return Core::Insert(m_text, index, &c, 1);
}

unsigned long CString::Insert(unsigned long index, char const* s) {
    return Core::Insert(m_text, index, s, Core::TextLength(s));
}

unsigned long CString::Delete(unsigned long index, unsigned long count) {
    return Core::Delete(m_text, index, count);
}

unsigned long CString::Replace(char oldChar, char newChar) {
    std::uint32_t const length = Core::LengthOf(m_text);
    if (length == 0 || oldChar == '\0')
        return 0;
    char const* hit = Vela::CHSearchCharLeft(m_text, length, Widen(oldChar));
    if (hit == nullptr)
        return 0;
    std::size_t at = hit - m_text;
    Core::MakePrivate(m_text);
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
    return Core::ReplaceAll(m_text, old, replacement);
}

unsigned long CString::Remove(char c) {
    std::uint32_t const length = Core::LengthOf(m_text);
    if (length == 0 || c == '\0')
        return 0;
    char const* hit = Vela::CHSearchCharLeft(m_text, length, Widen(c));
    if (hit == nullptr)
        return 0;
    std::size_t const at = hit - m_text;
    Core::MakePrivate(m_text);
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
    Core::SetTextLength(m_text, w - m_text);
    return count;
}

void CString::MakeUpper() {
    if (IsEmpty())
        return;
    Core::MakePrivate(m_text);
    Core::SetTextLength(m_text, Vela::CHtoUpper(m_text, GetLength()));
}

void CString::MakeLower() {
    if (IsEmpty())
        return;
    Core::MakePrivate(m_text);
    Core::SetTextLength(m_text, Vela::CHtoLower(m_text, GetLength()));
}

void CString::MakeReverse() {
    std::uint32_t const length = Core::LengthOf(m_text);
    if (length < 2)
        return;
    char* fresh = Core::NewBuffer(std::uint64_t(length) + 1);
    char const* const end = m_text + length;
    for (char const *p = m_text, *q; p < end; p = q) {
        q = NextChar(p, end);
        std::memcpy(fresh + (end - q), p, q - p);
    }
    Core::SetTextLength(fresh, length);
    Core::Adopt(m_text, fresh);
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
    TrimText(m_text, set == nullptr ? "" : set, Core::TextLength(set), false);
}
void CString::TrimRight(char const* set) {
    TrimText(m_text, set == nullptr ? "" : set, Core::TextLength(set), true);
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

// A work buffer the heap cannot supply fails at line 1732 (the first) or 1749 (a
// larger one for another round).
void CString::FormatV(char const* format, va_list args) {
    Core::FormatV(m_text, format, args);
}

// Comparison operators. An empty operand (no text, or length 0) sorts before every
// non-empty one and equals another empty one; equal texts are equal byte for byte.
LUMO_STRING_CORE_OPERATORS(Core, CString const&, CString const&)
LUMO_STRING_CORE_OPERATORS(Core, CString const&, char const*)
LUMO_STRING_CORE_OPERATORS(Core, char const*, CString const&)

CString operator+(CString const& a, CString const& b) {
    return Core::Concat(a, b);
}

CString operator+(CString const& a, char const* b) {
    return Core::Concat(a, b);
}

CString operator+(char const* a, CString const& b) {
    return Core::ConcatText(a, b);
}

} // namespace base
} // namespace lumo
