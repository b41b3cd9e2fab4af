#include "kvbase/runtime/kv_platform_facts.h"

#include <cstdint>
#include <cstdio>

#include "platform/platform.h"
#include "runtime/trace_line.h"

namespace {

// The operating system's version, in the form of the home platform's version information.
struct OsVersionRecord {
    std::uint32_t size = sizeof(OsVersionRecord);
    std::uint32_t major = 5;
    std::uint32_t minor = 0;
    std::uint32_t build = 0;
    std::uint32_t platformId = 2;
    char servicePack[128] = {};
};

constinit OsVersionRecord osVersion;

bool isPlatform(std::uint32_t platformId, std::uint32_t major) {
    return osVersion.platformId == platformId && osVersion.major == major;
}

}  // namespace

void SetRuntimeOSVersion() {
    using kv::detail::kTraceSystem;
    using kv::detail::traceLine;
    osVersion = OsVersionRecord();
    if (!kv::platform::osVersionAtLeast(
            {osVersion.major, osVersion.minor, osVersion.build, osVersion.platformId}))
        return;
    traceLine(kTraceSystem, "OS version information");
    traceLine(kTraceSystem, "----------------------");
    traceLine(kTraceSystem, "Platform Id:          ", osVersion.platformId);
    traceLine(kTraceSystem, "Major version number: ", osVersion.major);
    traceLine(kTraceSystem, "Minor version number: ", osVersion.minor);
    traceLine(kTraceSystem, "Build number:         ", osVersion.build);
    traceLine(kTraceSystem, "CSD version:          ", osVersion.servicePack);
    traceLine(kTraceSystem, "SAT OS settings:      Win64");
}

bool KV_Win32s() { return osVersion.platformId == 0; }
bool KV_Win95() { return isPlatform(1, 4) && osVersion.minor < 10; }
bool KV_Win98() { return isPlatform(1, 4) && osVersion.minor >= 10; }
bool KV_WinNT4() { return isPlatform(2, 4); }
bool KV_WinNT5() { return osVersion.platformId == 2 && osVersion.major >= 5; }

const char *KV_KalvorVersion() {
    struct VersionText {
        char text[32];
        VersionText() : text{} {
            std::uint16_t parts[4];
            if (kv::platform::libraryVersion(parts))
                std::snprintf(text, sizeof text, "%d.%d.%d.%d", parts[0], parts[1], parts[2], parts[3]);
        }
    };
    static const VersionText version;
    return version.text;
}
