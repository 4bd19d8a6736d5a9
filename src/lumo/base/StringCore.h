// Internal: the copy-on-write storage and the unit-independent algorithms shared by
// CString and CUnicodeString, instantiated by each with a traits struct of its own.
#ifndef LUMO_SRC_BASE_STRINGCORE_H
#define LUMO_SRC_BASE_STRINGCORE_H

// The storage and the unit-independent algorithms of CString (char units) and
// CUnicodeString (UTF-16 units, unsigned short), for String.cpp and UnicodeString.cpp
// only.
//
// A text is null (no storage) or the first unit of a buffer that three 32-bit words
// precede: capacity in units with the terminator, length in units without it, and
// sharers (the layout String.h and UnicodeString.h read inline). A shared buffer is
// copied on the first change. Buffers of up to 1024 units come from five fixed-block
// pools by class (64, 128, 256, 512 and 1024 units), larger ones from the C heap, where
// appends grow them geometrically, in place where realloc can.
//
// Each .cpp instantiates StringCore with a traits struct of its own, declared in an
// unnamed namespace, so that the instantiation stays private to that file. The
// functions are defined outside the class, so that they are not implicitly inline:
// the compiler weighs inlining them as it weighs the file's own functions. The traits
// supply:
//   Unit                          the unit type
//   kUnitName                     the source unit that CMemoryException names
//   kHeapFailureLine              its line for a buffer the heap (or the header) cannot
//                                 supply; kFormatFirstLine and kFormatRetryLine, those
//                                 for Format's work buffer
//   Pool(sizeClass)               the fixed-block pool of a class, 0 to 4
//   Length(s)                     the units of a terminated, non-null text
//   Compare(a, b, ignoreCase)     <0, 0 or >0 for two terminated texts
//   Same(a, b)                    whether two terminated texts are equal, exactly
//   SameN(a, b, n, ignoreCase)    whether the n units at a and at b match
//   SearchUnit(p, n, c, reverse)  the first (last) c among the n units at p, or null
//   Search(p, end, s, n)          the first occurrence of the n units at s in [p, end),
//                                 or null
//   FormatRound(buffer, size, format, args)
//                                 one printf round into `size` units (args are copied):
//                                 the length written, or -1 for a text that was cut

#include <lumo/base/Exception.h>
#include <lumo/base/FixBlockAllocator.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

