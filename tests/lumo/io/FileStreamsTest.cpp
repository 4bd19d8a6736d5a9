// Tests of the file streams, reader and writer (CFileInputStream, CFileOutputStream,
// CNativeFileOutputStream, CFileReader, CFileWriter): their bytes and units, write,
// append and overwrite, a buffered file holding every byte written, UTF-16 checked
// with iconv, every open failure in one table, and a pipe whose reader has gone.
#include <lumo/base/UnicodeString.h>
#include <lumo/io/BufferedInputStream.h>
#include <lumo/io/BufferedOutputStream.h>
#include <lumo/io/FileInputStream.h>
#include <lumo/io/FileOutputStream.h>
#include <lumo/io/FileReader.h>
#include <lumo/io/FileWriter.h>
#include <lumo/io/NativeFileOutputStream.h>

#include "support/CharStreams.h"
#include "support/Files.h"
#include "support/Streams.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <functional>
#include <random>

using lumo::base::CUnicodeString;
using lumo::io::CBufferedInputStream;
using lumo::io::CBufferedOutputStream;
using lumo::io::CFileInputStream;
using lumo::io::CFileOutputStream;
using lumo::io::CFileReader;
using lumo::io::CFileWriter;
using lumo::io::CNativeFileOutputStream;
using lumo::io::CReader;
using lumotest::IOErrorOf;
using lumotest::ReadAll;
using lumotest::ReadText;
using lumotest::TempDir;
using lumotest::ToU16;

namespace {

IO::Location L(std::string const& path) {
    return IO::Location(path.c_str());
}

std::vector<unsigned short> U16Path(std::string const& path) {
    std::vector<unsigned short> units(path.begin(), path.end());
    units.push_back(0);
    return units;
}

// The failure of `open` as "io: description" or "argument: description".
std::string FailureOf(std::function<void()> const& open) {
    try {
        open();
    } catch (lumo::io::CIOException const& e) {
        return std::string("io: ") + e.GetErrorDescription();
    } catch (lumo::base::CIllegalArgumentException const& e) {
        return std::string("argument: ") + e.GetErrorDescription();
    }
    return "(none)";
}

} // namespace

TEST(FileInputStreamTest, ReadsBytes) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const path = dir.File("in.bin");
    ASSERT_TRUE(lumotest::WriteAll(path, std::string("\x41\xFF\x80"
                                                     "abcdefg",
                                                     10)));
    CFileInputStream in(L(path));
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

TEST(FileOutputStreamTest, WriteAndAppend) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const path = dir.File("out.bin");
    ASSERT_TRUE(lumotest::WriteAll(path, "an older and longer content"));
    {
        CFileOutputStream out(L(path), false);
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
    EXPECT_EQ("xabcde", ReadText(path));
    {
        CFileOutputStream out(L(path), true);
        out.Write("fg", 2);
    } // the destructor closes
    EXPECT_EQ("xabcdefg", ReadText(path));
    {
        CFileOutputStream created(L(dir.File("new.bin")), true);
        created.Write('n');
    }
    EXPECT_EQ("n", ReadText(dir.File("new.bin")));
}

