// Tests of CFileReader: reading UTF-16 units from a file, and the open failures.
#include <lumo/io/FileReader.h>

#include "support/CharStreams.h"
#include "support/Files.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

using lumo::io::CFileReader;
using lumo::io::CReader;
using lumotest::IOErrorOf;
using lumotest::TempDir;
using lumotest::ToU16;

namespace {

std::string OpenErrorOf(IO::Location const& where) {
    return IOErrorOf([&] { CFileReader r(where); });
}

} // namespace

TEST(FileReaderTest, ReadsUnits) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const path = dir.File("units.u16");
    // "ab", U+FFFF, U+20AC, "cd" stored low byte first.
    ASSERT_TRUE(lumotest::WriteAll(path, std::string("a\0b\0\xFF\xFF\xAC\x20"
                                                     "c\0d\0",
                                                     12)));
    CFileReader r(IO::Location(path.c_str()));
    EXPECT_EQ('a', r.Read());
    unsigned short buf[8] = {};
    EXPECT_EQ(3, r.Read(buf, 1, 3));
    EXPECT_EQ(u"b\xFFFF\x20AC", ToU16(buf + 1, 3));
    EXPECT_EQ(1, r.Skip(1));
    EXPECT_EQ('d', r.Read());
    EXPECT_EQ(CReader::EOS, r.Read());
    EXPECT_EQ(-1, r.Read(buf, 0, 8));
    EXPECT_EQ(0, r.Skip(4));
    r.Reset();
    // A null buffer skips; Skip stops at the end and counts units.
    EXPECT_EQ(2, r.Read(nullptr, 0, 2));
    EXPECT_EQ(0xFFFF, r.Read());
    EXPECT_EQ(3, r.Skip(50));
    EXPECT_EQ(CReader::EOS, r.Read());

    r.Close();
    lumotest::ExpectReaderClosed(r);
}

TEST(FileReaderTest, OpenFailures) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    int const before = lumotest::OpenDescriptorCount();
    std::string const odd = dir.File("odd.u16");
    ASSERT_TRUE(lumotest::WriteAll(odd, "12345"));
    EXPECT_EQ("Invalid unicode file: the file length must be even.",
              OpenErrorOf(IO::Location(odd.c_str())));
    EXPECT_EQ("Failed to open the underlying file.",
              OpenErrorOf(IO::Location(dir.File("missing").c_str())));
    EXPECT_EQ("Failed to open the underlying file.", OpenErrorOf(IO::Location(dir.Path().c_str())));
    EXPECT_EQ("Illegal file location.", OpenErrorOf(IO::Location("")));
    EXPECT_EQ(before, lumotest::OpenDescriptorCount());
    {
        // An empty file is fine.
        std::string const empty = dir.File("empty.u16");
        ASSERT_TRUE(lumotest::WriteAll(empty, ""));
        CFileReader r(IO::Location(empty.c_str()));
        EXPECT_EQ(CReader::EOS, r.Read());
    }

    std::string const locked = dir.File("locked");
    ASSERT_TRUE(lumotest::WriteAll(locked, "ab"));
    ASSERT_EQ(0, ::chmod(locked.c_str(), 0));
    std::string error;
    LUMOTEST_WITHOUT_PRIVILEGES_OR_SKIP([&] { return OpenErrorOf(IO::Location(locked.c_str())); },
                                        &error);
    EXPECT_EQ("Access denied.", error);
}
