// The XML writer base: its class record and the typed writes it implements by
// formatting values into text and handing them to the writer's text primitives.
#include <lumo/io/XMLWriter.h>

#include <lumo/base/BinaryData.h>
#include <lumo/base/UnicodeString.h>
#include <vela/Ucs.h>

namespace lumo {
namespace io {

namespace {

unsigned short const kTrue[] = {'t', 'r', 'u', 'e', 0};
unsigned short const kFalse[] = {'f', 'a', 'l', 's', 'e', 0};
unsigned short const kFormatShort[] = {'%', 'd', 0};
unsigned short const kFormatLong[] = {'%', 'l', 'd', 0};
unsigned short const kFormatUnsignedLong[] = {'%', 'l', 'u', 0};
unsigned short const kFormatFloat[] = {'%', 'f', 0};
unsigned short const kFormatDouble[] = {'%', 'l', 'f', 0};

// "%f" of the largest double has 309 digits before the point and six after it.
unsigned long const kNumberUnits = 328;

// One formatted number, kept on the stack for the length of a call.
class CNumberText {
public:
    template <typename T> CNumberText(unsigned short const* format, T value) {
        if (Vela::snuprintf(m_text, kNumberUnits, format, value) < 0)
            m_text[0] = 0;
    }
    operator unsigned short const*() const { return m_text; }

private:
    unsigned short m_text[kNumberUnits];
};

unsigned short const* BoolText(bool value) {
    return value ? kTrue : kFalse;
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
    WriteElementString(local, uri, BoolText(value));
}

void CXMLWriter::WriteElementBool(unsigned short const* name, bool value) {
    WriteElementString(name, BoolText(value));
}

void CXMLWriter::WriteElementShort(unsigned short const* local, unsigned short const* uri,
                                   short value) {
    WriteElementString(local, uri, CNumberText(kFormatShort, static_cast<int>(value)));
}

void CXMLWriter::WriteElementShort(unsigned short const* name, short value) {
    WriteElementString(name, CNumberText(kFormatShort, static_cast<int>(value)));
}

void CXMLWriter::WriteElementLong(unsigned short const* local, unsigned short const* uri,
                                  long value) {
    WriteElementString(local, uri, CNumberText(kFormatLong, value));
}

void CXMLWriter::WriteElementLong(unsigned short const* name, long value) {
    WriteElementString(name, CNumberText(kFormatLong, value));
}

void CXMLWriter::WriteElementUnsignedLong(unsigned short const* local, unsigned short const* uri,
                                          unsigned long value) {
    WriteElementString(local, uri, CNumberText(kFormatUnsignedLong, value));
}

void CXMLWriter::WriteElementUnsignedLong(unsigned short const* name, unsigned long value) {
    WriteElementString(name, CNumberText(kFormatUnsignedLong, value));
}

void CXMLWriter::WriteElementFloat(unsigned short const* local, unsigned short const* uri,
                                   float value) {
    WriteElementString(local, uri, CNumberText(kFormatFloat, static_cast<double>(value)));
}

void CXMLWriter::WriteElementFloat(unsigned short const* name, float value) {
    WriteElementString(name, CNumberText(kFormatFloat, static_cast<double>(value)));
}

void CXMLWriter::WriteElementDouble(unsigned short const* local, unsigned short const* uri,
                                    double value) {
    WriteElementString(local, uri, CNumberText(kFormatDouble, value));
}

void CXMLWriter::WriteElementDouble(unsigned short const* name, double value) {
    WriteElementString(name, CNumberText(kFormatDouble, value));
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
    WriteAttribute(local, uri, BoolText(value));
}

void CXMLWriter::WriteAttrBool(unsigned short const* name, bool value) {
    WriteAttribute(name, BoolText(value));
}

void CXMLWriter::WriteAttrShort(unsigned short const* local, unsigned short const* uri,
                                short value) {
    WriteAttribute(local, uri, CNumberText(kFormatShort, static_cast<int>(value)));
}

void CXMLWriter::WriteAttrShort(unsigned short const* name, short value) {
    WriteAttribute(name, CNumberText(kFormatShort, static_cast<int>(value)));
}

void CXMLWriter::WriteAttrLong(unsigned short const* local, unsigned short const* uri, long value) {
    WriteAttribute(local, uri, CNumberText(kFormatLong, value));
}

void CXMLWriter::WriteAttrLong(unsigned short const* name, long value) {
    WriteAttribute(name, CNumberText(kFormatLong, value));
}

void CXMLWriter::WriteAttrUnsignedLong(unsigned short const* local, unsigned short const* uri,
                                       unsigned long value) {
    WriteAttribute(local, uri, CNumberText(kFormatUnsignedLong, value));
}

void CXMLWriter::WriteAttrUnsignedLong(unsigned short const* name, unsigned long value) {
    WriteAttribute(name, CNumberText(kFormatUnsignedLong, value));
}

void CXMLWriter::WriteAttrFloat(unsigned short const* local, unsigned short const* uri,
                                float value) {
    WriteAttribute(local, uri, CNumberText(kFormatFloat, static_cast<double>(value)));
}

void CXMLWriter::WriteAttrFloat(unsigned short const* name, float value) {
    WriteAttribute(name, CNumberText(kFormatFloat, static_cast<double>(value)));
}

void CXMLWriter::WriteAttrDouble(unsigned short const* local, unsigned short const* uri,
                                 double value) {
    WriteAttribute(local, uri, CNumberText(kFormatDouble, value));
}

void CXMLWriter::WriteAttrDouble(unsigned short const* name, double value) {
    WriteAttribute(name, CNumberText(kFormatDouble, value));
}

void CXMLWriter::WriteBool(bool value) {
    WriteString(BoolText(value));
}

void CXMLWriter::WriteShort(short value) {
    WriteString(CNumberText(kFormatShort, static_cast<int>(value)));
}

void CXMLWriter::WriteLong(long value) {
    WriteString(CNumberText(kFormatLong, value));
}

void CXMLWriter::WriteUnsignedLong(unsigned long value) {
    WriteString(CNumberText(kFormatUnsignedLong, value));
}

void CXMLWriter::WriteFloat(float value) {
    WriteString(CNumberText(kFormatFloat, static_cast<double>(value)));
}

void CXMLWriter::WriteDouble(double value) {
    WriteString(CNumberText(kFormatDouble, value));
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
