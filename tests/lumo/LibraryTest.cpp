// The library's start/stop counter; the saturation case runs 2^31 starts.
// ctest-labels: slow
#include <lumo/Library.h>
#include <vela/IO.h>

#include <gtest/gtest.h>

// One test: the start/stop counter is process-wide.
TEST(Library, StartStopCounter) {
    EXPECT_EQ(lumo::Terminate(), 0); // unbalanced stops are ignored
    EXPECT_EQ(IO::GetInitCount(), 0);

    EXPECT_EQ(lumo::Initialize(), 1);
    EXPECT_EQ(IO::GetInitCount(), 1);
    EXPECT_EQ(lumo::Initialize(), 2);
    EXPECT_EQ(IO::GetInitCount(), 1); // only the first start reaches the file layer
    EXPECT_EQ(lumo::Terminate(), 1);
    EXPECT_EQ(IO::GetInitCount(), 1);
    EXPECT_EQ(lumo::Terminate(), 0);
    EXPECT_EQ(IO::GetInitCount(), 0);

    // The counter saturates instead of overflowing.
    for (long i = 0; i < 0x7fffffffL; ++i)
        lumo::Initialize();
    EXPECT_EQ(IO::GetInitCount(), 1);
    EXPECT_EQ(lumo::Initialize(), 0x7fffffffL);
    EXPECT_EQ(IO::GetInitCount(), 1);
    EXPECT_EQ(lumo::Terminate(), 0x7ffffffeL);
}
