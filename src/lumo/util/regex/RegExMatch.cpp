// CRegExMatch: a shared handle to the engine's record of one match's groups.
#include <lumo/util/regex/RegExMatch.h>

#include <lumo/base/Exception.h>

#include "detail/EngineObjects.h"

namespace lumo {
namespace util {
namespace regex {

namespace {
char const kUnit[] = "lumo/util/regex/RegExMatch";
} // namespace

LUMO_DEFINE_CLASS(CRegExMatch, "lumo::util::regex::CRegExMatch", "lumo::base::CObject");

CRegExMatch::CRegExMatch() {
    xercesc::MemoryManager* const manager = detail::EngineMemory(kUnit, __LINE__);
    detail::MatchRecord* record = nullptr;
    try {
        record = new (manager) detail::MatchRecord(manager);
    } catch (...) {
        throw base::CMemoryException(kUnit, __LINE__);
    }
    m_record = record; // frees the record itself when the holder cannot be made
}

CRegExMatch::CRegExMatch(CRegExMatch const& other) = default;
CRegExMatch& CRegExMatch::operator=(CRegExMatch const& other) = default;
CRegExMatch::~CRegExMatch() = default;

unsigned long CRegExMatch::GetGroupCount() const {
    // A record that was never filled answers 0 (the engine raises for a count it
    // considers unset).
    int n = 0;
    try {
        n = m_record->getNoGroups();
    } catch (...) {
        n = 0;
    }
    return n > 0 ? static_cast<unsigned long>(n) : 0;
}

long CRegExMatch::GetStartPosOfGroup(unsigned long group) const {
    if (group >= GetGroupCount())
        throw base::CArrayIndexOutOfBoundsException(kUnit, __LINE__);
    return m_record->getStartPos(static_cast<int>(group));
}

long CRegExMatch::GetEndPosOfGroup(unsigned long group) const {
    if (group >= GetGroupCount())
        throw base::CArrayIndexOutOfBoundsException(kUnit, __LINE__);
    return m_record->getEndPos(static_cast<int>(group));
}

} // namespace regex
} // namespace util
} // namespace lumo
