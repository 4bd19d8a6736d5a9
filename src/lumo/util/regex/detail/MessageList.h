// Internal: the regular-expression message list, a string resource of the library
// (type STRS, identifier 18000). The list counts its entries from 1; the resource
// layer's tables count from 0.
#ifndef LUMO_UTIL_REGEX_DETAIL_MESSAGELIST_H
#define LUMO_UTIL_REGEX_DETAIL_MESSAGELIST_H

#include <vela/Resource.h>

namespace lumo {
namespace util {
namespace regex {
namespace detail {

unsigned long const kMessageListId = 18000;
unsigned long const kShortTemplate = 1;  // "Regular expression '%s' is invalid."
unsigned long const kReasonTemplate = 2; // "... is invalid due to : '%s'."

/// Entry `index` (from 1) of the list, or null when there is none.
inline char const* LoadMessage(unsigned long index) {
    if (index == 0)
        return nullptr;
    return Vela::RSLoadString("STRS", kMessageListId, index - 1);
}

} // namespace detail
} // namespace regex
} // namespace util
} // namespace lumo

#endif
