#include <vector>

#include "platform/platform.h"
#include "platform/windows/system.h"

namespace kv::platform {

std::tm localTime(std::time_t time) {
    std::tm moment = {};
    localtime_s(&moment, &time);
    return moment;
}

bool osVersionAtLeast(const OsVersion &wanted) {
    OSVERSIONINFOEXW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    version.dwMajorVersion = wanted.major;
    version.dwMinorVersion = wanted.minor;
    version.dwBuildNumber = wanted.build;
    version.dwPlatformId = wanted.platformId;
    constexpr DWORD kFields[] = {VER_MAJORVERSION, VER_MINORVERSION, VER_BUILDNUMBER, VER_PLATFORMID};
    ULONGLONG conditions = 0;
    DWORD asked = 0;
    for (const DWORD field : kFields) {
        conditions = VerSetConditionMask(conditions, field, VER_GREATER_EQUAL);
        asked |= field;
    }
    return VerifyVersionInfoW(&version, asked, conditions) != 0;
}

bool libraryVersion(std::uint16_t (&parts)[4]) {
    constexpr const KV_WChar *kFile = L"kvbase.dll";
    const HMODULE loaded = GetModuleHandleW(kFile);  // null where the library is linked into a program
    const KV_WString file =
        loaded == nullptr ? kFile : detail::filledBy([loaded](KV_WChar *text, DWORD size) {
            return GetModuleFileNameW(loaded, text, size);
        });
    DWORD ignored = 0;
    std::vector<unsigned char> resource(GetFileVersionInfoSizeW(file.c_str(), &ignored));
    void *fixed = nullptr;
    UINT size = 0;
    if (resource.empty() ||
        GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data()) == 0 ||
        VerQueryValueW(resource.data(), L"\\", &fixed, &size) == 0 || size < sizeof(VS_FIXEDFILEINFO))
        return false;
    const auto *info = static_cast<const VS_FIXEDFILEINFO *>(fixed);
    const DWORD words[] = {info->dwFileVersionMS, info->dwFileVersionLS};
    for (int i = 0; i < 4; ++i)
        parts[i] = static_cast<std::uint16_t>(i % 2 == 0 ? HIWORD(words[i / 2]) : LOWORD(words[i / 2]));
    return true;
}

}  // namespace kv::platform
