// Tests of CDataInputStream and CJavaDataInputStream: round trips, byte reads as
// documented, a huge announced string count, pass-through, close and ownership.
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
#include <string>

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
using lumo::io::ISerializable;
using lumotest::ExpectThrowWith;
using lumotest::ScriptedInputStream;

namespace {

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

} // namespace

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

    ExpectThrowWith<CIllegalArgumentException>(
        [] { CDataInputStream(static_cast<CInputStream*>(nullptr)); }, "Invalid input stream.");
    ExpectThrowWith<CIllegalArgumentException>([] { CJavaDataInputStream(CRef<CInputStream>()); },
                                               "Invalid input stream.");

    bool destroyed = false;
    {
        CJavaDataInputStream shared(CRef<CInputStream>(
            new ScriptedInputStream(std::string("\x00\x01q", 3), 100, &destroyed)));
        EXPECT_EQ(shared.ReadUInt16(), 1u);
    }
    EXPECT_TRUE(destroyed);
}
