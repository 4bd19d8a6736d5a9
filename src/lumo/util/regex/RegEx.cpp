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
#include <xercesc/util/regx/RegxParser.hpp>
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

// The engine's parser recurses once per open group and has no limit of its own, so a
// pattern nesting deeper than this would exhaust the stack; it is refused first.
int const kMaxGroupNesting = 1000;

bool NestsTooDeep(XMLCh const* pattern) {
    int depth = 0;
    bool inClass = false;
    for (XMLCh const* p = pattern; *p != 0; ++p) {
        if (*p == u'\\') {
            if (*++p == 0)
                break;
        } else if (inClass) {
            inClass = *p != u']';
        } else if (*p == u'[') {
            inClass = true;
        } else if (*p == u'(') {
            if (++depth > kMaxGroupNesting)
                return true;
        } else if (*p == u')' && depth > 0) {
            --depth;
        }
    }
    return false;
}

// The engine loops without end, until the stack is gone, when a group that can match the
// empty text is repeated without bound ((a*)*b, (a?)+) and a match has to backtrack into
// it; and its compiler writes a counted repeat out copy by copy, so "a{3000000}" takes
// hundreds of megabytes. The scan below follows the engine's syntax far enough to tell
// which parts can match the empty text (assuming they can where it is unsure) and how
// many atoms the compiled pattern holds once repeats are written out.
class PatternScan {
public:
    PatternScan(XMLCh const* pattern, bool extended)
        : m_text(extended ? Stripped(pattern) : std::u16string(pattern)), m_p(m_text.c_str()) {
        while (*m_p != 0) {
            Alternation();
            m_size = Saturate(m_size + m_last);
            if (*m_p != 0)
                ++m_p; // an unbalanced ')'
        }
    }

    bool RepeatsEmpty() const { return m_found; }
    // Atoms after repeats are written out (saturating far above any limit).
    std::uint64_t Size() const { return m_size; }

private:
    static bool IsDigit(XMLCh c) { return c >= u'0' && c <= u'9'; }
    static std::uint64_t Saturate(std::uint64_t n) { return n < kHuge ? n : kHuge; }

