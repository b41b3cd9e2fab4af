#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <new>
#include <system_error>

#include "platform/platform.h"

namespace kv::platform {
namespace {

pthread_mutex_t *nativeMutex(unsigned char *place) {
    return std::launder(reinterpret_cast<pthread_mutex_t *>(place));
}

}  // namespace

RecursiveMutex::RecursiveMutex() : m_native() {
    static_assert(sizeof(pthread_mutex_t) <= sizeof m_native &&
                  alignof(pthread_mutex_t) <= alignof(std::max_align_t));
    auto *mutex = new (m_native) pthread_mutex_t;
    pthread_mutexattr_t kind;
    int error = pthread_mutexattr_init(&kind);
    if (error == 0) {
        error = pthread_mutexattr_settype(&kind, PTHREAD_MUTEX_RECURSIVE);
        if (error == 0) error = pthread_mutex_init(mutex, &kind);
        pthread_mutexattr_destroy(&kind);
    }
    if (error == ENOMEM) throw std::bad_alloc();
    if (error != 0) throw std::system_error(error, std::generic_category(), "recursive mutex");
}

RecursiveMutex::~RecursiveMutex() { pthread_mutex_destroy(nativeMutex(m_native)); }

void RecursiveMutex::lock() { pthread_mutex_lock(nativeMutex(m_native)); }

void RecursiveMutex::unlock() { pthread_mutex_unlock(nativeMutex(m_native)); }

struct KernelMutex::State {
    RecursiveMutex mutex;
};

KernelMutex::KernelMutex() : m_state(std::make_unique<State>()) {}

KernelMutex::~KernelMutex() = default;

void KernelMutex::lock() { m_state->mutex.lock(); }

void KernelMutex::unlock() { m_state->mutex.unlock(); }

struct Semaphore::State {
    State(int initial, int maximum) : count(initial), most(maximum) {}

    std::mutex mutex;
    std::condition_variable raised;
    int count;  // guarded by mutex
    const int most;
};

Semaphore::Semaphore(int initial, int maximum) {
    if (maximum > 0 && initial >= 0 && initial <= maximum)
        m_state.reset(new (std::nothrow) State(initial, maximum));
}

Semaphore::~Semaphore() = default;

bool Semaphore::isValid() const { return m_state != nullptr; }

void Semaphore::signal() {
    if (!m_state) return;
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    if (m_state->count == m_state->most) return;
    ++m_state->count;
    m_state->raised.notify_one();
}

void Semaphore::wait() {
    if (!m_state) return;
    std::unique_lock<std::mutex> lock(m_state->mutex);
    m_state->raised.wait(lock, [this] { return m_state->count > 0; });
    --m_state->count;
}

struct AutoResetEvent::State {
    std::mutex mutex;
    std::condition_variable raised;
    bool isSignalled = false;  // guarded by mutex
};

AutoResetEvent::AutoResetEvent() : m_state(std::make_unique<State>()) {}

AutoResetEvent::~AutoResetEvent() = default;

// Both signals are given while the mutex is held: a waiter may delete the object as soon as it is let
// through.
void AutoResetEvent::signal() {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->isSignalled = true;
    m_state->raised.notify_one();
}

bool AutoResetEvent::wait(std::chrono::milliseconds atMost) {
    constexpr std::chrono::milliseconds kForever =
        std::chrono::hours(24 * 365 * 100);  // the end still fits the clock
    const auto end =
        std::chrono::steady_clock::now() + std::clamp(atMost, std::chrono::milliseconds(0), kForever);
    std::unique_lock<std::mutex> lock(m_state->mutex);
    if (!m_state->raised.wait_until(lock, end, [this] { return m_state->isSignalled; })) return false;
    m_state->isSignalled = false;
    return true;
}

}  // namespace kv::platform
