#pragma once

// The one way in which the library writes lines of its own tracer, "KvBaseTrace".

#include <charconv>
#include <cstdint>
#include <iterator>
#include <ostream>
#include <type_traits>

#include "kvbase/runtime/kv_lock.h"
#include "kvbase/runtime/kv_tracer.h"

namespace kv::detail {

constexpr std::uint32_t kTraceError = 0x001;
constexpr std::uint32_t kTraceWarning = 0x002;
constexpr std::uint32_t kTraceDetail = 0x010;
constexpr std::uint32_t kTraceSystem = 0x080;
constexpr std::uint32_t kTraceConstruct = 0x100;

/// The library's own tracer, null when the table of tracers was full before its first use.
inline const KV_Tracer *baseTracer() {
    static const KV_Tracer *const tracer = KV_Tracer::FindOrCreate("KvBaseTrace");
    return tracer;
}

/// Whether a line of that level would be written.
inline bool traceIsOn(std::uint32_t level) {
    const KV_Tracer *tracer = baseTracer();
    return tracer != nullptr && tracer->IsOn(level);
}

/// The beginning of a line: that of its level, the tracer's name and " : ".
inline void beginTraceLine(std::ostream &out, const KV_Tracer &tracer, std::uint32_t level) {
    const char *beginning = level == kTraceError     ? "*** ERROR *** : module "
                            : level == kTraceWarning ? "WARNING : module "
                                                     : "module ";
    out.width(0);  // what a caller has left there is not meant for this line
    out << beginning << tracer.Name() << " : ";
}

/// When the level is on, writes a line under the trace lock: its beginning, then what write(stream) does.
/// Raises nothing: what the lock, the stream or write raises ends the line, and no more.
template <class Write>
void writeTraceLine(std::uint32_t level, const Write &write) {
    if (!traceIsOn(level)) return;
    try {
        const KV_Synch lock(KV_Tracer::GetMutex());
        std::ostream *out = baseTracer()->Stream();  // again, now that it can no longer be taken away
        if (out == nullptr) return;
        beginTraceLine(*out, *baseTracer(), level);
        write(*out);
    } catch (...) {  // would take the place of the failure that the line tells about
    }
}

/// Writes an integer (an enumerator, a boolean as 1 or 0) in plain decimal whatever the stream's flags and
/// locale say, and leaves these alone; any other piece by <<.
template <class Piece>
void writePiece(std::ostream &out, const Piece &piece) {
    if constexpr (std::is_enum_v<Piece>) {
        writePiece(out, static_cast<std::underlying_type_t<Piece>>(piece));
    } else if constexpr (std::is_same_v<Piece, bool> || (std::is_integral_v<Piece> && sizeof(Piece) > 1)) {
        char digits[20];  // of 64 bits, with a sign
        out.write(digits, std::to_chars(digits, std::end(digits), +piece).ptr - digits);
    } else {
        out << piece;
    }
}

/// A line of the pieces, end of line and flush. Pieces are not formatted when the level is off. Raises
/// nothing.
template <class... Pieces>
void traceLine(std::uint32_t level, const Pieces &...pieces) {
    writeTraceLine(level, [&](std::ostream &out) {
        (writePiece(out, pieces), ...);
        out << std::endl;
    });
}

}  // namespace kv::detail
