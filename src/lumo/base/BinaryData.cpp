// CBinaryData: its owned block, comparison and truncation, and the base64 and binhex
// encoders and decoders built on the shared codec kernels.
#include <lumo/base/BinaryData.h>

#include <lumo/base/Exception.h>
#include <vela/Memory.h>

#include "BinaryDataCodec.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#if defined(__GNUC__) && defined(__x86_64__)
#include <immintrin.h>
#endif

namespace lumo {
namespace base {

// Line numbers that the library's documented behaviour fixes for these failures.
unsigned long const kBase64FormatLine = 672;     // malformed base64
unsigned long const kBase64MemoryLine = 679;     // no memory for decoded base64
unsigned long const kBinHexFormatLine = 318;     // malformed binhex
unsigned long const kBinHexMemoryLine = 325;     // no memory for decoded binhex
unsigned long const kCopyMemoryLine = 405;       // no memory for a copy of the data
unsigned long const kTruncateLine = 547;         // truncating to a greater length
unsigned long const kFromBinHexLine = 585;       // From...String with no text
unsigned long const kParseNullLine = 833;        // Parse...String with no text
unsigned long const kParseNullLengthLine = 848;  // Parse...String(text, length) with no text
unsigned long const kParseEmptyLengthLine = 850; // Parse...String(text, length) with length 0

namespace {

char const kUnit[] = "lumo/base/BinaryData";

// Texts are 32-bit sized: anything longer cannot be represented.
constexpr std::size_t kMaxText = 0xFFFFFFFEu;

void CheckEncoderInput(char const* data, unsigned long length, unsigned long line) {
    if (data == nullptr || !Vela::bnManager::IsReadable(data, length))
        throw CIllegalArgumentException(kUnit, line, "Illegal data pointer.");
}

template <class String, class Unit>
void EncodeBase64(char const* data, unsigned long length, String& out) {
    CheckEncoderInput(data, length, 907);
    if (length == 0) {
        out.Empty();
        return;
    }
    std::size_t const n = codec::Base64Length(length);
    if (n > kMaxText)
        throw CMemoryException(kUnit, __LINE__);
    Unit* text = out.GetBuffer(n);
    codec::EncodeBase64(reinterpret_cast<unsigned char const*>(data), length, text);
    out.SetLength(n);
}

template <class String, class Unit>
void EncodeBinHex(char const* data, unsigned long length, String& out) {
    CheckEncoderInput(data, length, 985);
    if (length == 0) {
        out.Empty();
        return;
    }
    if (length > kMaxText / 2)
        throw CMemoryException(kUnit, __LINE__);
    std::size_t const n = std::size_t(length) * 2;
    Unit* text = out.GetBuffer(n);
    codec::EncodeBinHex(reinterpret_cast<unsigned char const*>(data), length, text);
    out.SetLength(n);
}

#if defined(__GNUC__) && defined(__x86_64__)
#define LUMO_BASE64_AVX2 1
// Decodes whole 32-character blocks of the base64 alphabet (no padding) with AVX2,
// 24 bytes per block, stopping before the first block holding anything else; the
// scalar loops go on from there, so every result and failure is theirs. Needs
// `limit` characters at `text` and room for 8 bytes beyond the decoded ones at
// `out`. Returns the characters consumed; `n` grows by the bytes decoded.
__attribute__((target("avx2"))) std::size_t DecodeBase64Blocks(char const* text, std::size_t limit,
                                                               unsigned char* out, std::size_t& n) {
    // A character is in the alphabet exactly when the bit sets picked by its low
    // and high nibbles are disjoint; `roll` maps each alphabet range to its values.
    __m256i const lutLow =
        _mm256_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x13, 0x1A,
                         0x1B, 0x1B, 0x1B, 0x1A, 0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11,
                         0x11, 0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A);
    __m256i const lutHigh =
        _mm256_setr_epi8(0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10, 0x10, 0x10, 0x10,
                         0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08,
                         0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10);
    __m256i const lutRoll =
        _mm256_setr_epi8(0, 16, 19, 4, -65, -65, -71, -71, 0, 0, 0, 0, 0, 0, 0, 0, 0, 16, 19, 4,
                         -65, -65, -71, -71, 0, 0, 0, 0, 0, 0, 0, 0);
    __m256i const nibble = _mm256_set1_epi8(0x0F);
    __m256i const slash = _mm256_set1_epi8('/');
    __m256i const pairs = _mm256_set1_epi32(0x01400140);
    __m256i const quads = _mm256_set1_epi32(0x00011000);
    __m256i const order = _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1,
                                           2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    __m256i const gather = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7);
    std::size_t i = 0;
    for (; i + 32 <= limit; i += 32) {
        __m256i const in = _mm256_loadu_si256(reinterpret_cast<__m256i const*>(text + i));
        __m256i const high = _mm256_and_si256(_mm256_srli_epi32(in, 4), nibble);
        __m256i const low = _mm256_and_si256(in, nibble);
        if (!_mm256_testz_si256(_mm256_shuffle_epi8(lutLow, low),
                                _mm256_shuffle_epi8(lutHigh, high)))
            break;
        __m256i const roll =
            _mm256_shuffle_epi8(lutRoll, _mm256_add_epi8(_mm256_cmpeq_epi8(in, slash), high));
        __m256i const values = _mm256_add_epi8(in, roll);
        __m256i const merged = _mm256_madd_epi16(_mm256_maddubs_epi16(values, pairs), quads);
        __m256i const bytes =
            _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(merged, order), gather);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + n), bytes);
        n += 24;
    }
    return i;
}

