// Internal: the engine objects that CRegEx and CRegExMatch hold. Each is the engine's
// own class under a name the public headers can forward-declare; both are allocated
// with the engine's memory manager (XMemory), which their delete gives them back to.
#ifndef LUMO_UTIL_REGEX_DETAIL_ENGINEOBJECTS_H
#define LUMO_UTIL_REGEX_DETAIL_ENGINEOBJECTS_H

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/regx/Match.hpp>
#include <xercesc/util/regx/RegularExpression.hpp>

namespace lumo {
namespace util {
namespace regex {
namespace detail {

class CompiledPattern : public xercesc::RegularExpression {
public:
    CompiledPattern(XMLCh const* pattern, XMLCh const* options)
        : RegularExpression(pattern, options, xercesc::XMLPlatformUtils::fgMemoryManager) {}
};

class MatchRecord : public xercesc::Match {
public:
    MatchRecord() : Match(xercesc::XMLPlatformUtils::fgMemoryManager) {}
};

} // namespace detail
} // namespace regex
} // namespace util
} // namespace lumo

#endif