namespace lumo {
namespace base {

// Three 32-bit words in front of the units.
struct StringHeader {
    std::uint32_t capacity;
    std::uint32_t length;
    std::uint32_t references;
};
static_assert(sizeof(StringHeader) == 12, "the header is three 32-bit words");

template <typename Traits> struct StringCore {
    using Unit = typename Traits::Unit;
    using Header = StringHeader;

    // The largest capacity in units that the header and a 32-bit size can describe.
    static constexpr std::uint64_t kMaxCapacity = (0xFFFFFFFFu - sizeof(Header)) / sizeof(Unit);

    // Storage.
    [[noreturn]] static void OutOfMemory(unsigned long line);
    static Header* HeaderOf(Unit* text) { return reinterpret_cast<Header*>(text) - 1; }
    static std::uint32_t LengthOf(Unit const* text) {
        return text == nullptr ? 0 : HeaderOf(const_cast<Unit*>(text))->length;
    }
    // The units of a text; null counts as empty.
    static std::size_t TextLength(Unit const* s) { return s == nullptr ? 0 : Traits::Length(s); }
    static void SetTextLength(Unit* text, std::uint64_t length) {
        HeaderOf(text)->length = static_cast<std::uint32_t>(length);
        text[length] = 0;
    }
    // The five pools, looked up once.
    static CFixBlockAllocator* Pool(int sizeClass);
    // A private buffer for n units (terminator included) holding an empty text.
    static Unit* NewBuffer(std::uint64_t n);
    // Back to the pool of the buffer's class, or to the heap.
    static void FreeText(Unit* text);
    // Leaves a shared buffer to its other users, frees a private one; null is ignored.
    static void ReleaseText(Unit* text);
    // The string lets its buffer go and takes `fresh` (which may be null).
    static void Adopt(Unit*& text, Unit* fresh);
    // Owns a private buffer for the length of a scope.
    struct Scratch {
        Unit* text = nullptr;
        ~Scratch() { ReleaseText(text); }
    };
    // Makes the buffer private and able to hold n units (never fewer than the text
    // needs), keeping the text. `append` lets a heap buffer grow geometrically so that
    // repeated appends stay linear; a private heap buffer is resized in place where
    // the heap can.
    static void Reserve(Unit*& text, std::uint64_t n, bool append);
    // Room for n units and a terminator; a count the header cannot describe fails like
    // the heap (and cannot wrap around).
    static std::uint64_t WithTerminator(unsigned long n);
    static void MakePrivate(Unit*& text);
    // True when s points into the string's own buffer (which a change may move).
    static bool Inside(Unit const* text, Unit const* s);

    // Setting and changing the text.
    // The string becomes exactly the n units at s (n = 0: no storage). The new buffer
    // is taken before the old one goes, so s may point into it and a failure changes
    // nothing.
    static void Assign(Unit*& text, Unit const* s, std::uint64_t n);
    // Keeps at most n units of the terminated s (a shorter source is padded with
    // zeros) but records the length of the whole source. The buffer reaches at least
    // that far, zero-filled behind the kept units, so that no later operation that
    // trusts the length can leave it. Null or n = 0 gives no storage.
    static void Set(Unit*& text, Unit const* s, unsigned long n);
    static void SetAt(Unit*& text, unsigned long i, Unit c);
    // A shared buffer is left to its other users, a private one kept with length 0.
    static void Empty(Unit*& text);
    static Unit* GetBuffer(Unit*& text, unsigned long n);
    static void SetLength(Unit*& text, unsigned long n);
    // Inserts n units at `index` (cut to the length); returns the new length.
    static unsigned long Insert(Unit*& text, std::uint64_t index, Unit const* s, std::uint64_t n);
    // Appends n units; the common case (private buffer with room) stays short.
    static void Append(Unit*& text, Unit const* s, std::size_t n);
    // Removes `count` units at `index` (a count running past the end stops there);
    // returns the length before.
    static unsigned long Delete(Unit*& text, unsigned long index, unsigned long count);
    // Keeps the units before `cut` (`right`) or from `cut` on: trimming's last step.
    static void CutAt(Unit*& text, std::size_t cut, bool right);
    // Replaces every occurrence of `old` by `replacement` (null removes); returns the
    // count.
    static unsigned long ReplaceAll(Unit*& text, Unit const* old, Unit const* replacement);
    // printf into a work buffer of 1024 units. Only a result of exactly size - 1 units
    // takes another round with 1024 more; a longer text is kept as cut. A null format
    // empties the string.
    static void FormatV(Unit*& text, Unit const* format, va_list args);

    // Reading the text.
    // An empty string is below any non-null text and equal to null; a non-empty one
    // above a null or empty text.
    static int CompareTo(Unit const* text, Unit const* s, bool ignoreCase);
    // The index of the first (last) unit c at or after `start`, or -1.
    static long FindUnit(Unit const* text, Unit c, unsigned long start, bool reverse);
    // StartsWith / EndsWith: an empty text starts and ends every string, null none.
    static bool HasAffix(Unit const* text, Unit const* s, bool atEnd, bool ignoreCase);
    // SubString's piece [start, end) of the text, cut to the length, into `piece`
    // (which has no storage). False when the piece is the whole text, for the caller
    // to share instead.
    static bool CopyPiece(Unit const* text, unsigned long start, unsigned long end, Unit*& piece);

    // Members of the string classes S that their public interface gives.
    template <typename S> static S Mid(S const& s, unsigned long start, long count);
    // For n below the length, the n units that end one unit before the last one.
    template <typename S> static S Right(S const& s, unsigned long n);
    // a + b with a string or a text behind.
    template <typename S, typename B> static S Concat(S const& a, B const& b);
    // a + b with a text in front: one buffer for both.
    template <typename S> static S ConcatText(Unit const* a, S const& b);

    // The comparison operators. An empty operand (null, no text or length 0) equals
    // another empty one and sorts before every non-empty one.
    struct Side {
        Unit const* text;
        bool empty;
    };
    static Side SideOf(Unit const* s);
    template <typename S> static Side SideOf(S const& s);
    static bool Equal(Side a, Side b);
    static int Order(Side a, Side b);
};

template <typename Traits> void StringCore<Traits>::OutOfMemory(unsigned long line) {
    throw CMemoryException(Traits::kUnitName, line);
}

template <typename Traits> CFixBlockAllocator* StringCore<Traits>::Pool(int sizeClass) {
    static CFixBlockAllocator* const pools[5] = {
        &Traits::Pool(0), &Traits::Pool(1), &Traits::Pool(2), &Traits::Pool(3), &Traits::Pool(4)};
    return pools[sizeClass];
}

template <typename Traits> auto StringCore<Traits>::NewBuffer(std::uint64_t n) -> Unit* {
    Header* header;
    std::uint32_t capacity;
    if (n <= 1024) {
        int const sizeClass = n <= 64 ? 0 : n <= 128 ? 1 : n <= 256 ? 2 : n <= 512 ? 3 : 4;
        header = static_cast<Header*>(Pool(sizeClass)->AllocateCached());
        capacity = 64u << sizeClass;
    } else {
        if (n > kMaxCapacity)
            OutOfMemory(Traits::kHeapFailureLine);
        header = static_cast<Header*>(std::malloc(sizeof(Header) + n * sizeof(Unit)));
        if (header == nullptr)
            OutOfMemory(Traits::kHeapFailureLine);
        capacity = static_cast<std::uint32_t>(n);
    }
    header->capacity = capacity;
    header->length = 0;
    header->references = 1;
    Unit* text = reinterpret_cast<Unit*>(header + 1);
    text[0] = 0;
    return text;
}

template <typename Traits> void StringCore<Traits>::FreeText(Unit* text) {
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

template <typename Traits> void StringCore<Traits>::ReleaseText(Unit* text) {
    if (text == nullptr)
        return;
    if (HeaderOf(text)->references >= 2)
        --HeaderOf(text)->references;
    else
        FreeText(text);
}

template <typename Traits> void StringCore<Traits>::Adopt(Unit*& text, Unit* fresh) {
    ReleaseText(text);
    text = fresh;
}

template <typename Traits>
void StringCore<Traits>::Reserve(Unit*& text, std::uint64_t n, bool append) {
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
                    OutOfMemory(Traits::kHeapFailureLine);
                auto* moved =
                    static_cast<Header*>(std::realloc(header, sizeof(Header) + n * sizeof(Unit)));
                if (moved == nullptr)
                    OutOfMemory(Traits::kHeapFailureLine);
                moved->capacity = static_cast<std::uint32_t>(n);
                text = reinterpret_cast<Unit*>(moved + 1);
                return;
            }
        }
    }
    Unit* fresh = NewBuffer(n);
    if (text != nullptr) {
        std::memcpy(fresh, text, (std::size_t(length) + 1) * sizeof(Unit));
        HeaderOf(fresh)->length = length;
        ReleaseText(text);
    }
    text = fresh;
}

