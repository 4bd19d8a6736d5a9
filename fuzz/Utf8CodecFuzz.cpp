// Fuzzes the UTF-8 <-> UTF-16 codec against ICU: each decoding policy (strict stop,
// strict replace, lenient stop) and encoding policy ('?', U+FFFD, own value), the block
// counters, and the public string conversions built on them.
#include "FuzzSupport.h"

#include "support/Utf8Reference.h"

#include <lumo/base/String.h>

#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <algorithm>

using lumo::base::CString;
using lumo::base::CUnicodeString;
using namespace lumofuzz;
namespace utf8 = Vela::detail::utf8;

namespace {

using lumotest::BytesOf;
using lumotest::Encoded;

// ICU's UTF-8 of `u`; ICU must succeed.
std::string IcuToUtf8(Units const& u, UChar32 sub, int32_t* subs) {
    bool ok = false;
    std::string out = lumotest::IcuToUtf8(u, sub, subs, ok);
    FUZZ_CHECK(ok);
    return out;
}

Units IcuFromUtf8(std::string const& s) {
    std::vector<UChar> out(s.size() + 1);
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(out.data(), int32_t(out.size()), &length, s.data(), int32_t(s.size()),
                         0xFFFD, nullptr, &status);
    FUZZ_CHECK(U_SUCCESS(status));
    return Units(out.begin(), out.begin() + length);
}

template <class Policy>
Units Decoded(std::string const& s, std::size_t room = ~std::size_t(0) >> 2) {
    Units out(std::min(s.size(), room));
    auto const r = utf8::Decode<Policy>(BytesOf(s), BytesOf(s) + s.size(), out.data(), out.size());
    auto const counted = utf8::Decode<Policy>(BytesOf(s), BytesOf(s) + s.size(), nullptr, room);
    FUZZ_CHECK(counted.units == r.units && counted.bytes == r.bytes);
    out.resize(r.units);
    return out;
}

Units UnitsOf(CUnicodeString const& s) {
    unsigned short const* p = s;
    return Units(p, p + s.GetLength());
}

void CheckBytes(std::string const& s) {
    lumotest::Utf8Reference const ref = lumotest::StrictDecoding(s);
    bool const wellFormed = ref.prefixBytes == s.size();

    FUZZ_CHECK(Decoded<utf8::StrictStop>(s) == ref.prefix);
    utf8::Byte const* stop = nullptr;
    FUZZ_CHECK(utf8::Count<utf8::StrictStop>(BytesOf(s), BytesOf(s) + s.size(), &stop) ==
               ref.prefix.size());
    FUZZ_CHECK(std::size_t(stop - BytesOf(s)) == ref.prefixBytes);

    Units const replaced = Decoded<utf8::StrictReplace>(s);
    FUZZ_CHECK(replaced == ref.replaced);
    if (wellFormed)
        FUZZ_CHECK(replaced == IcuFromUtf8(s));

    // Lenient: at least the strict prefix, alike; the counter and the valid-only
    // decoder agree with it.
    Units const lenient = Decoded<utf8::LenientStop>(s);
    FUZZ_CHECK(lenient.size() >= ref.prefix.size());
    FUZZ_CHECK(std::equal(ref.prefix.begin(), ref.prefix.end(), lenient.begin()));
    stop = nullptr;
    FUZZ_CHECK(utf8::Count<utf8::LenientStop>(BytesOf(s), BytesOf(s) + s.size(), &stop) ==
               lenient.size());
    Units valid(lenient.size() + 1);
    utf8::DecodeValid(BytesOf(s), stop, valid.data());
    valid.resize(lenient.size());
    FUZZ_CHECK(valid == lenient);

    // A room in units: whole characters only, a pair never split.
    for (std::size_t room : {std::size_t(1), ref.replaced.size() / 2}) {
        Units const part = Decoded<utf8::StrictReplace>(s, room);
        FUZZ_CHECK(part.size() <= room);
        FUZZ_CHECK(std::equal(part.begin(), part.end(), ref.replaced.begin()));
        FUZZ_CHECK(part.size() == ref.replaced.size() || part.size() + 2 > room);
    }

    // The public conversions: FromUTF8 is the lenient decoder (with a length, zeros
    // included); CUnicodeString(char const*, n) the strict one up to a 0 byte.
    FUZZ_CHECK(UnitsOf(CUnicodeString::FromUTF8(s.data(), long(s.size()))) == lenient);
    std::string const upToZero(s.c_str());
    FUZZ_CHECK(UnitsOf(CUnicodeString(s.c_str(), static_cast<unsigned long>(s.size()))) ==
               Decoded<utf8::StrictStop>(upToZero));
}

void CheckUnits(Units const& u) {
    std::size_t const room = u.size() * 3 + 8;
    int32_t subs = 0;
    std::string const question = IcuToUtf8(u, '?', &subs);
    utf8::Question q;
    FUZZ_CHECK(Encoded(u, q, room) == question);
    FUZZ_CHECK(utf8::CountBytes<utf8::Question>(u.data(), u.data() + u.size()) == question.size());

    utf8::Replace r;
    std::string const replaced = IcuToUtf8(u, 0xFFFD, &subs);
    FUZZ_CHECK(Encoded(u, r, room) == replaced);
    FUZZ_CHECK(r.replaced == (subs > 0));
    FUZZ_CHECK(utf8::CountBytes<utf8::Replace>(u.data(), u.data() + u.size()) == replaced.size());

    utf8::OwnValue own;
    std::string const mine = Encoded(u, own, room);
    FUZZ_CHECK(utf8::CountBytes<utf8::OwnValue>(u.data(), u.data() + u.size()) == mine.size());
    FUZZ_CHECK(Decoded<utf8::LenientStop>(mine) == u);
    if (subs == 0)
        FUZZ_CHECK(mine == replaced);

    // A smaller target takes a prefix of whole sequences.
    std::string const part = Encoded(u, q, question.size() / 2);
    FUZZ_CHECK(question.compare(0, part.size(), part) == 0);

    // The bounded zero search, from every alignment.
    for (std::size_t from = 0; from < 4 && from <= u.size(); ++from) {
        unsigned short const* const begin = u.data() + from;
        std::size_t const bound = u.size() - from;
        std::size_t const zero = std::size_t(std::find(begin, begin + bound, 0) - begin);
        FUZZ_CHECK(utf8::FindZero(begin, begin + bound) == begin + zero);
    }

    // The public conversions up to the first 0 unit: ToUTF8 is the own-value encoder
    // and round-trips through FromUTF8; CString takes the '?' encoder.
    Units terminated(u.begin(), std::find(u.begin(), u.end(), 0));
    Units const text = terminated;
    terminated.push_back(0);
    CUnicodeString const s(terminated.data());
    FUZZ_CHECK(UnitsOf(s) == text);
    CString const bytes = s.ToUTF8();
    std::string const ownText = Encoded(text, own, text.size() * 3 + 8);
    FUZZ_CHECK(std::string(bytes, bytes.GetLength()) == ownText);
    FUZZ_CHECK(UnitsOf(CUnicodeString::FromUTF8(bytes, long(bytes.GetLength()))) == text);
    FUZZ_CHECK(s.ToUTF8(nullptr, 1) == long(ownText.size()));
    std::string target(ownText.size() / 2 + 1, '\x7f');
    long const wrote = s.ToUTF8(&target[0], long(target.size()));
    FUZZ_CHECK(wrote >= 0 && std::size_t(wrote) <= target.size());
    FUZZ_CHECK(std::size_t(wrote) == target.size() || target[std::size_t(wrote)] == '\0');
    FUZZ_CHECK(ownText.compare(0, std::size_t(wrote), target, 0, std::size_t(wrote)) == 0);
    CString const narrow(terminated.data());
    std::string const questionText = Encoded(text, q, text.size() * 3 + 8);
    FUZZ_CHECK(std::string(narrow, narrow.GetLength()) == questionText);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Start();
    if (size == 0)
        return 0;
    Input in(data, size);
    if (in.Bool()) {
        CheckBytes(in.Rest());
    } else {
        // Pairs of bytes as units; a mix of ASCII and surrogates is likely from few bytes.
        Units u;
        while (in.Left() >= 2) {
            unsigned short c = static_cast<unsigned short>(in.Byte() | (in.Byte() << 8));
            if ((c & 0xF000) == 0xA000)
                c = static_cast<unsigned short>(0xD800 | (c & 0x7FF));
            u.push_back(c);
        }
        CheckUnits(u);
    }
    return 0;
}
