// Tests of IO::File: write truncates, append appends, read reads back, and failed opens
// leave no descriptor behind.
#include <vela/File.h>

#include "support/Files.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>

using lumotest::TempDir;
using lumotest::WriteAll;

TEST(FileTest, WriteTruncatesAppendAppendsReadReadsBack) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const path = dir.File("data.bin");
    ASSERT_TRUE(WriteAll(path, "0123456789"));

    IO::Location const where(path.c_str());
    {
        IO::File f(where, IO::File::NOT_FOUND_CREATE);
        EXPECT_EQ(IO::RESULT_OK, f.GetStatus());
        EXPECT_FALSE(f.IsOpen());
        ASSERT_EQ(IO::RESULT_OK, f.Open(IO::File::MODE_WRITE));
        EXPECT_TRUE(f.IsOpen());
        EXPECT_EQ(IO::RESULT_ALREADY_OPEN, f.Open(IO::File::MODE_READ));
        unsigned long done = 99;
        EXPECT_EQ(IO::RESULT_OK, f.Write("abc", 3, &done));
        EXPECT_EQ(3u, done);
        EXPECT_EQ(IO::RESULT_OK, f.WriteByte('d'));
        EXPECT_EQ(IO::RESULT_OK, f.WriteUnit16(0x1234));
        EXPECT_EQ(IO::RESULT_OK, f.Flush());
        EXPECT_EQ(IO::RESULT_OK, f.Close());
        EXPECT_FALSE(f.IsOpen());
        EXPECT_EQ(IO::RESULT_NOT_OPEN, f.Close());
        EXPECT_EQ(IO::RESULT_NOT_OPEN, f.Write("x", 1, nullptr));
    }
    EXPECT_EQ(std::string("abcd\x34\x12", 6), lumotest::ReadText(path));
    {
        IO::File f(where, IO::File::NOT_FOUND_FAIL);
        ASSERT_EQ(IO::RESULT_OK, f.Open(IO::File::MODE_APPEND));
        // Even after a seek to the start, appended data goes to the end.
        EXPECT_EQ(IO::RESULT_OK, f.SetPosition(0));
        EXPECT_EQ(IO::RESULT_OK, f.Write("Z", 1, nullptr));
    } // the destructor closes
    ASSERT_EQ(std::string("abcd\x34\x12Z", 7), lumotest::ReadText(path));

    IO::File f(where, IO::File::NOT_FOUND_FAIL);
    ASSERT_EQ(IO::RESULT_OK, f.Open(IO::File::MODE_READ));
    std::uint64_t n = 0;
    EXPECT_EQ(IO::RESULT_OK, f.GetDataLength(&n));
    EXPECT_EQ(7u, n);
    unsigned char byte = 0;
    EXPECT_EQ(IO::RESULT_OK, f.ReadByte(&byte));
    EXPECT_EQ('a', byte);
    EXPECT_EQ(IO::RESULT_OK, f.GetAvailable(&n));
    EXPECT_EQ(6u, n);
    std::uint64_t at = 0;
    EXPECT_EQ(IO::RESULT_OK, f.Seek(3, IO::File::SEEK_FROM_CURRENT, &at));
    EXPECT_EQ(4u, at);
    unsigned short unit = 0;
    EXPECT_EQ(IO::RESULT_OK, f.ReadUnit16(&unit));
    EXPECT_EQ(0x1234, unit);
    // One byte left: a 16-bit read is cut off, and then the data is over.
    EXPECT_EQ(IO::RESULT_FAILED, f.ReadUnit16(&unit));
    EXPECT_EQ(IO::RESULT_END_OF_DATA, f.ReadByte(&byte));
    char buf[16];
    unsigned long done = 5;
    EXPECT_EQ(IO::RESULT_END_OF_DATA, f.Read(buf, sizeof buf, &done));
    EXPECT_EQ(0u, done);
    EXPECT_EQ(IO::RESULT_OK, f.Read(buf, 0, &done));
    EXPECT_EQ(IO::RESULT_OK, f.GetAvailable(&n));
    EXPECT_EQ(0u, n);
    EXPECT_EQ(IO::RESULT_INVALID_ARGUMENT, f.Seek(-100, IO::File::SEEK_FROM_CURRENT));
    EXPECT_EQ(IO::RESULT_OK, f.Seek(-2, IO::File::SEEK_FROM_END, &at));
    EXPECT_EQ(5u, at);
    EXPECT_EQ(IO::RESULT_OK, f.SetPosition(1));
    EXPECT_EQ(IO::RESULT_OK, f.Read(buf, sizeof buf, &done));
    EXPECT_EQ(6u, done);
    EXPECT_EQ(std::string("bcd\x34\x12Z", 6), std::string(buf, 6));
    // A read-only descriptor refuses writes.
    EXPECT_EQ(IO::RESULT_FAILED, f.Write("q", 1, nullptr));
    EXPECT_NE(0, f.GetSystemError());
}

TEST(FileTest, FailedOpensLeaveNoDescriptor) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    int const before = lumotest::OpenDescriptorCount();

    IO::File missing(IO::Location(dir.File("missing").c_str()), IO::File::NOT_FOUND_FAIL);
    EXPECT_EQ(IO::RESULT_NOT_FOUND, missing.Open(IO::File::MODE_READ));
    EXPECT_EQ(IO::RESULT_NOT_FOUND, missing.Open(IO::File::MODE_WRITE));
    EXPECT_EQ(IO::RESULT_NOT_FOUND, missing.Open(IO::File::MODE_APPEND));
    EXPECT_FALSE(missing.IsOpen());
    EXPECT_EQ(IO::RESULT_NOT_OPEN, missing.Read(nullptr, 1, nullptr));

    IO::File directory(IO::Location(dir.Path().c_str()), IO::File::NOT_FOUND_CREATE);
    EXPECT_EQ(IO::RESULT_IS_DIRECTORY, directory.Open(IO::File::MODE_READ));
    EXPECT_EQ(IO::RESULT_IS_DIRECTORY, directory.Open(IO::File::MODE_WRITE));
    EXPECT_FALSE(directory.IsOpen());

    IO::File below(IO::Location(dir.File("missing/x").c_str()), IO::File::NOT_FOUND_CREATE);
    EXPECT_EQ(IO::RESULT_NOT_FOUND, below.Open(IO::File::MODE_WRITE));

    IO::File empty(IO::Location(), IO::File::NOT_FOUND_CREATE);
    EXPECT_EQ(IO::RESULT_ILLEGAL_LOCATION, empty.Open(IO::File::MODE_WRITE));

    std::string const locked = dir.File("locked");
    ASSERT_TRUE(WriteAll(locked, "x"));
    ASSERT_EQ(0, ::chmod(locked.c_str(), 0));
    EXPECT_EQ(before, lumotest::OpenDescriptorCount());
    std::string results;
    bool const checked = lumotest::RunWithoutPrivileges(
        [&] {
            IO::File f(IO::Location(locked.c_str()), IO::File::NOT_FOUND_FAIL);
            std::string r;
            for (IO::File::OpenMode mode :
                 {IO::File::MODE_READ, IO::File::MODE_WRITE, IO::File::MODE_APPEND})
                r += f.Open(mode) == IO::RESULT_ACCESS_DENIED ? "denied " : "other ";
            return r + (f.IsOpen() ? "open" : "closed");
        },
        &results);
    if (!checked)
        GTEST_SKIP() << "running as root and unable to drop root's rights: "
                        "refused permissions cannot be checked";
    EXPECT_EQ("denied denied denied closed", results);
}
