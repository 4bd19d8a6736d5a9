// Tests of resource modules and their strings, and of redirecting the debug output.
#include <vela/Debug.h>
#include <vela/Resource.h>

#include <gtest/gtest.h>

#include <string>

using namespace Vela;

namespace {
char const* const kFirstStrings[] = {"zero", "one"};
char const* const kSecondStrings[] = {"null", "eins", "zwei"};
RSStringTable const kFirstTables[] = {{"STRS", 500, kFirstStrings, 2}};
RSStringTable const kSecondTables[] = {{"STRS", 500, kSecondStrings, 3},
                                       {"OTHR", 500, kFirstStrings, 2}};
RSModuleInfo const kFirst = {"first", kFirstTables, 1};
RSModuleInfo const kSecond = {"second", kSecondTables, 2};
} // namespace

TEST(Resource, ModulesAndStrings) {
    // The library registered itself at load and left no module active.
    long const before = RSGetActiveModule();
    EXPECT_EQ(RSAddModule(nullptr), 0);

    long const first = RSAddModule(&kFirst);
    long const second = RSAddModule(&kSecond);
    ASSERT_GT(first, 0);
    ASSERT_GT(second, first);
    EXPECT_EQ(RSGetActiveModule(), second);

    EXPECT_STREQ(RSLoadString("STRS", 500, 1), "eins");
    EXPECT_EQ(RSSetActiveModule(first), second);
    EXPECT_STREQ(RSLoadString("STRS", 500, 1), "one");
    // Falls back to the other modules for what the active one lacks.
    EXPECT_STREQ(RSLoadString("STRS", 500, 2), "zwei");
    EXPECT_STREQ(RSLoadString("OTHR", 500, 0), "zero");
    EXPECT_EQ(RSLoadString("STRS", 501, 0), nullptr);
    EXPECT_EQ(RSLoadString(nullptr, 500, 0), nullptr);

    EXPECT_TRUE(RSRemoveModule(second));
    EXPECT_FALSE(RSRemoveModule(second));
    EXPECT_EQ(RSLoadString("STRS", 500, 2), nullptr);
    EXPECT_TRUE(RSRemoveModule(first));
    EXPECT_EQ(RSGetActiveModule(), 0);
    RSSetActiveModule(before);
}

TEST(Debug, OutputCanBeRedirected) {
    std::string captured;
    DBSetOutput(
        [](char const* text, void* context) { *static_cast<std::string*>(context) += text; },
        &captured);
    EXPECT_EQ(DBPrintf("%s=%d;", "x", 42), 5);
    std::string const big(2000, 'y');
    DBPrintf("%s", big.c_str());
    DBSetOutput(nullptr, nullptr);
    DBPrintf("to standard error\n");
    EXPECT_EQ(captured, "x=42;" + big);
}
