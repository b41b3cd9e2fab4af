#pragma once

// Tracing: a log of the whole process, to which modules write lines by name and level. A tracer is a name, a
// mask of level bits and a stream; it writes a line of a level when it has a stream and its mask has the
// level's bit. The library's own tracer is "KvBaseTrace".
//
// Levels and the beginnings of their lines: 0x001 errors, "*** ERROR *** : module "; 0x002 warnings,
// "WARNING : module "; all others "module ": 0x010 internal detail, 0x080 the banner of the operating system,
// 0x100 construction of objects; 0x004, 0x008, 0x020, 0x040, 0x200, 0x400, 0x800 are free. The tracer's name,
// " : " and the text follow.
//
// How a module traces, so that a line that is off costs a few loads and tests, and its text is never built:
//
//     static KV_Tracer *const tracer = KV_Tracer::FindOrCreate("KvProfile");
//     if (tracer != nullptr && tracer->IsOn(0x010)) {
//         KV_Synch lock(KV_Tracer::GetMutex());
//         if (std::ostream *out = tracer->Stream())
//             *out << "module " << tracer->Name() << " : found " << count << " tags" << std::endl;
//     }
//
// Any thread may trace at any time, also during static initialisation. A stream may fail, also by raising
// what its exceptions() ask for: the library's own lines, those of KalvorTrace too, then end there, and
// nothing reaches whoever caused them.

#include <atomic>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <streambuf>
#include <string>

#include "kvbase/base/export.h"

class KV_COMManager;
class KV_Mutex;
class KV_String;

namespace kv::detail {
/// Takes the stream away from every tracer of the table that writes to it, once no line is being written.
void disconnectTracers(const std::ostream &stream);
}  // namespace kv::detail

/// One record of the process's table of tracers. The table has 64 slots, which are taken by the first use of
/// a name and never freed. Names count over their first 10 characters; a null or empty name has no tracer.
/// Every operation by name makes the tracer when there is none.
class KV_EXPORT KV_Tracer {
public:
    /// No name, the mask 0 and no stream.
    constexpr KV_Tracer() noexcept = default;
    /// A record outside the table with other's name, mask and stream; no operation by name finds it, and
    /// nobody takes the stream away from it: a copy is not to be written through once its stream, which may
    /// be dout, is gone.
    KV_Tracer(const KV_Tracer &other);
    /// Takes over name, mask and stream. A record of the table thereby goes by the other name (of two with
    /// one name only the first is found) or, with none, leaves its slot free. For start-up alone: no other
    /// thread may name a tracer, or use this one.
    KV_Tracer &operator=(const KV_Tracer &other);
    ~KV_Tracer() = default;

    /// The tracer of that name. Else the first free slot gets the name, cut to 10 characters. Null when the
    /// table is full. The record stays the table's and valid to the end of the process.
    static KV_Tracer *FindOrCreate(const char *name);

    /// Gives 0 and the mask; -1 and the mask 0 when no tracer can be had. mask must not be null.
    static int GetMask(const char *name, std::uint32_t *mask);
    /// Sets the level bits. 0, or -1 when no tracer can be had.
    static int SetMask(const char *name, std::uint32_t mask);
    /// Gives 0 and the stream, which is null while the tracer is not connected; -1 and null when no tracer
    /// can be had. stream must not be null.
    static int GetStreamP(const char *name, std::ostream **stream);
    /// Connects the tracer to a stream of the caller's, which gets its lines at once and has to live until
    /// another one (null disconnects) is set. Waits for a line that is being written, so the former stream
    /// may then go. 0, or -1 when no tracer can be had.
    static int SetStreamP(const char *name, std::ostream *stream);
    /// Connects the tracer to the trace stream, dout, and sets its mask. Nothing when no tracer can be had.
    static void SetTracing(const char *name, std::uint32_t mask);
    /// The same with the mask that the manager's registry has at the tracer's name in "Tracing". Without one
    /// that is a 32-bit integer the tracer stays as it was.
    static void SetTracing(KV_COMManager &manager, const char *name);

