// CStringTokenizer: an 8-bit text split by the tokenizer state it holds, under this
// unit's name.
#include <lumo/util/StringTokenizer.h>

namespace lumo {
namespace util {

using base::CString;

namespace {
char const kUnit[] = "lumo/util/StringTokenizer";
} // namespace

CStringTokenizer::CStringTokenizer(char const* source, char const* delimiters, bool returnDelims)
    : m_state(source, delimiters, returnDelims, kUnit, __LINE__) {}

bool CStringTokenizer::HasMoreTokens() const {
    return m_state.HasMoreTokens();
}

CString const& CStringTokenizer::GetNextToken() {
    return m_state.NextToken(kUnit, __LINE__);
}

CString const& CStringTokenizer::GetNextToken(char const* delimiters) {
    return m_state.NextToken(delimiters, kUnit, __LINE__);
}

unsigned long CStringTokenizer::GetTokenCount() const {
    return m_state.TokenCount();
}

} // namespace util
} // namespace lumo
