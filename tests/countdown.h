#pragma once

#include <atomic>
#include <thread>

// Lets threads wait until a number of things have happened. std::latch would do, but the one that comes with
// MinGW-w64's GCC 12 loses a signal that comes between a waiter's look and its sleep.
class Countdown {
public:
    explicit Countdown(int count) : m_left(count) {}
    void countDown() { --m_left; }
    void wait() const {
        while (m_left > 0)
            std::this_thread::yield();
    }

private:
    std::atomic<int> m_left;
};
