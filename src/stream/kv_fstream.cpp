#include "kvbase/stream/kv_fstream.h"

#include <cstddef>
#include <cstdio>
#include <limits>
#include <utility>

#include "kvbase/runtime/kv_exception.h"
#include "platform/platform.h"
#include "runtime/trace_line.h"
#include "stream/byte_order.h"
#include "stream/file_mode.h"

using kv::detail::ByteOrder;

namespace {

// A path as trace lines show it, converted only when one is written.
struct Shown {
    const KV_WString &path;
};
std::ostream &operator<<(std::ostream &out, const Shown &shown) {
    std::string text;
    kv::platform::fromUnits(kv::platform::kUtf8CodePage, shown.path, text);
    return out << text;
}

}  // namespace

// What copies share. The handle is null while the file is closed.
struct KV_FStream::OpenFile {
    explicit OpenFile(const KV_WString &name) : path(name) {}
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    // Nobody is left here to whom a result could tell that buffered bytes did not reach the file.
    ~OpenFile() {
        if (file != nullptr && std::fclose(file) != 0)
            kv::detail::traceLine(kv::detail::kTraceError, "KV_FStream : Can't Close : ", Shown{path});
    }

    const KV_WString path;  // the stream's own may change while copies have the file open
    std::FILE *file = nullptr;
    bool isOpen = false;
};

namespace {

int nativeOrigin(KV_Stream::SeekStartPos from) {
    switch (from) {
    case KV_Stream::SeekFromStart:
        return SEEK_SET;
    case KV_Stream::SeekFromCurrent:
        return SEEK_CUR;
    case KV_Stream::SeekFromEnd:
        return SEEK_END;
    }
    throw KV_FileException("invalid seekorigin", KV_FileException::SeekError, -1, KV_HERE);
}

bool fits(std::uint64_t size, std::uint64_t count) {
    return size == 0 || count <= std::numeric_limits<std::size_t>::max() / size;
}

template <class Word, ByteOrder Order>
Word getWord(std::FILE *file, const char *failure) {
    unsigned char bytes[sizeof(Word)];
    if (file == nullptr || std::fread(bytes, 1, sizeof bytes, file) != sizeof bytes)
        throw KV_FileException(failure, KV_FileException::ReadError, -1, KV_HERE);
    return kv::detail::wordFromBytes<Order, Word>(bytes);
}

template <ByteOrder Order, class Word>
Word putWord(std::FILE *file, Word value, const char *failure) {
    unsigned char bytes[sizeof(Word)];
    kv::detail::wordToBytes<Order>(value, bytes);
    if (file == nullptr || std::fwrite(bytes, 1, sizeof bytes, file) != sizeof bytes)
        throw KV_FileException(failure, KV_FileException::WriteError, -1, KV_HERE);
    return value;
}

}  // namespace

KV_FStream::KV_FStream() = default;

KV_FStream::KV_FStream(const KV_FileSpec &fileSpec) : m_fileSpec(fileSpec) {}

KV_FStream::~KV_FStream() = default;

std::FILE *KV_FStream::handle() const { return m_file ? m_file->file : nullptr; }

bool KV_FStream::operator==(const KV_FStream &other) const { return handle() == other.handle(); }

bool KV_FStream::operator!=(const KV_FStream &other) const { return !(*this == other); }

KV_FileSpec *KV_FStream::GetFileSpec() { return &m_fileSpec; }

const char *KV_FStream::GetMemPtr() { return nullptr; }

bool KV_FStream::Open(const char *mode, bool text) {
    using kv::detail::kTraceError;
    if (mode == nullptr) mode = "";
    m_file.reset();
    m_text = text;
    kv::detail::composeMode(mode, text, m_mode);
    auto opened = std::make_shared<OpenFile>(m_fileSpec.GetFileNameW());
    std::int32_t error = 0;
    opened->file = kv::platform::openFile(opened->path, m_mode, error);
    if (error != 0) kv::detail::traceLine(kTraceError, "KV_FStream :_wfopen_s returned : ", error);
    if (opened->file == nullptr) {
        kv::detail::traceLine(kTraceError, "KV_FStream : Can't Open : ", Shown{opened->path},
                              "   mode = ", mode);
        return false;
    }
    opened->isOpen = true;
    m_file = std::move(opened);
    return true;
}

bool KV_FStream::Close() {
    if (!m_file) return true;
    std::FILE *file = std::exchange(m_file->file, nullptr);  // fclose takes it, also when it fails
    if (file == nullptr || std::fclose(file) == 0) m_file->isOpen = false;
    return !m_file->isOpen;
}

bool KV_FStream::Remove() { return kv::platform::deleteFile(m_fileSpec.GetFileNameW()); }

bool KV_FStream::Seek(std::int64_t offset, SeekStartPos from) {
    const int origin = nativeOrigin(from);
    std::FILE *file = handle();
    return file != nullptr && kv::platform::seekFile(file, offset, origin);
}

std::uint64_t KV_FStream::Read(void *buffer, std::uint64_t size, std::uint64_t count) {
    std::FILE *file = handle();
    return file != nullptr && fits(size, count) ? std::fread(buffer, size, count, file) : 0;
}

