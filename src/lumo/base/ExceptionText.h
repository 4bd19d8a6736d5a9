// Internal: CopyExceptionText, which copies a text into an exception's CString member
// and swallows a CMemoryException, since building an exception must not fail.
#ifndef LUMO_SRC_BASE_EXCEPTIONTEXT_H
#define LUMO_SRC_BASE_EXCEPTIONTEXT_H

#include <lumo/base/Exception.h>
#include <lumo/base/String.h>

namespace lumo {
namespace base {

// Copies a text into an exception's CString member. Building an exception must not
// fail for lack of memory, so a CMemoryException from the copy leaves the member
// empty. Unless `keepEmpty` is set, a null or empty text is not copied at all.
inline void CopyExceptionText(CString& target, char const* text, bool keepEmpty = false) {
    if (!keepEmpty && (text == nullptr || *text == '\0'))
        return;
    try {
        target = text;
    } catch (CMemoryException const&) {
    }
}

} // namespace base
} // namespace lumo

#endif
