#include "kvbase/runtime/kv_url.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

constexpr std::string_view kScheme = "file:";
constexpr std::string_view kBlank = "%20";

std::string bytesOf(const KV_String &text) { return {text.Ptr(), text.Size()}; }

KV_String stringOf(const std::string &text) { return {text.data(), static_cast<std::uint32_t>(text.size())}; }

}  // namespace

KV_URL::KV_URL(const KV_FileSpec &spec) : m_text(CreateFileURLFromPath(spec)) {}

KV_URL::KV_URL(const KV_String &text) : m_text(text) {}

KV_URL::~KV_URL() = default;

KV_FileSpec KV_URL::GetUNCPath() { return CreateFileSpecFromFileURL(m_text); }

bool KV_URL::GetFileSpec(KV_FileSpec & /*out*/) const { return false; }

KV_String KV_URL::GetHostName() { return "localhost"; }

KV_String KV_URL::GetSambaURL() { return {}; }

KV_String KV_URL::CreateFileURLFromPath(const KV_FileSpec &spec) {
    return stringOf(UrlEscape(std::string(kScheme) + bytesOf(spec.GetFileName())));
}

KV_FileSpec KV_URL::CreateFileSpecFromFileURL(const KV_String &text) {
    std::string path = bytesOf(text);
    if (path.compare(0, kScheme.size(), kScheme) == 0) path.erase(0, kScheme.size());
    return stringOf(UrlUnEscape(path));
}

std::string KV_URL::UrlEscape(const std::string &text) {
    std::string url;
    for (const char c : text) {
        if (c == ' ')
            url += kBlank;
        else
            url += c == '\\' ? '/' : c;
    }
    return url;
}

std::string KV_URL::UrlUnEscape(const std::string &text) {
    std::string path;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, kBlank.size(), kBlank) == 0) {
            path += ' ';
            i += kBlank.size() - 1;
        } else {
            path += text[i] == '/' ? '\\' : text[i];
        }
    }
    return path;
}

KV_String KV_URL::CreateSambaURLFromPath(const KV_FileSpec & /*spec*/) { return {}; }

bool KV_URL::MountSambaVolume(const KV_String & /*url*/) { return false; }
