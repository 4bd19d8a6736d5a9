// Tests of the data streams, native and Java (CDataOutputStream, CDataInputStream,
// CJavaDataOutputStream, CJavaDataInputStream): the wire format, strings, the stream
// operators, serializable objects, round trips, byte reads as documented, a huge
// announced string count, close and ownership; and interoperability with the JDK's own
// java.io data streams (skipped where no `java` launcher is installed).
#include "support/Files.h"
#include "support/Streams.h"

#include <lumo/io/BufferedInputStream.h>
#include <lumo/io/BufferedOutputStream.h>
#include <lumo/io/DataInputStream.h>
#include <lumo/io/DataOutputStream.h>
#include <lumo/io/JavaDataInputStream.h>
#include <lumo/io/JavaDataOutputStream.h>
#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/MemoryOutputStream.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

using lumo::base::CIllegalArgumentException;
using lumo::base::CRef;
using lumo::base::CUnicodeString;
using lumo::io::CDataInputStream;
using lumo::io::CDataOutputStream;
using lumo::io::CInputStream;
using lumo::io::CIOException;
using lumo::io::CJavaDataInputStream;
using lumo::io::CJavaDataOutputStream;
using lumo::io::CMemoryInputStream;
using lumo::io::CMemoryOutputStream;
using lumo::io::COutputStream;
using lumo::io::ISerializable;
using lumotest::ExpectThrowWith;
using lumotest::RecordingOutputStream;
using lumotest::ScriptedInputStream;

namespace {

std::vector<unsigned char> Bytes(RecordingOutputStream const& s) {
    return std::vector<unsigned char>(s.bytes.begin(), s.bytes.end());
}

struct Point : ISerializable {
    long x = 0, y = 0;
    void Deserialize(lumo::io::CDataInputStream&) override {}
    void Serialize(CDataOutputStream& out) const override { out << x << y; }
};

struct Record : ISerializable {
    CUnicodeString name;
    double weight = 0;
    void Deserialize(CDataInputStream& in) override { in >> name >> weight; }
    void Serialize(CDataOutputStream& out) const override { out << name << weight; }
};

// Writes every kind of value, then reads it back through the matching input class.
template <class Out, class In> void RoundTrip() {
    CMemoryOutputStream memory;
    {
        lumo::io::CBufferedOutputStream buffered(&memory, 7);
        Out out(&buffered);
        unsigned short const text[] = {'h', 0xE9, 0x20AC, 0xD83D, 0xDE00, 0};
        Record r;
        r.name = "rec";
        r.weight = -0.125;
        out << true << false << char(-5) << static_cast<unsigned char>(250) << short(SHRT_MIN)
            << long(INT_MIN) << static_cast<unsigned short>(65535)
            << static_cast<unsigned long>(UINT_MAX) << 3.5f << 1e300 << text << CUnicodeString()
            << r;
        out.WriteFloat(-FLT_MAX);
        out.WriteDouble(std::nan(""));
        out.Close();
    }
    CMemoryInputStream memIn(memory.GetBuffer(), memory.GetBufferSize(), false);
    // Larger than any one value: a read above the capacity would bypass the buffer.
    lumo::io::CBufferedInputStream buffered(&memIn, 32);
    In in(&buffered);
    bool t = false, f = true;
    char c = 0;
    unsigned char uc = 0;
    short s = 0;
    long l = 0;
    unsigned short us = 0;
    unsigned long ul = 0;
    float fl = 0;
    double d = 0;
    CUnicodeString str, empty("x");
    Record r;
    in >> t >> f >> c >> uc >> s >> l >> us >> ul >> fl >> d >> str >> empty >> r;
    EXPECT_TRUE(t);
    EXPECT_FALSE(f);
    EXPECT_EQ(c, char(-5));
    EXPECT_EQ(uc, 250);
    EXPECT_EQ(s, SHRT_MIN);
    EXPECT_EQ(l, long(INT_MIN)); // sign-extended from 32 bits
    EXPECT_EQ(us, 65535);
    EXPECT_EQ(ul, static_cast<unsigned long>(UINT_MAX));
    EXPECT_EQ(fl, 3.5f);
    EXPECT_EQ(d, 1e300);
    unsigned short const expected[] = {'h', 0xE9, 0x20AC, 0xD83D, 0xDE00, 0};
    EXPECT_TRUE(str == expected);
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_TRUE(r.name == CUnicodeString("rec"));
    EXPECT_EQ(r.weight, -0.125);
    EXPECT_EQ(in.ReadFloat(), -FLT_MAX);
    EXPECT_TRUE(std::isnan(in.ReadDouble()));
    EXPECT_EQ(in.GetAvailable(), 0u);
}

// Reads what the library wrote (argument 1) and prints it one value per line; then
// writes its own values (argument 2).
char const kJavaSource[] = R"JAVA(
import java.io.*;

public class Check {
    static String units(String s) {
        StringBuilder b = new StringBuilder("T " + s.length());
        for (int i = 0; i < s.length(); ++i)
            b.append(String.format(" %04x", (int) s.charAt(i)));
        return b.toString();
    }

