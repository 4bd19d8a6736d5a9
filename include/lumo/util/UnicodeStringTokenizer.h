// CUnicodeStringTokenizer: splits a UTF-16 text into tokens at any of a set of delimiter
// characters, optionally returning the delimiters as tokens.
#ifndef LUMO_UTIL_UNICODESTRINGTOKENIZER_H
#define LUMO_UTIL_UNICODESTRINGTOKENIZER_H

#include <lumo/base/UnicodeString.h>
#include <lumo/util/detail/TokenizerState.h>

#include <cstdint>

namespace lumo {
namespace util {

/// Splits a UTF-16 text into tokens separated by any of a set of delimiter
/// characters. Without returnDelims, runs of delimiters are skipped and each token
/// is a run of other characters. With returnDelims, every call consumes exactly
/// one character and hands out an empty token (the substring from the next
/// position to itself), and GetTokenCount counts the runs plus every delimiter:
/// both kept as the library has always defined them.
class LUMO_API CUnicodeStringTokenizer {
public:
    /// A null or empty source throws CIllegalArgumentException "Invalid source
    /// text."; null or empty delimiters "Invalid delimiters." (source first).
    CUnicodeStringTokenizer(unsigned short const* source, unsigned short const* delimiters,
                            bool returnDelims = false);

    /// Without returnDelims this first moves past any delimiters (the position
    /// changes although the call is const).
    bool HasMoreTokens() const;
    /// The next token, valid until the next call; CNoSuchElementException when
    /// there is none.
    base::CUnicodeString const& GetNextToken();
    /// Replaces the delimiters for this and every later call, then as GetNextToken().
    base::CUnicodeString const& GetNextToken(unsigned short const* delimiters);
    /// The tokens from the current position on, without moving.
    unsigned long GetTokenCount() const;

private:
    detail::TokenizerState<base::CUnicodeString, unsigned short> m_state;
};

} // namespace util
} // namespace lumo

#endif
