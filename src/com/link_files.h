#pragma once

#include <string>

#include "kvbase/base/types.h"
#include "kvbase/runtime/kv_checksum.h"

class KV_COMManager;

namespace kv::detail {

/// The file of a link: prefix, which ends with a separator where it names a folder, "templink_", the
/// checksum's text and ".icc".
KV_WString linkFileName(const KV_WString &prefix, const KV_CheckSum &sum);
/// The file that a link is written to before it gets its name: in the same folder, with the name's beginning
/// and its ending, and not given twice, by this process or another one. What a process leaves behind when it
/// dies goes together with the link files.
KV_WString temporaryLinkFileName(const KV_WString &prefix, const KV_CheckSum &sum);

/// Makes a folder, and those it lies in that are missing, from the fourth character on. Failures are not
/// reported.
void makeFolders(const KV_WString &folder);

/// Deletes all files of that prefix whose names begin with "templink_"; ends at the first that cannot be
/// deleted.
void deleteLinkFiles(const KV_WString &prefix);
/// Deletes those of them that are no profiles of this version of the library. Raises nothing.
void deleteOldLinkFiles(const KV_WString &prefix, KV_COMManager &manager);

}  // namespace kv::detail
