// The XML writer base: its class record and the typed writes it implements by
// formatting values into text and handing them to the writer's text primitives.
#include <lumo/io/XMLWriter.h>

#include <lumo/base/BinaryData.h>
#include <lumo/base/UnicodeString.h>
#include <vela/Ucs.h>

#include "detail/XMLValueText.h"

namespace lumo {
namespace io {

namespace {

unsigned short const kFormatFloat[] = {'%', 'f', 0};
unsigned short const kFormatDouble[] = {'%', 'l', 'f', 0};

// "%f" of the largest double has 309 digits before the point and six after it.
unsigned long const kFixedUnits = 328;

// One number in the base's "%f" form, kept on the stack for the length of a call.
class CFixedText {
public:
    CFixedText(unsigned short const* format, double value) {
        if (Vela::snuprintf(m_text, kFixedUnits, format, value) < 0)
            m_text[0] = 0;
    }
    operator unsigned short const*() const { return m_text; }

private:
    unsigned short m_text[kFixedUnits];
};

// The base's text of each value type: "true"/"false", "%d", "%ld", "%lu", "%f", "%lf".
detail::CXMLValueText Text(bool value) {
    return detail::CXMLValueText(value);
}
detail::CXMLValueText Text(short value) {
    return detail::CXMLValueText(value);
}
detail::CXMLValueText Text(long value) {
    return detail::CXMLValueText(value);
}
detail::CXMLValueText Text(unsigned long value) {
    return detail::CXMLValueText(value);
}
CFixedText Text(float value) {
    return CFixedText(kFormatFloat, static_cast<double>(value));
}
CFixedText Text(double value) {
    return CFixedText(kFormatDouble, value);
}

base::CUnicodeString Base64Text(char const* data, unsigned long offset, unsigned long length) {
    if (data == nullptr)
        return base::CUnicodeString();
    return base::CBinaryData::ToBase64UnicodeString(data + offset, length);
}

base::CUnicodeString BinHexText(char const* data, unsigned long offset, unsigned long length) {
    if (data == nullptr)
        return base::CUnicodeString();
    return base::CBinaryData::ToBinHexUnicodeString(data + offset, length);
}

} // namespace

LUMO_DEFINE_CLASS(CXMLWriter, "lumo::io::CXMLWriter", "lumo::base::CObject");

CXMLWriter::~CXMLWriter() {}

void CXMLWriter::WriteElementBool(unsigned short const* local, unsigned short const* uri,
                                  bool value) {
    WriteElementString(local, uri, Text(value));
}

void CXMLWriter::WriteElementBool(unsigned short const* name, bool value) {
    WriteElementString(name, Text(value));
}

void CXMLWriter::WriteElementShort(unsigned short const* local, unsigned short const* uri,
                                   short value) {
    WriteElementString(local, uri, Text(value));
}

void CXMLWriter::WriteElementShort(unsigned short const* name, short value) {
    WriteElementString(name, Text(value));
}

void CXMLWriter::WriteElementLong(unsigned short const* local, unsigned short const* uri,
                                  long value) {
    WriteElementString(local, uri, Text(value));
}

void CXMLWriter::WriteElementLong(unsigned short const* name, long value) {
    WriteElementString(name, Text(value));
}

void CXMLWriter::WriteElementUnsignedLong(unsigned short const* local, unsigned short const* uri,
                                          unsigned long value) {
    WriteElementString(local, uri, Text(value));
}

void CXMLWriter::WriteElementUnsignedLong(unsigned short const* name, unsigned long value) {
    WriteElementString(name, Text(value));
}

void CXMLWriter::WriteElementFloat(unsigned short const* local, unsigned short const* uri,
                                   float value) {
    WriteElementString(local, uri, Text(value));
}

void CXMLWriter::WriteElementFloat(unsigned short const* name, float value) {
    WriteElementString(name, Text(value));
}

void CXMLWriter::WriteElementDouble(unsigned short const* local, unsigned short const* uri,
                                    double value) {
    WriteElementString(local, uri, Text(value));
}

void CXMLWriter::WriteElementDouble(unsigned short const* name, double value) {
    WriteElementString(name, Text(value));
}

void CXMLWriter::WriteElementBinHex(unsigned short const* local, unsigned short const* uri,
                                    char const* data, unsigned long offset, unsigned long length) {
    WriteElementString(local, uri, BinHexText(data, offset, length));
}

void CXMLWriter::WriteElementBinHex(unsigned short const* name, char const* data,
                                    unsigned long offset, unsigned long length) {
    WriteElementString(name, BinHexText(data, offset, length));
}

void CXMLWriter::WriteElementBase64(unsigned short const* local, unsigned short const* uri,
                                    char const* data, unsigned long offset, unsigned long length) {
    WriteElementString(local, uri, Base64Text(data, offset, length));
}

void CXMLWriter::WriteElementBase64(unsigned short const* name, char const* data,
                                    unsigned long offset, unsigned long length) {
    WriteElementString(name, Base64Text(data, offset, length));
}

void CXMLWriter::WriteAttrBool(unsigned short const* local, unsigned short const* uri, bool value) {
    WriteAttribute(local, uri, Text(value));
}

void CXMLWriter::WriteAttrBool(unsigned short const* name, bool value) {
    WriteAttribute(name, Text(value));
}

void CXMLWriter::WriteAttrShort(unsigned short const* local, unsigned short const* uri,
                                short value) {
    WriteAttribute(local, uri, Text(value));
}

void CXMLWriter::WriteAttrShort(unsigned short const* name, short value) {
    WriteAttribute(name, Text(value));
}

void CXMLWriter::WriteAttrLong(unsigned short const* local, unsigned short const* uri, long value) {
    WriteAttribute(local, uri, Text(value));
}

void CXMLWriter::WriteAttrLong(unsigned short const* name, long value) {
    WriteAttribute(name, Text(value));
}

void CXMLWriter::WriteAttrUnsignedLong(unsigned short const* local, unsigned short const* uri,
                                       unsigned long value) {
    WriteAttribute(local, uri, Text(value));
}

void CXMLWriter::WriteAttrUnsignedLong(unsigned short const* name, unsigned long value) {
    WriteAttribute(name, Text(value));
}

void CXMLWriter::WriteAttrFloat(unsigned short const* local, unsigned short const* uri,
                                float value) {
    WriteAttribute(local, uri, Text(value));
}

void CXMLWriter::WriteAttrFloat(unsigned short const* name, float value) {
    WriteAttribute(name, Text(value));
}

void CXMLWriter::WriteAttrDouble(unsigned short const* local, unsigned short const* uri,
                                 double value) {
    WriteAttribute(local, uri, Text(value));
}

void CXMLWriter::WriteAttrDouble(unsigned short const* name, double value) {
    WriteAttribute(name, Text(value));
}

void CXMLWriter::WriteBool(bool value) {
    WriteString(Text(value));
}

void CXMLWriter::WriteShort(short value) {
    WriteString(Text(value));
}

void CXMLWriter::WriteLong(long value) {
    WriteString(Text(value));
}

void CXMLWriter::WriteUnsignedLong(unsigned long value) {
    WriteString(Text(value));
}

void CXMLWriter::WriteFloat(float value) {
    WriteString(Text(value));
}

void CXMLWriter::WriteDouble(double value) {
    WriteString(Text(value));
}

void CXMLWriter::WriteBase64(char const* data, unsigned long offset, unsigned long length) {
    WriteString(Base64Text(data, offset, length));
}

void CXMLWriter::WriteBinHex(char const* data, unsigned long offset, unsigned long length) {
    WriteString(BinHexText(data, offset, length));
}

void CXMLWriter::WriteObject(IXMLSerializable const& object) {
    // The interface's writing operation is not const, though writing an object out
    // leaves it as it was.
    const_cast<IXMLSerializable&>(object).WriteXML(*this);
}

} // namespace io
} // namespace lumo
