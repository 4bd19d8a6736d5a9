// Interoperability with the JDK's own data streams: values written here are read by
// java.io.DataInputStream, and values written by java.io.DataOutputStream are read
// here. Skipped where no `java` launcher is installed.
#include <lumo/io/JavaDataInputStream.h>
#include <lumo/io/JavaDataOutputStream.h>
#include <lumo/io/MemoryInputStream.h>
#include <lumo/io/MemoryOutputStream.h>

#include "support/Files.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

using lumo::base::CUnicodeString;
using lumo::io::CJavaDataInputStream;
using lumo::io::CJavaDataOutputStream;
using lumo::io::CMemoryInputStream;
using lumo::io::CMemoryOutputStream;

namespace {

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
    CUnicodeString longest;
    for (int i = 0; i < 65535; ++i)
        longest += 'x';
    strings.push_back(longest);

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
