// Internal: the text of one typed value as the XML writers write it (bool as "true" or
// "false", integers in decimal, floating-point numbers as "%g"), made on the stack for
// the length of one call.
#ifndef LUMO_IO_DETAIL_XMLVALUETEXT_H
#define LUMO_IO_DETAIL_XMLVALUETEXT_H

#include <charconv>
#include <cmath>
#include <cstdio>
#include <type_traits>

namespace lumo {
namespace io {
namespace detail {

/// Converts to the zero-terminated UTF-16 text. Integers print as "%d", "%ld",
/// "%lld" (or their unsigned forms) do; a char counts as signed.
class CXMLValueText {
public:
    explicit CXMLValueText(bool value) {
        char const* text = value ? "true" : "false";
        unsigned long k = 0;
        for (; text[k] != 0; ++k)
            m_units[k] = static_cast<unsigned char>(text[k]);
        m_units[k] = 0;
    }
    template <class T,
              typename std::enable_if<std::is_integral<T>::value && !std::is_same<T, bool>::value,
                                      int>::type = 0>
    explicit CXMLValueText(T value) {
        if (std::is_same<T, char>::value || std::is_signed<T>::value) {
            long long const v = std::is_same<T, char>::value
                                    ? static_cast<long long>(static_cast<signed char>(value))
                                    : static_cast<long long>(value);
            FromUnsigned(v < 0 ? 0ull - static_cast<unsigned long long>(v) : v, v < 0);
        } else {
            FromUnsigned(static_cast<unsigned long long>(value), false);
        }
    }
    /// Exactly "%g" (six significant digits), without the C library's locale.
    explicit CXMLValueText(double value) {
        char text[40];
        int length = 0;
        if (!std::isfinite(value)) {
            length = std::snprintf(text, sizeof text, "%g", value);
        } else {
            std::to_chars_result const r =
                std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6);
            length = static_cast<int>(r.ptr - text);
        }
        for (int i = 0; i < length; ++i)
            m_units[i] = static_cast<unsigned char>(text[i]);
        m_units[length] = 0;
    }
    explicit CXMLValueText(float value) : CXMLValueText(static_cast<double>(value)) {}

    operator unsigned short const*() const { return m_units; }

private:
    void FromUnsigned(unsigned long long value, bool negative) {
        unsigned short digits[24];
        unsigned long n = 0;
        do {
            digits[n++] = static_cast<unsigned short>('0' + value % 10);
            value /= 10;
        } while (value != 0);
        unsigned long k = 0;
        if (negative)
            m_units[k++] = '-';
        while (n > 0)
            m_units[k++] = digits[--n];
        m_units[k] = 0;
    }

    unsigned short m_units[48];
};

} // namespace detail
} // namespace io
} // namespace lumo

#endif
