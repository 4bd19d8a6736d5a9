#ifndef LUMO_UTIL_REGEX_REGEXMATCH_H
#define LUMO_UTIL_REGEX_REGEXMATCH_H

#include <lumo/base/Object.h>
#include <lumo/base/Ref.h>

namespace lumo {
namespace util {
namespace regex {

namespace detail {
class MatchRecord;
}

/// The groups of one successful match, filled by the CRegEx::Matches forms that take
/// a match. Copies share one record (what one fills, all see).
class LUMO_API CRegExMatch : public base::CObject {
    LUMO_DECLARE_CLASS(CRegExMatch);

public:
    /// An empty match (no groups). No memory: CMemoryException; before
    /// lumo::Initialize(): CIllegalStateException "Library not initialized.".
    CRegExMatch();
    /// Shares the other match's record.
    CRegExMatch(CRegExMatch const& other);
    /// Shares the other match's record and lets go of its own.
    CRegExMatch& operator=(CRegExMatch const& other);
    ~CRegExMatch() override;

    /// Number of groups of the last successful match, group 0 being the whole match;
    /// 0 before any.
    unsigned long GetGroupCount() const;
    /// Start and end (one past the last unit) of a group in the subject text: UTF-16
    /// units for UTF-16 text, bytes for 8-bit text; -1 for a group that took no part.
    /// A group at or past GetGroupCount(): CArrayIndexOutOfBoundsException.
    ///@{
    long GetStartPosOfGroup(unsigned long group) const;
    long GetEndPosOfGroup(unsigned long group) const;
    ///@}

private:
    friend class CRegEx;
    base::CRef<detail::MatchRecord> m_record;
};

} // namespace regex
} // namespace util
} // namespace lumo

#endif
