// Shared by the fuzz targets: the library started once, a reader that turns the fuzzer's
// bytes into choices, and the rule that a library exception is an expected outcome while
// a model mismatch aborts.
#ifndef LUMO_FUZZ_FUZZSUPPORT_H
#define LUMO_FUZZ_FUZZSUPPORT_H

#include <lumo/Library.h>
#include <lumo/base/Exception.h>
#include <lumo/base/UnicodeString.h>
#include <vela/Debug.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace lumofuzz {

using Units = std::vector<unsigned short>;

// A model mismatch is a finding: say what differed and abort, so libFuzzer keeps the input.
[[noreturn]] inline void Fail(char const* what, char const* file, int line) {
    std::fprintf(stderr, "model mismatch at %s:%d: %s\n", file, line, what);
    std::abort();
}

#define FUZZ_CHECK(cond)                                                                           \
    do {                                                                                           \
        if (!(cond))                                                                               \
            ::lumofuzz::Fail(#cond, __FILE__, __LINE__);                                           \
    } while (0)

// Starts the library once per process and keeps the readers' printed failures (expected
// by the thousand while fuzzing) off standard error.
inline void Start() {
    static bool const started = [] {
        lumo::Initialize();
        Vela::DBSetOutput([](char const*, void*) {}, nullptr);
        return true;
    }();
    (void)started;
}

// Runs `f`; a library exception is an expected outcome and gives false. Anything else
// escapes to libFuzzer, which reports it.
template <class F> bool Try(F&& f) {
    try {
        f();
        return true;
    } catch (lumo::base::CException const&) {
        return false;
    }
}

// Hands out the fuzzer's bytes as choices; past the end every choice is 0.
class Input {
public:
    Input(std::uint8_t const* data, std::size_t size) : m_data(data), m_size(size) {}

    bool Empty() const { return m_pos >= m_size; }
    std::size_t Left() const { return m_size - m_pos; }

    std::uint8_t Byte() { return m_pos < m_size ? m_data[m_pos++] : 0; }
    bool Bool() { return (Byte() & 1) != 0; }
    // A value in [0, n).
    unsigned Pick(unsigned n) { return n == 0 ? 0 : Byte() % n; }
    template <class T> T Value() {
        T v{};
        auto* p = reinterpret_cast<std::uint8_t*>(&v);
        for (std::size_t i = 0; i < sizeof(T); ++i)
            p[i] = Byte();
        return v;
    }
    // Up to `max` raw bytes, the count taken from the input first.
    std::string Bytes(std::size_t max) {
        std::size_t n = Byte();
        if (n > max)
            n = max;
        if (n > Left())
            n = Left();
        std::string s(reinterpret_cast<char const*>(m_data + m_pos), n);
        m_pos += n;
        return s;
    }
    // Everything that is left.
    std::string Rest() {
        std::string s(reinterpret_cast<char const*>(m_data + m_pos), Left());
        m_pos = m_size;
        return s;
    }
    // Up to `max` UTF-16 units, each from two bytes.
    Units Units16(std::size_t max) {
        std::size_t n = Byte();
        if (n > max)
            n = max;
        Units u;
        for (std::size_t i = 0; i < n && Left() >= 2; ++i)
            u.push_back(static_cast<unsigned short>(Byte() | (Byte() << 8)));
        return u;
    }

private:
    std::uint8_t const* m_data;
    std::size_t m_size;
    std::size_t m_pos = 0;
};

// Zero-terminated UTF-16 copy of 8-bit text (each byte one unit), for names and literals.
inline Units Widen(std::string const& s) {
    Units u(s.begin(), s.end());
    for (auto& c : u)
        c &= 0xFF;
    u.push_back(0);
    return u;
}

inline std::string Utf8(lumo::base::CUnicodeString const& s) {
    lumo::base::CString const u = s.ToUTF8();
    return std::string(static_cast<char const*>(u), u.GetLength());
}

} // namespace lumofuzz

#endif
