#pragma once

#include "kvbase/base/types.h"

namespace kv::detail {

/// The folder of this system's own files of the user: "Trevane" in the folder of the user's application data,
/// from which the marks of a read-only, hidden or system file are taken. What is missing of the path is made;
/// where that fails, so will the use of the folder. Empty when the system tells no folder of application
/// data.
KV_WString userFolder();

}  // namespace kv::detail