    public static void main(String[] args) throws Exception {
        try (DataInputStream in = new DataInputStream(new FileInputStream(args[0]))) {
            int ints = in.readInt();
            for (int i = 0; i < ints; ++i) System.out.println("I " + in.readInt());
            for (int i = 0; i < 3; ++i) System.out.println("S " + in.readShort());
            for (int i = 0; i < 3; ++i) System.out.println("U " + in.readUnsignedShort());
            for (int i = 0; i < 2; ++i) System.out.println("Z " + in.readBoolean());
            for (int i = 0; i < 3; ++i) System.out.println("B " + in.readByte());
            int strings = in.readInt();
            for (int i = 0; i < strings; ++i) System.out.println(units(in.readUTF()));
            System.out.println("END " + in.available());
        }
        try (DataOutputStream out = new DataOutputStream(new FileOutputStream(args[1]))) {
            out.writeInt(123456789);
            out.writeInt(-42);
            out.writeShort(-300);
            out.writeShort(65535);
            out.writeBoolean(true);
            out.writeBoolean(false);
            out.writeByte(-1);
            out.writeByte(200);
            out.writeUTF("");
            out.writeUTF("h\u00e9llo \u20ac");
            out.writeUTF("a\0b");
            out.writeUTF("\ud83d\ude00");
            StringBuilder euros = new StringBuilder();
            for (int i = 0; i < 20000; ++i) euros.append('\u20ac');
            out.writeUTF(euros.toString());
        }
    }
}
)JAVA";

std::string Units(CUnicodeString const& s) {
    std::string line = "T " + std::to_string(s.GetLength());
    char hex[8];
    for (unsigned long i = 0; i < s.GetLength(); ++i) {
        std::snprintf(hex, sizeof hex, " %04x", s[i]);
        line += hex;
    }
    return line;
}

CUnicodeString FromUnits(std::vector<unsigned short> units) {
    units.push_back(0);
    return CUnicodeString(units.data());
}

} // namespace

TEST(DataOutputStream, WireFormat) {
    using V = std::vector<unsigned char>;
    RecordingOutputStream sink;
    CDataOutputStream out(&sink);
    out.WriteInt32(0x01020304);
    EXPECT_EQ(Bytes(sink), (V{1, 2, 3, 4}));
    sink.bytes.clear();
    out.WriteInt16(-2), out.WriteUInt16(0xABCD), out.WriteInt32(-1L), out.WriteUInt32(0x8000000Ful);
    EXPECT_EQ(Bytes(sink), (V{0xFF, 0xFE, 0xAB, 0xCD, 0xFF, 0xFF, 0xFF, 0xFF, 0x80, 0, 0, 0x0F}));
    sink.bytes.clear();
    out.WriteFloat(1.0f);
    out.WriteDouble(1.0);
    EXPECT_EQ(Bytes(sink), (V{0, 0, 0x80, 0x3F, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F}));
    sink.bytes.clear();
    out.WriteBool(true), out.WriteBool(false), out.WriteByte(char(0x85)), out.WriteUByte(0x7F);
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
    java.WriteString(CUnicodeString("A")), java.WriteString(CUnicodeString()),
        java.WriteString(empty), java.WriteString(euro);
    EXPECT_EQ(Bytes(jsink), (V{0, 1, 0x41, 0, 0, 0, 3, 0xE2, 0x82, 0xAC}));

    jsink.bytes.clear();
    CUnicodeString limit(std::string(65535, 'x').c_str());
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

    // A wrapped stream whose Close throws still leaves this stream closed.
    RecordingOutputStream failing;
    failing.throwOnClose = true;
    CDataOutputStream out(&failing);
    ExpectThrowWith<CIOException>([&] { out.Close(); }, "close failed");
    ExpectThrowWith<CIOException>([&] { out.WriteBool(true); }, "Stream closed.");

    EXPECT_STREQ(CJavaDataOutputStream::m_classCJavaDataOutputStream.GetQualifiedBaseClassName1(),
                 "lumo::io::CDataOutputStream");
}

