// CWCharToCharConverter's lookup by encoding name and the built-in UTF-8 converter, which
// holds a high surrogate across calls until its low half arrives.
#include <lumo/io/WCharToCharConverter.h>

#include <lumo/base/Exception.h>
#include <lumo/io/UnsupportedEncodingException.h>

#include <cstddef>

#include "../../vela/detail/Utf8Codec.h"

namespace lumo {
namespace io {

namespace {

char const kUnit[] = "lumo/io/WCharToCharConverter";

namespace utf8 = Vela::detail::utf8;

// The converter's own rule for a surrogate met in the text: a high surrogate takes the
// unit after it, whatever that is, and the two become one "?" (a pair is joined only
// across calls, through the pending surrogate); a high surrogate that ends the text
// stops the conversion, to wait for its low half; a low surrogate gets the 3 bytes of
// its own value. Only encoding uses it, never the byte count, so it has no
// kUnpairedBytes.
struct HighTakesNext {
    static constexpr bool kPairs = false;
    utf8::Utf16Step Surrogate(unsigned short const* p, unsigned short const* end,
                              utf8::Byte* four) const {
        if (!utf8::IsHighSurrogate(*p))
            return utf8::Utf16Step{1, utf8::EncodeOne(*p, four)};
        if (end - p < 2)
            return utf8::Utf16Step{0, 0};
        four[0] = '?';
        return utf8::Utf16Step{2, 1};
    }
};

} // namespace

LUMO_DEFINE_CLASS(CWCharToCharConverter, "lumo::io::CWCharToCharConverter", "lumo::base::CObject");
LUMO_DEFINE_CLASS(CWCharToCharUTF8, "lumo::io::CWCharToCharUTF8",
                  "lumo::io::CWCharToCharConverter");

CWCharToCharConverter::CWCharToCharConverter(char const* encoding) : m_encoding(encoding) {}

CWCharToCharConverter::~CWCharToCharConverter() {}

base::CRef<CWCharToCharConverter> CWCharToCharConverter::GetConverter(char const* name) {
    if (name == nullptr || *name == '\0')
        throw base::CIllegalArgumentException(kUnit, __LINE__, "Invalid encoding.");
    CWCharToCharConverterFactory* const factory =
        CWCharToCharConverterFactory::GetConverterFactory(name);
    if (factory == nullptr)
        throw CUnsupportedEncodingException(kUnit, __LINE__, name);
    return factory->CreateConverter();
}

base::CRef<CWCharToCharConverter> CWCharToCharConverter::GetConverter(base::CString const& name) {
    return GetConverter(static_cast<char const*>(name));
}

CWCharToCharUTF8::CWCharToCharUTF8()
    : CWCharToCharConverter("UTF-8"), m_pendingSurrogate(NO_PENDING_SURROGATE) {}

CWCharToCharUTF8::~CWCharToCharUTF8() {}

void CWCharToCharUTF8::Reset() {
    m_pendingSurrogate = NO_PENDING_SURROGATE;
}

long CWCharToCharUTF8::Convert(unsigned short const* src, unsigned long srcOff,
                               unsigned long srcLen, char* dst, unsigned long dstOff,
                               unsigned long dstLen) {
    if (srcLen == 0)
        return 0;
    unsigned short const* s = src + srcOff;
    unsigned short const* const end = s + srcLen;
    unsigned char* const start = reinterpret_cast<unsigned char*>(dst) + dstOff;
    unsigned char* d = start;
    unsigned char* const limit = start + dstLen;
    unsigned short const pendingOnEntry = m_pendingSurrogate;

    if (m_pendingSurrogate != NO_PENDING_SURROGATE) {
        if (utf8::IsLowSurrogate(*s)) {
            if (limit - d < 4)
                return -1;
            d += utf8::EncodeOne(utf8::Combine(m_pendingSurrogate, *s), d);
            ++s;
            m_pendingSurrogate = NO_PENDING_SURROGATE;
        } else {
            // The waiting surrogate stays: its low half may still open a later call.
            if (d == limit)
                return -1;
            *d++ = '?';
        }
    }

    HighTakesNext policy;
    utf8::EncodeResult const done = utf8::Encode(s, end, d, limit, policy);
    s += done.units;
    d += done.bytes;
    if (s + 1 == end && utf8::IsHighSurrogate(*s)) {
        // Its low half may open the next call.
        m_pendingSurrogate = *s;
    } else if (s != end) {
        // The rest does not fit: nothing of this call counts.
        m_pendingSurrogate = pendingOnEntry;
        return -1;
    }
    return static_cast<long>(d - start);
}

} // namespace io
} // namespace lumo
