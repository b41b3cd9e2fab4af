#include "profile_file.h"

#include <kvbase/runtime/kv_exception.h>
#include <kvbase/stream/kv_fstream.h>
#include <kvbase/stream/kv_sstream.h>

#include <algorithm>
#include <sstream>

namespace {

constexpr const char *kFormat = "test profile 1";
constexpr std::size_t kDigestSize = 32;

std::string digestOf(std::string bytes) {
    unsigned char digest[16];
    MD5String(reinterpret_cast<unsigned char *>(bytes.data()), static_cast<unsigned int>(bytes.size()),
              digest);
    return KV_CheckSum(digest, sizeof digest).GetSum();
}

[[noreturn]] void refuse(KV_ErrorId why) { throw KV_ProfileException("test profile", why, KV_HERE); }

}  // namespace

std::string bytesOf(const TestProfileData &data) {
    std::ostringstream out;
    out << kFormat << '\n' << data.text << '\n' << data.sum.GetSum() << '\n' << data.values.size() << '\n';
    for (float value : data.values)
        for (int shift = 24; shift >= 0; shift -= 8)
            out.put(static_cast<char>(pack754_32(value) >> shift & 0xFF));
    return out.str() + digestOf(out.str());
}

TestProfileData dataOf(const std::string &bytes) {
    std::istringstream in(bytes);
    std::string format, sum, count;
    TestProfileData data;
    std::getline(in, format);
    if (format != kFormat) refuse(KV_ERR_PROFILE_NOT_A_PROFILE);
    const std::size_t size = bytes.size() - std::min(bytes.size(), kDigestSize);
    if (digestOf(bytes.substr(0, size)) != bytes.substr(size)) refuse(KV_ERR_PROFILE_NOT_READABLE);
    std::getline(std::getline(std::getline(in, data.text), sum), count);
    data.sum.SetSum(sum);
    for (std::size_t left = std::stoul(count); left > 0; --left) {
        std::uint32_t bits = 0;
        for (int i = 0; i < 4; ++i)
            bits = bits << 8 | static_cast<unsigned char>(in.get());
        data.values.push_back(unpack754_32(bits));
    }
    return data;
}

std::string readFile(const KV_FileSpec &file) {
    KV_FStream stream(file);
    if (!stream.Open("rb", false))
        throw KV_FileException(file.GetFileName(), KV_FileException::OpenRdError, 0, KV_HERE);
    std::string bytes(stream.Length(), '\0');
    bytes.resize(stream.Read(bytes.data(), 1, bytes.size()));
    return bytes;
}

void writeFile(const KV_FileSpec &file, const std::string &bytes, std::size_t failAt) {
    constexpr std::size_t kPiece = 1000;
    KV_FStream stream(file);
    if (!stream.Open("wb", false))
        throw KV_FileException(file.GetFileName(), KV_FileException::OpenWrError, 0, KV_HERE);
    const std::size_t end = std::min(failAt, bytes.size());
    bool isWritten = end == bytes.size();
    for (std::size_t at = 0; at < end; at += kPiece) {
        const std::size_t size = std::min(kPiece, end - at);
        isWritten = stream.Write(bytes.data() + at, 1, size) == size && stream.Flush() == 0 && isWritten;
    }
    if (!stream.Close() || !isWritten)
        throw KV_FileException(file.GetFileName(), KV_FileException::WriteError, 0, KV_HERE);
}
