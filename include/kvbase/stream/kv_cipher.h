#pragma once

/// The cipher of stored data files: Blowfish in electronic code book mode. Not shared between threads.

#include <cstdint>
#include <memory>

#include "kvbase/base/export.h"

/// Blowfish with 16 rounds, each block of 8 bytes by itself. The two halves of a block are read and written
/// least significant byte first, which differs from the published vectors; key bytes go most significant
/// first. Source: B. Schneier, Description of a New Variable-Length Key, 64-Bit Block Cipher, FSE 1993.
///
/// Copies share the key schedule, counted: an Initialize on one of them keys all.
class KV_EXPORT CBlowFish {
public:
    /// Without a key; what it enciphers before Initialize has no meaning. Throws std::bad_alloc.
    CBlowFish();
    CBlowFish(const CBlowFish &) = default;
    CBlowFish &operator=(const CBlowFish &) = default;
    ~CBlowFish() = default;

    /// Makes the key schedule. Of a key the first 72 bytes count; a key of 0 bytes counts as one zero byte.
    void Initialize(unsigned char *key, std::uint32_t keyBytes);

    /// n rounded up to a multiple of 8; 0 for n above 0xFFFFFFF8, where 32 bits do not hold that.
    std::uint32_t GetOutputLength(std::uint32_t n);

    /// Enciphers n bytes, the last block padded with blanks, into out, which must hold the output length.
    /// Returns the output length; where that is 0, nothing is done. in and out are one buffer or do not
    /// overlap.
    std::uint32_t Encode(unsigned char *in, unsigned char *out, std::uint32_t n);

    /// Deciphers n bytes, rounded up to whole blocks, which both buffers must hold. The padding stays. in and
    /// out are one buffer or do not overlap.
    void Decode(unsigned char *in, unsigned char *out, std::uint32_t n);

private:
    std::shared_ptr<std::uint32_t[]> m_p;  // 18 words
    std::shared_ptr<std::uint32_t[]> m_s;  // 4 S-boxes of 256 words
};

/// A cipher whose key comes from a seed: its 12 characters in the form "%12i", a signed number. Copies share
/// the key.
class KV_EXPORT Crypto {
public:
    /// Throws std::bad_alloc when there is no memory for the key.
    explicit Crypto(std::uint32_t seed);

    /// A new block with the enciphered bytes of data, padded with blanks to a multiple of 8; data stays. The
    /// padded length is stored in *length. The caller releases the block with delete[]. Null, with *length as
    /// it was, when memory runs out or the padded length does not fit 32 bits.
    unsigned char *encryptbuffer(unsigned char *data, std::uint32_t *length);

    /// Deciphers the whole blocks of 8 bytes in place; a last partial block stays as it is. Always true.
    bool decryptbuffer(unsigned char *data, std::uint32_t length);

private:
    [[maybe_unused]] std::uint32_t m_seed;
    CBlowFish m_cipher;
};
