// Tests of CFileInputStream: reading a file's bytes, and the open failures.
#include <lumo/io/FileInputStream.h>

#include "support/CharStreams.h"
#include "support/Files.h"
#include "support/Streams.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

using lumo::io::CFileInputStream;
using lumotest::IOErrorOf;
using lumotest::TempDir;

namespace {

std::string OpenErrorOf(IO::Location const& where) {
    return IOErrorOf([&] { CFileInputStream in(where); });
}

} // namespace

TEST(FileInputStreamTest, ReadsBytes) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const path = dir.File("in.bin");
    ASSERT_TRUE(lumotest::WriteAll(path, std::string("\x41\xFF\x80"
                                                     "abcdefg",
                                                     10)));
    CFileInputStream in(IO::Location(path.c_str()));
    EXPECT_EQ(10u, in.GetAvailable());
    // Single bytes come back sign-extended.
    EXPECT_EQ(0x41, in.Read());
    EXPECT_EQ(-1, in.Read());
    EXPECT_EQ(-128, in.Read());
    char buf[16] = {};
    EXPECT_EQ(2, in.Read(buf, 1, 2));
    EXPECT_EQ("ab", std::string(buf + 1, 2));
    EXPECT_EQ(5u, in.GetAvailable());
    EXPECT_EQ(2, in.Skip(2));
    EXPECT_EQ(3, in.Read(buf, 16));
    EXPECT_EQ("efg", std::string(buf, 3));
    EXPECT_EQ(CFileInputStream::EOS, in.Read());
    EXPECT_EQ(-1, in.Read(buf, 0, 4));
    EXPECT_EQ(0, in.Read(buf, 0, 0));
    EXPECT_EQ(0, in.Skip(5));
    in.Reset();
    // Skip stops at the end and says how far it went; a null buffer skips.
    EXPECT_EQ(4, in.Read(nullptr, 0, 4));
    EXPECT_EQ(6, in.Skip(100));
    EXPECT_EQ(0u, in.GetAvailable());

    in.Close();
    lumotest::ExpectInputClosed(in);
    EXPECT_EQ("Stream closed.", IOErrorOf([&] { in.Reset(); }));
}

TEST(FileInputStreamTest, OpenFailures) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    int const before = lumotest::OpenDescriptorCount();
    EXPECT_EQ("An error occured while trying to open file.",
              OpenErrorOf(IO::Location(dir.File("missing").c_str())));
    EXPECT_EQ("An error occured while trying to open file.",
              OpenErrorOf(IO::Location(dir.Path().c_str())));
    EXPECT_EQ("Illegal file location.", OpenErrorOf(IO::Location()));
    EXPECT_EQ("Illegal file location.", OpenErrorOf(IO::Location("")));
    unsigned short const lone[] = {'/', 't', 'm', 'p', '/', 0xDC00, 0};
    EXPECT_EQ("Illegal file location.", OpenErrorOf(IO::Location(lone)));
    EXPECT_EQ(before, lumotest::OpenDescriptorCount());

    std::string const locked = dir.File("locked");
    ASSERT_TRUE(lumotest::WriteAll(locked, "secret"));
    ASSERT_EQ(0, ::chmod(locked.c_str(), 0));
    std::string error;
    LUMOTEST_WITHOUT_PRIVILEGES_OR_SKIP([&] { return OpenErrorOf(IO::Location(locked.c_str())); },
                                        &error);
    EXPECT_EQ("Access denied.", error);
    EXPECT_EQ(before, lumotest::OpenDescriptorCount());
}