template <typename Traits> std::uint64_t StringCore<Traits>::WithTerminator(unsigned long n) {
    if (std::uint64_t(n) >= kMaxCapacity)
        OutOfMemory(Traits::kHeapFailureLine);
    return std::uint64_t(n) + 1;
}

template <typename Traits> void StringCore<Traits>::MakePrivate(Unit*& text) {
    if (text != nullptr && HeaderOf(text)->references > 1)
        Reserve(text, 0, false);
}

template <typename Traits> bool StringCore<Traits>::Inside(Unit const* text, Unit const* s) {
    if (text == nullptr)
        return false;
    std::uintptr_t const start = reinterpret_cast<std::uintptr_t>(text);
    std::uintptr_t const at = reinterpret_cast<std::uintptr_t>(s);
    return at >= start && at - start < HeaderOf(const_cast<Unit*>(text))->capacity * sizeof(Unit);
}

template <typename Traits>
void StringCore<Traits>::Assign(Unit*& text, Unit const* s, std::uint64_t n) {
    Unit* fresh = nullptr;
    if (n != 0) {
        fresh = NewBuffer(n + 1);
        std::memcpy(fresh, s, n * sizeof(Unit));
        SetTextLength(fresh, n);
    }
    Adopt(text, fresh);
}

template <typename Traits>
void StringCore<Traits>::Set(Unit*& text, Unit const* s, unsigned long n) {
    if (s == nullptr || n == 0) {
        Assign(text, nullptr, 0);
        return;
    }
    std::size_t const whole = Traits::Length(s);
    std::size_t const kept = whole < n ? whole : n;
    std::uint64_t const longer = whole > n ? whole : n;
    if (longer >= kMaxCapacity)
        OutOfMemory(Traits::kHeapFailureLine);
    std::uint64_t const room = longer + 1;
    Unit* fresh = NewBuffer(room);
    std::memcpy(fresh, s, kept * sizeof(Unit));
    std::memset(fresh + kept, 0, (room - kept) * sizeof(Unit));
    HeaderOf(fresh)->length = static_cast<std::uint32_t>(whole);
    Adopt(text, fresh);
}

