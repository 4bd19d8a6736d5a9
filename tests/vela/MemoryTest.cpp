// Tests of the root layer's memory services: handles, injected allocation failures, and
// the range checker.
#include <vela/Memory.h>

#include <gtest/gtest.h>

#include <cstring>

using namespace Vela;

TEST(Memory, Handles) {
    BMHandle h = bmManager::NewHandle(16);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(bmManager::GetSize(h), 16u);
    EXPECT_EQ(bmManager::Access(h), *h);
    std::memcpy(*h, "0123456789abcdef", 16);

    // Growing keeps the contents, returns the same handle and moves the block.
    char* const before = *h;
    EXPECT_EQ(bmManager::ResizeHandle(h, 4096), h);
    EXPECT_EQ(bmManager::GetSize(h), 4096u);
    EXPECT_NE(*h, before);
    EXPECT_EQ(std::memcmp(*h, "0123456789abcdef", 16), 0);
    std::memset(*h + 16, 'x', 4096 - 16);
    // Shrinking keeps what fits.
    EXPECT_EQ(bmManager::ResizeHandle(h, 4), h);
    EXPECT_EQ(bmManager::GetSize(h), 4u);
    EXPECT_EQ(std::memcmp(bmManager::Access(h), "0123", 4), 0);
    bmManager::KillHandle(h);

    BMHandle empty = bmManager::NewHandle(0);
    ASSERT_NE(empty, nullptr);
    EXPECT_NE(bmManager::Access(empty), nullptr);
    EXPECT_EQ(bmManager::GetSize(empty), 0u);
    EXPECT_EQ(bmManager::ResizeHandle(empty, 3), empty);
    bmManager::KillHandle(empty);

    bmManager::KillHandle(nullptr);
    EXPECT_EQ(bmManager::Access(nullptr), nullptr);
    EXPECT_EQ(bmManager::GetSize(nullptr), 0u);
    EXPECT_EQ(bmManager::ResizeHandle(nullptr, 8), nullptr);
}

TEST(Memory, InjectedFailures) {
    BMHandle h = bmManager::NewHandle(8);
    ASSERT_NE(h, nullptr);
    std::memcpy(*h, "abcdefg", 8);
    char* const block = *h;

    bmManager::FailNextAllocations(2);
    EXPECT_EQ(bmManager::NewHandle(8), nullptr);
    // A failed resize leaves the handle, its block and contents untouched.
    EXPECT_EQ(bmManager::ResizeHandle(h, 100), nullptr);
    EXPECT_EQ(*h, block);
    EXPECT_EQ(bmManager::GetSize(h), 8u);
    EXPECT_STREQ(*h, "abcdefg");
    // The third call succeeds again.
    EXPECT_EQ(bmManager::ResizeHandle(h, 100), h);
    EXPECT_STREQ(*h, "abcdefg");

    bmManager::FailNextAllocations(5);
    bmManager::FailNextAllocations(0); // cancels
    BMHandle other = bmManager::NewHandle(1);
    EXPECT_NE(other, nullptr);
    bmManager::KillHandle(other);
    bmManager::KillHandle(h);
}

TEST(Memory, RangeChecker) {
    char buffer[4] = {};
    EXPECT_TRUE(bnManager::IsReadable(buffer, 4));
    EXPECT_TRUE(bnManager::IsWritable(buffer, 4));
    EXPECT_TRUE(bnManager::IsReadable(buffer, 0));
    EXPECT_FALSE(bnManager::IsReadable(nullptr, 1));
    EXPECT_FALSE(bnManager::IsWritable(nullptr, 1));
    EXPECT_TRUE(bnManager::IsReadable(nullptr, 0));
    EXPECT_TRUE(bnManager::IsWritable(nullptr, 0));
}
