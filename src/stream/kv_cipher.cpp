#include "kvbase/stream/kv_cipher.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <new>

#include "stream/byte_order.h"
#include "stream/system_seed.h"
#include "stream/tables/blowfish_tables.h"

namespace {

using kv::detail::kBlowfishP;
using kv::detail::kBlowfishS;

constexpr std::size_t kBlock = 8;
constexpr std::size_t kPWords = std::size(kBlowfishP);
constexpr std::size_t kSWords = std::size(kBlowfishS);
constexpr int kRounds = 16;

std::uint32_t loadHalf(const unsigned char *bytes) {
    return kv::detail::wordFromBytes<kv::detail::ByteOrder::little, std::uint32_t>(bytes);
}

void storeHalf(std::uint32_t half, unsigned char *bytes) {
    kv::detail::wordToBytes<kv::detail::ByteOrder::little>(half, bytes);
}

// F of the publication. The byte types keep the indexes apart from 32-bit sums, which compilers turn into
// better code.
inline std::uint32_t mix(const std::uint32_t *s, std::uint32_t x) {
    const std::uint32_t *s1 = s + 256, *s2 = s + 512, *s3 = s + 768;
    const auto b1 = static_cast<std::uint8_t>(x >> 16), b2 = static_cast<std::uint8_t>(x >> 8),
               b3 = static_cast<std::uint8_t>(x);
    return ((s[x >> 24] + s1[b1]) ^ s2[b2]) + s3[b3];
}

// One block, in the steps of the publication. With the P-array in reverse order it deciphers.
void encipherBlock(const std::uint32_t *p, const std::uint32_t *s, std::uint32_t &left,
                   std::uint32_t &right) {
    for (int round = 0; round < kRounds; ++round) {
        left ^= p[round];
        right ^= mix(s, left);
        std::swap(left, right);
    }
    std::swap(left, right);
    right ^= p[kRounds];
    left ^= p[kRounds + 1];
}

constexpr std::size_t kInFlight = 8;  // measured: more gains nothing

#if defined(__GNUC__)
#    define KV_UNROLL _Pragma("GCC unroll 8")
#else
#    define KV_UNROLL
#endif

// kInFlight blocks side by side. A block is a chain of loads that wait for each other; the processor fills
// the waits with the other blocks. Two rounds a step, so that the halves need not change places.
void encipherTogether(const std::uint32_t *p, const std::uint32_t *s, const unsigned char *in,
                      unsigned char *out) {
    std::uint32_t left[kInFlight], right[kInFlight];
    KV_UNROLL
    for (std::size_t i = 0; i < kInFlight; ++i) {
        left[i] = loadHalf(in + kBlock * i) ^ p[0];
        right[i] = loadHalf(in + kBlock * i + kBlock / 2);
    }
    KV_UNROLL
    for (int round = 1; round < kRounds; round += 2) {
        KV_UNROLL
        for (std::size_t i = 0; i < kInFlight; ++i) {
            right[i] ^= p[round];
            right[i] ^= mix(s, left[i]);
        }
        KV_UNROLL
        for (std::size_t i = 0; i < kInFlight; ++i) {
            left[i] ^= p[round + 1];
            left[i] ^= mix(s, right[i]);
        }
    }
    KV_UNROLL
    for (std::size_t i = 0; i < kInFlight; ++i) {
        storeHalf(right[i] ^ p[kRounds + 1], out + kBlock * i);
        storeHalf(left[i], out + kBlock * i + kBlock / 2);
    }
}

// Whole blocks, from a buffer into the same or another one.
void encipherBlocks(const std::uint32_t *p, const std::uint32_t *s, const unsigned char *in,
                    unsigned char *out, std::size_t blocks) {
    for (; blocks >= kInFlight; blocks -= kInFlight, in += kInFlight * kBlock, out += kInFlight * kBlock)
        encipherTogether(p, s, in, out);
    for (; blocks > 0; --blocks, in += kBlock, out += kBlock) {
        std::uint32_t left = loadHalf(in), right = loadHalf(in + kBlock / 2);
        encipherBlock(p, s, left, right);
        storeHalf(left, out);
        storeHalf(right, out + kBlock / 2);
    }
}

CBlowFish keyedBySeed(std::uint32_t seed) {
    char key[13];
    std::snprintf(key, sizeof key, "%12i", static_cast<int>(seed));
    CBlowFish cipher;
    cipher.Initialize(reinterpret_cast<unsigned char *>(key), sizeof key - 1);
    return cipher;
}

// Streams make a cipher for every piece of a file: the schedule of their seed, which nobody changes, is made
// once and kept to the end, for objects that still read while the program ends.
const CBlowFish &systemCipher() {
    static const CBlowFish &cipher = *new CBlowFish(keyedBySeed(kv::detail::kSystemSeed));
    return cipher;
}

}  // namespace