TEST(FileOutputStreamTest, BufferedFileHoldsEveryByte) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::mt19937 random(11);
    std::string data(300000, '\0');
    for (char& c : data)
        c = static_cast<char>(random());
    std::string const ours = dir.File("ours.bin");
    {
        CFileOutputStream file(L(ours), false);
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
    EXPECT_TRUE(ReadText(ours) == data);

    // And back through a buffered input stream.
    CFileInputStream file(L(ours));
    CBufferedInputStream in(&file, 4096);
    std::string back;
    char buf[3000];
    long n;
    while ((n = in.Read(buf, 0, sizeof buf)) > 0)
        back.append(buf, static_cast<std::size_t>(n));
    EXPECT_TRUE(back == data);
}

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
    EXPECT_EQ("abc3456789", ReadText(path));
    {
        CNativeFileOutputStream out(U16Path(path).data(), true);
        out.Write("xy", 2);
        out.Close();
        out.Close();
        lumotest::ExpectOutputClosed(out);
    }
    EXPECT_EQ("abc3456789xy", ReadText(path));
    {
        std::u16string const name = u"\u00E9t\u00E9.bin";
        std::vector<unsigned short> created = U16Path(dir.Path() + "/");
        created.insert(created.end() - 1, name.begin(), name.end());
        CNativeFileOutputStream out(created.data(), false);
        out.Write("new", 3);
        // Unlike the other file streams, a null block is refused.
        EXPECT_EQ("Failed to write the specified byte the the underlying file.",
                  IOErrorOf([&] { out.Write(static_cast<char const*>(nullptr), 0, 2); }));
        out.Write(static_cast<char const*>(nullptr), 0, 0);
    }
    EXPECT_EQ("new", ReadText(dir.File("\xC3\xA9t\xC3\xA9.bin")));
    EXPECT_EQ(before, lumotest::OpenDescriptorCount());
}

TEST(FileReaderTest, ReadsUnits) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const path = dir.File("units.u16");
    // "ab", U+FFFF, U+20AC, "cd" stored low byte first.
    ASSERT_TRUE(lumotest::WriteAll(path, std::string("a\0b\0\xFF\xFF\xAC\x20"
                                                     "c\0d\0",
                                                     12)));
    CFileReader r(L(path));
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

    // An empty file is fine.
    ASSERT_TRUE(lumotest::WriteAll(dir.File("empty.u16"), ""));
    CFileReader empty(L(dir.File("empty.u16")));
    EXPECT_EQ(CReader::EOS, empty.Read());
}

