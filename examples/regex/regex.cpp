// Regular expressions with groups: CRegEx compiles a pattern once, Matches searches a
// text and fills a CRegExMatch with the start and end of every group, from which the
// parts are cut out. A pattern that does not compile throws CRegExParseException.
#include <lumo/Lumo.h>

#include <cstdio>

using lumo::base::CString;
using lumo::base::CUnicodeString;
using lumo::util::regex::CRegEx;
using lumo::util::regex::CRegExMatch;
using lumo::util::regex::CRegExParseException;

namespace {

// The text of one group ("-" for a group that took no part in the match).
CString Group(char const* text, CRegExMatch const& match, unsigned long group) {
    long const start = match.GetStartPosOfGroup(group);
    long const end = match.GetEndPosOfGroup(group);
    if (start < 0)
        return CString("-");
    return CString(text + start, static_cast<unsigned long>(end - start));
}

void Run() {
    // A log line: date, level, an optional "[module]" and the message.
    CRegEx const line("^(\\d{4})-(\\d{2})-(\\d{2}) (INFO|WARN|ERROR)( \\[(\\w+)\\])? (.*)$");
    char const* const lines[] = {"2024-03-17 WARN [disk] almost full", "2024-03-18 INFO started",
                                 "not a log line"};
    CRegExMatch match;
    for (char const* text : lines) {
        if (!line.Matches(text, match)) {
            std::printf("no match: \"%s\"\n", text);
            continue;
        }
        std::printf("%lu groups in \"%s\"\n", match.GetGroupCount(), text);
        std::printf("  date %s.%s.%s, level %s, module %s, message \"%s\"\n",
                    static_cast<char const*>(Group(text, match, 3)),
                    static_cast<char const*>(Group(text, match, 2)),
                    static_cast<char const*>(Group(text, match, 1)),
                    static_cast<char const*>(Group(text, match, 4)),
                    static_cast<char const*>(Group(text, match, 6)),
                    static_cast<char const*>(Group(text, match, 7)));
    }

    // Positions count bytes in UTF-8 text and units in UTF-16 text.
    CRegEx const word("(b\\w+)");
    char const* const text = "Größe: beträchtlich";
    if (word.Matches(text, match))
        std::printf("UTF-8 bytes %ld to %ld: %s\n", match.GetStartPosOfGroup(1),
                    match.GetEndPosOfGroup(1), static_cast<char const*>(Group(text, match, 1)));
    CUnicodeString const wide = CUnicodeString::FromUTF8(text);
    if (word.Matches(static_cast<unsigned short const*>(wide), match))
        std::printf("UTF-16 units %ld to %ld\n", match.GetStartPosOfGroup(1),
                    match.GetEndPosOfGroup(1));

    // Options: "i" ignores case.
    std::printf("\"ERROR\" matches \"error\" ignoring case: %s\n",
                CRegEx("^error$", "i").Matches("ERROR") ? "yes" : "no");

    // A bad pattern is rejected when it is compiled, with a readable message.
    try {
        CRegEx const broken("(\\d+");
    } catch (CRegExParseException const& e) {
        std::printf("%s\n", e.GetMessage());
    }
}

} // namespace

int main() {
    // The expressions run on the XML parser's engine, which Initialize starts and the
    // last Terminate stops: every CRegEx must be gone before that, hence Run's scope.
    lumo::Initialize();
    Run();
    lumo::Terminate();
    return 0;
}
