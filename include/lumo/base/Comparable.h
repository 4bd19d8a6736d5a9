// IComparable, the interface of objects with a natural order.
#ifndef LUMO_BASE_COMPARABLE_H
#define LUMO_BASE_COMPARABLE_H

#include <lumo/Config.h>

namespace lumo {
namespace base {

/// Objects with a natural order. Implementations throw CIllegalComparisonException
/// when asked to compare with an object they cannot be ordered against.
class LUMO_API IComparable {
public:
    virtual ~IComparable();
    /// Negative, zero or positive as this object sorts before, with or after `other`.
    virtual int CompareTo(IComparable const& other) const = 0;

protected:
    IComparable() {}
    /// Copying an interface copies nothing.
    ///@{
    IComparable(IComparable const&) {}
    IComparable& operator=(IComparable const&) { return *this; }
    ///@}
};

} // namespace base
} // namespace lumo

#endif
