// IComparator, which orders two slots of an array being sorted, and util::qsort, the
// library's non-recursive quicksort over it.
#ifndef LUMO_UTIL_COMPARATOR_H
#define LUMO_UTIL_COMPARATOR_H

#include <lumo/base/Base.h>

namespace lumo {
namespace util {

/// Orders two elements of an array being sorted. The arguments point at the two
/// array slots, not at what the slots may point to.
class LUMO_API IComparator : public base::CBase {
public:
    virtual ~IComparator();
    /// Negative, zero or positive as a sorts before, with or after b.
    virtual int Compare(void const* a, void const* b) const = 0;
};

/// Sorts `count` elements of `width` bytes at `base` with the library's
/// non-recursive quicksort (middle element as pivot, selection sort for runs of
/// eight or fewer). Not stable. Nothing happens for fewer than two elements or a
/// width of 0. Where equal elements end up is fixed by the algorithm (its scans leave
/// an element that compares equal to the pivot where it is); the order and number of
/// the `Compare` calls are not, so a comparator should answer the same for the same
/// two elements every time. Because equal elements stay put, an array with only a
/// few distinct keys sorts in time that grows with the square of its length.
LUMO_API void qsort(void* base, unsigned count, unsigned width, IComparator const& comparator);

} // namespace util
} // namespace lumo

#endif
