#include "kvbase/runtime/kv_file_spec.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "kvbase/text/kv_system_string.h"
#include "platform/platform.h"
#include "runtime/trace_line.h"

namespace {

constexpr KV_WChar kSeparator = KV_W('\\');

std::string_view bytesOf(const KV_String &text) { return {text.Ptr(), text.Size()}; }

KV_String stringOf(const std::string &text) { return {text.data(), static_cast<std::uint32_t>(text.size())}; }

KV_WString toWide(std::string_view text) {
    KV_WString units;
    kv::platform::toUnits(kv::platform::kUtf8CodePage, text, units);
    return units;
}

KV_String toNarrow(const KV_WString &units) {
    std::string text;
    kv::platform::fromUnits(kv::platform::kUtf8CodePage, units, text);
    return stringOf(text);
}

// False for an empty path, which it reports with the line.
bool isSet(const KV_WString &path, const char *line) {
    if (path.empty()) kv::detail::traceLine(kv::detail::kTraceError, line);
    return !path.empty();
}

// A narrow query in the terms of its wide one.
bool narrow(const KV_FileSpec &file, bool (KV_FileSpec::*query)(KV_WString &) const, KV_String &out) {
    KV_WString units;
    if (!(file.*query)(units)) return false;
    out = toNarrow(units);
    return true;
}

}  // namespace

KV_FileSpec::KV_FileSpec(const KV_WString &path) : m_path(path) {}

KV_FileSpec::KV_FileSpec(const KV_String &path) : m_path(toWide(bytesOf(path))) {}

KV_FileSpec::KV_FileSpec(const KV_SystemString &path) : KV_FileSpec(path.GetSystemString()) {}

bool KV_FileSpec::operator==(const KV_FileSpec &other) const { return m_path == other.m_path; }

bool KV_FileSpec::operator!=(const KV_FileSpec &other) const { return !(*this == other); }

KV_FileSpec &KV_FileSpec::operator+=(const KV_WString &piece) {
    KV_WString joined = m_path;
    if (!joined.empty() && joined.back() != kSeparator && (piece.empty() || piece.front() != kSeparator))
        joined += kSeparator;
    joined += piece;
    m_path = std::move(joined);
    return *this;
}

// By value in the interface. NOLINTNEXTLINE(performance-unnecessary-value-param)
KV_FileSpec &KV_FileSpec::operator+=(KV_String piece) { return *this += toWide(bytesOf(piece)); }

KV_FileSpec &KV_FileSpec::operator+=(const char *piece) {
    return *this += toWide(piece != nullptr ? piece : "");
}

bool KV_FileSpec::IsValid() const { return !m_path.empty(); }

bool KV_FileSpec::FileExists() const { return kv::platform::pathExists(m_path); }

const KV_WString &KV_FileSpec::GetFileNameW() const {
    isSet(m_path, "!!GetFileNameW is called but the KV_FileSpec was not set yet!!");
    return m_path;
}

KV_String KV_FileSpec::GetFileName() const { return toNarrow(GetFileNameW()); }

bool KV_FileSpec::GetBaseFileNameW(KV_WString &out) const {
    if (!isSet(m_path, "!!GetBaseFileNameW is called but the KV_FileSpec was not set yet!!")) return false;
    out = m_path.substr(m_path.rfind(kSeparator) + 1);  // npos + 1 is 0: no separator, the whole path
    return !out.empty();
}

bool KV_FileSpec::GetBaseFileName(KV_String &out) const {
    return narrow(*this, &KV_FileSpec::GetBaseFileNameW, out);
}

bool KV_FileSpec::GetFullPathNameW(KV_WString &out) const {
    if (!isSet(m_path, "!!GetFullPathNameW called but the KV_FileSpec was not set yet!!")) return false;
    const std::size_t last = m_path.rfind(kSeparator);
    if (last == KV_WString::npos) return false;
    out = m_path.substr(0, last);
    return !out.empty();
}

bool KV_FileSpec::GetFullPathNameW(KV_String &out) const {
    return narrow(*this, &KV_FileSpec::GetFullPathNameW, out);
}

bool KV_FileSpec::GetParentDirectoryNameW(KV_WString &out) const {
    if (!isSet(m_path, "!!GetParentDirectoryNameW called but the KV_FileSpec was not set yet!!"))
        return false;
    const std::size_t last = m_path.rfind(kSeparator);
    if (last == KV_WString::npos) return false;
    const KV_WString directory = m_path.substr(0, last);
    out = directory.substr(directory.rfind(kSeparator) + 1);
    return !out.empty();
}

bool KV_FileSpec::GetParentDirectoryName(KV_String &out) const {
    return narrow(*this, &KV_FileSpec::GetParentDirectoryNameW, out);
}

KV_FileSpec KV_FileSpecFromNative(const KV_String &path) {
    return kv::platform::fromNativePath(bytesOf(path));
}

KV_String KV_NativePath(const KV_FileSpec &file) {
    if (!file.IsValid()) return {};
    return stringOf(kv::platform::nativePath(file.GetFileNameW()));
}
