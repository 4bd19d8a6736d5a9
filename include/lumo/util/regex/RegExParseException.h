#ifndef LUMO_UTIL_REGEX_REGEXPARSEEXCEPTION_H
#define LUMO_UTIL_REGEX_REGEXPARSEEXCEPTION_H

#include <lumo/base/Exception.h>

namespace lumo {
namespace util {
namespace regex {

/// A pattern that does not compile. The message is composed from the library's
/// resource strings: with a reason, "Regular expression '<pattern>' is invalid due to :
/// '<reason>'."; without one (null or empty), "Regular expression '<pattern>' is
/// invalid.". The error description is null.
class LUMO_API CRegExParseException : public base::CException {
    LUMO_DECLARE_CLASS(CRegExParseException);

public:
    /// `pattern` is the 8-bit (UTF-8) text of the pattern (null prints as empty);
    /// `reason` the readable cause, or null / empty for none. Building the message
    /// never throws: when it cannot be made the exception has no message.
    CRegExParseException(char const* file, unsigned long line, char const* pattern,
                         char const* reason);
};

} // namespace regex
} // namespace util
} // namespace lumo

#endif
