// Routines over null-terminated UTF-16 text (unsigned short units) in the manner of the C
// string functions: length, compare, search, case mapping, classification, printf and scanf.
#ifndef VELA_UCS_H
#define VELA_UCS_H

#include <vela/Config.h>

#include <cstdarg>

/// Routines over null-terminated UTF-16 text (`unsigned short` units). A null text
/// pointer is treated as an empty text everywhere (results that are positions in the
/// text are then null).
namespace Vela {

/// The number of units before the terminator.
VELA_API unsigned long ucslen(unsigned short const* s);
/// <0, 0 or >0 by unit values (so a surrogate pair sorts before U+E000-U+FFFF).
VELA_API int ucscmp(unsigned short const* a, unsigned short const* b);
/// As ucscmp after Unicode simple case folding of each code point (surrogate pairs are
/// folded as the supplementary character they form; no full folding: "ß" != "ss").
VELA_API int ucsicmp(unsigned short const* a, unsigned short const* b);
/// As ucscmp / ucsicmp over at most `n` units of each text.
///@{
VELA_API int ucsncmp(unsigned short const* a, unsigned short const* b, unsigned long n);
VELA_API int ucsnicmp(unsigned short const* a, unsigned short const* b, unsigned long n);
///@}
/// The first / last unit equal to `c`, or null; as with strchr, c = 0 finds the
/// terminator.
///@{
VELA_API unsigned short const* ucschr(unsigned short const* s, unsigned short c);
VELA_API unsigned short const* ucsrchr(unsigned short const* s, unsigned short c);
///@}
/// The first occurrence of `sub` (unit by unit), or null; an empty or null `sub` gives s.
VELA_API unsigned short const* ucsstr(unsigned short const* s, unsigned short const* sub);
/// In place; return `s`. Case mapping is Unicode simple mapping unit by unit: only BMP
/// characters change; surrogates (and characters whose mapping lies outside the BMP)
/// stay as they are. The reverse works unit by unit, so surrogate pairs end up swapped.
///@{
VELA_API unsigned short* ucsupr(unsigned short* s);
VELA_API unsigned short* ucslwr(unsigned short* s);
VELA_API unsigned short* ucsrev(unsigned short* s);
///@}

/// White space: the Unicode White_Space property (u_isUWhiteSpace), which includes
/// ' ', `\t`, `\n`, `\v`, `\f`, `\r`, U+0085, U+00A0, U+2028, U+3000 and the like.
VELA_API bool isuspace(unsigned short c);
/// Decimal digits: '0'-'9' and the other Unicode decimal digits (general category Nd,
/// e.g. U+0663, U+FF15); not superscripts or other numerals.
VELA_API bool isudigit(unsigned short c);

/// printf into UTF-16 output of `count` units.
///
/// Supports the C flags (- + space # 0), width and precision (also as *), the length
/// modifiers hh h l ll (and q) z j t L, and the conversions d i u o x X f F e E g G a A
/// c s p % n. Numbers are formatted by the C library and widened. For text:
///   %s, %ls, %S   a UTF-16 text (`unsigned short const*`);
///   %hs           an 8-bit UTF-8 text (`char const*`), malformed bytes become U+FFFD;
///   %c, %lc       a UTF-16 unit (passed as int);
///   %hc           an 8-bit char (passed as int); a byte of 0x80 or more becomes U+FFFD.
/// A precision limits a text to that many output units (a surrogate pair is not split by
/// %hs); a null text prints "(null)". %n is refused: its pointer is taken and nothing is
/// stored. An unknown conversion is copied as it stands.
///
/// Returns the units written (terminator excluded) when the output fits in count - 1
/// units, so count - 1 is a full fit; otherwise -1, with the buffer holding as much as
/// fitted (never ending in the first half of a surrogate pair) and a terminator. count 0,
/// a null buffer or a null format give -1 and write nothing. `args` is not consumed
/// (the routine works on a copy), so the caller may pass it again.
///@{
VELA_API int vsnuprintf(unsigned short* buffer, unsigned long count, unsigned short const* format,
                        va_list args);
VELA_API int snuprintf(unsigned short* buffer, unsigned long count, unsigned short const* format,
                       ...);
///@}

/// scanf over UTF-16 text, as C's sscanf: white space in the format skips any white
/// space (isuspace), other characters must match, %% matches '%'. Conversions, with
/// optional * (suppression), width and length modifiers (hh h l ll L z j t):
///   %d %i %u %o %x %X  integers (int*, with h short*, l long*, ll long long*, ...);
///   %f %e %g %a (and upper case)  float*, with l double*, with L long double*;
///   %s, %ls  a word into `unsigned short*` (terminated); %hs into `char*` as UTF-8;
///   %c, %lc  width units (default 1) into `unsigned short*`, no terminator, white space
///            not skipped; %hc into `char*`, one byte per unit ('?' for non-ASCII);
///   %[set], %[^set]  a run of units of the set (ranges a-z allowed), as %s;
///   %p  a hexadecimal pointer; %n  the units consumed so far (int*), not counted.
/// Returns the number of fields converted and stored, or -1 when the input ends before
/// the first conversion (and for a null format). A null text is an empty text.
VELA_API int suscanf(unsigned short const* text, unsigned short const* format, ...);

/// The platform's line end: "\n".
VELA_API extern char const EOL[];

} // namespace Vela

#endif
