// The typed reads, attribute reads and composed element reads that every XML reader
// shares, with the reader layer's mapping of lower-level failures to its own messages.
#include <lumo/io/XMLReader.h>

#include <lumo/base/BinaryData.h>
#include <lumo/base/Exception.h>
#include <vela/Ucs.h>

#include "detail/CaughtExceptionLog.h"
#include "detail/XMLTokenSearch.h"

#include <cstdlib>

namespace lumo {
namespace io {

using base::CException;
using base::CMemoryException;
using base::CUnicodeString;

namespace {

char const kUnit[] = "lumo/io/XMLReader";

unsigned short const kFalse[] = {'f', 'a', 'l', 's', 'e', 0};
unsigned short const kTrue[] = {'t', 'r', 'u', 'e', 0};
unsigned short const kShortFormat[] = {'%', 'h', 'd', 0};
unsigned short const kLongFormat[] = {'%', 'l', 'd', 0};
unsigned short const kUnsignedLongFormat[] = {'%', 'l', 'u', 0};
unsigned short const kFloatFormat[] = {'%', 'f', 0};
unsigned short const kDoubleFormat[] = {'%', 'l', 'f', 0};

[[noreturn]] void Replace(CException const& caught, int line, char const* message) {
    detail::LogCaught(caught);
    throw CIOException(kUnit, static_cast<unsigned long>(line), message, nullptr);
}

template <class F> auto Guard(int line, char const* failure, F&& body) -> decltype(body()) {
    return detail::MapReadFailures(kUnit, line, failure, static_cast<F&&>(body));
}

bool ParseBool(CUnicodeString const& text, int line) {
    if (text == kFalse)
        return false;
    if (text == kTrue)
        return true;
    throw CIOException(kUnit, static_cast<unsigned long>(line), "Invalid bool literal.", nullptr);
}

// A scan, not a parse: trailing text after the number is ignored.
template <class T>
T Scan(CUnicodeString const& text, unsigned short const* format, char const* invalid, int line) {
    T value{};
    if (Vela::suscanf(text, format, &value) <= 0)
        throw CIOException(kUnit, static_cast<unsigned long>(line), invalid, nullptr);
    return value;
}

CUnicodeString TrimmedValue(CXMLReader const& reader) {
    CUnicodeString value = reader.GetCurrentToken()->GetValue();
    value.TrimLeft();
    value.TrimRight();
    return value;
}

// The typed value of a text, the one table of formats and invalid-literal messages.
// Only the unsigned long message tells an attribute from element content.
template <class T> T ValueOf(CUnicodeString const& text, bool attribute, int line);

template <> bool ValueOf<bool>(CUnicodeString const& text, bool, int line) {
    return ParseBool(text, line);
}
template <> short ValueOf<short>(CUnicodeString const& text, bool, int line) {
    return Scan<short>(text, kShortFormat, "Invalid short literal.", line);
}
template <> long ValueOf<long>(CUnicodeString const& text, bool, int line) {
    return Scan<long>(text, kLongFormat, "Invalid long literal.", line);
}
template <>
unsigned long ValueOf<unsigned long>(CUnicodeString const& text, bool attribute, int line) {
    return Scan<unsigned long>(
        text, kUnsignedLongFormat,
        attribute ? "Invalid unsigned long literal." : "Invalid long literal.", line);
}
template <> float ValueOf<float>(CUnicodeString const& text, bool, int line) {
    return Scan<float>(text, kFloatFormat, "Invalid float literal.", line);
}
template <> double ValueOf<double>(CUnicodeString const& text, bool, int line) {
    return Scan<double>(text, kDoubleFormat, "Invalid double literal.", line);
}

// The current token's value, trimmed, as T; `failure` replaces other failures.
template <class T> T CurrentAs(CXMLReader const& reader, int line, char const* failure) {
    return Guard(line, failure, [&] { return ValueOf<T>(TrimmedValue(reader), false, line); });
}

// The attribute value that `read` gives, untrimmed, as T.
template <class T, class Read> T AttributeAs(int line, Read&& read) {
    return Guard(line, nullptr, [&] { return ValueOf<T>(read(), true, line); });
}

// Decodes into `data`/`size`, mapping the decoder's failures for the binary reads.
template <class Decode>
void DecodeBinary(int line, char const* failure, char*& data, unsigned long& size,
                  Decode&& decode) {
    try {
        decode();
    } catch (CIOException const&) {
        throw;
    } catch (CMemoryException const&) {
        throw;
    } catch (base::CNumberFormatException const& e) {
        Replace(e, line, "Invalid binhex encoded string literal.");
    } catch (CException const& e) {
        data = nullptr;
        size = 0;
        Replace(e, line, failure);
    }
}

// Names one element for the composed reads: by (local name, URI) or by qualified name.
struct ElementName {
    unsigned short const* name;
    unsigned short const* namespaceURI;
    bool qualified;
};

void Start(CXMLReader& reader, ElementName const& element) {
    if (element.qualified)
        reader.ReadStartElement(element.name);
    else
        reader.ReadStartElement(element.name, element.namespaceURI);
}

void End(CXMLReader& reader, ElementName const& element) {
    if (element.qualified)
        reader.ReadEndElement(element.name);
    else
        reader.ReadEndElement(element.name, element.namespaceURI);
}

template <class Read>
auto ReadElement(CXMLReader& reader, ElementName const& element, Read&& read) -> decltype(read()) {
    Start(reader, element);
    reader.ReadElementText();
    auto value = read();
    End(reader, element);
    return value;
}

template <class Read>
void ReadBinaryElement(CXMLReader& reader, ElementName const& element, char*& data,
                       unsigned long& size, Read&& read) {
    Start(reader, element);
    // An empty element is the empty block, as the writers write it: the text search
    // alone would run on past its end into whatever text follows.
    if (!reader.ReadElementTextIfAvailable()) {
        if (reader.ReadToken() && reader.GetCurrentTokenType() == XMLTokenEndElement) {
            data = nullptr;
            size = 0;
            return;
        }
        reader.ReadElementText();
    }
    read();
    try {
        End(reader, element);
    } catch (...) {
        // The caller never sees the buffer: release it rather than leak it.
        std::free(data);
        data = nullptr;
        size = 0;
        throw;
    }
}

} // namespace

LUMO_DEFINE_CLASS(CXMLReader, "lumo::io::CXMLReader", "lumo::base::CObject");

CXMLReader::~CXMLReader() {}

XMLTokenType CXMLReader::GetCurrentTokenType() {
    return Guard(__LINE__, "Failed to get the token type of current XML token.",
                 [&] { return GetCurrentToken()->GetType(); });
}

CUnicodeString CXMLReader::GetCurrentTokenValue() {
    return Guard(__LINE__, "Failed to get the value of current XML token.",
                 [&] { return GetCurrentToken()->GetValue(); });
}

bool CXMLReader::ReadBool() const {
    return CurrentAs<bool>(*this, __LINE__, "Failed to read the value of current token as bool.");
}

short CXMLReader::ReadShort() const {
    return CurrentAs<short>(*this, __LINE__, "Failed to read the value of current token as short.");
}

long CXMLReader::ReadLong() const {
    return CurrentAs<long>(*this, __LINE__, "Failed to read the value of current token as long.");
}

unsigned long CXMLReader::ReadUnsignedLong() const {
    return CurrentAs<unsigned long>(*this, __LINE__,
                                    "Failed to read the value of current token as unsigned long.");
}

float CXMLReader::ReadFloat() const {
    return CurrentAs<float>(*this, __LINE__, "Failed to read the value of current token as float.");
}

double CXMLReader::ReadDouble() const {
    return CurrentAs<double>(*this, __LINE__,
                             "Failed to read the value of current token as double.");
}

CUnicodeString CXMLReader::ReadString() {
    return Guard(__LINE__, nullptr, [&] { return GetCurrentToken()->GetValue(); });
}

void CXMLReader::ReadBinHex(char*& data, unsigned long& size) const {
    DecodeBinary(__LINE__,
                 "Failed to read the value of current token as binhex encoded binary data.", data,
                 size, [&] {
                     CUnicodeString const text = TrimmedValue(*this);
                     base::CBinaryData::ParseBinHexUnicodeString(text, data, size);
                 });
}

void CXMLReader::ReadBase64(char*& data, unsigned long& size) const {
    DecodeBinary(__LINE__,
                 "Failed to read the value of current token as base64 encoded binary data.", data,
                 size, [&] {
                     CUnicodeString const text = TrimmedValue(*this);
                     // The decoder cannot report the length: three bytes per group of
                     // four characters, less one per padding character.
                     unsigned long length = text.GetLength() / 4 * 3;
                     for (unsigned long i = 0; i < text.GetLength(); ++i)
                         if (text.GetAt(i) == '=' && length > 0)
                             --length;
                     base::CBinaryData::ParseBase64UnicodeString(text, data, length);
                     size = data == nullptr ? 0 : length;
                 });
}

IXMLStartElementToken const& CXMLReader::CurrentStartElement(int line) const {
    return detail::StartElementOf(GetCurrentToken().Get(), kUnit, line);
}

bool CXMLReader::HasAttribute(unsigned short const* localName, unsigned short const* namespaceURI) {
    return CurrentStartElement(__LINE__).HasAttribute(localName, namespaceURI);
}

bool CXMLReader::HasAttribute(unsigned short const* name) {
    return CurrentStartElement(__LINE__).HasAttribute(name);
}

CUnicodeString CXMLReader::ReadAttribute(unsigned short const* localName,
                                         unsigned short const* namespaceURI) {
    return CurrentStartElement(__LINE__).GetAttribute(localName, namespaceURI);
}

CUnicodeString CXMLReader::ReadAttribute(unsigned short const* name) {
    return CurrentStartElement(__LINE__).GetAttribute(name);
}

// The typed attribute reads: the value is converted untrimmed.
bool CXMLReader::ReadAttrBool(unsigned short const* localName, unsigned short const* namespaceURI) {
    return AttributeAs<bool>(__LINE__, [&] { return ReadAttribute(localName, namespaceURI); });
}

bool CXMLReader::ReadAttrBool(unsigned short const* name) {
    return AttributeAs<bool>(__LINE__, [&] { return ReadAttribute(name); });
}

short CXMLReader::ReadAttrShort(unsigned short const* localName,
                                unsigned short const* namespaceURI) {
    return AttributeAs<short>(__LINE__, [&] { return ReadAttribute(localName, namespaceURI); });
}

short CXMLReader::ReadAttrShort(unsigned short const* name) {
    return AttributeAs<short>(__LINE__, [&] { return ReadAttribute(name); });
}

long CXMLReader::ReadAttrLong(unsigned short const* localName, unsigned short const* namespaceURI) {
    return AttributeAs<long>(__LINE__, [&] { return ReadAttribute(localName, namespaceURI); });
}

long CXMLReader::ReadAttrLong(unsigned short const* name) {
    return AttributeAs<long>(__LINE__, [&] { return ReadAttribute(name); });
}

unsigned long CXMLReader::ReadAttrUnsignedLong(unsigned short const* localName,
                                               unsigned short const* namespaceURI) {
    return AttributeAs<unsigned long>(__LINE__,
                                      [&] { return ReadAttribute(localName, namespaceURI); });
}

unsigned long CXMLReader::ReadAttrUnsignedLong(unsigned short const* name) {
    return AttributeAs<unsigned long>(__LINE__, [&] { return ReadAttribute(name); });
}

float CXMLReader::ReadAttrFloat(unsigned short const* localName,
                                unsigned short const* namespaceURI) {
    return AttributeAs<float>(__LINE__, [&] { return ReadAttribute(localName, namespaceURI); });
}

float CXMLReader::ReadAttrFloat(unsigned short const* name) {
    return AttributeAs<float>(__LINE__, [&] { return ReadAttribute(name); });
}

double CXMLReader::ReadAttrDouble(unsigned short const* localName,
                                  unsigned short const* namespaceURI) {
    return AttributeAs<double>(__LINE__, [&] { return ReadAttribute(localName, namespaceURI); });
}

double CXMLReader::ReadAttrDouble(unsigned short const* name) {
    return AttributeAs<double>(__LINE__, [&] { return ReadAttribute(name); });
}

void CXMLReader::ReadCDATA(CUnicodeString& text) {
    Guard(__LINE__, "Failed to read XML CDATA token.", [&] {
        ReadCDATA();
        text = GetCurrentToken()->GetValue();
    });
}

void CXMLReader::ReadCDATA() {
    Guard(__LINE__, "Failed to read XML CDATA token.", [&] {
        while (ReadToken())
            if (GetCurrentToken()->GetType() == XMLTokenCDATA)
                return;
        throw CIOException(kUnit, __LINE__, "End of stream reached.", nullptr);
    });
}

bool CXMLReader::ReadElementBool(unsigned short const* localName,
                                 unsigned short const* namespaceURI) {
    return ReadElement(*this, {localName, namespaceURI, false}, [&] { return ReadBool(); });
}

bool CXMLReader::ReadElementBool(unsigned short const* name) {
    return ReadElement(*this, {name, nullptr, true}, [&] { return ReadBool(); });
}

short CXMLReader::ReadElementShort(unsigned short const* localName,
                                   unsigned short const* namespaceURI) {
    return ReadElement(*this, {localName, namespaceURI, false}, [&] { return ReadShort(); });
}

short CXMLReader::ReadElementShort(unsigned short const* name) {
    return ReadElement(*this, {name, nullptr, true}, [&] { return ReadShort(); });
}

long CXMLReader::ReadElementLong(unsigned short const* localName,
                                 unsigned short const* namespaceURI) {
    return ReadElement(*this, {localName, namespaceURI, false}, [&] { return ReadLong(); });
}

long CXMLReader::ReadElementLong(unsigned short const* name) {
    return ReadElement(*this, {name, nullptr, true}, [&] { return ReadLong(); });
}

unsigned long CXMLReader::ReadElementUnsignedLong(unsigned short const* localName,
                                                  unsigned short const* namespaceURI) {
    return ReadElement(*this, {localName, namespaceURI, false}, [&] { return ReadUnsignedLong(); });
}

unsigned long CXMLReader::ReadElementUnsignedLong(unsigned short const* name) {
    return ReadElement(*this, {name, nullptr, true}, [&] { return ReadUnsignedLong(); });
}

float CXMLReader::ReadElementFloat(unsigned short const* localName,
                                   unsigned short const* namespaceURI) {
    return ReadElement(*this, {localName, namespaceURI, false}, [&] { return ReadFloat(); });
}

float CXMLReader::ReadElementFloat(unsigned short const* name) {
    return ReadElement(*this, {name, nullptr, true}, [&] { return ReadFloat(); });
}

double CXMLReader::ReadElementDouble(unsigned short const* localName,
                                     unsigned short const* namespaceURI) {
    return ReadElement(*this, {localName, namespaceURI, false}, [&] { return ReadDouble(); });
}

double CXMLReader::ReadElementDouble(unsigned short const* name) {
    return ReadElement(*this, {name, nullptr, true}, [&] { return ReadDouble(); });
}

namespace {

// An empty element reads as the empty string.
CUnicodeString ReadStringElement(CXMLReader& reader, ElementName const& element) {
    Start(reader, element);
    CUnicodeString const value =
        Guard(__LINE__, "Failed to read element with string content.", [&] {
            return reader.ReadElementTextIfAvailable() ? reader.GetCurrentToken()->GetValue()
                                                       : CUnicodeString();
        });
    End(reader, element);
    return value;
}

} // namespace

CUnicodeString CXMLReader::ReadElementString(unsigned short const* localName,
                                             unsigned short const* namespaceURI) {
    return ReadStringElement(*this, {localName, namespaceURI, false});
}

CUnicodeString CXMLReader::ReadElementString(unsigned short const* name) {
    return ReadStringElement(*this, {name, nullptr, true});
}

void CXMLReader::ReadElementBinHex(unsigned short const* localName,
                                   unsigned short const* namespaceURI, char*& data,
                                   unsigned long& size) {
    ReadBinaryElement(*this, {localName, namespaceURI, false}, data, size,
                      [&] { ReadBinHex(data, size); });
}

void CXMLReader::ReadElementBinHex(unsigned short const* name, char*& data, unsigned long& size) {
    ReadBinaryElement(*this, {name, nullptr, true}, data, size, [&] { ReadBinHex(data, size); });
}

void CXMLReader::ReadElementBase64(unsigned short const* localName,
                                   unsigned short const* namespaceURI, char*& data,
                                   unsigned long& size) {
    ReadBinaryElement(*this, {localName, namespaceURI, false}, data, size,
                      [&] { ReadBase64(data, size); });
}

void CXMLReader::ReadElementBase64(unsigned short const* name, char*& data, unsigned long& size) {
    ReadBinaryElement(*this, {name, nullptr, true}, data, size, [&] { ReadBase64(data, size); });
}

void CXMLReader::ReadObject(IXMLSerializable& object) {
    object.ReadXML(*this);
}

} // namespace io
} // namespace lumo
