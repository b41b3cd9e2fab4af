#include "platform/platform.h"

namespace kv::platform {

bool osVersionAtLeast(const OsVersion & /*wanted*/) { return true; }

}  // namespace kv::platform
