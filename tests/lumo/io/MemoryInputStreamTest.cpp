// Tests of CMemoryInputStream: sign-extended reads to the end, Skip counts and null
// buffers, construction and Close.
#include "support/Streams.h"

#include <lumo/io/MemoryInputStream.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

using lumo::base::CIllegalArgumentException;
using lumo::io::CInputStream;
using lumo::io::CIOException;
using lumo::io::CMemoryInputStream;
using lumotest::ExpectThrowWith;

TEST(MemoryInputStream, ReadsSignExtendedBytesThenEnds) {
    char const data[] = {0x41, char(0xFF), char(0x80)};
    CMemoryInputStream in(data, 3, false);
    EXPECT_EQ(in.GetAvailable(), 3u);
    EXPECT_EQ(in.Read(), 0x41);
    EXPECT_EQ(in.Read(), -1);
    EXPECT_EQ(in.Read(), -128);
    EXPECT_EQ(in.Read(), CInputStream::EOS);
    char buf[10];
    EXPECT_EQ(in.Read(buf, 10), -1);
    EXPECT_EQ(in.Read(buf, 0), 0);

    in.Reset();
    EXPECT_EQ(in.Read(buf, 1, 2), 2);
    EXPECT_EQ(buf[1], 0x41);
    EXPECT_EQ(buf[2], char(0xFF));
    EXPECT_EQ(in.Read(buf, 0, 10), 1); // only what is left
    EXPECT_EQ(buf[0], char(0x80));
    EXPECT_STREQ(in.GetClass()->GetQualifiedBaseClassName1(), "lumo::io::CInputStream");
}

TEST(MemoryInputStream, SkipReturnsTheCountSkippedAndNullBuffersSkip) {
    char const data[] = "0123456789";
    CMemoryInputStream in(data, 10, false);
    EXPECT_EQ(in.Skip(0), 0);
    EXPECT_EQ(in.Skip(6), 6);
    EXPECT_EQ(in.Skip(10), 4); // 4 were left
    EXPECT_EQ(in.Read(), CInputStream::EOS);

    in.Reset();
    EXPECT_EQ(in.Read(nullptr, 5), 5);
    EXPECT_EQ(in.Read(nullptr, 2, 0), 0);
    EXPECT_EQ(in.Read(), '5');
    EXPECT_EQ(in.Read(nullptr, 0, 99), 4);
    EXPECT_EQ(in.GetAvailable(), 0u);
}

TEST(MemoryInputStream, ConstructionAndClose) {
    ExpectThrowWith<CIllegalArgumentException>([] { CMemoryInputStream(nullptr, 3, false); },
                                               "Invalid source buffer.");

    // An owned block is freed exactly once (AddressSanitizer checks the count).
    char* owned = static_cast<char*>(std::malloc(4));
    std::memcpy(owned, "abcd", 4);
    {
        CMemoryInputStream in(owned, 4, true);
        EXPECT_EQ(in.Read(), 'a');
        in.Close();
        lumotest::ExpectInputClosed(in);
        ExpectThrowWith<CIOException>([&] { in.Reset(); }, "Stream closed.");
    }
    owned = static_cast<char*>(std::malloc(4));
    { CMemoryInputStream in(owned, 4, true); } // freed by the destructor

    char borrowed[] = "xy";
    {
        CMemoryInputStream in(borrowed, 2, false);
        in.Close();
    }
    EXPECT_EQ(borrowed[0], 'x'); // untouched, not freed
}
