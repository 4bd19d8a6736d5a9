// Fuzzes CRegEx: an arbitrary pattern (at most 64 bytes) and options compiled in the
// 8-bit or UTF-16 form, then matched against arbitrary text (at most 256 bytes), whole
// and in a range, with and without a match record whose groups must lie in the text.
#include "FuzzSupport.h"

#include <lumo/util/regex/RegEx.h>
#include <lumo/util/regex/RegExMatch.h>

#include <algorithm>
#include <memory>

using lumo::base::CUnicodeString;
using namespace lumo::util::regex;
using namespace lumofuzz;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Start();
    Input in(data, size);
    bool const wide = in.Bool();
    std::string options;
    static char const kLetters[] = "imsxXFH,";
    for (unsigned n = in.Pick(4); n > 0; --n)
        options += kLetters[in.Pick(8)];
    std::string pattern = in.Bytes(64);
    std::string text = in.Bytes(255);
    pattern = pattern.substr(0, pattern.find('\0'));
    // Matching backtracks: its time can grow exponentially with the text's length, at a
    // rate set by the pattern's repeats and choices ("(a+)+b", "(a|aa)*b"; a counted
    // repeat weighs as much as four of them), and the engine has no step limit. So the
    // text is shortened by the count of those operators, enough for every input to end
    // well within the time-out; a pattern without them still meets up to 255 bytes.
    std::size_t operators = 0;
    for (char c : pattern)
        operators += c == '{' ? 4 : c == '*' || c == '+' || c == '?' || c == '|' ? 1 : 0;
    static std::size_t const kLongest[] = {255, 64, 16, 8, 4, 2};
    std::size_t const longest = operators < 6 ? kLongest[operators] : 0;
    text = text.substr(0, std::min(text.find('\0'), longest));
    unsigned long const start = in.Pick(unsigned(text.size()) + 2);
    unsigned long const end = in.Pick(unsigned(text.size()) + 2);

    // The UTF-16 forms take the texts decoded leniently from the same bytes.
    CUnicodeString const widePattern = CUnicodeString::FromUTF8(pattern.c_str());
    CUnicodeString const wideOptions = CUnicodeString::FromUTF8(options.c_str());
    CUnicodeString const wideText = CUnicodeString::FromUTF8(text.c_str());
    std::unique_ptr<CRegEx> regex;
    if (!Try([&] {
            regex.reset(wide ? new CRegEx(static_cast<unsigned short const*>(widePattern),
                                          static_cast<unsigned short const*>(wideOptions))
                             : new CRegEx(pattern.c_str(), options.c_str()));
        }))
        return 0;
    unsigned long const length = wide ? wideText.GetLength() : text.size();
    CRegExMatch match;
    bool found = false;
    Try([&] {
        found = wide ? regex->Matches(static_cast<unsigned short const*>(wideText), match)
                     : regex->Matches(text.c_str(), match);
    });
    if (found) {
        for (unsigned long g = 0; g < match.GetGroupCount(); ++g) {
            long const s = match.GetStartPosOfGroup(g), e = match.GetEndPosOfGroup(g);
            FUZZ_CHECK((s == -1 && e == -1) || (0 <= s && s <= e && e <= long(length)));
        }
        FUZZ_CHECK(match.GetGroupCount() > 0 && match.GetStartPosOfGroup(0) >= 0);
    }
    bool plain = false;
    Try([&] {
        plain = wide ? regex->Matches(static_cast<unsigned short const*>(wideText))
                     : regex->Matches(text.c_str());
    });
    FUZZ_CHECK(plain == found);

    // A range is accepted only when start < end <= the text's length.
    bool const ranged = Try([&] {
        if (wide)
            regex->Matches(static_cast<unsigned short const*>(wideText), start, end, match);
        else
            regex->Matches(text.c_str(), start, end, match);
    });
    FUZZ_CHECK(!ranged || (start < end && end <= length));
    CRegEx copy(*regex);
    Try([&] { copy.Matches(text.c_str(), start, end); });
    return 0;
}
