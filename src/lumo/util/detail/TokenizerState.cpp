// The token scanning behind CStringTokenizer and CUnicodeStringTokenizer, instantiated
// for both string classes.
#include <lumo/util/detail/TokenizerState.h>

#include <lumo/base/Exception.h>
#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/util/NoSuchElementException.h>

namespace lumo {
namespace util {
namespace detail {

namespace {

template <class Ch>
Ch const* Checked(Ch const* text, char const* unit, int line, char const* what) {
    if (text == nullptr || *text == 0)
        throw base::CIllegalArgumentException(unit, static_cast<unsigned long>(line), what);
    return text;
}

} // namespace

template <class S, class Ch>
TokenizerState<S, Ch>::TokenizerState(Ch const* source, Ch const* delimiters, bool returnDelims,
                                      char const* unit, int line)
    : m_source(Checked(source, unit, line, "Invalid source text.")),
      m_delimiters(Checked(delimiters, unit, line, "Invalid delimiters.")),
      m_returnDelims(returnDelims), m_length(static_cast<std::uint32_t>(m_source.GetLength())),
      m_position(0) {}

template <class S, class Ch> bool TokenizerState<S, Ch>::IsDelimiter(Ch c) const {
    return m_delimiters.Find(c, 0) >= 0;
}

template <class S, class Ch>
std::uint32_t TokenizerState<S, Ch>::SkipDelimiters(std::uint32_t position) const {
    Ch const* text = m_source;
    while (position < m_length && IsDelimiter(text[position]))
        ++position;
    return position;
}

template <class S, class Ch>
std::uint32_t TokenizerState<S, Ch>::SkipToken(std::uint32_t position) const {
    Ch const* text = m_source;
    while (position < m_length && !IsDelimiter(text[position]))
        ++position;
    return position;
}

template <class S, class Ch> bool TokenizerState<S, Ch>::HasMoreTokens() const {
    if (!m_returnDelims)
        m_position = SkipDelimiters(m_position);
    return m_position < m_length;
}

template <class S, class Ch> S const& TokenizerState<S, Ch>::NextToken(char const* unit, int line) {
    if (!HasMoreTokens())
        throw CNoSuchElementException(unit, static_cast<unsigned long>(line));
    if (m_returnDelims) {
        // One unit per call, and the token is the substring from p + 1 to p + 1: the
        // defined behaviour of this mode.
        std::uint32_t const p = m_position;
        m_position = p + 1;
        m_token = m_source.SubString(p + 1, p + 1);
        return m_token;
    }
    std::uint32_t const start = m_position;
    m_position = SkipToken(m_position);
    m_token = m_source.SubString(start, m_position);
    return m_token;
}

template <class S, class Ch>
S const& TokenizerState<S, Ch>::NextToken(Ch const* delimiters, char const* unit, int line) {
    m_delimiters = Checked(delimiters, unit, line, "Invalid delimiters.");
    return NextToken(unit, line);
}

template <class S, class Ch> unsigned long TokenizerState<S, Ch>::TokenCount() const {
    unsigned long count = 0;
    std::uint32_t position = m_position;
    while (position < m_length) {
        std::uint32_t const afterDelimiters = SkipDelimiters(position);
        if (m_returnDelims)
            count += afterDelimiters - position;
        position = afterDelimiters;
        if (position >= m_length)
            break;
        position = SkipToken(position);
        ++count;
    }
    return count;
}

template class TokenizerState<base::CString, char>;
template class TokenizerState<base::CUnicodeString, unsigned short>;

} // namespace detail
} // namespace util
} // namespace lumo
