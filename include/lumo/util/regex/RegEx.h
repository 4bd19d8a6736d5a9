#ifndef LUMO_UTIL_REGEX_REGEX_H
#define LUMO_UTIL_REGEX_REGEX_H

#include <lumo/base/Object.h>
#include <lumo/base/Ref.h>
#include <lumo/util/regex/RegExMatch.h>
#include <lumo/util/regex/RegExParseException.h>

namespace lumo {
namespace util {
/// Regular expressions and their matches.
namespace regex {

namespace detail {
class CompiledPattern;
}

/// A compiled regular expression over the XML parser's engine (its syntax and option
/// letters: i ignore case, m multi-line, s single-line, x extended, X XML Schema, F, H).
/// Needs lumo::Initialize() (before it, constructors and Matches throw
/// CIllegalStateException "Library not initialized."). Copies share the compiled
/// pattern; the last one frees it.
///
/// 8-bit patterns and texts are UTF-8 (a malformed byte is one character of its own,
/// seen by the engine as U+FFFD); positions and ranges in 8-bit text count bytes, in
/// UTF-16 text units. Matching searches: it succeeds when the pattern matches anywhere
/// in the text (or range). It backtracks, without a step limit: with repeats inside
/// repeats or choices that overlap ("(a+)+b", "(a|aa)*b"), a text that does not match
/// can take time exponential in its length.
class LUMO_API CRegEx : public base::CObject {
    LUMO_DECLARE_CLASS(CRegEx);

public:
    /// Compiles `pattern` (with `options`, handed to the engine unchanged). A null
    /// pattern: CIllegalArgumentException "Invalid pattern."; null options:
    /// CIllegalArgumentException "Invalid options."; a pattern (or option letter) the
    /// engine rejects: CRegExParseException naming the pattern and, where the engine's
    /// error has a readable counterpart, the reason (and, without a reason, a
    /// character class that a subtraction leaves empty, as in "[a-[a]]", which the
    /// engine cannot handle); no memory, groups (or classes subtracted inside classes)
    /// nested more than 1000 deep, or a part that can match the empty text repeated
    /// without bound, as in "(a*)*b" or "(x?)+" (the engine would exhaust the stack,
    /// nesting deeper or looping without end), or counted repeats that the engine would
    /// write out into more than about 100000 atoms beyond four per pattern character, as
    /// in "a{3000000}" or "(a{400}){400}", or into more than 5000 groups and choices, as
    /// in "(a|b){5000}" (matching recurses at each: the stack would run out), or with a
    /// count above 2147483647 (which the engine would wrap round): CMemoryException.
    ///@{
    explicit CRegEx(char const* pattern);
    CRegEx(char const* pattern, char const* options);
    explicit CRegEx(unsigned short const* pattern);
    CRegEx(unsigned short const* pattern, unsigned short const* options);
    ///@}
    /// Shares the other expression's compiled pattern.
    CRegEx(CRegEx const& other);
    /// Shares the other expression's compiled pattern and lets go of its own.
    CRegEx& operator=(CRegEx const& other);
    ~CRegEx() override;

    /// True when the pattern matches somewhere in `text` (zero-terminated). A null text:
    /// CIllegalArgumentException "Invalid match string.". A failure inside the engine
    /// (for lack of memory, or any other): CMemoryException.
    ///@{
    bool Matches(char const* text) const;
    bool Matches(unsigned short const* text) const;
    ///@}
    /// As above, within [start, end) of `text`, which the engine treats as the whole
    /// text (so '^' matches at `start`). Accepted only when start < end and end <= the
    /// length of `text`; otherwise CIllegalArgumentException "Invalid start & end
    /// positons.". Positions reported stay relative to the start of `text`.
    ///@{
    bool Matches(char const* text, unsigned long start, unsigned long end) const;
    bool Matches(unsigned short const* text, unsigned long start, unsigned long end) const;
    ///@}
    /// As above; on success `match` holds the groups. On failure the engine has reset it
    /// (its group positions are -1).
    ///@{
    bool Matches(char const* text, CRegExMatch& match) const;
    bool Matches(unsigned short const* text, CRegExMatch& match) const;
    bool Matches(char const* text, unsigned long start, unsigned long end,
                 CRegExMatch& match) const;
    bool Matches(unsigned short const* text, unsigned long start, unsigned long end,
                 CRegExMatch& match) const;
    ///@}

private:
    bool Match8(char const* text, bool ranged, unsigned long start, unsigned long end,
                CRegExMatch* match) const;
    bool Match16(unsigned short const* text, bool ranged, unsigned long start, unsigned long end,
                 CRegExMatch* match) const;

    base::CRef<detail::CompiledPattern> m_pattern;
};

} // namespace regex
} // namespace util
} // namespace lumo

#endif