CBlowFish::CBlowFish()
    : m_p(std::make_shared<std::uint32_t[]>(kPWords)), m_s(std::make_shared<std::uint32_t[]>(kSWords)) {}

void CBlowFish::Initialize(unsigned char *key, std::uint32_t keyBytes) {
    std::copy_n(kBlowfishP, kPWords, m_p.get());
    std::copy_n(kBlowfishS, kSWords, m_s.get());
    if (keyBytes > 0) {
        std::uint32_t next = 0;
        for (std::uint32_t *p = m_p.get(); p != m_p.get() + kPWords; ++p) {
            std::uint32_t word = 0;
            for (int byte = 0; byte < 4; ++byte) {
                word = word << 8 | key[next];
                next = next + 1 < keyBytes ? next + 1 : 0;
            }
            *p ^= word;
        }
    }
    std::uint32_t left = 0, right = 0;
    const auto refill = [&](std::uint32_t *words, std::size_t count) {
        for (std::size_t i = 0; i < count; i += 2) {
            encipherBlock(m_p.get(), m_s.get(), left, right);
            words[i] = left;
            words[i + 1] = right;
        }
    };
    refill(m_p.get(), kPWords);
    refill(m_s.get(), kSWords);
}

// Where 32 bits do not hold the result, the sum begins again at 0.
std::uint32_t CBlowFish::GetOutputLength(std::uint32_t n) { return (n + 7) / 8 * 8; }

std::uint32_t CBlowFish::Encode(unsigned char *in, unsigned char *out, std::uint32_t n) {
    const std::uint32_t outputLength = GetOutputLength(n);
    if (outputLength == 0) return 0;
    const std::size_t whole = n / kBlock * kBlock;
    encipherBlocks(m_p.get(), m_s.get(), in, out, whole / kBlock);
    if (whole < n) {
        std::array<unsigned char, kBlock> last;
        last.fill(' ');
        std::memcpy(last.data(), in + whole, n - whole);
        encipherBlocks(m_p.get(), m_s.get(), last.data(), out + whole, 1);
    }
    return outputLength;
}

void CBlowFish::Decode(unsigned char *in, unsigned char *out, std::uint32_t n) {
    std::array<std::uint32_t, kPWords> reversed;
    std::reverse_copy(m_p.get(), m_p.get() + kPWords, reversed.begin());
    encipherBlocks(reversed.data(), m_s.get(), in, out, (std::size_t{n} + 7) / kBlock);
}

Crypto::Crypto(std::uint32_t seed)
    : m_seed(seed), m_cipher(seed == kv::detail::kSystemSeed ? systemCipher() : keyedBySeed(seed)) {}

unsigned char *Crypto::encryptbuffer(unsigned char *data, std::uint32_t *length) {
    const std::uint32_t outputLength = m_cipher.GetOutputLength(*length);
    if (outputLength < *length) return nullptr;
    auto *const block = new (std::nothrow) unsigned char[outputLength]();
    if (block != nullptr) *length = m_cipher.Encode(data, block, *length);
    return block;
}

bool Crypto::decryptbuffer(unsigned char *data, std::uint32_t length) {
    m_cipher.Decode(data, data, length & ~7U);  // whole blocks
    return true;
}
