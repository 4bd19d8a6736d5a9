// Tests of IO::Location: empty locations, UTF-16 paths kept as UTF-8, legality, copy and
// move, and allocation failure as a memory exception.
#include <vela/Location.h>
#include <vela/Memory.h>

#include <lumo/base/Exception.h>

#include <gtest/gtest.h>

#include <string>

TEST(LocationTest, EmptyLocations) {
    IO::Location none;
    IO::Location nullUtf8(static_cast<char const*>(nullptr));
    IO::Location nullUtf16(static_cast<unsigned short const*>(nullptr));
    unsigned short const noUnits[] = {0};
    IO::Location emptyUtf16(noUnits);
    IO::Location emptyUtf8("");
    for (IO::Location const* l : {&none, &nullUtf8, &nullUtf16, &emptyUtf16, &emptyUtf8}) {
        EXPECT_TRUE(l->IsEmpty());
        EXPECT_FALSE(l->IsLegal());
        EXPECT_STREQ("", l->GetPath());
    }
}

TEST(LocationTest, Utf16PathsBecomeUtf8) {
    // "/tmp/é€😀" with the emoji as a surrogate pair.
    unsigned short const path[] = {'/', 't', 'm', 'p', '/', 0xE9, 0x20AC, 0xD83D, 0xDE00, 0};
    IO::Location l(path);
    EXPECT_FALSE(l.IsEmpty());
    EXPECT_TRUE(l.IsLegal());
    EXPECT_STREQ("/tmp/\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", l.GetPath());
    EXPECT_EQ(14u, l.GetLength());

    IO::Location same("/tmp/\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_TRUE(same.IsLegal());
    EXPECT_STREQ(l.GetPath(), same.GetPath());

    // Lone surrogates have no UTF-8 form: the location exists but is illegal.
    unsigned short const lone[] = {'a', 0xDC00, 'b', 0};
    unsigned short const cutPair[] = {'a', 0xD83D, 0};
    EXPECT_FALSE(IO::Location(lone).IsEmpty());
    EXPECT_FALSE(IO::Location(lone).IsLegal());
    EXPECT_FALSE(IO::Location(cutPair).IsLegal());
}

TEST(LocationTest, Legality) {
    EXPECT_TRUE(IO::Location("relative/name.txt").IsLegal());
    // Malformed UTF-8: a stray continuation byte, an overlong form, an encoded surrogate.
    EXPECT_FALSE(IO::Location("a\x80").IsLegal());
    EXPECT_FALSE(IO::Location("\xC0\xAF").IsLegal());
    EXPECT_FALSE(IO::Location("\xED\xA0\x80").IsLegal());
    EXPECT_FALSE(IO::Location("cut\xE2\x82").IsLegal());

    std::string name(255, 'n');
    EXPECT_TRUE(IO::Location(("/tmp/" + name).c_str()).IsLegal());
    EXPECT_FALSE(IO::Location(("/tmp/" + name + "n").c_str()).IsLegal());
    std::string longPath;
    while (longPath.size() < 4095)
        longPath += "/d";
    longPath.resize(4095);
    EXPECT_TRUE(IO::Location(longPath.c_str()).IsLegal());
    EXPECT_FALSE(IO::Location((longPath + "x").c_str()).IsLegal());
}

TEST(LocationTest, CopyAndMove) {
    IO::Location a("/tmp/a");
    IO::Location b(a);
    EXPECT_STREQ("/tmp/a", b.GetPath());
    unsigned short const bad[] = {0xDFFF, 0};
    IO::Location illegal(bad);
    b = illegal;
    EXPECT_FALSE(b.IsLegal());
    EXPECT_FALSE(b.IsEmpty());
    b = b;
    EXPECT_FALSE(b.IsLegal());
    IO::Location moved(static_cast<IO::Location&&>(a));
    EXPECT_STREQ("/tmp/a", moved.GetPath());
    EXPECT_TRUE(a.IsEmpty());
    a = static_cast<IO::Location&&>(moved);
    EXPECT_STREQ("/tmp/a", a.GetPath());
    EXPECT_TRUE(a.IsLegal());
}

// A path that cannot be allocated surfaces as the library's memory exception (the
// library installs the layer's failure handler when it loads), and nothing leaks.
TEST(LocationTest, AllocationFailureIsMemoryException) {
    unsigned short const wide[] = {'/', 't', 'm', 'p', 0};
    IO::Location const original("/tmp/a");
    for (int form = 0; form < 3; ++form) {
        Vela::bmManager::FailNextAllocations(1);
        try {
            if (form == 0)
                IO::Location utf8("/tmp/x");
            else if (form == 1)
                IO::Location utf16(wide);
            else
                IO::Location copy(original);
            ADD_FAILURE() << "form " << form << " did not fail";
        } catch (lumo::base::CMemoryException const& e) {
            EXPECT_STREQ(e.GetSourceFile(), "vela/Location");
        }
    }
    Vela::bmManager::FailNextAllocations(0);
    EXPECT_STREQ(original.GetPath(), "/tmp/a");
}
