// ctest-labels: concurrency
#include <lumo/base/Lock.h>
#include <lumo/base/Semaphore.h>

#include "support/Concurrency.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

using namespace lumo::base;
using lumotest::Thrown;

TEST(Semaphore, CountsAndLimits) {
    CSemaphore s(0, 1);
    EXPECT_FALSE(s.IsNamed());
    EXPECT_FALSE(s.IsShared());
    EXPECT_FALSE(s.TryAcquire(0));
    s.Release();
    EXPECT_TRUE(s.TryAcquire(0));
    EXPECT_FALSE(s.TryAcquire(0));
    s.Release();
    EXPECT_EQ(Thrown<CSynchronizationException>([&] { s.Release(); }),
              "Failed to release the semaphore.");
    s.Acquire(); // the failed release added nothing
    auto const start = std::chrono::steady_clock::now();
    EXPECT_FALSE(s.TryAcquire(30));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(29));

    EXPECT_EQ(Thrown<CIllegalArgumentException>([] { CSemaphore bad(2, 1); }),
              "Invalid initial count.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([] { CSemaphore bad(0ul, 0ul); }),
              "Invalid maximum count.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([] { CSemaphore bad(1, 0x80000000ul); }),
              "Invalid maximum count.");
    try {
        CSemaphore bad(2, 1);
    } catch (CIllegalArgumentException const& e) {
        EXPECT_STREQ(e.GetSourceFile(), "lumo/base/win/WinSemaphoreImpl");
    }

    CSemaphore three(3, 3);
    std::thread([&] {
        for (int i = 0; i < 3; ++i)
            EXPECT_TRUE(three.TryAcquire(0));
        EXPECT_FALSE(three.TryAcquire(0));
    }).join();
}

TEST(Semaphore, NamedIsSharedByNameAndBetweenProcesses) {
    EXPECT_EQ(Thrown<CIllegalArgumentException>([] { CSemaphore bad(nullptr, 0); }),
              "Invalid semaphore name.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([] { CSemaphore bad("", 0); }),
              "Invalid semaphore name.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([] { CSemaphore bad("a/b", 0); }),
              "Invalid semaphore name.");
    EXPECT_EQ(Thrown<CIllegalArgumentException>([] { CSemaphore bad("ok", 0x80000000ul); }),
              "Invalid initial count.");

    std::string const name = "lumo-test-sem-" + std::to_string(getpid());
    CSemaphore a(name.c_str(), 1);
    EXPECT_TRUE(a.IsNamed());
    EXPECT_TRUE(a.IsShared());
    {
        CSemaphore b(name.c_str(), 5); // opens: the count stays 1
        EXPECT_TRUE(b.TryAcquire(0));
        EXPECT_FALSE(a.TryAcquire(0));
        b.Release();
    }
    EXPECT_TRUE(a.TryAcquire(0));

    pid_t const child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        CSemaphore c(name.c_str(), 0);
        c.Release();
        c.Release();
        _exit(0);
    }
    EXPECT_TRUE(a.TryAcquire(20000));
    EXPECT_TRUE(a.TryAcquire(20000));
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_FALSE(a.TryAcquire(0));
}

// Two semaphores and a lock make a bounded queue: producers never overfill it,
// consumers never take from it empty, and every item arrives once.
TEST(Semaphore, StressBoundedQueue) {
    constexpr int kCapacity = 8, kProducers = 3, kConsumers = 3, kItems = 3000;
    CSemaphore freeSlots(kCapacity, kCapacity), usedSlots(0, kCapacity);
    CLock lock;
    int ring[kCapacity];
    int head = 0, tail = 0, size = 0, maxSize = 0; // guarded by lock
    std::atomic<long long> sum{0};
    std::vector<std::thread> threads;
    for (int p = 0; p < kProducers; ++p)
        threads.emplace_back([&, p] {
            for (int i = 0; i < kItems; ++i) {
                if (i % 2 == 0)
                    freeSlots.Acquire();
                else
                    while (!freeSlots.TryAcquire(1)) {
                    }
                lock.Acquire();
                ring[tail] = p * kItems + i;
                tail = (tail + 1) % kCapacity;
                maxSize = std::max(maxSize, ++size);
                lock.Release();
                usedSlots.Release();
            }
        });
    for (int c = 0; c < kConsumers; ++c)
        threads.emplace_back([&] {
            for (int i = 0; i < kItems * kProducers / kConsumers; ++i) {
                usedSlots.Acquire();
                lock.Acquire();
                int const item = ring[head];
                head = (head + 1) % kCapacity;
                --size;
                lock.Release();
                freeSlots.Release();
                sum += item;
            }
        });
    for (auto& t : threads)
        t.join();
    long long const total = kProducers * kItems;
    EXPECT_EQ(sum.load(), total * (total - 1) / 2);
    EXPECT_LE(maxSize, kCapacity);
    EXPECT_EQ(size, 0);
    EXPECT_FALSE(usedSlots.TryAcquire(0));
}
