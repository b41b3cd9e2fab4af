// The binary files of dictionaries.

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "binary_form.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/stream/kv_fstream.h"
#include "kvbase/univval/kv_uval_binary.h"
#include "kvbase/univval/kv_uval_dict.h"

using namespace kv::detail;

namespace {

constexpr std::size_t kBlockSize = 512;

/// Puts the bytes in front of every dictionary. Where the next one goes.
unsigned char *putHeader(unsigned char *at, const unsigned char *end) {
    std::uint16_t magicLength = sizeof kBinaryMagic;
    char magic[sizeof kBinaryMagic];
    std::memcpy(magic, kBinaryMagic, sizeof magic);
    KV_BinPackAtom atom;
    atom.Specify(kAtom16, &magicLength, 1);
    atom.Put(&at, end);
    atom.Specify(kAtomText, magic, sizeof magic);
    atom.Put(&at, end);
    return at;
}

/// Puts header and dictionary into a block and calls drain(block, bytes, isLast) each time that it is full
/// and there is more, and with the last one, which is never empty.
template <class Drain>
void putThroughBlock(KV_UValDict &dict, const Drain &drain) {
    unsigned char block[kBlockSize];
    unsigned char *cursor = putHeader(block, block + kBlockSize);
    KV_BinPackUValDict body;
    body.Specify(&dict);
    while (body.Put(&cursor, block + kBlockSize) != 0) {
        drain(block, kBlockSize, false);
        cursor = block;
    }
    drain(block, static_cast<std::size_t>(cursor - block), true);
}

/// Does what packs a dictionary. When it comes to what has no place in the form, throws what
/// checkBinaryLimits tells about it.
template <class Pack>
void packOrSay(KV_UValDict &dict, const Pack &pack) {
    try {
        pack();
    } catch (const KV_BinPackException &) {
        checkBinaryLimits(dict);
        throw;
    }
}

/// A dictionary that is within the limits, on its way to a stream. Whether it is turns out as it is packed;
/// so that nothing is written before, its bytes are held. Of a large one they are not: there the limits are
/// looked at first, which takes another walk through the tree.
class CheckedDictionary {
public:
    explicit CheckedDictionary(KV_UValDict &dict) : m_dict(dict) {
        bool isHeld = false;
        packOrSay(dict, [&] { isHeld = hold(); });
        if (isHeld) return;
        m_segments.clear();
        checkBinaryLimits(dict);
    }

    void write(KV_Stream &stream) const {
        // A stream in memory that has failed before, or that was read to its end, takes bytes and drops them.
        const std::int64_t begin = stream.Tell();
        const auto hasDropped = [&stream, begin] {
            return stream.GetLastError() != 0 || (stream.EndOfFile() && stream.Tell() == begin);
        };
        const auto drain = [&](const unsigned char *block, std::size_t size, bool isLast) {
            if (stream.Write(block, 1, size) == size && !(isLast && hasDropped())) return;
            throw KV_FileException(isLast ? "AppendBinToStream written buffer differs from given buffer"
                                          : "AppendBinToStream could not write the complete buffer",
                                   KV_FileException::WriteError, 0, KV_HERE);
        };
        if (m_segments.empty()) {
            putThroughBlock(m_dict, drain);
            return;
        }
        for (const std::unique_ptr<Segment> &segment : m_segments) {
            const bool isLast = segment == m_segments.back();
            const std::size_t size = isLast ? m_lastSize : sizeof(Segment);
            for (std::size_t at = 0; at < size; at += kBlockSize)
                drain(segment->bytes + at, std::min(kBlockSize, size - at),
                      isLast && size - at <= kBlockSize);
        }
    }

private:
    struct Segment {
        unsigned char bytes[1 << 16];
    };
    static constexpr std::size_t kMostSegments = 64;  // 4 MiB

    // False when there is more than is held.
    bool hold() {
        KV_BinPackUValDict body;
        body.Specify(&m_dict);
        while (m_segments.size() < kMostSegments) {
            m_segments.push_back(std::make_unique_for_overwrite<Segment>());
            unsigned char *const begin = m_segments.back()->bytes, *const end = begin + sizeof(Segment);
            unsigned char *cursor = m_segments.size() == 1 ? putHeader(begin, end) : begin;
            const bool isDone = body.Put(&cursor, end) == 0;
            m_lastSize = static_cast<std::size_t>(cursor - begin);
            if (isDone) return true;
        }
        return false;
    }

    KV_UValDict &m_dict;
    std::vector<std::unique_ptr<Segment>> m_segments;
    std::size_t m_lastSize = 0;  // bytes in the last one
};

/// A stream read block by block.
class BlockReader {
public:
    explicit BlockReader(KV_Stream &stream) : m_stream(stream), m_begin(stream.Tell()) {}

