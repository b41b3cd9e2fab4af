#include "kvbase/stream/kv_sstream.h"

#include <algorithm>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <utility>

#include "kvbase/runtime/kv_exception.h"
#include "stream/byte_order.h"

using kv::detail::ByteOrder;

namespace {

std::ios_base::seekdir standardOrigin(KV_Stream::SeekStartPos from) {
    switch (from) {
    case KV_Stream::SeekFromStart:
        return std::ios_base::beg;
    case KV_Stream::SeekFromCurrent:
        return std::ios_base::cur;
    case KV_Stream::SeekFromEnd:
        return std::ios_base::end;
    }
    throw KV_FileException("invalid seekorigin", KV_FileException::SeekError, -1, KV_HERE);
}

bool fits(std::uint64_t size, std::uint64_t count, std::uint64_t limit) {
    return size == 0 || count <= limit / size;
}

// Numbers in it are written in one form, whatever global locale a program has set.
std::shared_ptr<std::stringstream> makeStream(std::string text) {
    auto stream = std::make_shared<std::stringstream>(std::move(text));
    stream->imbue(std::locale::classic());
    return stream;
}

constexpr std::uint64_t kMostAtOnce = std::numeric_limits<std::streamsize>::max();

template <class Word, ByteOrder Order>
Word getWord(std::istream &stream) {
    unsigned char bytes[sizeof(Word)] = {};
    stream.read(reinterpret_cast<char *>(bytes), sizeof bytes);
    return kv::detail::wordFromBytes<Order, Word>(bytes);
}

// Tests the state before the last byte only: while it is not good, no byte before that goes out either.
template <ByteOrder Order, class Word>
Word putWord(std::ostream &stream, Word value, const char *failure) {
    unsigned char bytes[sizeof(Word)];
    kv::detail::wordToBytes<Order>(value, bytes);
    stream.write(reinterpret_cast<const char *>(bytes), sizeof bytes - 1);
    if (!stream.good()) throw KV_FileException(failure, KV_FileException::WriteError, 0, KV_HERE);
    stream.put(static_cast<char>(bytes[sizeof bytes - 1]));
    return value;
}

}  // namespace

KV_SStream::KV_SStream() : m_stream(makeStream({})) {}

KV_SStream::KV_SStream(const char *data, std::uint32_t length)
    : m_readMode(true),
      m_stream(makeStream(data != nullptr ? std::string(data, length) : std::string())),
      m_memPtr(data),
      m_memLength(data != nullptr ? length : 0) {}

KV_SStream::~KV_SStream() = default;

bool KV_SStream::operator==(const KV_SStream &other) const { return m_stream == other.m_stream; }

bool KV_SStream::operator!=(const KV_SStream &other) const { return !(*this == other); }

KV_FileSpec *KV_SStream::GetFileSpec() { return nullptr; }

const char *KV_SStream::GetMemPtr() {
    if (m_memPtr == nullptr && !m_readMode) {
        m_memLength = 0;
        m_snapshot = std::make_shared<const std::string>(m_stream->view());
        m_memPtr = m_snapshot->data();
    }
    return m_memPtr;
}

bool KV_SStream::Open(const char *mode, bool /*text*/) {
    m_readMode = mode != nullptr && *mode == 'r';
    ClearError();  // no seek for writing clears an end that reading met, and writes in that state are lost
    return Seek(0, SeekFromStart);
}

bool KV_SStream::Close() {
    if (m_readMode) return true;
    m_readMode = true;
    ClearError();  // a failed stream would deliver nothing
    Seek(0, SeekFromStart);
    // A caller who opens for writing over a block hands it over as the place to write to.
    Read(const_cast<char *>(m_memPtr), 1, m_memLength);
    return true;
}

bool KV_SStream::Remove() { return true; }

bool KV_SStream::Seek(std::int64_t offset, SeekStartPos from) {
    const std::ios_base::seekdir origin = standardOrigin(from);
    if (m_readMode)
        m_stream->seekg(offset, origin);
    else
        m_stream->seekp(offset, origin);
    return true;
}

std::uint64_t KV_SStream::Read(void *buffer, std::uint64_t size, std::uint64_t count) {
    const std::uint64_t total =
        fits(size, count, std::numeric_limits<std::uint64_t>::max()) ? size * count : 0;
    m_stream->read(static_cast<char *>(buffer), static_cast<std::streamsize>(std::min(total, kMostAtOnce)));
    const auto got = static_cast<std::uint64_t>(m_stream->gcount());
    m_stream->clear();
    return got;
}

