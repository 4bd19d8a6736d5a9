// CBool: the library's fixed texts for true and false, 8-bit and UTF-16, with their
// lengths.
#ifndef LUMO_BASE_BOOL_H
#define LUMO_BASE_BOOL_H

#include <lumo/base/Object.h>

namespace lumo {
namespace base {

/// The library's fixed texts for booleans, 8-bit and UTF-16.
class LUMO_API CBool : public CObject {
    LUMO_DECLARE_CLASS(CBool);

public:
    CBool() {}

    /// "true" and "false", 8-bit and UTF-16, zero-terminated.
    ///@{
    static char const SZ_TRUE[];
    static char const SZ_FALSE[];
    static unsigned short const WSZ_TRUE[];
    static unsigned short const WSZ_FALSE[];
    ///@}
    /// Lengths of the texts in characters.
    ///@{
    static constexpr unsigned long CC_TRUE = 4;
    static constexpr unsigned long CC_FALSE = 5;
    static constexpr unsigned long WCC_TRUE = 4;
    static constexpr unsigned long WCC_FALSE = 5;
    ///@}

    /// SZ_TRUE or SZ_FALSE.
    static char const* ToString(bool value) { return value ? SZ_TRUE : SZ_FALSE; }
    /// WSZ_TRUE or WSZ_FALSE.
    static unsigned short const* ToUnicodeString(bool value) {
        return value ? WSZ_TRUE : WSZ_FALSE;
    }
};

} // namespace base
} // namespace lumo

#endif
