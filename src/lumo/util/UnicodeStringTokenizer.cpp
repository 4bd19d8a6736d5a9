// CUnicodeStringTokenizer: a UTF-16 text split by the tokenizer state it holds, under
// this unit's name.
#include <lumo/util/UnicodeStringTokenizer.h>

namespace lumo {
namespace util {

using base::CUnicodeString;

namespace {
char const kUnit[] = "lumo/util/UnicodeStringTokenizer";
} // namespace

CUnicodeStringTokenizer::CUnicodeStringTokenizer(unsigned short const* source,
                                                 unsigned short const* delimiters,
                                                 bool returnDelims)
    : m_state(source, delimiters, returnDelims, kUnit, __LINE__) {}

bool CUnicodeStringTokenizer::HasMoreTokens() const {
    return m_state.HasMoreTokens();
}

CUnicodeString const& CUnicodeStringTokenizer::GetNextToken() {
    return m_state.NextToken(kUnit, __LINE__);
}

CUnicodeString const& CUnicodeStringTokenizer::GetNextToken(unsigned short const* delimiters) {
    return m_state.NextToken(delimiters, kUnit, __LINE__);
}

unsigned long CUnicodeStringTokenizer::GetTokenCount() const {
    return m_state.TokenCount();
}

} // namespace util
} // namespace lumo
