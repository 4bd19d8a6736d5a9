// Tests of CFileOutputStream: write and append, open failures, a buffered file equal to
// one written with stdio, and a pipe whose reader has gone.
#include <lumo/io/BufferedInputStream.h>
#include <lumo/io/BufferedOutputStream.h>
#include <lumo/io/FileInputStream.h>
#include <lumo/io/FileOutputStream.h>

#include "support/CharStreams.h"
#include "support/Files.h"
#include "support/Streams.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <random>

using lumo::io::CBufferedInputStream;
using lumo::io::CBufferedOutputStream;
using lumo::io::CFileInputStream;
using lumo::io::CFileOutputStream;
using lumotest::IOErrorOf;
using lumotest::ReadAll;
using lumotest::TempDir;

namespace {

std::string OpenErrorOf(IO::Location const& where, bool append) {
    return IOErrorOf([&] { CFileOutputStream out(where, append); });
}

} // namespace

TEST(FileOutputStreamTest, WriteAndAppend) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const path = dir.File("out.bin");
    ASSERT_TRUE(lumotest::WriteAll(path, "an older and longer content"));
    IO::Location const where(path.c_str());
    {
        CFileOutputStream out(where, false);
        out.Write('x');
        out.Write("-abc-", 1, 3);
        out.Write(static_cast<char const*>(nullptr), 0, 3);
        out.Write("de", 2);
        out.Flush();
        out.Close();
        lumotest::ExpectOutputClosed(out);
        EXPECT_EQ("Stream closed.", IOErrorOf([&] { out.Close(); }));
    }
    // Without append an existing file is replaced.
    EXPECT_EQ("xabcde", lumotest::ReadText(path));
    {
        CFileOutputStream out(where, true);
        out.Write("fg", 2);
    } // the destructor closes
    EXPECT_EQ("xabcdefg", lumotest::ReadText(path));
    {
        CFileOutputStream created(IO::Location(dir.File("new.bin").c_str()), true);
        created.Write('n');
    }
    EXPECT_EQ("n", lumotest::ReadText(dir.File("new.bin")));
}

TEST(FileOutputStreamTest, OpenFailures) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    int const before = lumotest::OpenDescriptorCount();
    EXPECT_EQ("Failed to open the underlying file.",
              OpenErrorOf(IO::Location(dir.Path().c_str()), false));
    EXPECT_EQ("Failed to open the underlying file.",
              OpenErrorOf(IO::Location(dir.File("no/such/dir").c_str()), true));
    EXPECT_EQ("Illegal file location.", OpenErrorOf(IO::Location(), false));
    EXPECT_EQ(before, lumotest::OpenDescriptorCount());

    std::string const locked = dir.File("locked");
    ASSERT_TRUE(lumotest::WriteAll(locked, "keep"));
    ASSERT_EQ(0, ::chmod(locked.c_str(), 0444));
    std::string error;
    LUMOTEST_WITHOUT_PRIVILEGES_OR_SKIP(
        [&] {
            return OpenErrorOf(IO::Location(locked.c_str()), false) + "|" +
                   OpenErrorOf(IO::Location(locked.c_str()), true);
        },
        &error);
    EXPECT_EQ("Access denied.|Access denied.", error);
    EXPECT_EQ("keep", lumotest::ReadText(locked));
    EXPECT_EQ(before, lumotest::OpenDescriptorCount());
}

TEST(FileOutputStreamTest, BufferedFileMatchesStdio) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::mt19937 random(11);
    std::string data(300000, '\0');
    for (char& c : data)
        c = static_cast<char>(random());
    std::string const ours = dir.File("ours.bin");
    std::string const stdio = dir.File("stdio.bin");
    {
        CFileOutputStream file(IO::Location(ours.c_str()), false);
        CBufferedOutputStream out(&file, 4096);
        // Pieces of every size around the buffer's, and single bytes.
        std::uniform_int_distribution<std::size_t> size(0, 9000);
        for (std::size_t at = 0; at < data.size();) {
            std::size_t n = std::min(size(random), data.size() - at);
            if (n % 7 == 0 && n > 0) {
                out.Write(data[at]);
                n = 1;
            } else {
                out.Write(data.data(), static_cast<unsigned long>(at),
                          static_cast<unsigned long>(n));
            }
            at += n;
        }
        out.Close();
    }
    std::FILE* f = std::fopen(stdio.c_str(), "wb");
    ASSERT_NE(nullptr, f);
    ASSERT_EQ(data.size(), std::fwrite(data.data(), 1, data.size(), f));
    ASSERT_EQ(0, std::fclose(f));
    EXPECT_TRUE(ReadAll(ours) == ReadAll(stdio));
    if (lumotest::HaveCommand("cmp")) {
        EXPECT_EQ(0, std::system(("cmp -s " + ours + " " + stdio).c_str()));
    }

    // And back through a buffered input stream.
    CFileInputStream file(IO::Location(ours.c_str()));
    CBufferedInputStream in(&file, 4096);
    std::string back;
    char buf[3000];
    long n;
    while ((n = in.Read(buf, 0, sizeof buf)) > 0)
        back.append(buf, static_cast<std::size_t>(n));
    EXPECT_TRUE(back == data);
}

// A pipe whose reader went away is a CIOException, not the end of the process.
TEST(FileOutputStreamTest, BrokenPipeThrows) {
    lumotest::ExpectBrokenPipeThrows<CFileOutputStream>(
        [](std::string const& path) {
            return new CFileOutputStream(IO::Location(path.c_str()), false);
        },
        [](CFileOutputStream& out) {
            std::string const block(65536, 'p'); // more than the pipe holds
            for (int i = 0; i < 4; ++i)
                out.Write(block.data(), static_cast<unsigned long>(block.size()));
        });
}
