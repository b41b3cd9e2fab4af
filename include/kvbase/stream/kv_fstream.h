#pragma once

/// The byte stream on a file.

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "kvbase/base/export.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/stream/kv_stream.h"

/// A file of the C library, in the byte order that KV_Stream fixes.
///
/// Copies of an open stream refer to the same open file. The file is closed once: by Close on any of them,
/// which closes it for all, or when the last of them goes or gives it up, with an error line in the trace
/// when buffered bytes could not be written: only Close says so to the caller. On a closed stream every
/// operation answers with its failure (0, null, -1, false, the exception of the byte-order family); EndOfFile
/// is true there and GetLastError -1.
///
/// The byte-order family raises KV_FileException with the OS error -1: ReadError and "GetwordBE failed
/// because EOF" (or the like) when the file ends within the word, with no partial result; WriteError and
/// "PutwordBE failed because EOF" when writing fails, with the bytes that went out staying there.
class KV_EXPORT KV_FStream : public KV_Stream {
public:
    /// A closed stream without a name.
    KV_FStream();
    /// A closed stream on the file of that name.
    explicit KV_FStream(const KV_FileSpec &fileSpec);
    KV_FStream(const KV_FStream &) = default;
    KV_FStream &operator=(const KV_FStream &) = default;

    /// Whether both refer to the same open file, or both to none.
    bool operator==(const KV_FStream &other) const;
    bool operator!=(const KV_FStream &other) const;

    /// The name, inside this object; it can be changed while the stream is closed.
    KV_FileSpec *GetFileSpec() override;
    /// Null.
    const char *GetMemPtr() override;

    /// Opens the file; of mode the first 5 characters count. Without text and without a 'b' in it, a 'b' is
    /// appended to the mode where one more character fits. An open stream gives up its former file first,
    /// which closes it unless a copy still has it open. On failure writes two error lines to the trace,
    /// and one before them when the name is not set. Programs that the process starts do not inherit the
    /// file.
    ///
    /// What else a mode may hold is up to the system. POSIX passes over letters that it does not know, and
    /// lets anybody open, rename or delete a file that is open. Windows takes one of r, w and a at the
    /// beginning, then at most one letter of each of "+", "bt", "cn", "SR", "T" and "D" (so no "x", and no
    /// "rtb"), and opens nothing with any other mode. There nobody, this process included, can write to,
    /// rename or delete a file while it is open, nor read it while it is open for writing.
    bool Open(const char *mode, bool text) override;
    /// Closes the file. False when buffered bytes could not be written: the file is closed then too, but the
    /// stream counts as open until the next Close or Open.
    bool Close() override;
    /// Deletes the file by its name, whether the stream is open or not. Writes an error line when the name is
    /// not set.
    bool Remove() override;

    bool Seek(std::int64_t offset, SeekStartPos from) override;
    /// Number of whole items read. A size times count beyond 64 bits reads nothing.
    std::uint64_t Read(void *buffer, std::uint64_t size, std::uint64_t count) override;
    /// Number of whole items written. A size times count beyond 64 bits writes nothing.
    std::uint64_t Write(const void *buffer, std::uint64_t size, std::uint64_t count) override;
    std::uint64_t Flush() override;
    /// 0 when the file has no position. Only the low 32 bits of the former position are restored.
    std::uint32_t Length() override;

    std::uint32_t ReadEncrypted(char *buffer, std::uint32_t length) override;
    std::uint32_t WriteEncrypted(const char *buffer, std::uint32_t length) override;
    bool ReadFile(std::string &out, bool encrypted) override;

    int GetLastError() override;
    void ClearError() override;
    bool EndOfFile() override;
    bool IsOpen() override;
    std::int64_t Tell() override;

    char Getc() override;
    char Putc(char c) override;
    /// The line with its line ending; null at the end.
    char *Gets(char *buffer, int size) override;
    char Puts(const char *text) override;

    float Getf754_32() override;
    /// In the form "%8.4f ", a blank behind it. The decimal point is that of the C library's locale
    /// (LC_NUMERIC), which is "C" unless the program has set another.
    char Putf(float value) override;
    std::uint32_t Putf754_32(float value) override;
    /// In the form "%d ", a blank behind it.
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

    /// Closes the file unless a copy still has it open. What could not be written is told to the trace alone.
    ~KV_FStream() override;

private:
    struct OpenFile;

    std::FILE *handle() const;  // null while closed

    std::shared_ptr<OpenFile>
        m_file;           // handle and open state, shared with the copies; null before the first Open
    char m_mode[6] = {};  // as Open composed it
    bool m_text = false;
    KV_FileSpec m_fileSpec;
};
