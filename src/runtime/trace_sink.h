#pragma once

// Where the trace stream's text goes: dropped until tracing was started, then to the trace file, or to the
// standard output while there is none. The file itself belongs to a room above this one and hooks in here.

#include <iosfwd>

namespace kv::detail {

/// Writes count characters to the trace file and flushes it. Called under the trace lock. Must not throw: the
/// trace stream would take it for its own failure, and write no more. What it reports to the trace stream
/// itself is dropped, so that a failing file does not feed on its own failures.
using TraceFileWriter = void (*)(void *user, const char *text, int count) noexcept;

/// From now on text goes to write, called with user; null takes the file away. Waits for a line that is being
/// written, so the former file may then go; text that still stands in the stream goes there first.
void setTraceFile(TraceFileWriter write, void *user);

/// Whether a trace file is set.
bool traceFileIsSet();

/// Opens the sink, for the rest of the process. Text that stood in the stream before is dropped.
void setTracingStarted();

}  // namespace kv::detail