    // The pattern as the engine reads it in extended mode: white space dropped and "#"
    // comments to the line end, except where escaped ("\#" is a "#").
    static std::u16string Stripped(XMLCh const* p) {
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
    // Skips to just past the next `close`, or to the end.
    void SkipPast(XMLCh close) {
        while (*m_p != 0 && *m_p++ != close) {
        }
    }

    // Each of these returns whether its part can match the empty text and leaves the
    // part's size in m_last.
    bool Alternation() {
        bool nullable = Sequence();
        std::uint64_t size = m_last;
        while (*m_p == u'|') {
            ++m_p;
            nullable = Sequence() || nullable;
            size = Saturate(size + m_last);
        }
        m_last = size;
        return nullable;
    }

    bool Sequence() {
        bool nullable = true;
        std::uint64_t size = 0;
        for (;;) {
            if (*m_p == 0 || *m_p == u'|' || *m_p == u')') {
                m_last = size;
                return nullable;
            }
            bool atom = Atom();
            std::uint64_t atomSize = m_last;
            bool optional = false, unbounded = false;
            std::uint64_t copies = 1;
            if (Quantifier(optional, unbounded, copies)) {
                if (unbounded && atom)
                    m_found = true;
                atom = atom || optional;
                atomSize = Saturate(atomSize * copies);
            }
            size = Saturate(size + atomSize);
            nullable = nullable && atom;
        }
    }

    // *, +, ?, {n}, {n,}, {n,m}, each perhaps lazy; `copies` is what the compiler writes
    // out: the larger count, plus one for an open end.
    bool Quantifier(bool& optional, bool& unbounded, std::uint64_t& copies) {
        XMLCh const c = *m_p;
        if (c == u'*' || c == u'+' || c == u'?') {
            ++m_p;
            optional = c != u'+';
            unbounded = c != u'?';
        } else if (c == u'{') {
            XMLCh const* q = m_p + 1;
            bool minimum = false, comma = false, maximum = false;
            std::uint64_t low = 0, high = 0;
            for (; IsDigit(*q); ++q) {
                minimum = true;
                low = Saturate(low * 10 + std::uint64_t(*q - u'0'));
            }
            if (*q == u',') {
                comma = true;
                for (++q; IsDigit(*q); ++q) {
                    maximum = true;
                    high = Saturate(high * 10 + std::uint64_t(*q - u'0'));
                }
            }
            if (*q != u'}' || (!minimum && !maximum))
                return false;
            optional = low == 0;
            unbounded = comma && !maximum;
            copies = std::max<std::uint64_t>(std::max(low, high), 1) + (unbounded ? 1 : 0);
            m_p = q + 1;
        } else {
            return false;
        }
        if (*m_p == u'?')
            ++m_p;
        return true;
    }

    // One atom; whether it can match the empty text.
    bool Atom() {
        m_last = 1;
        XMLCh const c = *m_p++;
        if (c == u'(')
            return Group();
        if (c == u'[') {
            SkipClass();
            return false;
        }
        if (c == u'\\')
            return Escape();
        return c == u'^' || c == u'$';
    }

    bool Group() {
        bool capturing = false, zeroWidth = false;
        if (*m_p == u'?') {
            XMLCh const kind = *++m_p;
            if (kind == u':' || kind == u'>') {
                ++m_p;
            } else if (kind == u'=' || kind == u'!') {
                ++m_p;
                zeroWidth = true;
            } else if (kind == u'<' && (m_p[1] == u'=' || m_p[1] == u'!')) {
                m_p += 2;
                zeroWidth = true;
            } else if (kind == u'#') {
                SkipPast(u')');
                return true;
            } else if (kind == u'(') {
                // A conditional: a group number or a look-around, then its choices.
                ++m_p;
                if (IsDigit(*m_p))
                    SkipPast(u')');
                else
                    Group();
                zeroWidth = true;
            } else {
                // Option letters, then ':' and a group, or ')' alone.
                while (*m_p != 0 && *m_p != u':' && *m_p != u')')
                    ++m_p;
                if (*m_p == 0 || *m_p++ == u')')
                    return true;
            }
        } else {
            capturing = true;
            m_groups.push_back(-1);
        }
        std::size_t const index = m_groups.size() - 1;
        bool const nullable = Alternation() || zeroWidth;
        m_last = Saturate(m_last + 1);
        if (*m_p == u')')
            ++m_p;
        if (capturing)
            m_groups[index] = nullable ? 1 : 0;
        return nullable;
    }

    bool Escape() {
        XMLCh const c = *m_p;
        if (c == 0)
            return false;
        ++m_p;
        switch (c) {
        case u'b':
        case u'B':
        case u'A':
        case u'Z':
        case u'z':
        case u'<':
        case u'>':
            return true;
        case u'p':
        case u'P':
        case u'x':
            if (*m_p == u'{')
                SkipPast(u'}');
            return false;
        default:
            break;
        }
        if (c >= u'1' && c <= u'9') {
            // A back reference matches what its group did: empty when the group can be.
            std::size_t const group = std::size_t(c - u'0');
            return group > m_groups.size() || m_groups[group - 1] != 0;
        }
        return false;
    }

    // Past the ']' that closes a class: escapes, POSIX names and nested classes
    // (subtractions) are stepped over whole; nesting is counted, not recursed into.
    void SkipClass() {
        int depth = 1;
        bool first = true;
        if (*m_p == u'^')
            ++m_p;
        while (*m_p != 0) {
            XMLCh const c = *m_p++;
            if (c == u']' && !first) {
                if (--depth == 0)
                    return;
                continue;
            }
            first = false;
            if (c == u'\\') {
                XMLCh const e = *m_p;
                if (e != 0)
                    ++m_p;
                if ((e == u'p' || e == u'P' || e == u'x') && *m_p == u'{')
                    SkipPast(u'}');
            } else if (c == u'[' && *m_p == u':') {
                for (++m_p; *m_p != 0 && !(m_p[0] == u':' && m_p[1] == u']'); ++m_p) {
                }
                if (*m_p != 0)
                    m_p += 2;
            } else if (c == u'[') {
                ++depth;
                first = true;
                if (*m_p == u'^')
                    ++m_p;
            }
        }
    }

    std::u16string const m_text;
    XMLCh const* m_p;
    bool m_found = false;
    std::uint64_t m_last = 0;
    std::uint64_t m_size = 0;
    static constexpr std::uint64_t kHuge = std::uint64_t(1) << 40;
    // Per capturing group by number: -1 while open, 1 when it can match the empty text.
    std::vector<signed char> m_groups;
};

bool HasOption(XMLCh const* options, XMLCh option) {
    for (XMLCh const* o = options; *o != 0; ++o)
        if (*o == option)
            return true;
    return false;
}

// A character class that subtraction leaves empty ("[a-[a]]", "[b-[a-z]]") breaks the
// engine: folding its case under "i" while parsing, and its first-character analysis
// in front of other parts ("[a-[a]]|b"), write past its memory. So a pattern that
// subtracts is first parsed alone, without "i", and refused, as the engine's own
// parse failures are, when a class of it is empty.
bool HasEmptyClass(XMLCh const* pattern, XMLCh const* options, xercesc::MemoryManager* manager) {
    if (std::u16string_view(pattern).find(u"-[") == std::u16string_view::npos)
        return false;
    using xercesc::RegularExpression;
    int flags = 0;
    if (HasOption(options, u'x'))
        flags |= RegularExpression::EXTENDED_COMMENT;
    if (HasOption(options, u'm'))
        flags |= RegularExpression::MULTIPLE_LINE;
    if (HasOption(options, u's'))
        flags |= RegularExpression::SINGLE_LINE;
    bool const schema = HasOption(options, u'X');
    if (schema)
        flags |= RegularExpression::XMLSCHEMA_MODE;
    xercesc::TokenFactory factory(manager);
    std::unique_ptr<xercesc::RegxParser> const parser(
        schema ? new (manager) xercesc::ParserForXMLSchema(manager)
               : new (manager) xercesc::RegxParser(manager));
    parser->setTokenFactory(&factory);
    std::vector<xercesc::Token const*> pending(1, parser->parse(pattern, flags));
    while (!pending.empty()) {
        xercesc::Token const* const token = pending.back();
        pending.pop_back();
        if (token == nullptr)
            continue;
        if (token->getTokenType() == xercesc::Token::T_RANGE &&
            static_cast<xercesc::RangeToken const*>(token)->empty())
            return true;
        for (XMLSize_t i = 0; i < token->size(); ++i)
            pending.push_back(token->getChild(i));
    }
    return false;
}

// The compiled pattern may hold this many atoms beyond four per pattern unit: about
// twelve megabytes of the engine's nodes.
std::uint64_t const kMaxExtraAtoms = 100000;

// Compiles a pattern. A pattern the engine rejects (it raises one of its XML
// exceptions while parsing) gives null and the engine's code (0 for an empty
// class); running out of memory,
// a pattern nesting too deep for the stack, repeating too much for memory or an empty
// part without bound, or any other failure, is CMemoryException;
// an engine not started,
// CIllegalStateException.
detail::CompiledPattern* Compile(XMLCh const* pattern, XMLCh const* options, int& code) {
    xercesc::MemoryManager* const manager = detail::EngineMemory(kUnit, __LINE__);
    if (NestsTooDeep(pattern))
        throw base::CMemoryException(kUnit, __LINE__);
    PatternScan const scan(pattern, HasOption(options, u'x'));
    if (scan.Size() > 4 * std::char_traits<XMLCh>::length(pattern) + kMaxExtraAtoms)
        throw base::CMemoryException(kUnit, __LINE__);
    try {
        if (HasEmptyClass(pattern, options, manager))
            return nullptr;
        std::unique_ptr<detail::CompiledPattern> compiled(
            new (manager) detail::CompiledPattern(pattern, options, manager));
        if (scan.RepeatsEmpty())
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