TEST(DataInputStream, RoundTripsNativeAndJava) {
    RoundTrip<CDataOutputStream, CDataInputStream>();
    RoundTrip<CJavaDataOutputStream, CJavaDataInputStream>();
}

TEST(DataInputStream, ReadsBytesAsDocumented) {
    std::string const bytes("\x02\x01\xFF\xFE\x80\x00\x00\x00\x01\x41"
                            "\x00\x01\x42",
                            13);
    ScriptedInputStream inner(bytes);
    CDataInputStream in(&inner);
    EXPECT_FALSE(in.ReadBool()); // only 1 is true
    EXPECT_TRUE(in.ReadBool());
    EXPECT_EQ(in.ReadInt16(), -2); // FF FE
    in.Reset();
    in.Skip(2);
    EXPECT_EQ(in.ReadUInt16(), 0xFFFEu);
    EXPECT_EQ(in.ReadSByte(), 0x80);
    in.Reset();
    in.Skip(4);
    EXPECT_EQ(in.ReadByte(), char(0x80));
    EXPECT_EQ(in.ReadString(), CUnicodeString("A")); // 00 00 00 01 41

    CJavaDataInputStream java(&inner);
    EXPECT_EQ(java.ReadString(), CUnicodeString("B")); // 00 01 42
    // At the end nothing is reported: EOS reads as the byte 0xFF, a short read as
    // zeros.
    EXPECT_EQ(java.ReadByte(), char(0xFF));
    EXPECT_FALSE(java.ReadBool());
    EXPECT_EQ(java.ReadInt32(), 0);
    EXPECT_TRUE(java.ReadString().IsEmpty());

    // A count larger than the data decodes what is there.
    ScriptedInputStream shortString(std::string("\x00\x00\x00\x09xy", 6));
    CDataInputStream partial(&shortString);
    EXPECT_EQ(partial.ReadString(), CUnicodeString("xy"));
    // Java's encoding of U+0000 (C0 80) reads back as the unit 0.
    ScriptedInputStream nul(std::string("\x00\x03\xC0\x80z", 5));
    CJavaDataInputStream javaNul(&nul);
    CUnicodeString withNul = javaNul.ReadString();
    ASSERT_EQ(withNul.GetLength(), 2u);
    EXPECT_EQ(withNul[0], 0);
    EXPECT_EQ(withNul[1], 'z');
}

// A count announced by the stream is not trusted with an allocation: the reads (and
// so the buffer) grow with the bytes that arrive, and the result is unchanged.
TEST(DataInputStream, HugeAnnouncedCountReadsWhatArrives) {
    std::string const text(100 * 1024 + 7, 'q');
    ScriptedInputStream inner(std::string("\xFF\xFF\xFF\xF0", 4) + text);
    CDataInputStream in(&inner);
    CUnicodeString const value = in.ReadString();
    EXPECT_EQ(value.GetLength(), text.size());
    unsigned long largest = 0;
    for (std::size_t i = 1; i < inner.requested.size(); ++i)
        largest = std::max(largest, inner.requested[i]);
    EXPECT_LE(largest, 2 * text.size() + 1);

    // Up to 64 KiB the bytes are one read, as documented; a short read ends the text.
    ScriptedInputStream chunked(std::string("\x00\x00\x10\x00", 4) + std::string(4096, 'r'), 1000);
    CDataInputStream fromChunks(&chunked);
    EXPECT_EQ(fromChunks.ReadString().GetLength(), 1000u);
}

TEST(DataInputStream, PassThroughCloseAndOwnership) {
    ScriptedInputStream inner("abcdef");
    CDataInputStream in(&inner);
    char buf[4] = {};
    EXPECT_EQ(in.Read(), 'a');
    EXPECT_EQ(in.Read(buf, 1, 2), 2);
    EXPECT_EQ(std::string(buf + 1, 2), "bc");
    EXPECT_EQ(in.Read(buf, 1), 1);
    EXPECT_EQ(in.GetAvailable(), 2u);
    in.Close();
    in.Close();
    EXPECT_EQ(inner.closes, 1);
    Record r;
    ExpectThrowWith<CIOException>([&] { in.ReadInt32(); }, "Stream closed.");
    ExpectThrowWith<CIOException>([&] { in.ReadBool(); }, "Stream closed.");
    ExpectThrowWith<CIOException>([&] { in.ReadString(); }, "Stream closed.");
    ExpectThrowWith<CIOException>([&] { in.ReadObject(r); }, "Stream closed.");
    ExpectThrowWith<CIOException>([&] { in.Read(); }, "Stream closed.");
    ExpectThrowWith<CIOException>([&] { in.Skip(1); }, "Stream closed.");
    ExpectThrowWith<CIOException>([&] { in.Reset(); }, "Stream closed.");
    ExpectThrowWith<CIOException>([&] { in.GetAvailable(); }, "Stream closed.");
}

