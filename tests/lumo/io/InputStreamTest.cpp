// Tests of the default stream methods: CInputStream's sign-extending single read and
// EOS, its Skip count, and COutputStream's byte-by-byte block writes.
#include "support/Streams.h"

#include <lumo/io/InputStream.h>
#include <lumo/io/OutputStream.h>

#include <gtest/gtest.h>

#include <string>

using lumo::io::CInputStream;
using lumo::io::COutputStream;
using lumotest::ScriptedInputStream;

namespace {

// Only the pure operations: every other call takes the base class's default.
class CharOnlyOutputStream : public COutputStream {
public:
    void Write(char c) override { bytes.push_back(c); }
    void Flush() override {}
    void Close() override {}
    using COutputStream::Write;
    std::string bytes;
};

} // namespace

TEST(InputStream, DefaultSingleReadSignExtendsAndEndsWithEOS) {
    ScriptedInputStream in(std::string("\x41\xFF\x80", 3));
    CInputStream& base = in;
    EXPECT_EQ(base.Read(), 0x41);
    EXPECT_EQ(base.Read(), -1); // 0xFF, not the end
    EXPECT_EQ(base.Read(), -128);
    EXPECT_EQ(base.Read(), CInputStream::EOS);
    EXPECT_EQ(CInputStream::EOS, 65535);
    // Each single read went through the block slot with a length of 1.
    EXPECT_EQ(in.requested, std::vector<unsigned long>(4, 1));

    in.Reset();
    char buf[4] = {};
    EXPECT_EQ(base.Read(buf, 2), 2); // two-argument form reaches the block slot at 0
    EXPECT_EQ(std::string(buf, 2), std::string("\x41\xFF", 2));
}

TEST(InputStream, DefaultSkipReturnsTheCountNotSkipped) {
    ScriptedInputStream in("abcdefgh");
    CInputStream& base = in;
    EXPECT_EQ(base.Skip(0), 0);
    EXPECT_EQ(in.blockReads, 0);
    EXPECT_EQ(base.Skip(4), 0); // all consumed
    EXPECT_EQ(in.position, 4u);
    EXPECT_EQ(base.Skip(10), 6); // 4 left: 6 not skipped
    EXPECT_EQ(base.Read(), CInputStream::EOS);
}

TEST(OutputStream, DefaultBlockWritesGoByteByByteAndIgnoreNull) {
    CharOnlyOutputStream out;
    COutputStream& base = out;
    base.Write("xabcx", 1, 3);
    base.Write("de", 2);
    base.Write(nullptr, 5);
    base.Write(nullptr, 0, 5);
    EXPECT_EQ(out.bytes, "abcde");
    EXPECT_STREQ(out.GetClass()->GetQualifiedName(), "lumo::io::COutputStream");
    EXPECT_STREQ(CInputStream::m_classCInputStream.GetQualifiedBaseClassName1(),
                 "lumo::base::CObject");
}
