#pragma once

#include "kvbase/base/types.h"

namespace kv::detail {

/// "Trevane" in the folder of the user's application data: the folder of this system's own files of the user.
/// Nothing is looked for or made. Empty when the system tells no folder of application data.
KV_WString userFolderName();

/// The same folder to be used: the marks of a read-only, hidden or system file are taken from the folder of
/// application data, and what is missing of the path is made; where that fails, so will the use of the
/// folder.
KV_WString userFolder();

}  // namespace kv::detail
