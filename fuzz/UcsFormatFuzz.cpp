// Fuzzes Vela::suscanf with the formats the library scans numbers with (and a few
// neighbours) against sscanf on the same ASCII text, and Vela::vsnuprintf with single
// conversions built from the input (flags, width, precision, length, conversion) against
// snprintf, output size included.
#include "FuzzSupport.h"

#include <vela/Ucs.h>

#include <cctype>
#include <cstdarg>
#include <cstring>

using namespace lumofuzz;

namespace {

bool IsAscii(Units const& u) {
    for (unsigned short c : u)
        if (c >= 0x80)
            return false;
    return true;
}

// "0x" with no hexadecimal digit after it: glibc's sscanf takes it in and then fails
// the field (it cannot give back two characters), the library reads the 0 as strtod
// does. Such texts are left out of the comparison.
bool DanglingHexPrefix(std::string const& s) {
    for (std::size_t i = 0; i + 1 < s.size(); ++i)
        if (s[i] == '0' && (s[i + 1] == 'x' || s[i + 1] == 'X') &&
            (i + 2 >= s.size() || !std::isxdigit(static_cast<unsigned char>(s[i + 2]))))
            return true;
    return false;
}

template <class T> bool SameValue(T a, T b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || a == b;
}

// One scan with a format and one destination type, compared with sscanf.
template <class T> void Scan(char const* format, Units const& text, std::string const& narrow) {
    Units const wideFormat = Widen(format);
    T got{}, expect{};
    int const r = Vela::suscanf(text.data(), wideFormat.data(), &got);
    if (!IsAscii(text) || DanglingHexPrefix(narrow))
        return;
    int const e = std::sscanf(narrow.c_str(), format, &expect);
    FUZZ_CHECK(r == e);
    FUZZ_CHECK(r != 1 || SameValue(got, expect));
}

void CheckScan(Input& in) {
    // Mostly characters that numbers are made of, so that fields are met often.
    static char const kAlphabet[] = "0123456789+-.eExXpPaAfFiInNtT \t\n\v\f\r()_%";
    Units text;
    std::string narrow;
    std::size_t const n = in.Pick(40);
    for (std::size_t i = 0; i < n && !in.Empty(); ++i) {
        std::uint8_t const b = in.Byte();
        unsigned short c = b < 0xE0   ? kAlphabet[b % (sizeof kAlphabet - 1)]
                           : b < 0xF8 ? static_cast<unsigned short>(b & 0x7F)
                                      : static_cast<unsigned short>(0x660 + (b & 7) * 0x111);
        if (c == 0)
            c = '0';
        text.push_back(c);
        narrow += char(c < 0x80 ? c : '?');
    }
    text.push_back(0);
    switch (in.Pick(16)) {
    case 0:
        Scan<short>("%hd", text, narrow);
        break;
    case 1:
        Scan<long>("%ld", text, narrow);
        break;
    case 2:
        Scan<unsigned long>("%lu", text, narrow);
        break;
    case 3:
        Scan<float>("%f", text, narrow);
        break;
    case 4:
        Scan<double>("%lf", text, narrow);
        break;
    case 5:
        Scan<int>("%d", text, narrow);
        break;
    case 6:
        Scan<int>("%i", text, narrow);
        break;
    case 7:
        Scan<unsigned>("%x", text, narrow);
        break;
    case 8:
        Scan<unsigned>("%o", text, narrow);
        break;
    case 9:
        Scan<long long>("%lld", text, narrow);
        break;
    case 10:
        Scan<double>("%le", text, narrow);
        break;
    case 11:
        Scan<float>("%g", text, narrow);
        break;
    case 12:
        Scan<int>("%3d", text, narrow);
        break;
    case 13:
        Scan<double>("%4lf", text, narrow);
        break;
    case 14:
        Scan<signed char>("%hhd", text, narrow);
        break;
    default:
        Scan<long>("%5ld", text, narrow);
        break;
    }
}

int Uprintf(unsigned short* buffer, unsigned long count, unsigned short const* format, ...) {
    va_list args;
    va_start(args, format);
    int const r = Vela::vsnuprintf(buffer, count, format, args);
    va_end(args);
    return r;
}

// Checks the library's output for one call against snprintf's text: `print` makes the
// library's call with the buffer and count it is given.
template <class Print> void Expect(std::string const& expect, unsigned long count, Print&& print) {
    Units buffer(count + 1, 0xBEEF);
    int const r = print(count == 0 ? nullptr : buffer.data(), count);
    FUZZ_CHECK(buffer[count] == 0xBEEF);
    if (count == 0) {
        FUZZ_CHECK(r == -1);
        return;
    }
    std::size_t const fits = std::min<std::size_t>(expect.size(), count - 1);
    FUZZ_CHECK(r == (expect.size() <= count - 1 ? int(expect.size()) : -1));
    FUZZ_CHECK(buffer[fits] == 0);
    for (std::size_t i = 0; i < fits; ++i)
        FUZZ_CHECK(buffer[i] == static_cast<unsigned char>(expect[i]));
}

template <class... Args> std::string Snprintf(std::string const& format, Args... args) {
    int const length = std::snprintf(nullptr, 0, format.c_str(), args...);
    FUZZ_CHECK(length >= 0);
    std::string out(std::size_t(length) + 1, '\0');
    std::snprintf(&out[0], out.size(), format.c_str(), args...);
    out.resize(std::size_t(length));
    return out;
}

// The same arguments to snprintf and to the library.
template <class... Args>
void Compare(std::string const& format, std::string const& wideFormat, unsigned long count,
             Args... args) {
    Units const uformat = Widen(wideFormat);
    Expect(Snprintf(format, args...), count, [&](unsigned short* buffer, unsigned long n) {
        return Uprintf(buffer, n, uformat.data(), args...);
    });
}

void CheckPrint(Input& in) {
    static char const kFlags[] = "-+ #0";
    static char const kConversions[] = "diuoxXfFeEgGaAcs%";
    char const conversion = kConversions[in.Pick(sizeof kConversions - 1)];
    bool const text = conversion == 'c' || conversion == 's';
    std::string directive = "%";
    for (unsigned n = in.Pick(4); n > 0; --n)
        directive += text ? '-' : kFlags[in.Pick(5)];
    bool const starWidth = in.Pick(8) == 0, starPrecision = in.Pick(8) == 0;
    int const width = int(in.Pick(40)) - 5, precision = int(in.Pick(40)) - 5;
    if (starWidth)
        directive += '*';
    else if (width > 0)
        directive += std::to_string(width);
    if (conversion != 'c' && conversion != '%' && in.Bool()) {
        if (starPrecision)
            directive += ".*";
        else
            directive += "." + std::to_string(precision < 0 ? 0 : precision);
    }
    bool const usesStar = directive.find('*') != std::string::npos;
    bool const twoStars = directive.find('*') != directive.rfind('*');
    unsigned const length = in.Pick(5);
    std::string prefix, suffix;
    for (unsigned n = in.Pick(6); n > 0; --n) {
        char const c = char(0x20 + in.Pick(95));
        prefix += c == '%' ? '#' : c;
    }
    for (unsigned n = in.Pick(4); n > 0; --n)
        suffix += char('a' + in.Pick(26));
    unsigned long const count = in.Pick(4) == 0 ? in.Pick(8) : 64 + in.Pick(200);
    std::uint64_t const bits = in.Value<std::uint64_t>();

    auto run = [&](std::string const& lengthModifier, std::string const& wideModifier, auto value) {
        std::string const format = prefix + directive + lengthModifier + conversion + suffix;
        std::string const wide = prefix + directive + wideModifier + conversion + suffix;
        if (twoStars)
            Compare(format, wide, count, width, precision, value);
        else if (usesStar)
            Compare(format, wide, count, starWidth ? width : precision, value);
        else
            Compare(format, wide, count, value);
    };
    switch (conversion) {
    case 'd':
    case 'i':
    case 'u':
    case 'o':
    case 'x':
    case 'X':
        switch (length) {
        case 0:
            run("", "", int(bits));
            break;
        case 1:
            run("h", "h", int(short(bits)));
            break;
        case 2:
            run("l", "l", long(bits));
            break;
        case 3:
            run("ll", "ll", static_cast<long long>(bits));
            break;
        default:
            run("hh", "hh", int(static_cast<signed char>(bits)));
            break;
        }
        break;
    case 'c':
        run("", "", int(0x20 + bits % 95));
        break;
    case 's': {
        // An ASCII text: %s for snprintf, %hs (8-bit) or %s (UTF-16) for the library.
        std::string s;
        for (unsigned k = 0; k < bits % 30; ++k)
            s += char('A' + (bits >> k) % 26);
        if (length % 2 == 0) {
            run("", "h", s.c_str());
        } else if (!usesStar) {
            Units const u = Widen(s);
            std::string const format = prefix + directive + "s" + suffix;
            Units const uformat = Widen(format);
            Expect(Snprintf(format, s.c_str()), count,
                   [&](unsigned short* buffer, unsigned long n) {
                       return Uprintf(buffer, n, uformat.data(), u.data());
                   });
        }
        break;
    }
    case '%':
        if (!usesStar && directive == "%")
            Compare(prefix + "%%" + suffix, prefix + "%%" + suffix, count, 0);
        break;
    default: {
        double d;
        std::memcpy(&d, &bits, sizeof d);
        if (length == 4)
            run("L", "L", static_cast<long double>(d));
        else
            run(length == 2 ? "l" : "", length == 2 ? "l" : "", d);
        break;
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Start();
    Input in(data, size);
    if (in.Bool())
        CheckScan(in);
    else
        CheckPrint(in);
    return 0;
}
