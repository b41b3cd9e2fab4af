#include "kvbase/runtime/kv_tracer.h"

#include <cstring>
#include <mutex>

#include "kvbase/runtime/kv_lock.h"
#include "runtime/trace_line.h"
#include "runtime/trace_sink.h"

namespace {

constexpr int kSlots = 64;

// A constant at start and never torn down, as its lock: tracers are named, and trace, at any moment.
constinit KV_Tracer
    table[kSlots];  // slots and names guarded by tableLock(); once taken, a name never changes

// Nothing else is taken under it.
std::mutex &tableLock() {
    static std::mutex *const lock = new std::mutex;
    return *lock;
}

// The single bit that stands for a caller's level.
std::uint32_t bitOf(std::uint32_t level) {
    constexpr std::uint32_t kOther = 0x800;
    const bool isSingleBit = level != 0 && (level & (level - 1)) == 0;
    return isSingleBit && level < kOther ? level : kOther;
}

}  // namespace

KV_Tracer::KV_Tracer(const KV_Tracer &other) : m_mask(other.m_mask.load()), m_stream(other.m_stream.load()) {
    std::memcpy(m_name, other.m_name, sizeof m_name);
}

KV_Tracer &KV_Tracer::operator=(const KV_Tracer &other) {
    if (this == &other) return *this;
    std::memcpy(m_name, other.m_name, sizeof m_name);
    m_mask = other.m_mask.load();
    m_stream = other.m_stream.load();
    return *this;
}

KV_Tracer *KV_Tracer::FindOrCreate(const char *name) {
    if (name == nullptr || *name == '\0') return nullptr;
    const std::lock_guard<std::mutex> lock(tableLock());
    for (KV_Tracer &tracer : table) {
        if (std::strncmp(tracer.m_name, name, kNameLength) == 0) return &tracer;
    }
    for (KV_Tracer &tracer : table) {
        if (tracer.m_name[0] != '\0') continue;
        std::strncpy(tracer.m_name, name, kNameLength);
        return &tracer;
    }
    return nullptr;
}

int KV_Tracer::GetMask(const char *name, std::uint32_t *mask) {
    const KV_Tracer *tracer = FindOrCreate(name);
    *mask = tracer != nullptr ? tracer->m_mask.load() : 0;
    return tracer != nullptr ? 0 : -1;
}

int KV_Tracer::SetMask(const char *name, std::uint32_t mask) {
    KV_Tracer *tracer = FindOrCreate(name);
    if (tracer == nullptr) return -1;
    tracer->m_mask = mask;
    return 0;
}

int KV_Tracer::GetStreamP(const char *name, std::ostream **stream) {
    const KV_Tracer *tracer = FindOrCreate(name);
    *stream = tracer != nullptr ? tracer->m_stream.load() : nullptr;
    return tracer != nullptr ? 0 : -1;
}

int KV_Tracer::SetStreamP(const char *name, std::ostream *stream) {
    KV_Tracer *tracer = FindOrCreate(name);
    if (tracer == nullptr) return -1;
    const KV_Synch lock(GetMutex());
    tracer->m_stream = stream;
    return 0;
}

void KV_Tracer::SetTracing(const char *name, std::uint32_t mask) {
    if (SetStreamP(name, &dout) == 0) SetMask(name, mask);
}

KV_Mutex *KV_Tracer::GetMutex() {
    static KV_Mutex *const mutex = new KV_Mutex;  // for good: destructors at the end of the process trace too
    return mutex;
}

void kv::detail::disconnectTracers(const std::ostream &stream) {
    const KV_Synch lock(KV_Tracer::GetMutex());
    for (KV_Tracer &tracer : table) {  // not by name: an assignment may have given two of them the same
        if (tracer.m_stream == &stream) tracer.m_stream = nullptr;
    }
}

void KalvorTrace(std::string &text, std::uint32_t level) {
    const std::uint32_t bit = bitOf(level);
    kv::detail::writeTraceLine(bit, [&](std::ostream &out) {
        out << text;
        if (bit != kv::detail::kTraceError && bit != kv::detail::kTraceWarning) out.flush();
    });
}
