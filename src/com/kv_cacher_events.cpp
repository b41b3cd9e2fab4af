#include "com/kv_cacher_events.h"

namespace kv::detail {

EventHandle EventTable::create() {
    auto event = std::make_shared<CacherEvent>();
    auto *const handle = reinterpret_cast<EventHandle>(++m_last);  // NOLINT(performance-no-int-to-ptr)
    m_open.emplace(handle, std::move(event));
    return handle;
}

void EventTable::signal(EventHandle handle) {
    if (const auto event = find(handle)) event->signal();
}

void EventTable::close(EventHandle handle) {
    const auto at = m_open.find(handle);
    if (at == m_open.end()) return;
    at->second->close();
    m_open.erase(at);
}

std::shared_ptr<CacherEvent> EventTable::find(EventHandle handle) const {
    const auto at = m_open.find(handle);
    return at == m_open.end() ? nullptr : at->second;
}

}  // namespace kv::detail