std::uint64_t KV_FStream::Write(const void *buffer, std::uint64_t size, std::uint64_t count) {
    std::FILE *file = handle();
    return file != nullptr && fits(size, count) ? std::fwrite(buffer, size, count, file) : 0;
}

std::uint64_t KV_FStream::Flush() {
    std::FILE *file = handle();
    return static_cast<std::uint64_t>(file != nullptr ? std::fflush(file) : EOF);
}

std::uint32_t KV_FStream::Length() {
    const std::int64_t position = Tell();
    if (!Seek(0, SeekFromEnd)) return 0;
    const std::int64_t end = Tell();
    Seek(static_cast<std::uint32_t>(position), SeekFromStart);
    return end == -1 ? 0 : static_cast<std::uint32_t>(end);
}

std::uint32_t KV_FStream::ReadEncrypted(char *buffer, std::uint32_t length) {
    return KV_Stream::ReadEncrypted(buffer, length);
}

std::uint32_t KV_FStream::WriteEncrypted(const char *buffer, std::uint32_t length) {
    return KV_Stream::WriteEncrypted(buffer, length);
}

bool KV_FStream::ReadFile(std::string &out, bool encrypted) { return KV_Stream::ReadFile(out, encrypted); }

int KV_FStream::GetLastError() {
    std::FILE *file = handle();
    return file != nullptr ? std::ferror(file) : -1;
}

void KV_FStream::ClearError() {
    std::FILE *file = handle();
    if (file != nullptr) std::clearerr(file);
}

bool KV_FStream::EndOfFile() {
    std::FILE *file = handle();
    return file == nullptr || std::feof(file) != 0;
}

bool KV_FStream::IsOpen() { return m_file && m_file->isOpen; }

std::int64_t KV_FStream::Tell() {
    std::FILE *file = handle();
    return file != nullptr ? kv::platform::tellFile(file) : -1;
}

char KV_FStream::Getc() {
    std::FILE *file = handle();
    return static_cast<char>(file != nullptr ? std::fgetc(file) : EOF);
}

char KV_FStream::Putc(char c) {
    std::FILE *file = handle();
    return static_cast<char>(file != nullptr ? std::fputc(c, file) : EOF);
}

char *KV_FStream::Gets(char *buffer, int size) {
    std::FILE *file = handle();
    return file != nullptr && size > 0 ? std::fgets(buffer, size, file) : nullptr;
}

char KV_FStream::Puts(const char *text) {
    std::FILE *file = handle();
    return static_cast<char>(file != nullptr ? std::fputs(text, file) : EOF);
}

float KV_FStream::Getf754_32() { return KV_Stream::Getf754_32(); }

char KV_FStream::Putf(float value) {
    std::FILE *file = handle();
    return static_cast<char>(file != nullptr ? std::fprintf(file, "%8.4f ", static_cast<double>(value))
                                             : EOF);
}

std::uint32_t KV_FStream::Putf754_32(float value) { return KV_Stream::Putf754_32(value); }

char KV_FStream::Putd(int value) {
    std::FILE *file = handle();
    return static_cast<char>(file != nullptr ? std::fprintf(file, "%d ", value) : EOF);
}

std::uint16_t KV_FStream::GetwordBE() {
    return getWord<std::uint16_t, ByteOrder::big>(handle(), "GetwordBE failed because EOF");
}

std::uint16_t KV_FStream::GetwordLE() {
    return getWord<std::uint16_t, ByteOrder::little>(handle(), "GetwordLE failed because EOF");
}

std::uint32_t KV_FStream::GetlongwordBE() {
    return getWord<std::uint32_t, ByteOrder::big>(handle(), "GetlongwordBE failed because EOF");
}

std::uint32_t KV_FStream::GetlongwordLE() {
    return getWord<std::uint32_t, ByteOrder::little>(handle(), "GetlongwordLE failed because EOF");
}

std::uint64_t KV_FStream::GetquadwordBE() {
    return getWord<std::uint64_t, ByteOrder::big>(handle(), "GetquadwordBE failed because EOF");
}

std::uint64_t KV_FStream::GetquadwordLE() {
    return getWord<std::uint64_t, ByteOrder::little>(handle(), "GetquadwordLE failed because EOF");
}

std::uint16_t KV_FStream::PutwordBE(std::uint16_t value) {
    return putWord<ByteOrder::big>(handle(), value, "PutwordBE failed because EOF");
}

std::uint16_t KV_FStream::PutwordLE(std::uint16_t value) {
    return putWord<ByteOrder::little>(handle(), value, "PutwordLE failed because EOF");
}

std::uint32_t KV_FStream::PutlongwordBE(std::uint32_t value) {
    return putWord<ByteOrder::big>(handle(), value, "PutlongwordBE failed because EOF");
}

std::uint32_t KV_FStream::PutlongwordLE(std::uint32_t value) {
    return putWord<ByteOrder::little>(handle(), value, "PutlongwordLE failed because EOF");
}

std::uint64_t KV_FStream::PutquadwordBE(std::uint64_t value) {
    return putWord<ByteOrder::big>(handle(), value, "PutquadwordBE failed because EOF");
}

std::uint64_t KV_FStream::PutquadwordLE(std::uint64_t value) {
    return putWord<ByteOrder::little>(handle(), value, "PutquadwordLE failed because EOF");
}
