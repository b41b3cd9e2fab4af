#include <gtest/gtest.h>

#include <thread>

#include "platform/platform.h"

namespace platform = kv::platform;
using namespace std::chrono_literals;

namespace {

// The tests of the locks hold mutex and semaphore to their word.
TEST(PlatformThreads, EventLetsOneThroughForEachSignal) {
    platform::AutoResetEvent event, answer;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(event.wait(5ms));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 5ms);
    event.signal();
    event.signal();
    EXPECT_TRUE(event.wait(0ms));
    EXPECT_FALSE(event.wait(-1ms));
    int value = 0;
    std::thread other([&] {
        EXPECT_TRUE(event.wait(std::chrono::milliseconds::max()));
        EXPECT_EQ(value++, 1);
        answer.signal();
    });
    value = 1;
    event.signal();
    EXPECT_TRUE(answer.wait(10min));
    EXPECT_EQ(value, 2);
    other.join();
}

TEST(PlatformThreads, SemaphoreHasAPossibleCount) {
    const struct {
        int initial, maximum;
        bool isValid;
    } kCases[] = {{0, 1, true}, {1, 1, true}, {2, 1, false}, {-1, 1, false}, {0, 0, false}, {0, -1, false}};
    for (const auto &c : kCases)
        EXPECT_EQ(platform::Semaphore(c.initial, c.maximum).isValid(), c.isValid)
            << c.initial << " of " << c.maximum;
}

}  // namespace