bool HaveAvx2() {
    static bool const have = __builtin_cpu_supports("avx2") != 0;
    return have;
}
#endif

[[noreturn]] void ThrowBadBase64Char(unsigned long line, void* block) {
    std::free(block);
    throw CNumberFormatException(kUnit, line, "Invalid base 64 char found.", nullptr);
}

template <class Unit>
void DecodeBase64(Unit const* text, std::size_t textLength, char*& data, unsigned long& length) {
    data = nullptr;
    length = 0;
    if (textLength % 4 != 0)
        throw CNumberFormatException(kUnit, kBase64FormatLine,
                                     "Invalid base64 encoded binary data.", nullptr);
    if (textLength == 0)
        return;
    auto* out = static_cast<unsigned char*>(std::malloc(textLength / 4 * 3));
    if (out == nullptr)
        throw CMemoryException(kUnit, kBase64MemoryLine);
    std::size_t n = 0;
    std::size_t i = 0;
#if LUMO_BASE64_AVX2
    // Blocks stop 48 characters short of the end: the last group (which may hold
    // padding) stays the scalar loops', and the 8 scratch bytes of the last store
    // still fall inside the output.
    if constexpr (sizeof(Unit) == 1) {
        if (textLength > 48 && HaveAvx2())
            i = DecodeBase64Blocks(text, textLength - 48, out, n);
    }
#endif
    // Fast path over whole groups of the alphabet. Every group but the last may
    // store a fourth, scratch byte that the next group overwrites.
    for (; i + 4 < textLength; i += 4) {
        std::uint32_t const v0 = codec::Base64Value(text[i]);
        std::uint32_t const v1 = codec::Base64Value(text[i + 1]);
        std::uint32_t const v2 = codec::Base64Value(text[i + 2]);
        std::uint32_t const v3 = codec::Base64Value(text[i + 3]);
        if (((v0 | v1 | v2 | v3) & codec::kInvalid) != 0)
            break;
        codec::StoreGroup(out + n, (v0 << 18) | (v1 << 12) | (v2 << 6) | v3);
        n += 3;
    }
    for (; i < textLength; i += 4) {
        std::uint32_t const v0 = codec::Base64Value(text[i]);
        std::uint32_t const v1 = codec::Base64Value(text[i + 1]);
        std::uint32_t const v2 = codec::Base64Value(text[i + 2]);
        std::uint32_t const v3 = codec::Base64Value(text[i + 3]);
        if (((v0 | v1 | v2 | v3) & codec::kInvalid) == 0) {
            std::uint32_t const v = (v0 << 18) | (v1 << 12) | (v2 << 6) | v3;
            out[n] = static_cast<unsigned char>(v >> 16);
            out[n + 1] = static_cast<unsigned char>(v >> 8);
            out[n + 2] = static_cast<unsigned char>(v);
            n += 3;
            continue;
        }
        // Padding may end any group, not only the last one.
        if (text[i + 3] == Unit('=') && text[i + 2] == Unit('=')) {
            if ((v0 | v1) & codec::kInvalid)
                ThrowBadBase64Char(172, out);
            out[n++] = static_cast<unsigned char>((v0 << 2) | ((v1 >> 4) & 3));
        } else if (text[i + 3] == Unit('=')) {
            if ((v0 | v1 | v2) & codec::kInvalid)
                ThrowBadBase64Char(185, out);
            out[n++] = static_cast<unsigned char>((v0 << 2) | ((v1 >> 4) & 3));
            out[n++] = static_cast<unsigned char>((v1 << 4) | ((v2 >> 2) & 15));
        } else {
            ThrowBadBase64Char(202, out);
        }
    }
    data = reinterpret_cast<char*>(out);
    length = static_cast<unsigned long>(n);
}

