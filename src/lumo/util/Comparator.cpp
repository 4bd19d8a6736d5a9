// util::qsort: a non-recursive quicksort with the middle element as pivot, partitions
// made without branching on comparisons, an explicit stack that defers the larger
// part, and selection sort for short runs.
#include <lumo/util/Comparator.h>

#include <algorithm>
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

// The partition around the pivot (at lo). The classic one scans a low cursor up past
// elements that compare <= 0 with the pivot and a high cursor down past those that
// compare >= 0, exchanging the two where both stop, until they cross. Here it is
// computed without a branch on any comparison: the scans stop at unpredictable
// places, and a mispredicted branch at each stop cost more than the comparison
// itself. Where the scans stop depends only on how each element compares with the
// pivot: the low scan stops at "big" elements (Compare > 0), the high scan at
// "small" ones (Compare < 0), and the k-th stop of one is exchanged with the k-th
// stop of the other until they cross. So the elements are classified
// once each, into lists of bigs (in rising order) and smalls (falling), and the
// lists are paired off; for a comparator whose answers do not change the exchanges,
// and so the result, are the scans' own.
//
// A large partition is classified in blocks of kBlock from both ends, pairing the
// lists as they fill: while the blocks do not overlap, every pair lies the right way
// round. What remains (the unpaired rest of the last blocks and what lies between
// them, at most kZone elements) is settled as a small partition is, with the places
// where each scan would stop beyond it.
std::size_t const kBlock = 64;
std::size_t const kZone = 4 * kBlock;

// An array of pointer width usually holds pointers, and the comparator reads what they
// point to: asking for a block's pointees up front overlaps the cache misses that the
// comparisons would otherwise meet one call at a time. A slot that is no pointer only
// wastes the hint (a prefetch never faults).
template <class Width> inline void PrefetchPointees(char const* first, std::ptrdiff_t step) {
    if constexpr (std::is_same<Width, PointerWidth>::value)
        for (std::size_t i = 0; i < kBlock; ++i, first += step) {
            void const* p;
            std::memcpy(&p, first, sizeof p);
            __builtin_prefetch(p);
        }
}

template <class Width> class CPartition {
public:
    CPartition(char* lo, char* hi, Width w, IComparator const& comparator)
        : m_lo(lo), m_w(w), m_comparator(comparator), m_first(lo + w), m_last(hi),
          m_lowStop(hi + w), m_highStop(lo) {
        if (static_cast<std::size_t>(hi - lo) / w > kZone)
            ClassifyInBlocks(hi);
    }

    // Makes the remaining exchanges and reports where the scans end: `loguy` at the
    // first element of the upper part, `higuy` at the pivot's place.
    void Finish(char*& loguy, char*& higuy) {
        std::size_t bigCount = 0, smallCount = 0;
        for (char* p = m_first; p <= m_last; p += m_w) {
            int const order = m_comparator.Compare(p, m_lo);
            m_bigs[bigCount] = p;
            bigCount += order > 0;
            m_smalls[smallCount] = p;
            smallCount += order < 0;
        }
        // Each scan also stops at the last exchange's element on its side (holding
        // the other kind now), and first of all where the zone ends.
        char* lastBig = m_highStop;
        char* lastSmall = m_lowStop;
        for (std::size_t k = 0;; ++k) {
            char* const low = k < bigCount ? std::min(m_bigs[k], lastSmall) : lastSmall;
            char* const high =
                k < smallCount ? std::max(m_smalls[smallCount - 1 - k], lastBig) : lastBig;
            if (high < low) {
                loguy = low;
                higuy = high;
                return;
            }
            Swap(low, high, m_w);
            lastBig = low;
            lastSmall = high;
        }
    }

private:
    // Pairs blocks from both ends until fewer elements remain than the next blocks
    // need, then sets the zone left to Finish and the scans' stops beyond it.
    void ClassifyInBlocks(char* hi) {
        char* left = m_lo + m_w; // the unclassified elements: left .. right
        char* right = hi;
        char* leftBlock = left;   // the first element of the current left block
        char* rightBlock = right; // and the last of the current right block
        char* lastBig = m_lo;     // the scans' cursors after the exchanges so far
        char* lastSmall = hi + m_w;
        // The last small met on the left and the last big met on the right, and the
        // same before the current blocks (the bound of each scan when there is none).
        char* leftSmall = m_lo;
        char* olderLeftSmall = m_lo;
        char* rightBig = hi + m_w;
        char* olderRightBig = hi + m_w;
        std::size_t bigCount = 0, bigNext = 0, smallCount = 0, smallNext = 0;
        for (;;) {
            bool const refillBigs = bigNext == bigCount;
            bool const refillSmalls = smallNext == smallCount;
            std::size_t const unclassified =
                right >= left ? static_cast<std::size_t>(right - left) / m_w + 1 : 0;
            if (unclassified < (std::size_t(refillBigs) + std::size_t(refillSmalls)) * kBlock)
                break;
            if (refillBigs) {
                leftBlock = left;
                olderLeftSmall = leftSmall;
                bigNext = bigCount = 0;
                PrefetchPointees<Width>(left, static_cast<std::ptrdiff_t>(m_w));
                for (std::size_t i = 0; i < kBlock; ++i, left += m_w) {
                    int const order = m_comparator.Compare(left, m_lo);
                    m_bigs[bigCount] = left;
                    bigCount += order > 0;
                    leftSmall = order < 0 ? left : leftSmall;
                }
            }
            if (refillSmalls) {
                rightBlock = right;
                olderRightBig = rightBig;
                smallNext = smallCount = 0;
                PrefetchPointees<Width>(right, -static_cast<std::ptrdiff_t>(m_w));
                for (std::size_t i = 0; i < kBlock; ++i, right -= m_w) {
                    int const order = m_comparator.Compare(right, m_lo);
                    m_smalls[smallCount] = right;
                    smallCount += order < 0;
                    rightBig = order > 0 ? right : rightBig;
                }
            }
            std::size_t const pairs = std::min(bigCount - bigNext, smallCount - smallNext);
            for (std::size_t k = 0; k < pairs; ++k)
                Swap(m_bigs[bigNext + k], m_smalls[smallNext + k], m_w);
            if (pairs > 0) {
                lastBig = m_bigs[bigNext + pairs - 1];
                lastSmall = m_smalls[smallNext + pairs - 1];
            }
            bigNext += pairs;
            smallNext += pairs;
        }
        // Untouched so far: what follows lastBig in the current left block, the
        // unclassified elements, and what precedes lastSmall in the current right
        // block. Between that zone and lastBig lie no bigs and, after olderLeftSmall,
        // no smalls; likewise on the right.
        m_first = std::max(leftBlock, lastBig + m_w);
        m_last = std::min(rightBlock, lastSmall - m_w);
        m_highStop = std::max(lastBig, olderLeftSmall);
        m_lowStop = std::min(lastSmall, olderRightBig);
    }

    char* const m_lo; // the pivot
    Width const m_w;
    IComparator const& m_comparator;
    char* m_first; // the zone Finish settles: m_first .. m_last
    char* m_last;
    char* m_lowStop;  // where the low scan stops past the zone (a big, or one past the end)
    char* m_highStop; // and the high scan (a small, or the pivot)
    char* m_bigs[kZone];
    char* m_smalls[kZone];
};

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
            char* loguy;
            char* higuy;
            CPartition<Width>(lo, hi, w, comparator).Finish(loguy, higuy);
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
