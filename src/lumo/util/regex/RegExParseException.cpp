// CRegExParseException: a pattern the engine rejects, with a message composed from the
// library's resource templates.
#include <lumo/util/regex/RegExParseException.h>

#include "detail/MessageList.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace lumo {
namespace util {
namespace regex {

LUMO_DEFINE_CLASS(CRegExParseException, "lumo::util::regex::CRegExParseException",
                  "lumo::base::CException");

namespace {
struct FreeDeleter {
    void operator()(char* p) const { std::free(p); }
};

// The template filled with the pattern (and reason); null when a template is missing
// or memory is short. Formatted in two passes, since a pattern may be of any size.
std::unique_ptr<char, FreeDeleter> Compose(char const* pattern, char const* reason) {
    bool const withReason = reason != nullptr && *reason != '\0';
    char const* format =
        detail::LoadMessage(withReason ? detail::kReasonTemplate : detail::kShortTemplate);
    if (format == nullptr)
        return nullptr;
    if (pattern == nullptr)
        pattern = "";
    int const size = withReason ? std::snprintf(nullptr, 0, format, pattern, reason)
                                : std::snprintf(nullptr, 0, format, pattern);
    if (size < 0)
        return nullptr;
    std::unique_ptr<char, FreeDeleter> text(
        static_cast<char*>(std::malloc(static_cast<std::size_t>(size) + 1)));
    if (text == nullptr)
        return nullptr;
    if (withReason)
        std::snprintf(text.get(), static_cast<std::size_t>(size) + 1, format, pattern, reason);
    else
        std::snprintf(text.get(), static_cast<std::size_t>(size) + 1, format, pattern);
    return text;
}
} // namespace

CRegExParseException::CRegExParseException(char const* file, unsigned long line,
                                           char const* pattern, char const* reason)
    : CException(file, line, nullptr, nullptr) {
    std::unique_ptr<char, FreeDeleter> const text = Compose(pattern, reason);
    if (text != nullptr)
        SetMessage(text.get());
}

} // namespace regex
} // namespace util
} // namespace lumo
