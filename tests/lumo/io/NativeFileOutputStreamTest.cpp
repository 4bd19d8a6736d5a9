// Tests of CNativeFileOutputStream: overwriting without truncating, the failures, and a
// pipe whose reader has gone.
#include <lumo/base/UnicodeString.h>
#include <lumo/io/NativeFileOutputStream.h>

#include "support/CharStreams.h"
#include "support/Files.h"
#include "support/Streams.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

using lumo::io::CNativeFileOutputStream;
using lumotest::ArgumentErrorOf;
using lumotest::IOErrorOf;
using lumotest::TempDir;

namespace {

std::vector<unsigned short> U16Path(std::string const& path) {
    std::vector<unsigned short> units(path.begin(), path.end());
    units.push_back(0);
    return units;
}

} // namespace

TEST(NativeFileOutputStreamTest, OverwritesWithoutTruncating) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const path = dir.File("native.bin");
    ASSERT_TRUE(lumotest::WriteAll(path, "0123456789"));
    int const before = lumotest::OpenDescriptorCount();
    {
        CNativeFileOutputStream out(U16Path(path).data(), false);
        out.Write('a');
        out.Write("-bc-", 1, 2);
        out.Flush();
    }
    EXPECT_EQ("abc3456789", lumotest::ReadText(path));
    {
        CNativeFileOutputStream out(U16Path(path).data(), true);
        out.Write("xy", 2);
        out.Close();
        out.Close();
        lumotest::ExpectOutputClosed(out);
    }
    EXPECT_EQ("abc3456789xy", lumotest::ReadText(path));
    {
        std::u16string const name = u"\u00E9t\u00E9.bin";
        std::vector<unsigned short> created = U16Path(dir.Path() + "/");
        created.insert(created.end() - 1, name.begin(), name.end());
        CNativeFileOutputStream out(created.data(), false);
        out.Write("new", 3);
    }
    EXPECT_EQ("new", lumotest::ReadText(dir.File("\xC3\xA9t\xC3\xA9.bin")));
    EXPECT_EQ(before, lumotest::OpenDescriptorCount());
}

TEST(NativeFileOutputStreamTest, Failures) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    int const before = lumotest::OpenDescriptorCount();
    unsigned short const empty[] = {0};
    unsigned short const lone[] = {'/', 't', 'm', 'p', '/', 0xD800, 0};
    EXPECT_EQ("Invalid file path.", ArgumentErrorOf([&] {
                  CNativeFileOutputStream out(static_cast<unsigned short const*>(nullptr), false);
              }));
    EXPECT_EQ("Invalid file path.",
              ArgumentErrorOf([&] { CNativeFileOutputStream out(empty, false); }));
    EXPECT_EQ("Invalid file path.",
              ArgumentErrorOf([&] { CNativeFileOutputStream out(lone, false); }));
    EXPECT_EQ("Failed to open the specified file.",
              IOErrorOf([&] { CNativeFileOutputStream out(U16Path(dir.Path()).data(), false); }));
    EXPECT_EQ("Failed to open the specified file.", IOErrorOf([&] {
                  CNativeFileOutputStream out(U16Path(dir.File("no/file")).data(), true);
              }));
    {
        CNativeFileOutputStream out(U16Path(dir.File("f")).data(), false);
        EXPECT_EQ("Failed to write the specified byte the the underlying file.",
                  IOErrorOf([&] { out.Write(static_cast<char const*>(nullptr), 0, 2); }));
        out.Write(static_cast<char const*>(nullptr), 0, 0);
    }
    EXPECT_EQ(before, lumotest::OpenDescriptorCount());

    std::string const locked = dir.File("locked");
    ASSERT_TRUE(lumotest::WriteAll(locked, "keep"));
    ASSERT_EQ(0, ::chmod(locked.c_str(), 0444));
    std::string error;
    LUMOTEST_WITHOUT_PRIVILEGES_OR_SKIP(
        [&] {
            return IOErrorOf([&] { CNativeFileOutputStream out(U16Path(locked).data(), true); });
        },
        &error);
    EXPECT_EQ("Access denied.", error);
}

// A pipe whose reader went away is a CIOException, not the end of the process.
TEST(NativeFileOutputStreamTest, BrokenPipeThrows) {
    lumotest::ExpectBrokenPipeThrows<CNativeFileOutputStream>(
        [](std::string const& path) {
            lumo::base::CUnicodeString const wide(path.c_str());
            return new CNativeFileOutputStream(wide, false);
        },
        [](CNativeFileOutputStream& out) {
            std::string const block(65536, 'p'); // more than the pipe holds
            for (int i = 0; i < 4; ++i)
                out.Write(block.data(), static_cast<unsigned long>(block.size()));
        });
}
