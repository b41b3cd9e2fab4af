#include <algorithm>
#include <clocale>
#include <limits>

#include "platform/platform.h"
#include "platform/utf16.h"
#include "platform/windows/system.h"

namespace kv::platform {
namespace {

constexpr KV_WChar kReplacement = 0xFFFD;
constexpr std::size_t kMost = std::numeric_limits<int>::max();

std::int32_t lastError() { return static_cast<std::int32_t>(GetLastError()); }

bool isUtf8(int codePage) {
    return codePage == kUtf8CodePage || (codePage == kDefaultCodePage && GetACP() == kUtf8CodePage);
}

// Both append the other form of a text, wholly or not at all. 0, or the system's number.
std::int32_t append(UINT codePage, DWORD flags, std::string_view text, KV_WString &out) {
    const int length = static_cast<int>(text.size());
    const int count = MultiByteToWideChar(codePage, flags, text.data(), length, nullptr, 0);
    if (count <= 0) return lastError();
    const std::size_t before = out.size();
    out.resize(before + static_cast<std::size_t>(count));
    MultiByteToWideChar(codePage, flags, text.data(), length, out.data() + before, count);
    return 0;
}

std::int32_t append(UINT codePage, DWORD flags, std::basic_string_view<KV_WChar> units, std::string &out,
                    BOOL *replaced) {
    const int length = static_cast<int>(units.size());
    const int count =
        WideCharToMultiByte(codePage, flags, units.data(), length, nullptr, 0, nullptr, replaced);
    if (count <= 0) return lastError();
    const std::size_t before = out.size();
    out.resize(before + static_cast<std::size_t>(count));
    WideCharToMultiByte(codePage, flags, units.data(), length, out.data() + before, count, nullptr, replaced);
    return 0;
}

// Appends the first character of a text and gives its length; 0 when its bytes mean nothing there.
std::size_t appendFirst(UINT codePage, std::string_view text, KV_WString &out) {
    constexpr std::size_t kLongest = 4;  // in GB18030; no other code page has more than 2 bytes
    const std::size_t shortest = IsDBCSLeadByteEx(codePage, static_cast<BYTE>(text[0])) != 0 ? 2 : 1;
    for (std::size_t length = shortest; length <= std::min(kLongest, text.size()); ++length)
        if (append(codePage, MB_ERR_INVALID_CHARS, text.substr(0, length), out) == 0) return length;
    return 0;
}

}  // namespace

Conversion toUnits(int codePage, std::string_view text, KV_WString &out) {
    out.clear();
    if (isUtf8(codePage)) return {0, detail::appendUnits(text, out)};
    const auto page = static_cast<UINT>(codePage);
    if (codePage < 0 || text.size() > kMost) return {ERROR_INVALID_PARAMETER, false};
    if (text.empty()) return {IsValidCodePage(page) || page == CP_ACP ? 0 : ERROR_INVALID_PARAMETER, false};

    std::int32_t error = append(page, MB_ERR_INVALID_CHARS, text, out);
    if (error == ERROR_INVALID_FLAGS) {  // pages with a shift state: the system does not tell
        error = append(page, 0, text, out);
        return {error, out.find(kReplacement) != KV_WString::npos};
    }
    if (error != ERROR_NO_UNICODE_TRANSLATION) return {error, false};
    while (!text.empty()) {
        const std::size_t length = appendFirst(page, text, out);
        if (length == 0) out += kReplacement;
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return {0, true};
}

Conversion fromUnits(int codePage, std::basic_string_view<KV_WChar> units, std::string &out) {
    out.clear();
    if (isUtf8(codePage)) return {0, detail::appendUtf8(units, out)};
    const auto page = static_cast<UINT>(codePage);
    if (codePage < 0 || units.size() > kMost) return {ERROR_INVALID_PARAMETER, false};
    if (units.empty()) return {IsValidCodePage(page) || page == CP_ACP ? 0 : ERROR_INVALID_PARAMETER, false};

    BOOL replaced = FALSE;
    std::int32_t error = append(page, WC_NO_BEST_FIT_CHARS, units, out, &replaced);
    if (error != ERROR_INVALID_FLAGS && error != ERROR_INVALID_PARAMETER) return {error, replaced != FALSE};
    // Pages with a shift state take no flags and do not tell: the way back does.
    error = append(page, 0, units, out, nullptr);
    KV_WString back;
    if (error == 0) append(page, 0, out, back);
    return {error, back != units};
}

std::string localeName() {
    const char *name = std::setlocale(LC_CTYPE, nullptr);
    return name != nullptr ? name : "C";
}

}  // namespace kv::platform