template <typename Traits> void StringCore<Traits>::SetAt(Unit*& text, unsigned long i, Unit c) {
    if (i >= LengthOf(text))
        return;
    MakePrivate(text);
    text[i] = c;
}

template <typename Traits> void StringCore<Traits>::Empty(Unit*& text) {
    if (text == nullptr)
        return;
    if (HeaderOf(text)->references >= 2)
        Adopt(text, nullptr);
    else
        SetTextLength(text, 0);
}

template <typename Traits>
auto StringCore<Traits>::GetBuffer(Unit*& text, unsigned long n) -> Unit* {
    Reserve(text, WithTerminator(n), false);
    return text;
}

template <typename Traits> void StringCore<Traits>::SetLength(Unit*& text, unsigned long n) {
    if (text == nullptr && n == 0)
        return;
    Reserve(text, WithTerminator(n), false);
    SetTextLength(text, n);
}

template <typename Traits>
unsigned long StringCore<Traits>::Insert(Unit*& text, std::uint64_t index, Unit const* s,
                                         std::uint64_t n) {
    std::uint32_t const length = LengthOf(text);
    if (n == 0)
        return length;
    if (index > length)
        index = length;
    Scratch copy;
    if (Inside(text, s)) {
        Assign(copy.text, s, n);
        s = copy.text;
    }
    Reserve(text, length + n + 1, true);
    std::memmove(text + index + n, text + index, (length - index + 1) * sizeof(Unit));
    std::memcpy(text + index, s, n * sizeof(Unit));
    HeaderOf(text)->length = static_cast<std::uint32_t>(length + n);
    return HeaderOf(text)->length;
}

template <typename Traits>
void StringCore<Traits>::Append(Unit*& text, Unit const* s, std::size_t n) {
    if (n == 0)
        return;
    if (text != nullptr) {
        Header* header = HeaderOf(text);
        std::uint32_t const length = header->length;
        if (header->references < 2 && header->capacity - length > n && !Inside(text, s)) {
            std::memcpy(text + length, s, n * sizeof(Unit));
            text[length + n] = 0;
            header->length = static_cast<std::uint32_t>(length + n);
            return;
        }
    }
    Insert(text, ~0ul, s, n);
}

template <typename Traits>
unsigned long StringCore<Traits>::Delete(Unit*& text, unsigned long index, unsigned long count) {
    unsigned long const length = LengthOf(text);
    if (length == 0 || count == 0 || index >= length)
        return length;
    // Past the end there is nothing to delete; stopping there keeps the buffer whole.
    if (count > length - index)
        count = length - index;
    MakePrivate(text);
    std::memmove(text + index, text + index + count, (length - index - count + 1) * sizeof(Unit));
    HeaderOf(text)->length = static_cast<std::uint32_t>(length - count);
    return length;
}