template <class Unit>
void DecodeBinHex(Unit const* text, std::size_t textLength, char*& data, unsigned long& length,
                  unsigned long digitLine) {
    data = nullptr;
    length = 0;
    if (textLength % 2 != 0)
        throw CNumberFormatException(kUnit, kBinHexFormatLine,
                                     "Invalid binhex encoded binary data.", nullptr);
    std::size_t const n = textLength / 2;
    if (n == 0)
        return;
    auto* out = static_cast<unsigned char*>(std::malloc(n));
    if (out == nullptr)
        throw CMemoryException(kUnit, kBinHexMemoryLine);
    for (std::size_t i = 0; i < n; ++i) {
        int const hi = codec::BinHexDigit(text[2 * i]);
        int const lo = codec::BinHexDigit(text[2 * i + 1]);
        if (hi < 0 || lo < 0) {
            std::free(out);
            throw CNumberFormatException(kUnit, digitLine, "Invalid binhex digit.", nullptr);
        }
        out[i] = static_cast<unsigned char>((hi << 4) | lo);
    }
    data = reinterpret_cast<char*>(out);
    length = static_cast<unsigned long>(n);
}

std::size_t UnitLength(unsigned short const* text) {
    std::size_t n = 0;
    while (text[n] != 0)
        ++n;
    return n;
}

char* CopyBlock(char const* data, unsigned long length) {
    if (length == 0)
        return nullptr;
    if (data == nullptr)
        throw CIllegalArgumentException(kUnit, __LINE__, "Illegal data pointer.");
    char* block = static_cast<char*>(std::malloc(length));
    if (block == nullptr)
        throw CMemoryException(kUnit, kCopyMemoryLine);
    std::memcpy(block, data, length);
    return block;
}

} // namespace

CBinaryData::CBinaryData(unsigned long length) : m_data(nullptr), m_length(0) {
    if (length == 0)
        return;
    m_data = static_cast<char*>(std::calloc(length, 1));
    if (m_data == nullptr)
        throw CMemoryException(kUnit, kCopyMemoryLine);
    m_length = length;
}

CBinaryData::CBinaryData(char const* data, unsigned long length)
    : m_data(CopyBlock(data, length)), m_length(length) {}

CBinaryData::CBinaryData(CBinaryData const& other)
    : m_data(CopyBlock(other.m_data, other.m_length)), m_length(other.m_length) {}

CBinaryData& CBinaryData::operator=(CBinaryData const& other) {
    if (this != &other)
        Replace(CopyBlock(other.m_data, other.m_length), other.m_length);
    return *this;
}

CBinaryData::~CBinaryData() {
    std::free(m_data);
}

void CBinaryData::Replace(char* data, unsigned long length) noexcept {
    std::free(m_data);
    m_data = data;
    m_length = data == nullptr ? 0 : length;
}

void CBinaryData::Truncate(unsigned long newLength) {
    if (newLength > m_length)
        throw CIllegalArgumentException(kUnit, kTruncateLine, "Invalid new data length.");
    if (newLength == 0)
        Replace(nullptr, 0);
    else
        m_length = newLength;
}

