// Tests of CWriter's default methods, which all go through the block write.
#include "support/CharStreams.h"

#include <gtest/gtest.h>

using lumo::base::CUnicodeString;
using lumotest::ArrayWriter;

TEST(WriterTest, DefaultsGoThroughTheBlockWrite) {
    ArrayWriter w;
    unsigned short const text[] = {'h', 'i', 0};
    w.Write(text);
    w.Write(static_cast<unsigned short const*>(nullptr));
    w.Write(static_cast<unsigned short>(0xFFFF));
    w.Write(text, 1);
    CUnicodeString const s("abcdef");
    w.Write(s);
    w.Write(s, 4, 10); // cut to the end
    w.Write(s, 6, 1);  // at the end: nothing
    w.Write(CUnicodeString());
    w.Write(CUnicodeString(), 0, 5);
    EXPECT_EQ(u"hi\xFFFFh"
              u"abcdefef",
              w.text);
    EXPECT_EQ((std::vector<unsigned long>{2, 1, 1, 6, 2}), w.blockWrites);
}