template <typename Traits>
void StringCore<Traits>::CutAt(Unit*& text, std::size_t cut, bool right) {
    std::uint32_t const length = LengthOf(text);
    if (right ? cut == length : cut == 0)
        return;
    MakePrivate(text);
    if (right) {
        SetTextLength(text, cut);
    } else {
        std::memmove(text, text + cut, (length - cut + 1) * sizeof(Unit));
        HeaderOf(text)->length = static_cast<std::uint32_t>(length - cut);
    }
}

template <typename Traits>
unsigned long StringCore<Traits>::ReplaceAll(Unit*& text, Unit const* old,
                                             Unit const* replacement) {
    std::uint32_t const length = LengthOf(text);
    if (length == 0 || old == nullptr || *old == 0)
        return 0;
    std::size_t const n = Traits::Length(old);
    std::size_t const m = TextLength(replacement);
    Unit const* const end = text + length;
    unsigned long count = 0;
    for (Unit const* p = text; (p = Traits::Search(p, end, old, n)) != nullptr; p += n)
        ++count;
    if (count == 0)
        return 0;
    // Built in a new buffer: the old one stays intact until the result is complete.
    std::uint64_t const newLength = std::uint64_t(length) - count * n + std::uint64_t(count) * m;
    Scratch result;
    result.text = NewBuffer(newLength + 1);
    Unit* w = result.text;
    Unit const* p = text;
    for (Unit const* hit; (hit = Traits::Search(p, end, old, n)) != nullptr; p = hit + n) {
        std::memcpy(w, p, (hit - p) * sizeof(Unit));
        w += hit - p;
        if (m != 0)
            std::memcpy(w, replacement, m * sizeof(Unit));
        w += m;
    }
    std::memcpy(w, p, (end - p) * sizeof(Unit));
    SetTextLength(result.text, newLength);
    std::swap(text, result.text);
    return count;
}

template <typename Traits>
void StringCore<Traits>::FormatV(Unit*& text, Unit const* format, va_list args) {
    struct FreeDeleter {
        void operator()(void* p) const { std::free(p); }
    };
    if (format == nullptr) {
        Empty(text);
        return;
    }
    std::size_t size = 1024;
    std::unique_ptr<Unit, FreeDeleter> work(static_cast<Unit*>(std::malloc(size * sizeof(Unit))));
    if (!work)
        OutOfMemory(Traits::kFormatFirstLine);
    int result = Traits::FormatRound(work.get(), size, format, args);
    while (result == static_cast<int>(size - 1)) {
        work.reset();
        size += 1024;
        work.reset(static_cast<Unit*>(std::malloc(size * sizeof(Unit))));
        if (!work)
            OutOfMemory(Traits::kFormatRetryLine);
        result = Traits::FormatRound(work.get(), size, format, args);
    }
    Assign(text, work.get(), Traits::Length(work.get()));
}

template <typename Traits>
int StringCore<Traits>::CompareTo(Unit const* text, Unit const* s, bool ignoreCase) {
    if (LengthOf(text) == 0)
        return s != nullptr ? -1 : 0;
    if (s == nullptr || *s == 0)
        return 1;
    return Traits::Compare(text, s, ignoreCase);
}

template <typename Traits>
long StringCore<Traits>::FindUnit(Unit const* text, Unit c, unsigned long start, bool reverse) {
    std::uint32_t const length = LengthOf(text);
    if (length == 0 || start >= length)
        return -1;
    Unit const* hit = Traits::SearchUnit(text + start, length - start, c, reverse);
    return hit == nullptr ? -1 : static_cast<long>(hit - text);
}

