#include <algorithm>
#include <new>
#include <system_error>

#include "platform/platform.h"
#include "platform/windows/system.h"

namespace kv::platform {
namespace {

CRITICAL_SECTION *nativeMutex(unsigned char *place) {
    return std::launder(reinterpret_cast<CRITICAL_SECTION *>(place));
}

[[noreturn]] void throwLastError(const char *what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

}  // namespace

RecursiveMutex::RecursiveMutex() : m_native() {
    static_assert(sizeof(CRITICAL_SECTION) <= sizeof m_native &&
                  alignof(CRITICAL_SECTION) <= alignof(std::max_align_t));
    InitializeCriticalSection(new (m_native) CRITICAL_SECTION);
}

RecursiveMutex::~RecursiveMutex() { DeleteCriticalSection(nativeMutex(m_native)); }

void RecursiveMutex::lock() { EnterCriticalSection(nativeMutex(m_native)); }

void RecursiveMutex::unlock() { LeaveCriticalSection(nativeMutex(m_native)); }

struct KernelMutex::State {
    detail::KernelHandle handle;
};

KernelMutex::KernelMutex() : m_state(std::make_unique<State>()) {
    m_state->handle.reset(CreateMutexW(nullptr, FALSE, nullptr));
    if (m_state->handle == nullptr) throwLastError("mutex");
}

KernelMutex::~KernelMutex() = default;

void KernelMutex::lock() { WaitForSingleObject(m_state->handle.get(), INFINITE); }

void KernelMutex::unlock() { ReleaseMutex(m_state->handle.get()); }

struct Semaphore::State {
    detail::KernelHandle handle;
};

Semaphore::Semaphore(int initial, int maximum) {
    detail::KernelHandle handle(CreateSemaphoreW(nullptr, initial, maximum, nullptr));
    if (handle != nullptr) m_state.reset(new (std::nothrow) State{std::move(handle)});
}

Semaphore::~Semaphore() = default;

bool Semaphore::isValid() const { return m_state != nullptr; }

void Semaphore::signal() {
    if (m_state) ReleaseSemaphore(m_state->handle.get(), 1, nullptr);
}

void Semaphore::wait() {
    if (m_state) WaitForSingleObject(m_state->handle.get(), INFINITE);
}

struct AutoResetEvent::State {
    detail::KernelHandle handle;
};

AutoResetEvent::AutoResetEvent() : m_state(std::make_unique<State>()) {
    m_state->handle.reset(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    if (m_state->handle == nullptr) throwLastError("event");
}

AutoResetEvent::~AutoResetEvent() = default;

void AutoResetEvent::signal() { SetEvent(m_state->handle.get()); }

// The system counts in ticks of its clock and may wake up to one of them early.
bool AutoResetEvent::wait(std::chrono::milliseconds atMost) {
    using std::chrono::milliseconds;
    using Clock = std::chrono::steady_clock;
    constexpr milliseconds kLongest{0x7FFFFFFF};                           // one call; 24 days
    constexpr milliseconds kForever = std::chrono::hours(24 * 365 * 100);  // the end still fits the clock
    const auto end = Clock::now() + std::clamp(atMost, milliseconds(0), kForever);
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
        const DWORD slice = static_cast<DWORD>(std::clamp(left, milliseconds(0), kLongest).count());
        if (WaitForSingleObject(m_state->handle.get(), slice) == WAIT_OBJECT_0) return true;
        if (Clock::now() >= end) return false;
    }
}

}  // namespace kv::platform
