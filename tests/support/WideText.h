// Test support: terminated UTF-16 texts built from code units, and the units of a
// CUnicodeString for expectations.
#ifndef LUMO_TESTS_SUPPORT_WIDETEXT_H
#define LUMO_TESTS_SUPPORT_WIDETEXT_H

#include <lumo/base/UnicodeString.h>

#include <string>
#include <vector>

namespace lumotest {

// A terminated UTF-16 text built from code units, for the UTF-16 interfaces.
class W {
public:
    W(std::u16string const& text) {
        for (char16_t c : text)
            m_units.push_back(static_cast<unsigned short>(c));
        m_units.push_back(0);
    }
    W(char16_t const* text) : W(std::u16string(text)) {}
    operator unsigned short const*() const { return m_units.data(); }

private:
    std::vector<unsigned short> m_units;
};

// The units of a string, for comparisons in test expectations.
inline std::u16string U16(lumo::base::CUnicodeString const& s) {
    std::u16string text;
    for (unsigned long i = 0; i < s.GetLength(); ++i)
        text.push_back(static_cast<char16_t>(s.GetAt(i)));
    return text;
}

} // namespace lumotest

#endif
