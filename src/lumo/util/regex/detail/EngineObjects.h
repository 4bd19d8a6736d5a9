// Internal: the engine objects that CRegEx and CRegExMatch hold. Each is the engine's
// own class under a name the public headers can forward-declare; both are allocated
// with the engine's memory manager (XMemory), which their delete gives them back to.
#ifndef LUMO_UTIL_REGEX_DETAIL_ENGINEOBJECTS_H
#define LUMO_UTIL_REGEX_DETAIL_ENGINEOBJECTS_H

#include <lumo/base/Exception.h>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/regx/Match.hpp>
#include <xercesc/util/regx/RegularExpression.hpp>

namespace lumo {
namespace util {
namespace regex {
namespace detail {

/// The engine's memory manager; CIllegalStateException "Library not initialized." (at
/// the caller's unit and line) before lumo::Initialize() has started the engine.
inline xercesc::MemoryManager* EngineMemory(char const* unit, unsigned long line) {
    xercesc::MemoryManager* const manager = xercesc::XMLPlatformUtils::fgMemoryManager;
    if (manager == nullptr)
        throw base::CIllegalStateException(unit, line, "Library not initialized.", nullptr);
    return manager;
}

class CompiledPattern : public xercesc::RegularExpression {
public:
    CompiledPattern(XMLCh const* pattern, XMLCh const* options, xercesc::MemoryManager* manager)
        : RegularExpression(pattern, options, manager) {}

    /// A pattern that is one literal text is matched by a plain string search, which
    /// reports the match's end as its start plus the length of the pattern as written,
    /// escapes included ("a\\." would end one unit late). This is the literal's own
    /// length, or 0 when the pattern is not one.
    XMLSize_t LiteralLength() const {
        return fFixedStringOnly && fFixedString != nullptr
                   ? xercesc::XMLString::stringLen(fFixedString)
                   : 0;
    }
};

class MatchRecord : public xercesc::Match {
public:
    explicit MatchRecord(xercesc::MemoryManager* manager) : Match(manager) {}
};

} // namespace detail
} // namespace regex
} // namespace util
} // namespace lumo

#endif
