// The trace file. It belongs to the tracer, but lies in this room, since it is a stream.

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <memory>
#include <utility>

#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/runtime/kv_lock.h"
#include "kvbase/runtime/kv_tracer.h"
#include "kvbase/stream/kv_fstream.h"
#include "platform/platform.h"
#include "runtime/trace_sink.h"
#include "runtime/user_folder.h"

namespace {

// Guarded by the trace lock; null when no file is open. A file that is open at the end of the process is left
// to the system, so that it takes also what static objects trace as they go.
constinit KV_FStream *traceFile = nullptr;

void writeToFile(void *user, const char *text, int count) noexcept {
    auto *const file = static_cast<KV_FStream *>(user);
    file->Write(text, 1, static_cast<std::uint64_t>(count));
    file->Flush();
}

// Writes a line and that of the present time as ctime gives it (ctime itself has one buffer for all threads).
// Allocates nothing, so that a trace ends also when there is no memory.
void writeBanner(KV_FStream &file, const char *line) {
    constexpr const char *kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr const char *kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::tm now = kv::platform::localTime(std::time(nullptr));
    char text[120];
    std::snprintf(text, sizeof text, "%s\n%s %s %2d %02d:%02d:%02d %d\n\n", line, kDays[now.tm_wday],
                  kMonths[now.tm_mon], now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec, 1900 + now.tm_year);
    file.Puts(text);
    file.Flush();
}

// The name follows a separator whatever it begins with.
KV_FileSpec placeOf(const KV_String &fileName) {
    const KV_WString folder = kv::detail::userFolder();
    if (folder.empty()) return fileName;
    KV_FileSpec file(folder + KV_W('\\'));
    return file += fileName;
}

}  // namespace

// By value in the interface. NOLINTNEXTLINE(performance-unnecessary-value-param)
bool KV_Tracer::StartTracing(bool toFile, KV_String fileName) {
    const KV_Synch lock(GetMutex());
    kv::detail::setTracingStarted();
    if (!toFile || traceFile != nullptr) return false;
    auto file = std::make_unique<KV_FStream>(placeOf(fileName));
    if (!file->Open("w", true)) return false;
    writeBanner(*file, "Kalvor Log File\n");
    traceFile = file.release();
    kv::detail::setTraceFile(writeToFile, traceFile);
    return true;
}

void KV_Tracer::StopTracing() {
    const KV_Synch lock(GetMutex());
    if (traceFile == nullptr) return;
    kv::detail::setTraceFile(nullptr, nullptr);
    const std::unique_ptr<KV_FStream> file(std::exchange(traceFile, nullptr));
    writeBanner(*file, "Logging finished");
    file->Close();
}
