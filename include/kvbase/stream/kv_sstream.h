#pragma once

/// The byte stream on memory.

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

#include "kvbase/base/export.h"
#include "kvbase/stream/kv_stream.h"

/// A standard string stream in the byte order that KV_Stream fixes. It either reads or writes: Open and Close
/// say which. Two ways of use: reading a block, and default construction, Open with a mode that writes,
/// writing, then GetMemPtr and Length.
///
/// A stream that met a failure does nothing, Seek included, until Open, ClearError, Read, or Close after
/// writing clears that state; a Get operation that finds nothing left is one. Met by one that still got
/// something, the end alone lets Seek move, which clears it too, but only while reading.
///
/// The Get operations of the byte-order family raise nothing: test EndOfFile afterwards where the stream may
/// end (missing bytes count as 0). Its Put operations raise KV_FileException (WriteError, OS error 0,
/// "PutwordBE failed because EOF" or the like) when the stream is in a failed state before the last byte.
class KV_EXPORT KV_SStream : public KV_Stream {
public:
    /// An empty stream that writes, over no block.
    KV_SStream();
    /// Starts as a copy of length bytes, for reading, at the start. The block itself stays the caller's.
    /// When Open is called with a mode that writes, it must be writable and outlive the stream, for Close
    /// delivers into it.
    /// Null data counts as an empty block.
    KV_SStream(const char *data, std::uint32_t length);
    /// Copies share the bytes, the position and the state of one stream, counted; each has its own direction.
    /// There is no separate move.
    KV_SStream(const KV_SStream &) = default;
    KV_SStream &operator=(const KV_SStream &) = default;

    /// Whether both share one stream.
    bool operator==(const KV_SStream &other) const;
    bool operator!=(const KV_SStream &other) const;

    /// Null.
    KV_FileSpec *GetFileSpec() override;
    /// The caller's block. Without one: null while reading, else a snapshot of what has been written up to
    /// the first call, which later calls give again. It lives as long as this stream or one of its copies.
    const char *GetMemPtr() override;

    /// Reads from now on if mode begins with 'r', else writes; at the start in both cases, with a clear
    /// state. Nothing is cut off: writing replaces byte by byte. text is ignored.
    bool Open(const char *mode, bool text) override;
    /// After writing, clears a failed state, copies the stream's bytes into the caller's block, up to its
    /// length, and reads from now on.
    bool Close() override;
    /// Does nothing; true.
    bool Remove() override;

    /// Always true for a valid origin. A place before the start or beyond the end is a failure all the same:
    /// nothing moves, Tell gives -1, and what is written is lost until the state is cleared.
    bool Seek(std::int64_t offset, SeekStartPos from) override;
    /// Number of bytes read, not of items; the stream's state, end of file included, is clear afterwards. A
    /// size times count beyond 64 bits reads nothing.
    std::uint64_t Read(void *buffer, std::uint64_t size, std::uint64_t count) override;
    /// Returns count, also in a failed or end-of-file state, in which nothing is written. A size times count
    /// of 2^63 bytes or more writes nothing, fails and gives 0.
    std::uint64_t Write(const void *buffer, std::uint64_t size, std::uint64_t count) override;
    std::uint64_t Flush() override;
    std::uint32_t Length() override;

    std::uint32_t ReadEncrypted(char *buffer, std::uint32_t length) override;
    std::uint32_t WriteEncrypted(const char *buffer, std::uint32_t length) override;
    bool ReadFile(std::string &out, bool encrypted) override;

    /// The state word: 2 for a failed operation, 4 for a bad stream, their sum for both; 0 at the end of
    /// file.
    int GetLastError() override;
    void ClearError() override;
    bool EndOfFile() override;
    /// True.
    bool IsOpen() override;
    std::int64_t Tell() override;

    char Getc() override;
    /// 0, or -1 (byte 0xFF) when the stream is not in a good state afterwards; so Puts, Putf and Putd.
    char Putc(char c) override;
    /// Stops before the line ending and leaves it in the stream; an empty line counts as a failure. Always
    /// returns buffer.
    char *Gets(char *buffer, int size) override;
    char Puts(const char *text) override;

    float Getf754_32() override;
    /// As a standard stream in the "C" locale writes it, whatever the program's locale; nothing behind it.
    char Putf(float value) override;
    std::uint32_t Putf754_32(float value) override;
    /// As Putf.
    char Putd(int value) override;

    std::uint16_t GetwordBE() override;
    std::uint16_t GetwordLE() override;
    std::uint32_t GetlongwordBE() override;
    std::uint32_t GetlongwordLE() override;
    std::uint64_t GetquadwordBE() override;
    std::uint64_t GetquadwordLE() override;
    std::uint16_t PutwordBE(std::uint16_t value) override;
    std::uint16_t PutwordLE(std::uint16_t value) override;
    std::uint32_t PutlongwordBE(std::uint32_t value) override;
    std::uint32_t PutlongwordLE(std::uint32_t value) override;
    std::uint64_t PutquadwordBE(std::uint64_t value) override;
    std::uint64_t PutquadwordLE(std::uint64_t value) override;

    ~KV_SStream() override;

private:
    char stateAsResult() const;  // 0 in a good state, else -1

    bool m_readMode = false;
    std::shared_ptr<std::stringstream> m_stream;    // never null
    const char *m_memPtr = nullptr;                 // the caller's block, or the snapshot's bytes
    std::uint64_t m_memLength = 0;                  // of the caller's block
    std::shared_ptr<const std::string> m_snapshot;  // shared, so that m_memPtr stays good in copies
};
