// Strings and formatting: the 8-bit CString (UTF-8), the UTF-16 CUnicodeString, the
// conversions between them, printf-style formatting into both, and CStringBuffer as a
// work area for building a long text piece by piece.
#include <lumo/Lumo.h>

#include <vela/Ucs.h>

#include <cstdio>

using lumo::base::CFormattedString;
using lumo::base::CString;
using lumo::base::CStringBuffer;
using lumo::base::CUnicodeString;

int main() {
    lumo::Initialize();

    // CString holds UTF-8. Copies share one buffer until one of them changes.
    CString title("Grüße aus Köln");
    CString copy = title;
    copy.Replace("Köln", "Bonn");
    copy.MakeUpper(); // Unicode-aware: ü becomes Ü; ß, with no one-letter capital, stays
    std::printf("title: %s\ncopy:  %s\n", static_cast<char const*>(title),
                static_cast<char const*>(copy));
    std::printf("%lu bytes, 'aus' at byte %ld, ends with \"Köln\": %s\n", title.GetLength(),
                title.Find("aus"), title.EndsWith("Köln") ? "yes" : "no");

    // CUnicodeString holds UTF-16 units; FromUTF8 and ToUTF8 convert in both directions.
    CUnicodeString wide = CUnicodeString::FromUTF8(title);
    std::printf("as UTF-16: %lu units; back to UTF-8 unchanged: %s\n", wide.GetLength(),
                wide.ToUTF8() == title ? "yes" : "no");
    CUnicodeString const smile = CUnicodeString::FromUTF8("😀"); // outside the BMP
    std::printf("an emoji is %lu UTF-16 units and %lu UTF-8 bytes\n", smile.GetLength(),
                smile.ToUTF8().GetLength());

    // Format is printf into the string; CFormattedString does the same in one expression.
    CString line;
    line.Format("%-8s|%5.2f|%04ld", "price", 3.14159, 42L);
    std::printf("[%s]\n", static_cast<char const*>(line));
    std::printf("[%s]\n", static_cast<char const*>(CFormattedString("%d%% done", 75)));

    // Vela::snuprintf formats into UTF-16: %s takes UTF-16 text, %hs UTF-8 text.
    unsigned short buffer[64];
    Vela::snuprintf(buffer, 64, CUnicodeString("%hs has %d units, then %s"), "Köln", 4,
                    static_cast<unsigned short const*>(smile));
    std::printf("snuprintf: %s\n", static_cast<char const*>(CUnicodeString(buffer).ToUTF8()));

    // Vela::suscanf reads values back out of UTF-16 text.
    int width = 0, height = 0;
    int const fields = Vela::suscanf(CUnicodeString("size 1280x720"), CUnicodeString("size %dx%d"),
                                     &width, &height);
    std::printf("suscanf: %d fields, %d by %d\n", fields, width, height);

    // CStringBuffer grows as text is appended; it suits loops that build one text.
    CStringBuffer csv;
    for (int i = 1; i <= 5; ++i) {
        csv += CString(CFormattedString("%d", i * i));
        if (i < 5)
            csv += ",";
    }
    std::printf("squares: %s (%lu characters)\n", static_cast<char const*>(csv), csv.GetSize());

    // Trimming and sub-strings.
    CString padded("   left and right   ");
    padded.TrimLeft();
    padded.TrimRight();
    std::printf("trimmed: [%s], first word: [%s], middle word: [%s]\n",
                static_cast<char const*>(padded), static_cast<char const*>(padded.Left(4)),
                static_cast<char const*>(padded.Mid(5, 3)));

    lumo::Terminate();
    return 0;
}
