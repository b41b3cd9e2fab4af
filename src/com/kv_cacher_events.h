#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "platform/platform.h"

namespace kv::detail {

/// Events as the cacher hands them out: numbers in the form of pointers, none of which is given twice.
using EventHandle = void *;
// NOLINTNEXTLINE(performance-no-int-to-ptr,misc-misplaced-const)
inline const EventHandle kNoEvent = reinterpret_cast<EventHandle>(std::intptr_t{-1});

/// An event that lets one waiter through for each signal until it is closed, and then everybody.
class CacherEvent {
public:
    void signal() { m_event.signal(); }
    void close() {
        m_closed = true;
        m_event.signal();
    }
    /// False when the time was over.
    bool wait(std::chrono::milliseconds atMost) {
        const bool signalled = m_event.wait(atMost);
        if (m_closed) m_event.signal();  // for the next one
        return signalled;
    }

private:
    kv::platform::AutoResetEvent m_event;
    std::atomic<bool> m_closed{false};
};

/// The open events. Not locked.
class EventTable {
public:
    EventHandle create();
    /// kNoEvent and closed ones are ignored.
    void signal(EventHandle handle);
    void close(EventHandle handle);
    /// The event, to be waited for while no lock is held; null when it is closed.
    std::shared_ptr<CacherEvent> find(EventHandle handle) const;
    int count() const { return static_cast<int>(m_open.size()); }

private:
    std::uintptr_t m_last = 0;
    std::unordered_map<EventHandle, std::shared_ptr<CacherEvent>> m_open;
};

}  // namespace kv::detail
