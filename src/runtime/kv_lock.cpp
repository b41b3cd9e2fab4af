#include "kvbase/runtime/kv_lock.h"

#include <new>

#include "platform/platform.h"

namespace {
constexpr int kMaximumCount = 1024;
}

KV_Mutex::KV_Mutex() : m_mutex(std::make_unique<kv::platform::RecursiveMutex>()) {}
KV_Mutex::~KV_Mutex() = default;
void KV_Mutex::Lock() { m_mutex->lock(); }
void KV_Mutex::Unlock() { m_mutex->unlock(); }

KV_MutexCacher::KV_MutexCacher() : m_mutex(std::make_unique<kv::platform::KernelMutex>()) {}
KV_MutexCacher::~KV_MutexCacher() = default;
void KV_MutexCacher::Lock() { m_mutex->lock(); }
void KV_MutexCacher::Unlock() { m_mutex->unlock(); }

KV_Semaphore::KV_Semaphore(int initial)
    : m_initial(initial), m_semaphore(new (std::nothrow) kv::platform::Semaphore(initial, kMaximumCount)) {}
KV_Semaphore::~KV_Semaphore() = default;
void KV_Semaphore::Signal() {
    if (m_semaphore) m_semaphore->signal();
}
void KV_Semaphore::Wait() {
    if (m_semaphore) m_semaphore->wait();
}
