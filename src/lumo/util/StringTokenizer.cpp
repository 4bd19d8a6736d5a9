// CStringTokenizer over the shared StringTokenizerImpl, after checking the source text
// and the delimiters.
#include <lumo/util/StringTokenizer.h>

#include "StringTokenizerImpl.h"

namespace lumo {
namespace util {

using base::CString;

namespace {
char const kUnit[] = "lumo/util/StringTokenizer";
typedef detail::StringTokenizerImpl<CString, char> Impl;

char const* CheckedSource(char const* source) {
    Impl::CheckSource(source, kUnit, __LINE__);
    return source;
}
} // namespace

CStringTokenizer::CStringTokenizer(char const* source, char const* delimiters, bool returnDelims)
    : m_source(CheckedSource(source)), m_returnDelims(returnDelims), m_length(0), m_position(0) {
    Impl::CheckDelimiters(delimiters, kUnit, __LINE__);
    m_delimiters = delimiters;
    m_length = static_cast<std::uint32_t>(m_source.GetLength());
}

bool CStringTokenizer::HasMoreTokens() const {
    return Impl::HasMoreTokens(m_source, m_delimiters, m_returnDelims, m_length, m_position);
}

CString const& CStringTokenizer::GetNextToken() {
    Impl::NextToken(m_source, m_delimiters, m_returnDelims, m_length, m_position, m_token, kUnit);
    return m_token;
}

CString const& CStringTokenizer::GetNextToken(char const* delimiters) {
    Impl::CheckDelimiters(delimiters, kUnit, __LINE__);
    m_delimiters = delimiters;
    return GetNextToken();
}

unsigned long CStringTokenizer::GetTokenCount() const {
    return Impl::TokenCount(m_source, m_delimiters, m_returnDelims, m_length, m_position);
}

} // namespace util
} // namespace lumo
