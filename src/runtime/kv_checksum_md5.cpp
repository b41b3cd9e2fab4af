// MD5 as RFC 1321 gives it. The names a, b, c, d and x are the standard's.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <utility>

#include "kvbase/runtime/kv_checksum.h"
#include "runtime/tables/md5_tables.h"

namespace {

using namespace kv::detail;

constexpr std::size_t kBlock = 64;
constexpr std::size_t kLengthBytes = 8;  // what the length takes at the end of the last block

std::uint32_t wordAt(const unsigned char *bytes) {
    return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
           std::uint32_t{bytes[3]} << 24;
}

void putWord(std::uint32_t word, unsigned char *bytes) {
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>(word >> 8 * i);
}

// F, G, H and I, one a round. Each step waits for the b of the step before: F is written so that b passes two
// operations, and the two halves of G, which have no bit in common, are added one after the other for the
// same reason.
template <int Round>
std::uint32_t mixed(std::uint32_t sum, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    if constexpr (Round == 0) return sum + (d ^ (b & (c ^ d)));
    if constexpr (Round == 1) return sum + (c & ~d) + (b & d);
    if constexpr (Round == 2) return sum + (b ^ (c ^ d));
    if constexpr (Round == 3) return sum + (c ^ (b | ~d));
}

// One step: the four words change their roles from step to step.
template <int Round, int Step>
void step(std::uint32_t (&state)[4], const std::uint32_t (&x)[16]) {
    std::uint32_t &a = state[(16 - Step) % 4];
    const std::uint32_t b = state[(17 - Step) % 4];
    const std::uint32_t c = state[(18 - Step) % 4];
    const std::uint32_t d = state[(19 - Step) % 4];
    constexpr Md5WordOrder order = kMd5Words[Round];
    const std::uint32_t sum = a + x[(order.first + Step * order.stride) % 16] + kMd5Sines[16 * Round + Step];
    a = b + std::rotl(mixed<Round>(sum, b, c, d), kMd5Turns[Round][Step % 4]);
}

template <int Round, int... Steps>
void round(std::uint32_t (&state)[4], const std::uint32_t (&x)[16], std::integer_sequence<int, Steps...>) {
    (step<Round, Steps>(state, x), ...);
}

// Takes whole blocks into the digest.
void takeBlocks(std::uint32_t (&digest)[4], const unsigned char *bytes, std::size_t count) {
    constexpr std::make_integer_sequence<int, 16> steps;
    for (; count > 0; --count, bytes += kBlock) {
        std::uint32_t x[16];
        for (std::size_t i = 0; i < 16; ++i)
            x[i] = wordAt(bytes + 4 * i);
        std::uint32_t state[4] = {digest[0], digest[1], digest[2], digest[3]};
        round<0>(state, x, steps);
        round<1>(state, x, steps);
        round<2>(state, x, steps);
        round<3>(state, x, steps);
        for (int i = 0; i < 4; ++i)
            digest[i] += state[i];
    }
}

}  // namespace

void MD5String(unsigned char *data, unsigned int length, unsigned char *digest) {
    if (data == nullptr) length = 0;
    std::uint32_t words[4];
    std::copy(std::begin(kMd5Begin), std::end(kMd5Begin), words);
    const std::size_t blocks = length / kBlock;
    takeBlocks(words, data, blocks);

    // The rest, a single bit, zeros, and the length in bits: one block more, or two where it has no room.
    unsigned char end[2 * kBlock] = {};
    const std::size_t rest = length % kBlock;
    if (rest != 0) std::memcpy(end, data + blocks * kBlock, rest);
    end[rest] = 0x80;
    const std::size_t endBlocks = rest + 1 + kLengthBytes <= kBlock ? 1 : 2;
    const std::uint64_t bits = std::uint64_t{length} * 8;
    unsigned char *const behind = end + endBlocks * kBlock - kLengthBytes;
    putWord(static_cast<std::uint32_t>(bits), behind);
    putWord(static_cast<std::uint32_t>(bits >> 32), behind + 4);
    takeBlocks(words, end, endBlocks);

    for (int i = 0; i < 4; ++i)
        putWord(words[i], digest + 4 * i);
}
