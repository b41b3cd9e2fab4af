#include "runtime/trace_sink.h"

#include <atomic>
#include <iostream>

#include "kvbase/runtime/kv_lock.h"
#include "kvbase/runtime/kv_tracer.h"

// dout has to stand before, and to go after, every other static object that might trace.
#if defined(_MSC_VER)
#    pragma warning(disable : 4073)  // that the place is meant for libraries
#    pragma init_seg(lib)
#    define KV_INIT_FIRST
#else
#    define KV_INIT_FIRST __attribute__((init_priority(101)))
#endif

namespace {

constinit std::atomic<bool> started{false};
constinit kv::detail::TraceFileWriter writeFile = nullptr;  // guarded by the trace lock, as its user
constinit void *fileUser = nullptr;

void sink(void * /*user*/, const char *text, int count) {
    if (!started) return;
    const KV_Synch lock(KV_Tracer::GetMutex());
    if (writeFile != nullptr) {
        writeFile(fileUser, text, count);
        return;
    }
    try {
        std::cout.write(text, count);
    } catch (...) {  // the trace stream would take it for its own failure, and write no more
        return;
    }
}

// The buffer of the trace stream. At the end of the process it hands on what no flush has handed on.
class TraceBuffer : public KV_FuncStrmbuf {
public:
    TraceBuffer() : KV_FuncStrmbuf(&sink) {}
    TraceBuffer(const TraceBuffer &) = delete;
    TraceBuffer &operator=(const TraceBuffer &) = delete;
    ~TraceBuffer() override { KV_FuncStrmbuf::sync(); }

private:
    std::ios_base::Init m_standardStreams;  // the sink's std::cout stands as long as the buffer does
};

KV_INIT_FIRST TraceBuffer traceBuffer;

}  // namespace

KV_INIT_FIRST std::ostream dout(&traceBuffer);

namespace {

// Goes before dout does: what still traces at the end of the process then finds its tracer off.
struct TraceStreamEnd {
    TraceStreamEnd() = default;
    TraceStreamEnd(const TraceStreamEnd &) = delete;
    TraceStreamEnd &operator=(const TraceStreamEnd &) = delete;
    ~TraceStreamEnd() { kv::detail::disconnectTracers(dout); }
};

KV_INIT_FIRST TraceStreamEnd traceStreamEnd;

}  // namespace

namespace kv::detail {

void setTraceFile(TraceFileWriter write, void *user) {
    const KV_Synch lock(KV_Tracer::GetMutex());
    dout.flush();
    writeFile = write;
    fileUser = user;
}

bool traceFileIsSet() {
    const KV_Synch lock(KV_Tracer::GetMutex());
    return writeFile != nullptr;
}

void setTracingStarted() {
    const KV_Synch lock(KV_Tracer::GetMutex());
    dout.flush();
    started = true;
}

}  // namespace kv::detail