std::uint64_t KV_SStream::Write(const void *buffer, std::uint64_t size, std::uint64_t count) {
    if (!fits(size, count, kMostAtOnce)) {
        m_stream->setstate(std::ios_base::failbit);
        return 0;
    }
    m_stream->write(static_cast<const char *>(buffer), static_cast<std::streamsize>(size * count));
    return count;
}

std::uint64_t KV_SStream::Flush() {
    m_stream->flush();
    return 0;
}

std::uint32_t KV_SStream::Length() { return static_cast<std::uint32_t>(m_stream->view().size()); }

std::uint32_t KV_SStream::ReadEncrypted(char *buffer, std::uint32_t length) {
    return KV_Stream::ReadEncrypted(buffer, length);
}

std::uint32_t KV_SStream::WriteEncrypted(const char *buffer, std::uint32_t length) {
    return KV_Stream::WriteEncrypted(buffer, length);
}

bool KV_SStream::ReadFile(std::string &out, bool encrypted) { return KV_Stream::ReadFile(out, encrypted); }

int KV_SStream::GetLastError() {
    if (m_stream->eof()) return 0;
    const std::ios_base::iostate state = m_stream->rdstate();
    return ((state & std::ios_base::failbit) != 0 ? 2 : 0) | ((state & std::ios_base::badbit) != 0 ? 4 : 0);
}

void KV_SStream::ClearError() { m_stream->clear(); }

bool KV_SStream::EndOfFile() { return m_stream->eof(); }

bool KV_SStream::IsOpen() { return true; }

// From the buffer: the stream's own tellg would fail the stream at its end.
std::int64_t KV_SStream::Tell() {
    if (m_stream->fail()) return -1;
    return m_stream->rdbuf()->pubseekoff(0, std::ios_base::cur,
                                         m_readMode ? std::ios_base::in : std::ios_base::out);
}

char KV_SStream::Getc() {
    if (m_stream->eof()) return -1;
    return static_cast<char>(m_stream->get());
}

char KV_SStream::stateAsResult() const { return m_stream->good() ? 0 : -1; }

char KV_SStream::Putc(char c) {
    m_stream->put(c);
    return stateAsResult();
}

char *KV_SStream::Gets(char *buffer, int size) {
    if (size > 0) m_stream->get(buffer, size);
    return buffer;
}

char KV_SStream::Puts(const char *text) {
    *m_stream << text;
    return stateAsResult();
}

float KV_SStream::Getf754_32() { return KV_Stream::Getf754_32(); }

char KV_SStream::Putf(float value) {
    *m_stream << value;
    return stateAsResult();
}

std::uint32_t KV_SStream::Putf754_32(float value) { return KV_Stream::Putf754_32(value); }

char KV_SStream::Putd(int value) {
    *m_stream << value;
    return stateAsResult();
}

std::uint16_t KV_SStream::GetwordBE() { return getWord<std::uint16_t, ByteOrder::big>(*m_stream); }

std::uint16_t KV_SStream::GetwordLE() { return getWord<std::uint16_t, ByteOrder::little>(*m_stream); }

std::uint32_t KV_SStream::GetlongwordBE() { return getWord<std::uint32_t, ByteOrder::big>(*m_stream); }

std::uint32_t KV_SStream::GetlongwordLE() { return getWord<std::uint32_t, ByteOrder::little>(*m_stream); }

std::uint64_t KV_SStream::GetquadwordBE() { return getWord<std::uint64_t, ByteOrder::big>(*m_stream); }

std::uint64_t KV_SStream::GetquadwordLE() { return getWord<std::uint64_t, ByteOrder::little>(*m_stream); }

std::uint16_t KV_SStream::PutwordBE(std::uint16_t value) {
    return putWord<ByteOrder::big>(*m_stream, value, "PutwordBE failed because EOF");
}

std::uint16_t KV_SStream::PutwordLE(std::uint16_t value) {
    return putWord<ByteOrder::little>(*m_stream, value, "PutwordLE failed because EOF");
}

std::uint32_t KV_SStream::PutlongwordBE(std::uint32_t value) {
    return putWord<ByteOrder::big>(*m_stream, value, "PutlongwordBE failed because EOF");
}

std::uint32_t KV_SStream::PutlongwordLE(std::uint32_t value) {
    return putWord<ByteOrder::little>(*m_stream, value, "PutlongwordLE failed because EOF");
}

std::uint64_t KV_SStream::PutquadwordBE(std::uint64_t value) {
    return putWord<ByteOrder::big>(*m_stream, value, "PutquadwordBE failed because EOF");
}

std::uint64_t KV_SStream::PutquadwordLE(std::uint64_t value) {
    return putWord<ByteOrder::little>(*m_stream, value, "PutquadwordLE failed because EOF");
}
