// Regular expressions: one pattern with groups matched in 8-bit and in UTF-16 text
// (positions in bytes and in units), and the readable message of a bad pattern.
#include "Demos.h"

#include <lumo/Lumo.h>

#include <cstdio>

using lumo::base::CUnicodeString;
using lumo::util::regex::CRegEx;
using lumo::util::regex::CRegExMatch;
using lumo::util::regex::CRegExParseException;

namespace demo {

namespace {
void PrintGroups(CRegExMatch const& match, char const* unit) {
    for (unsigned long g = 0; g < match.GetGroupCount(); ++g)
        std::printf("  group %lu: %s %ld to %ld\n", g, unit, match.GetStartPosOfGroup(g),
                    match.GetEndPosOfGroup(g));
}
} // namespace

void RegexDemo() {
    std::printf("\n== regular expressions\n");
    CRegEx const date("(\\d{4})-(\\d{2})-(\\d{2})");
    char const* const text = "Größe geändert am 2024-03-17 um 10:00";
    CRegExMatch match;
    if (date.Matches(text, match)) {
        std::printf("in \"%s\" (8-bit, UTF-8):\n", text);
        PrintGroups(match, "bytes");
    }
    CUnicodeString const wide = CUnicodeString::FromUTF8(text);
    if (date.Matches(static_cast<unsigned short const*>(wide), match)) {
        std::printf("the same text in UTF-16:\n");
        PrintGroups(match, "units");
    }
    std::printf("case-insensitive 'größe' found: %s\n",
                CRegEx("GRÖSSE|größe", "i").Matches(text) ? "yes" : "no");
    try {
        CRegEx bad("(\\d+-(\\d+)");
    } catch (CRegExParseException const& e) {
        std::printf("a bad pattern: %s\n", e.GetMessage());
    }
}

} // namespace demo
