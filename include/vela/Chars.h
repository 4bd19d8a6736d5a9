#ifndef VELA_CHARS_H
#define VELA_CHARS_H

#include <lumo/Config.h>

// Character routines over 8-bit multibyte text. Character code 0, the default, is
// UTF-8: the routines step over whole sequences, and case work uses Unicode simple
// case mapping. Lengths are in bytes; a length of -1 means "up to the terminator".
namespace Vela {

enum {
    CH_CASE_INSENSITIVE = 0, // case type 0
    CH_CASE_SENSITIVE = 1    // case type 1
};

// <0, 0 or >0 as a sorts before, with or after b (by code point; with case type 0
// after simple case folding).
LUMO_API int CHCompareTexts(char const* a, long lengthA, char const* b, long lengthB,
                            int caseType, int charCode = 0);

// The first / last character equal to `ch` within the text, or null. Values
// 0xFF80-0xFFFF are single bytes widened with sign extension and match that byte;
// other values match the decoded character.
LUMO_API char const* CHSearchCharLeft(char const* text, long length, unsigned short ch,
                                      int charCode = 0);
LUMO_API char const* CHSearchCharRight(char const* text, long length, unsigned short ch,
                                       int charCode = 0);

// The first occurrence of `pattern` within the text, starting on a character
// boundary, or null.
LUMO_API char const* CHSearchSubstring(char const* text, long length, char const* pattern,
                                       long patternLength, int caseType, int charCode = 0);

// The start of the character after the one at `p` (a malformed byte counts as one
// character); `p` itself at the terminator.
LUMO_API char const* CHGetNextCharPtr(char const* p, int charCode = 0);

// Case mapping in place. A character whose mapping would need more bytes is left as
// it is, so the text never grows; returns the new length.
LUMO_API long CHtoUpper(char* text, long length, int charCode = 0);
LUMO_API long CHtoLower(char* text, long length, int charCode = 0);

// Copies `source` into `target` (of `targetSize` bytes, terminator included) without
// splitting a character; returns the bytes copied, terminator excluded.
LUMO_API long CHCopyC(char* target, long targetSize, char const* source, int charCode = 0);
// As CHCopyC, taking at most `maxLength` bytes of `source`.
LUMO_API long CHTruncate(char* target, long targetSize, char const* source, long maxLength,
                         int charCode = 0);

// UTF-16 to 8-bit text. With a null target, returns the bytes needed (terminator
// excluded); otherwise writes at most targetSize - 1 bytes and a terminator and
// returns the bytes written. Unpaired surrogates become '?'.
LUMO_API long CHUnicode2ANSI(unsigned short const* text, long length, char* target,
                             long targetSize, int charCode = 0, void* cache = nullptr);
// 8-bit text to UTF-16, likewise in units. Decoding stops at the first malformed
// sequence.
LUMO_API long CHANSI2Unicode(char const* text, long length, unsigned short* target,
                             long targetSize, int charCode = 0, void* cache = nullptr);

} // namespace Vela

#endif
