// CUnicodeString: the UTF-16 traits that instantiate StringCore, and its UTF-8
// conversions (measure, then convert into a buffer of the exact size) through the codec.
#include <lumo/base/UnicodeString.h>

#include <vela/Chars.h>
#include <vela/Ucs.h>

#include "../../vela/detail/Utf8Codec.h"
#include "StringCore.h"

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace lumo {
namespace base {

namespace {

namespace utf8 = Vela::detail::utf8;
using Unit = unsigned short;
using Byte = utf8::Byte;

// What CUnicodeString's storage and shared algorithms (StringCore.h) need to know of
// UTF-16 units.
struct Traits {
    using Unit = unsigned short;
    static constexpr char kUnitName[] = "lumo/base/UnicodeString";
    // A buffer the C heap cannot supply (creation or growth beyond the pools) is
    // reported at this line; the formatting work buffer has its own lines.
    static constexpr unsigned long kHeapFailureLine = 2294;
    static constexpr unsigned long kFormatFirstLine = 2310;
    static constexpr unsigned long kFormatRetryLine = 2327;

    static CFixBlockAllocator& Pool(int sizeClass) {
        return CFixBlockAllocator::UnicodeStringPool(sizeClass);
    }
    static std::size_t Length(Unit const* s) { return Vela::ucslen(s); }
    static int Compare(Unit const* a, Unit const* b, bool ignoreCase) {
        return ignoreCase ? Vela::ucsicmp(a, b) : Vela::ucscmp(a, b);
    }
    static bool Same(Unit const* a, Unit const* b) { return Vela::ucscmp(a, b) == 0; }
    static bool SameN(Unit const* a, Unit const* b, std::size_t n, bool ignoreCase) {
        return ignoreCase ? Vela::ucsnicmp(a, b, n) == 0 : Vela::ucsncmp(a, b, n) == 0;
    }
    // The unit 0 is never found; the search runs to the terminator.
    static Unit const* SearchUnit(Unit const* p, std::size_t, Unit c, bool reverse) {
        if (c == 0)
            return nullptr;
        return reverse ? Vela::ucsrchr(p, c) : Vela::ucschr(p, c);
    }
    // Runs to the terminator, which stands at `end` or before.
    static Unit const* Search(Unit const* p, Unit const*, Unit const* s, std::size_t) {
        return Vela::ucsstr(p, s);
    }
    // One formatting round; the arguments are copied so that a retry can read them
    // again.
    static int FormatRound(Unit* buffer, std::size_t size, Unit const* format, va_list args) {
        va_list copy;
        va_copy(copy, args);
        buffer[0] = 0;
        int const result = Vela::vsnuprintf(buffer, size, format, copy);
        va_end(copy);
        buffer[size - 1] = 0;
        return result;
    }
};

using Core = StringCore<Traits>;

Unit const kEmpty[1] = {0};

// The string becomes the UTF-16 form of at most n bytes of UTF-8 text (stopping at a
// 0 byte and, strictly, at the first malformed sequence).
void AssignConverted(Unit*& text, char const* s, std::size_t n) {
    std::size_t const bytes = s == nullptr ? 0 : strnlen(s, n);
    Byte const* const begin = utf8::Bytes(s);
    Byte const* stop = begin;
    std::uint64_t const units =
        bytes == 0 ? 0 : utf8::Count<utf8::StrictStop>(begin, begin + bytes, &stop);
    if (units == 0) {
        Core::Assign(text, nullptr, 0);
        return;
    }
    Unit* fresh = Core::NewBuffer(units + 1);
    utf8::DecodeValid(begin, stop, fresh);
    Core::SetTextLength(fresh, units);
    Core::Adopt(text, fresh);
}

// 8-bit arguments. A char is one UTF-8 byte: only an ASCII char is a whole character;
// a byte 0x80-0xFF converts to nothing.
bool Widen(char c, Unit& unit) {
    Unit converted[2] = {0, 0};
    if (Vela::CHANSI2Unicode(&c, 1, converted, 2) != 1 || converted[0] == 0)
        return false;
    unit = converted[0];
    return true;
}

// The converted text, keeping a null pointer null (null and empty texts differ in
// some operations).
struct Converted {
    CUnicodeString text;
    bool null;
    explicit Converted(char const* s) : text(s), null(s == nullptr) {}
    operator Unit const*() const { return null ? nullptr : static_cast<Unit const*>(text); }
};

bool SameUnits(Unit const* a, Unit const* b, std::size_t n, bool ignoreCase) {
    return ignoreCase ? Vela::ucsnicmp(a, b, n) == 0 : std::memcmp(a, b, n * sizeof(Unit)) == 0;
}

// First (or last) occurrence of s at or after `start`.
long FindText(Unit const* text, Unit const* s, unsigned long start, bool ignoreCase, bool reverse) {
    std::uint32_t const length = Core::LengthOf(text);
    if (length == 0 || start >= length || s == nullptr || *s == 0)
        return -1;
    std::size_t const n = Vela::ucslen(s);
    if (n > length - start)
        return -1;
    if (!reverse && !ignoreCase) {
        Unit const* hit = Vela::ucsstr(text + start, s);
        return hit == nullptr ? -1 : static_cast<long>(hit - text);
    }
    if (reverse) {
        for (std::size_t i = length - n + 1; i-- > start;)
            if (text[i] != 0 && SameUnits(text + i, s, n, ignoreCase))
                return static_cast<long>(i);
    } else {
        for (std::size_t i = start; i + n <= length; ++i)
            if (text[i] != 0 && SameUnits(text + i, s, n, ignoreCase))
                return static_cast<long>(i);
    }
    return -1;
}

// Whether a unit is trimmed: white space when `set` is null, else a unit of the set.
bool Trimmed(Unit u, Unit const* set) {
    if (set == nullptr)
        return Vela::isuspace(u);
    return u != 0 && Vela::ucschr(set, u) != nullptr;
}

void TrimText(Unit*& text, Unit const* set, bool right) {
    std::uint32_t const length = Core::LengthOf(text);
    if (length == 0 || (set != nullptr && *set == 0))
        return;
    std::size_t cut = 0;
    if (right) {
        cut = length;
        while (cut > 0 && Trimmed(text[cut - 1], set))
            --cut;
    } else {
        while (cut < length && Trimmed(text[cut], set))
            ++cut;
    }
    Core::CutAt(text, cut, right);
}

// The UTF-8 form of n units in `size` bytes, whole sequences only; an unpaired
// surrogate keeps its own value, so that FromUTF8 gives the same units back.
std::size_t EncodeTo(Unit const* text, std::size_t n, char* target, std::size_t size) {
    utf8::OwnValue policy;
    Byte* const out = reinterpret_cast<Byte*>(target);
    return utf8::Encode(text, text + n, out, out + size, policy).bytes;
}

} // namespace

void CUnicodeString::FreeBuffer(unsigned short* text) noexcept {
    Core::FreeText(text);
}

unsigned short const* CUnicodeString::EmptyText() noexcept {
    return kEmpty;
}

CUnicodeString::CUnicodeString(unsigned short const* s) : m_text(nullptr) {
    if (s != nullptr)
        Core::Assign(m_text, s, Vela::ucslen(s));
}

CUnicodeString::CUnicodeString(unsigned short const* s, unsigned long n) : m_text(nullptr) {
    Set(s, n);
}

CUnicodeString::CUnicodeString(char const* s) : m_text(nullptr) {
    if (s != nullptr)
        AssignConverted(m_text, s, std::strlen(s));
}

CUnicodeString::CUnicodeString(char const* s, unsigned long n) : m_text(nullptr) {
    Set(s, n);
}

CUnicodeString& CUnicodeString::operator=(CUnicodeString const& other) {
    if (m_text != other.m_text)
        Core::Adopt(m_text, Share(other.m_text));
    return *this;
}

CUnicodeString& CUnicodeString::operator=(CUnicodeString&& other) noexcept {
    if (this != &other) {
        Core::Adopt(m_text, other.m_text);
        other.m_text = nullptr;
    }
    return *this;
}

CUnicodeString& CUnicodeString::operator=(unsigned short const* s) {
    Core::Assign(m_text, s, Core::TextLength(s));
    return *this;
}

CUnicodeString& CUnicodeString::operator=(char const* s) {
    AssignConverted(m_text, s, s == nullptr ? 0 : std::strlen(s));
    return *this;
}

// The recorded length is that of the whole source (see StringCore's Set).
void CUnicodeString::Set(unsigned short const* s, unsigned long n) {
    Core::Set(m_text, s, n);
}

void CUnicodeString::Set(char const* s, unsigned long n) {
    AssignConverted(m_text, s, n);
}

void CUnicodeString::SetAt(unsigned long i, unsigned short c) {
    Core::SetAt(m_text, i, c);
}

void CUnicodeString::Empty() {
    Core::Empty(m_text);
}

void CUnicodeString::EnsureCapacity(unsigned long n) {
    Core::Reserve(m_text, n, false);
}

unsigned short* CUnicodeString::GetBuffer(unsigned long n) {
    return Core::GetBuffer(m_text, n);
}

void CUnicodeString::SetLength(unsigned long n) {
    Core::SetLength(m_text, n);
}

int CUnicodeString::Compare(unsigned short const* s) const {
    return Core::CompareTo(m_text, s, false);
}

int CUnicodeString::Compare(CUnicodeString const& s) const {
    return Core::CompareTo(m_text, s.IsEmpty() ? nullptr : s.m_text, false);
}

int CUnicodeString::CompareIgnoreCase(unsigned short const* s) const {
    return Core::CompareTo(m_text, s, true);
}

int CUnicodeString::CompareIgnoreCase(CUnicodeString const& s) const {
    return Core::CompareTo(m_text, s.IsEmpty() ? nullptr : s.m_text, true);
}

long CUnicodeString::Find(unsigned short c, unsigned long start) const {
    return Core::FindUnit(m_text, c, start, false);
}

long CUnicodeString::Find(char c, unsigned long start) const {
    Unit unit;
    return Widen(c, unit) ? Core::FindUnit(m_text, unit, start, false) : -1;
}

long CUnicodeString::Find(unsigned short const* s, unsigned long start) const {
    return FindText(m_text, s, start, false, false);
}

long CUnicodeString::Find(char const* s, unsigned long start) const {
    return FindText(m_text, Converted(s), start, false, false);
}

long CUnicodeString::Find(CUnicodeString const& s, unsigned long start) const {
    return FindText(m_text, s.m_text, start, false, false);
}

long CUnicodeString::FindIgnoreCase(unsigned short const* s, unsigned long start) const {
    return FindText(m_text, s, start, true, false);
}

long CUnicodeString::FindIgnoreCase(char const* s, unsigned long start) const {
    return FindText(m_text, Converted(s), start, true, false);
}

long CUnicodeString::FindIgnoreCase(CUnicodeString const& s, unsigned long start) const {
    return FindText(m_text, s.m_text, start, true, false);
}

long CUnicodeString::ReverseFind(unsigned short c, unsigned long start) const {
    return Core::FindUnit(m_text, c, start, true);
}

long CUnicodeString::ReverseFind(char c, unsigned long start) const {
    Unit unit;
    return Widen(c, unit) ? Core::FindUnit(m_text, unit, start, true) : -1;
}

long CUnicodeString::ReverseFind(unsigned short const* s, unsigned long start) const {
    return FindText(m_text, s, start, false, true);
}

long CUnicodeString::ReverseFind(char const* s, unsigned long start) const {
    return FindText(m_text, Converted(s), start, false, true);
}

long CUnicodeString::ReverseFind(CUnicodeString const& s, unsigned long start) const {
    return FindText(m_text, s.m_text, start, false, true);
}

long CUnicodeString::ReverseFindIgnoreCase(unsigned short const* s, unsigned long start) const {
    return FindText(m_text, s, start, true, true);
}

long CUnicodeString::ReverseFindIgnoreCase(char const* s, unsigned long start) const {
    return FindText(m_text, Converted(s), start, true, true);
}

long CUnicodeString::ReverseFindIgnoreCase(CUnicodeString const& s, unsigned long start) const {
    return FindText(m_text, s.m_text, start, true, true);
}

bool CUnicodeString::StartsWith(unsigned short const* s) const {
    return Core::HasAffix(m_text, s, false, false);
}
bool CUnicodeString::StartsWith(char const* s) const {
    return Core::HasAffix(m_text, Converted(s), false, false);
}
bool CUnicodeString::StartsWith(CUnicodeString const& s) const {
    return Core::HasAffix(m_text, s, false, false);
}
bool CUnicodeString::StartsWithIgnoreCase(unsigned short const* s) const {
    return Core::HasAffix(m_text, s, false, true);
}
bool CUnicodeString::StartsWithIgnoreCase(char const* s) const {
    return Core::HasAffix(m_text, Converted(s), false, true);
}
bool CUnicodeString::StartsWithIgnoreCase(CUnicodeString const& s) const {
    return Core::HasAffix(m_text, s, false, true);
}
bool CUnicodeString::EndsWith(unsigned short const* s) const {
    return Core::HasAffix(m_text, s, true, false);
}
bool CUnicodeString::EndsWith(char const* s) const {
    return Core::HasAffix(m_text, Converted(s), true, false);
}
bool CUnicodeString::EndsWith(CUnicodeString const& s) const {
    return Core::HasAffix(m_text, s, true, false);
}
bool CUnicodeString::EndsWithIgnoreCase(unsigned short const* s) const {
    return Core::HasAffix(m_text, s, true, true);
}
bool CUnicodeString::EndsWithIgnoreCase(char const* s) const {
    return Core::HasAffix(m_text, Converted(s), true, true);
}
bool CUnicodeString::EndsWithIgnoreCase(CUnicodeString const& s) const {
    return Core::HasAffix(m_text, s, true, true);
}

CUnicodeString CUnicodeString::SubString(unsigned long start) const {
    return SubString(start, GetLength());
}

CUnicodeString CUnicodeString::SubString(unsigned long start, unsigned long end) const {
    CUnicodeString piece;
    if (!Core::CopyPiece(m_text, start, end, piece.m_text))
        return *this;
    return piece;
}

CUnicodeString CUnicodeString::Mid(unsigned long start, long count) const {
    return Core::Mid(*this, start, count);
}

CUnicodeString CUnicodeString::Left(unsigned long n) const {
    return SubString(0, n);
}

CUnicodeString CUnicodeString::Right(unsigned long n) const {
    return Core::Right(*this, n);
}

CUnicodeString& CUnicodeString::operator+=(CUnicodeString const& s) {
    if (IsEmpty())
        return *this = s;
    Core::Append(m_text, s.m_text, s.GetLength());
    return *this;
}

CUnicodeString& CUnicodeString::operator+=(unsigned short const* s) {
    Core::Append(m_text, s, Core::TextLength(s));
    return *this;
}

CUnicodeString& CUnicodeString::operator+=(char const* s) {
    if (s != nullptr && *s != '\0')
        *this += CUnicodeString(s);
    return *this;
}

CUnicodeString& CUnicodeString::operator+=(unsigned short c) {
    Core::Append(m_text, &c, 1);
    return *this;
}

CUnicodeString& CUnicodeString::operator+=(char c) {
    Unit unit;
    if (Widen(c, unit))
        Core::Append(m_text, &unit, 1);
    return *this;
}

unsigned long CUnicodeString::Insert(unsigned long index, unsigned short c) {
    return Core::Insert(m_text, index, &c, 1);
}

unsigned long CUnicodeString::Insert(unsigned long index, char c) {
    Unit unit;
    return Widen(c, unit) ? Core::Insert(m_text, index, &unit, 1) : GetLength();
}

unsigned long CUnicodeString::Insert(unsigned long index, unsigned short const* s) {
    return Core::Insert(m_text, index, s, Core::TextLength(s));
}

unsigned long CUnicodeString::Insert(unsigned long index, char const* s) {
    CUnicodeString const converted(s);
    return Core::Insert(m_text, index, converted.m_text, converted.GetLength());
}

unsigned long CUnicodeString::Delete(unsigned long index, unsigned long count) {
    return Core::Delete(m_text, index, count);
}

unsigned long CUnicodeString::Replace(unsigned short oldChar, unsigned short newChar) {
    std::uint32_t const length = Core::LengthOf(m_text);
    if (length == 0 || oldChar == 0)
        return 0;
    Unit const* hit = Vela::ucschr(m_text, oldChar);
    if (hit == nullptr)
        return 0;
    std::size_t const first = hit - m_text;
    Core::MakePrivate(m_text);
    unsigned long count = 0;
    for (std::size_t i = first; i < length; ++i) {
        if (m_text[i] == oldChar) {
            m_text[i] = newChar;
            ++count;
        }
    }
    return count;
}

unsigned long CUnicodeString::Replace(char oldChar, char newChar) {
    Unit from, to;
    if (!Widen(oldChar, from) || !Widen(newChar, to))
        return 0;
    return Replace(from, to);
}

// Units behind an early terminator (see Set) are carried over as they are.
unsigned long CUnicodeString::Replace(unsigned short const* old,
                                      unsigned short const* replacement) {
    return Core::ReplaceAll(m_text, old, replacement);
}

unsigned long CUnicodeString::Replace(char const* old, char const* replacement) {
    Converted const from(old);
    Converted const to(replacement);
    return Replace(static_cast<Unit const*>(from), static_cast<Unit const*>(to));
}

unsigned long CUnicodeString::Remove(unsigned short c) {
    std::uint32_t const length = Core::LengthOf(m_text);
    if (length == 0 || c == 0)
        return 0;
    Unit const* hit = Vela::ucschr(m_text, c);
    if (hit == nullptr)
        return 0;
    std::size_t w = hit - m_text;
    Core::MakePrivate(m_text);
    for (std::size_t r = w; r < length; ++r)
        if (m_text[r] != c)
            m_text[w++] = m_text[r];
    unsigned long const count = static_cast<unsigned long>(length - w);
    Core::SetTextLength(m_text, w);
    return count;
}

unsigned long CUnicodeString::Remove(char c) {
    Unit unit;
    return Widen(c, unit) ? Remove(unit) : 0;
}

void CUnicodeString::MakeUpper() {
    if (IsEmpty())
        return;
    Core::MakePrivate(m_text);
    Vela::ucsupr(m_text);
}

void CUnicodeString::MakeLower() {
    if (IsEmpty())
        return;
    Core::MakePrivate(m_text);
    Vela::ucslwr(m_text);
}

void CUnicodeString::MakeReverse() {
    if (GetLength() < 2)
        return;
    Core::MakePrivate(m_text);
    Vela::ucsrev(m_text);
}

void CUnicodeString::TrimLeft() {
    TrimText(m_text, nullptr, false);
}
void CUnicodeString::TrimRight() {
    TrimText(m_text, nullptr, true);
}
void CUnicodeString::TrimLeft(unsigned short c) {
    Unit const set[2] = {c, 0};
    TrimText(m_text, set, false);
}
void CUnicodeString::TrimRight(unsigned short c) {
    Unit const set[2] = {c, 0};
    TrimText(m_text, set, true);
}
void CUnicodeString::TrimLeft(char c) {
    Unit unit;
    if (Widen(c, unit))
        TrimLeft(unit);
}
void CUnicodeString::TrimRight(char c) {
    Unit unit;
    if (Widen(c, unit))
        TrimRight(unit);
}
void CUnicodeString::TrimLeft(unsigned short const* set) {
    TrimText(m_text, set == nullptr ? kEmpty : set, false);
}
void CUnicodeString::TrimRight(unsigned short const* set) {
    TrimText(m_text, set == nullptr ? kEmpty : set, true);
}
void CUnicodeString::TrimLeft(char const* set) {
    CUnicodeString const converted(set);
    TrimLeft(static_cast<Unit const*>(converted));
}
void CUnicodeString::TrimRight(char const* set) {
    CUnicodeString const converted(set);
    TrimRight(static_cast<Unit const*>(converted));
}
void CUnicodeString::TrimLeft(CUnicodeString const& set) {
    TrimLeft(static_cast<Unit const*>(set));
}
void CUnicodeString::TrimRight(CUnicodeString const& set) {
    TrimRight(static_cast<Unit const*>(set));
}

void CUnicodeString::Format(unsigned short const* format, ...) {
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

// A work buffer the heap cannot supply fails at line 2310 (the first) or 2327 (a
// larger one for another round).
void CUnicodeString::FormatV(unsigned short const* format, va_list args) {
    Core::FormatV(m_text, format, args);
}

CUnicodeString CUnicodeString::FromUTF8(char const* text, long length) {
    CUnicodeString result;
    if (text == nullptr)
        return result;
    std::size_t const n = length < 0 ? std::strlen(text) : static_cast<std::size_t>(length);
    Byte const* const begin = reinterpret_cast<Byte const*>(text);
    Byte const* stop = begin;
    std::uint64_t const units = utf8::Count<utf8::LenientStop>(begin, begin + n, &stop);
    if (units == 0)
        return result;
    result.m_text = Core::NewBuffer(units + 1);
    utf8::DecodeValid(begin, stop, result.m_text);
    Core::SetTextLength(result.m_text, units);
    return result;
}

CString CUnicodeString::ToUTF8() const {
    CString result;
    std::uint32_t const length = Core::LengthOf(m_text);
    if (length == 0)
        return result;
    std::uint64_t const bytes = utf8::CountBytes<utf8::OwnValue>(m_text, m_text + length);
    char* target = result.GetBuffer(static_cast<unsigned long>(bytes));
    std::size_t const written = EncodeTo(m_text, length, target, bytes);
    result.SetLength(static_cast<unsigned long>(written));
    return result;
}

long CUnicodeString::ToUTF8(char* target, long size) const {
    std::uint32_t const length = Core::LengthOf(m_text);
    if (target == nullptr)
        return static_cast<long>(utf8::CountBytes<utf8::OwnValue>(m_text, m_text + length));
    if (size <= 0)
        return 0;
    std::size_t const written = EncodeTo(m_text, length, target, static_cast<std::size_t>(size));
    if (written < static_cast<std::size_t>(size))
        target[written] = '\0';
    return static_cast<long>(written);
}

// Comparison operators. An empty operand (null, no text, or length 0) sorts before
// every non-empty one and equals another empty one; otherwise unit by unit.
LUMO_STRING_CORE_OPERATORS(Core, CUnicodeString const&, CUnicodeString const&)
LUMO_STRING_CORE_OPERATORS(Core, CUnicodeString const&, unsigned short const*)
LUMO_STRING_CORE_OPERATORS(Core, unsigned short const*, CUnicodeString const&)

CUnicodeString operator+(CUnicodeString const& a, CUnicodeString const& b) {
    return Core::Concat(a, b);
}

CUnicodeString operator+(CUnicodeString const& a, unsigned short const* b) {
    return Core::Concat(a, b);
}

CUnicodeString operator+(unsigned short const* a, CUnicodeString const& b) {
    return Core::ConcatText(a, b);
}

} // namespace base
} // namespace lumo