    /// Gets all of a layer.
    template <class Layer>
    void get(Layer &layer) {
        while (layer.Get(&m_cursor, m_end) != 0)
            next();
    }
    /// How many bytes are still to come. They are read at once when the stream doesn't know.
    std::uint64_t rest() {
        if (knowsItsPlace() && m_stream.Seek(0, KV_Stream::SeekFromEnd)) {
            const std::int64_t end = m_stream.Tell(), now = m_begin + m_taken;
            if (m_stream.Seek(now, KV_Stream::SeekFromStart) && end >= now)
                return unread() + static_cast<std::uint64_t>(end - now);
        }
        readAll();
        return unread();
    }
    /// Moves the stream back to the first byte that wasn't got.
    void giveBack() {
        if (knowsItsPlace()) m_stream.Seek(-static_cast<std::int64_t>(unread()), KV_Stream::SeekFromCurrent);
    }

private:
    /// Not a pipe, and not a stream in memory that is open for writing: that one tells where it writes.
    bool knowsItsPlace() { return m_begin >= 0 && m_stream.Tell() - m_begin == m_taken; }

    std::uint64_t unread() const { return static_cast<std::uint64_t>(m_end - m_cursor); }

    void next() {
        const std::uint64_t got = std::min<std::uint64_t>(m_stream.Read(m_block, 1, kBlockSize), kBlockSize);
        if (got == 0) failAsTruncated();
        m_taken += static_cast<std::int64_t>(got);
        m_cursor = m_block;
        m_end = m_block + got;
    }

    void readAll() {
        m_all.assign(m_cursor, m_end);
        for (std::uint64_t got = kBlockSize; got != 0;) {
            got = std::min<std::uint64_t>(m_stream.Read(m_block, 1, kBlockSize), kBlockSize);
            m_all.insert(m_all.end(), m_block, m_block + got);
            m_taken += static_cast<std::int64_t>(got);
        }
        m_cursor = m_all.data();
        m_end = m_cursor + m_all.size();
    }

    KV_Stream &m_stream;
    std::int64_t m_begin;      // the stream's position, negative when it has none
    std::int64_t m_taken = 0;  // bytes read since
    unsigned char m_block[kBlockSize];
    unsigned char *m_cursor = m_block, *m_end = m_block;
    std::vector<unsigned char> m_all;  // when all was read at once
};

[[noreturn]] void failAsInvalid(const char *message) {
    throw KV_FileException(message, KV_FileException::InvalidFile, 0, KV_HERE);
}

void read(KV_UValDict &dict, KV_Stream &stream) {
    BlockReader reader(stream);
    std::uint16_t magicLength = 0;
    char magic[sizeof kBinaryMagic];
    KV_BinPackAtom atom;
    atom.Expect(kAtom16, &magicLength, 1);
    reader.get(atom);
    if (magicLength != sizeof magic)
        failAsInvalid("ReadBinFromStream failed ( MAGIC_STRING ) because it is an invalid file");
    atom.Expect(kAtomText, magic, sizeof magic);
    reader.get(atom);
    if (std::memcmp(magic, kBinaryMagic, sizeof magic) != 0)
        failAsInvalid("ReadBinFromStream failed ( UVAL_DICT ) because it is an invalid file");
    KV_BinPackUValDict body;
    body.Specify(&dict);
    body.SetRest(reader.rest());
    reader.get(body);
    reader.giveBack();
}

/// Opens a file and goes to its beginning.
void open(KV_FStream &stream, const char *mode, KV_FileException::KV_File_ErrorID error,
          const char *failure) {
    if (!stream.Open(mode, false)) throw KV_FileException(failure, error, 0, KV_HERE);
    stream.Seek(0, KV_Stream::SeekFromStart);
}

}  // namespace

void KV_UValDict::AppendBinToStream(KV_Stream *stream) {
    if (stream == nullptr || !stream->IsOpen()) {
        throw KV_FileException("AppendBinToStream failed because file is not open",
                               KV_FileException::WriteError, 0, KV_HERE);
    }
    CheckedDictionary(*this).write(*stream);
}

void KV_UValDict::ReadBinFromStream(KV_Stream *stream) {
    if (stream == nullptr) failAsTruncated();
    try {
        read(*this, *stream);
    } catch (const KV_BinPackException &) {
        failAsInvalid("Caught exception KV_BinPackException in ReadBinFromStream");
    }
}

void KV_UValDict::WriteBinFile(KV_FileSpec &file) {
    const CheckedDictionary checked(*this);  // before the file is emptied
    KV_FStream stream(file);
    open(stream, "w", KV_FileException::OpenWrError, "WriteBinFile could not open file for write");
    checked.write(stream);
    if (!stream.Close()) {
        throw KV_FileException("WriteBinFile could not write the complete file", KV_FileException::WriteError,
                               0, KV_HERE);
    }
}

void KV_UValDict::ReadBinFile(KV_FileSpec &file) {
    KV_FStream stream(file);
    open(stream, "r", KV_FileException::OpenRdError, "ReadBinFile could not open file for read");
    ReadBinFromStream(&stream);
}

std::int32_t KV_UValDict::ByteSize() {
    constexpr std::uint64_t kMost = std::numeric_limits<std::int32_t>::max();
    std::uint64_t total = 0;
    packOrSay(*this, [&] {
        putThroughBlock(*this, [&](const unsigned char *, std::size_t size, bool) { total += size; });
    });
    return static_cast<std::int32_t>(std::min(total, kMost));
}

void KV_UValDict::ReadFile(KV_FileSpec &file) {
    try {
        ReadBinFile(file);
        return;
    } catch (const KV_FileException &e) {
        if (e.GetFileErrorId() != KV_FileException::InvalidFile) throw;
    }
    ReadTextFile(file, "");
}
