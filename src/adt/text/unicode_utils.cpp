#include "kvbase/text/unicode_utils.h"

#include <limits>
#include <memory>
#include <string_view>

#include "platform/platform.h"

namespace {

template <class Char>
std::basic_string_view<Char> upToZero(const std::basic_string<Char> &text) {
    return std::basic_string_view<Char>(text).substr(0, text.find(Char{0}));
}

}  // namespace

namespace UnicodeUtils {

std::string CreateStdStringFromWideString(const KV_WString &text) {
    std::string utf8;
    kv::platform::fromUnits(kv::platform::kUtf8CodePage, upToZero(text), utf8);
    return utf8;
}

KV_WString CreateWideStringFromStdString(const std::string &text) {
    KV_WString units;
    kv::platform::toUnits(kv::platform::kUtf8CodePage, upToZero(text), units);
    return units;
}

void Translate16BitUnicodeBEToWString(std::uint32_t byteCount, unsigned char *data, KV_WString &out) {
    if (byteCount < 2 || data == nullptr) return;
    KV_WString units(byteCount / 2, KV_WChar{0});
    for (std::size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<KV_WChar>((data[2 * i] << 8) | data[2 * i + 1]);
    out = std::move(units);
}

void TranslateWStringTo16BitUnicodeBE(const KV_WString &in, std::uint32_t *byteCount, unsigned char **data) {
    *byteCount = 0;
    *data = nullptr;
    if (in.size() > std::numeric_limits<std::uint32_t>::max() / 2) return;
    auto bytes = std::make_unique<unsigned char[]>(2 * in.size());
    for (std::size_t i = 0; i < in.size(); ++i) {
        bytes[2 * i] = static_cast<unsigned char>(in[i] >> 8);
        bytes[2 * i + 1] = static_cast<unsigned char>(in[i] & 0xFF);
    }
    *byteCount = static_cast<std::uint32_t>(2 * in.size());
    *data = bytes.release();
}

}  // namespace UnicodeUtils
