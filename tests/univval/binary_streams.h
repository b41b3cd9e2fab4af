#pragma once

#include <gtest/gtest.h>
#include <kvbase/kvbase.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>

#include "text_streams.h"
#include "utf8_path.h"

// Streams that give and take their bytes in pieces, and values as bytes.

// Reads at most a piece at a time; takes bytes up to a limit, and of the Write that goes beyond it none.
class PieceStream : public KV_SStream {
public:
    explicit PieceStream(const std::string &bytes, std::uint64_t piece = 512)
        : KV_SStream(bytes.data(), static_cast<std::uint32_t>(bytes.size())), m_piece(piece) {}
    explicit PieceStream(std::uint64_t limit) : m_left(limit) { Open("w", false); }

    std::uint64_t Read(void *buffer, std::uint64_t size, std::uint64_t count) override {
        return KV_SStream::Read(buffer, 1, std::min(size * count, m_piece));
    }
    std::uint64_t Write(const void *buffer, std::uint64_t size, std::uint64_t count) override {
        if (size * count > m_left) return 0;
        m_left -= size * count;
        return KV_SStream::Write(buffer, size, count);
    }

private:
    std::uint64_t m_piece = 512, m_left = 0;
};

// One that can't tell where it is and doesn't move, as a pipe is.
class PipeStream : public PieceStream {
public:
    using PieceStream::PieceStream;
    std::int64_t Tell() override { return -1; }
    bool Seek(std::int64_t, SeekStartPos) override { return false; }
};

inline std::string fileBytes(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

inline std::string golden(const std::string &name) {
    return fileBytes(pathFromUtf8(KVBASE_TEST_DATA "/values/" + name));
}

inline std::string writtenBinary(KV_UValDict &dict) {
    KV_SStream stream;
    stream.Open("w", false);
    dict.AppendBinToStream(&stream);
    return {stream.GetMemPtr(), stream.Length()};
}

inline void readBinary(KV_UValDict &dict, const std::string &bytes) {
    KV_SStream stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    dict.ReadBinFromStream(&stream);
}

// All bytes of a layer, put into one block of that size after the other, each in memory of its own.
template <class Layer>
std::string putInBlocks(Layer &layer, std::size_t size) {
    std::string bytes;
    for (int more = 1; more != 0;) {
        const std::unique_ptr<unsigned char[]> block(new unsigned char[size]);
        unsigned char *cursor = block.get();
        more = layer.Put(&cursor, block.get() + size);
        EXPECT_TRUE(more == 0 || cursor == block.get() + size);
        bytes.append(block.get(), cursor);
    }
    return bytes;
}

// Gives a layer these bytes in such blocks. How many it took; more than there are when it wants more.
template <class Layer>
std::size_t getInBlocks(Layer &layer, const std::string &bytes, std::size_t size) {
    for (std::size_t at = 0; at < bytes.size(); at += size) {
        const std::size_t part = std::min(size, bytes.size() - at);
        const std::unique_ptr<unsigned char[]> block(new unsigned char[part]);
        std::memcpy(block.get(), bytes.data() + at, part);
        unsigned char *cursor = block.get();
        if (layer.Get(&cursor, block.get() + part) == 0)
            return at + static_cast<std::size_t>(cursor - block.get());
    }
    return bytes.size() + 1;
}

constexpr std::size_t kBlockSizes[] = {1, 2, 3, 7, 512};

inline const std::string kTruncated =
    "File exception: ReadError;   Detail: ReadBinFromStream failed, 0 bytes read.";
inline const std::string kInvalid =
    "File exception: InvalidFile;   Detail: Caught exception KV_BinPackException in ReadBinFromStream";
