// util::qsort: a non-recursive quicksort with the middle element as pivot, an explicit
// stack that defers the larger part, and selection sort for short runs.
#include <lumo/util/Comparator.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace lumo {
namespace util {

IComparator::~IComparator() {}

namespace {

// Partitions of this many elements or fewer are finished by selection sort.
std::size_t const kCutoff = 8;
// Pending partitions. The larger part is the one deferred, so with k partitions
// pending the current one holds at most count / 2^k elements, and only one of more
// than kCutoff elements is split: for 32-bit counts k never passes 29.
int const kStackSize = 30;

// The element width: a run-time value, or a constant for the common array of pointers,
// which leaves the sort's inner loops a register to spare.
using PointerWidth = std::integral_constant<std::size_t, sizeof(void*)>;

// Exchanges two elements. Equivalent to a byte-by-byte exchange, done in chunks.
template <class Width> inline void Swap(char* a, char* b, Width w) {
    std::size_t width = w;
    if (a == b)
        return;
    if (width == sizeof(void*)) {
        void* t;
        std::memcpy(&t, a, sizeof t);
        std::memcpy(a, b, sizeof t);
        std::memcpy(b, &t, sizeof t);
        return;
    }
    char buffer[64];
    while (width > 0) {
        std::size_t const n = width < sizeof buffer ? width : sizeof buffer;
        std::memcpy(buffer, a, n);
        std::memcpy(a, b, n);
        std::memcpy(b, buffer, n);
        a += n;
        b += n;
        width -= n;
    }
}

// Repeatedly moves the largest element of lo..hi to the end; the first of equal
// maxima wins.
template <class Width>
void ShortSort(char* lo, char* hi, Width width, IComparator const& comparator) {
    while (hi > lo) {
        char* max = lo;
        for (char* p = lo + width; p <= hi; p += width)
            if (comparator.Compare(p, max) > 0)
                max = p;
        Swap(max, hi, width);
        hi -= width;
    }
}

template <class Width>
void Sort(char* base, unsigned count, Width w, IComparator const& comparator) {
    char* lostk[kStackSize];
    char* histk[kStackSize];
    int stkptr = 0;
    char* lo = base;
    char* hi = lo + w * (count - 1);

    for (;;) {
        std::size_t const size = static_cast<std::size_t>(hi - lo) / w + 1;
        if (size <= kCutoff) {
            ShortSort(lo, hi, w, comparator);
        } else {
            Swap(lo + (size / 2) * w, lo, w);
            char* loguy = lo;
            char* higuy = hi + w;
            for (;;) {
                do {
                    loguy += w;
                } while (loguy <= hi && comparator.Compare(loguy, lo) <= 0);
                do {
                    higuy -= w;
                } while (higuy > lo && comparator.Compare(higuy, lo) >= 0);
                if (higuy < loguy)
                    break;
                Swap(loguy, higuy, w);
            }
            Swap(lo, higuy, w);

            // lo..higuy-1 and loguy..hi remain; defer the larger, go on with the
            // smaller.
            bool const lowHasTwo = lo + w < higuy;
            bool const highHasTwo = loguy < hi;
            if ((higuy - lo) - 1 >= hi - loguy) {
                if (lowHasTwo) {
                    lostk[stkptr] = lo;
                    histk[stkptr] = higuy - w;
                    ++stkptr;
                }
                if (highHasTwo) {
                    lo = loguy;
                    continue;
                }
            } else {
                if (highHasTwo) {
                    lostk[stkptr] = loguy;
                    histk[stkptr] = hi;
                    ++stkptr;
                }
                if (lowHasTwo) {
                    hi = higuy - w;
                    continue;
                }
            }
        }
        if (--stkptr < 0)
            return;
        lo = lostk[stkptr];
        hi = histk[stkptr];
    }
}

} // namespace

void qsort(void* base, unsigned count, unsigned width, IComparator const& comparator) {
    if (count < 2 || width == 0)
        return;
    if (width == sizeof(void*))
        Sort(static_cast<char*>(base), count, PointerWidth(), comparator);
    else
        Sort(static_cast<char*>(base), count, std::size_t(width), comparator);
}

} // namespace util
} // namespace lumo