int CBinaryData::Compare(CBinaryData const& other) const {
    if (m_length != other.m_length)
        return m_length < other.m_length ? -1 : 1;
    if (m_length == 0)
        return 0;
    int const c = std::memcmp(m_data, other.m_data, m_length);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

CString CBinaryData::ToBinHexString() const {
    CString out;
    ToBinHexString(out);
    return out;
}

CUnicodeString CBinaryData::ToBinHexUnicodeString() const {
    CUnicodeString out;
    ToBinHexUnicodeString(out);
    return out;
}

void CBinaryData::ToBinHexString(CString& out) const {
    if (m_length == 0)
        out.Empty();
    else
        ToBinHexString(m_data, m_length, out);
}

void CBinaryData::ToBinHexUnicodeString(CUnicodeString& out) const {
    if (m_length == 0)
        out.Empty();
    else
        ToBinHexUnicodeString(m_data, m_length, out);
}

void CBinaryData::FromBinHexString(char const* text) {
    if (text == nullptr || *text == '\0')
        throw CIllegalArgumentException(kUnit, kFromBinHexLine, "Invalid value buffer.");
    Replace(nullptr, 0);
    ParseBinHexString(text, m_data, m_length);
}

void CBinaryData::FromBinHexString(char const* text, unsigned long length) {
    if (text == nullptr || length == 0)
        throw CIllegalArgumentException(kUnit, kFromBinHexLine, "Invalid value buffer.");
    Replace(nullptr, 0);
    ParseBinHexString(text, length, m_data, m_length);
}

void CBinaryData::FromBinHexUnicodeString(unsigned short const* text) {
    if (text == nullptr || *text == 0)
        throw CIllegalArgumentException(kUnit, kFromBinHexLine, "Invalid value buffer.");
    Replace(nullptr, 0);
    ParseBinHexUnicodeString(text, m_data, m_length);
}

void CBinaryData::FromBinHexUnicodeString(unsigned short const* text, unsigned long length) {
    if (text == nullptr || length == 0)
        throw CIllegalArgumentException(kUnit, kFromBinHexLine, "Invalid value buffer.");
    Replace(nullptr, 0);
    ParseBinHexUnicodeString(text, length, m_data, m_length);
}

void CBinaryData::ToBase64String(char const* data, unsigned long length, CString& out) {
    EncodeBase64<CString, char>(data, length, out);
}

CString CBinaryData::ToBase64String(char const* data, unsigned long length) {
    CString out;
    EncodeBase64<CString, char>(data, length, out);
    return out;
}

void CBinaryData::ToBase64UnicodeString(char const* data, unsigned long length,
                                        CUnicodeString& out) {
    EncodeBase64<CUnicodeString, unsigned short>(data, length, out);
}

CUnicodeString CBinaryData::ToBase64UnicodeString(char const* data, unsigned long length) {
    CUnicodeString out;
    EncodeBase64<CUnicodeString, unsigned short>(data, length, out);
    return out;
}

void CBinaryData::ToBinHexString(char const* data, unsigned long length, CString& out) {
    EncodeBinHex<CString, char>(data, length, out);
}

CString CBinaryData::ToBinHexString(char const* data, unsigned long length) {
    CString out;
    EncodeBinHex<CString, char>(data, length, out);
    return out;
}

void CBinaryData::ToBinHexUnicodeString(char const* data, unsigned long length,
                                        CUnicodeString& out) {
    EncodeBinHex<CUnicodeString, unsigned short>(data, length, out);
}

CUnicodeString CBinaryData::ToBinHexUnicodeString(char const* data, unsigned long length) {
    CUnicodeString out;
    EncodeBinHex<CUnicodeString, unsigned short>(data, length, out);
    return out;
}

void CBinaryData::ParseBase64String(CString const& text, char*& data, unsigned long& length) {
    DecodeBase64(static_cast<char const*>(text), text.GetLength(), data, length);
}

void CBinaryData::ParseBase64UnicodeString(CUnicodeString const& text, char*& data,
                                           unsigned long length) {
    DecodeBase64(static_cast<unsigned short const*>(text), text.GetLength(), data, length);
}

void CBinaryData::ParseBinHexString(CString const& text, char*& data, unsigned long& length) {
    DecodeBinHex(static_cast<char const*>(text), text.GetLength(), data, length, 269);
}

void CBinaryData::ParseBinHexString(char const* text, char*& data, unsigned long& length) {
    data = nullptr;
    length = 0;
    if (text == nullptr || *text == '\0')
        throw CIllegalArgumentException(kUnit, kParseNullLine, "Invalid value buffer.");
    DecodeBinHex(text, std::strlen(text), data, length, 269);
}

void CBinaryData::ParseBinHexString(char const* text, unsigned long textLength, char*& data,
                                    unsigned long& length) {
    data = nullptr;
    length = 0;
    if (text == nullptr)
        throw CIllegalArgumentException(kUnit, kParseNullLengthLine, "Invalid value buffer.");
    if (textLength == 0)
        throw CIllegalArgumentException(kUnit, kParseEmptyLengthLine,
                                        "Invalid value buffer length.");
    DecodeBinHex(text, textLength, data, length, 269);
}

void CBinaryData::ParseBinHexUnicodeString(CUnicodeString const& text, char*& data,
                                           unsigned long& length) {
    DecodeBinHex(static_cast<unsigned short const*>(text), text.GetLength(), data, length, 285);
}

void CBinaryData::ParseBinHexUnicodeString(unsigned short const* text, char*& data,
                                           unsigned long& length) {
    data = nullptr;
    length = 0;
    if (text == nullptr || *text == 0)
        throw CIllegalArgumentException(kUnit, kParseNullLine, "Invalid value buffer.");
    DecodeBinHex(text, UnitLength(text), data, length, 285);
}

void CBinaryData::ParseBinHexUnicodeString(unsigned short const* text, unsigned long textLength,
                                           char*& data, unsigned long& length) {
    data = nullptr;
    length = 0;
    if (text == nullptr)
        throw CIllegalArgumentException(kUnit, kParseNullLengthLine, "Invalid value buffer.");
    if (textLength == 0)
        throw CIllegalArgumentException(kUnit, kParseEmptyLengthLine,
                                        "Invalid value buffer length.");
    DecodeBinHex(text, textLength, data, length, 285);
}

} // namespace base
} // namespace lumo