    /// Starts tracing, for the rest of the process: what the trace stream gets is no longer dropped. With
    /// toFile, and unless a trace file is open, also opens one: fileName in the folder "Trevane" of the
    /// user's application data, which is made when it is missing, or, when the system tells no such folder,
    /// fileName as it is. It is UTF-8, with backslashes as separators; one at its beginning follows
    /// that of the folder, and does not lead out of it. On POSIX that folder is the first of
    /// $APPDATA, $XDG_DATA_HOME and $HOME/.local/share that is set to an absolute path. A file of that name
    /// is replaced. The new one is text, begins with a banner that tells the time, and is flushed after each
    /// line, so it is whole however the process ends. On Windows nobody can read it while it is open, and one
    /// of that name that is open elsewhere is not replaced. True when this call has opened a file. A file
    /// that can't be opened is reported to the tracer, and text goes to the standard output.
    static bool StartTracing(bool toFile, KV_String fileName);
    /// Ends the trace file with the time, and closes it; further text goes to the standard output. Waits for
    /// a line that is being written. Without a file it does nothing.
    static void StopTracing();

    /// The trace lock, held for the length of each line. Made at first use, never destroyed.
    static KV_Mutex *GetMutex();

    /// Whether a line of that level would be written: there is a stream, and the mask has a bit of level.
    bool IsOn(std::uint32_t level) const noexcept {
        return m_stream.load(std::memory_order_acquire) != nullptr &&
               (m_mask.load(std::memory_order_relaxed) & level) != 0;
    }
    /// The name, at most 10 characters.
    const char *Name() const noexcept { return m_name; }
    /// The stream, or null. To be asked, and written to, under the trace lock.
    std::ostream *Stream() const noexcept { return m_stream.load(std::memory_order_acquire); }

private:
    friend void kv::detail::disconnectTracers(const std::ostream &stream);

    static constexpr int kNameLength = 10;

    char m_name[kNameLength + 1] = {};
    std::atomic<std::uint32_t> m_mask{0};
    std::atomic<std::ostream *> m_stream{nullptr};
};

/// Writes one line to the tracer "KvBaseTrace": the beginning of the level, the name, " : " and the text as
/// it is, without a line end of its own. A level of exactly 0x001, 0x002, 0x004 and so on up to 0x400 tests
/// that bit of the mask; any other level tests 0x800. The stream is flushed, except at the levels 0x001 and
/// 0x002. The text is only read.
KV_EXPORT void KalvorTrace(std::string &text, std::uint32_t level);

/// The trace stream. What it gets is dropped until tracing was started; from then on it goes to the trace
/// file, or to the standard output while there is no file. Whoever writes to it holds KV_Tracer::GetMutex().
/// At its end, after all other static objects, it disconnects the tracers of the table that write to it.
extern KV_EXPORT std::ostream dout;

/// A stream buffer with a put block that is allocated at the first output and freed at the end.
/// Left to the classes that derive: what to do with a full block. One thread at a time.
class KV_EXPORT satstreambuf : public std::basic_streambuf<char> {
public:
    /// blockSize  size of the put block in bytes.
    explicit satstreambuf(int blockSize = 256);
    satstreambuf(const satstreambuf &) = delete;
    satstreambuf &operator=(const satstreambuf &) = delete;
    ~satstreambuf() override;

protected:
    /// The put block, allocated if there was none; null when the size is not above 0 or no memory is left.
    char *allocBlock();
    /// Size of the put block.
    int blockSize() const { return m_blockSize; }

private:
    int m_blockSize;
    std::unique_ptr<char[]> m_block;
};

/// A stream buffer for output that hands its text, a block at a time, to a function. The text is followed by
/// a zero byte; 3 bytes of the block are kept for it, so the default block hands on up to 253 characters. A
/// block of 3 bytes or fewer has no room for text: every output then fails. What the function itself, while
/// it is called, writes to the same buffer is dropped.
class KV_EXPORT KV_FuncStrmbuf : public satstreambuf {
public:
    /// Gets user, and count characters at text with a zero byte behind them. The text ends with the call.
    using Callback = void (*)(void *user, const char *text, int count);

    /// callback   called with user for each piece of text; null drops the text.
    /// user       stays the caller's and has to outlive the buffer, or its last output.
    /// Text that is still pending at the end of the buffer is dropped: flush the stream before.
    explicit KV_FuncStrmbuf(Callback callback, void *user = nullptr, int blockSize = 256);
    KV_FuncStrmbuf(const KV_FuncStrmbuf &) = delete;
    KV_FuncStrmbuf &operator=(const KV_FuncStrmbuf &) = delete;
    ~KV_FuncStrmbuf() override;

protected:
    int_type overflow(int_type c) override;
    int sync() override;
    int_type underflow() override;

private:
    void passOn();

    Callback m_callback;
    void *m_user;
    bool m_isHandingOn = false;
};
