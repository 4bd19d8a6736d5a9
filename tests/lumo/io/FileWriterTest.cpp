// Tests of CFileWriter: little-endian UTF-16 output, a round trip checked with iconv,
// and the open failures.
#include <lumo/io/FileReader.h>
#include <lumo/io/FileWriter.h>

#include "support/CharStreams.h"
#include "support/Files.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

using lumo::base::CUnicodeString;
using lumo::io::CFileReader;
using lumo::io::CFileWriter;
using lumotest::IOErrorOf;
using lumotest::ReadAll;
using lumotest::TempDir;

TEST(FileWriterTest, WritesUtf16LittleEndian) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const path = dir.File("text.u16");
    ASSERT_TRUE(lumotest::WriteAll(path, "longer text that must go away"));
    {
        CFileWriter w(IO::Location(path.c_str()));
        w.Write(static_cast<unsigned short>('A'));
        w.Write(static_cast<unsigned short>(0x20AC));
        unsigned short const pair[] = {'-', 0xD83D, 0xDE00, '-'};
        w.Write(pair, 1, 2);
        w.Write(static_cast<unsigned short const*>(nullptr), 0, 4);
        w.Write(CUnicodeString("z"));
        w.Flush();
        w.Close();
        lumotest::ExpectWriterClosed(w);
        EXPECT_EQ("Writer closed.", IOErrorOf([&] { w.Close(); }));
    }
    EXPECT_EQ(std::string("A\0\xAC\x20\x3D\xD8\x00\xDE"
                          "z\0",
                          10),
              lumotest::ReadText(path));
}

TEST(FileWriterTest, RoundTripAndIconv) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::u16string text;
    for (int i = 0; i < 3000; ++i) {
        text += static_cast<char16_t>('a' + i % 26);
        text += static_cast<char16_t>(0x391 + i % 20);   // Greek
        text += static_cast<char16_t>(0x4E00 + i % 500); // CJK
        text += u"\U0001F600\r\n";
    }
    std::string const path = dir.File("round.u16");
    {
        CFileWriter w(IO::Location(path.c_str()));
        w.Write(reinterpret_cast<unsigned short const*>(text.data()), 0,
                static_cast<unsigned long>(text.size()));
        w.Close();
    }
    std::u16string back;
    {
        CFileReader r(IO::Location(path.c_str()));
        unsigned short buf[1000];
        long n;
        while ((n = r.Read(buf, 0, 1000)) != -1)
            back.append(buf, buf + n);
    }
    EXPECT_TRUE(back == text);

    if (!lumotest::HaveCommand("iconv"))
        GTEST_SKIP() << "no iconv command on this system: the check against iconv is skipped";
    // iconv reads the file as UTF-16LE and finds the text.
    std::string converted;
    ASSERT_TRUE(lumotest::RunCommand("iconv -f UTF-16LE -t UTF-8 " + path, &converted));
    EXPECT_TRUE(converted == lumotest::IcuUtf8(text));
    // And what iconv writes as UTF-16LE reads back unchanged.
    std::string const utf8Path = dir.File("text.utf8");
    std::string const fromIconv = dir.File("iconv.u16");
    ASSERT_TRUE(lumotest::WriteAll(utf8Path, lumotest::IcuUtf8(text)));
    std::string ignored;
    ASSERT_TRUE(lumotest::RunCommand("iconv -f UTF-8 -t UTF-16LE " + utf8Path + " > " + fromIconv,
                                     &ignored));
    EXPECT_TRUE(ReadAll(fromIconv) == ReadAll(path));
}

TEST(FileWriterTest, OpenFailures) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    int const before = lumotest::OpenDescriptorCount();
    auto openError = [](std::string const& path) {
        return IOErrorOf([&] { CFileWriter w(IO::Location(path.c_str())); });
    };
    EXPECT_EQ("Failed to open the underlying file.", openError(dir.Path()));
    EXPECT_EQ("Failed to open the underlying file.", openError(dir.File("none/x")));
    EXPECT_EQ("Illegal file location.", IOErrorOf([] { CFileWriter w{IO::Location()}; }));
    EXPECT_EQ(before, lumotest::OpenDescriptorCount());

    std::string const locked = dir.File("locked");
    ASSERT_TRUE(lumotest::WriteAll(locked, "keep"));
    ASSERT_EQ(0, ::chmod(locked.c_str(), 0444));
    std::string error;
    LUMOTEST_WITHOUT_PRIVILEGES_OR_SKIP([&] { return openError(locked); }, &error);
    EXPECT_EQ("Access denied.", error);
    EXPECT_EQ("keep", lumotest::ReadText(locked));
}
