// CWCharToCharConverter's lookup by encoding name and the built-in UTF-8 converter, which
// holds a high surrogate across calls until its low half arrives.
#include <lumo/io/WCharToCharConverter.h>

#include <lumo/base/Exception.h>
#include <lumo/io/UnsupportedEncodingException.h>

#include <cstddef>

namespace lumo {
namespace io {

namespace {

char const kUnit[] = "lumo/io/WCharToCharConverter";

bool IsHighSurrogate(unsigned int c) {
    return c >= 0xD800 && c <= 0xDBFF;
}

// Bytes of the sequence for unit c in the main loop (a high surrogate followed by
// another unit becomes one "?").
unsigned long SequenceLength(unsigned int c) {
    if (c < 0x80)
        return 1;
    if (c < 0x800)
        return 2;
    if (!IsHighSurrogate(c))
        return 3;
    return 1;
}

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
        unsigned int const low = *s;
        if (low >= 0xDC00 && low <= 0xDFFF) {
            if (limit - d < 4)
                return -1;
            std::uint32_t const cp =
                (static_cast<std::uint32_t>(m_pendingSurrogate) - 0xD7F7) * 0x400 + low;
            d[0] = static_cast<unsigned char>(0xF0 | ((cp >> 18) & 0x07));
            d[1] = static_cast<unsigned char>(0x80 | ((cp >> 12) & 0x3F));
            d[2] = static_cast<unsigned char>(0x80 | ((cp >> 6) & 0x3F));
            d[3] = static_cast<unsigned char>(0x80 | (low & 0x3F));
            d += 4;
            ++s;
            m_pendingSurrogate = NO_PENDING_SURROGATE;
        } else {
            // The waiting surrogate stays: its low half may still open a later call.
            if (d == limit)
                return -1;
            *d++ = '?';
        }
    }

    while (s < end) {
        // Every unit of the main loop needs at most 3 bytes, so a stretch of
        // room / 3 units runs without checking the room unit by unit.
        std::size_t safe = static_cast<std::size_t>(limit - d) / 3;
        if (safe > static_cast<std::size_t>(end - s))
            safe = static_cast<std::size_t>(end - s);
        if (safe == 0) {
            unsigned int const c = *s;
            bool const lastHigh = IsHighSurrogate(c) && s + 1 == end;
            if (!lastHigh && SequenceLength(c) > static_cast<std::size_t>(limit - d)) {
                m_pendingSurrogate = pendingOnEntry;
                return -1;
            }
            safe = 1;
        }
        unsigned short const* const stop = s + safe;
        while (s < stop) {
            unsigned int const c = *s;
            if (c < 0x80) {
                *d++ = static_cast<unsigned char>(c);
                ++s;
            } else if (c < 0x800) {
                d[0] = static_cast<unsigned char>(0xC0 | ((c >> 6) & 0x1F));
                d[1] = static_cast<unsigned char>(0x80 | (c & 0x3F));
                d += 2;
                ++s;
            } else if (!IsHighSurrogate(c)) {
                d[0] = static_cast<unsigned char>(0xE0 | ((c >> 12) & 0x0F));
                d[1] = static_cast<unsigned char>(0x80 | ((c >> 6) & 0x3F));
                d[2] = static_cast<unsigned char>(0x80 | (c & 0x3F));
                d += 3;
                ++s;
            } else if (s + 1 == end) {
                // Its low half may open the next call.
                m_pendingSurrogate = static_cast<unsigned short>(c);
                return static_cast<long>(d - start);
            } else {
                // The low-half test (at least 0xDC00 and at most 0xDBFF) is never
                // met, so the unit after a high surrogate is always taken with it.
                *d++ = '?';
                s += 2;
            }
        }
    }
    return static_cast<long>(d - start);
}

} // namespace io
} // namespace lumo
