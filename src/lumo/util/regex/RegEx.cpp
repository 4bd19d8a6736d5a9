// CRegEx: the library's checks, text conversion and error mapping around the XML
// parser's regular-expression engine.
#include <lumo/util/regex/RegEx.h>

#include <lumo/base/Exception.h>
#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>
#include <vela/Chars.h>
#include <vela/Ucs.h>

#include "../../../vela/detail/Utf8Codec.h"
#include "../../base/detail/XercesSupport.h"
#include "detail/EngineObjects.h"
#include "detail/MessageList.h"

#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/regx/ParserForXMLSchema.hpp>
#include <xercesc/util/regx/RangeToken.hpp>
#include <xercesc/util/regx/RegularExpression.hpp>
#include <xercesc/util/regx/RegxParser.hpp>
#include <xercesc/util/regx/Token.hpp>
#include <xercesc/util/regx/TokenFactory.hpp>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumo {
namespace util {
namespace regex {

namespace {

namespace utf8 = Vela::detail::utf8;
char const kUnit[] = "lumo/util/regex/RegEx";

// The engine's parse-error codes and the message-list entry of the same meaning. The
// list was written for an older engine whose codes differed; the meanings match as
// commented. A code not listed (or listed with 0) gives no reason.
struct ReasonEntry {
    int code;
    unsigned long index;
};
ReasonEntry const kReasons[] = {
    {xercesc::XMLExcepts::Parser_Parse1, 3},       // illegal character -> "Wrong character."
    {xercesc::XMLExcepts::Parser_Parse2, 4},       // invalid reference number
    {xercesc::XMLExcepts::Parser_Next1, 5},        // character expected after backslash
    {xercesc::XMLExcepts::Parser_Next2, 6},        // unexpected '?'
    {xercesc::XMLExcepts::Parser_Next3, 7},        // '(?<=' or '(?<!' expected
    {xercesc::XMLExcepts::Parser_Next4, 8},        // unterminated comment
    {xercesc::XMLExcepts::Parser_Factor1, 9},      // ')' expected
    {xercesc::XMLExcepts::Parser_Factor2, 10},     // end of pattern in modifier group
    {xercesc::XMLExcepts::Parser_Factor3, 11},     // ':' expected
    {xercesc::XMLExcepts::Parser_Factor4, 12},     // end of pattern in conditional group
    {xercesc::XMLExcepts::Parser_Factor5, 13},     // what a conditional pattern needs
    {xercesc::XMLExcepts::Parser_Factor6, 14},     // more than three choices
    {xercesc::XMLExcepts::Parser_Atom1, 15},       // character after \c
    {xercesc::XMLExcepts::Parser_Atom2, 16},       // '{' before category character
    {xercesc::XMLExcepts::Parser_Atom3, 17},       // property name not closed by '}'
    {xercesc::XMLExcepts::Parser_Atom4, 18},       // unexpected meta character
    {xercesc::XMLExcepts::Parser_Atom5, 19},       // unknown property
    {xercesc::XMLExcepts::Parser_CC1, 20},         // POSIX class not closed by ':]'
    {xercesc::XMLExcepts::Parser_CC2, 21},         // end of pattern in character class
    {xercesc::XMLExcepts::Parser_CC3, 22},         // unknown POSIX class name
    {xercesc::XMLExcepts::Parser_CC5, 24},         // ']' expected
    {xercesc::XMLExcepts::Parser_CC6, 25},         // character invalid in a class, escape it
    {xercesc::XMLExcepts::Parser_Ope1, 27},        // '[' expected
    {xercesc::XMLExcepts::Parser_Ope2, 28},        // ')', '-[', '+[' or '&[' expected
    {xercesc::XMLExcepts::Parser_Ope3, 0},         // range end below its start: none
    {xercesc::XMLExcepts::Parser_Descape1, 29},    // invalid Unicode hex notation
    {xercesc::XMLExcepts::Parser_Descape3, 31},    // '\x{' not closed by '}'
    {xercesc::XMLExcepts::Parser_Descape4, 32},    // invalid Unicode code point
    {xercesc::XMLExcepts::Parser_Descape5, 33},    // anchor not allowed here
    {xercesc::XMLExcepts::Parser_Process2, 34},    // escape not supported here
    {xercesc::XMLExcepts::Parser_Quantifier1, 0},  // quantifier: digit expected
    {xercesc::XMLExcepts::Parser_Quantifier2, 0},  // quantifier: bad quantity or no '}'
    {xercesc::XMLExcepts::Parser_Quantifier3, 0},  // quantifier: digit or '}' expected
    {xercesc::XMLExcepts::Parser_Quantifier4, 0},  // quantifier: min above max
    {xercesc::XMLExcepts::Parser_Quantifier5, 0},  // quantifier: overflow
    {xercesc::XMLExcepts::Regex_UnknownOption, 0}, // unknown option letter
    {xercesc::XMLExcepts::Regex_NotSupported, 34}, // construct not supported in this mode
};

char const* ReasonFor(int code) {
    for (ReasonEntry const& entry : kReasons)
        if (entry.code == code)
            return entry.index != 0 ? detail::LoadMessage(entry.index) : nullptr;
    return nullptr;
}

// The pattern as the engine reads it in extended mode: white space dropped and "#"
// comments to the line end, except where escaped ("\#" is a "#").
std::u16string Stripped(XMLCh const* p) {
    std::u16string out;
    while (*p != 0) {
        XMLCh const c = *p++;
        if (c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f')
            continue;
        if (c == u'#') {
            while (*p != 0 && *p != u'\n' && *p != u'\r')
                ++p;
            continue;
        }
        if (c == u'\\' && *p != 0) {
            XMLCh const e = *p++;
            if (e != u'#')
                out += c;
            out += e;
            continue;
        }
        out += c;
    }
    return out;
}

bool IsDigit(XMLCh c) {
    return c >= u'0' && c <= u'9';
}

// The engine's parser recurses once per group and per class subtracted inside a class,
// without a limit of its own, so deeper nesting than this would exhaust the stack.
int const kMaxNesting = 1000;

// Whether the text (as the engine reads it) nests deeper than kMaxNesting, or writes a
// count above the engine's int, which it would silently wrap. Classes are followed as
// the engine's parser does: "]" and "-[" are plain characters as a class's first item,
// "[:" opens a POSIX name, "-[" elsewhere opens a subtracted class, and any other "["
// is a plain character. The text of each subtracted class is added to `subtracted`.
bool ExceedsEngine(std::u16string const& text, std::vector<std::u16string>& subtracted) {
    int depth = 0;   // open groups and classes
    int classes = 0; // of which classes
    bool first = false;
    XMLCh const* p = text.c_str();
    // Where each open class starts, when it is subtracted from another.
    std::vector<XMLCh const*> starts;
    // Opens a class at p (its "^" included); true when that nests too deep.
    auto openClass = [&](bool isSubtracted) {
        ++classes;
        first = true;
        starts.push_back(isSubtracted ? p : nullptr);
        if (p[1] == u'^')
            ++p;
        return ++depth > kMaxNesting;
    };
    for (; *p != 0; ++p) {
        XMLCh const c = *p;
        bool const atFirst = first;
        first = false;
        if (c == u'\\') {
            if (*++p == 0)
                break;
            if ((*p == u'p' || *p == u'P' || *p == u'x') && p[1] == u'{')
                while (p[1] != 0 && *++p != u'}') {
                }
        } else if (classes > 0) {
            if (c == u']' && !atFirst) {
                --classes;
                --depth;
                if (starts.back() != nullptr)
                    subtracted.emplace_back(starts.back(), p + 1);
                starts.pop_back();
            } else if (c == u'-' && p[1] == u'[' && !atFirst) {
                ++p;
                if (openClass(true))
                    return true;
            } else if (c == u'[' && p[1] == u':') {
                for (p += 2; *p != 0 && !(p[0] == u':' && p[1] == u']'); ++p) {
                }
                if (*p == 0)
                    break;
                ++p;
            }
        } else if (c == u'[') {
            if (openClass(false))
                return true;
        } else if (c == u'(') {
            if (++depth > kMaxNesting)
                return true;
        } else if (c == u')' && depth > 0) {
            --depth;
        } else if (c == u'{') {
            // {n}, {n,} or {n,m}; the digits are stepped over as plain characters after.
            std::uint64_t value = 0;
            for (XMLCh const* q = p + 1; IsDigit(*q) || *q == u','; ++q) {
                value = *q == u',' ? 0 : value * 10 + std::uint64_t(*q - u'0');
                if (value > std::uint64_t(INT32_MAX))
                    return true;
            }
        }
    }
    return false;
}

// What the engine will make of a parsed pattern: how many atoms its compiler writes out
// (a counted repeat is written copy by copy), how many of them are groups and choices
// (matching recurses once more at each, so enough of them in a row exhaust the stack),
// whether a part that can match the empty text is repeated without bound (matching it
// would loop until the stack is gone), and whether a class is empty (a subtraction left
// nothing: folding its case, or analysing it in front of other parts, the engine writes
// past its memory).
class TreeFacts {
public:
    explicit TreeFacts(xercesc::Token const* root) { Walk(root); }

    std::uint64_t Size() const { return m_last; }                 // saturating far above any limit
    std::uint64_t Recursions() const { return m_lastRecursions; } // saturating likewise
    bool RepeatsEmpty() const { return m_repeatsEmpty; }
    bool HasEmptyClass() const { return m_emptyClass; }

private:
    static std::uint64_t Saturate(std::uint64_t n) { return n < kHuge ? n : kHuge; }

    // Whether the token can match the empty text; leaves its size in m_last and its
    // groups and choices in m_lastRecursions.
    bool Walk(xercesc::Token const* token) {
        using xercesc::Token;
        m_last = 1;
        m_lastRecursions = 0;
        if (token == nullptr)
            return true;
        switch (token->getTokenType()) {
        case Token::T_RANGE:
            if (static_cast<xercesc::RangeToken const*>(token)->empty())
                m_emptyClass = true;
            return false;
        case Token::T_NRANGE:
        case Token::T_CHAR:
        case Token::T_DOT:
            return false;
        case Token::T_STRING:
            return token->getString() == nullptr || *token->getString() == 0;
        case Token::T_BACKREFERENCE: {
            // Matches what its group did: empty when the group can be (or is not known yet).
            std::size_t const group = std::size_t(std::max(token->getReferenceNo(), 0));
            return group == 0 || group > m_groups.size() || m_groups[group - 1] != 0;
        }
        case Token::T_PAREN: {
            std::size_t const group = std::size_t(std::max(token->getNoParen(), 0));
            if (group > m_groups.size())
                m_groups.resize(group, -1);
            bool const nullable = Walk(token->getChild(0));
            m_last = Saturate(m_last + 2);
            m_lastRecursions = Saturate(m_lastRecursions + 1);
            if (group > 0)
                m_groups[group - 1] = nullable ? 1 : 0;
            return nullable;
        }
        case Token::T_CONCAT:
        case Token::T_UNION: {
            bool const any = token->getTokenType() == Token::T_UNION;
            bool nullable = !any;
            std::uint64_t size = any ? 1 : 0;
            std::uint64_t recursions = any ? 1 : 0;
            for (XMLSize_t i = 0; i < token->size(); ++i) {
                bool const part = Walk(token->getChild(i));
                nullable = any ? nullable || part : nullable && part;
                size = Saturate(size + m_last);
                recursions = Saturate(recursions + m_lastRecursions);
            }
            m_last = size;
            m_lastRecursions = recursions;
            return nullable;
        }
        case Token::T_CLOSURE:
        case Token::T_NONGREEDYCLOSURE:
            return Repeat(token->getMin(), token->getMax(), token->getChild(0));
        default: // the empty token, anchors, and anything unforeseen
            return true;
        }
    }

    // The compiler writes {n} as n copies; otherwise the bounded copies of {n,m} or one
    // loop for an open end, after n copies of the minimum. -1 is "not given".
    bool Repeat(int min, int max, xercesc::Token const* child) {
        bool const nullable = Walk(child);
        std::uint64_t const lower = std::uint64_t(std::max(min, 0));
        std::uint64_t copies = lower;
        if (!(min >= 0 && min == max)) {
            bool const bounded = max > 0 && max > min;
            copies += bounded ? std::uint64_t(max) - lower : 1;
            if (!bounded && nullable)
                m_repeatsEmpty = true;
        }
        m_last = Saturate(m_last * copies);
        m_lastRecursions = Saturate(m_lastRecursions * copies);
        return nullable || min <= 0;
    }

    static constexpr std::uint64_t kHuge = std::uint64_t(1) << 40;
    std::uint64_t m_last = 0;
    std::uint64_t m_lastRecursions = 0;
    bool m_repeatsEmpty = false;
    bool m_emptyClass = false;
    // Per capturing group by number: -1 while open, 1 when it can match the empty text.
    std::vector<signed char> m_groups;
};

// The compiled pattern may hold this many atoms beyond four per pattern unit: about
// twelve megabytes of the engine's nodes.
std::uint64_t const kMaxExtraAtoms = 100000;
// And this many groups and choices, written out: matching 20,000 in a row took the
// whole stack of a main thread in a sanitizer build, 33,000 in a release build.
std::uint64_t const kMaxRecursions = 5000;

// Parses a pattern as the engine would (without "i"), compiling nothing, and tells
// what the engine will make of it. The engine's exceptions pass on.
TreeFacts ParseAlone(XMLCh const* pattern, int flags, xercesc::MemoryManager* manager) {
    xercesc::TokenFactory factory(manager);
    std::unique_ptr<xercesc::RegxParser> const parser(
        (flags & xercesc::RegularExpression::XMLSCHEMA_MODE) != 0
            ? new (manager) xercesc::ParserForXMLSchema(manager)
            : new (manager) xercesc::RegxParser(manager));
    parser->setTokenFactory(&factory);
    return TreeFacts(parser->parse(pattern, flags));
}

// Whether a class, parsed alone, is left empty; false when the engine does not read
// it as a class by itself.
bool ClassLeftEmpty(std::u16string const& text, int flags, xercesc::MemoryManager* manager) {
    try {
        return ParseAlone(text.c_str(), flags, manager).HasEmptyClass();
    } catch (xercesc::XMLException const&) {
        return false;
    }
}

// Compiles a pattern. A pattern the engine rejects (it raises one of its XML
// exceptions while parsing) gives null and the engine's code (0 for an empty class);
// running out of memory, a pattern nesting too deep for the stack, repeating too much
// for memory or an empty part without bound, or any other failure, is
// CMemoryException; an engine not started, CIllegalStateException.
detail::CompiledPattern* Compile(XMLCh const* pattern, XMLCh const* options, int& code) {
    using xercesc::RegularExpression;
    xercesc::MemoryManager* const manager = detail::EngineMemory(kUnit, __LINE__);
    // The option flags that shape the parse; unknown letters are left for the engine to
    // refuse, and "i" is left out, as the engine folds classes while parsing under it.
    int flags = 0;
    bool known = true;
    bool foldsCase = false;
    for (XMLCh const* o = options; *o != 0; ++o) {
        int const flag = RegularExpression::getOptionValue(*o);
        known = known && flag != 0;
        if (*o != u'i')
            flags |= flag;
        else
            foldsCase = true;
    }
    bool const extended = (flags & RegularExpression::EXTENDED_COMMENT) != 0;
    std::vector<std::u16string> subtracted;
    if (ExceedsEngine(extended ? Stripped(pattern) : std::u16string(pattern), subtracted))
        throw base::CMemoryException(kUnit, __LINE__);
    try {
        // Parsed alone first, so that what the engine cannot compile is refused before
        // it tries.
        bool repeatsEmpty = false;
        if (known) {
            TreeFacts const facts = ParseAlone(pattern, flags, manager);
            if (facts.HasEmptyClass())
                return nullptr;
            if (facts.Size() > 4 * std::char_traits<XMLCh>::length(pattern) + kMaxExtraAtoms ||
                facts.Recursions() > kMaxRecursions)
                throw base::CMemoryException(kUnit, __LINE__);
            repeatsEmpty = facts.RepeatsEmpty();
            // Under "i" the engine folds every class as it ends, a subtracted one too,
            // before taking it from its outer class: each is parsed alone as well (its
            // text has no white space or comments left to strip).
            if (foldsCase) {
                for (std::u16string const& cls : subtracted)
                    if (ClassLeftEmpty(cls, flags & ~RegularExpression::EXTENDED_COMMENT, manager))
                        return nullptr;
            }
        }
        std::unique_ptr<detail::CompiledPattern> compiled(
            new (manager) detail::CompiledPattern(pattern, options, manager));
        if (repeatsEmpty)
            throw base::CMemoryException(kUnit, __LINE__);
        return compiled.release();
    } catch (base::CMemoryException const&) {
        throw;
    } catch (xercesc::OutOfMemoryException const&) {
        throw base::CMemoryException(kUnit, __LINE__);
    } catch (xercesc::XMLException const& e) {
        code = static_cast<int>(e.getCode());
        return nullptr;
    } catch (...) {
        throw base::CMemoryException(kUnit, __LINE__);
    }
}
// 8-bit (UTF-8) text as the engine's UTF-16. ASCII text is widened as it is, and its
// positions are the same in both; otherwise each unit remembers the byte where its
// character starts, so that positions can be turned back into bytes.
class EngineText {
public:
    EngineText(char const* text, std::size_t length) : m_length(length) {
        m_units.resize(length);
        unsigned char const* const bytes = reinterpret_cast<unsigned char const*>(text);
        std::size_t i = 0;
        for (; i < length && bytes[i] < 0x80; ++i)
            m_units[i] = static_cast<char16_t>(bytes[i]);
        if (i < length)
            Decode(text, i);
    }

    XMLCh const* Units() const { return m_units.c_str(); }
    std::size_t Count() const { return m_units.size(); }
    bool IsAscii() const { return m_starts.empty(); }

    // The unit where the character at or after `byte` starts.
    std::size_t UnitOf(std::size_t byte) const {
        if (IsAscii())
            return byte;
        return static_cast<std::size_t>(std::lower_bound(m_starts.begin(), m_starts.end(), byte) -
                                        m_starts.begin());
    }
    // The byte where the character of unit `unit` starts (-1 stays -1).
    long ByteOf(long unit) const {
        if (IsAscii() || unit < 0)
            return unit;
        std::size_t const u = static_cast<std::size_t>(unit);
        return static_cast<long>(u < m_starts.size() ? m_starts[u] : m_length);
    }

private:
    // From byte `from` on, one character at a time through the root layer's routines;
    // a malformed byte (a character of its own there) becomes U+FFFD.
    void Decode(char const* text, std::size_t from) {
        m_units.resize(from);
        m_starts.resize(from);
        for (std::size_t k = 0; k < from; ++k)
            m_starts[k] = static_cast<std::uint32_t>(k);
        std::size_t i = from;
        while (i < m_length) {
            char const* const p = text + i;
            std::size_t size = static_cast<std::size_t>(Vela::CHGetNextCharPtr(p) - p);
            if (size == 0 || i + size > m_length)
                size = 1; // a character cut by the end of the range
            // A malformed byte is one U+FFFD.
            std::uint32_t c;
            int const length = utf8::DecodeOne(utf8::Bytes(p), size, c);
            if (c >= utf8::kMalformed)
                c = utf8::kReplacement;
            unsigned short units[2] = {0, 0};
            int const n = utf8::PutUnits(c, length, units);
            for (int k = 0; k < n; ++k) {
                m_units.push_back(static_cast<char16_t>(units[k]));
                m_starts.push_back(static_cast<std::uint32_t>(i));
            }
            i += size;
        }
    }

    std::size_t m_length;
    std::u16string m_units;
    std::vector<std::uint32_t> m_starts; // empty for ASCII text
};

std::u16string OptionsOf(char const* options) {
    return EngineText(options, std::strlen(options)).Units();
}

void CheckRange(bool ranged, unsigned long start, unsigned long end, std::size_t length) {
    if (ranged && !(start < end && end <= length))
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid start & end positons.");
}
} // namespace

LUMO_DEFINE_CLASS(CRegEx, "lumo::util::regex::CRegEx", "lumo::base::CObject");

CRegEx::CRegEx(char const* pattern) : CRegEx(pattern, "") {}

CRegEx::CRegEx(char const* pattern, char const* options) {
    if (pattern == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid pattern.");
    if (options == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid options.");
    int code = 0;
    detail::CompiledPattern* const compiled = Compile(
        EngineText(pattern, std::strlen(pattern)).Units(), OptionsOf(options).c_str(), code);
    if (compiled == nullptr)
        throw CRegExParseException(kUnit, __LINE__, pattern, ReasonFor(code));
    m_pattern = compiled;
}

CRegEx::CRegEx(unsigned short const* pattern) {
    if (pattern == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid pattern.");
    int code = 0;
    detail::CompiledPattern* const compiled =
        Compile(::lumo::detail::ToXMLCh(pattern).c_str(), u"", code);
    if (compiled == nullptr)
        throw CRegExParseException(kUnit, __LINE__, base::CUnicodeString(pattern).ToUTF8(),
                                   ReasonFor(code));
    m_pattern = compiled;
}

CRegEx::CRegEx(unsigned short const* pattern, unsigned short const* options) {
    if (pattern == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid pattern.");
    if (options == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid options.");
    int code = 0;
    detail::CompiledPattern* const compiled = Compile(
        ::lumo::detail::ToXMLCh(pattern).c_str(), ::lumo::detail::ToXMLCh(options).c_str(), code);
    if (compiled == nullptr)
        throw CRegExParseException(kUnit, __LINE__, base::CUnicodeString(pattern).ToUTF8(),
                                   ReasonFor(code));
    m_pattern = compiled;
}

CRegEx::CRegEx(CRegEx const& other) = default;
CRegEx& CRegEx::operator=(CRegEx const& other) = default;
CRegEx::~CRegEx() = default;

bool CRegEx::Matches(char const* text) const {
    return Match8(text, false, 0, 0, nullptr);
}
bool CRegEx::Matches(unsigned short const* text) const {
    return Match16(text, false, 0, 0, nullptr);
}
bool CRegEx::Matches(char const* text, unsigned long start, unsigned long end) const {
    return Match8(text, true, start, end, nullptr);
}
bool CRegEx::Matches(unsigned short const* text, unsigned long start, unsigned long end) const {
    return Match16(text, true, start, end, nullptr);
}
bool CRegEx::Matches(char const* text, CRegExMatch& match) const {
    return Match8(text, false, 0, 0, &match);
}
bool CRegEx::Matches(unsigned short const* text, CRegExMatch& match) const {
    return Match16(text, false, 0, 0, &match);
}
bool CRegEx::Matches(char const* text, unsigned long start, unsigned long end,
                     CRegExMatch& match) const {
    return Match8(text, true, start, end, &match);
}
bool CRegEx::Matches(unsigned short const* text, unsigned long start, unsigned long end,
                     CRegExMatch& match) const {
    return Match16(text, true, start, end, &match);
}

namespace {
// One engine match; whatever escapes the engine becomes CMemoryException.
bool RunEngine(detail::CompiledPattern const& engine, XMLCh const* text, bool ranged,
               std::size_t start, std::size_t end, xercesc::Match* match) {
    xercesc::MemoryManager* const manager = detail::EngineMemory(kUnit, __LINE__);
    bool found;
    try {
        found = ranged ? engine.matches(text, start, end, match, manager)
                       : engine.matches(text, match, manager);
    } catch (...) {
        throw base::CMemoryException(kUnit, __LINE__);
    }
    // The engine's string search ends a literal match by the pattern's written length.
    XMLSize_t const literal = engine.LiteralLength();
    if (found && match != nullptr && literal != 0)
        match->setEndPos(0, match->getStartPos(0) + static_cast<int>(literal));
    return found;
}
} // namespace

bool CRegEx::Match8(char const* text, bool ranged, unsigned long start, unsigned long end,
                    CRegExMatch* match) const {
    if (text == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid match string.");
    std::size_t const length = std::strlen(text);
    CheckRange(ranged, start, end, length);
    // The engine sees the text up to the end of the range; that is all it reads.
    EngineText const units(text, ranged ? end : length);
    xercesc::Match* const record = match != nullptr ? match->m_record.Get() : nullptr;
    bool const found = RunEngine(*m_pattern, units.Units(), ranged,
                                 ranged ? units.UnitOf(start) : 0, units.Count(), record);
    if (found && record != nullptr && !units.IsAscii()) {
        for (int g = 0; g < record->getNoGroups(); ++g) {
            record->setStartPos(g, static_cast<int>(units.ByteOf(record->getStartPos(g))));
            record->setEndPos(g, static_cast<int>(units.ByteOf(record->getEndPos(g))));
        }
    }
    return found;
}

bool CRegEx::Match16(unsigned short const* text, bool ranged, unsigned long start,
                     unsigned long end, CRegExMatch* match) const {
    if (text == nullptr)
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid match string.");
    std::size_t const length = Vela::ucslen(text);
    CheckRange(ranged, start, end, length);
    std::u16string const units = ::lumo::detail::ToXMLCh(text, ranged ? end : length);
    xercesc::Match* const record = match != nullptr ? match->m_record.Get() : nullptr;
    return RunEngine(*m_pattern, units.c_str(), ranged, start, end, record);
}

} // namespace regex
} // namespace util
} // namespace lumo
