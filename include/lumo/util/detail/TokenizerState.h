// What CStringTokenizer and CUnicodeStringTokenizer hold: the text being split, the
// delimiter set, the mode, the position of the next unread unit and the last token.
// Internal: the tokenizers' own headers are its only users.
#ifndef LUMO_UTIL_DETAIL_TOKENIZERSTATE_H
#define LUMO_UTIL_DETAIL_TOKENIZERSTATE_H

#include <cstdint>

namespace lumo {
namespace util {
namespace detail {

/// S is the string class, Ch its code unit. A unit is a delimiter when the delimiter
/// string's Find locates it. Every exception names the caller's unit and line. Copy,
/// assignment and destruction are the members' own (the position is copied too).
template <class S, class Ch> class TokenizerState {
public:
    /// A null or empty source throws CIllegalArgumentException "Invalid source text.";
    /// then null or empty delimiters "Invalid delimiters.".
    TokenizerState(Ch const* source, Ch const* delimiters, bool returnDelims, char const* unit,
                   int line);

    /// Without returnDelims, first moves past any delimiters (hence the mutable
    /// position).
    bool HasMoreTokens() const;
    /// The next token, kept until the next call; CNoSuchElementException when none.
    /// With returnDelims each call consumes one unit and the token is the substring
    /// from the next position to itself.
    S const& NextToken(char const* unit, int line);
    /// Replaces the delimiters ("Invalid delimiters." when null or empty), then as
    /// NextToken.
    S const& NextToken(Ch const* delimiters, char const* unit, int line);
    /// Runs of non-delimiters from the position on, plus (with returnDelims) every
    /// delimiter passed; the position stays.
    unsigned long TokenCount() const;

private:
    bool IsDelimiter(Ch c) const;
    std::uint32_t SkipDelimiters(std::uint32_t position) const;
    std::uint32_t SkipToken(std::uint32_t position) const;

    S m_source;
    S m_delimiters;
    bool m_returnDelims;
    std::uint32_t m_length;
    mutable std::uint32_t m_position;
    S m_token;
};

} // namespace detail
} // namespace util
} // namespace lumo

#endif
