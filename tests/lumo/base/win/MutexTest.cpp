// ctest-labels: concurrency
#include <lumo/base/win/Mutex.h>
#include <lumo/base/win/WinSystemErrorException.h>

#include "support/Concurrency.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <thread>
#include <vector>

using namespace lumo::base;
using namespace lumo::base::win;

TEST(Mutex, RecursionOwnershipAndReleaseErrors) {
    CMutex m;
    EXPECT_TRUE(m.IsTimeoutSupported());
    EXPECT_STREQ(m.GetClass()->GetQualifiedName(), "lumo::base::win::CMutex");
    EXPECT_TRUE(m.IsInstanceOf(&CSyncObject::m_classCSyncObject));
    m.Acquire();
    EXPECT_TRUE(m.TryAcquire(0));
    std::thread([&] {
        EXPECT_FALSE(m.TryAcquire(0));
        EXPECT_FALSE(m.TryAcquire(15));
        // Only the owner may release.
        try {
            m.Release();
            ADD_FAILURE() << "a thread that does not own the mutex released it";
        } catch (CWinSystemErrorException const& e) {
            EXPECT_STREQ(e.GetErrorDescription(), "Failed to release the underlying mutex object.");
            EXPECT_EQ(e.GetErrorCode(), static_cast<unsigned long>(EPERM));
            EXPECT_STREQ(e.GetMessage(), std::strerror(EPERM));
            EXPECT_STREQ(e.GetSourceFile(), "lumo/base/win/Mutex");
        }
    }).join();
    m.Release();
    std::thread([&] { EXPECT_FALSE(m.TryAcquire(0)); }).join(); // still held once
    m.Release();
    std::thread([&] {
        EXPECT_TRUE(m.TryAcquire(0));
        m.Release();
    }).join();
    EXPECT_EQ(lumotest::Thrown<CWinSystemErrorException>([&] { m.Release(); }),
              "Failed to release the underlying mutex object.");
}

TEST(Mutex, InitialOwnerAndNamedOpening) {
    CMutex owned(nullptr, true);
    std::thread([&] { EXPECT_FALSE(owned.TryAcquire(0)); }).join();
    owned.Release();
    std::thread([&] {
        EXPECT_TRUE(owned.TryAcquire(0));
        owned.Release();
    }).join();

    CMutex first("lumo-test-mutex");
    std::thread([&] {
        // Opening the existing mutex ignores initialOwner.
        CMutex second("lumo-test-mutex", true);
        EXPECT_TRUE(second.TryAcquire(0));
        second.Release();
    }).join();
}

TEST(Mutex, StressExcludesUnderContention) {
    CMutex m;
    long counter = 0; // plain: the mutex alone must order the increments
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 5000; ++i) {
                if (i % 2 == 0)
                    m.Acquire();
                else
                    while (!m.TryAcquire(1)) {
                    }
                ++counter;
                m.Release();
            }
        });
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(counter, 20000);
}
