// The root layer's routines over 8-bit multibyte text (UTF-8 here): compare, search, step,
// case-map, copy and truncate without splitting a character, and convert to and from UTF-16.
#ifndef VELA_CHARS_H
#define VELA_CHARS_H

#include <vela/Config.h>

/// Character routines over 8-bit multibyte text. Character code 0, the default, is
/// UTF-8 (other codes behave the same): the routines step over whole sequences, and
/// case work uses Unicode simple case mapping (ICU).
///
/// Lengths are in bytes; a negative length means "up to the terminator". A text also
/// ends at its first 0 byte within a given length (the bytes of that length may be
/// read). A null text pointer is an empty text.
///
/// Decoding is strict UTF-8 (no overlong forms, no encoded surrogates, nothing above
/// U+10FFFF). A byte that does not start a well-formed sequence (a stray continuation
/// byte, a lead byte without its continuation bytes) is a "malformed byte": one character
/// of its own, equal only to itself and sorting after every real character.
namespace Vela {

enum {
    CH_CASE_INSENSITIVE = 0, // case type 0
    CH_CASE_SENSITIVE = 1    // case type 1
};

/// <0, 0 or >0 as a sorts before, with or after b (by code point; with case type 0
/// after simple case folding).
VELA_API int CHCompareTexts(char const* a, long lengthA, char const* b, long lengthB, int caseType,
                            int charCode = 0);

/// The first / last character equal to `ch` within the text, or null. Values
/// 0xFF80-0xFFFF are single bytes widened with sign extension and match that byte
/// wherever it stands (also inside a sequence); other values match the decoded character
/// only (never bytes inside another character). 0 and surrogates never match.
///@{
VELA_API char const* CHSearchCharLeft(char const* text, long length, unsigned short ch,
                                      int charCode = 0);
VELA_API char const* CHSearchCharRight(char const* text, long length, unsigned short ch,
                                       int charCode = 0);
///@}

/// The first occurrence of `pattern` within the text, starting on a character
/// boundary and made of whole characters, or null. Case type 1 compares code points,
/// case type 0 simple case foldings (so the match may differ in byte length from the
/// pattern). An empty pattern gives `text`.
VELA_API char const* CHSearchSubstring(char const* text, long length, char const* pattern,
                                       long patternLength, int caseType, int charCode = 0);

/// The start of the character after the one at `p` (a malformed byte counts as one
/// character); `p` itself at the terminator, and for null. Never passes the terminator.
VELA_API char const* CHGetNextCharPtr(char const* p, int charCode = 0);

/// Case mapping in place (Unicode simple mapping, u_toupper / u_tolower). A character
/// whose mapping would need more bytes is left as it is, so the text never grows; when
/// it shrinks (U+0130 to "i", for one), a 0 byte is written at its new end. Malformed
/// bytes stay. Returns the new length.
///@{
VELA_API long CHtoUpper(char* text, long length, int charCode = 0);
VELA_API long CHtoLower(char* text, long length, int charCode = 0);
///@}

/// Copies `source` into `target` (of `targetSize` bytes, terminator included) without
/// splitting a character; returns the bytes copied, terminator excluded. A null or
/// too small target (size below 1) gets nothing and gives 0; a null source is empty.
VELA_API long CHCopyC(char* target, long targetSize, char const* source, int charCode = 0);
/// As CHCopyC, taking at most `maxLength` bytes of `source` (all of it when negative).
/// Only those bytes are read, so a source without terminator is fine; a sequence that
/// the limit cuts short (a lead byte followed by fewer continuation bytes than it needs)
/// is left out.
VELA_API long CHTruncate(char* target, long targetSize, char const* source, long maxLength,
                         int charCode = 0);

/// UTF-16 to 8-bit text (`length` in units, negative: up to the terminator; a 0 unit
/// ends the text). With a null target, returns the bytes needed (terminator excluded);
/// otherwise writes at most targetSize - 1 bytes of whole characters and a terminator
/// and returns the bytes written (0, and nothing written, for targetSize below 1).
/// Unpaired surrogates become '?'. `cache` is unused.
VELA_API long CHUnicode2ANSI(unsigned short const* text, long length, char* target, long targetSize,
                             int charCode = 0, void* cache = nullptr);
/// 8-bit text to UTF-16, likewise in units (a surrogate pair is never split). Decoding
/// stops at the first malformed sequence.
VELA_API long CHANSI2Unicode(char const* text, long length, unsigned short* target, long targetSize,
                             int charCode = 0, void* cache = nullptr);

} // namespace Vela

#endif
