// Tests of CMemoryOutputStream: linear growth in whole steps, reset, detach and close,
// and a failed growth (under a lowered address-space limit) leaving the stream unchanged.
#include "support/Streams.h"

#include <lumo/io/MemoryOutputStream.h>

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

using lumo::base::CMemoryException;
using lumo::io::CIOException;
using lumo::io::CMemoryOutputStream;
using lumotest::ExpectThrowWith;

#if defined(__SANITIZE_ADDRESS__)
// Large allocations fail (and return null) instead of ending the run, so that the
// allocation-failure paths can be exercised.
extern "C" char const* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=1024";
}
#endif

namespace {

// Caps the address space for the lifetime of the object, so that a large growth
// fails. Under AddressSanitizer the allocator cap above does the job instead.
class AddressSpaceCap {
public:
    AddressSpaceCap() {
#if !defined(__SANITIZE_ADDRESS__)
        getrlimit(RLIMIT_AS, &m_old);
        unsigned long pages = 0;
        if (FILE* f = std::fopen("/proc/self/statm", "r")) {
            if (std::fscanf(f, "%lu", &pages) != 1)
                pages = 0;
            std::fclose(f);
        }
        rlimit cap = m_old;
        cap.rlim_cur = pages * static_cast<unsigned long>(sysconf(_SC_PAGESIZE)) + (512ul << 20);
        setrlimit(RLIMIT_AS, &cap);
#endif
    }
    ~AddressSpaceCap() {
#if !defined(__SANITIZE_ADDRESS__)
        setrlimit(RLIMIT_AS, &m_old);
#endif
    }

private:
    rlimit m_old{};
};

std::string Contents(CMemoryOutputStream const& out) {
    return std::string(out.GetBuffer() == nullptr ? "" : out.GetBuffer(), out.GetBufferSize());
}

} // namespace

TEST(MemoryOutputStream, GrowsLinearlyInWholeSteps) {
    CMemoryOutputStream out(0, 0);
    EXPECT_EQ(out.GetBuffer(), nullptr);
    EXPECT_EQ(out.GetBufferCapacity(), 0u);
    out.Write('a');
    EXPECT_EQ(out.GetBufferCapacity(), 64u);
    for (int i = 1; i < 65; ++i)
        out.Write(char('a' + i % 26));
    EXPECT_EQ(out.GetBufferSize(), 65u);
    EXPECT_EQ(out.GetBufferCapacity(), 128u);

    CMemoryOutputStream sized(100, 64);
    EXPECT_EQ(sized.GetBufferCapacity(), 128u);
    EXPECT_EQ(sized.GetBufferSize(), 0u);
    CMemoryOutputStream odd(0, 100);
    odd.Write("0123456789", 1, 5);
    odd.Write("xyz", 3);
    odd.Write(nullptr, 7);
    odd.Write(nullptr, 1, 7);
    EXPECT_EQ(Contents(odd), "12345xyz");
    EXPECT_EQ(odd.GetBufferCapacity(), 100u);
    EXPECT_TRUE(odd.EnsureBufferCapacity(101));
    EXPECT_EQ(odd.GetBufferCapacity(), 200u);
    EXPECT_EQ(Contents(odd), "12345xyz"); // kept across the growth
}

TEST(MemoryOutputStream, ResetDetachAndClose) {
    CMemoryOutputStream out;
    out.Write("hello", 5);
    out.Reset();
    EXPECT_EQ(out.GetBufferSize(), 0u);
    EXPECT_EQ(out.GetBufferCapacity(), 64u);
    out.Write("abc", 3);

    char* block = out.DetachBuffer();
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::string(block, 3), "abc");
    std::free(block); // the caller owns it now
    EXPECT_EQ(out.GetBuffer(), nullptr);
    EXPECT_EQ(out.GetBufferSize(), 0u);
    out.Write('z');
    EXPECT_EQ(Contents(out), "z");
    EXPECT_EQ(out.GetBufferCapacity(), 64u);

    out.Close();
    out.Close();
    EXPECT_EQ(Contents(out), "z");
    lumotest::ExpectOutputClosed(out);
}

TEST(MemoryOutputStream, FailedGrowthLeavesTheStreamUnchanged) {
    // Rounding past 32 bits cannot be allocated at all.
    try {
        CMemoryOutputStream tooLarge(0xFFFFFFFFul, 0);
        ADD_FAILURE() << "expected CMemoryException";
    } catch (CMemoryException const& e) {
        EXPECT_STREQ(e.GetSourceFile(), "lumo/io/MemoryOutputStream");
    }

    CMemoryOutputStream out(0, 0);
    out.Write("keep", 4);
    char* before = out.GetBuffer();
    {
        AddressSpaceCap cap;
        EXPECT_FALSE(out.EnsureBufferCapacity(0xC0000000ul));
        static char const big[1] = {0};
        // The source length is checked against the growth before anything is read.
        ExpectThrowWith<CIOException>([&] { out.Write(big, 0xC0000000ul); }, "Memory full.");
    }
    EXPECT_EQ(out.GetBuffer(), before);
    EXPECT_EQ(Contents(out), "keep");
    EXPECT_EQ(out.GetBufferCapacity(), 64u);
    out.Write('!');
    EXPECT_EQ(Contents(out), "keep!");
}
