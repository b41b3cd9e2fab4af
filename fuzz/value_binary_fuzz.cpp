// Any bytes as the binary form of a dictionary. What is read does not depend on how the blocks are cut; a
// failure is a documented one and leaves the dictionary as it was; what was read is written, in blocks of any
// size, and reads back as the same.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "kvbase/runtime/kv_exception.h"
#include "kvbase/stream/kv_sstream.h"
#include "kvbase/univval/kv_uval_binary.h"
#include "kvbase/univval/kv_uval_dict.h"
#include "kvbase/univval/kv_uval_leaf.h"

namespace {

constexpr std::size_t kHeader = 24;

void require(bool isTrue) {
    if (!isTrue) std::abort();
}

std::string write(KV_UValDict &dict) {
    KV_SStream stream;
    stream.Open("w", false);
    dict.AppendBinToStream(&stream);
    return {stream.GetMemPtr(), stream.Length()};
}

// Whether the bytes are a dictionary. position: where the stream then stands.
bool read(KV_UValDict &dict, const std::string &bytes, std::int64_t &position) {
    KV_SStream stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    try {
        dict.ReadBinFromStream(&stream);
    } catch (const KV_FileException &e) {
        require(e.GetFileErrorId() == KV_FileException::InvalidFile ||
                e.GetFileErrorId() == KV_FileException::ReadError);
        return false;
    }
    position = stream.Tell();
    return true;
}

// Gives a packer the body in blocks of that size, each in memory of its own. Whether it is a dictionary.
bool readBody(KV_UValDict &dict, const std::string &body, std::size_t size) {
    KV_BinPackUValDict packer;
    packer.Specify(&dict);
    packer.SetRest(body.size());
    try {
        for (std::size_t at = 0; at < body.size(); at += size) {
            std::string block = body.substr(at, size);
            block.shrink_to_fit();
            auto *cursor = reinterpret_cast<unsigned char *>(block.data());
            const unsigned char *end = cursor + block.size();
            if (packer.Get(&cursor, end) == 0) return true;
            require(cursor == end);
        }
    } catch (const KV_BinPackException &) {
    } catch (const KV_FileException &e) {
        require(e.GetFileErrorId() == KV_FileException::ReadError);
    }
    return false;
}

std::string writeBody(KV_UValDict &dict, std::size_t size) {
    KV_BinPackUValDict packer;
    packer.Specify(&dict);
    std::string body, block(size, '\0');
    for (int more = 1; more != 0;) {
        auto *begin = reinterpret_cast<unsigned char *>(block.data());
        unsigned char *cursor = begin;
        more = packer.Put(&cursor, begin + size);
        require(more == 0 || cursor == begin + size);
        body.append(block, 0, static_cast<std::size_t>(cursor - begin));
    }
    return body;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) return 0;
    const std::size_t blockSize = 1 + data[0] % 17U;
    const std::string bytes(data + 1, data + size);

    KV_UValDict dict(16384U);
    dict.DefineUVal("before", KV_UVAL_LONG, 0, nullptr);
    const std::string before = write(dict);
    std::int64_t position = 0;
    const bool isRead = read(dict, bytes, position);
    const std::string written = write(dict);
    require(isRead || written == before);

    if (bytes.size() >= kHeader && bytes.compare(0, kHeader, before, 0, kHeader) == 0) {
        KV_UValDict parts(16384U);
        parts.DefineUVal("before", KV_UVAL_LONG, 0, nullptr);
        require(readBody(parts, bytes.substr(kHeader), blockSize) == isRead);
        require(write(parts) == written);
    }
    if (!isRead) return 0;

    require(position >= 0 && static_cast<std::size_t>(position) <= bytes.size());
    require(dict.ByteSize() == static_cast<std::int32_t>(written.size()));
    require(writeBody(dict, blockSize) == written.substr(kHeader));
    KV_UValDict again(16384U);
    require(read(again, written, position) && static_cast<std::size_t>(position) == written.size());
    require(write(again) == written);
    return 0;
}
