// Internal: the token scanning of CStringTokenizer and CUnicodeStringTokenizer, written
// once for any string class over its code units.
#ifndef LUMO_SRC_UTIL_STRINGTOKENIZERIMPL_H
#define LUMO_SRC_UTIL_STRINGTOKENIZERIMPL_H

// The scanning of CStringTokenizer and CUnicodeStringTokenizer, written once for
// any string class S over code units Ch.

#include <lumo/base/Exception.h>
#include <lumo/util/NoSuchElementException.h>

#include <cstdint>

namespace lumo {
namespace util {
namespace detail {

template <class S, class Ch> struct StringTokenizerImpl {
    static void CheckSource(Ch const* source, char const* unit, int line) {
        if (source == nullptr || *source == 0)
            throw base::CIllegalArgumentException(unit, static_cast<unsigned long>(line),
                                                  "Invalid source text.");
    }

    static void CheckDelimiters(Ch const* delimiters, char const* unit, int line) {
        if (delimiters == nullptr || *delimiters == 0)
            throw base::CIllegalArgumentException(unit, static_cast<unsigned long>(line),
                                                  "Invalid delimiters.");
    }

    static bool IsDelimiter(S const& delimiters, Ch c) { return delimiters.Find(c, 0) >= 0; }

    static std::uint32_t SkipDelimiters(S const& source, S const& delimiters,
                                        std::uint32_t position, std::uint32_t length) {
        Ch const* text = source;
        while (position < length && IsDelimiter(delimiters, text[position]))
            ++position;
        return position;
    }

    static std::uint32_t SkipToken(S const& source, S const& delimiters, std::uint32_t position,
                                   std::uint32_t length) {
        Ch const* text = source;
        while (position < length && !IsDelimiter(delimiters, text[position]))
            ++position;
        return position;
    }

    static bool HasMoreTokens(S const& source, S const& delimiters, bool returnDelims,
                              std::uint32_t length, std::uint32_t& position) {
        if (!returnDelims)
            position = SkipDelimiters(source, delimiters, position, length);
        return position < length;
    }

    static void NextToken(S const& source, S const& delimiters, bool returnDelims,
                          std::uint32_t length, std::uint32_t& position, S& token,
                          char const* unit) {
        if (!returnDelims)
            position = SkipDelimiters(source, delimiters, position, length);
        if (position >= length)
            throw CNoSuchElementException(unit, __LINE__);
        if (returnDelims) {
            // One character per call, and the token is the substring from p + 1 to
            // p + 1: the defined behaviour of this mode.
            std::uint32_t const p = position;
            position = p + 1;
            token = source.SubString(p + 1, p + 1);
            return;
        }
        std::uint32_t const start = position;
        position = SkipToken(source, delimiters, position, length);
        token = source.SubString(start, position);
    }

    // Runs of non-delimiters from `position` on, plus (when returnDelims) every
    // delimiter character passed.
    static unsigned long TokenCount(S const& source, S const& delimiters, bool returnDelims,
                                    std::uint32_t length, std::uint32_t position) {
        unsigned long count = 0;
        while (position < length) {
            std::uint32_t const afterDelimiters =
                SkipDelimiters(source, delimiters, position, length);
            if (returnDelims)
                count += afterDelimiters - position;
            position = afterDelimiters;
            if (position >= length)
                break;
            position = SkipToken(source, delimiters, position, length);
            ++count;
        }
        return count;
    }
};

} // namespace detail
} // namespace util
} // namespace lumo

#endif
