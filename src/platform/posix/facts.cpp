#include <algorithm>

#include "kvbase/base/version.h"
#include "platform/platform.h"

namespace kv::platform {

std::tm localTime(std::time_t time) {
    std::tm moment = {};
    localtime_r(&time, &moment);
    return moment;
}

bool osVersionAtLeast(const OsVersion & /*wanted*/) { return true; }

bool libraryVersion(std::uint16_t (&parts)[4]) {
    constexpr std::uint16_t kParts[] = {KV_VERSION_MAJOR, KV_VERSION_MINOR, KV_VERSION_PATCH,
                                        KV_VERSION_BUILD};
    std::copy(std::begin(kParts), std::end(kParts), parts);
    return true;
}

}  // namespace kv::platform