TEST(JavaDataOutputStream, TheJdkReadsWhatWeWriteAndWeReadWhatItWrites) {
    if (!lumotest::HaveCommand("java"))
        GTEST_SKIP() << "no `java` launcher on this machine: JDK interoperability not checked";

    lumotest::TempDir dir;
    ASSERT_TRUE(dir.Ok());
    ASSERT_TRUE(lumotest::WriteAll(dir.File("Check.java"), kJavaSource));

    long const ints[] = {0, 1, -1, INT_MIN, INT_MAX, 0x01020304};
    short const shorts[] = {-2, SHRT_MIN, SHRT_MAX};
    unsigned short const ushorts[] = {0, 65535, 0x8000};
    char const bytes[] = {char(-128), 127, 0};
    std::vector<CUnicodeString> strings = {
        CUnicodeString(), CUnicodeString("hello"), FromUnits({'h', 0xE9, 'l', 0x20AC}),
        FromUnits({0x65E5, 0x672C, 0x8A9E}), FromUnits({'a', 0, 'b'})};
    strings.push_back(CUnicodeString(std::string(65535, 'x').c_str()));

    CMemoryOutputStream memory;
    CJavaDataOutputStream out(&memory);
    std::ostringstream expected;
    out.WriteInt32(static_cast<long>(std::size(ints)));
    for (long v : ints) {
        out.WriteInt32(v);
        expected << "I " << v << "\n";
    }
    for (short v : shorts) {
        out.WriteInt16(v);
        expected << "S " << v << "\n";
    }
    for (unsigned short v : ushorts) {
        out.WriteUInt16(v);
        expected << "U " << v << "\n";
    }
    out.WriteBool(true);
    out.WriteBool(false);
    expected << "Z true\nZ false\n";
    for (char v : bytes) {
        out.WriteByte(v);
        expected << "B " << int(static_cast<signed char>(v)) << "\n";
    }
    out.WriteInt32(static_cast<long>(strings.size()));
    for (CUnicodeString const& s : strings) {
        out.WriteString(s);
        expected << Units(s) << "\n";
    }
    expected << "END 0\n";
    ASSERT_TRUE(lumotest::WriteAll(dir.File("in.bin"),
                                   std::string(memory.GetBuffer(), memory.GetBufferSize())));

    std::string printed;
    ASSERT_TRUE(lumotest::RunCommand(
        "cd '" + dir.Path() + "' && java Check.java in.bin out.bin 2>java.err", &printed))
        << lumotest::ReadText(dir.File("java.err"));
    EXPECT_EQ(printed, expected.str());

    std::string const javaBytes = lumotest::ReadText(dir.File("out.bin"));
    CMemoryInputStream memIn(javaBytes.data(), javaBytes.size(), false);
    CJavaDataInputStream in(&memIn);
    EXPECT_EQ(in.ReadInt32(), 123456789);
    EXPECT_EQ(in.ReadInt32(), -42);
    EXPECT_EQ(in.ReadInt16(), -300);
    EXPECT_EQ(in.ReadUInt16(), 65535u);
    EXPECT_TRUE(in.ReadBool());
    EXPECT_FALSE(in.ReadBool());
    EXPECT_EQ(in.ReadByte(), char(-1));
    EXPECT_EQ(in.ReadSByte(), 200);
    EXPECT_EQ(Units(in.ReadString()), "T 0");
    EXPECT_EQ(Units(in.ReadString()), "T 7 0068 00e9 006c 006c 006f 0020 20ac");
    EXPECT_EQ(Units(in.ReadString()), "T 3 0061 0000 0062"); // Java writes U+0000 as C0 80
    EXPECT_EQ(Units(in.ReadString()), "T 2 d83d de00");      // a pair as two 3-byte forms
    CUnicodeString const euros = in.ReadString();
    EXPECT_EQ(euros.GetLength(), 20000u);
    EXPECT_EQ(euros[19999], 0x20AC);
    EXPECT_EQ(memIn.GetAvailable(), 0u);
}
