// Tests of CReader's default methods, which all go through the block read.
#include "support/CharStreams.h"

#include <gtest/gtest.h>

using lumotest::ArrayReader;

TEST(ReaderTest, DefaultsGoThroughTheBlockRead) {
    EXPECT_EQ(1048575, lumo::io::CReader::EOS);
    ArrayReader r(u"a\xFFFF\x8000xyz");
    EXPECT_TRUE(r.IsInstanceOf(&lumo::io::CReader::m_classCReader));
    EXPECT_EQ('a', r.Read());
    // Units come back zero-extended: 0xFFFF is a unit, not the end.
    EXPECT_EQ(65535, r.Read());
    EXPECT_EQ(0x8000, r.Read());
    unsigned short buf[8];
    EXPECT_EQ(2, r.Read(buf, 2));
    EXPECT_EQ('x', buf[0]);
    // Skip answers how many units were NOT skipped.
    EXPECT_EQ(4, r.Skip(5));
    EXPECT_EQ(0, r.Skip(0));
    EXPECT_EQ(lumo::io::CReader::EOS, r.Read());
    EXPECT_EQ(-1, r.Read(buf, 8));
    r.Reset();
    EXPECT_EQ(0, r.Skip(3));
    EXPECT_EQ('x', r.Read());
}