TEST(FileWriterTest, WritesUtf16LittleEndian) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const path = dir.File("text.u16");
    ASSERT_TRUE(lumotest::WriteAll(path, "longer text that must go away"));
    {
        CFileWriter w(L(path));
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
              ReadText(path));
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
        CFileWriter w(L(path));
        w.Write(reinterpret_cast<unsigned short const*>(text.data()), 0,
                static_cast<unsigned long>(text.size()));
        w.Close();
    }
    std::u16string back;
    {
        CFileReader r(L(path));
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

// Every open failure of the five classes: the exception's class and description, no
// descriptor left open, and a refused file left as it was.
TEST(FileStreams, OpenFailures) {
    TempDir dir;
    ASSERT_TRUE(dir.Ok());
    std::string const missing = dir.File("missing"), inMissingDir = dir.File("no/such/dir");
    std::string const odd = dir.File("odd.u16"), unreadable = dir.File("unreadable");
    std::string const readOnly = dir.File("read-only"), directory = dir.Path();
    ASSERT_TRUE(lumotest::WriteAll(odd, "12345"));
    ASSERT_TRUE(lumotest::WriteAll(unreadable, "keep"));
    ASSERT_TRUE(lumotest::WriteAll(readOnly, "keep"));
    ASSERT_EQ(0, ::chmod(unreadable.c_str(), 0));
    ASSERT_EQ(0, ::chmod(readOnly.c_str(), 0444));
    unsigned short const empty[] = {0};
    unsigned short const lowAlone[] = {'/', 't', 'm', 'p', '/', 0xDC00, 0};
    unsigned short const highAlone[] = {'/', 't', 'm', 'p', '/', 0xD800, 0};
    char const* const inputFailed = "io: An error occured while trying to open file.";
    char const* const failed = "io: Failed to open the underlying file.";
    char const* const nativeFailed = "io: Failed to open the specified file.";
    char const* const illegal = "io: Illegal file location.";
    char const* const badPath = "argument: Invalid file path.";
    struct Case {
        char const* what;
        std::function<void()> open;
        char const* failure;
    } const cases[] = {
        {"input, missing", [&] { CFileInputStream s(L(missing)); }, inputFailed},
        {"input, directory", [&] { CFileInputStream s(L(directory)); }, inputFailed},
        {"input, no location", [] { CFileInputStream s{IO::Location()}; }, illegal},
        {"input, empty", [] { CFileInputStream s{IO::Location("")}; }, illegal},
        {"input, lone surrogate", [&] { CFileInputStream s{IO::Location(lowAlone)}; }, illegal},
        {"output, directory", [&] { CFileOutputStream s(L(directory), false); }, failed},
        {"output, missing dir", [&] { CFileOutputStream s(L(inMissingDir), true); }, failed},
        {"output, no location", [] { CFileOutputStream s(IO::Location(), false); }, illegal},
        {"native, null",
         [] { CNativeFileOutputStream s(static_cast<unsigned short const*>(nullptr), false); },
         badPath},
        {"native, empty", [&] { CNativeFileOutputStream s(empty, false); }, badPath},
        {"native, lone surrogate", [&] { CNativeFileOutputStream s(highAlone, false); }, badPath},
        {"native, directory", [&] { CNativeFileOutputStream s(U16Path(directory).data(), false); },
         nativeFailed},
        {"native, missing dir",
         [&] { CNativeFileOutputStream s(U16Path(inMissingDir).data(), true); }, nativeFailed},
        {"reader, odd length", [&] { CFileReader r(L(odd)); },
         "io: Invalid unicode file: the file length must be even."},
        {"reader, missing", [&] { CFileReader r(L(missing)); }, failed},
        {"reader, directory", [&] { CFileReader r(L(directory)); }, failed},
        {"reader, empty", [] { CFileReader r{IO::Location("")}; }, illegal},
        {"writer, directory", [&] { CFileWriter w(L(directory)); }, failed},
        {"writer, missing dir", [&] { CFileWriter w(L(inMissingDir)); }, failed},
        {"writer, no location", [] { CFileWriter w{IO::Location()}; }, illegal},
    };
    int const before = lumotest::OpenDescriptorCount();
    for (Case const& c : cases)
        EXPECT_EQ(c.failure, FailureOf(c.open)) << c.what;
    EXPECT_EQ(before, lumotest::OpenDescriptorCount());

    // Refused access, seen without root's rights.
    std::function<void()> const refused[] = {
        [&] { CFileInputStream s(L(unreadable)); },
        [&] { CFileReader r(L(unreadable)); },
        [&] { CFileOutputStream s(L(readOnly), false); },
        [&] { CFileOutputStream s(L(readOnly), true); },
        [&] { CNativeFileOutputStream s(U16Path(readOnly).data(), true); },
        [&] { CFileWriter w(L(readOnly)); },
    };
    std::string seen;
    LUMOTEST_WITHOUT_PRIVILEGES_OR_SKIP(
        [&] {
            std::string all;
            for (auto const& open : refused)
                all += FailureOf(open) + "|";
            return all;
        },
        &seen);
    std::string expected;
    for (std::size_t i = 0; i < std::size(refused); ++i)
        expected += "io: Access denied.|";
    EXPECT_EQ(expected, seen);
    EXPECT_EQ("keep", ReadText(readOnly));
    EXPECT_EQ(before, lumotest::OpenDescriptorCount());
}

// A pipe whose reader went away is a CIOException, not the end of the process.
TEST(FileStreams, BrokenPipeThrows) {
    std::string const block(65536, 'p'); // more than the pipe holds
    lumotest::ExpectBrokenPipeThrows<CFileOutputStream>(
        [](std::string const& path) { return new CFileOutputStream(L(path), false); },
        [&](CFileOutputStream& out) {
            for (int i = 0; i < 4; ++i)
                out.Write(block.data(), static_cast<unsigned long>(block.size()));
        });
    lumotest::ExpectBrokenPipeThrows<CNativeFileOutputStream>(
        [](std::string const& path) {
            return new CNativeFileOutputStream(CUnicodeString(path.c_str()), false);
        },
        [&](CNativeFileOutputStream& out) {
            for (int i = 0; i < 4; ++i)
                out.Write(block.data(), static_cast<unsigned long>(block.size()));
        });
}
