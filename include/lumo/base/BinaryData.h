// CBinaryData: an owned block of bytes on the C heap, with its base64 and binhex text
// forms and static encoders and decoders between raw bytes and those texts.
#ifndef LUMO_BASE_BINARYDATA_H
#define LUMO_BASE_BINARYDATA_H

#include <lumo/Config.h>
#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>

namespace lumo {
namespace base {

/// An owned block of bytes on the C heap, with two text forms: base64 (standard
/// alphabet, "=" padding, no line breaks) and binhex (two upper-case hexadecimal
/// digits per byte, high nibble first). Each form exists for 8-bit and UTF-16 text.
///
/// Blocks returned by the Parse helpers belong to the caller, who frees them with
/// `free`. Failures: CIllegalArgumentException for bad arguments, CNumberFormatException
/// for malformed text, CMemoryException when memory runs out (file
/// lumo/base/BinaryData).
class LUMO_API CBinaryData {
public:
    CBinaryData() noexcept : m_data(nullptr), m_length(0) {}
    /// `length` zero bytes.
    explicit CBinaryData(unsigned long length);
    /// A copy of `length` bytes at `data`; a null `data` with a non-zero length throws
    /// CIllegalArgumentException "Illegal data pointer.".
    CBinaryData(char const* data, unsigned long length);
    /// A copy of the other block's bytes; CMemoryException when they cannot be allocated.
    CBinaryData(CBinaryData const& other);
    /// Replaces the bytes with a copy of the other block's; on CMemoryException the block keeps its
    /// old bytes.
    CBinaryData& operator=(CBinaryData const& other);
    ~CBinaryData();

    /// Null when the length is 0.
    ///@{
    char* GetData() { return m_data; }
    char const* GetData() const { return m_data; }
    ///@}
    /// The number of bytes.
    unsigned long GetDataLength() const { return m_length; }

    /// Lowers the length, keeping the memory; 0 frees it. A length above the present
    /// one throws CIllegalArgumentException "Invalid new data length.".
    void Truncate(unsigned long newLength);

    /// -1, 0 or 1: a shorter block is smaller whatever its bytes; blocks of equal
    /// length compare as unsigned bytes.
    int Compare(CBinaryData const& other) const;
    /// Equal when Compare gives 0: same length and same bytes.
    ///@{
    bool operator==(CBinaryData const& other) const { return Compare(other) == 0; }
    bool operator!=(CBinaryData const& other) const { return Compare(other) != 0; }
    ///@}

    /// The block as binhex text (two upper-case digits per byte); an empty block gives an empty
    /// text.
    ///@{
    CString ToBinHexString() const;
    CUnicodeString ToBinHexUnicodeString() const;
    void ToBinHexString(CString& out) const;
    void ToBinHexUnicodeString(CUnicodeString& out) const;
    ///@}

    /// Replace the bytes with the decoded text. The old bytes are freed first, so a
    /// malformed text leaves the block empty. An empty text throws
    /// CIllegalArgumentException "Invalid value buffer.".
    ///@{
    void FromBinHexString(char const* text);
    void FromBinHexString(char const* text, unsigned long length);
    void FromBinHexUnicodeString(unsigned short const* text);
    void FromBinHexUnicodeString(unsigned short const* text, unsigned long length);
    ///@}

    /// Encoders over raw bytes. A null or unreadable `data` throws
    /// CIllegalArgumentException "Illegal data pointer."; a length of 0 gives an empty
    /// text.
    ///@{
    static void ToBase64String(char const* data, unsigned long length, CString& out);
    static CString ToBase64String(char const* data, unsigned long length);
    static void ToBase64UnicodeString(char const* data, unsigned long length, CUnicodeString& out);
    static CUnicodeString ToBase64UnicodeString(char const* data, unsigned long length);
    static void ToBinHexString(char const* data, unsigned long length, CString& out);
    static CString ToBinHexString(char const* data, unsigned long length);
    static void ToBinHexUnicodeString(char const* data, unsigned long length, CUnicodeString& out);
    static CUnicodeString ToBinHexUnicodeString(char const* data, unsigned long length);
    ///@}

    /// Base64 decoders. The text length must be a multiple of 4 ("Invalid base64
    /// encoded binary data."); padding is accepted in any group; any character outside
    /// the alphabet, white space included, throws "Invalid base 64 char found.". An
    /// empty text gives null and 0. On failure the outputs are null and 0.
    static void ParseBase64String(CString const& text, char*& data, unsigned long& length);
    /// `length` is taken by value: this form cannot report the decoded length, which
    /// is three bytes per group of four characters less one per "=".
    static void ParseBase64UnicodeString(CUnicodeString const& text, char*& data,
                                         unsigned long length);

    /// Binhex decoders: an even number of digits 0-9 and A-F (upper case only). An
    /// odd length throws "Invalid binhex encoded binary data.", a bad digit "Invalid
    /// binhex digit." (CNumberFormatException). The raw-pointer forms throw
    /// CIllegalArgumentException "Invalid value buffer." for a null (or, without a
    /// length, empty) text and "Invalid value buffer length." for a length of 0. On
    /// failure the outputs are null and 0.
    ///@{
    static void ParseBinHexString(CString const& text, char*& data, unsigned long& length);
    static void ParseBinHexString(char const* text, char*& data, unsigned long& length);
    static void ParseBinHexString(char const* text, unsigned long textLength, char*& data,
                                  unsigned long& length);
    static void ParseBinHexUnicodeString(CUnicodeString const& text, char*& data,
                                         unsigned long& length);
    static void ParseBinHexUnicodeString(unsigned short const* text, char*& data,
                                         unsigned long& length);
    static void ParseBinHexUnicodeString(unsigned short const* text, unsigned long textLength,
                                         char*& data, unsigned long& length);
    ///@}

private:
    void Replace(char* data, unsigned long length) noexcept;

    char* m_data;
    unsigned long m_length;
};

} // namespace base
} // namespace lumo

#endif
