// Tests of CDataOutputStream and CJavaDataOutputStream: the wire format, native and Java
// strings, the stream operators, serializable objects and Close.
#include "support/Streams.h"

#include <lumo/io/DataOutputStream.h>
#include <lumo/io/JavaDataOutputStream.h>
#include <lumo/io/MemoryOutputStream.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using lumo::base::CIllegalArgumentException;
using lumo::base::CRef;
using lumo::base::CUnicodeString;
using lumo::io::CDataOutputStream;
using lumo::io::CIOException;
using lumo::io::CJavaDataOutputStream;
using lumo::io::CMemoryOutputStream;
using lumo::io::COutputStream;
using lumo::io::ISerializable;
using lumotest::ExpectThrowWith;
using lumotest::RecordingOutputStream;

namespace {

std::vector<unsigned char> Bytes(RecordingOutputStream const& s) {
    return std::vector<unsigned char>(s.bytes.begin(), s.bytes.end());
}

struct Point : ISerializable {
    long x = 0, y = 0;
    void Deserialize(lumo::io::CDataInputStream&) override {}
    void Serialize(CDataOutputStream& out) const override { out << x << y; }
};

} // namespace

TEST(DataOutputStream, WireFormat) {
    using V = std::vector<unsigned char>;
    RecordingOutputStream sink;
    CDataOutputStream out(&sink);
    out.WriteInt32(0x01020304);
    EXPECT_EQ(Bytes(sink), (V{1, 2, 3, 4}));
    sink.bytes.clear();
    out.WriteInt16(-2);
    out.WriteUInt16(0xABCD);
    out.WriteInt32(-1L);
    out.WriteUInt32(0x8000000Ful);
    EXPECT_EQ(Bytes(sink), (V{0xFF, 0xFE, 0xAB, 0xCD, 0xFF, 0xFF, 0xFF, 0xFF, 0x80, 0, 0, 0x0F}));
    sink.bytes.clear();
    out.WriteFloat(1.0f);
    out.WriteDouble(1.0);
    EXPECT_EQ(Bytes(sink), (V{0, 0, 0x80, 0x3F, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F}));
    sink.bytes.clear();
    out.WriteBool(true);
    out.WriteBool(false);
    out.WriteByte(char(0x85));
    out.WriteUByte(0x7F);
    EXPECT_EQ(Bytes(sink), (V{1, 0, 0x85, 0x7F}));
    EXPECT_EQ(sink.charWrites, 4);
    // One write call per value on the wrapped stream.
    EXPECT_EQ(sink.blockWrites, (std::vector<unsigned long>{4, 2, 2, 4, 4, 4, 8}));
}

TEST(DataOutputStream, StringsNativeAndJava) {
    using V = std::vector<unsigned char>;
    RecordingOutputStream sink;
    CDataOutputStream out(&sink);
    out.WriteString(CUnicodeString("A"));
    EXPECT_EQ(Bytes(sink), (V{0, 0, 0, 1, 0x41}));
    sink.bytes.clear();
    out.WriteString(CUnicodeString());
    EXPECT_EQ(Bytes(sink), (V{0, 0, 0, 0}));
    sink.bytes.clear();
    unsigned short const euro[] = {0x20AC, 0};
    unsigned short const empty[] = {0};
    out.WriteString(euro);
    EXPECT_EQ(Bytes(sink), (V{0, 0, 0, 3, 0xE2, 0x82, 0xAC}));
    sink.bytes.clear();
    // The pointer overload leaves no trace for an empty or null text.
    out.WriteString(empty);
    out.WriteString(static_cast<unsigned short const*>(nullptr));
    out << static_cast<unsigned short const*>(empty);
    EXPECT_TRUE(sink.bytes.empty());

    RecordingOutputStream jsink;
    CJavaDataOutputStream java(&jsink);
    java.WriteString(CUnicodeString("A"));
    java.WriteString(CUnicodeString());
    java.WriteString(empty);
    java.WriteString(euro);
    EXPECT_EQ(Bytes(jsink), (V{0, 1, 0x41, 0, 0, 0, 3, 0xE2, 0x82, 0xAC}));

    jsink.bytes.clear();
    CUnicodeString limit;
    unsigned short* units = limit.GetBuffer(65535);
    for (unsigned long i = 0; i < 65535; ++i)
        units[i] = 'x';
    limit.SetLength(65535);
    java.WriteString(limit);
    ASSERT_EQ(jsink.bytes.size(), 65537u);
    EXPECT_EQ(Bytes(jsink)[0], 0xFF);
    EXPECT_EQ(Bytes(jsink)[1], 0xFF);
    jsink.bytes.clear();
    limit += 'y';
    ExpectThrowWith<CIOException>([&] { java.WriteString(limit); },
                                  "The specified string is too long.");
    EXPECT_TRUE(jsink.bytes.empty());
    // Multibyte characters count in UTF-8 bytes: 21846 euro signs are 65538 bytes.
    CUnicodeString euros;
    for (int i = 0; i < 21846; ++i)
        euros += static_cast<unsigned short>(0x20AC);
    ExpectThrowWith<CIOException>([&] { java.WriteString(euros); },
                                  "The specified string is too long.");
}

TEST(DataOutputStream, OperatorsObjectsAndClose) {
    using V = std::vector<unsigned char>;
    RecordingOutputStream sink;
    {
        CDataOutputStream out(&sink);
        Point p;
        p.x = 1;
        p.y = -1;
        out << true << 'c' << static_cast<unsigned char>(0xC8) << short(258) << p;
        EXPECT_EQ(Bytes(sink), (V{1, 'c', 0xC8, 1, 2, 0, 0, 0, 1, 0xFF, 0xFF, 0xFF, 0xFF}));
        out.Write("xyz", 1, 2);
        out.Flush();
        EXPECT_EQ(sink.flushes, 1);
        out.Close();
        out.Close(); // does nothing
        EXPECT_EQ(sink.closes, 1);
        ExpectThrowWith<CIOException>([&] { out.WriteInt32(1); }, "Stream closed.");
        ExpectThrowWith<CIOException>([&] { out.WriteString(CUnicodeString("a")); },
                                      "Stream closed.");
        ExpectThrowWith<CIOException>([&] { out.WriteObject(p); }, "Stream closed.");
        lumotest::ExpectOutputClosed(out);
    }
    ExpectThrowWith<CIllegalArgumentException>(
        [] { CDataOutputStream(static_cast<COutputStream*>(nullptr)); }, "Invalid output stream.");
    ExpectThrowWith<CIllegalArgumentException>([] { CJavaDataOutputStream(CRef<COutputStream>()); },
                                               "Invalid output stream.");

    // A wrapped stream whose Close throws still leaves this stream closed.
    RecordingOutputStream failing;
    failing.throwOnClose = true;
    CDataOutputStream out(&failing);
    ExpectThrowWith<CIOException>([&] { out.Close(); }, "close failed");
    ExpectThrowWith<CIOException>([&] { out.WriteBool(true); }, "Stream closed.");

    bool destroyed = false;
    {
        CJavaDataOutputStream shared(CRef<COutputStream>(new RecordingOutputStream(&destroyed)));
        shared.WriteBool(true);
    }
    EXPECT_TRUE(destroyed);
    EXPECT_STREQ(CJavaDataOutputStream::m_classCJavaDataOutputStream.GetQualifiedBaseClassName1(),
                 "lumo::io::CDataOutputStream");
}