template <typename Traits>
bool StringCore<Traits>::HasAffix(Unit const* text, Unit const* s, bool atEnd, bool ignoreCase) {
    if (s == nullptr)
        return false;
    std::size_t const n = Traits::Length(s);
    std::uint32_t const length = LengthOf(text);
    if (n == 0)
        return true;
    if (n > length)
        return false;
    Unit const* part = atEnd ? text + length - n : text;
    return Traits::SameN(part, s, n, ignoreCase);
}

template <typename Traits>
bool StringCore<Traits>::CopyPiece(Unit const* text, unsigned long start, unsigned long end,
                                   Unit*& piece) {
    unsigned long const length = LengthOf(text);
    if (length == 0 || start >= length || start >= end)
        return true;
    if (end > length)
        end = length;
    if (start == 0 && end == length)
        return false;
    Assign(piece, text + start, end - start);
    return true;
}

template <typename Traits>
template <typename S>
S StringCore<Traits>::Mid(S const& s, unsigned long start, long count) {
    if (count <= 0)
        return S();
    unsigned long const n = static_cast<unsigned long>(count);
    return s.SubString(start, n > ~0ul - start ? ~0ul : start + n);
}

template <typename Traits>
template <typename S>
S StringCore<Traits>::Right(S const& s, unsigned long n) {
    unsigned long const length = s.GetLength();
    if (n >= length)
        return s;
    return Mid(s, length - n - 1, static_cast<long>(n));
}

template <typename Traits>
template <typename S, typename B>
S StringCore<Traits>::Concat(S const& a, B const& b) {
    S sum(a);
    sum += b;
    return sum;
}

template <typename Traits>
template <typename S>
S StringCore<Traits>::ConcatText(Unit const* a, S const& b) {
    if (a == nullptr || *a == 0)
        return b;
    S sum;
    std::size_t const n = Traits::Length(a);
    Unit* buffer = sum.GetBuffer(n + b.GetLength());
    std::memcpy(buffer, a, n * sizeof(Unit));
    std::memcpy(buffer + n, static_cast<Unit const*>(b), b.GetLength() * sizeof(Unit));
    sum.SetLength(n + b.GetLength());
    return sum;
}

template <typename Traits> auto StringCore<Traits>::SideOf(Unit const* s) -> Side {
    return {s, s == nullptr || *s == 0};
}

template <typename Traits>
template <typename S>
auto StringCore<Traits>::SideOf(S const& s) -> Side {
    return {s, s.IsEmpty()};
}

template <typename Traits> bool StringCore<Traits>::Equal(Side a, Side b) {
    if (a.empty || b.empty)
        return a.empty == b.empty;
    return Traits::Same(a.text, b.text);
}

template <typename Traits> int StringCore<Traits>::Order(Side a, Side b) {
    if (!a.empty && !b.empty)
        return Traits::Compare(a.text, b.text, false);
    return int(!a.empty) - int(!b.empty);
}

// The six comparison operators for one pair of operand types, by Core::Equal and
// Core::Order.
#define LUMO_STRING_CORE_OPERATORS(Core, A, B)                                                     \
    bool operator==(A a, B b) {                                                                    \
        return Core::Equal(Core::SideOf(a), Core::SideOf(b));                                      \
    }                                                                                              \
    bool operator!=(A a, B b) {                                                                    \
        return !Core::Equal(Core::SideOf(a), Core::SideOf(b));                                     \
    }                                                                                              \
    bool operator<(A a, B b) {                                                                     \
        return Core::Order(Core::SideOf(a), Core::SideOf(b)) < 0;                                  \
    }                                                                                              \
    bool operator<=(A a, B b) {                                                                    \
        return Core::Order(Core::SideOf(a), Core::SideOf(b)) <= 0;                                 \
    }                                                                                              \
    bool operator>(A a, B b) {                                                                     \
        return Core::Order(Core::SideOf(a), Core::SideOf(b)) > 0;                                  \
    }                                                                                              \
    bool operator>=(A a, B b) {                                                                    \
        return Core::Order(Core::SideOf(a), Core::SideOf(b)) >= 0;                                 \
    }

} // namespace base
} // namespace lumo

#endif
