#include "kvbase/stream/kv_stream.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>

#include "kvbase/stream/kv_cipher.h"
#include "stream/system_seed.h"

static_assert(std::numeric_limits<float>::is_iec559, "packed floats are IEEE 754 singles");

std::uint32_t pack754_32(float f) { return f == 0 ? 0 : std::bit_cast<std::uint32_t>(f); }

float unpack754_32(std::uint32_t u) {
    if (u == 0) return 0;
    const double sign = (u >> 31) != 0 ? -1.0 : 1.0;
    const int exponent = static_cast<int>((u >> 23) & 0xFF) - 127;
    if (exponent == 128) return static_cast<float>(sign) * std::numeric_limits<float>::infinity();
    const double value = (u & 0x7FFFFF) * 0x1p-23 + 1.0;
    return static_cast<float>(sign * std::ldexp(value, exponent));
}

KV_Stream::~KV_Stream() = default;

float KV_Stream::Getf754_32() { return unpack754_32(GetlongwordBE()); }

std::uint32_t KV_Stream::Putf754_32(float value) { return PutlongwordBE(pack754_32(value)); }

bool KV_Stream::ReadFile(std::string &out, bool encrypted) {
    if (!Open("rb", false)) return false;
    Seek(0, SeekFromEnd);
    const std::int64_t end = Tell();
    Seek(0, SeekFromStart);

    bool result = false;
    try {
        if (end > 0) {
            const auto length = static_cast<std::uint32_t>(end);
            // Not filled: a length that the file does not keep costs no memory.
            const auto buffer = std::make_unique_for_overwrite<char[]>(std::size_t{length} + 1);
            const std::uint64_t got =
                encrypted ? ReadEncrypted(buffer.get(), length) : Read(buffer.get(), 1, length);
            if (got > 0) {
                buffer[got] = '\0';
                out = buffer.get();
                result = true;
            }
        }
    } catch (const std::bad_alloc &) {
        result = false;
    }
    Close();
    return result;
}

std::uint32_t KV_Stream::ReadEncrypted(char *buffer, std::uint32_t length) {
    const auto got = static_cast<std::uint32_t>(Read(buffer, 1, length));
    if (got == 0) return 0;
    Crypto(kv::detail::kSystemSeed).decryptbuffer(reinterpret_cast<unsigned char *>(buffer), got);
    std::uint32_t end = got;
    while (end > 0 && buffer[end - 1] == ' ')
        --end;
    buffer[end] = '\0';
    return got;
}

std::uint32_t KV_Stream::WriteEncrypted(const char *buffer, std::uint32_t length) {
    // The cipher's interface is not const, but it leaves its input as it is.
    auto *const text = const_cast<unsigned char *>(reinterpret_cast<const unsigned char *>(buffer));
    const std::unique_ptr<unsigned char[]> block(
        Crypto(kv::detail::kSystemSeed).encryptbuffer(text, &length));
    if (!block) return 0;
    return static_cast<std::uint32_t>(Write(block.get(), 1, length));
}
