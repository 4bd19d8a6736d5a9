// The string resources compiled into the library.
#include "Module.h"

namespace lumo {
namespace detail {

namespace {
// STRS 18000: the regular-expression messages, entries 1 to 34 (templates at 1 and 2,
// then the engine's parse-error reasons). Texts are kept exactly as published,
// double blanks and spellings included; entry 26 is present though no error leads to it.
char const* const kRegExMessages[] = {
    "Regular expression '%s' is invalid.",
    "Regular expression '%s' is invalid due to : '%s'.",
    "Wrong character.",
    "Invalid reference number.",
    "A character is required after \\.",
    "'?' is not expected. '(?:' or '(?=' or '(?!' or '(?<' or '(?#' or '(?>'?",
    "'(?<=' or '(?<!' is expected.",
    "A comment is not terminated.",
    "')' is expected.",
    "Unexpected end of the pattern in a modifier group.",
    "':' is expected.",
    "Unexpected end of the pattern in a conditional group.",
    ("A back reference or an anchor or a lookahead or a lookbehind is expected in a "
     "conditional pattern."),
    "There are more than three choices in a conditional group.",
    "A character in U+0040-U+005f must follow \\c.",
    "A Category character or '{' is required.",
    "A property name is not closed by '}'.",
    "Unexpected meta character.",
    "Unknown property.",
    "A POSIX character class must be closed by ':]'.",
    "Unexpected end of the pattern in a character class.",
    "Unknown name for a POSIX character class.",
    "'-' is invalid here.",
    "']' is expected.",
    "'[' is invalid in a characer class.  Write '\\['.",
    "']' is invalid in a characer class.  Write '\\]'.",
    "'[' is expected.",
    "')' or '-[' or '+[' or '&[' is expected.",
    "Invalid Unicode hex notation.",
    "Overflow in a hex notation.",
    "'\\x{' must be closed by '}'.",
    "Invalid Unicode code point.",
    "An anchor cannot be here.",
    "This expression is not supported in the current option setting.",
};

Vela::RSStringTable const kTables[] = {
    {"STRS", 18000, kRegExMessages, sizeof kRegExMessages / sizeof kRegExMessages[0]},
};

Vela::RSModuleInfo const kModule = {"lumo", kTables, sizeof kTables / sizeof kTables[0]};
} // namespace

Vela::RSModuleHandle GetModuleHandle() {
    return &kModule;
}

} // namespace detail
} // namespace lumo
