// CUnicodeStringTokenizer over the shared StringTokenizerImpl, after checking the source
// text and the delimiters.
#include <lumo/util/UnicodeStringTokenizer.h>

#include "StringTokenizerImpl.h"

namespace lumo {
namespace util {

using base::CUnicodeString;

namespace {
char const kUnit[] = "lumo/util/UnicodeStringTokenizer";
typedef detail::StringTokenizerImpl<CUnicodeString, unsigned short> Impl;

unsigned short const* CheckedSource(unsigned short const* source) {
    Impl::CheckSource(source, kUnit, __LINE__);
    return source;
}
} // namespace

CUnicodeStringTokenizer::CUnicodeStringTokenizer(unsigned short const* source,
                                                 unsigned short const* delimiters,
                                                 bool returnDelims)
    : m_source(CheckedSource(source)), m_returnDelims(returnDelims), m_length(0), m_position(0) {
    Impl::CheckDelimiters(delimiters, kUnit, __LINE__);
    m_delimiters = delimiters;
    m_length = static_cast<std::uint32_t>(m_source.GetLength());
}

bool CUnicodeStringTokenizer::HasMoreTokens() const {
    return Impl::HasMoreTokens(m_source, m_delimiters, m_returnDelims, m_length, m_position);
}

CUnicodeString const& CUnicodeStringTokenizer::GetNextToken() {
    Impl::NextToken(m_source, m_delimiters, m_returnDelims, m_length, m_position, m_token, kUnit);
    return m_token;
}

CUnicodeString const& CUnicodeStringTokenizer::GetNextToken(unsigned short const* delimiters) {
    Impl::CheckDelimiters(delimiters, kUnit, __LINE__);
    m_delimiters = delimiters;
    return GetNextToken();
}

unsigned long CUnicodeStringTokenizer::GetTokenCount() const {
    return Impl::TokenCount(m_source, m_delimiters, m_returnDelims, m_length, m_position);
}

} // namespace util
} // namespace lumo
