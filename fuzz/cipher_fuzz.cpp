// The file cipher on any key and text. The first byte is the length of the key, the key follows, the rest is
// the text.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "kvbase/stream/kv_cipher.h"
#include "kvbase/stream/kv_sstream.h"

namespace {

using Bytes = std::vector<unsigned char>;

void require(bool holds, const char *what) {
    if (holds) return;
    std::fprintf(stderr, "cipher: %s\n", what);
    std::abort();
}

std::uint32_t sizeOf(const Bytes &bytes) { return static_cast<std::uint32_t>(bytes.size()); }

// Many blocks together against one after the other; back; and in place.
void encodeAndDecode(CBlowFish &cipher, Bytes text) {
    Bytes padded = text;
    padded.resize(cipher.GetOutputLength(sizeOf(text)), ' ');
    Bytes together(padded.size()), oneByOne(padded.size());
    require(cipher.Encode(text.data(), together.data(), sizeOf(text)) == padded.size(), "output length");
    for (std::size_t i = 0; i < padded.size(); i += 8)
        cipher.Encode(padded.data() + i, oneByOne.data() + i, 8);
    require(together == oneByOne, "together and one by one");
    const std::uint32_t length = sizeOf(text);
    text.resize(padded.size());
    cipher.Encode(text.data(), text.data(), length);
    require(text == together, "in place");
    cipher.Decode(text.data(), text.data(), length);
    require(text == padded, "back");
}

// A stream gives back what it was given, but for blanks at the end.
void writeAndRead(const Bytes &text) {
    const std::string plain(text.begin(), text.end());
    KV_SStream stream;
    const std::uint32_t stored = stream.WriteEncrypted(plain.data(), sizeOf(text));
    require(stored == (plain.size() + 7) / 8 * 8, "stored length");
    stream.Close();
    Bytes room(stored + 1);  // exactly what may be touched
    auto *const buffer = reinterpret_cast<char *>(room.data());
    require(stream.ReadEncrypted(buffer, stored) == stored, "read length");
    if (stored == 0) return;
    const std::size_t end = plain.find_last_not_of(' ') + 1;
    require(plain.compare(0, end, buffer, end) == 0 && buffer[end] == '\0', "text and its end");
}

// Any bytes as an enciphered stream, in pieces of all sizes.
void readAnything(const Bytes &bytes, std::uint32_t piece) {
    const std::string stored(bytes.begin(), bytes.end());
    KV_SStream stream(stored.data(), sizeOf(bytes));
    std::vector<char> buffer(piece + 1);
    std::size_t total = 0;
    while (const std::uint32_t got = stream.ReadEncrypted(buffer.data(), piece))
        total += got;
    require(total == bytes.size(), "all was read");
    std::string out;
    require(stream.ReadFile(out, true) == !bytes.empty(), "whole file");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) return 0;
    const std::size_t keyBytes = std::min<std::size_t>(data[0], size - 1);
    Bytes key(data + 1, data + 1 + keyBytes);
    const Bytes text(data + 1 + keyBytes, data + size);
    CBlowFish cipher;
    cipher.Initialize(key.data(), sizeOf(key));
    encodeAndDecode(cipher, text);
    writeAndRead(text);
    readAnything(text, 1 + static_cast<std::uint32_t>(data[0]));
    return 0;
}
